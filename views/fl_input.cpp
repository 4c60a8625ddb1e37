// What the keyboard does on the list. The key interpreter comes first; what it does not take moves
// the cursor or opens.
#include "views/fl_input.h"

#include "model/dir.h"
#include "views/fl.h"
#include "views/fl_select.h"
#include "views/fl_view.h"

#include <QKeyEvent>
#include <QScrollBar>
#include <algorithm>

namespace tav {

namespace {

constexpr Qt::KeyboardModifiers sCommands =
    Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier; // keys with these are no typing

void x_clear_status()
{
    if (gDirHooks.status)
        gDirHooks.status("");
}

// With Shift it is another item's key.
bool x_is_enter(const QKeyEvent &event)
{
    return (event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter) &&
           !(event.modifiers() & Qt::ShiftModifier);
}

bool x_is_typing() { return gFlHooks.key_active && gFlHooks.key_active(); }

// True when the interpreter took the key.
bool x_interpret(const QKeyEvent &event)
{
    const int taken = gFlHooks.key ? gFlHooks.key(event) : 0;
    if (taken == 0)
        return false;
    fl_status_flush(); // or it would wipe out what is shown now
    if (taken > 0) {
        fl_timer_set();
        if (gFlHooks.key_echo)
            gFlHooks.key_echo();
    } else {
        fl_timer_disable();
        x_clear_status();
    }
    return true;
}

void x_move(int row, const FlMoveMode &mode)
{
    const int rows = fl_row_count();
    if (rows == 0)
        return;
    const int index = fl_row_index(std::clamp(row, 0, rows - 1));
    int anchor = index;
    fl_timer_disable();
    if (mode.extends) {
        const int from = fl_select_anchor() != DIR_NONE ? fl_select_anchor() : gDir.current;
        anchor = from != DIR_NONE ? from : index;
        fl_select_range_begin(anchor, mode.keeps, true);
        fl_select_range_to(index);
        fl_select_range_end();
    } else if (!mode.keeps) {
        fl_select_only(index);
    }
    fl_goto_index(index);
    fl_select_set_anchor(anchor);
}

// The mode of a move with these modifiers; the last one asks for all of them.
const FlMoveMode &x_move_mode(Qt::KeyboardModifiers modifiers)
{
    const FlMoveMode *mode = gFlMoveModes;
    while ((modifiers & (Qt::ControlModifier | Qt::ShiftModifier)) != mode->modifiers)
        mode++;
    return *mode;
}

void x_toggle(FlView &)
{
    const int index = gDir.current;
    fl_timer_disable();
    fl_invert_index(index);
    fl_select_set_anchor(index);
}

void x_toggle_and_go_on(FlView &view)
{
    x_toggle(view);
    x_move(fl_row_of_index(gDir.current) + 1, x_move_mode(Qt::ControlModifier));
}

void x_scroll_sideways(FlView &view, int steps)
{
    QScrollBar *bar = view.horizontalScrollBar();
    bar->setValue(bar->value() + steps * bar->singleStep());
}

int x_page(const FlView &view) { return std::max(1, view.rows_per_page() - 1); }

const FlMove *x_find_move(int key)
{
    for (const FlMove *move = gFlMoves; move->name; move++) {
        if (move->key == key)
            return move;
    }
    return nullptr;
}

bool x_navigate(FlView &view, const QKeyEvent &event)
{
    if (const FlMove *move = x_find_move(event.key())) {
        x_move(move->target(view, fl_row_of_index(gDir.current)), x_move_mode(event.modifiers()));
        return true;
    }
    const Qt::KeyboardModifiers ctrl = event.modifiers() & Qt::ControlModifier;
    for (const FlKey *row = gFlKeys; row->name; row++) {
        if (row->key != event.key() || row->modifiers != ctrl || !row->act)
            continue;
        row->act(view);
        return true;
    }
    return false;
}

} // namespace

const FlMove gFlMoves[] = {
    {Qt::Key_Up, "Up", "one row up", [](const FlView &, int row) { return row - 1; }},
    {Qt::Key_Down, "Down", "one row down", [](const FlView &, int row) { return row + 1; }},
    {Qt::Key_PageUp, "PgUp", "one page up",
     [](const FlView &view, int row) { return row - x_page(view); }},
    {Qt::Key_PageDown, "PgDn", "one page down",
     [](const FlView &view, int row) { return row + x_page(view); }},
    {Qt::Key_Home, "Home", "to the first row", [](const FlView &, int) { return 0; }},
    {Qt::Key_End, "End", "to the last row", [](const FlView &, int) { return fl_row_count() - 1; }},
    {0, nullptr, nullptr, nullptr},
};

const FlMoveMode gFlMoveModes[] = {
    {Qt::NoModifier, "", "Go and select", false, false},
    {Qt::ShiftModifier, "Shift-", "Select all on the way", true, false},
    {Qt::ControlModifier, "Ctrl-", "Go, leaving the selection,", false, true},
    {Qt::ControlModifier | Qt::ShiftModifier, "Ctrl-Shift-", "Add all on the way", true, true},
    {Qt::NoModifier, nullptr, nullptr, false, false},
};

const FlKey gFlKeys[] = {
    {Qt::Key_Space, Qt::NoModifier, "Space", "Select or unselect, then go one row down",
     x_toggle_and_go_on},
    {Qt::Key_Space, Qt::ControlModifier, "Ctrl-Space", "Select or unselect", x_toggle},
    {Qt::Key_Left, Qt::NoModifier, "Left", "Scroll left",
     [](FlView &view) { x_scroll_sideways(view, -1); }},
    {Qt::Key_Right, Qt::NoModifier, "Right", "Scroll right",
     [](FlView &view) { x_scroll_sideways(view, 1); }},
    {Qt::Key_Menu, Qt::NoModifier, "Menu", "Open the context menu", nullptr},
    {Qt::Key_Tab, Qt::NoModifier, "Tab", "Leave the list", nullptr},
    {0, Qt::NoModifier, nullptr, nullptr, nullptr},
};

bool fl_input_key(FlView &view, const QKeyEvent &event)
{
    if (fl_is_reading())
        return true; // cannot wait any more: it is dropped rather than acted on in a moving list
    const bool command = event.modifiers() & sCommands;
    if (!command && x_interpret(event))
        return true;
    if (!command && x_is_enter(event)) {
        if (!event.isAutoRepeat() &&
            gFlHooks.open) // a held key opens one thing, not all on the way
            gFlHooks.open();
        return true;
    }
    if (event.modifiers() & (Qt::AltModifier | Qt::MetaModifier))
        return false;
    return x_navigate(view, event);
}

void fl_input_text(FlView &view, const QString &text)
{
    for (char32_t character : text.toStdU32String()) {
        const int key = static_cast<int>(character < 0x100 ? QChar::toUpper(character)
                                                           : char32_t{Qt::Key_unknown});
        const QKeyEvent typed(QEvent::KeyPress, key, Qt::NoModifier,
                              QString::fromUcs4(&character, 1));
        fl_input_key(view, typed);
    }
}

bool fl_input_overrides(const QKeyEvent &event)
{
    if (event.modifiers() & sCommands)
        return false;
    if (x_is_enter(event) || x_find_move(event.key()))
        return true;
    if (event.key() == Qt::Key_Backspace || event.key() == Qt::Key_Escape)
        return x_is_typing();
    return !event.text().isEmpty() && event.text().at(0).isPrint();
}

} // namespace tav
