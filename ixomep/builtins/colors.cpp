// Built-in functions on colours: names and components to packed integers, and the
// hue-saturation-value form. Names, conversions and blending are the host's (../host/color.h).
#include "ixomep/host/color.h"

#include <cmath>
#include <limits>

#include "ixomep/builtins/call.h"
#include "ixomep/builtins/handlers.h"

namespace ixomep {
namespace {

// Truncated; beyond the 32-bit range its nearest end, 0 for what is not a number.
std::int32_t SaturatedInt(double number) {
  constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();
  constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
  if (std::isnan(number)) return 0;
  if (number <= double{kLeast}) return kLeast;
  return number >= double{kMost} ? kMost : static_cast<std::int32_t>(number);
}

float SaturatedFloat(double number) {
  constexpr float kMost = std::numeric_limits<float>::max();
  if (number > double{kMost}) return kMost;
  return number < -double{kMost} ? -kMost : static_cast<float>(number);
}

// The components as they are: one outside 0 to 255 runs into its neighbours, and the sum wraps.
std::int32_t Packed(std::int32_t red, std::int32_t green, std::int32_t blue) {
  return static_cast<std::int32_t>((static_cast<std::uint32_t>(red) << 16) +
                                   (static_cast<std::uint32_t>(green) << 8) +
                                   static_cast<std::uint32_t>(blue));
}

std::int32_t PackedHsv(float hue, float saturation, float value) {
  return static_cast<std::int32_t>(hsvAsULONGValue(hue, saturation, value));
}

// Factors up to 2 lighten towards white, factors below 1 darken towards black.
Color Shaded(const Color& color, double factor) {
  if (factor > 1.0 && factor <= 2.0) return srcOver(Color(Color::kWhiteEntry), color, factor - 1.0);
  if (factor >= 0.0 && factor < 1.0) return srcOver(Color(Color::kBlackEntry), color, 1.0 - factor);
  return color;
}

std::int32_t PackedRgbOfHsv(float hue, float saturation, float value) {
  float red = 0.0F;
  float green = 0.0F;
  float blue = 0.0F;
  HSVtoRGB(hue, saturation, value, red, green, blue);
  const auto component = [](float part) { return SaturatedInt(double{part} * 255.0); };
  return Packed(component(red), component(green), component(blue));
}

// Byte 0, 1 or 2 of a packed colour as a number from 0 to 1.
double PartOf(std::int32_t packed, int byte) {
  return (static_cast<std::uint32_t>(packed) >> (8 * byte) & 255U) / 255.0;
}

}  // namespace

namespace builtins {

IxoMepErrorEnum RgbVal(Call& call) {
  if (call.Count() == 3) {
    return call.Return(
        Packed(SaturatedInt(call.Real(0)), SaturatedInt(call.Real(1)), SaturatedInt(call.Real(2))));
  }
  if (call.Count() == 2) {
    Color color;
    getColorOfColorName(call.Text(0), color);
    return call.Return(Shaded(color, call.Real(1)).GetPacked());
  }
  int red = 0;
  int green = 0;
  int blue = 0;
  getRGBValuesOfColorName(call.Text(0), red, green, blue);
  return call.Return(Packed(red, green, blue));
}

IxoMepErrorEnum Rgb2Hsv(Call& call) {
  float hue = 0.0F;
  float saturation = 0.0F;
  float value = 0.0F;
  RGBtoHSV(SaturatedFloat(call.Real(0) / 255.0), SaturatedFloat(call.Real(1) / 255.0),
           SaturatedFloat(call.Real(2) / 255.0), hue, saturation, value);
  return call.Return(PackedHsv(hue, saturation, value));
}

IxoMepErrorEnum HsvVal(Call& call) {
  if (call.Count() == 3) {
    return call.Return(PackedHsv(SaturatedFloat(call.Real(0)), SaturatedFloat(call.Real(1)),
                                 SaturatedFloat(call.Real(2))));
  }
  float hue = 0.0F;
  float saturation = 0.0F;
  float value = 0.0F;
  getHSVValuesFromColorName(call.Text(0), hue, saturation, value);
  return call.Return(PackedHsv(hue, saturation, value));
}

IxoMepErrorEnum Hsv2Rgb(Call& call) {
  if (call.Count() == 3) {
    return call.Return(PackedRgbOfHsv(SaturatedFloat(call.Real(0)), SaturatedFloat(call.Real(1)),
                                      SaturatedFloat(call.Real(2))));
  }
  const std::int32_t packed = call.Int(0);
  return call.Return(PackedRgbOfHsv(static_cast<float>(PartOf(packed, 2) * 360.0),
                                    static_cast<float>(PartOf(packed, 1)),
                                    static_cast<float>(PartOf(packed, 0))));
}

}  // namespace builtins
}  // namespace ixomep
