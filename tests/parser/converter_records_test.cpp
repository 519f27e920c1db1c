// The converter over a text that was read into records: the same bytes as over objects and over the
// plain reading, no objects made, and the elements that are current afterwards.
#include <gtest/gtest.h>

#include <string>

#include "ixomep/host/memory_budget.h"
#include "ixomep/parser/converter.h"
#include "ixomep/parser/document_scanner.h"
#include "ixomep/parser/element_view.h"
#include "tests/parser/plain_reading.h"
#include "tests/support/plain_xml.h"
#include "tests/support/random_definitions.h"
#include "tests/support/test_host.h"

namespace ixomep::test {
namespace {

std::string Bytes(const String& text) { return std::string(text.view()); }

// What was asked for before the conversion.
enum class Asked { Nothing, SomeElements, SomeBodies, Everything };

void Ask(const IxoMepParser& parser, Asked asked, int depth = 0) {
  if (asked == Asked::Nothing) return;
  for (std::int32_t i = 0; i < parser.GetElemCount(); ++i) {
    const bool is_asked = asked == Asked::Everything || (i + depth) % 2 == 0;
    if (!is_asked) continue;
    if (asked != Asked::SomeBodies) {
      ASSERT_NE(parser.GetElement(i), nullptr);
    }
    if (const IxoMepParser* const body = parser.GetBodyParser(i)) Ask(*body, asked, depth + 1);
  }
}

std::string XmlOf(const std::string& text, Asked asked, bool xml_names) {
  const CountingHost host;
  IxoMepConverter converter{String(text)};
  if (converter.Parse() != IMEPERR_NONE) return "error";
  Ask(converter, asked);
  converter.SetXmlNames(xml_names);
  const std::string references = Bytes(converter.ToXML(false, ""));
  if (!xml_names) {
    EXPECT_EQ(references, PlainXml(converter, true));
  }
  return references + Bytes(converter.ToXML(true, "r"));
}

bool IsInRecords(const IxoMepParser& parser) {
  for (std::int32_t i = 0; i < parser.GetElemCount(); ++i) {
    if (!ElementView::Of(parser, i).IsRecord()) return false;
  }
  return true;
}

TEST(ConverterOfRecords, Writes_what_it_writes_of_objects_and_after_the_plain_reading) {
  constexpr int kRounds = 2000;
  RandomDefinitions definitions(RandomSeed(kRounds));
  int good = 0;
  for (int round = 0; round < kRounds; ++round) {
    const std::string text = definitions.Next();
    const bool xml_names = round % 2 != 0;
    const std::string quick = XmlOf(text, Asked::Nothing, xml_names);
    for (const Asked asked : {Asked::SomeElements, Asked::SomeBodies, Asked::Everything}) {
      ASSERT_EQ(quick, XmlOf(text, asked, xml_names)) << text;
    }
    const PlainReading plain;
    ASSERT_EQ(quick, XmlOf(text, Asked::Nothing, xml_names)) << text;
    good += quick != "error" ? 1 : 0;
  }
  EXPECT_GT(good, kRounds / 4);
}

TEST(ConverterOfRecords, Every_kind_of_literal_has_its_export_text) {
  const struct {
    const char* literal;
    const char* xml;
  } kRows[] = {{"7", "7"},
               {"-7", "-7"},
               {"0", "0"},
               {"-0", "0"},
               {"007", "7"},
               {"-007", "-7"},
               {"000", "0"},
               {"123456789", "123456789"},
               {"$ff", "255"},
               {"12345678901", "12345678901"},
               {"2.50", "2.5"},
               {"12.5cm", "12.5cm"},
               {"0mm", "0cm"},
               {"5mm", ".5cm"},
               {"-1.25cm", "-1.25cm"},
               {"90s", "00:000:00:01:30"},
               {"01:002:03:04:05", "01:002:03:04:05"},
               {"\"a<b\"", "a&lt;b"},
               {"\"\"", ""},
               {"\"6\\\" \\\\ \\n\"", "6&quot; \\ &#10;"},
               {"\"\\a\\b|\\t\"", "|&#9;"},
               {"\"\xE4\"", "&#228;"},
               {"\"\\\"\xE4\"", "&quot;&#228;"},
               {"(1 + 2)", "3"},
               {"(w + 1)", "((w)+(1))"},
               {"(\"<\")", "&lt;"},
               {"{1, 2}", "{1, 2}"},
               {"{ B c: \"<\" }", " B c: &quot;&lt;&quot; "}};
  for (const auto& row : kRows) {
    // Not the end of the text, where numbers have rules of their own.
    IxoMepConverter converter{String("A a: ") + row.literal + " b: m: " + row.literal + " c\n"};
    ASSERT_EQ(converter.Parse(), IMEPERR_NONE) << row.literal;
    ASSERT_TRUE(IsInRecords(converter)) << row.literal;
    const std::string expected = std::string("<a val-a=\"") + row.xml +
                                 "\" modifier-b=\"m\" val-b=\"" + row.xml +
                                 "\" opt-c=\"true\" />\n";
    EXPECT_EQ(Bytes(converter.ToXML(false, "")), expected) << row.literal;
    EXPECT_TRUE(IsInRecords(converter)) << row.literal;
    EXPECT_EQ(PlainXml(converter, true), expected) << row.literal;
  }
}

TEST(ConverterOfRecords, Escaped_strings_of_every_length_are_whole) {
  for (std::size_t size = 0; size < 1100; size += size < 500 || size > 520 ? 37 : 1) {
    const std::string value = std::string(size, 'v') + "\"";
    IxoMepConverter converter{"A " + IxoMepParser::GetMepTextOfStrValue(String(value))};
    ASSERT_EQ(converter.Parse(), IMEPERR_NONE);
    EXPECT_EQ(Bytes(converter.ToXML(false, "")),
              "<a val=\"" + std::string(size, 'v') + "&quot;\" />\n");
  }
}

TEST(ConverterOfRecords, Many_different_expressions_have_their_own_text) {
  std::string text;
  std::string xml;
  for (int round = 0; round < 2; ++round) {
    for (int i = 0; i < 300; ++i) {
      const std::string number = std::to_string(i);
      text += "A a: (w + " + number + ")\n";
      xml += "<a val-a=\"((w)+(" + number + "))\" />\n";
    }
  }
  IxoMepConverter converter{String(text)};
  ASSERT_EQ(converter.Parse(), IMEPERR_NONE);
  EXPECT_EQ(Bytes(converter.ToXML(false, "")), xml);
}

TEST(ConverterOfRecords, Makes_no_objects_and_no_body_parsers) {
  const TestHost host;
  std::string text;
  for (int i = 0; i < 1000; ++i) text += "A \"\\\"\" a: 1 { B b: (w + 1) { C c: { D } } }\n";
  IxoMepConverter converter{String(text)};
  ASSERT_EQ(converter.Parse(), IMEPERR_NONE);
  const std::size_t before = MemoryBudget::InUse();
  EXPECT_FALSE(converter.ToXML(false, "").IsEmpty());
  EXPECT_TRUE(IsInRecords(converter));
  // A thousand bodies would take more.
  EXPECT_LT(MemoryBudget::InUse(), before + 20000);
}

TEST(ConverterOfRecords, The_last_element_of_every_body_is_current_afterwards) {
  for (const Asked asked : {Asked::Nothing, Asked::SomeBodies, Asked::Everything}) {
    IxoMepConverter converter("A { B { D x: 1 E F x: 3 } C { } G { x: 1 } }\nH x: { I J }");
    ASSERT_EQ(converter.Parse(), IMEPERR_NONE);
    Ask(converter, asked);
    converter.ToXML(false, "");
    EXPECT_EQ(converter.GetCurElemIndex(), 1);
    IxoMepParser& outer = *converter.GetBodyParser(0);
    EXPECT_EQ(outer.GetCurElemIndex(), 2);
    EXPECT_EQ(outer.GetBodyParser(0)->GetCurElemIndex(), 2);
    EXPECT_EQ(outer.GetBodyParser(0)->GetIntValue("x"), 3);
    EXPECT_EQ(outer.GetBodyParser(1)->GetCurElemIndex(), -1);
    EXPECT_EQ(outer.GetBodyParser(2)->GetCurElemIndex(), -1);
    EXPECT_EQ(outer.GetBodyParser(2)->GetIntValue("x"), 1);
    // The body of an attribute is written as text, not element by element.
    EXPECT_EQ(converter.GetBodyParser("x")->GetCurElemIndex(), 0);
  }
}

TEST(ConverterOfRecords, A_value_that_the_host_has_changed_is_written) {
  IxoMepConverter converter("A a: 1 { B b: 2 }\nC c: 3");
  ASSERT_EQ(converter.Parse(), IMEPERR_NONE);
  *converter.GetBodyParser(0)->GetValue("b") = IxoMepValue(20);
  EXPECT_EQ(Bytes(converter.ToXML(false, "")),
            "<a val-a=\"1\">\n    <b val-b=\"20\" />\n</a>\n<c val-c=\"3\" />\n");
}

TEST(ConverterOfRecords, A_body_that_the_host_has_changed_is_written) {
  IxoMepConverter converter("A x: { B } { C }\nD { E }\nF { G }");
  ASSERT_EQ(converter.Parse(), IMEPERR_NONE);
  converter.GetBodyParser("x")->SetText("longer than before");
  IxoMepParser& more = *converter.GetBodyParser(1);
  ASSERT_EQ(more.Parse(), IMEPERR_NONE);
  IxoMepParser& other = *converter.GetBodyParser(2);
  other.SetText("H I J");
  ASSERT_EQ(other.Parse(), IMEPERR_NONE);
  EXPECT_EQ(Bytes(converter.ToXML(false, "")),
            "<a val-x=\"longer than before\">\n    <c />\n</a>\n"
            "<d>\n    <e />\n    <e />\n</d>\n"
            "<f>\n    <h />\n    <i />\n    <j />\n</f>\n");
  EXPECT_EQ(other.GetCurElemIndex(), 2);
}

TEST(ConverterOfRecords, Names_that_become_one_in_xml_are_written_once) {
  IxoMepConverter converter("A n\xD7: 1 n_: 2 n\xA9: 3 m\nB n_: 4 n\xA9: 5\nC n\xA9: 6");
  ASSERT_EQ(converter.Parse(), IMEPERR_NONE);
  ASSERT_TRUE(IsInRecords(converter));
  converter.SetXmlNames(true);
  EXPECT_EQ(Bytes(converter.ToXML(false, "")),
            "<a val-n_=\"1\" opt-m=\"true\" />\n<b val-n_=\"4\" />\n<c val-n_=\"6\" />\n");
  converter.SetXmlNames(false);
  EXPECT_EQ(Bytes(converter.ToXML(false, "")),
            "<a val-n\xD7=\"1\" val-n_=\"2\" val-n\xA9=\"3\" opt-m=\"true\" />\n"
            "<b val-n_=\"4\" val-n\xA9=\"5\" />\n<c val-n\xA9=\"6\" />\n");
}

}  // namespace
}  // namespace ixomep::test
