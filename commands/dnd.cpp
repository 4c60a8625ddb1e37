// Dragging files out of the list and onto it.
#include "commands/dnd.h"
#include "commands/clip_offer.h"
#include "commands/dnd_picture.h"
#include "commands/file_op.h"
#include "fileops/fop.h"
#include "model/dir.h"
#include "model/es.h"
#include "platform/x11_time.h"
#include "views/fl.h"
#include "views/fl_view.h"

#include <QDrag>
#include <QDropEvent>
#include <QPointer>
#include <algorithm>
#include <climits>
#include <cstdlib>
#include <sys/stat.h>

namespace tav {

namespace {

// What a drop would do where the drag was last, as it was answered to the source. Keys that are
// let go after the mouse button do not change it, however late the drop and the last move before it
// arrive.
Qt::DropAction sAnswered = Qt::IgnoreAction;

// Where it would have gone then. A row that has come under the pointer since, as the list was read
// again or scrolled, is not what the user aimed at.
std::string sAimedAt;

bool x_same(const struct stat &a, const struct stat &b)
{
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

// The path without links, as it is when it cannot be resolved.
std::string x_resolved(const std::string &path)
{
    char resolved[PATH_MAX];
    return realpath(path.c_str(), resolved) ? resolved : path;
}

// Whether the way from upper down to lower begins with one of the names.
bool x_leads_to(const FileListRecord &list, std::string upper, const std::string &lower)
{
    if (upper.back() != '/')
        upper += '/';
    if (lower.compare(0, upper.size(), upper) != 0)
        return false;
    const std::string first =
        lower.substr(upper.size(), lower.find('/', upper.size()) - upper.size());
    return std::any_of(list.names.begin(), list.names.end(),
                       [&first](const char *name) { return first == name; });
}

bool x_same_directory(const std::string &a, const std::string &b)
{
    struct stat of_a, of_b;
    return a == b ||
           (stat(a.c_str(), &of_a) == 0 && stat(b.c_str(), &of_b) == 0 && x_same(of_a, of_b));
}

// The files of the drag; of our own without asking anybody.
TransfFiles x_files(const QMimeData &data)
{
    if (const auto *own = qobject_cast<const ClipOffer *>(&data))
        return own->files();
    TransfFiles files;
    clip_offer_take(data, files);
    return files;
}

// What our own drag may not hit is known while it is over it; of others' it shows when they are
// dropped.
bool x_is_refused(const QMimeData &data, int index)
{
    const auto *own = qobject_cast<const ClipOffer *>(&data);
    if (own == nullptr)
        return false;
    const std::string destination = dnd_destination(index);
    return destination == own->list()->directory || dnd_is_inside(*own->list(), destination);
}

void x_start_jobs(TransfFiles &files, bool copy, const std::string &destination)
{
    auto at_home = [&destination](const FileListRecord &list) {
        return x_same_directory(list.directory, destination);
    };
    auto &lists = files.lists;
    lists.erase(std::remove_if(lists.begin(), lists.end(), at_home), lists.end());
    file_op_all(copy ? FOP_COPY : FOP_MOVE, std::move(lists), destination);
}

} // namespace

std::string dnd_destination(int index)
{
    std::string path = gDir.path;
    if (index == DIR_PARENT) {
        es_remove_subdirectory(path);
        return path.empty() ? "/" : path;
    }
    return fl_takes_drop(index) ? fl_get_fullpath(index) : path;
}

bool dnd_is_inside(const FileListRecord &list, const std::string &destination)
{
    // By its text as well: a link may be the destination and lead elsewhere.
    return x_leads_to(list, list.directory, destination) ||
           x_leads_to(list, x_resolved(list.directory), x_resolved(destination));
}

Qt::DropAction dnd_action(Qt::KeyboardModifiers modifiers, Qt::DropActions possible)
{
    const bool copy = modifiers & Qt::ControlModifier;
    if (!(possible & Qt::MoveAction))
        return Qt::CopyAction;
    return copy && possible & Qt::CopyAction ? Qt::CopyAction : Qt::MoveAction;
}

bool dnd_is_files(const QDropEvent &event)
{
    return event.mimeData() != nullptr && clip_offer_takes(*event.mimeData());
}

bool dnd_accepts(QDropEvent &event, int index)
{
    // The toolkit tells what is held now, not when the pointer was there.
    const bool late = event.type() == QEvent::DragMove && event.buttons() == Qt::NoButton &&
                      event.possibleActions() & sAnswered;
    sAimedAt = dnd_destination(index);
    if (!late)
        sAnswered = dnd_action(event.modifiers(), event.possibleActions());
    if (!dnd_is_files(event) || !gDir.has_path ||
        !(event.possibleActions() & (Qt::CopyAction | Qt::MoveAction)) ||
        x_is_refused(*event.mimeData(), index))
        return false;
    event.setDropAction(sAnswered);
    return true;
}

void dnd_drop(QDropEvent &event, int index)
{
    if (event.mimeData() == nullptr || !gDir.has_path)
        return;
    const std::string destination = dnd_destination(index);
    TransfFiles files = x_files(*event.mimeData());
    // Another instance tells what its pointer showed; of others the last answer is the best.
    const bool copy = files.ours ? !files.cut : sAnswered != Qt::MoveAction;
    const bool inside = std::any_of(
        files.lists.begin(), files.lists.end(),
        [&destination](const FileListRecord &list) { return dnd_is_inside(list, destination); });
    if (files.lists.empty() || inside || destination != sAimedAt) {
        event.ignore();
        return;
    }
    // A move is our job's: told that it was a copy the source leaves its files alone.
    event.setDropAction(Qt::CopyAction);
    event.accept();
    fl_view()->setFocus();
    x_start_jobs(files, copy, destination);
}

void dnd_start()
{
    if (gDir.nselected <= 0)
        return;
    auto list = std::make_shared<const FileListRecord>(transf_own(fl_pack_transf()));
    auto *drag = new QDrag(fl_view());
    auto *offer = new ClipOffer(list, false, transf_new_id());
    drag->setMimeData(offer);
    x11_time_set_drag([held = QPointer<ClipOffer>(offer)](const QByteArray &mime) {
        return held ? held->data(QString::fromLatin1(mime)) : QByteArray();
    });
    const auto showing =
        QObject::connect(drag, &QDrag::actionChanged, offer, [offer](Qt::DropAction action) {
            offer->set_moving(action == Qt::MoveAction);
        });
    const QPixmap picture = dnd_picture(*list);
    drag->setPixmap(picture);
    drag->setHotSpot({-DND_PICTURE_GAP, -DND_PICTURE_GAP});
    // What the other side made of it is its own affair: nothing here is ever deleted for it.
    drag->exec(Qt::CopyAction | Qt::MoveAction, Qt::MoveAction);
    QObject::disconnect(showing); // the button is up: this is what it showed
}

void x_drop_complete_cb(const FileListRecord &list, unsigned flags)
{
    if (!(flags & DND_SHOW))
        return;
    fl_goto_index(fl_select_transf(list.names));
    fl_refresh();
}

} // namespace tav
