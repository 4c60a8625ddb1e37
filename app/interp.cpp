// One interpreter for the program. Idle until a mode's character or a name is typed; a mode ends
// with Return, Escape, Backspace on an empty text, or when the list's time for keys is over.
#include "app/interp.h"

#include "commands/misc.h"
#include "platform/w.h"
#include "views/fl.h"

#include <QKeyEvent>
#include <QLabel>
#include <string>

namespace tav {

namespace {

constexpr size_t BUFFER_SIZE = 1024; // bytes of a typed text, a terminator included
constexpr unsigned FIND = FL_PREFIX;
constexpr unsigned FIND_SECOND = FL_PREFIX | FL_BACKWARD;

char sState;             // 0 idle; '/' find; '?' find, second mode; ':' command line
std::string sBuffer;     // typed since the mode began
std::string sLastSearch; // completed last with Return

// Whether the text is a character that begins a mode.
bool x_begins_mode(const std::string &bytes)
{
    if (bytes.size() != 1)
        return false;
    for (const InterpMode *mode = gInterpModes; mode->text; mode++) {
        if (mode->begin == bytes[0])
            return true;
    }
    return false;
}

int x_execute(const std::string &command)
{
    misc_run(command, 10, 111, 0);
    return 0;
}

void x_find(const std::string &text, int start, unsigned flags)
{
    fl_unselect_all(w_find("filelist"));
    fl_select_index(fl_goto(text.c_str(), start, flags));
}

int x_end()
{
    interp_clear();
    return -1;
}

int x_return()
{
    if (sState == 0)
        return 0;
    if (sState == ':') {
        const std::string command = sBuffer;
        interp_clear();
        x_execute(command);
        return -1;
    }
    if (!sBuffer.empty())
        sLastSearch = sBuffer;
    const bool open = sState == '/';
    x_find(sLastSearch, gDir.current, open ? FIND : FIND_SECOND);
    interp_clear();
    if (open)
        fl_open(gDir.current);
    return -1;
}

// After each key the first match of what is there so far.
int x_step()
{
    if (sState == '/')
        x_find(sBuffer, 0, FIND);
    else if (sState == '?')
        x_find(sBuffer, 0, FIND_SECOND);
    return 1;
}

int x_backspace()
{
    if (sBuffer.empty())
        return sState == 0 ? 0 : x_end();
    while (sBuffer.size() > 1 && (static_cast<unsigned char>(sBuffer.back()) & 0xC0) == 0x80)
        sBuffer.pop_back();
    sBuffer.pop_back();
    return x_step();
}

// Typing takes characters from blank to "z", and every one beyond ASCII.
bool x_is_typed(const QString &text)
{
    if (text.isEmpty())
        return false;
    const char16_t first = text.at(0).unicode();
    return (first >= 0x20 && first <= 0x7A) || (first > 0x7F && text.at(0).isPrint()) ||
           text.at(0).isSurrogate();
}

int x_character(const QString &text)
{
    if (!x_is_typed(text))
        return 0;
    const std::string bytes = text.toStdString();
    if (sState == 0 && x_begins_mode(bytes)) {
        sBuffer.clear();
        sState = bytes[0];
        return 1;
    }
    if (bytes == " " && sBuffer.empty())
        return sState == 0 ? 0 : 1;
    if (sBuffer.size() + bytes.size() < BUFFER_SIZE)
        sBuffer += bytes;
    if (sState == 0)
        sState = '/';
    return x_step();
}

} // namespace

const InterpMode gInterpModes[] = {
    {'\0', "a ... z", "Find the first name that begins with what is typed"},
    {'/', "/", "Find a name; Return opens it"},
    {'?', "?", "Find a name; Return selects it"},
    {':', ":", "Run a command line; Return starts it"},
    {'\0', "Bksp", "Take back the last character typed"},
    {'\0', "Esc", "Forget what was typed"},
    {'\0', nullptr, nullptr},
};

int interp_key(const QKeyEvent &event)
{
    if (event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier))
        return 0;
    switch (event.key()) {
    case Qt::Key_Escape:
        return sState == 0 ? 0 : x_end();
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return x_return();
    case Qt::Key_Backspace:
        return x_backspace();
    default:
        return x_character(event.text());
    }
}

void interp_clear()
{
    sState = 0;
    sBuffer.clear();
}

void interp_echo()
{
    QWidget *status = w_find("status1");
    if (sState == 0)
        wprintf(status, "%s", "");
    else
        wprintf(status, "%c%s", sState, sBuffer.c_str());
}

bool interp_active() { return sState != 0; }

} // namespace tav
