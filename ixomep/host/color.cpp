// Colour arithmetic: components, blending, hue-saturation-value. Names are the host's. See
// color.h.
#include "ixomep/host/color.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "ixomep/host/host.h"

namespace {

// The colour table: dark and light forms of the eight mixtures of the primary colours.
constexpr std::array<std::uint32_t, 16> kColorTable = {
    0x000000, 0x000080, 0x008000, 0x008080, 0x800000, 0x800080, 0x808000, 0xC0C0C0,
    0x808080, 0x0000FF, 0x00FF00, 0x00FFFF, 0xFF0000, 0xFF00FF, 0xFFFF00, 0xFFFFFF,
};

// Rounds and clamps to 0 .. 255; NaN gives 0.
int ToComponent(double number) noexcept {
  if (!(number > 0.0)) return 0;
  return number >= 255.0 ? 255 : static_cast<int>(std::lround(number));
}

int Blend(int over, int under, double weight) noexcept {
  return ToComponent(under + (over - under) * weight);
}

}  // namespace

Color::Color(int table_index) noexcept {
  if (table_index >= 0 && table_index < static_cast<int>(kColorTable.size())) {
    packed_ = kColorTable[static_cast<std::size_t>(table_index)];
  }
}

Color::Color(int red, int green, int blue) noexcept {
  for (const int component : {red, green, blue}) {
    packed_ = packed_ << 8 | static_cast<std::uint32_t>(std::clamp(component, 0, 255));
  }
}

Color Color::FromPacked(std::uint32_t packed) noexcept {
  Color color;
  color.packed_ = packed & 0xFFFFFFU;
  return color;
}

bool getColorOfColorName(const String& name, Color& color) {
  color = Color();
  return IxoHost::Current().FindColor(name, color);
}

bool getRGBValuesOfColorName(const String& name, int& red, int& green, int& blue) {
  Color color;
  const bool known = getColorOfColorName(name, color);
  red = color.GetRed();
  green = color.GetGreen();
  blue = color.GetBlue();
  return known;
}

bool getHSVValuesFromColorName(const String& name, float& hue, float& saturation, float& value) {
  Color color;
  const bool known = getColorOfColorName(name, color);
  RGBtoHSV(static_cast<float>(color.GetRed()) / 255.0F,
           static_cast<float>(color.GetGreen()) / 255.0F,
           static_cast<float>(color.GetBlue()) / 255.0F, hue, saturation, value);
  return known;
}

void RGBtoHSV(float red, float green, float blue, float& hue, float& saturation,
              float& value) noexcept {
  const float largest = std::max({red, green, blue});
  const float range = largest - std::min({red, green, blue});
  float sixths = 0.0F;
  if (range > 0.0F) {
    if (red == largest) {
      sixths = (green - blue) / range;
    } else if (green == largest) {
      sixths = 2.0F + (blue - red) / range;
    } else {
      sixths = 4.0F + (red - green) / range;
    }
  }
  hue = sixths * 60.0F;
  if (hue < 0.0F) hue += 360.0F;
  saturation = largest > 0.0F ? range / largest : 0.0F;
  value = largest;
}

void HSVtoRGB(float hue, float saturation, float value, float& red, float& green,
              float& blue) noexcept {
  float degrees = std::isfinite(hue) ? std::fmod(hue, 360.0F) : 0.0F;
  if (degrees < 0.0F) degrees += 360.0F;
  // A tiny negative hue rounds up to 360 itself, the sixth sector, which is the first one.
  const float sixths = degrees / 60.0F;
  const int sector = static_cast<int>(sixths) % 6;
  const float rise = sixths - std::floor(sixths);
  const float low = value * (1.0F - saturation);
  const float falling = value * (1.0F - saturation * rise);
  const float rising = value * (1.0F - saturation * (1.0F - rise));

  struct Components {
    float red, green, blue;
  };
  const std::array<Components, 6> sectors = {{{value, rising, low},
                                              {falling, value, low},
                                              {low, value, rising},
                                              {low, falling, value},
                                              {rising, low, value},
                                              {value, low, falling}}};
  const Components& chosen = sectors[static_cast<std::size_t>(sector)];
  red = chosen.red;
  green = chosen.green;
  blue = chosen.blue;
}

std::uint32_t hsvAsULONGValue(float hue, float saturation, float value) noexcept {
  const int parts[] = {ToComponent(double{hue} * 255.0 / 360.0),
                       ToComponent(double{saturation} * 255.0), ToComponent(double{value} * 255.0)};
  return static_cast<std::uint32_t>(parts[0] << 16 | parts[1] << 8 | parts[2]);
}

Color srcOver(const Color& over, const Color& under, double weight) noexcept {
  return Color(Blend(over.GetRed(), under.GetRed(), weight),
               Blend(over.GetGreen(), under.GetGreen(), weight),
               Blend(over.GetBlue(), under.GetBlue(), weight));
}
