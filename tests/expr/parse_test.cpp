// The way from text to tree as a whole: hostile sizes and depths, memory that runs out, the place
// of the last failure.
#include "ixomep/expr/parse.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>

#include "ixomep/expr/error_place.h"
#include "tests/support/test_host.h"
#include "tests/support/trees.h"

namespace {

using ixomep::test::Compile;
using ixomep::test::Compiled;
using ixomep::test::ScopedMemoryLimit;
using ixomep::test::TextOf;
using Kind = IxoMepExprNodeType;

constexpr int kMany = 1000000;

std::string Repeated(int count, const std::string& part) {
  std::string text;
  text.reserve(part.size() * static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) text += part;
  return text;
}

TEST(Parse, A_success_leaves_the_error_text_alone_and_has_no_place) {
  Compile("a b");
  IxoMepErrorEnum code = IMEPERR_USER;
  String text = "as it was";
  EXPECT_TRUE(ixomep::ParseExpression("a + b", code, text));
  EXPECT_EQ(code, 0);
  EXPECT_EQ(text, "as it was");
  EXPECT_EQ(ixomep::ErrorPlace::Offset(), -1);
}

TEST(Parse, A_scanner_failure_comes_before_a_grammar_failure) {
  EXPECT_EQ(Compile(") + Foo").code, 24);
  EXPECT_EQ(Compile(") + Foo").place, 4);
}

struct Chain {
  const char* name;
  std::string text;
  Kind root;
};

class ParseChain : public testing::TestWithParam<Chain> {};

TEST_P(ParseChain, Of_a_million_links_is_compiled_and_destroyed) {
  const Compiled compiled = Compile(GetParam().text);
  EXPECT_EQ(compiled.code, 0);
  ASSERT_TRUE(compiled.tree);
  EXPECT_EQ(compiled.tree->GetType(), GetParam().root);
}

INSTANTIATE_TEST_SUITE_P(
    All, ParseChain,
    testing::Values(Chain{"Sum", "1" + Repeated(kMany, "+1"), Kind::Plus},
                    Chain{"Product", "1" + Repeated(kMany, "*1"), Kind::Times},
                    Chain{"Or", "1" + Repeated(kMany, " OR 1"), Kind::Or},
                    Chain{"Sequence", "1" + Repeated(kMany, ",1"), Kind::Comma},
                    Chain{"Assignment", Repeated(kMany, "a:=") + "1", Kind::Assign},
                    Chain{"Prefix", Repeated(kMany, "-") + "1", Kind::Minus},
                    Chain{"Member", "a" + Repeated(kMany, ".b"), Kind::ObjectSubscription},
                    Chain{"Subscription", "a" + Repeated(kMany, "[1]"), Kind::ArraySubscription},
                    Chain{"Call", "a" + Repeated(kMany, "()"), Kind::FunctionCall},
                    Chain{"Block", "a(1)" + Repeated(kMany, "{1}"), Kind::FunctionCall},
                    Chain{"Parameter", "a(1" + Repeated(kMany, ",1") + ")", Kind::FunctionCall}),
    [](const auto& chosen) { return std::string(chosen.param.name); });

struct Nesting {
  const char* name;
  const char* opener;
  const char* inner;
  const char* closer;
};

class ParseNesting : public testing::TestWithParam<Nesting> {
 protected:
  std::string Nested(int depth) const {
    return Repeated(depth, GetParam().opener) + GetParam().inner +
           Repeated(depth, GetParam().closer);
  }
};

TEST_P(ParseNesting, Of_a_hundred_levels_is_compiled) { EXPECT_EQ(Compile(Nested(100)).code, 0); }

TEST_P(ParseNesting, Of_a_hundred_thousand_levels_is_compiled_or_too_deep) {
  const Compiled compiled = Compile(Nested(100000));
  if (compiled.code == 0) {
    EXPECT_TRUE(compiled.tree);
    return;
  }
  EXPECT_EQ(compiled.code, 38);
  EXPECT_EQ(compiled.text, TextOf(IMEPERR_TOO_DEEP));
  EXPECT_GT(compiled.place, 0);
}

TEST_P(ParseNesting, Without_its_closers_fails_and_leaves_nothing) {
  const Compiled compiled = Compile(Repeated(100000, GetParam().opener));
  EXPECT_TRUE(compiled.code == 13 || compiled.code == 38) << compiled.code;
  EXPECT_FALSE(compiled.tree);
}

TEST_P(ParseNesting, On_a_thread_with_a_small_stack_ends_with_a_code) {
  const std::string text = Nested(100000);
  std::thread([&text] {
    const Compiled compiled = Compile(text);
    EXPECT_TRUE(compiled.code == 0 || compiled.code == 38) << compiled.code;
  }).join();
}

INSTANTIATE_TEST_SUITE_P(
    All, ParseNesting,
    testing::Values(Nesting{"Parentheses", "(", "1", ")"}, Nesting{"Braces", "{", "1", "}"},
                    Nesting{"Maps", "{1:", "1", "}"}, Nesting{"Brackets", "a[", "1", "]"},
                    Nesting{"Calls", "f(", "1", ")"}, Nesting{"Blocks", "f(){", "1", "}"},
                    Nesting{"Members", "a.(", "1", ")"}, Nesting{"Prefixes", "-(", "1", ")"},
                    Nesting{"RightOperands", "1+(", "1", ")"},
                    Nesting{"Assignments", "a:=(", "1", ")"}),
    [](const auto& chosen) { return std::string(chosen.param.name); });

TEST(Parse, A_text_of_several_megabytes_is_one_pass) {
  EXPECT_EQ(Compile(String::Filled(8000000, ' ')).code, 13);
  EXPECT_EQ(Compile("\"" + Repeated(8000000, "x") + "\"").code, 0);
  EXPECT_EQ(Compile(Repeated(8000000, "x")).code, 0);
  EXPECT_EQ(Compile(Repeated(8000000, "X")).code, 24);
  EXPECT_EQ(Compile(Repeated(4000000, "(*")).code, 13);
  EXPECT_EQ(Compile(Repeated(2000000, "(**)") + "1").code, 0);
}

TEST(Parse, Memory_that_cannot_be_had_gives_38) {
  const String text("x" + Repeated(100000, "+x"));
  {
    const ScopedMemoryLimit limit(100000);
    const Compiled compiled = Compile(text);
    EXPECT_EQ(compiled.code, 38);
    EXPECT_FALSE(compiled.tree);
  }
  EXPECT_EQ(Compile(text).code, 0);
}

TEST(Parse, Every_prefix_of_a_text_compiles_or_fails_cleanly) {
  const std::string text =
      "x := f(a, {1: \"t\", ?b-c: {2}}) {NOT a.b[1, 2] (* c *)} (y = 3cm), -z MOD $f # end";
  for (std::size_t length = 0; length <= text.size(); ++length) {
    const Compiled compiled = Compile(text.substr(0, length));
    EXPECT_EQ(compiled.code == 0, static_cast<bool>(compiled.tree)) << length;
    EXPECT_EQ(compiled.code == 0, compiled.place == -1) << length;
    EXPECT_LE(compiled.place, static_cast<std::int32_t>(length));
  }
}

}  // namespace
