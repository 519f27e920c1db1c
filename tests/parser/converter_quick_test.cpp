// The converter's quick way, straight from the text, against the way over objects and the plain
// way: random texts that are dense with every form of literal, all small numbers, names and strings
// of every length, rooms that end at every place.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "ixomep/host/memory_budget.h"
#include "ixomep/parser/converter.h"
#include "ixomep/parser/element_view.h"
#include "tests/support/plain_xml.h"
#include "tests/support/test_host.h"

namespace ixomep::test {
namespace {

std::string Bytes(const String& text) { return std::string(text.view()); }

bool IsInRecords(const IxoMepParser& parser) {
  for (std::int32_t i = 0; i < parser.GetElemCount(); ++i) {
    if (!ElementView::Of(parser, i).IsRecord()) return false;
  }
  return true;
}

void MakeObjects(const IxoMepParser& parser) {
  for (std::int32_t i = 0; i < parser.GetElemCount(); ++i) {
    ASSERT_NE(parser.GetElement(i), nullptr);
    if (const IxoMepParser* const body = parser.GetBodyParser(i)) MakeObjects(*body);
  }
}

// Written from records, then over objects, with and without changed names; and in the plain way.
void ExpectSameXml(const std::string& text) {
  IxoMepConverter converter{String(text)};
  ASSERT_EQ(converter.Parse(), IMEPERR_NONE) << converter.GetErrorText().c_str() << "\n" << text;
  ASSERT_TRUE(IsInRecords(converter)) << text;
  std::string quick[4];
  for (int i = 0; i < 4; ++i) {
    converter.SetXmlNames(i % 2 != 0);
    quick[i] = Bytes(converter.ToXML(i / 2 != 0, "r"));
  }
  ASSERT_TRUE(IsInRecords(converter)) << text;
  IxoMepConverter objects{String(text)};
  ASSERT_EQ(objects.Parse(), IMEPERR_NONE);
  MakeObjects(objects);
  ASSERT_EQ(quick[0], "<r>\n" + PlainXml(objects, true) + "</r>\n") << text;
  for (int i = 0; i < 4; ++i) {
    objects.SetXmlNames(i % 2 != 0);
    ASSERT_EQ(quick[i], Bytes(objects.ToXML(i / 2 != 0, "r"))) << i << ": " << text;
  }
}

// --- Random texts -------------------------------------------------------------------------------

class DenseTexts {
 public:
  explicit DenseTexts(std::uint32_t seed) : random_(seed) {
    for (int i = 0; i < 12; ++i) names_.push_back(Letters("abcxyz_\xE4\xD7", 1 + Below(5)));
    for (const int size : {24, 25, 26, 31, 40, 41, 42, 90}) names_.push_back(Letters("ab", size));
    for (std::string& name : names_) name.insert(0, "n");
  }

  std::string Next() {
    std::string text = Elements(3);
    // The last literal may be the last of the text, and then there is little to read behind it.
    if (Chance(50)) text += "LAST " + Value();
    // Numbers at the very end have rules of their own.
    return text + (Chance(30) && text.back() == '"' ? "" : "\n");
  }

 private:
  int Below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(random_); }
  bool Chance(int percent) { return Below(100) < percent; }
  template <class Choices>
  auto Pick(const Choices& choices) {
    return choices[static_cast<std::size_t>(Below(static_cast<int>(std::size(choices))))];
  }
  std::string Letters(const std::string& letters, int size) {
    std::string word;
    for (int i = 0; i < size; ++i) word += Pick(letters);
    return word;
  }

  std::string Literal() {
    static const std::string kDigits = "0123456789", kFewDigits = "019";
    const std::string& digits = Chance(50) ? kDigits : kFewDigits;
    std::string number = Letters(digits, 1 + Below(Chance(80) ? 4 : 9));
    if (Chance(60)) number += "." + Letters(digits, 1 + Below(Chance(80) ? 3 : 14));
    static const std::string kUnits[] = {"", "", "cm", "cm", "mm", "mm", "s", "s", "m", "pt"};
    return (Chance(15) ? "-" : "") + number + Pick(kUnits);
  }

  std::string Quoted() {
    static const int kSizes[] = {0, 1, 3, 8, 15, 16, 17, 31, 32, 33, 60};
    static const std::string kPlain = "abc ABC.,-#/+0123", kAll = "<>&'ab\x7F\n\r\t\x01 ";
    const std::string& letters = Chance(60) ? kPlain : kAll;
    std::string text = "\"";
    for (int i = Chance(3) ? 4090 + Below(12) : Pick(kSizes); i > 0; --i) {
      if (Chance(6)) {
        text += '\\';
        text += Pick(std::string("\"\\abtnvfrxq\n"));
      } else {
        text += Chance(1) && Chance(20) ? '\xE4' : Pick(letters);
      }
    }
    return text + '"';
  }

  std::string Value() {
    switch (Below(10)) {
      case 0:
        return "(w + " + std::to_string(Below(5)) + ")";
      case 1:
        return Chance(50) ? "(1 + 2)" : "{1, " + Quoted() + "}";
      case 2:
        return Chance(50) ? "$fF" : "01:002:03:04:05";
      case 3:
      case 4:
      case 5:
        return Quoted();
      default:
        return Literal();
    }
  }

  std::string Attribute(int depth) {
    std::string text = (Chance(80) ? " " : "\n  ") + Pick(names_);
    if (Chance(15)) return text;
    text += ":";
    if (Chance(80)) text += " ";
    if (Chance(20)) text += Letters("abc", Chance(80) ? 3 : 30 + Below(5)) + ":";
    if (text.back() == ':' && Chance(50)) text += " ";
    if (depth > 0 && Chance(4)) return text + "{ " + Elements(depth - 1) + " }";
    return text + Value();
  }

