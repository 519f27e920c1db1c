// rgbval, rgb2hsv, hsvval, hsv2rgb.
#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "tests/support/call_checks.h"

namespace ixomep::test {
namespace {

const CallTypes kColorFunctions[] = {
    {"rgbval", {"S", "SN", "NNN"}},
    {"rgb2hsv", {"NNN"}},
    {"hsvval", {"S", "NNN"}},
    {"hsv2rgb", {"I", "NNN"}},
};

// Numbers that no literal denotes, as variables.
void SetStrangeNumbers(Session& session) {
  session.Set("least", IxoMepValue(std::numeric_limits<int>::min()));
  session.Set("most", IxoMepValue(std::numeric_limits<int>::max()));
  session.Set("nan", IxoMepValue(std::numeric_limits<double>::quiet_NaN()));
  session.Set("inf", IxoMepValue(std::numeric_limits<double>::infinity()));
  session.Set("huge", IxoMepValue(1e300));
}

std::string Packed(int red, int green, int blue) {
  return "integer " + std::to_string(red * 65536 + green * 256 + blue);
}

TEST(Colors, Counts_and_types_of_arguments_are_those_of_the_table) {
  for (const CallTypes& function : kColorFunctions) CheckCountsAndTypes(function);
}

TEST(RgbVal, Of_255_0_0_is_16711680_and_of_0_0_255_is_255) {
  Session session;
  CheckAll(session, {{"rgbval(255, 0, 0)", "integer 16711680"},
                     {"rgbval(0, 255, 0)", "integer 65280"},
                     {"rgbval(0, 0, 255)", "integer 255"},
                     {"rgbval(18, 52, 86)", Packed(18, 52, 86)}});
}

TEST(RgbVal, Components_are_truncated_to_integers_first) {
  Session session;
  CheckAll(session, {{"rgbval(1.9, 2.9, 3.9)", Packed(1, 2, 3)},
                     {"rgbval(0, 0, -0.9)", "integer 0"},
                     {"rgbval(0, 0, -1.9)", "integer -1"}});
}

TEST(RgbVal, Components_out_of_range_add_as_they_are_and_wrap) {
  Session session;
  SetStrangeNumbers(session);
  CheckAll(session, {{"rgbval(0, 0, 256)", "integer 256"},
                     {"rgbval(0, -1, 0)", "integer -256"},
                     {"rgbval(65536, 0, 0)", "integer 0"},
                     {"rgbval(32768, 0, 0)", "integer -2147483648"},
                     {"rgbval(0, 0, most) + 0", "integer 2147483647"},
                     {"rgbval(0, 1, most)", "integer -2147483393"}});
}

TEST(RgbVal, Reals_beyond_the_integers_take_the_nearest_one_and_NaN_is_zero) {
  Session session;
  SetStrangeNumbers(session);
  CheckAll(session, {{"rgbval(0, 0, huge)", "integer 2147483647"},
                     {"rgbval(0, 0, -huge)", "integer -2147483648"},
                     {"rgbval(0, 0, inf)", "integer 2147483647"},
                     {"rgbval(nan, nan, nan)", "integer 0"}});
}

TEST(RgbVal, Name_gives_its_color_in_upper_and_lower_case) {
  Session session;
  CheckAll(session, {{"rgbval(\"red\")", Packed(255, 0, 0)},
                     {"rgbval(\"RED\")", Packed(255, 0, 0)},
                     {"rgbval(\"RebeccaPurple\")", Packed(0x66, 0x33, 0x99)},
                     {"rgbval(\"white\")", Packed(255, 255, 255)}});
}

TEST(RgbVal, Unknown_name_is_black) {
  Session session;
  session.Set("odd", IxoMepValue(String(std::string_view("red\0", 4))));
  CheckAll(session, {{"rgbval(\"no such colour\")", "integer 0"},
                     {"rgbval(\"\")", "integer 0"},
                     {"rgbval(\" red\")", "integer 0"},
                     {"rgbval(odd)", "integer 0"},
                     {"rgbval(\"no such colour\", 1)", "integer 0"},
                     {"rgbval(\"no such colour\", 2)", Packed(255, 255, 255)}});
}

TEST(RgbValShaded, Factor_above_1_and_at_most_2_blends_towards_white) {
  Session session;
  CheckAll(session, {{"rgbval(\"red\", 1.5)", Packed(255, 128, 128)},
                     {"rgbval(\"red\", 1.2)", Packed(255, 51, 51)},
                     {"rgbval(\"red\", 2)", Packed(255, 255, 255)},
                     {"rgbval(\"red\", 2.0)", Packed(255, 255, 255)},
                     {"rgbval(\"navy\", 1.5)", Packed(128, 128, 192)}});
}

TEST(RgbValShaded, Factor_from_0_up_to_but_excluding_1_blends_towards_black) {
  Session session;
  CheckAll(session, {{"rgbval(\"red\", 0)", Packed(0, 0, 0)},
                     {"rgbval(\"red\", -0.0)", Packed(0, 0, 0)},
                     {"rgbval(\"red\", 0.2)", Packed(51, 0, 0)},
                     {"rgbval(\"white\", 0.5)", Packed(128, 128, 128)}});
}

TEST(RgbValShaded, Factor_1_or_outside_0_to_2_leaves_the_color) {
  Session session;
  SetStrangeNumbers(session);
  for (const char* factor :
       {"1", "1.0", "-0.001", "-1", "2.001", "3", "nan", "inf", "-inf", "huge", "least", "most"}) {
    EXPECT_EQ(session.Eval(std::string("rgbval(\"teal\", ") + factor + ")"), Packed(0, 128, 128))
        << factor;
  }
}

TEST(RgbValShaded, Wrong_types_are_told_apart) {
  Session session;
  CheckAll(
      session,
      {{"rgbval(1, 2)", "error 21: A value has the wrong type: rgbval(integer, integer)"},
       {"rgbval(\"red\", \"1\")", "error 21: A value has the wrong type: rgbval(string, string)"},
       {"rgbval(1)", "error 21: A value has the wrong type: rgbval(integer)"},
       {"rgbval(\"red\", 1, 1)",
        "error 21: A value has the wrong type: rgbval(string, integer, integer)"}});
}

TEST(Rgb2Hsv, Packs_hue_saturation_and_value) {
  Session session;
  CheckAll(session, {{"rgb2hsv(255, 0, 0)", Packed(0, 255, 255)},
                     {"rgb2hsv(0, 255, 0)", Packed(85, 255, 255)},
                     {"rgb2hsv(0, 0, 255)", Packed(170, 255, 255)},
                     {"rgb2hsv(0, 0, 0)", "integer 0"},
                     {"rgb2hsv(255, 255, 255)", Packed(0, 0, 255)},
                     {"rgb2hsv(128, 128, 128)", Packed(0, 0, 128)},
                     {"rgb2hsv(127.5, 0, 0.0)", Packed(0, 255, 128)}});
}

TEST(HsvVal, Packs_three_numbers_rounded_and_clamped) {
  Session session;
  SetStrangeNumbers(session);
  CheckAll(session, {{"hsvval(120, 1, 1)", Packed(85, 255, 255)},
                     {"hsvval(360, 0.5, 0.25)", Packed(255, 128, 64)},
                     {"hsvval(0, 0, 0)", "integer 0"},
                     {"hsvval(-10, 2, -1)", Packed(0, 255, 0)},
                     {"hsvval(huge, -huge, inf)", Packed(255, 0, 255)},
                     {"hsvval(nan, nan, nan)", "integer 0"}});
}

TEST(HsvVal, Name_is_converted_first) {
  Session session;
  CheckAll(session, {{"hsvval(\"lime\") = rgb2hsv(0, 255, 0)", "integer 1"},
                     {"hsvval(\"orchid\") = rgb2hsv(218, 112, 214)", "integer 1"},
                     {"hsvval(\"no such colour\")", "integer 0"}});
}

TEST(Hsv2Rgb, Three_numbers_are_degrees_and_parts_of_one) {
  Session session;
  CheckAll(session, {{"hsv2rgb(0, 1, 1)", Packed(255, 0, 0)},
                     {"hsv2rgb(60, 1, 1)", Packed(255, 255, 0)},
                     {"hsv2rgb(120, 1, 1)", Packed(0, 255, 0)},
                     {"hsv2rgb(180.0, 1, 1)", Packed(0, 255, 255)},
                     {"hsv2rgb(240, 1, 1)", Packed(0, 0, 255)},
                     {"hsv2rgb(300, 1, 1)", Packed(255, 0, 255)},
                     {"hsv2rgb(360, 1, 1)", Packed(255, 0, 0)},
                     {"hsv2rgb(77, 0, 1)", Packed(255, 255, 255)},
                     {"hsv2rgb(77, 1, 0)", "integer 0"}});
}

TEST(Hsv2Rgb, Components_are_cut_to_integers_not_rounded) {
  Session session;
  CheckAll(session, {{"hsv2rgb(0, 0, 0.5)", Packed(127, 127, 127)},
                     {"hsv2rgb(0, 0.5, 1)", Packed(255, 127, 127)},
                     {"hsv2rgb(0, 0, 0.999)", Packed(254, 254, 254)}});
}

TEST(Hsv2Rgb, Packed_integer_is_taken_apart_first) {
  Session session;
  CheckAll(session, {{"hsv2rgb(hsvval(0, 1, 1))", Packed(255, 0, 0)},
                     {"hsv2rgb(5636095)", Packed(0, 255, 0)},
                     {"hsv2rgb(255)", Packed(255, 255, 255)},
                     {"hsv2rgb(128)", Packed(128, 128, 128)},
                     {"hsv2rgb(0)", "integer 0"}});
}

TEST(Hsv2Rgb, Bits_above_the_24_do_not_count) {
  Session session;
  CheckAll(session, {{"hsv2rgb(255 + 16777216)", Packed(255, 255, 255)},
                     {"hsv2rgb(-1) = hsv2rgb(16777215)", "integer 1"}});
}

TEST(Hsv2Rgb, Undoes_the_packing_of_every_grey) {
  Session session;
  EXPECT_EQ(session.Eval("bad := 0, for(i, 0, 255) { bad := bad + (hsv2rgb(rgb2hsv(i, i, i)) != "
                         "rgbval(i, i, i)) } { bad }"),
            "integer 0");
}

TEST(Hsv2Rgb, Undoes_the_packing_of_colors_up_to_rounding) {
  Session session;
  const std::string text =
      "worst := 0, for(r, 0, 5) { 0, for(g, 0, 5) { 0, for(b, 0, 5) {"
      "  c := hsv2rgb(rgb2hsv(r * 51, g * 51, b * 51)),"
      "  worst := max(worst, max(abs(byte(c, 2) - r * 51),"
      "                          max(abs(byte(c, 1) - g * 51), abs(byte(c, 0) - b * 51))))"
      "} } } { worst <= 4 }";
  EXPECT_EQ(session.Eval(text), "integer 1") << session.Eval("worst");
}

TEST(Hsv2Rgb, Hue_goes_round_the_circle) {
  Session session;
  CheckAll(session,
           {{"hsv2rgb(480, 1, 1)", Packed(0, 255, 0)}, {"hsv2rgb(-120, 1, 1)", Packed(0, 0, 255)}});
}

TEST(Hsv2Rgb, Numbers_out_of_range_give_some_integer) {
  Session session;
  SetStrangeNumbers(session);
  const char* const numbers[] = {"nan", "inf", "-inf", "huge", "-huge", "least", "most", "-1", "2"};
  for (const char* function : {"hsv2rgb", "hsvval", "rgb2hsv", "rgbval"}) {
    for (const char* a : numbers) {
      for (const char* b : numbers) {
        for (const char* c : numbers) {
          const std::string call = std::string(function) + "(" + a + ", " + b + ", " + c + ")";
          EXPECT_TRUE(session.Eval(call).starts_with("integer ")) << call;
        }
      }
    }
  }
}

}  // namespace
}  // namespace ixomep::test
