// Fonts by a text. The text is the toolkit's own description of a font; it is looked at closely
// before the toolkit sees it, because the settings may hold anything.
#include "platform/fonts.h"

#include "platform/worker.h"

#include <QApplication>
#include <QFontDatabase>
#include <QStringList>
#include <cstring>
#include <fontconfig/fontconfig.h>
#include <mutex>
#include <pthread.h>
#include <sched.h>

namespace tav {
namespace {

constexpr char DESKTOP_FONT[] = "TextFont08";
constexpr int FIELDS_LEAST = 10; // family, point size, pixel size, hint, weight, five flags
constexpr int FIELDS_MOST = 17;
constexpr double POINTS_LEAST = 4; // what still can be read, and what still fits a row on a screen
constexpr double POINTS_MOST = 96;
constexpr int PIXELS_MOST = 256;

bool x_is_known_family(const QString &family)
{
    return QFontDatabase::families().contains(family, Qt::CaseInsensitive);
}

bool x_is_number(const QString &field, double least, double most)
{
    bool good = false;
    const double value = field.toDouble(&good);
    return good && value >= least && value <= most;
}

// Whether the fields describe a font that can be asked for.
bool x_is_usable(const QStringList &fields)
{
    if (fields.size() < FIELDS_LEAST || fields.size() > FIELDS_MOST ||
        !x_is_known_family(fields[0]))
        return false;
    const bool points = x_is_number(fields[1], POINTS_LEAST, POINTS_MOST);
    const bool pixels = x_is_number(fields[2], 1, PIXELS_MOST);
    if (!points && !(x_is_number(fields[1], -1, -1) && pixels))
        return false;
    if (!x_is_number(fields[4], 1, 1000) || !x_is_number(fields[5], 0, 2))
        return false;
    for (qsizetype i = 6; i < fields.size(); i++) {
        const bool style_name = i == 16;
        if (!style_name && !x_is_number(fields[i], -100, 1000))
            return false;
    }
    return true;
}

// The text of a font, empty when it does not fit or would be read back as another font.
QByteArray x_text(const QFont &font, size_t size)
{
    const QByteArray text = font.toString().toUtf8();
    const bool fits = static_cast<size_t>(text.size()) < size;
    return fits && fonts_from_name(text.constData(), size) == font ? text : QByteArray();
}

QByteArray x_bytes(const char *name, size_t size)
{
    return name ? QByteArray(name, static_cast<qsizetype>(strnlen(name, size))) : QByteArray();
}

} // namespace

QFont fonts_from_name(const char *name, size_t size)
{
    const QFont desktop = QApplication::font();
    const QByteArray bytes = x_bytes(name, size);
    if (bytes.isEmpty() || bytes == DESKTOP_FONT)
        return desktop;
    const QString text = QString::fromUtf8(bytes);
    const QStringList fields = text.split(QLatin1Char(','));
    if (fields.size() == 1 && x_is_known_family(text)) {
        QFont font = desktop;
        font.setFamily(text);
        return font;
    }
    QFont font;
    return x_is_usable(fields) && font.fromString(text) ? font : desktop;
}

void fonts_to_name(const QFont &font, char *name, size_t size)
{
    if (size == 0)
        return;
    memset(name, 0, size);
    QByteArray text = font == QApplication::font() ? QByteArray(DESKTOP_FONT) : x_text(font, size);
    if (text.isEmpty()) {
        QFont plain = font;
        plain.setStyleName({}); // weight and slant say the same in fewer bytes
        text = x_text(plain, size);
    }
    if (text.isEmpty())
        text = DESKTOP_FONT;
    memcpy(name, text.constData(), std::min(static_cast<size_t>(text.size()), size - 1));
}

void fonts_read_early()
{
    // Only where nobody else wants the processor: the display server, which the toolkit waits for
    // meanwhile, goes first.
    const auto read = [] {
        const sched_param none = {};
        pthread_setschedparam(pthread_self(), SCHED_IDLE, &none);
        fonts_wait();
    };
    worker_start(read, WORKER_STACK_LARGE);
}

void fonts_wait()
{
    static std::once_flag sRead;
    std::call_once(sRead, FcInit);
}

} // namespace tav
