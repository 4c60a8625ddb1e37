// Lengths by the ratio of the text font's digit width to the 5 pixels of the reference font. The
// ratio never falls below 1: only then does the way there and back end where it began.
#include "platform/lengths.h"

#include <QApplication>
#include <QFontMetricsF>
#include <algorithm>
#include <climits>
#include <cmath>

namespace tav {
namespace {

constexpr double REFERENCE_DIGIT = 5; // width of a digit of the reference font, in pixels

double x_ratio(double digit_width)
{
    return std::isfinite(digit_width) ? std::max(1.0, digit_width / REFERENCE_DIGIT) : 1.0;
}

int x_round(double value)
{
    return static_cast<int>(std::round(std::clamp(value, double(INT_MIN), double(INT_MAX))));
}

double x_digit_width()
{
    return QFontMetricsF(QApplication::font()).horizontalAdvance(QLatin1Char('0'));
}

} // namespace

int lengths_to_pixels_at(int reference, double digit_width)
{
    return x_round(reference * x_ratio(digit_width));
}

int lengths_from_pixels_at(int pixels, double digit_width)
{
    return x_round(pixels / x_ratio(digit_width));
}

int lengths_to_pixels(int reference) { return lengths_to_pixels_at(reference, x_digit_width()); }

int lengths_from_pixels(int pixels) { return lengths_from_pixels_at(pixels, x_digit_width()); }

} // namespace tav
