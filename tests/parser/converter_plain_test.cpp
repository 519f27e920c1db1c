// The converter against the plain way to XML, on random definition texts and numbers; what its
// buffer has to hold together; names with several lines.
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>

#include "ixomep/parser/converter.h"
#include "ixomep/values/value.h"
#include "tests/support/plain_xml.h"
#include "tests/support/test_host.h"

namespace ixomep::test {
namespace {

std::string Bytes(const String& text) { return std::string(text.view()); }

// --- Random texts -------------------------------------------------------------------------------

class RandomTexts {
 public:
  explicit RandomTexts(std::uint32_t seed) : random_(seed) {}

  std::string Elements(int depth) {
    std::string text;
    for (int i = Below(5); i >= 0; --i) text += Element(depth);
    return text;
  }

 private:
  int Below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(random_); }
  bool Chance(int percent) { return Below(100) < percent; }

  std::string Word(const char* letters, int longest) {
    const std::string all = letters;
    std::string word;
    for (int i = Below(longest); i >= 0; --i) {
      word += all[static_cast<std::size_t>(Below(static_cast<int>(all.size())))];
    }
    return word;
  }

  std::string Quoted() {
    std::string bytes;
    const bool is_ascii = Chance(70);
    const int longest = Chance(1) ? 20000 : 30;
    for (int i = Below(longest); i > 0; --i) {
      const int low = Chance(80) ? 97 : 1;
      bytes += static_cast<char>(low + Below((is_ascii ? 128 : 256) - low));
    }
    return Bytes(IxoMepParser::GetMepTextOfStrValue(bytes));
  }

  std::string Number() {
    const std::string digits = std::to_string(Below(100000)) + "." + std::to_string(Below(10000));
    const char* const units[] = {"", "cm", "mm", "pt", "m", "s"};
    const std::string unit = units[Below(6)];
    return (Chance(20) && unit != "s" ? "-" : "") + digits + unit;
  }

  std::string Value() {
    switch (Below(7)) {
      case 0:
        return Number();
      case 1:
        return std::to_string(Below(2000000) - 1000000);
      case 2:
        return "(w * " + std::to_string(Below(10)) + " + \"<'>\")";
      case 3:
        return "{1, " + Quoted() + ", {" + Number() + "}}";
      case 4:
        return "{\"k\": " + Number() + "}";
      default:
        return Quoted();
    }
  }

  std::string Attribute(int depth) {
    // Few names, so that some are there twice.
    const std::string name =
        Chance(90) ? Word("abX_", 2) : "a[" + Word("\n", 2) + Word("ab", 1) + Word("\n", 2) + "]";
    const bool is_plain = name.front() >= 'a';
    std::string text = " " + (is_plain ? name : "n" + name);
    if (Chance(20)) return text;
    text += ": ";
    if (Chance(30)) text += Word("abc", 6) + (Chance(20) ? "" : ": ");
    if (text.back() != ' ') return text;
    if (depth > 0 && Chance(10)) return text + "{ " + Elements(depth - 1) + "}";
    return text + Value();
  }

  std::string Element(int depth) {
    if (Chance(5)) return "x := " + std::to_string(Below(100)) + ";\n";
    std::string text = Word("ABC_", 8);
    if (text.front() == '_') text.front() = 'K';
    if (Chance(60)) text += " " + Value();
    for (int i = Below(Chance(5) ? 40 : 6); i > 0; --i) text += Attribute(depth);
    if (depth > 0 && Chance(40)) text += " {\n" + Elements(depth - 1) + "}";
    return text + "\n";
  }

