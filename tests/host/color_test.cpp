// Tests of colours: names, the colour table, blending, hue-saturation-value.
#include "ixomep/host/color.h"

#include <gtest/gtest.h>

#include <limits>

#include "tests/support/test_host.h"

namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

std::int32_t PackedOfName(const char* name) {
  Color color(Color::kWhiteEntry);
  return getColorOfColorName(name, color) ? color.GetPacked() : -1;
}

TEST(Color, Default_is_black) { EXPECT_EQ(Color().GetPacked(), 0); }

TEST(Color, Table_entry_0_is_black_and_entry_15_white) {
  EXPECT_EQ(Color(0).GetPacked(), 0);
  EXPECT_EQ(Color(15).GetPacked(), 0xFFFFFF);
  EXPECT_EQ(Color(16).GetPacked(), 0);
  EXPECT_EQ(Color(-1).GetPacked(), 0);
}

TEST(Color, Components_are_clamped_and_packed_red_green_blue) {
  const Color color(1, 2, 3);
  EXPECT_EQ(color.GetPacked(), 0x010203);
  EXPECT_EQ(color.GetRed(), 1);
  EXPECT_EQ(color.GetGreen(), 2);
  EXPECT_EQ(color.GetBlue(), 3);
  EXPECT_EQ(Color(300, -1, 255).GetPacked(), 0xFF00FF);
  EXPECT_EQ(Color::FromPacked(0xAB010203U).GetPacked(), 0x010203);
}

TEST(ColorName, Names_are_found_whatever_their_case) {
  EXPECT_EQ(PackedOfName("red"), 0xFF0000);
  EXPECT_EQ(PackedOfName("RED"), 0xFF0000);
  EXPECT_EQ(PackedOfName("LightGoldenrodYellow"), 0xFAFAD2);
  EXPECT_EQ(PackedOfName("aliceblue"), 0xF0F8FF);
  EXPECT_EQ(PackedOfName("yellowgreen"), 0x9ACD32);
  EXPECT_EQ(PackedOfName("rebeccapurple"), 0x663399);
  EXPECT_EQ(PackedOfName("black"), 0x000000);
  EXPECT_EQ(PackedOfName("grey"), PackedOfName("gray"));
  EXPECT_EQ(PackedOfName("green"), 0x008000);
}

TEST(ColorName, An_unknown_name_is_black_and_tells_so) {
  for (const char* name :
       {"", "re", "redd", "no such colour", "a very long name of a colour", " red"}) {
    Color color(Color::kWhiteEntry);
    EXPECT_FALSE(getColorOfColorName(name, color)) << name;
    EXPECT_EQ(color.GetPacked(), 0) << name;
  }
  Color color;
  EXPECT_FALSE(getColorOfColorName(String("red\0", 4), color));
}

TEST(ColorName, Components_and_hsv_follow_the_name) {
  int red = -1;
  int green = -1;
  int blue = -1;
  EXPECT_TRUE(getRGBValuesOfColorName("Tomato", red, green, blue));
  EXPECT_EQ(red, 255);
  EXPECT_EQ(green, 0x63);
  EXPECT_EQ(blue, 0x47);
  EXPECT_FALSE(getRGBValuesOfColorName("unknown", red, green, blue));
  EXPECT_EQ(red + green + blue, 0);
  float hue = -1;
  float saturation = -1;
  float value = -1;
  EXPECT_TRUE(getHSVValuesFromColorName("blue", hue, saturation, value));
  EXPECT_FLOAT_EQ(hue, 240.0F);
  EXPECT_FLOAT_EQ(saturation, 1.0F);
  EXPECT_FLOAT_EQ(value, 1.0F);
  EXPECT_FALSE(getHSVValuesFromColorName("unknown", hue, saturation, value));
  EXPECT_EQ(value, 0.0F);
}

struct HsvCase {
  float red, green, blue, hue, saturation, value;
};

constexpr HsvCase kHsvCases[] = {
    {0, 0, 0, 0, 0, 0},
    {1, 1, 1, 0, 0, 1},
    {0.5F, 0.5F, 0.5F, 0, 0, 0.5F},
    {1, 0, 0, 0, 1, 1},
    {1, 1, 0, 60, 1, 1},
    {0, 1, 0, 120, 1, 1},
    {0, 1, 1, 180, 1, 1},
    {0, 0, 1, 240, 1, 1},
    {1, 0, 1, 300, 1, 1},
    {0.5F, 0.25F, 0.25F, 0, 0.5F, 0.5F},
    {1, 0, 0.5F, 330, 1, 1},
    {0.75F, 0.75F, 0.5F, 60, 1 / 3.0F, 0.75F},
};

TEST(Hsv, Rgb_becomes_hue_saturation_and_value) {
  for (const HsvCase& test : kHsvCases) {
    float hue = -1;
    float saturation = -1;
    float value = -1;
    RGBtoHSV(test.red, test.green, test.blue, hue, saturation, value);
    EXPECT_FLOAT_EQ(hue, test.hue);
    EXPECT_FLOAT_EQ(saturation, test.saturation);
    EXPECT_FLOAT_EQ(value, test.value);
  }
}

