// Keeps times of another program's invention away from the toolkit on an X server. A file manager
// of GTK asks for what is dragged to it with the seconds since 1970 for a time; the toolkit
// believes that, and from then on the server refuses whatever it wants to own in that far future:
// no copy reaches the clipboard, no drag another program. Main thread only.
#pragma once

#include <QByteArray>
#include <cstdint>
#include <functional>

namespace tav {

constexpr int32_t X11_TIME_LEAD_MS = 60000; // further ahead than that no clock is

// Begins to watch; does nothing elsewhere. Once, when the application exists.
void x11_time_guard();

// Gives one form (a MIME type) of what is being dragged or was dragged last, empty when there is
// none. The toolkit answers nobody who asks for a drag with a wrong time; the guard does by this.
void x11_time_set_drag(std::function<QByteArray(const QByteArray &mime)> form);

// What the server's clock shows at most, by the events of it so far.
class X11Clock {
public:
    // An event of that server time arrived at that local time, both in ms and beginning anew at
    // 2^32.
    void saw(uint32_t server, uint32_t local);

    // Whether no honest request can hold that time now. False while nothing is known.
    bool is_ahead(uint32_t server, uint32_t local) const;

private:
    bool m_known = false;
    uint32_t m_lead = 0; // of the server's clock before the local one
};

} // namespace tav
