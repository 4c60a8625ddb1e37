// Lengths are kept in reference pixels, made for a text font whose digits are 5 pixels wide, and
// shown in the desktop's pixels. From reference to pixels and back again changes nothing.
#pragma once

namespace tav {

int lengths_to_pixels(int reference);
int lengths_from_pixels(int pixels);

// The same for a text font whose digits are digit_width pixels wide.
int lengths_to_pixels_at(int reference, double digit_width);
int lengths_from_pixels_at(int pixels, double digit_width);

} // namespace tav
