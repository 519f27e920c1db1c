// Properties and methods of values: every name on every type, the argument checks, the results.
#include <gtest/gtest.h>

#include <limits>

#include "ixomep/values/error.h"
#include "ixomep/values/string_address_map.h"
#include "tests/support/test_host.h"
#include "tests/values/samples.h"

namespace ixomep::test {
namespace {

struct Outcome {
  long code;
  std::string result;  // the text of the value; "none" without one
  std::string error;
};

Outcome Property(const IxoMepValue& value, const char* name) {
  IxoMepValue* result = nullptr;
  String error;
  const long code = value.GetPropertyValue(name, result, error);
  const ValuePtr owned(result);
  return {code, result != nullptr ? TextOf(*result) : "none", Str(error)};
}

Outcome CallByAddress(IxoMepValue& value, const char* name,
                      std::initializer_list<IxoMepValue> args) {
  OwnedList list;
  for (const IxoMepValue& arg : args) list.Add(MakeValue(arg));
  IxoMepValue* result = nullptr;
  String error;
  const long code = value.EvaluateMethodCall(name, list.View(), result, error, false);
  const ValuePtr owned(result);
  return {code, result != nullptr ? TextOf(*result) : "none", Str(error)};
}

Outcome Call(IxoMepValue& value, const char* name, std::initializer_list<IxoMepValue> args = {}) {
  return CallByAddress(value, Intern(name), args);
}

Outcome CallText(const char* text, const char* name, std::initializer_list<IxoMepValue> args = {}) {
  IxoMepValue value(text);
  return Call(value, name, args);
}

// The text of code 42 for the type and name.
std::string UnknownMember(Type type, const std::string& name) {
  std::string text = Str(IxoMepError::GetErrorText(IMEPERR_UNKNOWN_MEMBER));
  text.replace(text.find("%type"), 5, NameOf(type));
  return text.replace(text.find("%property"), 9, name);
}

std::string FunctionError(IxoMepErrorEnum code, const std::string& call) {
  std::string text = Str(IxoMepError::GetErrorText(code));
  return text.replace(text.find("%func"), 5, call);
}

// --- Properties ---------------------------------------------------------------------------------

struct PropertyRow {
  IxoMepValue value;
  const char* length;
  const char* empty;
};

TEST(ValueProperties, Strings_arrays_and_maps_have_length_and_empty) {
  const PropertyRow rows[] = {
      {"", "0", "1"},
      {"abc", "3", "0"},
      {Array({}), "0", "1"},
      {Array({1, 2}), "2", "0"},
      {Map({}), "0", "1"},
      {Map({"a", 1}), "1", "0"},
      {String("a\0b", 3), "3", "0"},
  };
  for (const PropertyRow& row : rows) {
    EXPECT_EQ(Property(row.value, Intern("length")).result, row.length);
    EXPECT_EQ(Property(row.value, Intern("empty")).result, row.empty);
    EXPECT_EQ(Property(row.value, Intern("length")).code, 0);
    EXPECT_EQ(Property(row.value, Intern("size")).code, 42);
  }
}

TEST(ValueProperties, All_other_types_have_none) {
  for (const Type type : kAllTypes) {
    if (type == Type::String || type == Type::Array || type == Type::Map) continue;
    for (const char* name : {"length", "empty", "other"}) {
      const Outcome outcome = Property(Sample(type), Intern(name));
      EXPECT_EQ(outcome.code, 42) << NameOf(type);
      EXPECT_EQ(outcome.result, "none") << NameOf(type);
      EXPECT_EQ(outcome.error, UnknownMember(type, name)) << NameOf(type);
    }
  }
}

TEST(ValueProperties, A_reference_is_not_followed) {
  IxoMepValue text("abc");
  EXPECT_EQ(Property(IxoMepValue(&text), Intern("length")).code, 42);
}

TEST(ValueProperties, A_name_that_was_not_interned_matches_nothing) {
  const std::string built = std::string("len") + "gth";
  EXPECT_EQ(Property("abc", built.c_str()).code, 42);
  EXPECT_EQ(Property("abc", nullptr).code, 42);
}

TEST(ValueProperties, An_object_answers_with_copies_of_its_properties) {
  const IxoMepValue object = ObjectWith("p", 5);
  EXPECT_EQ(Property(object, "p").result, "5");
  EXPECT_EQ(Property(object, "q").error, UnknownMember(Type::Object, "q"));
}

TEST(ValueProperties, An_object_value_without_an_object_has_no_properties) {
  const IxoMepValue nothing(static_cast<IxoMepObject*>(nullptr));
  EXPECT_EQ(Property(nothing, "p").error, UnknownMember(Type::Object, "p"));
}

TEST(ValueProperties, The_result_is_assigned_into_the_value_in_the_slot) {
  const ValuePtr place = MakeValue("old");
  IxoMepValue* slot = place.get();
  String error;
  EXPECT_EQ(Array({1}).GetPropertyValue(Intern("length"), slot, error), 0);
  EXPECT_EQ(slot, place.get());
  EXPECT_EQ(slot->GetInt(), 1);
}

// --- Which type has which method ----------------------------------------------------------------

TEST(ValueMethods, Each_type_answers_to_its_own_methods_only) {
  TestHost host;
  const std::pair<const char*, Type> methods[] = {
      {"copy", Type::String},      {"lastIndexOf", Type::String}, {"without", Type::String},
      {"trim", Type::String},      {"sort", Type::Array},         {"key", Type::Map},
      {"insertAllFrom", Type::Map}};
  for (const auto& [name, owner] : methods) {
    for (const Type type : kAllTypes) {
      if (type == owner || type == Type::Undefined) continue;
      IxoMepValue value = Sample(type);
      const Outcome outcome = Call(value, name);
      EXPECT_EQ(outcome.code, 42) << NameOf(type) << "." << name;
      EXPECT_EQ(outcome.error, UnknownMember(type, name)) << NameOf(type) << "." << name;
    }
  }
}

TEST(ValueMethods, The_reserved_names_are_methods_of_no_type) {
  for (const char* name : {"erase", "eraseAllFrom", "insert", "length", "empty"}) {
    for (const Type type : kAllTypes) {
      if (type == Type::Undefined) continue;
      IxoMepValue value = Sample(type);
      EXPECT_EQ(Call(value, name, {1}).code, 42) << NameOf(type) << "." << name;
    }
  }
}

TEST(ValueMethods, A_call_on_undefined_succeeds_and_leaves_the_result_slot) {
  IxoMepValue undefined;
  for (const char* name : {"copy", "sort", "nonsense"}) {
    EXPECT_EQ(Call(undefined, name, {1, 2, 3}).code, 0);
    EXPECT_EQ(Call(undefined, name).result, "none");
  }
  const ValuePtr place = MakeValue("kept");
  IxoMepValue* slot = place.get();
  String error = "kept";
  EXPECT_EQ(undefined.EvaluateMethodCall(Intern("trim"), {}, slot, error, true), 0);
  EXPECT_EQ(TextOf(*slot), "\"kept\"");
  EXPECT_EQ(Str(error), "kept");
}

TEST(ValueMethods, A_name_that_was_not_interned_matches_nothing) {
  IxoMepValue text(" x ");
  const std::string built = std::string("tr") + "im";
  EXPECT_EQ(CallByAddress(text, built.c_str(), {}).code, 42);
  EXPECT_EQ(CallByAddress(text, nullptr, {}).code, 42);
  EXPECT_EQ(Call(text, "trim").code, 0);
}

TEST(ValueMethods, An_object_value_without_an_object_has_no_methods) {
  IxoMepValue nothing(static_cast<IxoMepObject*>(nullptr));
  EXPECT_EQ(Call(nothing, "f").error, UnknownMember(Type::Object, "f"));
}

TEST(ValueMethods, The_result_is_assigned_into_the_value_in_the_slot) {
  IxoMepValue text(" x ");
  IxoMepValue* slot = &text;  // even when that is the receiver itself
  String error;
  EXPECT_EQ(text.EvaluateMethodCall(Intern("trim"), {}, slot, error, false), 0);
  EXPECT_EQ(slot, &text);
  EXPECT_EQ(TextOf(text), "\"x\"");
}

// --- Argument checks ----------------------------------------------------------------------------

struct CheckRow {
  IxoMepValue receiver;
  const char* name;
  std::vector<IxoMepValue> args;
  IxoMepErrorEnum code;
  const char* call;
};

TEST(ValueMethods, Wrong_counts_and_types_show_the_call_with_its_arguments) {
  IxoMepValue number(1), text("t");
  const CheckRow rows[] = {
      {"abc",
       "copy",
       {1, 2, 3},
       IMEPERR_WRONG_ARGUMENT_COUNT,
       "string.copy(integer, integer, integer)"},
      {"abc",
       "copy",
       {"a", "b", "c"},
       IMEPERR_WRONG_ARGUMENT_COUNT,
       "string.copy(string, string, string)"},
      {"abc", "copy", {"a", "b"}, IMEPERR_WRONG_TYPE, "string.copy(string, string)"},
      {"abc", "copy", {1, 2.0}, IMEPERR_WRONG_TYPE, "string.copy(integer, real)"},
      {"abc", "copy", {&number}, IMEPERR_WRONG_TYPE, "string.copy(reference)"},
      {"abc", "lastIndexOf", {}, IMEPERR_WRONG_ARGUMENT_COUNT, "string.lastIndexOf()"},
      {"abc",
       "lastIndexOf",
       {"a", "b"},
       IMEPERR_WRONG_ARGUMENT_COUNT,
       "string.lastIndexOf(string, string)"},
      {"abc", "lastIndexOf", {1}, IMEPERR_WRONG_TYPE, "string.lastIndexOf(integer)"},
      {"abc", "lastIndexOf", {&text}, IMEPERR_WRONG_TYPE, "string.lastIndexOf(reference)"},
      {"abc", "without", {}, IMEPERR_WRONG_ARGUMENT_COUNT, "string.without()"},
      {"abc",
       "without",
       {"a", "b"},
       IMEPERR_WRONG_ARGUMENT_COUNT,
       "string.without(string, string)"},
      {"abc", "without", {IxoMepValue()}, IMEPERR_WRONG_TYPE, "string.without(undefined)"},
      {"abc", "trim", {1}, IMEPERR_WRONG_ARGUMENT_COUNT, "string.trim(integer)"},
      {Array({1}), "sort", {1, 2}, IMEPERR_WRONG_ARGUMENT_COUNT, "array.sort(integer, integer)"},
      {Array({1}), "sort", {1}, IMEPERR_WRONG_TYPE, "array.sort(integer)"},
      {Array({}), "sort", {Sample(Type::Lambda)}, IMEPERR_WRONG_TYPE, "array.sort(lambda)"},
      {Map({}), "key", {}, IMEPERR_WRONG_ARGUMENT_COUNT, "map.key()"},
      {Map({}), "key", {0, 1}, IMEPERR_WRONG_ARGUMENT_COUNT, "map.key(integer, integer)"},
      {Map({}), "key", {0.0}, IMEPERR_WRONG_TYPE, "map.key(real)"},
      {Map({}), "key", {&number}, IMEPERR_WRONG_TYPE, "map.key(reference)"},
      {Map({}), "insertAllFrom", {}, IMEPERR_WRONG_ARGUMENT_COUNT, "map.insertAllFrom()"},
      {Map({}),
       "insertAllFrom",
       {Map({}), Map({})},
       IMEPERR_WRONG_ARGUMENT_COUNT,
       "map.insertAllFrom(map, map)"},
      {Map({}), "insertAllFrom", {Array({})}, IMEPERR_WRONG_TYPE, "map.insertAllFrom(array)"},
  };
  for (const CheckRow& row : rows) {
    IxoMepValue receiver = row.receiver;
    OwnedList args;
    for (const IxoMepValue& arg : row.args) args.Add(MakeValue(arg));
    IxoMepValue* result = nullptr;
    String error;
    EXPECT_EQ(receiver.EvaluateMethodCall(Intern(row.name), args.View(), result, error, false),
              row.code)
        << row.call;
    EXPECT_EQ(result, nullptr);
    EXPECT_EQ(Str(error), FunctionError(row.code, row.call));
    EXPECT_TRUE(SameContent(receiver, row.receiver));
  }
}

// --- Strings ------------------------------------------------------------------------------------

struct CopyRow {
  std::vector<IxoMepValue> args;
  const char* text;
};

TEST(StringCopyMethod, Gives_the_stretch_from_start_of_up_to_count) {
  const CopyRow rows[] = {
      {{}, "\"abcdef\""},
      {{2}, "\"cdef\""},
      {{2, 3}, "\"cde\""},
      {{2, -1}, "\"cdef\""},
      {{2, 0}, "\"\""},
      {{4, 99}, "\"ef\""},
      {{6}, "\"\""},
      {{99}, "\"\""},
      {{0, 6}, "\"abcdef\""},
      {{-1}, "\"\""},
      {{-1, 3}, "\"\""},
      {{2147483647, 2147483647}, "\"\""},
      {{1, std::numeric_limits<int>::min()}, "\"bcdef\""},
  };
  for (const CopyRow& row : rows) {
    IxoMepValue text("abcdef");
    OwnedList args;
    for (const IxoMepValue& arg : row.args) args.Add(MakeValue(arg));
    IxoMepValue* result = nullptr;
    String error;
    EXPECT_EQ(text.EvaluateMethodCall(Intern("copy"), args.View(), result, error, false), 0);
    const ValuePtr owned(result);
    EXPECT_EQ(TextOf(*result), row.text);
  }
}

struct SearchRow {
  const char* text;
  const char* pattern;
  const char* result;
};

TEST(StringLastIndexOfMethod, Finds_the_largest_position) {
  const SearchRow rows[] = {
      {"abcabc", "bc", "4"}, {"abcabc", "a", "3"}, {"abcabc", "c", "5"},    {"abcabc", "x", "-1"},
      {"abcabc", "", "-1"},  {"", "", "-1"},       {"", "a", "-1"},         {"ab", "abc", "-1"},
      {"abc", "abc", "0"},   {"aaa", "aa", "1"},   {"abcabc", "abd", "-1"}, {"xabc", "xa", "0"},
  };
  for (const SearchRow& row : rows) {
    EXPECT_EQ(CallText(row.text, "lastIndexOf", {row.pattern}).result, row.result)
        << row.pattern << " in " << row.text;
  }
}

TEST(StringWithoutMethod, Removes_every_occurrence) {
  const SearchRow rows[] = {
      {"a-b-c", "-", "\"abc\""}, {"a--b", "--", "\"ab\""}, {"aXYbXYc", "XY", "\"abc\""},
      {"abc", "", "\"abc\""},    {"", "a", "\"\""},        {"aaa", "a", "\"\""},
      {"aaa", "aa", "\"a\""},    {"abc", "x", "\"abc\""},  {"ab", "abc", "\"ab\""},
  };
  for (const SearchRow& row : rows) {
    EXPECT_EQ(CallText(row.text, "without", {row.pattern}).result, row.result)
        << row.text << " without " << row.pattern;
  }
}

TEST(StringWithoutMethod, What_a_removal_brings_together_on_its_left_stays) {
  EXPECT_EQ(CallText("aabb", "without", {"ab"}).result, "\"ab\"");
  EXPECT_EQ(CallText("aabbab", "without", {"ab"}).result, "\"ab\"");
  EXPECT_EQ(CallText("xxyzyz", "without", {"xyz"}).result, "\"xyz\"");
}

TEST(StringWithoutMethod, Takes_time_in_proportion_to_a_long_text) {
  std::string text;
  for (int i = 0; i < 500000; ++i) text += "ab-";
  IxoMepValue value((String(text)));
  IxoMepValue* result = nullptr;
  String error;
  const ValuePtr pattern = MakeValue("b-");
  value.EvaluateMethodCall(Intern("without"), {pattern.get()}, result, error, false);
  const ValuePtr owned(result);
  EXPECT_TRUE(result->GetStr() == String::Filled(500000, 'a'));
}

TEST(StringTrimMethod, Drops_blanks_at_both_ends) {
  EXPECT_EQ(CallText("  x \t", "trim").result, "\"x\"");
  EXPECT_EQ(CallText("\r\n a b \t\n", "trim").result, "\"a b\"");
  EXPECT_EQ(CallText(" \t\r\n", "trim").result, "\"\"");
  EXPECT_EQ(CallText("", "trim").result, "\"\"");
  EXPECT_EQ(CallText("x", "trim").result, "\"x\"");
  EXPECT_EQ(CallText("\v\fx\v", "trim").result, "\"\\v\\fx\\v\"");
}

// --- Maps ---------------------------------------------------------------------------------------

TEST(MapKeyMethod, Gives_the_key_with_that_number_in_map_order) {
  IxoMepValue map = Map({"b", 1, 2, 2, "a", 3});
  EXPECT_EQ(Call(map, "key", {0}).result, "2");
  EXPECT_EQ(Call(map, "key", {1}).result, "\"a\"");
  EXPECT_EQ(Call(map, "key", {2}).result, "\"b\"");
}

TEST(MapKeyMethod, An_index_outside_fails_with_the_type_in_the_text) {
  IxoMepValue map = Map({"b", 1});
  for (const auto& [index, code] :
       {std::pair(-1, IMEPERR_INDEX_TOO_SMALL), std::pair(1, IMEPERR_INDEX_TOO_LARGE),
        std::pair(2147483647, IMEPERR_INDEX_TOO_LARGE)}) {
    TestHost host;
    const Outcome outcome = Call(map, "key", {index});
    EXPECT_EQ(outcome.code, code) << index;
    std::string text = Str(IxoMepError::GetErrorText(code));
    if (const auto place = text.find("%type"); place != std::string::npos) {
      text.replace(place, 5, "map");
    }
    EXPECT_EQ(outcome.error, text);
  }
  IxoMepValue empty(Type::Map);
  EXPECT_EQ(Call(empty, "key", {0}).code, 27);
}

struct InsertRow {
  IxoMepValue map;
  IxoMepValue source;
  const char* result;
  const char* text;
};

TEST(MapInsertAllFromMethod, Copies_what_is_new_and_tells_whether_all_was) {
  const InsertRow rows[] = {
      {Map({}), Map({}), "1", "{}"},
      {Map({"a", 1}), Map({}), "1", "{\"a\": 1}"},
      {Map({"a", 1}), Map({"b", 2, "c", 3}), "1", "{\"a\": 1, \"b\": 2, \"c\": 3}"},
      {Map({"a", 1}), Map({"a", 9, "b", 2}), "0", "{\"a\": 1, \"b\": 2}"},
      {Map({"a", 1}), Map({"a", 1}), "0", "{\"a\": 1}"},
      {Map({1, "i"}), Map({1.0, "r", 2, "t"}), "0", "{1: \"i\", 2: \"t\"}"},
  };
  for (const InsertRow& row : rows) {
    IxoMepValue map = row.map;
    const Outcome outcome = Call(map, "insertAllFrom", {row.source});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.result, row.result) << row.text;
    EXPECT_EQ(TextOf(map), row.text);
  }
}

TEST(MapInsertAllFromMethod, From_itself_or_its_copy_changes_nothing) {
  IxoMepValue map = Map({"a", 1});
  IxoMepValue* result = nullptr;
  String error;
  EXPECT_EQ(map.EvaluateMethodCall(Intern("insertAllFrom"), {&map}, result, error, false), 0);
  const ValuePtr owned(result);
  EXPECT_EQ(result->GetInt(), 0);
  EXPECT_EQ(Call(map, "insertAllFrom", {map}).result, "0");
  IxoMepValue empty(Type::Map);
  EXPECT_EQ(Call(empty, "insertAllFrom", {empty}).result, "1");
}

TEST(MapInsertAllFromMethod, The_entries_are_copies) {
  IxoMepValue source = Map({"a", Array({1})});
  IxoMepValue map(Type::Map);
  Call(map, "insertAllFrom", {source});
  const IxoMepValue a("a");
  map.GetValueOfMap(&a)->Append(new IxoMepValue(2));
  EXPECT_EQ(TextOf(source), "{\"a\": {1}}");
  EXPECT_EQ(TextOf(map), "{\"a\": {1, 2}}");
}

}  // namespace
}  // namespace ixomep::test
