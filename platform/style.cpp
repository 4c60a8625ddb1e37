// The toolkit's style with what it lacks for us: boxes to check that can be seen on a dark window,
// and an image of a bar's extension that needs no image plugin at every start.
#include "platform/style.h"

#include "platform/res.h"

#include <QApplication>
#include <QProxyStyle>
#include <QStyleOption>

namespace tav {

namespace {

constexpr int DARK = 128;   // a window's colour below this lightness is dark
constexpr int LIFTED = 150; // what its inside is lightened by

bool x_is_dark(const QPalette &palette)
{
    return palette.color(QPalette::Window).lightness() < DARK;
}

class Style : public QProxyStyle {
public:
    // The outline of a box is made from the window's colour, darkened: on a dark window nothing is
    // left of it. A lighter colour there gives one that stands out.
    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget) const override
    {
        const bool box = element == PE_IndicatorCheckBox || element == PE_IndicatorRadioButton;
        const auto *button = qstyleoption_cast<const QStyleOptionButton *>(option);
        if (!box || !button || !x_is_dark(option->palette) ||
            !baseStyle()->inherits("QFusionStyle")) {
            QProxyStyle::drawPrimitive(element, option, painter, widget);
            return;
        }
        QStyleOptionButton lifted = *button;
        const QColor text = option->palette.color(QPalette::WindowText);
        lifted.palette.setColor(QPalette::Window, text);
        lifted.palette.setColor(QPalette::Base,
                                option->palette.color(QPalette::Base).lighter(LIFTED));
        QProxyStyle::drawPrimitive(element, &lifted, painter, widget);
    }

    QIcon standardIcon(StandardPixmap pixmap, const QStyleOption *option,
                       const QWidget *widget) const override
    {
        if (pixmap == SP_ToolBarHorizontalExtensionButton)
            return res_image("more");
        return QProxyStyle::standardIcon(pixmap, option, widget);
    }
};

} // namespace

void style_install() { QApplication::setStyle(new Style); }

} // namespace tav
