// Queries of one parser after the other, in any order, while elements become objects, bodies get
// other texts and parsers come and go at one address: what a parser answers from its records is
// what one answers that has been read plainly and only has objects.
#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "ixomep/expr/value_set.h"
#include "ixomep/parser/cursor.h"
#include "ixomep/parser/parser.h"
#include "ixomep/values/value.h"
#include "tests/parser/plain_reading.h"
#include "tests/support/definitions.h"
#include "tests/support/random_definitions.h"
#include "tests/support/test_host.h"

namespace ixomep::test {
namespace {

std::string Quoted(const String& text) { return '"' + std::string(text.view()) + "\" "; }

std::string TypeName(IxoMepValueType type) {
  return std::string(IxoMepValue::GetTypeName(type).view()) + ' ';
}

std::string AnswersAt(const IxoMepParser& parser, std::int32_t position) {
  const String name = parser.GetAttrNameOfPos(position);
  return Quoted(name) + Quoted(parser.GetModifierOfPos(position)) +
         TypeName(parser.GetValueTypeOfPos(position)) + ' ' + Quoted(parser.GetStrValue(name)) +
         TypeName(parser.GetValueType(name)) + ' ' + std::to_string(parser.GetIntValue(name)) +
         (parser.GetBodyParserOfPos(position) != nullptr ? " body " : " ") +
         (parser.IsContained(name) ? "in " : "out ") + Quoted(parser.GetModifier(name)) +
         (parser.GetBoolValue(name, false) ? "true" : "false") + '\n';
}

std::string AnswersOf(const IxoMepParser& parser) {
  std::string answers =
      std::to_string(parser.GetCurElemIndex()) + ' ' + std::to_string(parser.GetElemCount()) + ' ' +
      std::to_string(parser.GetAttrCount()) + ' ' + TypeName(parser.GetValueType()) + ' ' +
      Quoted(parser.GetStrValue()) + (parser.GetBodyParser() != nullptr ? "body" : "") + '\n';
  for (std::int32_t i = -1; i <= parser.GetAttrCount(); ++i) answers += AnswersAt(parser, i);
  return answers;
}

class FixedHost : public TestHost {
 public:
  std::int32_t RandomFifteenBits() override { return 5; }
};

// The same text read in both ways, and its bodies as far as they were asked for.
class Twins {
 public:
  explicit Twins(std::uint32_t seed) : texts_(seed), random_(seed) {
    vars_.OldSetValue("w", IxoMepValue(7), /*local=*/true);
    vars_.OldSetValue("x", IxoMepValue(3), /*local=*/true);
    Begin();
  }

  // One random step of a host; the answers of one pair are compared afterwards.
  void Step() {
    const std::size_t number = Below(pairs_.size());
    Pair& pair = pairs_[number];
    switch (Below(14)) {
      case 0:
        return Begin();
      case 1:
        return TakeText(number);
      case 2:
        if (pair.quick->GetElemCount() < 20) ReadAgain(pair);
        break;
      case 3:
        pair.quick->SetVars(pair.quick->GetVars() == nullptr ? &vars_ : nullptr);
        pair.plain->SetVars(pair.plain->GetVars() == nullptr ? &vars_ : nullptr);
        break;
      case 4:
        AskForObject(pair);
        break;
      case 5:
        ChangeValue(pair);
        break;
      case 6:
        EXPECT_EQ(pair.quick->ExpectValueType("a", IxoMepValueType::Time, false),
                  pair.plain->ExpectValueType("a", IxoMepValueType::Time, false));
        EXPECT_EQ(pair.quick->GetErrorText(), pair.plain->GetErrorText());
        EXPECT_EQ(pair.quick->GetErrorOffset(), pair.plain->GetErrorOffset());
        break;
      case 7:
      case 8:
        return Enter(number);
      default:
        GoTo(pair);
    }
    ExpectSame(pairs_[Below(pairs_.size())]);
  }
  void ExpectAllSame() const {
    for (const Pair& pair : pairs_) ExpectSame(pair);
  }
  std::int64_t Steps() const { return answers_; }

 private:
  struct Pair {
    IxoMepParser* quick;
    IxoMepParser* plain;
    std::size_t outer;  // number of the pair whose body it is
  };

  std::size_t Below(std::size_t limit) { return random_() % limit; }
  std::int32_t Index(const IxoMepParser& parser) {
    return static_cast<std::int32_t>(Below(static_cast<std::size_t>(parser.GetElemCount()) + 2)) -
           1;
  }

