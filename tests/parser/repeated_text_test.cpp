// Texts that say the same things again and again, which the quick reading recognises by what stood
// there before: the elements, errors and XML of the plain reading, also where a repetition differs
// in a single byte.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>

#include "ixomep/parser/converter.h"
#include "ixomep/parser/document_scanner.h"
#include "ixomep/parser/element_view.h"
#include "tests/parser/plain_reading.h"
#include "tests/support/definitions.h"
#include "tests/support/random_definitions.h"
#include "tests/support/test_host.h"

namespace ixomep::test {
namespace {

std::string Report(const std::string& text) {
  const CountingHost host;
  IxoMepConverter converter{String(text)};
  const IxoMepErrorEnum code = converter.Parse();
  std::string report = std::to_string(code) + ' ' + std::to_string(converter.GetErrorOffset()) +
                       ' ' + std::string(converter.GetErrorText().view()) + '\n';
  if (code == IMEPERR_NONE) report += std::string(converter.ToXML(false, "").view());
  return report + ReportOf(converter, false);
}

void ExpectPlainReading(const std::string& text) {
  const std::string quick = Report(text);
  const PlainReading plain;
  ASSERT_EQ(quick, Report(text)) << text;
}

bool IsReadQuickly(const std::string& text) {
  const Definition definition(text);
  return definition.code == IMEPERR_NONE && ElementView::Of(definition.parser, 0).IsRecord();
}

TEST(RepeatedTexts, Random_texts_in_a_row_read_as_in_the_plain_way) {
  constexpr int kRounds = 2000;
  RandomDefinitions definitions(RandomSeed(kRounds));
  for (int round = 0; round < kRounds; ++round) {
    const std::string once = definitions.Next() + '\n';
    std::string text = once + once;
    text += round % 3 == 0 ? once : definitions.Damaged(once);
    ExpectPlainReading(text);
  }
}

TEST(RepeatedTexts, Repetitions_that_differ_in_one_byte_read_as_in_the_plain_way) {
  constexpr std::string_view kItem =
      "PART \"p\"\n  title: de: \"Welle\"\n  length: 12.5cm count: 7 rate: 0.25\n  visible x:m\n"
      "  { GROUP { a: 1 B } LEAF 5 }\n";
  const std::string before = Repeated(kItem, 2);
  for (std::size_t place = 0; place < kItem.size(); ++place) {
    for (const char byte : {' ', '\n', '"', '\\', ':', ';', '#', '(',    ')',    '{',
                            '}', '-',  '.', '0',  'a', 'Z', '_', '\x01', '\xA0', '\xE4'}) {
      std::string changed(kItem);
      changed[place] = byte;
      ExpectPlainReading(before + changed + std::string(kItem));
    }
    ExpectPlainReading(before + std::string(kItem.substr(0, place)));
    ExpectPlainReading(before + std::string(kItem.substr(0, place)) + " " +
                       std::string(kItem.substr(place)));
  }
}

TEST(RepeatedTexts, What_follows_an_item_is_looked_at_again) {
  const std::string filler = "\n" + std::string(64, ' ');
  for (const char* const text :
       {"A b: 1 A b: 1 A b: c: 1", "A b A b A b: 1", "A b A b A b-c", "A b: c A b: c A b: c: 1",
        "A b: 1 A b: 1 A b: \"x\" A b: (w) A b: {1} A b: {C} A b: -1",
        "A \"x\" A \"x\" A 5 A (w) A {1} A {B} A (* c *) b", "A A A 5 A {1} A { B } A",
        "A { b: 1 } A { b: 1 } A { B b: 1 } A { b }", "A { B } A { B } A {B} A{B}A{B}",
        "A { } b: 1 A { } b: 1 A { }b: 1 A { }b: 1", "A b: 1} A b: 1}",
        "A b: 123456789 A b: 123456789 A b: 1234567890 A b: 12.123456789012345678",
        "A b: 1cm A b: 1cm A b: 1cmx", "A b: 1cm A b: 1cm A b: 1.cm A b: 1.5e3 A b: 1m A b: 1pt",
        "A b: 01:002:03:04:05 A b: 01:002:03:04:05 A b: 01"}) {
    ExpectPlainReading(text);
    ExpectPlainReading(text + filler);
  }
}

TEST(RepeatedTexts, Statements_among_repetitions_are_statements) {
  const std::string item = "A\n b: 1 c\n d: \"x;y\"\n";
  for (const char* const end :
       {"A\n b: 1;\n", "A\n b := 1;\n c: 2", "A\n b: 1 c;\n", "A\n d: \"x\"; e\n",
        "A\n b: 1 c\n d: \"x\" # ;\n", "A { b: 1; c := 2; }", "A # ;\n b: 1 c\n"}) {
    ExpectPlainReading(item + item + end);
    ExpectPlainReading(item + item + end + item);
  }
}

TEST(RepeatedTexts, Are_read_quickly) {
  EXPECT_TRUE(IsReadQuickly(Repeated("A \"b\" c: 1 d: e: \"f\" g { H } i: { j: 2cm }\n", 100)));
  EXPECT_TRUE(IsReadQuickly(Repeated("A\n b: 1\n c := 1;\n", 100)));
}

// Behind a keyword a string or an expression may follow without a blank, a number may not.
TEST(RepeatedTexts, A_value_that_touches_its_keyword_says_nothing_of_the_next_one) {
  const std::string filler(60, ' ');
  for (const char* const text : {"A\"b\" A\"b\" A5", "A\"b\" A\"b\" A5 c", "A(1) A(1) A5",
                                 "A(1) A(1) A5 A5", "A\"b\" A\"b\" A(2)", "A(1) A(1) A\"b\"",
                                 "A\"b\" A 5 A5", "A A A5", "A\"b\" A\"b\" A{1}"}) {
    SCOPED_TRACE(text);
    ExpectPlainReading(text);
    ExpectPlainReading(text + filler);
    ExpectPlainReading(text + ("\n" + filler));
  }
}

// --- Numbers in XML -----------------------------------------------------------------------------

TEST(RepeatedTexts, Numbers_of_every_form_are_written_as_in_the_plain_way) {
  std::string text = "A";
  int count = 0;
  for (const char* const whole : {"0", "00", "1", "9", "10", "010", "99", "12345", "99999",
                                  "100000", "123456", "999999999"}) {
    for (const char* const places : {"", ".0", ".1", ".5", ".9", ".01", ".05", ".10", ".99", ".001",
                                     ".123", ".5000", ".0001", ".9999", ".00001", ".123456"}) {
      for (const char* const unit : {"", "cm", "mm", "m", "pt", "s"}) {
        text += " n" + std::to_string(count++) + ": " + whole + places + unit;
        text += " n" + std::to_string(count++) + ": -" + whole + places + unit;
      }
    }
  }
  ASSERT_TRUE(IsReadQuickly(text));
  ExpectPlainReading(text);
}

TEST(RepeatedTexts, Many_decimals_are_written_as_in_the_plain_way) {
  std::string text;
  for (int i = 0; i < 3000; ++i) {
    const std::string digits = std::to_string(i * 7 + 1);
    const std::string tenth = std::to_string(i % 10);
    const std::string hundredths = tenth + std::to_string(i / 10 % 10);
    text += "A a: " + digits + "." + hundredths + "cm b: " + digits + "." + tenth +
            "mm c: " + digits + "." + hundredths + std::to_string(i % 7) + '\n';
  }
  const auto xml = [&text] {
    IxoMepConverter converter{String(text)};
    EXPECT_EQ(converter.Parse(), IMEPERR_NONE);
    return std::string(converter.ToXML(false, "").view());
  };
  const std::string quick = xml();
  const PlainReading plain;
  ASSERT_EQ(quick, xml());
}

}  // namespace
}  // namespace ixomep::test