  std::string Elements(int depth) {
    std::string text;
    static const std::string kKeywords[] = {"A", "PART",
                                            "LONG_KEYWORD_OF_MORE_THAN_FORTY_EIGHT_LETTERS_THAT_"
                                            "NO_BLOCK_HOLDS",
                                            "K_"};
    for (int i = Below(6); i >= 0; --i) {
      text += Pick(kKeywords) + (Chance(50) ? " " + Value() : "");
      for (int k = Below(Chance(95) ? 7 : 60); k > 0; --k) text += Attribute(depth);
      // So deep that the indentation has one, two and many blocks.
      const int bodies = depth > 0 && Chance(30) ? Below(Chance(90) ? 2 : 30) + 1 : 0;
      for (int k = 0; k < bodies; ++k)
        text += k + 1 < bodies ? " {\nIN" : " {\n" + Elements(depth - 1);
      text += std::string(static_cast<std::size_t>(bodies), '}') + "\n";
    }
    return text;
  }

  std::mt19937 random_;
  std::vector<std::string> names_;
};

TEST(QuickXml, Random_texts_are_written_as_over_objects_and_in_the_plain_way) {
  const TestHost host;
  constexpr int kRounds = 1500;
  DenseTexts texts(RandomSeed(kRounds));
  for (int round = 0; round < kRounds; ++round) {
    ASSERT_NO_FATAL_FAILURE(ExpectSameXml(texts.Next())) << round;
  }
}

// --- Numbers ------------------------------------------------------------------------------------

TEST(QuickXml, All_small_numbers_of_every_unit_are_written_as_over_objects) {
  std::vector<std::string> fractions = {""};
  for (int i = 0; i < 1000; i += i < 110 ? 1 : 7) {
    const std::string digits = std::to_string(i);
    fractions.push_back("." + digits);
    fractions.push_back("." + std::string(3 - digits.size(), '0') + digits);
  }
  for (const char* more : {".00000", ".10000", ".12345", ".123456", ".1234567", ".999999",
                           ".9999999", ".99999999999", ".000001", ".0000001"}) {
    fractions.push_back(more);
  }
  for (const char* unit : {"", "cm", "mm", "s", "m", "pt"}) {
    for (const char* sign : {"", "-"}) {
      std::string text;
      for (const char* whole :
           {"0",         "1",     "5",     "9",      "10",       "11",       "59",
            "60",        "99",    "100",   "101",    "3600",     "9999",     "10000",
            "86399",     "86400", "99999", "100000", "31535999", "31536000", "123456789",
            "999999999", "00",    "01",    "010"}) {
        for (const std::string& fraction : fractions) {
          text += std::string("A a: ") + sign + whole + fraction + unit + "\n";
        }
      }
      ASSERT_NO_FATAL_FAILURE(ExpectSameXml(text)) << sign << unit;
    }
  }
}

// --- Lengths ------------------------------------------------------------------------------------

TEST(QuickXml, Names_and_modifiers_of_every_length_are_whole) {
  std::string text;
  for (std::size_t size = 1; size < 80; ++size) {
    const std::string name(size, 'n');
    const std::string keyword(size, 'K');
    text += keyword + " " + name + ": 1 " + name + ": 2 b" + name + " c" + name + ": " + name +
            ": \"" + name + "\" d" + name + ": m { " + keyword + " }\n";
  }
  // Once more: what has been kept of a name is used from its second time on.
  ExpectSameXml(text + text);
}

TEST(QuickXml, More_names_than_are_kept_are_written_once_each) {
  std::string text;
  for (int round = 0; round < 2; ++round) {
    for (int i = 0; i < 5000; ++i) {
      const std::string name = "n" + std::to_string(i);
      text += "K" + std::string(static_cast<std::size_t>(i % 30), 'K') + " " + name + ": 1 " +
              name + ": 2 m: " + name + "\n";
    }
  }
  ExpectSameXml(text);
}

TEST(QuickXml, Room_may_end_at_every_place) {
  // Each text begins with so many bytes that become six times as many, so that what has been
  // reserved ends somewhere else in what follows.
  std::string follows;
  for (int i = 0; i < 40; ++i) {
    follows +=
        "PART \"part\" title: de: \"6\\\" <flange>\" length: 1.5cm width: 12.5mm cycle: 9s "
        "visible { IN x: 1 }\n";
  }
  for (std::size_t size = 0; size < 2500; size += 23) {
    const std::string text = "A \"" + std::string(size, '<') + "\"\n" + follows;
    IxoMepConverter converter{String(text)};
    ASSERT_EQ(converter.Parse(), IMEPERR_NONE);
    ASSERT_EQ(Bytes(converter.ToXML(false, "")), PlainXml(converter, true)) << size;
  }
}

TEST(QuickXml, A_short_result_takes_no_more_room_than_a_long_text_would) {
  const TestHost host;
  IxoMepConverter converter{String("A x: \"" + std::string(200, '<') + "\"")};
  ASSERT_EQ(converter.Parse(), IMEPERR_NONE);
  const std::size_t before = MemoryBudget::InUse();
  const String xml = converter.ToXML(false, "");
  EXPECT_EQ(xml.Len(), 815);
  EXPECT_LT(MemoryBudget::InUse(), before + 4000);
}

}  // namespace
}  // namespace ixomep::test
