// The text that @INCLUDE splices together: byte by byte what the files hold.
#include <gtest/gtest.h>

#include <string>

#include "tests/support/definitions.h"
#include "tests/support/test_host.h"

namespace ixomep::test {
namespace {

TEST(IncludeText, The_files_own_line_ends_stay) {
  TestHost host;
  host.files["b.txt"] = "B c: \"x\r\ny\"\r\nD\r";
  const Definition definition("A\r\n@INCLUDE \"b.txt\"\r\nE");
  ASSERT_EQ(definition.code, IMEPERR_NONE);
  EXPECT_EQ(definition.parser.GetCompleteText(), "A\r\nB c: \"x\r\ny\"\r\nD\r\r\nE");
  EXPECT_EQ(definition.Element(1).GetAttr(0)->GetValue()->GetStr(), "x\r\ny");
}

TEST(IncludeText, The_cache_keeps_line_ends_too) {
  TestHost host;
  host.files["db:\\line_ends"] = "B\r\nC\r\n";
  for (int time = 0; time < 2; ++time) {
    IxoMepParser parser("@INCLUDE \"db:\\\\line_ends\"", "test");
    parser.SetUseIncludeCache(true);
    ASSERT_EQ(parser.Parse(), IMEPERR_NONE);
    EXPECT_EQ(parser.GetCompleteText(), "B\r\nC\r\n");
  }
  EXPECT_EQ(host.ReadsOf("db:\\line_ends"), 1);
}

}  // namespace
}  // namespace ixomep::test
