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

// Moves the cursor to a row; without Ctrl the selection goes along, with Shift it is extended.
void x_move(int row, Qt::KeyboardModifiers modifiers)
{
    const int index = fl_row_index(std::clamp(row, 0, fl_row_count() - 1));
    if (index == DIR_NONE)
        return;
    const bool ctrl = modifiers & Qt::ControlModifier;
    fl_timer_disable();
    if (modifiers & Qt::ShiftModifier) {
        const int anchor = fl_select_anchor();
        const int from = anchor != DIR_NONE ? anchor : gDir.current;
        fl_select_set_anchor(from != DIR_NONE ? from : index);
        fl_select_range_begin(fl_select_anchor(), ctrl, true);
        fl_select_range_to(index);
        fl_select_range_end();
    } else if (!ctrl) {
        fl_select_only(index);
        fl_select_set_anchor(index);
    } else {
        fl_select_set_anchor(index);
    }
    fl_goto_index(index);
}

void x_toggle(bool move)
{
    const int index = gDir.current;
    fl_timer_disable();
    fl_invert_index(index);
    fl_select_set_anchor(index);
    if (move)
        x_move(fl_row_of_index(index) + 1, Qt::ControlModifier);
}

void x_scroll_sideways(FlView &view, int steps)
{
    QScrollBar *bar = view.horizontalScrollBar();
    bar->setValue(bar->value() + steps * bar->singleStep());
}

// The row that a cursor key leads to; it may lie outside.
int x_target(const FlView &view, int key)
{
    const int row = fl_row_of_index(gDir.current);
    const int page = std::max(1, view.rows_per_page() - 1);
    switch (key) {
    case Qt::Key_Up:
        return row - 1;
    case Qt::Key_Down:
        return row + 1;
    case Qt::Key_PageUp:
        return row - page;
    case Qt::Key_PageDown:
        return row + page;
    case Qt::Key_Home:
        return 0;
    default:
        return fl_row_count() - 1; // End
    }
}

bool x_is_move(int key)
{
    return key == Qt::Key_Up || key == Qt::Key_Down || key == Qt::Key_PageUp ||
           key == Qt::Key_PageDown || key == Qt::Key_Home || key == Qt::Key_End;
}

bool x_navigate(FlView &view, const QKeyEvent &event)
{
    const Qt::KeyboardModifiers modifiers = event.modifiers();
    if (x_is_move(event.key())) {
        x_move(x_target(view, event.key()), modifiers);
        return true;
    }
    switch (event.key()) {
    case Qt::Key_Space:
        x_toggle(!(modifiers & Qt::ControlModifier));
        return true;
    case Qt::Key_Left:
        x_scroll_sideways(view, -1);
        return true;
    case Qt::Key_Right:
        x_scroll_sideways(view, 1);
        return true;
    default:
        return false;
    }
}

} // namespace

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
    if (x_is_enter(event) || x_is_move(event.key()))
        return true;
    if (event.key() == Qt::Key_Backspace || event.key() == Qt::Key_Escape)
        return x_is_typing();
    return !event.text().isEmpty() && event.text().at(0).isPrint();
}

} // namespace tav
