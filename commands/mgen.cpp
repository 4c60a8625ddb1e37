// "Copy To" and "Move To". The packed selection is owned from the moment of choosing on: while a
// question stands the list may change, and the answer must not be about other files.
#include "commands/mgen.h"
#include "app/config.h"
#include "commands/file_op.h"
#include "fileops/fop.h"
#include "model/dir.h"
#include "platform/shown.h"
#include "platform/w.h"
#include "ui_input_dest.h"
#include "views/tree_hotlist.h"

#include <QDialog>
#include <QFile>

namespace tav {

namespace {

std::string sLastDest; // what was typed into the prompt last

struct Verb {
    int op;
    const char *name;   // in the confirmation
    const char *prompt; // title of the prompt
};
constexpr Verb sCopy = {FOP_COPY, "copy", "Copy to"};
constexpr Verb sMove = {FOP_MOVE, "move", "Move to"};

int x_to_dest(const Verb &verb, const char *destination)
{
    auto list = std::make_shared<FileListRecord>(transf_own(fl_pack_transf()));
    if (list->count == 0)
        return -1;
    auto start = [list, op = verb.op](const std::string &path) {
        _file_op(op, std::move(*list), path.c_str());
    };
    if (destination == nullptr) {
        input_dest(verb.prompt, start);
        return 0;
    }
    const QString what =
        list->count == 1 ? shown_text(list->names[0]) : QStringLiteral("%1 files").arg(list->count);
    confirm(verb.name, what, destination,
            [start, path = std::string(destination)] { start(path); });
    return 0;
}

// "Other..." of a cascade.
void re_route(DtmAction action) { action(nullptr); }

void x_add_cascade(QMenu *menu, QAction *before, const char *label, const char *name,
                   DtmAction action)
{
    auto *cascade = new DtmMenu(menu);
    cascade->setTitle(QLatin1String(label));
    cascade->setObjectName(QLatin1String(name) + QLatin1String("_menu"));
    cascade->menuAction()->setObjectName(QLatin1String(name));
    QAction *other = cascade->addAction(QStringLiteral("&Other..."));
    other->setObjectName(QLatin1String(name) + QLatin1String("_other"));
    QObject::connect(other, &QAction::triggered, gBase, [action] { re_route(action); });
    QObject::connect(
        cascade, &QMenu::aboutToShow, cascade,
        [cascade, action] { mgen_add_tree(cascade, action); }, Qt::SingleShotConnection);
    // The menu owns its items: when they are taken out of it again, the cascade goes too.
    QObject::connect(cascade->menuAction(), &QObject::destroyed, cascade, &QObject::deleteLater);
    menu->insertMenu(before, cascade);
}

// The directory that a typed text means.
std::string x_destination(const std::string &text)
{
    std::string path = text;
    if (path[0] != '/')
        path = dtm_join(gDir.path, path);
    if (path.back() != '/')
        path += '/';
    return path;
}

bool x_is_blank(const std::string &text) { return text.find_first_not_of(" \t\n") == text.npos; }

} // namespace

int mgen_work_insert(QMenu *menu, QAction *before)
{
    if (gDir.nselected > 0) {
        x_add_cascade(menu, before, "&Copy To", "mgen_copy_to", x_copy_to_dest);
        x_add_cascade(menu, before, "&Move To", "mgen_move_to", x_move_to_dest);
    }
    return 3;
}

void mgen_add_tree(QMenu *menu, DtmAction action)
{
    if (gTree.paths.empty())
        return;
    menu->addSeparator();
    const unsigned flags = (gConfig->flags & CONFIG_HIDE_DOT) | DTM_EXAMINE;
    for (const std::string &path : gTree.paths)
        dtm_add_item(menu, path, path, flags, action);
}

int x_copy_to_dest(const char *destination) { return x_to_dest(sCopy, destination); }

int x_move_to_dest(const char *destination) { return x_to_dest(sMove, destination); }

void confirm(const char *verb, const QString &what, const std::string &destination,
             std::function<void()> yes)
{
    WQuestion question;
    question.title = QLatin1String(verb);
    question.text = QStringLiteral("Do you want to ") + QLatin1String(verb) + QLatin1Char(' ') +
                    what + QStringLiteral(" to\n'") + shown_text(destination) +
                    QStringLiteral("'\n");
    question.buttons = {QStringLiteral("&No"), QStringLiteral("&Yes")};
    question.on_return = 2;
    question.on_close = 1;
    wquestion(gBase, question, [yes = std::move(yes)](int answer) {
        if (answer == 2)
            yes();
    });
}

void input_dest(const char *title, std::function<void(const std::string &)> done)
{
    auto *dialog = new QDialog(gBase);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    Ui::input_dest form;
    form.setupUi(dialog);
    dialog->setWindowTitle(QLatin1String(title));
    form.dest_text->setMaxLength(MGEN_DEST_SIZE);
    form.dest_text->setText(QFile::decodeName(sLastDest.c_str()));
    form.dest_text->selectAll();
    QObject::connect(dialog, &QDialog::accepted, gBase,
                     [field = form.dest_text, done = std::move(done)] {
                         sLastDest = QFile::encodeName(field->text()).toStdString();
                         if (!x_is_blank(sLastDest))
                             done(x_destination(sLastDest));
                     });
    dialog->open();
}

} // namespace tav
