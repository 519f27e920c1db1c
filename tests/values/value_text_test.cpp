// The text form of values of every type, nested, circular and deep.
#include <gtest/gtest.h>

#include <limits>

#include "ixomep/host/memory_budget.h"
#include "tests/support/test_host.h"
#include "tests/values/samples.h"

namespace ixomep::test {
namespace {

struct TextRow {
  IxoMepValue value;
  const char* text;
};

TEST(ValueText, Each_type_has_its_form) {
  const TextRow rows[] = {
      {IxoMepValue(), "(undefined)"},
      {"a", "\"a\""},
      {"", "\"\""},
      {"q\"b\\t\t", "\"q\\\"b\\\\t\\t\""},
      {0, "0"},
      {-12, "-12"},
      {std::numeric_limits<int>::min(), "-2147483648"},
      {2.5, "2.5"},
      {2.0, "2"},
      {-0.25, "-0.25"},
      {1e6, "1000000"},
      {{Type::Measure, 1234}, "12.34cm"},
      {{Type::Measure, 0}, "0cm"},
      {{Type::Measure, 12.7}, ".12cm"},
      {{Type::Measure, 12.999995}, ".13cm"},
      {{Type::Time, 3661}, "00:000:01:01:01"},
      {Array({}), "{}"},
      {Array({1, "a", 2.5}), "{1, \"a\", 2.5}"},
      {Map({}), "{}"},
      {Map({"b", 2, "a", Array({1})}), "{\"a\": {1}, \"b\": 2}"},
      {&Target(), "(reference)"},
      {Sample(Type::Lambda), "(undefined)"},
      {Sample(Type::Object), "OBJECT{p: 1}"},
      {IxoMepValue(Type::Object), "OBJECT{}"},
  };
  for (const TextRow& row : rows) EXPECT_EQ(TextOf(row.value), row.text);
}

TEST(ValueText, An_unknown_tag_is_undefined) {
  TestHost host;
  EXPECT_EQ(TextOf(IxoMepValue(static_cast<Type>(12))), "(undefined)");
}

TEST(ValueText, The_period_concerns_the_outermost_value_only) {
  EXPECT_EQ(Str(IxoMepValue(2.0).GetText(true)), "2.0");
  EXPECT_EQ(Str(IxoMepValue(2.0).GetText(false)), "2");
  EXPECT_EQ(Str(IxoMepValue(2.5).GetText(true)), "2.5");
  EXPECT_EQ(Str(Array({2.0}).GetText(true)), "{2}");
  EXPECT_EQ(Str(Map({2.0, 3.0}).GetText(true)), "{2: 3}");
}

TEST(ValueText, A_reference_inside_is_not_followed) {
  EXPECT_EQ(TextOf(Array({&Target()})), "{(reference)}");
}

TEST(ValueText, Properties_stand_in_name_order) {
  IxoMepValue object(Type::Object);
  object.MoveValue("b", new IxoMepValue(2));
  object.MoveValue("a", new IxoMepValue("x"));
  EXPECT_EQ(TextOf(object), "OBJECT{a: \"x\", b: 2}");
}

TEST(ValueText, An_object_inside_itself_is_not_rendered_again) {
  IxoMepValue object = ObjectWith("n", 1);
  object.MoveValue("self", new IxoMepValue(Array({object, object})));
  EXPECT_EQ(TextOf(object), "OBJECT{n: 1, self: {OBJECT{...}, OBJECT{...}}}");
  EXPECT_EQ(TextOf(object), "OBJECT{n: 1, self: {OBJECT{...}, OBJECT{...}}}");
  object.MoveValue("self", new IxoMepValue(0));
}

TEST(ValueText, The_same_object_side_by_side_is_rendered_each_time) {
  const IxoMepValue object = ObjectWith("n", 1);
  EXPECT_EQ(TextOf(Array({object, object})), "{OBJECT{n: 1}, OBJECT{n: 1}}");
}

TEST(ValueText, Arrays_a_million_deep_have_a_text) {
  constexpr int kDepth = 1000000;
  const IxoMepValue value = Nested(5, kDepth);
  const String text = value.GetText();
  EXPECT_EQ(text.Len(), 2 * kDepth + 1);
  EXPECT_EQ(text[kDepth], '5');
}

TEST(ValueText, A_text_beyond_the_memory_limit_fails_cleanly) {
  IxoMepValue value("0123456789");
  for (int i = 0; i < 25; ++i) value = Array({value, value});
  const std::size_t before = MemoryBudget::InUse();
  const ScopedMemoryLimit limit(1000000);
  EXPECT_THROW(ValueAccess::TextOf(value), std::bad_alloc);
  EXPECT_EQ(MemoryBudget::InUse(), before);
}

TEST(ValueText, A_text_that_cannot_be_had_is_empty) {
  IxoMepValue value("0123456789");
  for (int i = 0; i < 25; ++i) value = Array({value, value});
  IxoMepValue object(Type::Object);
  object.MoveValue("a", new IxoMepValue(value));
  const std::size_t before = MemoryBudget::InUse();
  const ScopedMemoryLimit limit(1000000);
  EXPECT_EQ(Str(value.GetText()), "");
  EXPECT_EQ(Str(value.GetStr()), "");
  EXPECT_EQ(Str(object.GetText()), "");
  EXPECT_EQ(Str(object.GetObject()->GetText()), "");
  EXPECT_EQ(MemoryBudget::InUse(), before);
}

TEST(ValueText, An_object_whose_text_failed_is_rendered_again_later) {
  IxoMepValue object = ObjectWith("a", 1);
  object.MoveValue("b", new IxoMepValue(String::Filled(10000, 'x')));
  {
    const ScopedMemoryLimit limit(100);
    EXPECT_EQ(Str(object.GetText()), "");
  }
  EXPECT_EQ(TextOf(object).substr(0, 12), "OBJECT{a: 1,");
}

}  // namespace
}  // namespace ixomep::test
