// Paste: what is on the clipboard when the key is pressed goes where the list is then, or the user
// is told why not. While the clipboard is being read the places wait here; main thread only.
#include "commands/clip.h"
#include "commands/em.h"
#include "commands/file_op.h"
#include "fileops/fop.h"
#include "model/dir.h"
#include "platform/w.h"

#include <algorithm>

namespace tav {

namespace {

std::vector<std::string> sPlaces; // into which files are to come that are not known yet

void x_paste(const std::string &destination)
{
    const TransfFiles *files = clip_files();
    if (files == nullptr)
        return;
    const int op = files->cut ? FOP_MOVE : FOP_COPY;
    std::vector<FileListRecord> lists; // a job may change the clipboard
    for (const FileListRecord &list : files->lists)
        if (destination != list.directory)
            lists.push_back(transf_own(list));
    file_op_all(op, std::move(lists), destination);
}

void x_tell(ClipAnswer answer)
{
    if (gBase == nullptr)
        return;
    const QString why =
        answer == ClipAnswer::changed
            ? QStringLiteral("The clipboard changed before its files were known.")
            : QStringLiteral("The program that owns the clipboard does not answer.");
    WQuestion question;
    question.title = QStringLiteral("Paste");
    question.text = why + QStringLiteral("\nNothing was pasted.");
    question.buttons = {QStringLiteral("&Continue")};
    wquestion(gBase, question, [](int) {});
}

void x_answered(ClipAnswer answer)
{
    const std::vector<std::string> places = std::exchange(sPlaces, {});
    if (answer != ClipAnswer::known)
        x_tell(answer);
    else
        for (const std::string &place : places)
            x_paste(place);
}

} // namespace

int em_paste(QWidget *)
{
    if (!gDir.has_path)
        return W_CONTINUE;
    // Pressed again for want of an answer it is meant once.
    if (std::find(sPlaces.begin(), sPlaces.end(), gDir.path) == sPlaces.end())
        sPlaces.push_back(gDir.path);
    if (sPlaces.size() == 1)
        clip_when_known(x_answered);
    return W_CONTINUE;
}

} // namespace tav
