// The limits of a host while texts are read and converted: what is exceeded is named, with the
// context block behind it, and without a limit of the host codes and texts are the usual ones.
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <utility>

#include "ixomep/host/memory_budget.h"
#include "ixomep/parser/converter.h"
#include "ixomep/parser/document_scanner.h"
#include "tests/support/definitions.h"
#include "tests/support/eval.h"
#include "tests/support/limits.h"

namespace ixomep::test {
namespace {

constexpr std::string_view kInterrupted = "The evaluation is interrupted.";

std::string MemoryExceeded(std::size_t limit) {
  return "The limit of " + std::to_string(limit) + " bytes of memory is exceeded.";
}

// Made when no limit is set.
const std::string& ContextBlock() {
  static const std::string block = [] {
    const std::string text = ErrorTextOf(IMEPERR_TOO_DEEP, {}, 0);
    return text.substr(text.find("\n\n"));
  }();
  return block;
}

class BothReadings : public testing::TestWithParam<bool> {
 protected:
  void SetUp() override {
    QuickReading::Use(GetParam());
    (void)ContextBlock();
  }
  void TearDown() override { QuickReading::Use(true); }
};

INSTANTIATE_TEST_SUITE_P(Ways, BothReadings, testing::Bool(),
                         [](const auto& way) { return way.param ? "Quick" : "Plain"; });

std::string ErrorOf(const IxoMepParser& parser) {
  return std::string(parser.GetErrorText().view());
}

// --- Memory -------------------------------------------------------------------------------------

const std::string kLong(1000000, 'x');

// Each needs more than the memory that the tests leave.
const std::string kTooMuch[] = {
    "A \"" + kLong + "\" @INCLUDE \"none\"",
    "A {\"" + kLong + "\\n\", \"" + kLong + "\"}",
    "A (\"" + kLong + "\" + \"" + kLong + "\")",
    "A\n  b: (\"x\" * 10000000)\n",
};

TEST_P(BothReadings, A_limit_of_memory_is_named_while_a_text_is_read) {
  for (const std::string& source : kTooMuch) {
    SCOPED_TRACE(source.substr(0, 20));
    IxoMepParser parser{String(source), String("test")};
    const std::size_t limit = MemoryBudget::InUse() + 500000;
    const ScopedLimits limits({.memory = limit});
    EXPECT_EQ(parser.Parse(), IMEPERR_TOO_DEEP);
    EXPECT_EQ(parser.GetErrorCode(), IMEPERR_TOO_DEEP);
    EXPECT_TRUE(ErrorOf(parser).starts_with(MemoryExceeded(limit))) << ErrorOf(parser);
    EXPECT_TRUE(ErrorOf(parser).ends_with(ContextBlock().substr(2))) << ErrorOf(parser);
  }
}

TEST_P(BothReadings, Without_room_for_anything_the_limit_is_named_all_the_same) {
  IxoMepParser parser{String("A 12 B \"some text that is not stored in place\" @C"),
                      String("test")};
  const ScopedLimits limits({.memory = 1});
  EXPECT_EQ(parser.Parse(), IMEPERR_TOO_DEEP);
  EXPECT_EQ(ErrorOf(parser), MemoryExceeded(1) + ContextBlock());
}

TEST_P(BothReadings, Memory_that_no_limit_of_the_host_refuses_keeps_the_code_of_the_literal) {
  for (const auto& [source, code] :
       {std::pair(kTooMuch[0], IMEPERR_TOO_LONG), std::pair(kTooMuch[3], IMEPERR_TOO_LONG)}) {
    IxoMepParser parser{String(source), String("test")};
    const ScopedMemoryLimit limit(500000);
    EXPECT_EQ(parser.Parse(), code);
    EXPECT_TRUE(ErrorOf(parser).starts_with(ErrorTextOf(code, {}, 0).substr(0, 20)));
  }
  IxoMepParser parser{String("A 12 @C"), String("test")};
  const ScopedMemoryLimit limit(1);
  EXPECT_EQ(parser.Parse(), IMEPERR_TOO_DEEP);
}

TEST(LimitsOfTexts, A_limit_of_memory_is_named_by_the_reader_of_literals) {
  for (const std::string& source : {"\"" + kLong + "\"", "\"" + kLong + "\\n\"",
                                    "(\"" + kLong + "\")", "{\"" + kLong + "\"}"}) {
    SCOPED_TRACE(source.substr(0, 3));
    const String text(source);
    std::int32_t position = 0;
    std::int32_t code = 0;
    String error_text;
    const std::size_t limit = MemoryBudget::InUse() + 500000;
    const ScopedLimits limits({.memory = limit});
    EXPECT_EQ(IxoMepValue::Create(text, position, code, error_text, nullptr, 1), nullptr);
    EXPECT_EQ(code, IMEPERR_TOO_DEEP);
    EXPECT_EQ(std::string(error_text.view()), MemoryExceeded(limit));
  }
}

TEST(LimitsOfTexts, A_limit_of_memory_is_named_when_a_text_is_read_again) {
  const std::string source =
      Repeated("ELEMENT \"with a text that is not stored in place\" ", 20000);
  IxoMepParser parser{String(source), String("test")};
  ASSERT_EQ(parser.Parse(), IMEPERR_NONE);
  (void)ContextBlock();
  const std::size_t limit = MemoryBudget::InUse() + 100000;
  const ScopedLimits limits({.memory = limit});
  EXPECT_EQ(parser.Parse(), IMEPERR_TOO_DEEP);
  EXPECT_EQ(ErrorOf(parser), MemoryExceeded(limit) + ContextBlock());
}

TEST_P(BothReadings, A_conversion_that_passes_the_limit_of_memory_gives_nothing_and_names_it) {
  const std::string source =
      Repeated("ELEMENT \"with a text that is not stored in place\" ", 20000);
  IxoMepConverter converter{String(source)};
  ASSERT_EQ(converter.Parse(), IMEPERR_NONE);
  {
    const std::size_t limit = MemoryBudget::InUse() + 100000;
    const ScopedLimits limits({.memory = limit});
    EXPECT_TRUE(converter.ToXML(true, String("root")).IsEmpty());
    EXPECT_EQ(converter.GetErrorCode(), IMEPERR_TOO_DEEP);
    EXPECT_TRUE(ErrorOf(converter).starts_with(MemoryExceeded(limit))) << ErrorOf(converter);
  }
  EXPECT_GT(converter.ToXML(true, String("root")).Len(), 20000 * 40);
}

// --- Interruption -------------------------------------------------------------------------------

// Long in one respect each.
const std::string kEndless[] = {
    Repeated("ELEMENT 12\n", 20000),
    Repeated("ELEMENT attribute: 12\n", 20000),
    "A {" + Repeated("B { }\n", 20000) + "}",
    "A\n" + Repeated("  b: 12\n", 20000),
    Repeated("x := 12;\n", 20000),
    Repeated("# comment\n", 20000),
    "A {" + Repeated("1, ", 200000) + "2}",
};

TEST_P(BothReadings, The_host_can_end_the_reading_of_a_long_text) {
  for (const std::string& source : kEndless) {
    SCOPED_TRACE(source.substr(0, 12));
    IxoMepParser parser{String(source), String("test")};
    InterruptingHost host(1);
    EXPECT_EQ(parser.Parse(), IMEPERR_TOO_DEEP);
    EXPECT_EQ(parser.GetErrorCode(), IMEPERR_TOO_DEEP);
    EXPECT_TRUE(ErrorOf(parser).starts_with(kInterrupted)) << ErrorOf(parser);
    EXPECT_LE(host.asked, 4);
    host.answers_yes_after = InterruptingHost::kNever;
    parser.SetText(String(source));
    EXPECT_EQ(parser.Parse(), IMEPERR_NONE);
    EXPECT_LT(host.asked, 30000);
  }
}

TEST_P(BothReadings, Nobody_is_asked_while_a_short_text_is_read) {
  InterruptingHost host(0);
  EXPECT_EQ(ShapeOf(Repeated("A 1 b: \"text\" { C }\n", 100)).substr(0, 3), "A=1");
  EXPECT_EQ(host.asked, 0);
}

TEST_P(BothReadings, Bodies_and_brackets_that_are_never_closed_are_interrupted) {
  for (const std::string& source :
       {Repeated("A {\n", 20000), Repeated("A b: {\n", 20000), "A b: " + Repeated("[(", 20000)}) {
    IxoMepParser parser{String(source), String("test")};
    InterruptingHost host(0);
    EXPECT_EQ(parser.Parse(), IMEPERR_TOO_DEEP);
    EXPECT_TRUE(ErrorOf(parser).starts_with(kInterrupted)) << ErrorOf(parser);
  }
}

TEST(LimitsOfTexts, The_reader_of_literals_is_interrupted) {
  const String text("{" + Repeated("1, ", 200000) + "2}");
  std::int32_t position = 0;
  std::int32_t code = 0;
  String error_text;
  const InterruptingHost host(0);
  EXPECT_EQ(IxoMepValue::Create(text, position, code, error_text, nullptr, 1), nullptr);
  EXPECT_EQ(code, IMEPERR_TOO_DEEP);
  EXPECT_EQ(error_text, kInterrupted);
}

TEST(LimitsOfTexts, The_compiling_of_a_long_expression_is_interrupted) {
  IxoMepExpressionParser expression;
  const String source("0" + Repeated(" + 1", 200000));
  String error_text;
  {
    const InterruptingHost host(0);
    EXPECT_EQ(expression.SetExpression(source, error_text), IMEPERR_TOO_DEEP);
    EXPECT_EQ(error_text, kInterrupted);
  }
  EXPECT_EQ(expression.SetExpression(source, error_text), IMEPERR_NONE);
}

TEST_P(BothReadings, A_conversion_that_the_host_ends_gives_nothing_and_says_so) {
  IxoMepConverter converter{String(Repeated("ELEMENT { INNER 12 }\n", 10000))};
  ASSERT_EQ(converter.Parse(), IMEPERR_NONE);
  {
    const InterruptingHost host(1);
    EXPECT_TRUE(converter.ToXML(true, String("root")).IsEmpty());
    EXPECT_EQ(converter.GetErrorCode(), IMEPERR_TOO_DEEP);
    EXPECT_TRUE(ErrorOf(converter).starts_with(kInterrupted)) << ErrorOf(converter);
  }
  EXPECT_FALSE(converter.ToXML(true, String("root")).IsEmpty());
}

TEST_P(BothReadings, The_conversion_of_one_long_element_is_interrupted) {
  for (const std::string& source :
       {"A \"" + std::string(12'000'000, '&') + "\"", "A" + Repeated(" b: 12", 20000)}) {
    SCOPED_TRACE(source.substr(0, 8));
    IxoMepConverter converter{String(source)};
    ASSERT_EQ(converter.Parse(), IMEPERR_NONE);
    const InterruptingHost host(0);
    EXPECT_TRUE(converter.ToXML(false, String("root")).IsEmpty());
    EXPECT_EQ(converter.GetErrorCode(), IMEPERR_TOO_DEEP);
  }
}

}  // namespace
}  // namespace ixomep::test
