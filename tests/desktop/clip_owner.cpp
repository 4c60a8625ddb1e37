// Owns the clipboard of the display with forms from files, well or badly. For tests; ends when
// somebody else takes the clipboard. Tells each request on its standard output.
// Usage: clip_owner [--silent | --no-data | --dribble] MIME=FILE...
//   --silent   answers nothing at all
//   --no-data  says what there is, and gives none of it
//   --dribble  gives it byte by byte, one in a second
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <list>
#include <map>
#include <memory>
#include <poll.h>
#include <string>
#include <vector>
#include <xcb/xcb.h>

namespace {

constexpr size_t PIECE = 64 * 1024;      // bytes given at once
constexpr size_t WHOLE = 2 * PIECE;      // longer forms are given piece by piece
constexpr uint32_t CLAIMED = 0xFFFFFFFF; // how long they are said to be
constexpr int DRIBBLE_MS = 1000;

enum class Manner { GOOD, SILENT, NO_DATA, DRIBBLE };

// A form that is being given piece by piece.
struct Transfer {
    xcb_window_t window;
    xcb_atom_t property, type;
    const std::string *data;
    size_t given;
    bool wanted; // the last piece was taken
};

xcb_connection_t *sServer;
Manner sManner = Manner::GOOD;
std::map<xcb_atom_t, std::string> sForms;
std::map<xcb_atom_t, std::string> sNames;
std::list<Transfer> sTransfers;
xcb_atom_t sTargets, sIncr;

xcb_atom_t x_atom(const std::string &name)
{
    auto cookie = xcb_intern_atom(sServer, 0, static_cast<uint16_t>(name.size()), name.c_str());
    auto *reply = xcb_intern_atom_reply(sServer, cookie, nullptr);
    const xcb_atom_t atom = reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
    free(reply);
    sNames[atom] = name;
    return atom;
}

void x_set(xcb_window_t window, xcb_atom_t property, xcb_atom_t type, const char *data, size_t size)
{
    xcb_change_property(sServer, XCB_PROP_MODE_REPLACE, window, property, type, 8,
                        static_cast<uint32_t>(size), data);
}

void x_give_targets(const xcb_selection_request_event_t &event)
{
    std::vector<xcb_atom_t> atoms = {sTargets};
    for (const auto &form : sForms)
        atoms.push_back(form.first);
    xcb_change_property(sServer, XCB_PROP_MODE_REPLACE, event.requestor, event.property,
                        XCB_ATOM_ATOM, 32, static_cast<uint32_t>(atoms.size()), atoms.data());
}

void x_give_form(const xcb_selection_request_event_t &event, const std::string &data)
{
    if (data.size() <= WHOLE && sManner != Manner::DRIBBLE) {
        x_set(event.requestor, event.property, event.target, data.data(), data.size());
        return;
    }
    const uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(sServer, event.requestor, XCB_CW_EVENT_MASK, &mask);
    xcb_change_property(sServer, XCB_PROP_MODE_REPLACE, event.requestor, event.property, sIncr, 32,
                        1, &CLAIMED);
    sTransfers.push_back({event.requestor, event.property, event.target, &data, 0, false});
}

void x_request(const xcb_selection_request_event_t &event)
{
    printf("asked for %s\n", sNames[event.target].c_str());
    fflush(stdout);
    const auto form = sForms.find(event.target);
    const bool targets = event.target == sTargets;
    if (sManner == Manner::SILENT || (sManner == Manner::NO_DATA && !targets))
        return;
    xcb_selection_notify_event_t answer = {};
    answer.response_type = XCB_SELECTION_NOTIFY;
    answer.time = event.time;
    answer.requestor = event.requestor;
    answer.selection = event.selection;
    answer.target = event.target;
    answer.property = event.property;
    if (targets)
        x_give_targets(event);
    else if (form != sForms.end())
        x_give_form(event, form->second);
    else
        answer.property = XCB_ATOM_NONE;
    xcb_send_event(sServer, 0, event.requestor, 0, reinterpret_cast<const char *>(&answer));
}

// Gives the next piece of what is wanted. The empty piece is the last one.
void x_go_on()
{
    for (auto at = sTransfers.begin(); at != sTransfers.end();) {
        if (!at->wanted) {
            ++at;
            continue;
        }
        const size_t most = sManner == Manner::DRIBBLE ? 1 : PIECE;
        const size_t size = std::min(most, at->data->size() - at->given);
        x_set(at->window, at->property, at->type, at->data->data() + at->given, size);
        at->given += size;
        at->wanted = false;
        at = size == 0 ? sTransfers.erase(at) : std::next(at);
    }
}

// False when the clipboard is somebody else's now.
bool x_event(const xcb_generic_event_t &event)
{
    switch (event.response_type & 0x7F) {
    case XCB_SELECTION_CLEAR:
        return false;
    case XCB_SELECTION_REQUEST:
        x_request(reinterpret_cast<const xcb_selection_request_event_t &>(event));
        break;
    case XCB_PROPERTY_NOTIFY: {
        const auto &change = reinterpret_cast<const xcb_property_notify_event_t &>(event);
        for (Transfer &transfer : sTransfers)
            if (transfer.window == change.window && transfer.property == change.atom &&
                change.state == XCB_PROPERTY_DELETE)
                transfer.wanted = true;
        break;
    }
    default:
        break;
    }
    return true;
}

void x_serve()
{
    for (;;) {
        while (auto *event = xcb_poll_for_event(sServer)) {
            const bool ours = x_event(*event);
            free(event);
            if (!ours)
                return;
        }
        if (xcb_connection_has_error(sServer))
            return;
        if (sManner != Manner::DRIBBLE)
            x_go_on();
        xcb_flush(sServer);
        pollfd ready = {xcb_get_file_descriptor(sServer), POLLIN, 0};
        if (poll(&ready, 1, DRIBBLE_MS) == 0)
            x_go_on();
        xcb_flush(sServer);
    }
}

void x_argument(const std::string &word)
{
    if (word == "--silent")
        sManner = Manner::SILENT;
    else if (word == "--no-data")
        sManner = Manner::NO_DATA;
    else if (word == "--dribble")
        sManner = Manner::DRIBBLE;
    else if (const size_t equals = word.find('='); equals != word.npos) {
        std::ifstream in(word.substr(equals + 1), std::ios::binary);
        sForms[x_atom(word.substr(0, equals))] =
            std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }
}

} // namespace

int main(int argc, char **argv)
{
    sServer = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(sServer))
        return 1;
    sTargets = x_atom("TARGETS");
    sIncr = x_atom("INCR");
    for (int i = 1; i < argc; i++)
        x_argument(argv[i]);
    const xcb_screen_t *screen = xcb_setup_roots_iterator(xcb_get_setup(sServer)).data;
    const xcb_window_t window = xcb_generate_id(sServer);
    xcb_create_window(sServer, 0, window, screen->root, 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                      XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_set_selection_owner(sServer, window, x_atom("CLIPBOARD"), XCB_CURRENT_TIME);
    xcb_flush(sServer);
    puts("ready");
    fflush(stdout);
    x_serve();
    return 0;
}