  std::mt19937 random_;
};

TEST(PlainConverter, Random_texts_are_written_as_in_the_plain_way) {
  constexpr int kRounds = 400;
  RandomTexts texts(RandomSeed(kRounds));
  int converted = 0;
  for (int round = 0; round < kRounds; ++round) {
    const std::string text = texts.Elements(3);
    IxoMepConverter converter{String(text)};
    // What was read before an error is converted as well.
    if (converter.Parse() == IMEPERR_NONE) ++converted;
    ASSERT_EQ(Bytes(converter.ToXML(false, "")), PlainXml(converter, true)) << text;
    const String declared = converter.ToXML(true, "r");
    const std::string plain = PlainXml(converter, false);
    ASSERT_EQ(Bytes(declared),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<r>\n" + plain + "</r>\n")
        << text;
  }
  EXPECT_GT(converted, kRounds / 2);
}

// --- Numbers ------------------------------------------------------------------------------------

TEST(PlainConverter, Random_numbers_have_the_text_of_their_value_and_of_the_plain_way) {
  constexpr int kRounds = 100000;
  std::mt19937 random(RandomSeed(kRounds));
  std::uniform_real_distribution<double> exponent(-20.0, 20.0), unit(-1.0, 1.0);
  std::uniform_int_distribution<std::int64_t> whole(-2000000000000, 2000000000000);
  for (int round = 0; round < kRounds; ++round) {
    const double scale[] = {1.0, 10.0, 100.0, 1000.0, 1e6, 1e7, std::pow(10.0, exponent(random))};
    const double number = round % 2 == 0 ? unit(random) * scale[round % 7]
                                         : static_cast<double>(whole(random)) / scale[round % 7];
    const IxoMepValue real(number);
    ASSERT_EQ(Bytes(IxoMepConverter::ToExportStr(real)), PlainReal(number)) << round;
    const auto tenths = static_cast<std::int32_t>(unit(random) * 2e9) >> (round % 31);
    const IxoMepValue measure(IxoMepValueType::Measure, tenths);
    ASSERT_EQ(Bytes(measure.GetText()), PlainTenths(tenths));
    const double seconds = unit(random) * std::pow(10.0, 1 + round % 9);
    const IxoMepValue time(IxoMepValueType::Time, seconds);
    ASSERT_EQ(Bytes(time.GetText()), PlainTime(seconds)) << seconds;
  }
}

TEST(PlainConverter, Numbers_of_every_type_are_written_as_their_text) {
  IxoMepConverter converter("A a: 1 b: 1 c: 1 d: 1");
  ASSERT_EQ(converter.Parse(), IMEPERR_NONE);
  std::mt19937 random(RandomSeed(2000));
  std::uniform_real_distribution<double> exponent(-300.0, 300.0);
  for (int round = 0; round < 2000; ++round) {
    const double number = (round % 2 == 0 ? 1 : -1) * std::pow(10.0, exponent(random));
    const IxoMepValue values[] = {IxoMepValue(static_cast<int>(random())), IxoMepValue(number),
                                  IxoMepValue(IxoMepValueType::Measure, number),
                                  IxoMepValue(IxoMepValueType::Time, number)};
    std::string expected = "<a";
    for (int i = 0; i < 4; ++i) {
      const std::string name(1, static_cast<char>('a' + i));
      *converter.GetValue(String(name)) = values[i];
      expected += " val-" + name + "=\"" + Bytes(values[i].GetText(false)) + "\"";
    }
    ASSERT_EQ(Bytes(converter.ToXML(false, "")), expected + " />\n");
  }
}

// --- The edges of the buffer --------------------------------------------------------------------

TEST(PlainConverter, Texts_of_every_length_around_the_buffers_pieces_are_whole) {
  for (const std::size_t around : {0, 8, 16, 4096, 32768, 70000}) {
    for (std::size_t size = around < 4 ? 0 : around - 4; size < around + 5; ++size) {
      for (const char* const end : {"", "&", "\xE4"}) {
        const std::string value = std::string(size, 'v') + end;
        const std::string name = "n" + std::string(size, 'x');
        const std::string quoted = Bytes(IxoMepParser::GetMepTextOfStrValue(value));
        IxoMepConverter converter{String("K" + std::string(size, 'K') + " " + name + ": m" + name +
                                         ": " + quoted + " {A " + quoted + "}")};
        ASSERT_EQ(converter.Parse(), IMEPERR_NONE);
        ASSERT_EQ(Bytes(converter.ToXML(false, "")), PlainXml(converter, true)) << size;
      }
    }
  }
}

TEST(PlainConverter, Much_longer_than_the_text_it_is_whole) {
  for (std::size_t count = 1; count < 100000; count = count * 3 + 1) {
    const std::string value(count, '&');
    IxoMepConverter converter{String("A b: \"" + value + "\" c: 1 { D \"" + value + "\" }")};
    ASSERT_EQ(converter.Parse(), IMEPERR_NONE);
    ASSERT_EQ(Bytes(converter.ToXML(false, "root")),
              "<root>\n" + PlainXml(converter, true) + "</root>\n");
  }
}

TEST(PlainConverter, Every_pair_of_bytes_is_escaped_as_in_the_plain_way) {
  for (int first = 1; first < 256; ++first) {
    std::string text = "A";
    for (int second = 1; second < 256; ++second) {
      const std::string bytes = std::string("abcdef") + static_cast<char>(first) +
                                static_cast<char>(second) + "mnopqrstuv";
      text +=
          " n" + std::to_string(second) + ": " + Bytes(IxoMepParser::GetMepTextOfStrValue(bytes));
    }
    IxoMepConverter converter{String(text)};
    ASSERT_EQ(converter.Parse(), IMEPERR_NONE);
    ASSERT_EQ(Bytes(converter.ToXML(false, "")), PlainXml(converter, true)) << first;
  }
}

// A host whose character set is not ASCII: capital letters and digits have other places.
class OtherLetters : public TestHost {
 public:
  String ToUtf8(std::string_view text) override {
    std::string utf8(text);
    for (char& byte : utf8) {
      if (byte == '1') byte = '<';
      if (byte == 'x') byte = 'y';
    }
    return TestHost::ToUtf8(utf8);
  }
};

TEST(PlainConverter, A_host_whose_set_is_not_ascii_converts_all_values) {
  const OtherLetters host;
  IxoMepConverter converter("A \"x1\" n: 1 r: 1.5 m: 1cm e: (x + 1)");
  ASSERT_EQ(converter.Parse(), IMEPERR_NONE);
  EXPECT_EQ(converter.ToXML(true, ""),
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
            "<a val=\"y&lt;\" val-n=\"&lt;\" val-r=\"&lt;.5\" val-m=\"&lt;cm\" "
            "val-e=\"((y)+(&lt;))\" />\n");
}

// --- Names --------------------------------------------------------------------------------------

TEST(PlainConverter, A_name_that_is_a_line_of_an_index_part_counts_as_written) {
  IxoMepConverter converter("A a[\nb\n]: 1 b: 2 c: 3");
  ASSERT_EQ(converter.Parse(), IMEPERR_NONE);
  EXPECT_EQ(converter.ToXML(false, ""), "<a val-a[\nb\n]=\"1\" val-c=\"3\" />\n");
}

TEST(PlainConverter, Many_elements_with_many_names_are_converted_in_time) {
  std::string text;
  for (int i = 0; i < 50; ++i) {
    text += "A";
    for (int k = 0; k < 400; ++k) text += " n" + std::to_string((i + 1) * k);
    text += "\n";
  }
  IxoMepConverter converter{String(text)};
  ASSERT_EQ(converter.Parse(), IMEPERR_NONE);
  EXPECT_EQ(Bytes(converter.ToXML(false, "")), PlainXml(converter, true));
}

}  // namespace
}  // namespace ixomep::test
