// What the tests of the properties dialog share: the dialog open for entries of a directory of its
// own, ways to its widgets, and a table of users that is put back.
#pragma once

#include "commands/fm_dlg.h"
#include "support/dialogs.h"
#include "support/ordinary.h"
#include "views/prop.h"
#include "views/prop_apply.h"
#include "views/prop_gather.h"

#include <QCheckBox>
#include <QLineEdit>

namespace tav::test {

constexpr char PROP_DIALOG[] = "property_dlg";

inline QLabel *prop_label(const char *name) { return dialog_find<QLabel>(PROP_DIALOG, name); }
inline QLineEdit *prop_field(const char *name) { return dialog_find<QLineEdit>(PROP_DIALOG, name); }
inline QCheckBox *prop_toggle(const char *name)
{
    return dialog_find<QCheckBox>(PROP_DIALOG, name);
}

inline void prop_click_toggle(const char *name)
{
    QCheckBox *toggle = prop_toggle(name);
    QTest::mouseClick(toggle, Qt::LeftButton, {}, QPoint(8, toggle->height() / 2));
}

// Replaces the text of a field as a person does.
inline void prop_edit(const char *name, const char *text)
{
    QLineEdit *field = prop_field(name);
    field->selectAll();
    QTest::keyClick(field, Qt::Key_Delete);
    field->insert(QString::fromUtf8(text));
}

inline void prop_click_done() { dialog_click(PROP_DIALOG, "pr_done"); }

// What a box says to "Done", "nothing" when none comes.
inline QString prop_done_says()
{
    auto seen = boxes_answer_next(QStringLiteral("&Continue"));
    prop_click_done();
    for (QTimer *timer : qApp->findChildren<QTimer *>(QString(), Qt::FindDirectChildrenOnly))
        delete timer; // an answer that nobody asked for
    return seen->came ? seen->title + QStringLiteral(": ") + seen->text : QStringLiteral("nothing");
}

inline std::string prop_numbered(char letter, int number)
{
    return std::string(1, letter).append(std::to_string(number));
}

// The dialog as a test case needs it: a main window over a directory.
class PropCase {
public:
    PropCase() { gPropHooks = {}; }
    ~PropCase()
    {
        if (QDialog *dialog = dialog_up(PROP_DIALOG))
            dialog->reject();
        gPropSystem = m_system;
    }
    PropCase(const PropCase &) = delete;
    PropCase &operator=(const PropCase &) = delete;

    // Opens the dialog for these entries.
    void open(std::initializer_list<const char *> names) const
    {
        fl_setpath(dir.path().c_str());
        select_names(names);
        fm_inspect(nullptr);
        QVERIFY(dialog_up(PROP_DIALOG));
    }

    OwnDir dir;
    MainWindow main;

private:
    PropSystem m_system = gPropSystem; // the table as the program has it
};

} // namespace tav::test
