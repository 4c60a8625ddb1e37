// The window's size and widths, out of the settings record and back in.
#include "app/base.h"

#include "platform/lengths.h"
#include "platform/w.h"
#include "views/fl.h"

#include <QGuiApplication>
#include <QScreen>
#include <QSplitter>
#include <QStyle>
#include <algorithm>

namespace tav {

namespace {

// A length as it was last put into the window: as long as the window still has it, the record's own
// number stays, however odd it is.
struct Applied {
    int pixels = -1;
};

Applied sWidth, sHeight, sPanel, sColumns[CONFIG_COLUMNS];

constexpr int sMaxReference = 16000; // beyond any screen; what a damaged record may ask for
constexpr int sMinColumn = 12; // reference pixels: a column stays wide enough to be found again

int x_low16(int32_t word) { return word & 0xFFFF; }

void x_store(const Applied &applied, int pixels, int32_t &word)
{
    if (pixels != applied.pixels)
        word = lengths_from_pixels(pixels);
}

// A size that the screen has room for. A window as large as the screen would have its lower edge
// below it, by as much as its frame is high.
QSize x_on_screen(const QSize &wanted)
{
    const QSize screen = gBase->screen()->availableGeometry().size();
    const QStyle *style = gBase->style();
    const int border = style->pixelMetric(QStyle::PM_MdiSubWindowFrameWidth);
    const int title = style->pixelMetric(QStyle::PM_TitleBarHeight);
    return {wanted.width() > screen.width() ? screen.width() - 2 * border : wanted.width(),
            wanted.height() > screen.height() ? screen.height() - title - border : wanted.height()};
}

} // namespace

void base_set_window_metrics(const Config &record)
{
    const QSize wanted(lengths_to_pixels(std::min(x_low16(record.window_width), sMaxReference)),
                       lengths_to_pixels(std::min(x_low16(record.window_height), sMaxReference)));
    gBase->resize(x_on_screen(wanted).expandedTo(gBase->minimumSizeHint()));
    sWidth.pixels = gBase->width();
    sHeight.pixels = gBase->height();

    auto *workspace = w_find<QSplitter>("workspace");
    auto *panel = w_find("hotlist_panel");
    const int both = gBase->width() - workspace->handleWidth();
    const int most =
        both - w_find("filelist_panel")->minimumWidth(); // as far as a hand can drag it
    sPanel.pixels =
        std::clamp(lengths_to_pixels(std::min(x_low16(record.hotlist_width), sMaxReference)),
                   panel->minimumWidth(), std::max(most, panel->minimumWidth()));
    workspace->setSizes({sPanel.pixels, both - sPanel.pixels});
}

void base_get_window_metrics(Config &record)
{
    const QRect normal = gBase->isMaximized() || gBase->isMinimized() || gBase->isFullScreen()
                             ? static_cast<QWidget *>(gBase)->normalGeometry()
                             : gBase->geometry();
    if (!normal.isEmpty()) {
        x_store(sWidth, normal.width(), record.window_width);
        x_store(sHeight, normal.height(), record.window_height);
    }
    const QWidget *panel = w_find("hotlist_panel");
    if (!panel->isHidden())
        x_store(sPanel, panel->width(), record.hotlist_width);
}

void base_set_divider_metrics(const Config &record)
{
    for (int i = 0; i < CONFIG_COLUMNS; ++i) {
        fl_set_column_width(i + 1, lengths_to_pixels(std::clamp(record.column_width[i], sMinColumn,
                                                                sMaxReference)));
        sColumns[i].pixels = fl_get_column_width(i + 1);
    }
    w_find("hotlist_panel")->setVisible(record.hotlist_shown != 0);
}

void base_get_divider_metrics(Config &record)
{
    for (int i = 0; i < CONFIG_COLUMNS; ++i)
        x_store(sColumns[i], fl_get_column_width(i + 1), record.column_width[i]);
}

} // namespace tav