  // At the addresses of those before.
  void Begin() {
    pairs_.clear();
    const String text(texts_.Next());
    quick_.emplace(text);
    plain_.emplace(text);
    pairs_.push_back({&*quick_, &*plain_, 0});
    ReadAgain(pairs_.front());
  }
  static void ReadAgain(const Pair& pair) {
    const IxoMepErrorEnum code = pair.quick->Parse();
    const PlainReading plainly;
    EXPECT_EQ(pair.plain->Parse(), code);
  }
  void TakeText(std::size_t number) {
    for (std::size_t i = pairs_.size(); i-- > 1;) {
      if (IsInside(i, number)) pairs_.erase(pairs_.begin() + static_cast<std::ptrdiff_t>(i));
    }
    const String text(texts_.Next());
    pairs_[number].quick->SetText(text);
    ExpectSameAs(pairs_[number].quick, text);
    pairs_[number].plain->SetText(text);
    ExpectSame(pairs_[number]);
    ReadAgain(pairs_[number]);
  }
  // Nothing of the text before is left.
  static void ExpectSameAs(IxoMepParser* parser, const String& text) {
    EXPECT_EQ(AnswersOf(*parser), AnswersOf(IxoMepParser(text)));
  }
  // A body comes behind the one that it is in.
  bool IsInside(std::size_t number, std::size_t outer) const {
    while (number > outer) number = pairs_[number].outer;
    return number == outer;
  }
  void GoTo(const Pair& pair) {
    const std::int32_t index = Index(*pair.quick);
    EXPECT_EQ(pair.quick->SetCurElemIndex(index), pair.plain->SetCurElemIndex(index));
  }
  void AskForObject(const Pair& pair) {
    const std::int32_t index = Index(*pair.quick);
    const IxoMepElement* const element = pair.quick->GetElement(index);
    EXPECT_EQ(element != nullptr, pair.plain->GetElement(index) != nullptr);
  }
  void ChangeValue(const Pair& pair) {
    const auto position = static_cast<std::int32_t>(Below(4));
    IxoMepValue* const value = pair.quick->GetValueOfPos(position);
    IxoMepValue* const other = pair.plain->GetValueOfPos(position);
    ASSERT_EQ(value != nullptr, other != nullptr);
    if (value == nullptr) return;
    *value = IxoMepValue(9);
    *other = IxoMepValue(9);
  }
  void Enter(std::size_t number) {
    const Pair pair = pairs_[number];
    const auto position = static_cast<std::int32_t>(Below(5)) - 1;
    IxoMepParser* const body =
        position < 0 ? pair.quick->GetBodyParser() : pair.quick->GetBodyParserOfPos(position);
    IxoMepParser* const other =
        position < 0 ? pair.plain->GetBodyParser() : pair.plain->GetBodyParserOfPos(position);
    ASSERT_EQ(body != nullptr, other != nullptr);
    if (body == nullptr) return;
    for (const Pair& known : pairs_) {
      if (known.quick == body) return ExpectSame(known);
    }
    pairs_.push_back({body, other, number});
    ExpectSame(pairs_.back());
  }
  void ExpectSame(const Pair& pair) const {
    EXPECT_EQ(AnswersOf(*pair.quick), AnswersOf(*pair.plain)) << plain_->GetCompleteText().c_str();
    ++answers_;
  }

