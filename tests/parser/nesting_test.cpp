// Hostile texts: deep nesting, long flat texts, cut and broken ones; and that the cost of reading
// grows with the length and with nothing else.
#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <functional>
#include <random>
#include <string>
#include <string_view>

#include "ixomep/host/memory_budget.h"
#include "ixomep/parser/document_scanner.h"
#include "ixomep/parser/extent.h"
#include "tests/support/definitions.h"
#include "tests/support/test_host.h"

namespace ixomep::test {
namespace {

using namespace std::string_view_literals;

std::string NestedElements(std::size_t depth) {
  return Repeated("A {\n", depth) + Repeated("}\n", depth);
}
std::string NestedAttributes(std::size_t depth) {
  return "A " + Repeated("b: { C x: 1 ", depth) + Repeated("} ", depth);
}
std::string NestedOnOneLineWithSemicolons(std::size_t depth) {
  return "A " + Repeated("b: { C ", depth) + "\nx := 1;" + Repeated("} ", depth);
}
std::string NestedStatements(std::size_t depth) {
  return Repeated("A {\nx := 1;\nB b: { D }\n", depth) + Repeated("}\n", depth);
}
std::string NestedArrays(std::size_t depth) {
  return Repeated("A { B {1, {2}} c: {\"}\"}\n", depth) + Repeated("}\n", depth);
}
std::string FlatElements(std::size_t count) {
  return Repeated("NODE \"name\" size: 2.5cm color: $ff00ff text: \"some text\" bold\n", count);
}
std::string FlatBodiesOnOneLine(std::size_t count) {
  return "A\n " + Repeated("b: { C } ", count) + "\nx;";
}
std::string FlatLines(std::size_t count) { return "A\n" + Repeated("  b: 1 # c;\n", count); }
std::string FlatStatements(std::size_t count) { return Repeated("x := {1};", count); }
std::string FlatComments(std::size_t count) { return "A\n" + Repeated("(* ; { *)\n# }\n", count); }

// A file "file" is there.
std::string Includes(std::size_t count) {
  return Repeated("@INCLUDE \"file\"\nB { C } d: { @INCLUDE \"file\" E }\n", count);
}

double MillisecondsOf(const std::function<void()>& work) {
  // Processor time, so that other programs on the machine do not count; the best of several.
  double best = 1e9;
  for (int round = 0; round < 7; ++round) {
    const std::clock_t start = std::clock();
    work();
    const std::clock_t passed = std::clock() - start;
    best = std::min(best, 1000.0 * static_cast<double>(passed) / CLOCKS_PER_SEC);
  }
  return best;
}

struct Shape4 {
  const char* name;
  std::string (*make)(std::size_t);
  std::size_t count;
};

class Growth : public ::testing::TestWithParam<Shape4> {};

TEST_P(Growth, Four_times_the_text_costs_about_four_times_the_time) {
  TestHost host;
  host.files["file"] = "X y: { Z }\n";
  const auto cost = [](std::size_t count) {
    const std::string text = GetParam().make(count);
    return MillisecondsOf([&text] {
      const Definition definition(text);
      EXPECT_EQ(definition.code, IMEPERR_NONE) << definition.parser.GetErrorText().c_str();
    });
  };
  double once = 0;
  double four_times = 0;
  const auto grows_slowly = [&] {
    once = cost(GetParam().count);
    four_times = cost(4 * GetParam().count);
    return four_times < 10 * once + 5;  // a quadratic cost would be 16 times
  };
  // A machine that is busy otherwise may spoil one measurement, not three.
  EXPECT_TRUE(grows_slowly() || grows_slowly() || grows_slowly())
      << once << " ms, " << four_times << " ms";
}

INSTANTIATE_TEST_SUITE_P(
    Texts, Growth,
    ::testing::Values(
        Shape4{"nested_elements", NestedElements, 5000},
        Shape4{"nested_attributes", NestedAttributes, 5000},
        Shape4{"nested_with_semicolon", NestedOnOneLineWithSemicolons, 5000},
        Shape4{"nested_statements", NestedStatements, 3000},
        Shape4{"nested_arrays", NestedArrays, 3000}, Shape4{"flat_elements", FlatElements, 3000},
        Shape4{"flat_bodies_on_one_line", FlatBodiesOnOneLine, 5000},
        Shape4{"flat_lines", FlatLines, 10000}, Shape4{"flat_statements", FlatStatements, 5000},
        Shape4{"flat_comments", FlatComments, 20000}, Shape4{"includes", Includes, 500}),
    [](const auto& shape) { return shape.param.name; });

TEST(Nesting, A_hundred_thousand_bodies_are_read_and_freed) {
  for (const auto make : {NestedElements, NestedAttributes}) {
    Definition definition(make(100000));
    ASSERT_EQ(definition.code, IMEPERR_NONE);
    std::size_t depth = 0;
    const IxoMepParser* parser = &definition.parser;
    while (parser != nullptr) {
      const IxoMepElement* element = parser->GetElement(0);
      if (element == nullptr) break;
      const IxoMepAttribute* attribute = element->GetAttr(element->GetAttrCount() - 1);
      parser = element->GetBodyParser() != nullptr ? element->GetBodyParser()
               : attribute != nullptr              ? attribute->GetBodyParser()
                                                   : nullptr;
      ++depth;
    }
    EXPECT_GE(depth, 100000u);
  }
}

TEST(Nesting, Bodies_that_are_objects_need_no_native_stack_when_they_go) {
  QuickReading::Use(false);
  for (const auto make : {NestedElements, NestedAttributes}) {
    // What goes back to the free lists once is there for the next time.
    EXPECT_EQ(Definition(make(200000)).code, IMEPERR_NONE);
    const std::size_t before = MemoryBudget::InUse();
    EXPECT_EQ(Definition(make(200000)).code, IMEPERR_NONE);
    EXPECT_EQ(MemoryBudget::InUse(), before);
  }
  QuickReading::Use(true);
}

TEST(Nesting, Error_in_the_deepest_body_frees_all_around_it) {
  const std::string text = Repeated("A {\n", 100000) + "?" + Repeated("}\n", 100000);
  const Definition definition(text);
  EXPECT_EQ(definition.code, IMEPERR_OUTSIDE_ELEMENT);
  EXPECT_EQ(definition.parser.GetErrorLine(), 100001);
  EXPECT_EQ(definition.parser.GetErrorOffset(), 400000);
}

TEST(Nesting, Open_braces_and_brackets_without_end) {
  EXPECT_EQ(Definition(Repeated("A {", 100000)).code, IMEPERR_CLOSER_EXPECTED);
  EXPECT_EQ(Definition("A " + Repeated("a: {", 100000)).code, IMEPERR_CLOSER_EXPECTED);
  EXPECT_EQ(Definition("A " + Repeated("a{([", 100000)).code, IMEPERR_BAD_ATTRIBUTE_NAME);
  EXPECT_EQ(Definition(Repeated("}", 100000)).code, IMEPERR_OUTSIDE_ELEMENT);
  EXPECT_NE(Definition("A " + Repeated("(", 100000)).code, IMEPERR_NONE);
  EXPECT_NE(Definition("A {{" + Repeated("{", 100000)).code, IMEPERR_NONE);
  EXPECT_NE(Definition("A a: " + Repeated("({", 50000)).code, IMEPERR_NONE);
}

TEST(Nesting, Twenty_megabytes_of_flat_text) {
  const Definition definition(FlatElements(20000000 / 70));
  EXPECT_EQ(definition.code, IMEPERR_NONE);
  EXPECT_EQ(definition.parser.GetElemCount(), 20000000 / 70);
}

constexpr std::string_view kSample =
    "# sample\nNODE \"a\\\"b\" size: 2.5cm c: mod: (x + 1) d[1]: {1, {2}} e: { F {G} } flag\n"
    "  x := f({1,\n 2});\n (* c { \" *) H -5 { I 01:002:03:04:05 \n{ J $ff } }\nSTR (x);\nK 50%"sv;

TEST(Hostile, Sample_is_read) { EXPECT_EQ(Definition(kSample).code, IMEPERR_NONE); }

// Whatever is cut off, reading ends with a code and frees what it made.
TEST(Hostile, Every_beginning_and_every_ending_of_a_text) {
  for (std::size_t cut = 0; cut <= kSample.size(); ++cut) {
    Definition(kSample.substr(0, cut)).parser.GetElemCount();
    Definition(kSample.substr(cut)).parser.GetElemCount();
    IxoMepParser stretch(String(kSample), static_cast<std::int32_t>(cut), 40, 1, "test");
    const IxoMepErrorEnum code = stretch.Parse();
    EXPECT_EQ(code == IMEPERR_NONE, stretch.GetErrorText().IsEmpty()) << cut;
  }
}

TEST(Hostile, Every_byte_in_every_place) {
  for (std::size_t place = 0; place < kSample.size(); ++place) {
    for (const char byte : "\0\x80\xA0\xFF\"\\#({[]})*;:@A\n-.$%"sv) {
      std::string text(kSample);
      text[place] = byte;
      const Definition definition(text);
      EXPECT_EQ(definition.code, definition.parser.GetErrorCode());
    }
  }
}

TEST(Hostile, Random_texts_from_the_bytes_of_the_grammar) {
  constexpr int kRounds = 20000;
  std::mt19937 random(RandomSeed(kRounds));
  constexpr std::string_view kBytes = "AAB  \n\nab:::{{}}(())[]\"\"\\#*;1.5-$@_%m\0\xE4\xA0"sv;
  for (int round = 0; round < kRounds; ++round) {
    std::string text;
    for (std::size_t length = random() % 40; length > 0; --length) {
      text += kBytes[random() % kBytes.size()];
    }
    const Definition definition(text);
    EXPECT_EQ(definition.code == IMEPERR_NONE, definition.parser.GetErrorText().IsEmpty());
    EXPECT_LE(definition.parser.GetErrorOffset(), static_cast<std::int32_t>(text.size())) << text;
  }
}

}  // namespace
}  // namespace ixomep::test
