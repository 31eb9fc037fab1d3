#pragma once

#include <cstdint>

/// CIE 1976 L*a*b*: L* from 0 to 100.
struct LabColor {
  double lightness;
  double a;
  double b;
};

/// The colour in sRGB as three bytes R, G, B; its white becomes white, what sRGB does not have is
/// clipped.
void setLabColor(const LabColor& color, uint8_t* out);
