// What the tests of destination menus share: a list in a directory of its own, a hotlist, an empty
// clipboard, and what was chosen from a menu.
#pragma once

#include "commands/as.h"
#include "commands/clip.h"
#include "commands/jobs.h"
#include "commands/mgen.h"
#include "platform/worker.h"
#include "support/boxes.h"
#include "views/fl_fixture.h"
#include "views/tree_hotlist.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMenu>
#include <QMimeData>

namespace tav::test {

inline std::vector<std::string> gChosen; // paths, oldest first
inline int dtm_chosen(const char *path)
{
    gChosen.emplace_back(path ? path : "other");
    return 0;
}

// The texts of a menu's items, "-" for a line.
inline QStringList dtm_texts(const QMenu &menu)
{
    QStringList texts;
    for (const QAction *action : menu.actions())
        texts << (action->isSeparator() ? QStringLiteral("-") : action->text());
    return texts;
}

// The box that stands, null when there is none.
inline QMessageBox *box()
{
    const QList<QMessageBox *> boxes = boxes_standing();
    return boxes.isEmpty() ? nullptr : boxes.first();
}
inline void answer(const char *label)
{
    QAbstractButton *button = boxes_button(box(), QLatin1String(label));
    QVERIFY(button);
    QTest::mouseClick(button, Qt::LeftButton);
    QTRY_VERIFY(!box());
}

// The state that each test begins in; what it has changed is as before at its end.
class DtmWindow {
public:
    DtmWindow() : m_flags(gConfig->flags)
    {
        ui_gate_open();
        clip_setup();
        as_set_defaults();
        gConfig->flags = 0;
        jobs_catch();
        gChosen.clear();
        tree_set_paths({"/", dir.path()});
        QGuiApplication::clipboard()->setMimeData(new QMimeData);
    }
    ~DtmWindow() { gConfig->flags = m_flags; }
    DtmWindow(const DtmWindow &) = delete;
    DtmWindow &operator=(const DtmWindow &) = delete;

    void select(std::initializer_list<const char *> names) const
    {
        fl_setpath(dir.path().c_str());
        fl_refresh();
        for (const char *name : names)
            fl_select(name, FL_EXACT);
    }

    TestDir dir;
    FlWindow window;

private:
    uint32_t m_flags;
};

} // namespace tav::test
