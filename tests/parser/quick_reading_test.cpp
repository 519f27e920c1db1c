// The quick reading of definition texts against the plain one: the same elements, errors, places
// and answers for every text, and every evaluation made once; and what callers may rely on while
// elements become objects only when they are asked for.
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "ixomep/expr/expression_parser.h"
#include "ixomep/expr/value_set.h"
#include "ixomep/host/color.h"
#include "ixomep/host/memory_budget.h"
#include "ixomep/host/sanitizer.h"
#include "ixomep/parser/converter.h"
#include "ixomep/parser/document_scanner.h"
#include "ixomep/parser/element_view.h"
#include "tests/parser/plain_reading.h"
#include "tests/support/definitions.h"
#include "tests/support/random_definitions.h"
#include "tests/support/test_host.h"

namespace ixomep::test {
namespace {

std::string ReadAndReport(const std::string& text, int way) {
  CountingHost host;
  host.files["file"] = "I \"included\"\n x: (w)\n";
  IxoMepValueSet vars;
  vars.OldSetValue("w", IxoMepValue(7), true);
  vars.OldSetValue("x", IxoMepValue(3), true);
  // Some texts are stretches of a larger one, with lines that start anywhere.
  IxoMepParser parser(String("\n " + text), way % 2 == 0 ? 2 : 0, String::kMaxLength,
                      way % 3 == 0 ? 0 : 40, "test");
  parser.SetVars((way & 4) != 0 ? &vars : nullptr);
  const IxoMepErrorEnum code = parser.Parse();
  std::string report =
      std::to_string(code) + ' ' + std::to_string(host.calls) + ' ' +
      std::string(parser.GetErrorText().view()) + '\n' + std::to_string(parser.GetErrorOffset()) +
      ' ' + std::to_string(parser.GetErrorLine()) + ' ' + std::to_string(parser.GetErrorColumn()) +
      ' ' + std::string(parser.GetErrorContext().view()) + '\n';
  report += ReportOf(parser, (way & 8) != 0);
  if ((way & 16) != 0) {
    report += std::to_string(parser.Parse()) + ReportOf(parser, false);
  }
  return report;
}

std::string Xml(const std::string& text) {
  CountingHost host;
  IxoMepConverter converter{String(text)};
  if (converter.Parse() != IMEPERR_NONE) return "error";
  return std::string(converter.ToXML(true, "root").view());
}

TEST(QuickReading, Gives_what_the_plain_reading_gives_for_every_text) {
  const TestHost host;
  constexpr int kRounds = 10000;
  const std::uint32_t seed = RandomSeed(kRounds);
  RandomDefinitions definitions(seed);
  int good = 0;
  int quick_ones = 0;
  for (int round = 0; round < kRounds; ++round) {
    std::string text = definitions.Next();
    if (round % 2 != 0) text = definitions.Damaged(std::move(text));
    // Runs of items are read at once where the end of the text is far away.
    if (round % 4 >= 2) text.append(160, '\n');
    const std::string quick = ReadAndReport(text, round);
    const std::string quick_xml = round % 8 == 0 ? Xml(text) : "";
    const PlainReading plain;
    ASSERT_EQ(quick, ReadAndReport(text, round)) << "round " << round << "\n" << text;
    ASSERT_EQ(quick_xml, round % 8 == 0 ? Xml(text) : "") << text;
    good += quick.starts_with("0 ") ? 1 : 0;
    QuickReading::Use(true);
    IxoMepParser parser{String(text)};
    if (parser.Parse() == IMEPERR_NONE && ElementView::Of(parser, 0).IsRecord()) ++quick_ones;
  }
  // The comparison is worth something only when many texts can be read.
  EXPECT_GT(good, kRounds / 4);
  EXPECT_GT(quick_ones, kRounds / 6);
}

bool IsReadQuickly(std::string_view text) {
  const Definition definition(text);
  EXPECT_EQ(definition.code, IMEPERR_NONE) << text;
  return ElementView::Of(definition.parser, 0).IsRecord();
}

// The comparison above would pass if nothing was read quickly.
TEST(QuickReading, Takes_all_common_forms) {
  for (const char* text : {"A",
                           "A \"b\"",
                           "A\"b\"",
                           "A 5",
                           "A (w)",
                           "A(1)",
                           "A {1, 2}",
                           "A (* c *) b",
                           "A # c\n b",
                           "A a",
                           "A a:1",
                           "A a: mod",
                           "A a: mod: 1",
                           "A a: mod:\n \"x\\\"y\"",
                           "A a: -12.5cm b:5s",
                           "A a: $ff b: 1e3 c: .5 d: 12345678901",
                           "A a: (f(x)) b: (\"x\") c: {\"k\": 1}",
                           "A a: 01:002:03:04:05 b",
                           "A { }",
                           "A { b: 1 }",
                           "A { B { C } } d: 1",
                           "A b: { c: 1 } d",
                           "A b: { C } E",
                           "A\nx := 1;\n b: 1",
                           "A\nx := \"a;\" + f(\"b\\n\");\n b: 1",
                           "A b: \";\"\n c: 1\n { D }",
                           "A \xE4: 1 \xA0 b"}) {
    EXPECT_TRUE(IsReadQuickly(text)) << text;
  }
}

TEST(QuickReading, Takes_many_names_that_differ_in_one_byte) {
  std::string text = "A";
  for (int i = 10000; i < 60000; ++i) text += " name_number" + std::to_string(i);
  EXPECT_TRUE(IsReadQuickly(text));
  std::string short_names = "A";
  for (char a = 'a'; a <= 'z'; ++a) {
    for (char b = 'a'; b <= 'z'; ++b)
      short_names += std::string(" ") + a + b + "x " + "xxxxxx" + a + b;
  }
  EXPECT_TRUE(IsReadQuickly(short_names));
}

TEST(QuickReading, Evaluates_once_also_when_a_later_literal_fails) {
  CountingHost host;
  const Definition good("A a: (random()) b: (random() + x)");
  EXPECT_EQ(host.calls, 2);
  const Definition bad("A a: (random()) b: (1 / \"a\") c: (random())");
  EXPECT_NE(bad.code, IMEPERR_NONE);
  EXPECT_EQ(host.calls, 3);
  const Definition wrong("A a: (random()) { b: (random() }");
  EXPECT_NE(wrong.code, IMEPERR_NONE);
  EXPECT_EQ(host.calls, 4);
}

TEST(QuickReading, Objects_stay_at_their_address) {
  Definition definition("A \"x\" a: 1 b: { C c: (w) }\nB { D }\nE");
  IxoMepParser& parser = definition.parser;
  const IxoMepElement* const first = parser.GetElement(0);
  EXPECT_EQ(parser.GetCurElement(), first);
  IxoMepValue* const value = parser.GetValue("a");
  EXPECT_EQ(first->FindAttr("a")->GetValue(), value);
  value->SetInt(7);
  EXPECT_EQ(parser.GetIntValue("a"), 7);
  IxoMepParser* const body = parser.GetBodyParser("b");
  EXPECT_EQ(first->FindAttr("b")->GetBodyParser(), body);
  EXPECT_EQ(parser.GetBodyParserOfPos(1), body);
  const IxoMepElement* const inner = body->GetCurElement();
  IxoMepParser* const of_element = parser.GetBodyParser(1);
  EXPECT_TRUE(parser.SetCurElemIndex(1));
  EXPECT_EQ(parser.GetCurElement()->GetBodyParser(), of_element);
  EXPECT_EQ(parser.GetElement(0), first);
  EXPECT_EQ(body->GetElement(0), inner);
  EXPECT_EQ(inner->GetParser(), body);
  EXPECT_EQ(parser.Parse(), IMEPERR_NONE);
  EXPECT_EQ(parser.GetElemCount(), 6);
  EXPECT_EQ(parser.GetElement(0), first);
  EXPECT_EQ(parser.GetElement(1)->GetBodyParser(), of_element);
}

TEST(QuickReading, A_body_reads_again_from_its_own_line) {
  Definition definition("A\n\n{\n B a:\n (f(x)) }");
  IxoMepParser* const body = definition.parser.GetBodyParser();
  EXPECT_EQ(body->Parse(), IMEPERR_NONE);
  ASSERT_EQ(body->GetElemCount(), 2);
  EXPECT_EQ(body->GetElement(0)->GetLine(), 4);
  EXPECT_EQ(body->GetElement(1)->GetLine(), 4);
  EXPECT_EQ(body->GetElement(1)->GetAttr(0)->GetValue()->GetExpr()->GetLineNo(), 5U);
  body->SetText("C { D }");
  EXPECT_EQ(body->Parse(), IMEPERR_NONE);
  EXPECT_EQ(Shape(*body), "C {D}");
  definition.parser.SetText("E");
  EXPECT_EQ(definition.parser.GetElemCount(), 0);
  EXPECT_EQ(definition.parser.GetCurElemIndex(), -1);
}

TEST(QuickReading, A_body_with_another_text_loses_the_attributes_without_an_element) {
  Definition definition("A { b: 1 C }");
  IxoMepParser* const body = definition.parser.GetBodyParser();
  body->SetText("D");
  EXPECT_EQ(body->GetLooseAttributes(), nullptr);
  EXPECT_EQ(body->GetIntValue("b"), 0);
  EXPECT_EQ(body->Parse(), IMEPERR_NONE);
  EXPECT_EQ(body->GetLooseAttributes(), nullptr);
  EXPECT_EQ(Shape(*body), "D");
}

TEST(QuickReading, Bodies_of_bodies_need_no_native_stack) {
  constexpr std::size_t kDepth = 100000;
  Definition definition(Repeated("A a: { b: 1 B {", kDepth) + Repeated("} }", kDepth));
  ASSERT_EQ(definition.code, IMEPERR_NONE);
  IxoMepParser* body = &definition.parser;
  std::size_t depth = 0;
  for (; body != nullptr && body->GetElemCount() != 0; ++depth) {
    const IxoMepElement* const element = body->GetElement(0);
    body = depth % 2 == 0 ? element->GetAttr(0)->GetBodyParser() : element->GetBodyParser();
    if (depth % 2 == 0) {
      ASSERT_EQ(body->GetLooseAttributes()->GetAttrCount(), 1);
    }
  }
  EXPECT_EQ(depth, 2 * kDepth);
}

TEST(QuickReading, Takes_little_memory) {
  const std::string text = Repeated(
      "STATION \"station number 12\"\n  width: 12.5cm\n  title: de: \"Arbeitsplatz\"\n  visible\n"
      "  area: (w * h)\n  { SLOT \"left\" size: 3cm count: 12\n SLOT \"right\" size: 4.5cm }\n",
      10000);
  const String copy(text);
  const std::size_t before = MemoryBudget::InUse();
  IxoMepParser parser(copy);
  ASSERT_EQ(parser.Parse(), IMEPERR_NONE);
  EXPECT_LT(MemoryBudget::InUse() - before, 2 * text.size());
  for (std::int32_t i = 0; parser.SetCurElemIndex(i); ++i) {
    ASSERT_EQ(parser.GetValueTMM("width"), 1250);
    ASSERT_EQ(parser.GetBodyParser()->GetElemCount(), 2);
  }
  EXPECT_LT(MemoryBudget::InUse() - before, 6 * text.size());
}

TEST(QuickReading, Without_memory_an_object_counts_as_missing) {
  Definition definition("A a: \"some text that is not short\" { B }");
  {
    const ScopedMemoryLimit limit(0);
    EXPECT_EQ(definition.parser.GetElement(0), nullptr);
    EXPECT_EQ(definition.parser.GetCurElement()->GetStartOffset(), -1);
    EXPECT_EQ(definition.parser.GetValue("a"), nullptr);
    EXPECT_EQ(definition.parser.GetStrValue("a"), "");
    EXPECT_EQ(definition.parser.GetElemCount(), 1);
  }
  EXPECT_NE(definition.parser.GetElement(0), nullptr);
  EXPECT_EQ(definition.parser.GetStrValue("a"), "some text that is not short");
}

TEST(QuickReading, Questions_for_types_and_colours_make_no_objects) {
  const TestHost host;
  Definition definition("A \"t\" red: 1 blue: 2 n: \"red\" s: \"\\\"\" r: 1.5 m: 1cm\nB color: 5");
  IxoMepParser& parser = definition.parser;
  Color color;
  EXPECT_TRUE(parser.GetColor(color));
  EXPECT_EQ(color.GetPacked(), 0x010002);
  EXPECT_TRUE(parser.GetColor("n", "", "", "", color));
  EXPECT_FALSE(parser.GetColor("", "", "", "", color));
  EXPECT_EQ(parser.ExpectValueType(IxoMepValueType::String, false), IMEPERR_NONE);
  EXPECT_EQ(parser.ExpectValueType("s", IxoMepValueType::String, false), IMEPERR_NONE);
  EXPECT_EQ(parser.ExpectValueType("r", IxoMepValueType::Integer, false), IMEPERR_NONE);
  EXPECT_EQ(parser.ExpectValueType("m", IxoMepValueType::Integer, false), IMEPERR_UNEXPECTED_TYPE);
  EXPECT_EQ(parser.ExpectValueType("x", IxoMepValueType::Integer, true), IMEPERR_NONE);
  EXPECT_EQ(parser.ExpectValueType("x", IxoMepValueType::Undefined, false),
            IMEPERR_UNEXPECTED_TYPE);
  String text;
  parser.MakeErrorText(text);
  EXPECT_FALSE(parser.GetElemText(0).IsEmpty());
  EXPECT_TRUE(ElementView::Of(parser, 0).IsRecord());
}

// Its factories are called while the text is read, as they always were.
class FactoryParser : public IxoMepParser {
 public:
  FactoryParser(const String& text, std::string& calls) : IxoMepParser(text), calls_(calls) {}
  IxoMepParser* NewParser(const String& text, std::int32_t start, std::int32_t length,
                          std::int32_t firstLine, const String& context) override {
    calls_ += "body " + std::to_string(start) + ' ' + std::to_string(firstLine) + ';';
    return IxoMepParser::NewParser(text, start, length, firstLine, context);
  }
  IxoMepExpressionParser* NewExprParser() override {
    calls_ += "expression;";
    return IxoMepParser::NewExprParser();
  }

 private:
  std::string& calls_;
};

TEST(QuickReading, Derived_parsers_have_their_factories_called_while_reading) {
  std::string calls;
  FactoryParser parser("A a: (w) {\n }\nB b: { C } c: {1}", calls);
  EXPECT_EQ(parser.Parse(), IMEPERR_NONE);
  EXPECT_EQ(calls, "expression;body 10 1;body 20 3;expression;");
}

// Sanitizers want every block from the heap.
TEST(QuickReading, The_place_of_a_body_that_is_gone_serves_the_next_one) {
  const auto place = [] {
    const Definition definition("A { B }");
    return reinterpret_cast<std::uintptr_t>(definition.parser.GetElement(0)->GetBodyParser());
  };
  const std::uintptr_t before = place();
  EXPECT_NE(before, 0u);
  EXPECT_TRUE(place() == before || kWatchedMemory);
}

}  // namespace
}  // namespace ixomep::test
