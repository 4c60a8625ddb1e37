// The picture under the pointer while files are dragged.
#include "commands/dnd_picture.h"
#include "platform/res.h"
#include "platform/shown.h"
#include "views/fl.h"
#include "views/fl_view.h"

#include <QPainter>
#include <sys/stat.h>

namespace tav {

namespace {

constexpr int EDGE = 4;         // pixels around the contents
constexpr int CORNER = 3;       // radius of the corners
constexpr int WIDEST_TEXT = 30; // average characters, the rest is cut

const char *x_image(const FileListRecord &list)
{
    const std::string path = std::string(list.directory) + '/' + list.names[0];
    struct stat status;
    return list.count == 1 && stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode)
               ? "closed_folder"
               : "file";
}

QString x_text(const FileListRecord &list)
{
    return list.count == 1 ? shown_text(list.names[0]) : QStringLiteral("%1 files").arg(list.count);
}

} // namespace

QPixmap dnd_picture(const FileListRecord &list)
{
    const QWidget *view = fl_view();
    const QFontMetrics metrics(view->font());
    const QString text =
        metrics.elidedText(x_text(list), Qt::ElideMiddle, metrics.averageCharWidth() * WIDEST_TEXT);
    const int side = metrics.height();
    const QSize size(3 * EDGE + side + metrics.horizontalAdvance(text), 2 * EDGE + side);
    QPixmap picture(size * view->devicePixelRatioF());
    picture.setDevicePixelRatio(view->devicePixelRatioF());
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(view->font());
    painter.setPen(view->palette().color(QPalette::Highlight));
    painter.setBrush(view->palette().color(QPalette::Base));
    painter.drawRoundedRect(QRectF({0.5, 0.5}, size - QSize(1, 1)), CORNER, CORNER);
    res_image(x_image(list)).paint(&painter, EDGE, EDGE, side, side);
    painter.setPen(view->palette().color(QPalette::Text));
    painter.drawText(2 * EDGE + side, EDGE + metrics.ascent(), text);
    return picture;
}

} // namespace tav
