// A label that leaves out the middle of what does not fit.
#include "platform/elided_label.h"

#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QToolTip>

namespace tav {
namespace {

constexpr int WIDEST = 48; // characters that the label asks room for
constexpr int NARROWEST = 8;

} // namespace

ElidedLabel::ElidedLabel(QWidget *parent) : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize ElidedLabel::sizeHint() const
{
    const int widest = WIDEST * fontMetrics().averageCharWidth();
    return {qMin(fontMetrics().horizontalAdvance(text()), widest), fontMetrics().height()};
}

QSize ElidedLabel::minimumSizeHint() const
{
    return {NARROWEST * fontMetrics().averageCharWidth(), fontMetrics().height()};
}

void ElidedLabel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const QString shown = fontMetrics().elidedText(text(), Qt::ElideMiddle, width());
    const int flags = Qt::AlignLeading | Qt::AlignVCenter | Qt::TextSingleLine;
    style()->drawItemText(&painter, contentsRect(), flags, palette(), isEnabled(), shown,
                          foregroundRole());
}

bool ElidedLabel::event(QEvent *event)
{
    if (event->type() != QEvent::ToolTip)
        return QLabel::event(event);
    const bool fits = fontMetrics().horizontalAdvance(text()) <= width();
    const QString whole = fits ? QString() : text().toHtmlEscaped();
    const QString tip =
        fits ? whole : QStringLiteral("<p style='white-space:pre-wrap'>%1</p>").arg(whole);
    QToolTip::showText(static_cast<QHelpEvent *>(event)->globalPos(), tip, this);
    return true;
}

} // namespace tav
