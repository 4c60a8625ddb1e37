// Images and texts, out of the resources that are linked into the program.
#include "platform/res.h"

#include "platform/worker.h"

#include <QApplication>
#include <QFile>
#include <QHash>
#include <QIconEngine>
#include <QPainter>
#include <QPixmapCache>
#include <QStyle>
#include <QStyleOption>
#include <QSvgRenderer>
#include <map>
#include <mutex>
#include <string>
#include <unordered_map>

// Outside the namespace, as the resource compiler wants it.
static void res_link()
{
    Q_INIT_RESOURCE(tav);
    Q_INIT_RESOURCE(texts);
}

namespace tav {
namespace {

// A line holds a name, a blank and the text; "\n" in the text stands for a line's end.
void x_add_text(std::unordered_map<std::string, std::string> &texts, const QByteArray &line)
{
    const qsizetype blank = line.indexOf(' ');
    if (blank <= 0 || line.startsWith('#'))
        return;
    QByteArray text = line.mid(blank + 1);
    text.replace("\\n", "\n");
    texts[line.left(blank).toStdString()] = text.toStdString();
}

std::unordered_map<std::string, std::string> x_read_texts()
{
    res_link();
    std::unordered_map<std::string, std::string> texts;
    QFile file(QStringLiteral(":/txtdb.txt"));
    if (!file.open(QIODevice::ReadOnly))
        return texts;
    for (const QByteArray &line : file.readAll().split('\n'))
        x_add_text(texts, line);
    return texts;
}

QString x_path(const char *name)
{
    return QStringLiteral(":/images/%1.svg").arg(QString::fromLatin1(name));
}

QImage x_draw(const QString &path, const QSize &size)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    QSvgRenderer renderer(path);
    renderer.setAspectRatioMode(Qt::KeepAspectRatio);
    renderer.render(&painter, QRect(QPoint(), size));
    return image;
}

// What a worker has drawn ahead, until it is asked for.
struct Early {
    std::mutex mutex;
    std::map<std::pair<QString, int>, QImage> images; // by path and side in pixels
};

Early &x_early()
{
    static auto *early = new Early; // outlives every worker
    return *early;
}

QImage x_take_early(const QString &path, const QSize &size)
{
    Early &early = x_early();
    const std::lock_guard lock(early.mutex);
    const auto found = early.images.find({path, size.width()});
    if (found == early.images.end() || size.width() != size.height())
        return {};
    QImage image = std::move(found->second);
    early.images.erase(found);
    return image;
}

// Draws an image of ours at the size that is asked for, and reads it no sooner than then. (The
// toolkit's own engine is a plugin, sought and loaded first, and reads each image twice.)
class SvgEngine : public QIconEngine {
public:
    explicit SvgEngine(QString path) : path_(std::move(path)) {}

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State state) override
    {
        const qreal ratio = painter->device()->devicePixelRatioF();
        painter->drawPixmap(rect, pixmap((QSizeF(rect.size()) * ratio).toSize(), mode, state));
    }

    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override
    {
        const qint64 palette = mode == QIcon::Normal ? 0 : QApplication::palette().cacheKey();
        const QString key = QStringLiteral("%1 %2x%3 %4 %5")
                                .arg(path_)
                                .arg(size.width())
                                .arg(size.height())
                                .arg(mode)
                                .arg(palette);
        QPixmap found;
        if (QPixmapCache::find(key, &found))
            return found;
        if (mode == QIcon::Normal) {
            const QImage early = x_take_early(path_, size);
            found = QPixmap::fromImage(early.isNull() ? x_draw(path_, size) : early);
        } else {
            QStyleOption option;
            option.palette = QApplication::palette();
            found = QApplication::style()->generatedIconPixmap(
                mode, pixmap(size, QIcon::Normal, state), &option);
        }
        QPixmapCache::insert(key, found);
        return found;
    }

    QIconEngine *clone() const override { return new SvgEngine(path_); }
    bool isNull() override { return false; }

private:
    QString path_;
};

} // namespace

QIcon res_image(const char *name)
{
    static QHash<QByteArray, QIcon> *const icons = new QHash<QByteArray, QIcon>;
    res_link();
    QIcon &icon = (*icons)[QByteArray(name)];
    const QString path = x_path(name);
    if (icon.isNull() && QFile::exists(path))
        icon = QIcon(new SvgEngine(path));
    return icon;
}

void res_draw_early(std::vector<ResSized> wanted)
{
    res_link();
    const auto draw = [wanted = std::move(wanted)] {
        for (const ResSized &each : wanted) {
            const QString path = x_path(each.name);
            const QImage image = x_draw(path, {each.side, each.side});
            const std::lock_guard lock(x_early().mutex);
            x_early().images[{path, each.side}] = image;
        }
    };
    worker_start(draw, WORKER_STACK_LARGE); // else they are drawn when they are needed
}

const char *res_text(const char *name)
{
    static const auto *const texts = new std::unordered_map(x_read_texts());
    const auto found = texts->find(name);
    return found == texts->end() ? "" : found->second.c_str();
}

} // namespace tav
