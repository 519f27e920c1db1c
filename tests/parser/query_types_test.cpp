// ExpectValueType: which types stand for each other, and the text and place of the error.
#include <gtest/gtest.h>

#include <string>

#include "tests/parser/queries.h"

namespace ixomep::test {
namespace {

using Type = IxoMepValueType;

struct Expected {
  const char* literal;
  Type type;
  bool fits;
};

TEST(ExpectedTypes, Only_integer_and_real_stand_for_each_other) {
  constexpr Expected kRows[] = {
      {"5", Type::Integer, true},    {"5", Type::Real, true},       {"1.5", Type::Integer, true},
      {"1.5", Type::Real, true},     {"5", Type::Measure, false},   {"5", Type::Time, false},
      {"5", Type::String, false},    {"1cm", Type::Measure, true},  {"1cm", Type::Real, false},
      {"1cm", Type::Integer, false}, {"5s", Type::Time, true},      {"5s", Type::Measure, false},
      {"\"x\"", Type::String, true}, {"\"x\"", Type::Map, false},   {"{1}", Type::Array, true},
      {"{1}", Type::Map, false},     {"{1: 2}", Type::Map, true},   {"(w)", Type::Expression, true},
      {"(w)", Type::Integer, false}, {"5", Type::Undefined, false},
  };
  for (const Expected& row : kRows) {
    SCOPED_TRACE(std::string(row.literal) + " as " + IxoMepValue::GetTypeName(row.type).c_str());
    const auto parser = ReadText(String("KEY ") + row.literal + " a: " + row.literal);
    const IxoMepErrorEnum code = row.fits ? IMEPERR_NONE : IMEPERR_UNEXPECTED_TYPE;
    EXPECT_EQ(parser->ExpectValueType(row.type, true), code);
    EXPECT_EQ(parser->ExpectValueType("a", row.type, true), code);
    EXPECT_EQ(parser->ExpectValueTypeOfPos(0, row.type, true), code);
    EXPECT_EQ(parser->GetErrorCode(), code);
  }
}

TEST(ExpectedTypes, The_text_names_attribute_keyword_and_both_types) {
  const auto parser = ReadText("NODE size: 5");
  EXPECT_EQ(parser->ExpectValueType("size", Type::Measure, false), 36);
  EXPECT_EQ(parser->GetErrorText(),
            "The attribute \"size\" (NODE) should be of the type measure, but is of the type "
            "integer.\n\nin test");
  EXPECT_EQ(parser->ExpectValueTypeOfPos(0, Type::String, false), 36);
  EXPECT_EQ(parser->GetErrorText(),
            "The attribute \"size\" (NODE) should be of the type string, but is of the type "
            "integer.\n\nin test");
}

TEST(ExpectedTypes, The_text_for_the_own_value_names_the_keyword) {
  const auto parser = ReadText("NODE 5");
  EXPECT_EQ(parser->ExpectValueType(Type::Map, false), 36);
  EXPECT_EQ(parser->GetErrorText(),
            "The attribute NODE should be of the type map, but is of the type integer.\n\nin test");
}

TEST(ExpectedTypes, The_error_stands_at_the_start_of_the_element) {
  const auto parser = ReadText("A\n\n  NODE\n size: 5\n", "file.mep");
  ASSERT_TRUE(parser->SetCurElemIndex(1));
  EXPECT_EQ(parser->ExpectValueType("size", Type::Measure, false), 36);
  EXPECT_TRUE(parser->GetErrorText().view().ends_with("\n\nLine 3 in file.mep"))
      << parser->GetErrorText().c_str();
  EXPECT_EQ(parser->GetErrorCode(), 36);
  EXPECT_EQ(parser->GetErrorOffset(), 5);
  EXPECT_EQ(parser->GetErrorLine(), 3);
}

TEST(ExpectedTypes, Missing_is_an_error_unless_allowed) {
  const auto parser = ReadText("NODE flag");
  for (const char* name : {"none", "flag"}) {
    EXPECT_EQ(parser->ExpectValueType(name, Type::String, true), IMEPERR_NONE);
    EXPECT_EQ(parser->GetErrorText(), "");
    EXPECT_EQ(parser->ExpectValueType(name, Type::String, false), 36);
    EXPECT_TRUE(parser->GetErrorText().view().starts_with(
        std::string("The attribute \"") + name +
        "\" (NODE) should be of the type string, but is of the type undefined."));
    ASSERT_EQ((parser->SetText("NODE flag"), parser->Parse()), IMEPERR_NONE);
  }
  EXPECT_EQ(parser->ExpectValueType(Type::String, true), IMEPERR_NONE);
  EXPECT_EQ(parser->ExpectValueType(Type::String, false), 36);
  EXPECT_EQ(parser->ExpectValueTypeOfPos(7, Type::String, true), IMEPERR_NONE);
  EXPECT_EQ(parser->ExpectValueTypeOfPos(7, Type::String, false), 36);
}

TEST(ExpectedTypes, Look_at_the_resolved_value) {
  IxoMepValueSet scope;
  SetVariable(scope, "w", 5);
  const auto parser = ReadText("NODE a: (w)");
  EXPECT_EQ(parser->ExpectValueType("a", Type::Integer, false), 36);
  parser->SetVars(&scope);
  EXPECT_EQ(parser->ExpectValueType("a", Type::Integer, false), IMEPERR_NONE);
  EXPECT_EQ(parser->ExpectValueType("a", Type::Expression, false), 36);
}

TEST(ExpectedTypes, A_name_that_holds_a_placeholder_is_shown_as_it_is) {
  const auto parser = ReadText("NODE list[\"%type1\"]: 5");
  EXPECT_EQ(parser->ExpectValueTypeOfPos(0, Type::String, false), 36);
  EXPECT_TRUE(parser->GetErrorText().view().starts_with(
      "The attribute \"list[\"%type1\"]\" (NODE) should be of the type string"))
      << parser->GetErrorText().c_str();
}

TEST(ExpectedTypes, Without_memory_for_the_text_the_code_is_38) {
  const auto parser = ReadText(String("NODE a: 1 # ") + std::string(5000, ' '));
  const String name = String::Filled(100000, 'n');
  const ScopedMemoryLimit limit(1000);
  EXPECT_EQ(parser->ExpectValueType(name, Type::String, false), 38);
  EXPECT_EQ(parser->GetErrorCode(), 38);
}

}  // namespace
}  // namespace ixomep::test
