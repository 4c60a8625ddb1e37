// A cache of shaped texts in front of the painter.
#include "views/fl_text.h"

#include <QCache>
#include <QPainter>
#include <QStaticText>

namespace tav {

namespace {

constexpr int sTextsKept = 2000; // several screens of cells

// The texts that were drawn last, shaped for one font.
struct Texts {
    QCache<QString, QStaticText> shaped{sTextsKept};
    QFont font;
};

QStaticText *x_shape(const QString &text, const QFont &font)
{
    auto *shaped = new QStaticText(text);
    shaped->setTextFormat(Qt::PlainText);
    shaped->prepare(QTransform(), font);
    return shaped;
}

// The text ready to be drawn; valid until the next call.
const QStaticText &x_ready(const QString &text, const QFont &font)
{
    static auto *const texts = new Texts;
    if (texts->font != font) {
        texts->shaped.clear();
        texts->font = font;
    }
    QStaticText *found = texts->shaped.object(text);
    if (found == nullptr) {
        found = x_shape(text, font);
        texts->shaped.insert(text, found);
    }
    return *found;
}

} // namespace

void fl_text_draw(QPainter &painter, const QRect &area, Qt::AlignmentFlag side, const QString &text,
                  Qt::TextElideMode mode)
{
    const QStaticText *ready = &x_ready(text, painter.font());
    if (ready->size().width() > area.width())
        ready =
            &x_ready(painter.fontMetrics().elidedText(text, mode, area.width()), painter.font());
    const QSizeF size = ready->size();
    const qreal left = side == Qt::AlignRight ? area.right() + 1 - size.width() : area.left();
    painter.drawStaticText(QPointF(left, area.top() + (area.height() - size.height()) / 2), *ready);
}

} // namespace tav
