// Parsers over a stretch of a text: what stands behind its end is not looked at.
#include <gtest/gtest.h>

#include <string>

#include "tests/support/definitions.h"

namespace ixomep::test {
namespace {

struct Cut {
  const char* text;
  std::int32_t length;
  const char* shape;
};

TEST(Stretch, Ends_what_is_read) {
  const Cut rows[] = {
      {"ABC", 2, "AB"},
      {"A_B", 2, "A_"},
      {"A abc", 4, "A ab"},
      {"A a:1", 3, "A a"},
      {"A x: mode", 8, "A x~mod"},
      {"A x: mode: 1", 9, "A x~mode"},
      {"A x: m{", 6, "A x~m"},
      {"A \"b\"c", 5, "A=\"b\""},
      {"A x: \"b\"c", 8, "A x=\"b\""},
      {"A x: {1}c", 8, "A x={1}"},
      {"A x: { B }c", 10, "A x{B}"},
      {"A { B }c", 7, "A {B}"},
      {"A { B }}", 7, "A {B}"},
      {"A (* c *)b", 9, "A"},
  };
  for (const Cut& row : rows) {
    IxoMepParser parser(row.text, 0, row.length, 1, "test");
    EXPECT_EQ(parser.Parse(), IMEPERR_NONE) << row.text;
    EXPECT_EQ(Shape(parser), row.shape) << row.text << ' ' << row.length;
  }
}

TEST(Stretch, A_semicolon_behind_it_makes_no_statement) {
  IxoMepParser parser("A\nx:\";\";", 0, 7, 1, "test");
  EXPECT_EQ(parser.Parse(), IMEPERR_NONE);
  EXPECT_EQ(Shape(parser), "A x=\";\"");
}

}  // namespace
}  // namespace ixomep::test
