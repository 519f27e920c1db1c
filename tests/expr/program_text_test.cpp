// Sums of three and more texts, which are joined at once: every part is there as it was when its
// turn came.
#include <gtest/gtest.h>

#include "tests/support/eval.h"
#include "tests/support/limits.h"

namespace ixomep::test {
namespace {

// Evaluated again and again, with and without programs.
void ExpectAlways(std::string_view text, std::string_view expected) {
  for (const bool programs : {false, true}) {
    const UseOfPrograms use(programs);
    IxoMepValueSet scope;
    EXPECT_EQ(
        Shown("a := \"1\", b := \"2\", n := 7, f := lambda(" + std::string(text) + "), 0", &scope),
        "integer 0");
    for (int time = 0; time < 3; ++time) EXPECT_EQ(Shown("f()", &scope), expected) << text;
  }
}

TEST(ProgramText, Parts_that_are_made_on_the_way_stay_apart) {
  ExpectAlways("\"<\" + a * 40 + \"|\" + b * 40 + \">\"",
               "string \"<" + std::string(40, '1') + "|" + std::string(40, '2') + ">\"");
  ExpectAlways("STR n + a * 40 + b * 40",
               "string \"7" + std::string(40, '1') + std::string(40, '2') + "\"");
}

TEST(ProgramText, Numbers_are_no_texts_unless_they_are_shown) {
  ExpectAlways("a + STR n + b", "string \"172\"");
  ExpectAlways("a + n + b", "error 21");
  ExpectAlways("STR (n * 2) + \"|\" + STR (n / 2) + a", "string \"14|3.51\"");
}

}  // namespace
}  // namespace ixomep::test
