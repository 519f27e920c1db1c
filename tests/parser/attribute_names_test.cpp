// Attributes by name in elements with few and with many of them: the answers are those of a look
// at each in turn, whatever the number, and it is the first of equal names that is found.
#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "ixomep/host/memory_budget.h"
#include "ixomep/parser/document_scanner.h"
#include "ixomep/parser/parser.h"
#include "tests/support/definitions.h"
#include "tests/support/test_host.h"

namespace ixomep::test {
namespace {

// An element whose attributes have numbers as values: their positions.
struct Attributes {
  std::string keyword;
  std::vector<std::string> names;

  std::string Text() const {
    std::string text = keyword;
    for (std::size_t i = 0; i < names.size(); ++i) {
      text += " " + names[i] + ": m" + std::string(i % 3, 'x') + ": " + std::to_string(i);
    }
    return text + "\n";
  }
  // -1 when there is none.
  int PositionOf(const std::string& name) const {
    for (std::size_t i = 0; i < names.size(); ++i) {
      if (names[i] == name) return static_cast<int>(i);
    }
    return -1;
  }
};

enum class Names { Distinct, Backwards, Repeated, OneName, Indexed };

std::vector<std::string> MakeNames(Names kind, std::size_t count) {
  std::mt19937 random(static_cast<std::uint32_t>(count));
  std::vector<std::string> names;
  for (std::size_t i = 0; i < count; ++i) {
    std::size_t number = i;
    if (kind == Names::Backwards) number = count - i;
    if (kind == Names::Repeated) number = random() % (count / 3 + 1);
    if (kind == Names::OneName) number = 0;
    const std::string digits = std::to_string(number);
    names.push_back(kind == Names::Indexed ? "list[" + digits + "]" : "name_" + digits);
  }
  return names;
}

// Elements before and behind it share some of its names.
std::string WholeText(const Attributes& element) {
  return "FIRST name_5: 1 name_3: 2 list: 3 zero\n" + element.Text() + "LAST name_1: 1\n";
}

void ExpectAnswers(IxoMepParser& parser, const Attributes& element, const std::string& name) {
  const int position = element.PositionOf(name);
  const String asked(name);
  const bool is_there = position >= 0;
  EXPECT_EQ(parser.IsContained(asked), is_there) << name;
  EXPECT_EQ(parser.IsContained(1, asked), is_there) << name;
  std::int32_t value = -1;
  EXPECT_EQ(parser.TryGetIntValue(asked, value), is_there && !name.empty()) << name;
  EXPECT_EQ(value, name.empty() ? -1 : position) << name;
  String modifier("none");
  EXPECT_EQ(parser.GetModifier(asked, modifier), is_there) << name;
  const std::string expected =
      is_there ? "m" + std::string(static_cast<std::size_t>(position % 3), 'x') : "none";
  EXPECT_EQ(modifier, expected) << name;
}

void ExpectAllAnswers(IxoMepParser& parser, const Attributes& element) {
  ASSERT_TRUE(parser.SetCurElemIndex(1));
  for (const std::string& name : element.names) ExpectAnswers(parser, element, name);
  for (const char* absent : {"", "name_", "zero", "zzz", "name_99999", "list", "name_3x"}) {
    ExpectAnswers(parser, element, absent);
  }
  // The neighbours have not become many.
  EXPECT_EQ(parser.IsContained(0, "zero"), true);
  EXPECT_EQ(parser.IsContained(2, "zero"), false);
}

void ExpectFromObject(const IxoMepElement& object, const Attributes& element) {
  for (std::size_t i = element.names.size(); i-- > 0;) {
    const std::string& name = element.names[i];
    EXPECT_EQ(object.FindAttr(name), object.GetAttr(element.PositionOf(name))) << name;
  }
  EXPECT_EQ(object.FindAttr("absent"), nullptr);
  EXPECT_EQ(object.FindAttr(""), nullptr);
}

class AttributeNames : public testing::TestWithParam<Names> {};

TEST_P(AttributeNames, Find_the_first_of_the_name_among_any_number) {
  for (const std::size_t count :
       {0u, 1u, 2u, 3u, 4u, 5u, 6u, 7u, 8u, 9u, 31u, 32u, 33u, 34u, 64u, 65u, 66u, 500u}) {
    const Attributes element{"MANY", MakeNames(GetParam(), count)};
    for (const bool is_quick : {true, false}) {
      QuickReading::Use(is_quick);
      Definition definition(WholeText(element));
      ASSERT_EQ(definition.code, IMEPERR_NONE) << definition.parser.GetErrorText().c_str();
      ExpectAllAnswers(definition.parser, element);
      ExpectFromObject(definition.Element(1), element);
      ExpectAllAnswers(definition.parser, element);
    }
    QuickReading::Use(true);
  }
}

TEST_P(AttributeNames, Are_found_without_memory_too) {
  const Attributes element{"MANY", MakeNames(GetParam(), 100)};
  for (const bool is_quick : {true, false}) {
    QuickReading::Use(is_quick);
    Definition definition(WholeText(element));
    QuickReading::Use(true);
    std::vector<String> names(element.names.begin(), element.names.end());
    ASSERT_TRUE(definition.parser.SetCurElemIndex(1));
    const ScopedMemoryLimit limit(0);
    for (const String& name : names) {
      const int position = element.PositionOf(std::string(name.view()));
      EXPECT_EQ(definition.parser.GetIntValue(name), position);
      EXPECT_TRUE(definition.parser.IsContained(name));
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Kinds, AttributeNames,
                         testing::Values(Names::Distinct, Names::Backwards, Names::Repeated,
                                         Names::OneName, Names::Indexed));

TEST(AttributeNames, Of_two_large_elements_are_their_own) {
  const Attributes first{"FIRST", MakeNames(Names::Distinct, 100)};
  const Attributes second{"SECOND", MakeNames(Names::Backwards, 200)};
  Definition definition(first.Text() + second.Text());
  for (int round = 0; round < 2; ++round) {
    for (const auto& [index, element] : {std::pair{0, &first}, std::pair{1, &second}}) {
      ASSERT_TRUE(definition.parser.SetCurElemIndex(index));
      for (int i = 0; i <= 201; ++i) {
        const std::string name = "name_" + std::to_string(i);
        std::int32_t value = -1;
        definition.parser.TryGetIntValue(String(name), value);
        EXPECT_EQ(value, element->PositionOf(name));
      }
    }
  }
}

// A host may ask while the element is still being read.
class AskingParser : public IxoMepParser {
 public:
  using IxoMepParser::IxoMepParser;
  IxoMepExpressionParser* NewExprParser() override {
    const IxoMepElement* const element = GetElement(0);
    if (element != nullptr) {
      const std::int32_t last = element->GetAttrCount() - 1;
      EXPECT_EQ(element->FindAttr("name_0"), element->GetAttr(0));
      if (last >= 0) {
        EXPECT_EQ(element->FindAttr(element->GetAttr(last)->GetName()), element->GetAttr(last));
      }
      ++asked;
    }
    return IxoMepParser::NewExprParser();
  }
  int asked = 0;
};

TEST(AttributeNames, Are_found_while_attributes_are_added) {
  std::string text = "A";
  for (int i = 0; i < 150; ++i) text += " name_" + std::to_string(i) + ": (w)";
  AskingParser parser{String(text)};
  ASSERT_EQ(parser.Parse(), IMEPERR_NONE);
  EXPECT_EQ(parser.asked, 150);
  for (int i = 0; i < 150; ++i) {
    EXPECT_EQ(parser.GetElement(0)->FindAttr("name_" + std::to_string(i)),
              parser.GetElement(0)->GetAttr(i));
  }
}

}  // namespace
}  // namespace ixomep::test