TEST(Hsv, Hue_saturation_and_value_become_rgb) {
  for (const HsvCase& test : kHsvCases) {
    float red = -1;
    float green = -1;
    float blue = -1;
    HSVtoRGB(test.hue, test.saturation, test.value, red, green, blue);
    EXPECT_FLOAT_EQ(red, test.red);
    EXPECT_FLOAT_EQ(green, test.green);
    EXPECT_FLOAT_EQ(blue, test.blue);
  }
}

TEST(Hsv, A_hue_beyond_the_circle_wraps_around_and_no_number_is_red) {
  struct Wrap {
    float hue;
    float like;
  };
  for (const Wrap& wrap : {Wrap{360, 0},
                           {480, 120},
                           {-120, 240},
                           {3600, 0},
                           {kNan, 0},
                           {kInfinity, 0},
                           {-kInfinity, 0},
                           {-1e-30F, 0},
                           {1e30F, 1e30F}}) {
    float got[3];
    float expected[3];
    HSVtoRGB(wrap.hue, 1, 1, got[0], got[1], got[2]);
    HSVtoRGB(wrap.like, 1, 1, expected[0], expected[1], expected[2]);
    for (int i = 0; i < 3; ++i) {
      EXPECT_FLOAT_EQ(got[i], expected[i]) << wrap.hue;
      EXPECT_TRUE(got[i] >= 0.0F && got[i] <= 1.0F) << wrap.hue;
    }
  }
}

TEST(Hsv, Packing_puts_hue_saturation_and_value_into_three_bytes) {
  EXPECT_EQ(hsvAsULONGValue(0, 0, 0), 0U);
  EXPECT_EQ(hsvAsULONGValue(360, 1, 1), 0xFFFFFFU);
  EXPECT_EQ(hsvAsULONGValue(180, 0.5F, 0.25F), 0x808040U);
  EXPECT_EQ(hsvAsULONGValue(240, 1, 1), 0xAAFFFFU);
}

TEST(Hsv, Packing_clamps_what_is_out_of_range) {
  EXPECT_EQ(hsvAsULONGValue(-10, -1, -1), 0U);
  EXPECT_EQ(hsvAsULONGValue(1e30F, 2, kInfinity), 0xFFFFFFU);
  EXPECT_EQ(hsvAsULONGValue(kNan, kNan, -kInfinity), 0U);
}

TEST(Hsv, Every_packed_primary_mixture_unpacks_to_itself_up_to_rounding) {
  for (const char* name : {"red", "lime", "blue", "yellow", "cyan", "magenta", "white", "black",
                           "tomato", "navy", "olive", "skyblue", "chocolate"}) {
    Color color;
    ASSERT_TRUE(getColorOfColorName(name, color));
    float hsv[3];
    ASSERT_TRUE(getHSVValuesFromColorName(name, hsv[0], hsv[1], hsv[2]));
    const std::uint32_t packed = hsvAsULONGValue(hsv[0], hsv[1], hsv[2]);
    float rgb[3];
    HSVtoRGB(static_cast<float>(packed >> 16) / 255.0F * 360.0F,
             static_cast<float>(packed >> 8 & 255U) / 255.0F,
             static_cast<float>(packed & 255U) / 255.0F, rgb[0], rgb[1], rgb[2]);
    EXPECT_NEAR(rgb[0] * 255.0F, static_cast<float>(color.GetRed()), 4.0F) << name;
    EXPECT_NEAR(rgb[1] * 255.0F, static_cast<float>(color.GetGreen()), 4.0F) << name;
    EXPECT_NEAR(rgb[2] * 255.0F, static_cast<float>(color.GetBlue()), 4.0F) << name;
  }
}

TEST(SrcOver, Moves_each_component_by_the_weight_and_rounds) {
  const Color white(255, 255, 255);
  const Color color(100, 0, 255);
  EXPECT_EQ(srcOver(white, color, 0.0).GetPacked(), color.GetPacked());
  EXPECT_EQ(srcOver(white, color, 1.0).GetPacked(), 0xFFFFFF);
  EXPECT_EQ(srcOver(white, color, 0.5), Color(178, 128, 255));
  EXPECT_EQ(srcOver(Color(), color, 0.5), Color(50, 0, 128));
  EXPECT_EQ(srcOver(white, color, 5.0), Color(255, 255, 255));
  EXPECT_EQ(srcOver(Color(), color, 5.0), Color());
}

class OneColorHost : public IxoHost {
 public:
  OneColorHost() : previous_(IxoHost::Install(this)) {}
  ~OneColorHost() override { IxoHost::Install(previous_); }
  bool FindColor(std::string_view name, Color& color) override {
    color = Color(1, 2, 3);
    return name == "house";
  }

 private:
  IxoHost* previous_;
};

TEST(ColorName, The_host_may_have_names_of_its_own) {
  const OneColorHost host;
  EXPECT_EQ(PackedOfName("house"), 0x010203);
  EXPECT_EQ(PackedOfName("red"), -1);
}

}  // namespace
