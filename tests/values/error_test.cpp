// The texts of the error codes and of failed calls, and the filling of placeholders.
#include "ixomep/values/error.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "ixomep/host/res_id.h"
#include "ixomep/values/raise.h"
#include "tests/support/test_host.h"
#include "tests/values/samples.h"

namespace ixomep::test {
namespace {

IxoMepErrorEnum Code(int number) { return static_cast<IxoMepErrorEnum>(number); }

bool IsWithoutText(int code) {
  for (const int without : {0, 7, 11, 12, 33, 34, 35}) {
    if (code == without) return true;
  }
  return false;
}

TEST(Codes, May_be_plain_numbers) {
  const IxoMepValue value("text");
  IxoMepValue argument(1);
  const IxoMepValueList list = {&argument};
  EXPECT_EQ(IxoMepError::GetErrorText(44), "");
  EXPECT_EQ(IxoMepError::GetErrorText(-1), "");
  EXPECT_EQ(IxoMepError::GetErrorText(18), IxoMepError::GetErrorText(IMEPERR_DIVISION_BY_ZERO));
  EXPECT_EQ(IxoMepError::MakeFunctionError(21, "_abs", &value),
            IxoMepError::MakeFunctionError(IMEPERR_WRONG_TYPE, "_abs", &value));
  EXPECT_EQ(IxoMepError::MakeFunctionError(21, "_abs", list),
            IxoMepError::MakeFunctionError(IMEPERR_WRONG_TYPE, "_abs", list));
  String text;
  EXPECT_EQ(IxoMepError::MakeFunctionError(text, 21, "_abs", list), IMEPERR_WRONG_TYPE);
  EXPECT_NE(text.Search("_abs(integer)"), String::kNotFound);
}

TEST(ErrorTexts, Each_code_has_the_text_of_its_resource) {
  int texts = 0;
  for (int code = 0; code <= 43; ++code) {
    const String text = IxoMepError::GetErrorText(Code(code));
    if (IsWithoutText(code)) {
      EXPECT_TRUE(text.IsEmpty()) << code;
      continue;
    }
    EXPECT_EQ(Str(text), Str(String(ResId(16100 + code)))) << code;
    EXPECT_FALSE(text.IsEmpty()) << code;
    ++texts;
  }
  EXPECT_EQ(texts, 37);
}

// The texts are asked for once in a process.
TEST(ErrorTextsDeathTest, A_host_is_not_asked_for_those_of_codes_without_a_text) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto exit_by_texts = [] {
    TestHost host;
    for (int code = 0; code <= 43; ++code) host.resources[16100 + code] = "a text";
    bool is_right = true;
    for (int code = 0; code <= 43; ++code) {
      const bool is_empty = IxoMepError::GetErrorText(Code(code)).IsEmpty();
      is_right = is_right && is_empty == IsWithoutText(code);
    }
    std::_Exit(is_right ? 0 : 1);
  };
  EXPECT_EXIT(exit_by_texts(), testing::ExitedWithCode(0), "");
}

TEST(ErrorTexts, Numbers_outside_have_none) {
  for (const int code : {44, 45, 1000, 2147483647, -1, -2147483647}) {
    EXPECT_TRUE(IxoMepError::GetErrorText(Code(code)).IsEmpty()) << code;
  }
}

TEST(ErrorTexts, The_texts_used_for_calls_can_show_the_call) {
  for (const int code : {21, 23}) {
    EXPECT_NE(Str(IxoMepError::GetErrorText(Code(code))).find("%func"), std::string::npos) << code;
  }
}

std::string Expected(int code, const std::string& call) {
  std::string text = Str(IxoMepError::GetErrorText(Code(code)));
  return text.replace(text.find("%func"), 5, call);
}

TEST(FunctionErrors, Show_the_call_with_the_types_of_its_arguments) {
  IxoMepValue text("s"), number(1), real(1.5);
  EXPECT_EQ(Str(IxoMepError::MakeFunctionError(IMEPERR_WRONG_TYPE, "_abs", {&text})),
            Expected(21, "_abs(string)"));
  EXPECT_EQ(Str(IxoMepError::MakeFunctionError(IMEPERR_WRONG_TYPE, "_tokcnt", {&text, &number})),
            Expected(21, "_tokcnt(string, integer)"));
  EXPECT_EQ(
      Str(IxoMepError::MakeFunctionError(IMEPERR_WRONG_ARGUMENT_COUNT, "f", IxoMepValueList{})),
      Expected(23, "f()"));
}

TEST(FunctionErrors, Every_type_is_shown_by_its_name) {
  for (const Type type : kAllTypes) {
    IxoMepValue value = Sample(type);
    EXPECT_EQ(Str(IxoMepError::MakeFunctionError(IMEPERR_WRONG_TYPE, "f", {&value})),
              Expected(21, "f(" + NameOf(type) + ")"));
  }
}

TEST(FunctionErrors, By_pointers_show_the_arguments_that_are_present) {
  const IxoMepValue text("s"), number(1), real(1.5);
  EXPECT_EQ(Str(IxoMepError::MakeFunctionError(IMEPERR_WRONG_TYPE, "f")), Expected(21, "f()"));
  EXPECT_EQ(Str(IxoMepError::MakeFunctionError(IMEPERR_WRONG_TYPE, "f", &text, &number)),
            Expected(21, "f(string, integer)"));
  EXPECT_EQ(Str(IxoMepError::MakeFunctionError(IMEPERR_WRONG_TYPE, "f", &text, nullptr, &real)),
            Expected(21, "f(string, real)"));
  EXPECT_EQ(Str(IxoMepError::MakeFunctionError(IMEPERR_WRONG_TYPE, "f", &text, &text, &text, &text,
                                               &text, &number)),
            Expected(21, "f(string, string, string, string, string, integer)"));
}

TEST(FunctionErrors, By_pointers_an_absent_first_leaves_the_separator) {
  const IxoMepValue number(1);
  EXPECT_EQ(Str(IxoMepError::MakeFunctionError(IMEPERR_WRONG_TYPE, "f", nullptr, &number)),
            Expected(21, "f(, integer)"));
}

TEST(FunctionErrors, Can_be_stored_and_returned_in_one_step) {
  IxoMepValue text("s");
  String error = "old";
  EXPECT_EQ(IxoMepError::MakeFunctionError(error, IMEPERR_WRONG_TYPE, "f", IxoMepValueList{&text}),
            IMEPERR_WRONG_TYPE);
  EXPECT_EQ(Str(error), Expected(21, "f(string)"));
}

TEST(FunctionErrors, A_code_without_text_gives_the_empty_text) {
  String error = "old";
  EXPECT_EQ(IxoMepError::MakeFunctionError(error, IMEPERR_NONE, "f", IxoMepValueList{}),
            IMEPERR_NONE);
  EXPECT_TRUE(error.IsEmpty());
}

TEST(ErrorHolder, Copying_it_copies_nothing_of_the_texts) {
  IxoMepError holder;
  IxoMepError copy(holder);
  copy = holder;
  EXPECT_FALSE(IxoMepError::GetErrorText(IMEPERR_WRONG_TYPE).IsEmpty());
}

struct FillRow {
  const char* text;
  const char* placeholder;
  const char* replacement;
  const char* filled;
};

TEST(Placeholders, The_first_occurrence_is_replaced) {
  const FillRow rows[] = {
      {"a %x b %x", "%x", "1", "a 1 b %x"},
      {"%x", "%x", "", ""},
      {"none", "%x", "1", "none"},
      {"%xx", "%x", "%x", "%xx"},
      {"", "%x", "1", ""},
      {"end %x", "%x", "long replacement", "end long replacement"},
  };
  for (const FillRow& row : rows) {
    String text = row.text;
    FillPlaceholder(text, row.placeholder, row.replacement);
    EXPECT_EQ(Str(text), row.filled);
  }
}

TEST(Raise, Sets_the_text_with_its_placeholders_filled_and_returns_the_code) {
  String text = "old";
  EXPECT_EQ(Raise(text, IMEPERR_UNKNOWN_MEMBER, {{"%type", "T"}, {"%property", "P"}}),
            IMEPERR_UNKNOWN_MEMBER);
  std::string expected = Str(IxoMepError::GetErrorText(IMEPERR_UNKNOWN_MEMBER));
  expected.replace(expected.find("%type"), 5, "T");
  expected.replace(expected.find("%property"), 9, "P");
  EXPECT_EQ(Str(text), expected);
}

TEST(Raise, Fills_in_the_given_order) {
  String text;
  Raise(text, IMEPERR_UNKNOWN_MEMBER, {{"%type", "%property"}, {"%property", "P"}});
  // The placeholder that the first replacement brought in may be the one that is filled.
  EXPECT_NE(Str(text).find("P"), std::string::npos);
  EXPECT_NE(Str(text).find("%property"), std::string::npos);
}

TEST(Raise, A_replacement_may_be_a_part_of_the_text_itself) {
  String text = "unknown name";
  Raise(text, IMEPERR_UNKNOWN_MEMBER, {{"%property", text}});
  EXPECT_NE(Str(text).find("unknown name"), std::string::npos);
}

}  // namespace
}  // namespace ixomep::test
