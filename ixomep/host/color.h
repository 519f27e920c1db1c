// Colours: the packed value, the look-up by name, blending and the hue-saturation-value form.
// Names and their colours are the host's; the arithmetic lives here.
#pragma once

#include <cstdint>

#include "ixomep/export.h"
#include "ixomep/host/string.h"

class IXOMEP_API Color {
 public:
  static constexpr int kBlackEntry = 0;
  static constexpr int kWhiteEntry = 15;

  // Black.
  constexpr Color() noexcept = default;
  // An entry of the table of 16 basic colours (0 black, 15 white); any other index: black.
  explicit Color(int table_index) noexcept;
  // Components are clamped to 0 .. 255.
  Color(int red, int green, int blue) noexcept;
  // The low 24 bits of 0xRRGGBB.
  static Color FromPacked(std::uint32_t packed) noexcept;

  int GetRed() const noexcept { return static_cast<int>(packed_ >> 16); }
  int GetGreen() const noexcept { return static_cast<int>((packed_ >> 8) & 255U); }
  int GetBlue() const noexcept { return static_cast<int>(packed_ & 255U); }
  // 0xRRGGBB, never negative.
  std::int32_t GetPacked() const noexcept { return static_cast<std::int32_t>(packed_); }

  friend bool operator==(const Color&, const Color&) noexcept = default;

 private:
  std::uint32_t packed_ = 0;
};

// The colour of a name, upper and lower case alike. An unknown name gives false and black.
IXOMEP_API bool getColorOfColorName(const String& name, Color& color);
// The same as components from 0 to 255.
IXOMEP_API bool getRGBValuesOfColorName(const String& name, int& red, int& green, int& blue);
// The same as hue in degrees, saturation and value from 0 to 1.
IXOMEP_API bool getHSVValuesFromColorName(const String& name, float& hue, float& saturation,
                                          float& value);

// Components from 0 to 1; hue in degrees from 0 up to but excluding 360, 0 for greys.
IXOMEP_API void RGBtoHSV(float red, float green, float blue, float& hue, float& saturation,
                         float& value) noexcept;
// The inverse. A hue outside 0 .. 360 wraps around; one that is no finite number counts as 0.
IXOMEP_API void HSVtoRGB(float hue, float saturation, float value, float& red, float& green,
                         float& blue) noexcept;
// hue * 255 / 360 in bits 16 to 23, saturation * 255 in bits 8 to 15, value * 255 in bits 0 to 7,
// each rounded and clamped to 0 .. 255.
IXOMEP_API std::uint32_t hsvAsULONGValue(float hue, float saturation, float value) noexcept;

// Each component: under + (over - under) * weight, rounded.
IXOMEP_API Color srcOver(const Color& over, const Color& under, double weight) noexcept;
