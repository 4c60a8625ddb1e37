// Which came first, the user's key or another program's taking of the clipboard.
#include "commands/clip_order.h"

#include <QAbstractNativeEventFilter>
#include <QGuiApplication>
#include <QInputEvent>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string_view>
#include <xcb/xcb.h>

namespace tav {

namespace {

using ServerTime = uint32_t; // in ms, begins anew after 49 days

std::optional<ServerTime> sTaken; // when another program took the clipboard last
std::optional<ServerTime> sInput; // of the key or click that is being dealt with

template <typename T>
using Reply = std::unique_ptr<T, decltype(&free)>;

// What the server's XFIXES extension sends when somebody takes a selection.
struct SelectionNotify {
    uint8_t response_type;
    uint8_t subtype;
    uint16_t sequence;
    xcb_window_t window;
    xcb_window_t owner;
    xcb_atom_t selection;
    xcb_timestamp_t timestamp;
    xcb_timestamp_t selection_timestamp;
};

class TakingWatch : public QAbstractNativeEventFilter {
public:
    explicit TakingWatch(xcb_connection_t *server)
        : m_server(server), m_fixes(xcb_query_extension(server, FIXES.size(), FIXES.data())),
          m_atom(xcb_intern_atom(server, 0, CLIPBOARD.size(), CLIPBOARD.data()))
    {}

    bool nativeEventFilter(const QByteArray &, void *message, qintptr *) override
    {
        if (!m_answered)
            take_answers();
        const auto *event = static_cast<const SelectionNotify *>(message);
        if (m_event != 0 && (event->response_type & 0x7F) == m_event &&
            event->selection == m_clipboard && !is_ours(event->owner))
            sTaken = event->timestamp;
        return false;
    }

private:
    static constexpr std::string_view FIXES = "XFIXES", CLIPBOARD = "CLIPBOARD";

    // With the first event the answers are there already, as a rule.
    void take_answers()
    {
        m_answered = true;
        const Reply<xcb_query_extension_reply_t> fixes(
            xcb_query_extension_reply(m_server, m_fixes, nullptr), free);
        const Reply<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(m_server, m_atom, nullptr),
                                                  free);
        if (!fixes || !fixes->present || !atom)
            return;
        m_event = fixes->first_event;
        m_clipboard = atom->atom;
    }

    // A connection's windows are those with its number in them.
    bool is_ours(xcb_window_t window) const
    {
        const xcb_setup_t *setup = xcb_get_setup(m_server);
        return (window & ~setup->resource_id_mask) == setup->resource_id_base;
    }

    xcb_connection_t *m_server;
    xcb_query_extension_cookie_t m_fixes;
    xcb_intern_atom_cookie_t m_atom;
    bool m_answered = false;
    uint8_t m_event = 0; // the first of the extension's, which is this one; 0: it has none
    xcb_atom_t m_clipboard = XCB_ATOM_NONE;
};

// Keeps the time of a key or click until it has been dealt with.
class InputWatch : public QObject {
public:
    using QObject::QObject;

    bool eventFilter(QObject *, QEvent *event) override
    {
        switch (event->type()) {
        case QEvent::KeyPress:
        case QEvent::ShortcutOverride:
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
            note(static_cast<QInputEvent *>(event)->timestamp());
            break;
        default:
            break;
        }
        return false;
    }

private:
    void note(quint64 time)
    {
        if (time == 0) // made by a program, not by a person at the server
            return;
        if (!sInput)
            QMetaObject::invokeMethod(
                this, [] { sInput.reset(); }, Qt::QueuedConnection);
        sInput = static_cast<ServerTime>(time);
    }
};

} // namespace

void clip_order_setup()
{
    const auto *x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (x11 == nullptr || x11->connection() == nullptr)
        return;
    static TakingWatch taking(x11->connection());
    qGuiApp->installNativeEventFilter(&taking);
    qGuiApp->installEventFilter(new InputWatch(qGuiApp));
}

void clip_order_is_ours() { sTaken.reset(); }

bool clip_order_is_later()
{
    return sTaken && sInput && static_cast<int32_t>(*sTaken - *sInput) >= 0;
}

} // namespace tav
