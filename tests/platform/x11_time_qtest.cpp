// The estimate of an X server's clock.
#include "platform/x11_time.h"

#include <QTest>

namespace tav {

class X11TimeTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void nothing_is_ahead_while_nothing_is_known()
    {
        const X11Clock clock;
        QVERIFY(!clock.is_ahead(1795289952, 1000));
    }

    void seconds_since_1970_are_ahead()
    {
        X11Clock clock;
        clock.saw(39056137, 1000);
        QVERIFY(clock.is_ahead(1795289952, 2000));
        QVERIFY(!clock.is_ahead(39056137, 2000));
    }

    void time_goes_on_without_events()
    {
        X11Clock clock;
        clock.saw(5000, 1000);
        const uint32_t hours = 5 * 3600 * 1000;
        QVERIFY(!clock.is_ahead(5000 + hours, 1000 + hours));
        QVERIFY(clock.is_ahead(5000 + hours, 1000));
    }

    void events_that_come_late_do_not_put_it_back()
    {
        X11Clock clock;
        clock.saw(5000, 1000);
        clock.saw(5000, 1000 + 2 * X11_TIME_LEAD_MS);
        QVERIFY(!clock.is_ahead(5000 + X11_TIME_LEAD_MS, 1000));
    }

    void clocks_begin_anew()
    {
        X11Clock clock;
        clock.saw(0xFFFFFFF0, 0xFFFFF000);
        QVERIFY(!clock.is_ahead(0x10, 0xFFFFF020));
        QVERIFY(clock.is_ahead(0x10 + 2 * X11_TIME_LEAD_MS, 0xFFFFF020));
    }
};

} // namespace tav

QTEST_MAIN(tav::X11TimeTest)
#include "x11_time_qtest.moc"
