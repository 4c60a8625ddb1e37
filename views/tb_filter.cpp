// The filter box of the toolbars.
#include "app/cl.h"
#include "model/dir.h"
#include "platform/combo.h"
#include "platform/shown.h"
#include "platform/w.h"
#include "views/fl.h"
#include "views/tb.h"
#include "views/tb_box.h"
#include "views/tb_boxes.h"

#include <QLabel>
#include <QToolBar>

namespace tav {

namespace {

constexpr int FILTER_CHARACTERS = 12; // that are seen without scrolling

} // namespace

void tb_filter_setup(QToolBar *bar)
{
    if (!bar)
        return;
    auto *filter = new TbBox(bar);
    filter->setObjectName(QStringLiteral("tb_filespec"));
    filter->setAccessibleName(QStringLiteral("Filter"));
    filter->edit()->setAccessibleName(QStringLiteral("Filter"));
    filter->setToolTip(QStringLiteral("Shown names: patterns between |, ^ in front ignores case"));
    filter->setMinimumContentsLength(FILTER_CHARACTERS);
    bar->addWidget(filter);
    QObject::connect(filter, &TbBox::entered, filter, [filter] { tb_filespec_cb(filter); });
    QObject::connect(filter->edit(), &TbEdit::abandoned, filter, [filter] {
        filter->setEditText(shown_text(gDir.filespec));
        wfocus(w_find("filelist"));
    });
}

int tb_filespec_cb(QWidget *)
{
    auto *filter = w_find<TbBox>("tb_filespec");
    const std::string typed = combo_text(filter);
    if (fl_setspec(typed.c_str()) != 0)
        return W_CONTINUE;
    // What is remembered is what was set: an empty text stands for every name.
    filter->setEditText(shown_text(gDir.filespec));
    filter->edit()->setModified(false);
    if (gDir.filespec.find('\n') == std::string::npos) {
        cl_add(gSpecList, gDir.filespec.c_str());
        cl_apply(gSpecList, combo_box(filter));
    }
    return W_CONTINUE;
}

} // namespace tav
