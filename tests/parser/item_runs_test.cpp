// Runs of plain items, which the quick reading reads in one loop: every form of a gap, a name, a
// value and of what stands behind it gives what the plain reading gives; attributes on both sides
// of bodies stay with their elements; and what the first of two scans compiled serves the second.
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "ixomep/host/sanitizer.h"
#include "ixomep/parser/document_scanner.h"
#include "ixomep/parser/element_view.h"
#include "ixomep/parser/parser.h"
#include "tests/parser/plain_reading.h"
#include "tests/support/definitions.h"
#include "tests/support/random_definitions.h"
#include "tests/support/test_host.h"

namespace ixomep::test {
namespace {

// A sanitizer makes these tests twenty times as slow. It gets one case of so many.
constexpr int kOneOf = kWatchedMemory ? 3 : 1;

std::string Report(const std::string& text) {
  const CountingHost host;
  IxoMepParser parser{String(text)};
  const IxoMepErrorEnum code = parser.Parse();
  return std::to_string(code) + ' ' + std::to_string(host.calls) + ' ' +
         std::to_string(parser.GetErrorOffset()) + ' ' + std::string(parser.GetErrorText().view()) +
         '\n' + ReportOf(parser, false);
}

bool IsReadQuickly(const std::string& text) {
  const Definition definition(text);
  return definition.code == IMEPERR_NONE && ElementView::Of(definition.parser, 0).IsRecord();
}

// So that the end of the text is far from all that is looked at.
std::string Padded(const std::string& text) { return text + '\n' + std::string(200, ' '); }

// The same for a text that is long enough to be looked at in a map of its bytes.
std::string PaddedFar(const std::string& text) { return text + '\n' + std::string(800, ' '); }

// Items of which none can be foreseen: behind them no guesses are made any more.
std::string Unforeseen() {
  std::string items = "Z";
  for (char letter = 'a'; letter <= 'z'; ++letter) items += std::string(" z") + letter;
  return items + '\n';
}

// Twice, so that all names are known and the items can be foreseen the second time; with guesses,
// without them, and in a map of bytes.
void ExpectPlainReading(const std::string& item, const std::string& changed) {
  const std::string items = item + '\n' + item + '\n' + changed + '\n' + item;
  for (const std::string& text :
       {Padded(items), Padded(Unforeseen() + items), PaddedFar(Unforeseen() + items)}) {
    const std::string quick = Report(text);
    const PlainReading plain;
    ASSERT_EQ(quick, Report(text)) << text;
  }
}

TEST(ItemRuns, Numbers_with_any_letters_behind_them) {
  int number = 0;
  for (const char* const digits :
       {"1", "0", "123456789", "1234567890", "1.5", "1.", ".5", "1..5", "1.5.2", "12345678.123456",
        "123456789.12345", "1.1234567890123456"}) {
    for (const char* const first : {"", "c", "m", "p", "s", "t", "x", "e"}) {
      for (const char* const second : {"", "m", "t", "s", "c", "5", "."}) {
        for (const char* const behind : {" b", "\n", "}", "x", "M", ":", ";", "\"", "(", "\xA0"}) {
          if (++number % kOneOf != 0) continue;
          ExpectPlainReading("A a: 1 b", std::string("A a: ") + digits + first + second + behind);
        }
      }
    }
  }
}

TEST(ItemRuns, Strings_of_every_length_with_an_escape_at_every_place) {
  for (std::size_t size = 0; size < 150; size += kOneOf) {
    const std::string plain(size, 'x');
    ExpectPlainReading("A a: \"y\" b", "A \"" + plain + "\" a: \"" + plain + "\" b");
    for (std::size_t place = 0; place < size; place += 1 + size / 40) {
      std::string escaped = plain;
      escaped.replace(place, 1, place % 2 == 0 ? "\\\"" : "\\\\");
      ExpectPlainReading("A a: \"y\" b", "A \"" + escaped + "\" a: \"" + escaped + "\" b");
    }
  }
}

TEST(ItemRuns, Gaps_and_names_of_every_length) {
  for (std::size_t size = 1; size < 70; ++size) {
    const std::string gap(size, ' ');
    const std::string tabs = "\n" + std::string(size - 1, '\t');
    const std::string name(size, 'n');
    const std::string keyword(size, 'K');
    const std::string item = keyword + " 1 " + name + ": 2 " + name + ": mod: 3 a: " + name;
    ExpectPlainReading(item, item);
    ExpectPlainReading("A 1 b: 2 c", "A" + gap + "1" + gap + "b:" + gap + "2" + gap + "c");
    ExpectPlainReading("A 1 b: m: 2 c", "A" + tabs + "1" + tabs + "b:" + tabs + "m:" + tabs + "2");
    ExpectPlainReading("A b { c }", "A" + tabs + "b" + gap + "{" + tabs + "c" + gap + "}");
  }
}

TEST(ItemRuns, Names_and_modifiers_of_every_byte) {
  for (int byte = 1; byte < 256; byte += kOneOf) {
    const std::string one(1, static_cast<char>(byte));
    for (const std::string& changed :
         {"A b" + one + ": 1 c", "A " + one + "b: 1 c", "A b: m" + one + ": 1 c",
          "A" + one + "B 1 c", "A b: " + one + "m c", "A b: 1" + one + "c", "A b" + one + "1",
          one + "A b: 1"}) {
      ExpectPlainReading("A b: m: 1 c", changed);
      ExpectPlainReading(changed, changed);
    }
  }
}

TEST(ItemRuns, Attributes_behind_bodies_stay_with_their_element) {
  for (const char* const item :
       {"A a: 1 { B b: 2 } c: 3", "A a: { B b: 2 } c: 3",
        "A a: 1 b: { C c: 2 d: 3 } e: 4 f: { g: 5 } h", "A { B b } c { D }",
        "A a: { } b: 1 c: { d } e: 2 F g", "A { b: 1 c: { D d } e: 2 F f { g } h } i",
        "A a: 1 b: { } c: { } d: { E } e: { F f } g: 2\n{ G } h i: { J j } k",
        "A a { B b { C c { D d } c2 } b2 } a2 E e"}) {
    std::string text;
    for (int i = 0; i < 40; ++i) text += std::string(item) + '\n';
    const std::string padded = Padded(text);
    EXPECT_EQ(IsReadQuickly(padded), std::string_view(item).find("} c { D") == std::string::npos)
        << item;
    const std::string quick = Report(padded);
    const PlainReading plain;
    EXPECT_EQ(quick, Report(padded)) << item;
  }
}

TEST(ItemRuns, An_element_with_many_bodies_among_its_attributes_is_read_in_linear_time) {
  std::string text = "A";
  for (int i = 0; i < 200'000; ++i) text += " a: 1 b: { C c: 1 }";
  const Definition definition(text);
  EXPECT_EQ(definition.code, IMEPERR_NONE);
  EXPECT_EQ(definition.parser.GetAttrCount(), 400'000);
}

TEST(ItemRuns, Texts_whose_items_never_follow_each_other_twice) {
  std::string text;
  for (int i = 0; i < 4000; ++i) {
    text += "A a" + std::to_string(i * 7919 % 61) + ": " + std::to_string(i) + " b" +
            std::to_string(i * 104'729 % 53) + ": m: \"x\" c\n";
    if (i % 16 == 0) text += "{ D d: 1 }\n";
  }
  EXPECT_TRUE(IsReadQuickly(text));
  const std::string quick = Report(text);
  const PlainReading plain;
  EXPECT_EQ(quick, Report(text));
}

// A map ends somewhere in the text, and behind its end is what an earlier one told of other bytes.
TEST(ItemRuns, Strings_across_the_end_of_the_map) {
  std::string quotes;
  for (int i = 0; i < 100; ++i) quotes += "\\\"";
  std::string start = Unforeseen() + "A a: \"y\" b: \"y\"";
  for (int i = 0; i < 18; ++i) start += " a: \"" + quotes + '"';
  for (const std::size_t behind : {std::size_t{100}, std::size_t{330}, std::size_t{800}}) {
    for (std::size_t shift = 0; shift < 700; shift += kOneOf) {
      const std::string text = start + " a: \"" + std::string(shift, 'x') + "\" b: \"" +
                               std::string(150, 'x') + "\" a: \"t\" b: \"u\\\"\" a: 12.5mm b" +
                               std::string(behind, '\n');
      const std::string quick = Report(text);
      const PlainReading plain;
      ASSERT_EQ(quick, Report(text)) << behind << ' ' << shift;
    }
  }
}

// Numbers are compared with the one before of the same name, whose digits alone may differ.
TEST(ItemRuns, Numbers_like_and_unlike_the_one_before) {
  const std::vector<std::string> numbers = {
      "1",     "22",    "123456789", "1234567890", "1.5",   "2.7",    "12.5",  "1.55",
      "1mm",   "2mm",   "1.5mm",     "2.5cm",      "3.5mm", "7s",     "8m",    "1.5s",
      "1.x",   "1.5x",  "12mmm",     "1.5mm5",     "-1",    "1.5mm{", "0",     "5.5.5",
      "1:5mm", "1.:mm", "1.5m\"",    "1.5mM",      "$ff",   "1e5",    "(1+2)", "1234567890123456"};
  for (const std::string& one : numbers) {
    std::string text = "A a: " + one + " b\n";
    text += text + text;
    for (const std::string& other : numbers) {
      for (const char* const behind : {" b", "\n", "}"}) {
        const std::string both =
            Padded(text + "A a: " + other + behind + " A a: " + one + " b A a: " + other + " b");
        const std::string quick = Report(both);
        const PlainReading plain;
        ASSERT_EQ(quick, Report(both)) << both;
      }
    }
  }
}

// Every way of reading runs, and every change from one to another, in texts of some kilobytes.
TEST(ItemRuns, Long_random_texts_are_read_as_in_the_plain_way) {
  const TestHost host;
  constexpr int kRounds = 1200 / kOneOf;
  RandomDefinitions definitions(RandomSeed(kRounds));
  int good = 0;
  int quick_ones = 0;
  for (int round = 0; round < kRounds; ++round) {
    std::string text;
    const std::size_t size = round % 4 == 0 ? 9000 : 1500;
    std::string piece;
    while (text.size() < size) {
      // Some say the same again and again, with a change now and then.
      if (piece.empty() || round % 3 == 0 || text.size() % 7 == 0) {
        do {
          piece = definitions.Next() + '\n';
        } while (!IsReadQuickly(piece));
      }
      text += piece;
    }
    if (round % 2 != 0) {
      const std::size_t cut = text.size() - text.size() % 300 / 2 - 100;
      text = text.substr(0, cut) + definitions.Damaged(text.substr(cut));
    }
    if (round % 5 != 0) text += std::string(700, '\n');
    const std::string quick = Report(text);
    if (IsReadQuickly(text)) ++quick_ones;
    if (quick.starts_with("0 ")) ++good;
    const PlainReading plain;
    ASSERT_EQ(quick, Report(text)) << "round " << round << '\n' << text;
  }
  EXPECT_GT(good, kRounds / 2);
  EXPECT_GT(quick_ones, kRounds / 2);
}

// --- Two scans -----------------------------------------------------------------------------------

TEST(LateStatements, Values_before_them_are_as_in_the_plain_way) {
  const std::string before =
      "A a: (random()) b: (1 + 2) c: ({random()}) d: {1, (2)} e: (w) f: (w + random())\n";
  for (const char* const end : {"x := 1;", "x := random();\nB b: (random())", " b: (random());",
                                " b: (1 + 2);\n c: (1 + 2)", "(random());", "{random()};",
                                " { C c: (random())\n c := random();\n d: (random()) }", "x := (1;",
                                "B b: (random()) c: (1 / \"a\")\nx := 1;", "x := 1 / \"a\";", "B ;",
                                "B b: (random()) (* ; *) # ;\nx := 1;"}) {
    for (const int repetitions : {1, 3}) {
      std::string text;
      for (int i = 0; i < repetitions; ++i) text += before;
      text += end;
      const std::string quick = Report(text);
      const PlainReading plain;
      EXPECT_EQ(quick, Report(text)) << text;
    }
  }
}

}  // namespace
}  // namespace ixomep::test
