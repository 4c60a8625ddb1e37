// Images and texts, out of the resources that are linked into the program.
#include "platform/res.h"

#include <QApplication>
#include <QFile>
#include <QHash>
#include <QIconEngine>
#include <QImageReader>
#include <QPainter>
#include <QPixmapCache>
#include <QStyle>
#include <QStyleOption>
#include <string>
#include <unordered_map>

// Outside the namespace, as the resource compiler wants it.
static void res_link()
{
    Q_INIT_RESOURCE(tav);
    Q_INIT_RESOURCE(texts);
    Q_INIT_RESOURCE(drawn);
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

QString x_path(const QString &name) { return QStringLiteral(":/images/%1.svg").arg(name); }

// As the build has drawn it; null where it did not, because few screens ask for that size.
QImage x_take_drawn(const QString &name, const QSize &size)
{
    QFile file(QStringLiteral(":/drawn/%1-%2").arg(name).arg(size.width()));
    if (size.width() != size.height() || !file.open(QIODevice::ReadOnly))
        return {};
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    const qint64 bytes = image.sizeInBytes();
    return file.read(reinterpret_cast<char *>(image.bits()), bytes) == bytes ? image : QImage();
}

// What every image was drawn at; the largest of them.
constexpr int sLargestDrawn = 48;

// The toolkit's reader is a plugin, which is loaded for the first image of an unusual size. Without
// it an image is not as sharp as it could be.
QImage x_draw(const QString &name, const QSize &size)
{
    QImageReader reader(x_path(name), "svg");
    const QSize inside = reader.size().scaled(size, Qt::KeepAspectRatio);
    reader.setScaledSize(inside);
    QImage drawn = reader.read();
    if (drawn.isNull())
        drawn = x_take_drawn(name, {sLargestDrawn, sLargestDrawn})
                    .scaled(size, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    const QSize rest = size - drawn.size();
    QPainter(&image).drawImage(rest.width() / 2, rest.height() / 2, drawn);
    return image;
}

// Draws an image of ours at the size that is asked for, and reads it no sooner than then. (The
// toolkit's own engine is a plugin, sought and loaded first, and reads each image twice.)
class SvgEngine : public QIconEngine {
public:
    explicit SvgEngine(QString name) : name_(std::move(name)) {}

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State state) override
    {
        const qreal ratio = painter->device()->devicePixelRatioF();
        painter->drawPixmap(rect, pixmap((QSizeF(rect.size()) * ratio).toSize(), mode, state));
    }

    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override
    {
        const qint64 palette = mode == QIcon::Normal ? 0 : QApplication::palette().cacheKey();
        const QString key = QStringLiteral("%1 %2x%3 %4 %5")
                                .arg(name_)
                                .arg(size.width())
                                .arg(size.height())
                                .arg(mode)
                                .arg(palette);
        QPixmap found;
        if (QPixmapCache::find(key, &found))
            return found;
        if (mode == QIcon::Normal) {
            const QImage drawn = x_take_drawn(name_, size);
            found = QPixmap::fromImage(drawn.isNull() ? x_draw(name_, size) : drawn);
        } else {
            QStyleOption option;
            option.palette = QApplication::palette();
            found = QApplication::style()->generatedIconPixmap(
                mode, pixmap(size, QIcon::Normal, state), &option);
        }
        QPixmapCache::insert(key, found);
        return found;
    }

    QIconEngine *clone() const override { return new SvgEngine(name_); }
    bool isNull() override { return false; }

private:
    QString name_;
};

} // namespace

QIcon res_image(const char *name)
{
    static QHash<QByteArray, QIcon> *const icons = new QHash<QByteArray, QIcon>;
    res_link();
    QIcon &icon = (*icons)[QByteArray(name)];
    const QString key = QString::fromLatin1(name);
    if (icon.isNull() && QFile::exists(x_path(key)))
        icon = QIcon(new SvgEngine(key));
    return icon;
}

const char *res_text(const char *name)
{
    static const auto *const texts = new std::unordered_map(x_read_texts());
    const auto found = texts->find(name);
    return found == texts->end() ? "" : found->second.c_str();
}

} // namespace tav
