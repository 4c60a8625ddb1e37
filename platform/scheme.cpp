// Light or dark, as the desktop wishes.
#include "platform/scheme.h"

#include "platform/ui_gate.h"
#include "platform/worker.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QPalette>
#include <QStyle>

namespace tav {

namespace {

constexpr const char *sService = "org.freedesktop.portal.Desktop";
constexpr const char *sPath = "/org/freedesktop/portal/desktop";
constexpr const char *sInterface = "org.freedesktop.portal.Settings";
constexpr const char *sNamespace = "org.freedesktop.appearance";
constexpr const char *sKey = "color-scheme";
constexpr unsigned sPrefersDark = 1;

QPalette x_dark_palette()
{
    const QColor window(0x2b, 0x2d, 0x30), base(0x1f, 0x21, 0x23), text(0xdf, 0xe1, 0xe4);
    const QColor grey(0x86, 0x8a, 0x90), accent(0x2f, 0x6f, 0xb5);
    QPalette palette(window);
    palette.setColor(QPalette::Window, window);
    palette.setColor(QPalette::Base, base);
    palette.setColor(QPalette::AlternateBase, QColor(0x25, 0x27, 0x2a));
    palette.setColor(QPalette::ToolTipBase, window);
    palette.setColor(QPalette::Button, QColor(0x35, 0x38, 0x3c));
    palette.setColor(QPalette::Highlight, accent);
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, QColor(0x6c, 0xb0, 0xf5));
    palette.setColor(QPalette::PlaceholderText, grey);
    for (const QPalette::ColorRole role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
        palette.setColor(role, text);
        palette.setColor(QPalette::Disabled, role, grey);
    }
    palette.setColor(QPalette::Disabled, QPalette::Highlight, QColor(0x45, 0x48, 0x4d));
    palette.setColor(QPalette::Disabled, QPalette::HighlightedText, grey);
    return palette;
}

void x_apply(bool dark)
{
    static bool sDark = false;
    if (dark == sDark)
        return;
    sDark = dark;
    QApplication::setPalette(dark ? x_dark_palette() : QApplication::style()->standardPalette());
}

// The portal nests the value in one variant or two.
void x_apply_value(QVariant value)
{
    while (value.canConvert<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    x_apply(value.toUInt() == sPrefersDark);
}

// Hears of changes while the program runs.
class SchemeListener : public QObject {
    Q_OBJECT

public Q_SLOTS:
    void changed(const QString &space, const QString &key, const QDBusVariant &value)
    {
        if (space == QLatin1String(sNamespace) && key == QLatin1String(sKey))
            x_apply_value(value.variant());
    }
};

void x_ask(QDBusConnection bus)
{
    static SchemeListener sListener;
    bus.connect(QString(), QLatin1String(sPath), QLatin1String(sInterface),
                QStringLiteral("SettingChanged"), &sListener,
                SLOT(changed(QString, QString, QDBusVariant)));
    QDBusMessage call =
        QDBusMessage::createMethodCall(QLatin1String(sService), QLatin1String(sPath),
                                       QLatin1String(sInterface), QStringLiteral("Read"));
    call << QLatin1String(sNamespace) << QLatin1String(sKey);
    auto *watcher = new QDBusPendingCallWatcher(bus.asyncCall(call), &sListener);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher, [watcher] {
        const QDBusPendingReply<QVariant> reply = *watcher;
        if (reply.isValid())
            x_apply_value(reply.value());
        watcher->deleteLater();
    });
}

} // namespace

void scheme_follow_desktop()
{
    const QByteArray wish = qgetenv("TAV_SCHEME");
    if (!wish.isEmpty()) {
        x_apply(wish == "dark");
        return;
    }
    const bool themed = QApplication::palette() != QApplication::style()->standardPalette();
    if (themed || qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS"))
        return;
    worker_start(
        [] { // connecting waits for the bus, which the start need not
            const QDBusConnection bus = QDBusConnection::sessionBus();
            if (bus.isConnected())
                ui_post([bus] { x_ask(bus); });
        },
        WORKER_STACK_LARGE);
}

} // namespace tav

#include "scheme.moc"
