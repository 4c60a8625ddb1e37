// Fetching the files on the clipboard from an X server. One fetch is one connection, one window and
// one property; every wait has an end and looks at cancel several times a second.
#include "commands/clip_x11.h"
#include "commands/uri.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <mutex>
#include <poll.h>
#include <vector>
#include <xcb/xcb.h>

namespace tav {

namespace {

using Clock = std::chrono::steady_clock;

constexpr int LOOK_MS = 50;                // how often a wait looks at cancel
constexpr uint32_t PIECE = 256 * 1024 / 4; // 4-byte units fetched from the server at once
constexpr size_t MAX_BYTES = std::max(TRANSF_MAX_BYTES, URI_MAX_BYTES) + 1;

struct Free {
    void operator()(void *p) const { free(p); }
};
template <typename T>
using Reply = std::unique_ptr<T, Free>;

// One fetch.
struct Fetch {
    xcb_connection_t *server;
    const std::atomic<bool> *cancel;
    xcb_window_t window;
    xcb_atom_t clipboard, targets, incr, property;
    Clock::time_point end; // of all waiting
    bool late;             // an answer did not come in time
    bool over;             // that, or one was too much: nothing more is asked
};

xcb_atom_t x_atom(xcb_connection_t *server, const char *name)
{
    auto cookie = xcb_intern_atom(server, 0, static_cast<uint16_t>(strlen(name)), name);
    Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(server, cookie, nullptr));
    return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

// The next event, null when the time is over, the server is gone or the fetch was cancelled.
Reply<xcb_generic_event_t> x_next_event(Fetch &fetch, Clock::time_point end)
{
    for (;;) {
        Reply<xcb_generic_event_t> event(xcb_poll_for_event(fetch.server));
        if (event)
            return event;
        fetch.late = fetch.late || Clock::now() >= end;
        fetch.over = fetch.over || fetch.late;
        if (*fetch.cancel || fetch.over || xcb_connection_has_error(fetch.server))
            return nullptr;
        pollfd ready = {xcb_get_file_descriptor(fetch.server), POLLIN, 0};
        poll(&ready, 1, LOOK_MS);
    }
}

// Waits for an event of the type that check accepts.
template <typename Event, typename Check>
bool x_wait(Fetch &fetch, uint8_t type, Check check)
{
    const auto end =
        std::min(fetch.end, Clock::now() + std::chrono::milliseconds(CLIP_X11_WAIT_MS));
    while (Reply<xcb_generic_event_t> event = x_next_event(fetch, end))
        if ((event->response_type & 0x7F) == type && check(*reinterpret_cast<Event *>(event.get())))
            return true;
    return false;
}

// Appends what the property holds and deletes it. type gets the property's type.
bool x_take_property(Fetch &fetch, std::string &out, xcb_atom_t &type)
{
    uint32_t offset = 0;
    for (;;) {
        auto cookie = xcb_get_property(fetch.server, 0, fetch.window, fetch.property,
                                       XCB_GET_PROPERTY_TYPE_ANY, offset, PIECE);
        Reply<xcb_get_property_reply_t> reply(
            xcb_get_property_reply(fetch.server, cookie, nullptr));
        if (!reply)
            return false;
        type = reply->type;
        const int size = xcb_get_property_value_length(reply.get());
        out.append(static_cast<const char *>(xcb_get_property_value(reply.get())),
                   static_cast<size_t>(size));
        fetch.over = fetch.over || out.size() > MAX_BYTES;
        if (fetch.over || *fetch.cancel)
            return false;
        if (reply->bytes_after == 0)
            break;
        offset += static_cast<uint32_t>(size) / 4;
    }
    xcb_delete_property(fetch.server, fetch.window, fetch.property);
    xcb_flush(fetch.server);
    return true;
}

// Pieces follow each other, each announced by a change of the property, the last one empty.
bool x_take_pieces(Fetch &fetch, std::string &out)
{
    out.clear();
    for (;;) {
        const bool came = x_wait<xcb_property_notify_event_t>(
            fetch, XCB_PROPERTY_NOTIFY, [&fetch](const xcb_property_notify_event_t &event) {
                return event.atom == fetch.property && event.state == XCB_PROPERTY_NEW_VALUE;
            });
        const size_t before = out.size();
        xcb_atom_t type = XCB_ATOM_NONE;
        if (!came || !x_take_property(fetch, out, type))
            return false;
        if (out.size() == before)
            return true;
    }
}

// Asks the owner for one form.
bool x_convert(Fetch &fetch, xcb_atom_t target, std::string &out)
{
    out.clear();
    if (target == XCB_ATOM_NONE || fetch.over)
        return false;
    xcb_convert_selection(fetch.server, fetch.window, fetch.clipboard, target, fetch.property,
                          XCB_CURRENT_TIME);
    xcb_flush(fetch.server);
    bool given = false;
    const bool answered = x_wait<xcb_selection_notify_event_t>(
        fetch, XCB_SELECTION_NOTIFY, [&](const xcb_selection_notify_event_t &event) {
            given = event.property != XCB_ATOM_NONE;
            return event.target == target;
        });
    xcb_atom_t type = XCB_ATOM_NONE;
    if (!answered || !given || !x_take_property(fetch, out, type))
        return false;
    return type != fetch.incr || x_take_pieces(fetch, out);
}

std::vector<xcb_atom_t> x_targets(Fetch &fetch)
{
    std::string bytes;
    if (!x_convert(fetch, fetch.targets, bytes))
        return {};
    std::vector<xcb_atom_t> atoms(bytes.size() / sizeof(xcb_atom_t));
    if (!atoms.empty())
        memcpy(atoms.data(), bytes.data(), atoms.size() * sizeof(xcb_atom_t));
    return atoms;
}

int x_fetch_files(Fetch &fetch, TransfFiles &files)
{
    const std::vector<xcb_atom_t> offered = x_targets(fetch);
    auto get = [&](const char *mime, std::string &bytes) {
        const xcb_atom_t atom = x_atom(fetch.server, mime);
        return std::find(offered.begin(), offered.end(), atom) != offered.end() &&
               x_convert(fetch, atom, bytes);
    };
    if (transf_take_from(get, files) == 0)
        return 0;
    return fetch.late ? CLIP_X11_SILENT : -1;
}

int x_fetch_on(xcb_connection_t *server, const std::atomic<bool> &cancel, TransfFiles &files)
{
    const xcb_screen_t *screen = xcb_setup_roots_iterator(xcb_get_setup(server)).data;
    const auto end = Clock::now() + std::chrono::milliseconds(CLIP_X11_TOTAL_MS);
    Fetch fetch = {server, &cancel, xcb_generate_id(server), 0, 0, 0, 0, end, false, false};
    fetch.clipboard = x_atom(server, "CLIPBOARD");
    fetch.targets = x_atom(server, "TARGETS");
    fetch.incr = x_atom(server, "INCR");
    fetch.property = x_atom(server, "TAV_CLIPBOARD");
    const uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(server, 0, fetch.window, screen->root, 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK,
                      &events);
    return x_fetch_files(fetch, files);
}

void x_send(xcb_connection_t *server, ClipX11Note &note)
{
    xcb_client_message_event_t event = {};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = note.window;
    event.type = x_atom(server, "TAV_CLIPBOARD");
    event.data.data32[0] = note.number;
    // Without a mask it goes to whoever made the window. The answer is waited for: a connection
    // that closes with something unread loses what the server has not read yet.
    auto cookie = xcb_send_event_checked(server, 0, note.window, XCB_EVENT_MASK_NO_EVENT,
                                         reinterpret_cast<const char *>(&event));
    const Reply<xcb_generic_error_t> error(xcb_request_check(server, cookie));
    note.sent = !error && !xcb_connection_has_error(server);
}

// The library that knows the user's key to the server puts its file's name together in a static
// buffer.
xcb_connection_t *x_connect(const char *display)
{
    static std::mutex one_at_a_time;
    const std::lock_guard hold(one_at_a_time);
    return xcb_connect(display, nullptr);
}

} // namespace

int clip_x11_fetch(const char *display, const std::atomic<bool> &cancel, TransfFiles &files,
                   ClipX11Note &note)
{
    note.sent = false;
    xcb_connection_t *server = x_connect(display);
    int result = -1;
    if (!xcb_connection_has_error(server)) {
        result = x_fetch_on(server, cancel, files);
        if (note.window != 0)
            x_send(server, note);
    }
    xcb_disconnect(server);
    return result;
}

} // namespace tav
