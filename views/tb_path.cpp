// The path box of the toolbars.
#include "app/cl.h"
#include "app/config.h"
#include "model/dir.h"
#include "model/es.h"
#include "platform/combo.h"
#include "platform/shown.h"
#include "platform/w.h"
#include "views/fl.h"
#include "views/tb.h"
#include "views/tb_box.h"
#include "views/tb_boxes.h"

#include <QToolBar>
#include <cstdlib>
#include <cstring>

namespace tav {

namespace {

constexpr QRgb WEB_COLOUR = qRgb(0, 0, 0xFF);
constexpr QRgb WEB_COLOUR_ON_DARK = qRgb(0x8A, 0xB4, 0xFF);
constexpr int DARK_BELOW = 128; // lightness of a dark background

bool sEntering; // the box itself changes the directory: its text follows whatever was typed

TbBox *box() { return w_find<TbBox>("tb_curpath"); }

// What stands in the box, as bytes: the shown directory and history entries come back as they are.
std::string text_of(const TbBox *from)
{
    if (from->currentText() == shown_text(gDir.path))
        return gDir.path;
    return combo_text(from);
}

// A path from what was typed: "~" is the home directory, a relative path begins at the shown one.
// Web addresses stay, but "file://" names a path.
std::string absolute(const std::string &typed)
{
    if (typed.starts_with("file:///"))
        return typed.substr(strlen("file://"));
    if (typed.empty() || typed[0] == '/' || cl_is_web_address(typed.c_str()))
        return typed;
    const char *home = getenv("HOME");
    if (home && (typed == "~" || typed.starts_with("~/")))
        return home + typed.substr(1);
    std::string path;
    es_construct_fullpath(path, gDir.path.c_str(), typed.c_str());
    return path;
}

// Takes "." and ".." parts out of a typed path by name, as a shell's cd does.
std::string without_dots(const std::string &path)
{
    if (!path.starts_with('/') || path.find("/.") == std::string::npos)
        return path;
    std::string out;
    for (size_t begin = 0; begin < path.size();) {
        const size_t end = std::min(path.find('/', begin + 1), path.size());
        const std::string part = path.substr(begin, end - begin);
        if (part == "/..")
            out.resize(out.empty() ? 0 : out.rfind('/'));
        else if (part != "/.")
            out += part;
        begin = end;
    }
    return out.empty() ? "/" : out;
}

void remember(TbBox *in)
{
    if (gDir.path.find('\n') != std::string::npos) {
        wreport(gBase, "Error", "'%s' holds a line break and cannot be remembered",
                shown_text(gDir.path).toStdString().c_str());
        return;
    }
    cl_add(gPathList, gDir.path.c_str());
    cl_apply(gPathList, combo_box(in));
}

void show(TbBox *in, const QString &text)
{
    in->setEditText(text);
    in->edit()->setModified(false);
    in->edit()->end(false); // the end is what tells long paths apart
    tb_curpath_update_appearance();
}

} // namespace

void tb_path_setup(QToolBar *bar)
{
    if (!bar)
        return;
    auto *path = new TbBox(bar);
    path->setObjectName(QStringLiteral("tb_curpath"));
    path->setAccessibleName(QStringLiteral("Path"));
    path->edit()->setAccessibleName(QStringLiteral("Path"));
    path->setToolTip(QStringLiteral("Current directory"));
    path->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    path->set_greedy();
    bar->addWidget(path);
    QObject::connect(path, &TbBox::entered, path, [path] { tb_curpath_cb(path); });
    QObject::connect(path, &TbBox::recoloured, path, tb_curpath_update_appearance);
    QObject::connect(path->edit(), &TbEdit::typed, path, [path] { tb_curpath_notify(path); });
    QObject::connect(path->edit(), &TbEdit::abandoned, path, [path] {
        show(path, shown_text(gDir.path));
        wfocus(w_find("filelist"));
    });
}

int tb_curpath_cb(QWidget *widget)
{
    TbBox *path = box();
    if (!path)
        return W_CONTINUE;
    const QString typed = path->currentText();
    std::string wanted = without_dots(absolute(text_of(path)));
    es_strip_pathname(wanted);
    sEntering = true;
    const bool changed = wanted != gDir.path && fl_newpath(widget, wanted.c_str()) == 0;
    sEntering = false;
    if (wanted != gDir.path) {
        if (path->currentText() != typed) { // the list was refreshed while the message stood
            path->setEditText(typed);
            path->edit()->setModified(true);
        }
        wfocus(path->edit()); // the text stays to be put right
        return W_CONTINUE;
    }
    show(path, shown_text(gDir.path));
    if (changed)
        remember(path);
    return W_CONTINUE;
}

void tb_curpath_set_text(const char *text)
{
    TbBox *path = box();
    if (path && (sEntering || !path->is_typing()))
        show(path, shown_text(text));
}

int tb_curpath_notify(QWidget *)
{
    TbEdit *edit = box()->edit();
    const std::string typed = edit->text().toStdString();
    if (gOptions & OPTION_COMPLETE) {
        if (const char *found = cl_find_pattern(gPathList, typed.c_str())) {
            const int length = static_cast<int>(edit->text().size());
            const QString whole = shown_text(found);
            const int tail = static_cast<int>(whole.size()) - length;
            edit->setText(whole);
            edit->setModified(true);
            edit->setCursorPosition(std::min(length, static_cast<int>(whole.size())));
            if (tail > 0) // without its web prefix it may be shorter than what was typed
                edit->setSelection(static_cast<int>(whole.size()), -tail);
        }
    }
    if (gOptions & OPTION_COLOUR)
        tb_curpath_update_appearance();
    return W_CONTINUE;
}

void tb_curpath_update_appearance()
{
    TbBox *path = box();
    if (!path)
        return;
    const bool web = cl_is_web_address(path->currentText().toStdString().c_str());
    QPalette palette = path->palette();
    const bool dark = palette.color(QPalette::Base).lightness() < DARK_BELOW;
    const QColor plain = dark ? gBase->palette().color(QPalette::Text) : QColor(Qt::black);
    const QColor blue = QColor::fromRgb(dark ? WEB_COLOUR_ON_DARK : WEB_COLOUR);
    palette.setColor(QPalette::Text, web ? blue : plain);
    path->edit()->setPalette(palette);
}

} // namespace tav
