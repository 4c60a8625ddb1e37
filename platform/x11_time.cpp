// Keeps times of another program's invention away from the toolkit.
#include "platform/x11_time.h"

#include <QAbstractNativeEventFilter>
#include <QGuiApplication>
#include <chrono>
#include <cstdlib>
#include <memory>
#include <xcb/xcb.h>

namespace tav {

namespace {

int32_t x_after(uint32_t a, uint32_t b) { return static_cast<int32_t>(a - b); }

uint32_t x_now()
{
    using namespace std::chrono;
    const auto now = steady_clock::now().time_since_epoch();
    return static_cast<uint32_t>(duration_cast<milliseconds>(now).count());
}

template <typename T>
using Reply = std::unique_ptr<T, decltype(&free)>;

std::function<QByteArray(const QByteArray &)> sForm; // of what is dragged

xcb_connection_t *x_server()
{
    const auto *x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 ? x11->connection() : nullptr;
}

QByteArray x_atom_name(xcb_atom_t atom)
{
    const Reply<xcb_get_atom_name_reply_t> reply(
        xcb_get_atom_name_reply(x_server(), xcb_get_atom_name(x_server(), atom), nullptr), free);
    return reply ? QByteArray(xcb_get_atom_name_name(reply.get()),
                              xcb_get_atom_name_name_length(reply.get()))
                 : QByteArray();
}

// Answers a request for what is dragged; false when it is for something else.
bool x_answer(const xcb_selection_request_event_t &request)
{
    if (!sForm || x_atom_name(request.selection) != "XdndSelection")
        return false;
    const QByteArray bytes = sForm(x_atom_name(request.target));
    // One piece: what is longer than the server takes is refused.
    const auto most = qint64(xcb_get_maximum_request_length(x_server())) * 4 - 64;
    const bool given = !bytes.isEmpty() && bytes.size() <= most;
    if (given)
        xcb_change_property(x_server(), XCB_PROP_MODE_REPLACE, request.requestor, request.property,
                            request.target, 8, static_cast<uint32_t>(bytes.size()), bytes.data());
    xcb_selection_notify_event_t answer = {};
    answer.response_type = XCB_SELECTION_NOTIFY;
    answer.time = request.time;
    answer.requestor = request.requestor;
    answer.selection = request.selection;
    answer.target = request.target;
    answer.property = given ? request.property : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
    xcb_send_event(x_server(), 0, request.requestor, XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char *>(&answer));
    xcb_flush(x_server());
    return true;
}

class Guard : public QAbstractNativeEventFilter {
public:
    bool nativeEventFilter(const QByteArray &type, void *message, qintptr *) override
    {
        if (type != "xcb_generic_event_t")
            return false;
        auto *event = static_cast<xcb_generic_event_t *>(message);
        switch (event->response_type) { // sent by the server itself
        case XCB_KEY_PRESS:
        case XCB_KEY_RELEASE:
        case XCB_BUTTON_PRESS:
        case XCB_BUTTON_RELEASE:
            m_clock.saw(reinterpret_cast<xcb_key_press_event_t *>(event)->time, x_now());
            break;
        case XCB_PROPERTY_NOTIFY:
            m_clock.saw(reinterpret_cast<xcb_property_notify_event_t *>(event)->time, x_now());
            break;
        case XCB_SELECTION_REQUEST:
            return deal_with(*reinterpret_cast<xcb_selection_request_event_t *>(event));
        default:
            break;
        }
        return false;
    }

private:
    // True when the toolkit need not see it any more.
    bool deal_with(xcb_selection_request_event_t &request) const
    {
        if (request.time == XCB_CURRENT_TIME || !m_clock.is_ahead(request.time, x_now()))
            return false;
        if (x_answer(request))
            return true;
        request.time = XCB_CURRENT_TIME;
        return false;
    }

    X11Clock m_clock;
};

} // namespace

void x11_time_set_drag(std::function<QByteArray(const QByteArray &mime)> form)
{
    sForm = std::move(form);
}

void X11Clock::saw(uint32_t server, uint32_t local)
{
    const uint32_t lead = server - local; // events only come late: the largest is the truest
    if (!m_known || x_after(lead, m_lead) > 0)
        m_lead = lead;
    m_known = true;
}

bool X11Clock::is_ahead(uint32_t server, uint32_t local) const
{
    return m_known && x_after(server, local + m_lead) > X11_TIME_LEAD_MS;
}

void x11_time_guard()
{
    static Guard guard;
    if (QGuiApplication::platformName() == QLatin1String("xcb"))
        qGuiApp->installNativeEventFilter(&guard);
}

} // namespace tav
