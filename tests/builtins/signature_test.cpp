// Signatures: which numbers of arguments each way of writing accepts, and which type each
// argument has.
#include "ixomep/builtins/signature.h"

#include <gtest/gtest.h>

#include <string>

namespace ixomep {
namespace {

// The accepted counts from 0 to 9 as digits.
std::string Counts(const Signature& signature) {
  std::string counts;
  for (std::int32_t count = 0; count < 10; ++count) {
    if (signature.FormFor(count) != nullptr) counts += std::to_string(count);
  }
  return counts;
}

// The types of a call with that many arguments.
std::string Types(const Signature& signature, std::int32_t count) {
  const SignatureForm* const form = signature.FormFor(count);
  std::string types;
  for (std::int32_t i = 0; i < count; ++i) {
    if (i > 0) types += ' ';
    types += ArgTypeName(form->TypeOf(i, count));
  }
  return types;
}

TEST(Signature, A_plain_list_accepts_its_own_length_only) {
  constexpr Signature signature("String, Integer -> String");
  EXPECT_EQ(Counts(signature), "2");
  EXPECT_EQ(Types(signature, 2), "String Integer");
  EXPECT_EQ(signature.Form(0).Result(), "String");
  EXPECT_EQ(signature.Form(0).MinCount(), 2);
  EXPECT_EQ(signature.Form(0).MaxCount(), 2);
}

TEST(Signature, A_function_without_parameters_accepts_none) {
  constexpr Signature signature("-> Map");
  EXPECT_EQ(Counts(signature), "0");
  EXPECT_EQ(signature.Form(0).Result(), "Map");
}

TEST(Signature, A_bracketed_parameter_may_be_left_out) {
  constexpr Signature signature("Place, Integer, Integer, Code, [Code] -> Any");
  EXPECT_EQ(Counts(signature), "45");
  EXPECT_EQ(Types(signature, 5), "Place Integer Integer Code Code");
}

TEST(Signature, Three_points_repeat_a_parameter_once_or_more) {
  constexpr Signature signature("Integer... -> Array");
  EXPECT_EQ(Counts(signature), "123456789");
  EXPECT_EQ(Types(signature, 3), "Integer Integer Integer");
  EXPECT_EQ(signature.Form(0).MaxCount(), SignatureForm::kUnbounded);
}

TEST(Signature, A_bracketed_group_with_three_points_repeats_any_number_of_times) {
  constexpr Signature any("[Value]... -> Array");
  EXPECT_EQ(Counts(any), "0123456789");
  constexpr Signature pairs("Code, Code, [Code, Code]..., Code -> Any");
  EXPECT_EQ(Counts(pairs), "3579");
}

TEST(Signature, Parameters_behind_a_repeated_group_keep_their_types) {
  constexpr Signature signature("Name, [Integer]..., Integer, Any -> Integer");
  EXPECT_EQ(Counts(signature), "3456789");
  EXPECT_EQ(Types(signature, 3), "Name Integer Any");
  EXPECT_EQ(Types(signature, 5), "Name Integer Integer Integer Any");
}

TEST(Signature, Several_forms_are_told_apart_by_their_count) {
  constexpr Signature signature(
      "String -> Integer | String, Number -> Real | Number, Number, Number -> Map");
  EXPECT_EQ(Counts(signature), "123");
  EXPECT_EQ(Types(signature, 1), "String");
  EXPECT_EQ(Types(signature, 2), "String Number");
  EXPECT_EQ(Types(signature, 3), "Number Number Number");
  EXPECT_EQ(signature.FormFor(2)->Result(), "Real");
  EXPECT_EQ(signature.FormCount(), 3u);
}

TEST(Signature, A_word_for_the_unevaluated_makes_the_whole_form_lazy) {
  EXPECT_FALSE(Signature("String, Any -> Any").Form(0).IsLazy());
  EXPECT_TRUE(Signature("Value -> Any").Form(0).IsLazy());
  EXPECT_TRUE(Signature("String, Code -> Any").Form(0).IsLazy());
  EXPECT_TRUE(Signature("Place, Any -> Any").Form(0).IsLazy());
  EXPECT_TRUE(Signature("Name, Any -> Any").Form(0).IsLazy());
}

}  // namespace
}  // namespace ixomep
