// The quick reading of definition texts against the plain one: the same elements, errors, places
// and answers for every text, and every evaluation made once; and what callers may rely on while
// elements become objects only when they are asked for.
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>

#include "ixomep/expr/value_set.h"
#include "ixomep/host/memory_budget.h"
#include "ixomep/parser/converter.h"
#include "ixomep/parser/document_scanner.h"
#include "ixomep/parser/element_view.h"
#include "tests/support/definitions.h"
#include "tests/support/random_definitions.h"
#include "tests/support/test_host.h"

namespace ixomep::test {
namespace {

// Random numbers that count.
class CountingHost : public TestHost {
 public:
  std::int32_t RandomFifteenBits() override { return ++calls; }
  std::int32_t calls = 0;
};

class PlainReading {
 public:
  PlainReading() { QuickReading::Use(false); }
  ~PlainReading() { QuickReading::Use(true); }
};

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

}  // namespace
}  // namespace ixomep::test
