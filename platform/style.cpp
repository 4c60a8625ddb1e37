// The toolkit's style with what it lacks for us: boxes to check that can be seen on a dark window,
// flat bars, headers, fields and menus, and an image of a bar's extension that needs no image
// plugin at every start.
#include "platform/style.h"

#include "platform/res.h"
#include "platform/style_flat.h"

#include <QApplication>
#include <QPainter>
#include <QProxyStyle>
#include <QStyleOption>

namespace tav {

namespace {

constexpr int DARK = 128;   // a window's colour below this lightness is dark
constexpr int LIFTED = 150; // what its inside is lightened by, in percent

bool x_is_dark(const QPalette &palette)
{
    return palette.color(QPalette::Window).lightness() < DARK;
}

// Between two groups of a menu's items, without a title.
bool x_is_line(const QStyleOption *option)
{
    const auto *item = qstyleoption_cast<const QStyleOptionMenuItem *>(option);
    return item && item->menuItemType == QStyleOptionMenuItem::Separator && item->text.isEmpty();
}

class Style : public QProxyStyle {
public:
    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget) const override
    {
        const bool box = element == PE_IndicatorCheckBox || element == PE_IndicatorRadioButton;
        const auto *button = qstyleoption_cast<const QStyleOptionButton *>(option);
        if (!is_known())
            QProxyStyle::drawPrimitive(element, option, painter, widget);
        else if (element == PE_PanelScrollAreaCorner)
            painter->fillRect(option->rect, option->palette.color(QPalette::Window));
        else if (element == PE_Frame && !is_list_of_box(widget))
            style_flat_frame(*option, *painter);
        else if (element == PE_FrameLineEdit)
            style_flat_field(*option, *painter);
        else if (element == PE_PanelMenu)
            style_flat_menu(*option, *painter);
        else if (element == PE_FrameMenu)
            style_flat_menu_frame(*option, *painter);
        else if (box && button && x_is_dark(option->palette))
            draw_lifted(element, *button, painter, widget);
        else
            QProxyStyle::drawPrimitive(element, option, painter, widget);
    }

    void drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                     const QWidget *widget) const override
    {
        const bool known = is_known();
        const auto *bar = qstyleoption_cast<const QStyleOptionToolBar *>(option);
        const auto *header = qstyleoption_cast<const QStyleOptionHeader *>(option);
        if (known && element == CE_ToolBar && bar && bar->toolBarArea == Qt::TopToolBarArea)
            style_flat_tool_bar(*bar, *painter);
        else if (known && element == CE_HeaderSection && header &&
                 header->orientation == Qt::Horizontal)
            style_flat_header(*header, *painter);
        else if (known && element == CE_MenuItem && x_is_line(option))
            style_flat_menu_line(*option, *painter);
        else
            QProxyStyle::drawControl(element, option, painter, widget);
    }

    void drawComplexControl(ComplexControl control, const QStyleOptionComplex *option,
                            QPainter *painter, const QWidget *widget) const override
    {
        const auto *bar = qstyleoption_cast<const QStyleOptionSlider *>(option);
        const auto *box = qstyleoption_cast<const QStyleOptionComboBox *>(option);
        if (control == CC_ScrollBar && bar && is_known())
            style_flat_scroll_bar(*bar, subControlRect(control, bar, SC_ScrollBarSlider, widget),
                                  *painter);
        else if (control == CC_ComboBox && box && box->editable && is_known())
            style_flat_box(*box, subControlRect(control, box, SC_ComboBoxArrow, widget), *painter);
        else
            QProxyStyle::drawComplexControl(control, option, painter, widget);
    }

    QRect subControlRect(ComplexControl control, const QStyleOptionComplex *option, SubControl part,
                         const QWidget *widget) const override
    {
        const auto *bar = qstyleoption_cast<const QStyleOptionSlider *>(option);
        if (control == CC_ScrollBar && bar && is_known())
            return style_flat_scroll_part(*bar, part, pixelMetric(PM_ScrollBarSliderMin, bar));
        return QProxyStyle::subControlRect(control, option, part, widget);
    }

    QIcon standardIcon(StandardPixmap pixmap, const QStyleOption *option,
                       const QWidget *widget) const override
    {
        if (pixmap == SP_ToolBarHorizontalExtensionButton)
            return res_image("more");
        return QProxyStyle::standardIcon(pixmap, option, widget);
    }

private:
    // The outline of a box is made from the window's colour, darkened: on a dark window nothing is
    // left of it. A lighter colour there gives one that stands out.
    void draw_lifted(PrimitiveElement element, const QStyleOptionButton &button, QPainter *painter,
                     const QWidget *widget) const
    {
        QStyleOptionButton lifted = button;
        lifted.palette.setColor(QPalette::Window, button.palette.color(QPalette::WindowText));
        // A dimmed mark is hardly lighter than that: it needs the inside as dark as it is.
        if (button.state & State_Enabled)
            lifted.palette.setColor(QPalette::Base,
                                    button.palette.color(QPalette::Base).lighter(LIFTED));
        QProxyStyle::drawPrimitive(element, &lifted, painter, widget);
    }

    // The list that a combo box opens is a panel of its own look.
    static bool is_list_of_box(const QWidget *widget)
    {
        return widget && widget->inherits("QComboBoxPrivateContainer");
    }

    // Whether it is the toolkit's own style that is below: a desktop's own is left as it is.
    bool is_known() const { return baseStyle()->inherits("QFusionStyle"); }
};

} // namespace

void style_install() { QApplication::setStyle(new Style); }

} // namespace tav
