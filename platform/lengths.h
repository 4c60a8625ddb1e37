// Lengths are kept in reference pixels, made for a text font whose digits are 5 pixels wide, and shown
// in the desktop's pixels. There and back again changes nothing.
#pragma once

namespace tav {

int lengths_to_pixels(int reference);
int lengths_from_pixels(int pixels);

} // namespace tav
