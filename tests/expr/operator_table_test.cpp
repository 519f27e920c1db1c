// The table of operators and the printed names of all kinds.
#include "ixomep/expr/operator_table.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "ixomep/expr/node.h"

namespace {

using Kind = IxoMepExprNodeType;

TEST(OperatorTable, Every_kind_from_7_to_46_has_its_printed_name) {
  const char* const names[] = {
      ":=",    ",",    ":",   ".",   "(",  ")",   "+",   "-",   "*",   "/",
      "MOD",   "=",    "<=",  "!=",  "<",  ">=",  ">",   "{",   "}",   "[",
      "]",     "VAL",  "STR", "AND", "OR", "LEN", "NOT", "SUB", "IN",  "ROUND",
      "FLOOR", "CEIL", "CM",  "CMS", "PT", "PTS", "ASC", "CHR", "INT", "REAL"};
  int number = 7;
  for (const char* name : names) {
    EXPECT_EQ(std::string(IxoMepExprNode::GetOpName(static_cast<Kind>(number)).c_str()), name);
    ++number;
  }
  EXPECT_EQ(number, 47);
}

TEST(OperatorTable, Any_other_kind_prints_as_three_question_marks) {
  for (const int number : {0, 1, 2, 3, 4, 5, 6, 47, 1000, -1, -2147483647 - 1, 2147483647}) {
    EXPECT_TRUE(IxoMepExprNode::GetOpName(static_cast<Kind>(number)) == "???") << number;
    EXPECT_EQ(ixomep::FindOperator(static_cast<Kind>(number)), nullptr) << number;
  }
}

TEST(OperatorTable, No_spelling_stands_twice) {
  std::set<std::string_view> spellings;
  for (const ixomep::OperatorRow& row : ixomep::kOperators) {
    EXPECT_TRUE(spellings.insert(row.spelling).second) << row.spelling;
  }
}

TEST(OperatorTable, Words_are_the_rows_of_upper_case_letters) {
  for (const ixomep::OperatorRow& row : ixomep::kOperators) {
    EXPECT_EQ(row.is_word, row.spelling[0] >= 'A' && row.spelling[0] <= 'Z') << row.spelling;
    EXPECT_LT(row.spelling.size(), 10u);
  }
}

}  // namespace
