// The worker's questions and notices.
#include "fileops/fop_internal.h"

#include <cstdarg>
#include <cstring>

namespace tav {
namespace {

constexpr size_t TEXT_SIZE = 1024;          // bytes of a message, its end included
constexpr char LINE_END[] = "\xE2\x90\x8A"; // a visible one: those of names are not obeyed

// At most TEXT_SIZE - 1 bytes, cut between two characters.
std::string x_cut(std::string text)
{
    if (text.size() < TEXT_SIZE)
        return text;
    size_t end = TEXT_SIZE - 1;
    while (end > TEXT_SIZE - 4 && (text[end] & 0xC0) == 0x80)
        end--;
    text.resize((text[end] & 0xC0) == 0x80 ? TEXT_SIZE - 1 : end);
    return text;
}

// Formats a message; of all conversions there is only "%s". What it says in lines is ours alone.
std::string x_format(const char *format, va_list arguments)
{
    std::string text;
    for (const char *at = format; *at; at++) {
        if (at[0] != '%' || at[1] != 's') {
            text += *at;
            continue;
        }
        at++;
        for (const char *byte = va_arg(arguments, const char *); *byte; byte++) {
            if (*byte == '\n')
                text += LINE_END;
            else
                text += *byte;
        }
    }
    return x_cut(std::move(text));
}

} // namespace

void fop_alert_buttons(FopAlert &alert, const char *buttons)
{
    alert.labels.clear();
    alert.on_return = 1;
    alert.on_close = 0;
    for (const char *at = buttons; *at;) {
        size_t length = std::strcspn(at, "|,");
        if (length > 0) {
            int number = static_cast<int>(alert.labels.size()) + 1;
            bool marked = *at == '@' || *at == '#';
            if (*at == '@')
                alert.on_return = number;
            if (*at == '#')
                alert.on_close = number;
            alert.labels.emplace_back(at + marked, length - marked);
        }
        at += length;
        at += *at != '\0';
    }
    if (alert.on_close == 0)
        alert.on_close = static_cast<int>(alert.labels.size());
}

namespace {

int x_alert(FileOp *job, const char *title, const char *buttons, std::string text)
{
    FopAlert alert;
    alert.title = title;
    alert.text = std::move(text);
    fop_alert_buttons(alert, buttons);
    {
        std::lock_guard hold(job->progress.lock);
        job->progress.at_once = true; // the slot is to show the latest state beside the question
        job->progress.changes++;
    }
    job->progress.asking = true;
    int answer = job->report->alert(job, alert);
    job->progress.asking = false;
    return answer;
}

} // namespace

int fop_alert(FileOp *job, const char *title, const char *buttons, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    std::string text = x_format(format, arguments);
    va_end(arguments);
    return x_alert(job, title, buttons, std::move(text));
}

FopCopied fop_ask_error(FileOp *job, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    std::string text = x_format(format, arguments);
    va_end(arguments);
    int answer = x_alert(job, "Copy/Move", "&Continue|&Abort", std::move(text));
    return answer == FOP_ANSWER_ABORT ? FOP_END : FOP_SKIPPED;
}

void fop_errinfo(FileOp *job, const char *title, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    std::string text = x_format(format, arguments);
    va_end(arguments);
    job->progress.asking = true;
    job->report->notice(job, title, text.c_str());
    job->progress.asking = false;
}

void fop_ENOMEM(FileOp *job) { fop_errinfo(job, "Memory Allocation", "Out of memory!"); }

int fop_ask(FileOp *job)
{
    bool move = job->op == FOP_MOVE;
    int answer = fop_alert(job, move ? "Move" : "Copy", "&Files|@&Links|#&Abort",
                           "Symbolic links detected in the file list\nWhat do you want to %s ?",
                           move ? "move" : "copy");
    if (answer == 1)
        return static_cast<int>(FOP_FOLLOW);
    if (answer == 2)
        return static_cast<int>(FOP_LINKS);
    return -1;
}

} // namespace tav