  RandomDefinitions texts_;
  std::mt19937 random_;
  IxoMepValueSet vars_;
  std::optional<IxoMepParser> quick_;
  std::optional<IxoMepParser> plain_;
  std::vector<Pair> pairs_;
  mutable std::int64_t answers_ = 0;
};

TEST(Cursor, Never_shows_in_what_queries_answer) {
  const FixedHost host;
  const std::uint32_t seed = RandomSeed(300);
  for (std::uint32_t round = 0; round < 300; ++round) {
    Twins twins(seed + round);
    for (int step = 0; step < 100 && !HasFailure(); ++step) twins.Step();
    twins.ExpectAllSame();
    ASSERT_FALSE(HasFailure()) << "round " << round;
    ASSERT_GT(twins.Steps(), 50);
  }
}

TEST(Cursor, Is_at_the_parser_that_was_asked_last_while_its_element_is_a_record) {
  Definition definition("A a: 1 { B b: 2 }\nC c: 3");
  IxoMepParser& outer = definition.parser;
  ASSERT_TRUE(outer.SetCurElemIndex(0));
  EXPECT_TRUE(last_asked.IsAt(&outer));
  IxoMepParser& body = *outer.GetBodyParser();
  EXPECT_EQ(body.GetAttrNameOfPos(0), "b");
  EXPECT_TRUE(last_asked.IsAt(&body));
  EXPECT_EQ(outer.GetAttrNameOfPos(0), "a");
  EXPECT_TRUE(last_asked.IsAt(&outer));
  ASSERT_NE(outer.GetElement(0), nullptr);
  EXPECT_FALSE(last_asked.IsAt(&outer));
  EXPECT_EQ(outer.GetAttrNameOfPos(0), "a");
  EXPECT_FALSE(last_asked.IsAt(&outer));
  ASSERT_TRUE(outer.SetCurElemIndex(1));
  EXPECT_TRUE(last_asked.IsAt(&outer));
  ASSERT_TRUE(outer.SetCurElemIndex(0));
  EXPECT_FALSE(last_asked.IsAt(&outer));
}

TEST(Cursor, Is_nowhere_after_the_end_of_its_parser) {
  {
    const Definition definition("A { B }");
    IxoMepParser* const body = definition.parser.GetBodyParser();
    ASSERT_TRUE(body->SetCurElemIndex(0));
    EXPECT_TRUE(last_asked.IsAt(body));
  }
  EXPECT_TRUE(last_asked.IsAt(nullptr));
}

TEST(Cursor, Leaves_a_body_that_gets_another_text_without_memory_to_remember_it) {
  const TestHost host;
  const Definition definition("A { B b: 1 }");
  IxoMepParser& body = *definition.parser.GetBodyParser();
  const String text("OTHER");
  ASSERT_TRUE(body.SetCurElemIndex(0));
  const ScopedMemoryLimit limit(0);
  body.SetText(text);
  EXPECT_FALSE(last_asked.IsAt(&body));
  EXPECT_EQ(body.GetAttrCount(), 0);
  EXPECT_FALSE(body.SetCurElemIndex(0));
}

TEST(Cursor, Asks_an_element_for_a_name_that_another_one_has_told) {
  Definition definition("A a: \"1\"\nB b: \"2\" c: \"3\" a: \"4\" d e f g");
  IxoMepParser& parser = definition.parser;
  for (std::int32_t teller = 0; teller < 2; ++teller) {
    for (std::int32_t position = 0; position < 7; ++position) {
      ASSERT_TRUE(parser.SetCurElemIndex(teller));
      const String name = parser.GetAttrNameOfPos(position);
      ASSERT_TRUE(parser.SetCurElemIndex(0));
      EXPECT_EQ(parser.GetStrValue(name), name == "a" ? "1" : "") << name.c_str();
      ASSERT_TRUE(parser.SetCurElemIndex(1));
      const char* const of_second = name == "a" ? "4" : name == "b" ? "2" : name == "c" ? "3" : "";
      EXPECT_EQ(parser.GetStrValue(name), of_second) << name.c_str();
    }
  }
}

TEST(Cursor, Knows_attributes_without_an_element_to_have_no_place) {
  const Definition definition("A { b: 1 }");
  IxoMepParser& body = *definition.parser.GetBodyParser();
  EXPECT_EQ(body.GetAttrNameOfPos(0), "b");
  EXPECT_TRUE(last_asked.IsAt(&body));
  EXPECT_EQ(body.ExpectValueType("b", IxoMepValueType::String, false), IMEPERR_UNEXPECTED_TYPE);
  EXPECT_EQ(body.GetErrorOffset(), -1);
}

TEST(Cursor, Stays_in_a_body_that_gets_an_error_of_its_own) {
  const Definition definition("A { B b: 1\nC c: 2 d }");
  IxoMepParser& body = *definition.parser.GetBodyParser();
  ASSERT_TRUE(body.SetCurElemIndex(0));
  EXPECT_EQ(body.ExpectValueType("b", IxoMepValueType::String, false), IMEPERR_UNEXPECTED_TYPE);
  EXPECT_EQ(body.GetAttrNameOfPos(0), "b");
  ASSERT_TRUE(body.SetCurElemIndex(1));
  EXPECT_EQ(body.GetCurElemIndex(), 1);
  EXPECT_EQ(body.GetAttrCount(), 2);
  EXPECT_EQ(body.GetCurElement()->GetKeyword(), "C");
}

// An element asked for as an object and changed is what all queries see.
TEST(Cursor, Leaves_an_element_that_becomes_an_object_while_it_is_current) {
  Definition definition("A \"old\" a: \"old\" b: 1");
  IxoMepParser& parser = definition.parser;
  EXPECT_EQ(parser.GetStrValue(), "old");
  EXPECT_EQ(parser.GetStrValue("a"), "old");
  *parser.GetValue() = IxoMepValue("new");
  *parser.GetValue("a") = IxoMepValue(5);
  EXPECT_EQ(parser.GetStrValue(), "new");
  EXPECT_EQ(parser.GetValueTypeOfPos(0), IxoMepValueType::Integer);
  EXPECT_EQ(parser.GetStrValue("a"), "5");
  parser.GetCurElement()->GetAttr(1)->SetModifier("fresh");
  EXPECT_EQ(parser.GetModifierOfPos(1), "fresh");
}

}  // namespace
}  // namespace ixomep::test
