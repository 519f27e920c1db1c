// Every allocation of reading, asking and converting a definition text fails, one after the other.
// Parse gives its usual outcome or code 37 or 38 with the error noted, a query its usual answer or
// a neutral one, a conversion the document or nothing; afterwards the same text is read as usual.
#include <gtest/gtest.h>

#include <functional>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ixomep/expr/expression_parser.h"
#include "ixomep/host/color.h"
#include "ixomep/host/memory_budget.h"
#include "ixomep/parser/converter.h"
#include "ixomep/parser/protected_text.h"
#include "tests/faults/failing_new.h"
#include "tests/support/definitions.h"
#include "tests/support/eval.h"
#include "tests/support/test_host.h"

namespace ixomep::test {
namespace {

constexpr const char* kText =
    "# a comment\nNOTE \"own\" size: (w * 2) label: min: \"a \\\"quoted\\\" text\" flag\n"
    "x := 5;\n"
    "PART 12 at[1]: 1.5cm time: 12s list: {1, \"a\", {2}} map: {\"k\": 1, 2: 3} color: \"red\" {\n"
    "  loose: 1 INNER a: (1 + 2) b: $ff8800 { DEEP }\n"
    "}\n"
    "FILL red: 10 green: (5 * w) blue: 30 rows: { ROW 1 ROW 2 a: (f(1)) }\n";
constexpr const char* kIncluding =
    "A a: 1\n@INCLUDE \"b.mep\"\nC { @INCLUDE \"db:\\c.mep\" }\n@INCLUDE \"db:\\c.mep\"\nD\n";
constexpr const char* kFailing = "A a: 1\nB { C b: \"not closed\n}\n";

class DefinitionFaults : public testing::Test {
 protected:
  void SetUp() override {
    host_.files["b.mep"] = "B b: \"included\" { @INCLUDE \"db:\\c.mep\" }\n";
    host_.files["db:\\c.mep"] = "IN_REPOSITORY x: {1, 2}\n";
    for (const char* text : {kText, kIncluding, kFailing}) (void)ShapeOf(text);
    scope_.OldSetValue("w", IxoMepValue(21), true);
  }
  TestHost host_;
  IxoMepValueSet scope_;
};

bool IsMemoryCode(int code) { return code == IMEPERR_TOO_LONG || code == IMEPERR_TOO_DEEP; }

TEST_F(DefinitionFaults, Parse_ends_with_37_or_38_and_reads_all_of_it_afterwards) {
  int failures = 0;
  for (const char* source : {kText, kIncluding, kFailing}) {
    const String text(source);
    const String context("test");
    const std::string expected = ShapeOf(source);
    failures += SweepFailures([&](int n, FailMode mode) {
      IxoMepParser parser(text, context);
      parser.SetUseIncludeCache(n % 2 == 0);
      IxoMepErrorEnum code = IMEPERR_NONE;
      {
        const FailingNew failing(n, mode);
        code = parser.Parse();
      }
      const bool has_failed = FailingNew::HasFailed();
      EXPECT_EQ(parser.GetErrorCode(), code);
      const std::string shape = Shape(parser);
      const std::string shown =
          code == IMEPERR_NONE ? shape : "error " + std::to_string(code) + ": " + shape;
      EXPECT_TRUE(shown == expected || (has_failed && IsMemoryCode(code)))
          << shown << " when allocation " << n << " fails";
      if (code != IMEPERR_NONE && mode == FailMode::Once) {
        EXPECT_FALSE(parser.GetErrorText().IsEmpty()) << n;
      }
      parser.SetText(text);
      (void)parser.Parse();
      if (code == IMEPERR_NONE) {
        EXPECT_EQ(Shape(parser), shape) << n;
      }
      return has_failed && !HasFailure();
    });
    EXPECT_EQ(ShapeOf(source), expected);
  }
  std::cout << failures << " failed allocations\n";
  EXPECT_GT(failures, AtLeast(300));
}

// A question and what it leaves behind as text; its own texts are made with the memory back.
struct Question {
  const char* name;
  std::function<void(IxoMepParser& parser)> ask;
};

std::vector<Question> Questions() {
  static std::unique_ptr<IxoMepExpressionParser> expression;
  static std::unique_ptr<IxoMepValue> map;
  static const String size("size"), label("label"), list("list"), map_name("map"), color("color"),
      red("red"), green("green"), blue("blue"), at("at[1]"), time("time"),
      protected_text = ProtectText(kText);
  return {
      {"GetText", [](IxoMepParser& p) { (void)p.GetText(); }},
      {"GetCompleteText", [](IxoMepParser& p) { (void)p.GetCompleteText(); }},
      {"GetElemText", [](IxoMepParser& p) { (void)p.GetElemText(1); }},
      {"GetKeyword", [](IxoMepParser& p) { (void)p.GetKeyword(1); }},
      {"GetAttrNameOfPos", [](IxoMepParser& p) { (void)p.GetAttrNameOfPos(0); }},
      {"GetModifier", [](IxoMepParser& p) { (void)p.GetModifier(label); }},
      {"GetValueType", [](IxoMepParser& p) { (void)p.GetValueType(size); }},
      {"GetMapValue", [](IxoMepParser& p) { map = p.GetMapValue(map_name); }},
      {"GetStrValue", [](IxoMepParser& p) { (void)p.GetStrValue(size); }},
      {"GetStrValue of a list", [](IxoMepParser& p) { (void)p.GetStrValue(list); }},
      {"GetIntValue", [](IxoMepParser& p) { (void)p.GetIntValue(size); }},
      {"GetRealValue", [](IxoMepParser& p) { (void)p.GetRealValue(green); }},
      {"GetBoolValue", [](IxoMepParser& p) { (void)p.GetBoolValue(size, false); }},
      {"GetValueTMM", [](IxoMepParser& p) { (void)p.GetValueTMM(size); }},
      {"GetValueTPt", [](IxoMepParser& p) { (void)p.GetValueTPt(at); }},
      {"GetValueSec", [](IxoMepParser& p) { (void)p.GetValueSec(time); }},
      {"ExpectValueType",
       [](IxoMepParser& p) { (void)p.ExpectValueType(label, IxoMepValueType::Map, false); }},
      {"CreateExprParserCopy",
       [](IxoMepParser& p) { expression.reset(p.CreateExprParserCopy(size)); }},
      {"GetArrayLValueCopyOfPos",
       [](IxoMepParser& p) { expression.reset(p.GetArrayLValueCopyOfPos(0)); }},
      {"GetColor",
       [](IxoMepParser& p) {
         Color result;
         (void)p.GetColor(color, red, green, blue, result);
       }},
      {"CreateColorEP",
       [](IxoMepParser& p) { expression.reset(p.CreateColorEP(color, red, green, blue)); }},
      {"CreateColorEP of the usual names",
       [](IxoMepParser& p) { expression.reset(p.CreateColorEP()); }},
      {"GetColor of the usual names",
       [](IxoMepParser& p) {
         Color result;
         (void)p.GetColor(result);
       }},
      {"MakeErrorText",
       [](IxoMepParser& p) {
         String text;
         p.MakeErrorText(text);
       }},
      {"ShowErrorBox", [](IxoMepParser& p) { p.ShowErrorBox(); }},
      {"GetMepTextOfStrValue",
       [](IxoMepParser&) { (void)IxoMepParser::GetMepTextOfStrValue(label); }},
      {"GetMepTextOfNumValue",
       [](IxoMepParser&) { (void)IxoMepParser::GetMepTextOfNumValue(123456789.25, true); }},
      {"GetUITextOfTMMValue",
       [](IxoMepParser&) { (void)IxoMepParser::GetUITextOfTMMValue(12345); }},
      {"SetText", [](IxoMepParser& p) { p.SetText(protected_text); }},
  };
}

TEST_F(DefinitionFaults, Every_question_is_answered_with_or_without_memory) {
  for (const Question& question : Questions()) {
    int failures = 0;
    for (int element = 0; element < 4; ++element) {
      failures += SweepFailures([&](int n, FailMode mode) {
        host_.error_boxes.clear();
        IxoMepParser parser{String(kText), String("test")};
        EXPECT_EQ(parser.Parse(), IMEPERR_NONE);
        parser.SetVars(&scope_);
        (void)parser.SetCurElemIndex(element);
        EmptyFreeLists();
        {
          const FailingNew failing(n, mode);
          EXPECT_NO_THROW(question.ask(parser)) << question.name << ", allocation " << n;
        }
        const bool has_failed = FailingNew::HasFailed();
        parser.SetText(String(kText));
        EXPECT_EQ(parser.Parse(), IMEPERR_NONE) << question.name << ", allocation " << n;
        return has_failed && !HasFailure();
      });
    }
    std::cout << question.name << ": " << failures << "\n";
  }
}

TEST_F(DefinitionFaults, A_parser_that_cannot_be_made_says_so_when_it_parses) {
  const String text(kText);
  const String context("test");
  const std::string expected = ShapeOf(kText);
  std::optional<IxoMepParser> first, second;
  {
    const FailingNew failing(1, FailMode::FromThenOn);
    EXPECT_NO_THROW(first.emplace(text, context));
    EXPECT_NO_THROW(second.emplace(text, context));
  }
  for (IxoMepParser* const parser : {&*first, &*second}) {
    EXPECT_EQ(parser->Parse(), IMEPERR_TOO_DEEP);
    EXPECT_EQ(parser->GetErrorCode(), IMEPERR_TOO_DEEP);
    EXPECT_FALSE(parser->GetErrorText().IsEmpty());
    EXPECT_EQ(parser->GetElemCount(), 0);
    EXPECT_EQ(parser->GetElement(0), nullptr);
    parser->SetText(text);
    EXPECT_EQ(parser->Parse(), IMEPERR_NONE);
    EXPECT_EQ(Shape(*parser), expected);
  }
}

TEST_F(DefinitionFaults, Questions_to_bodies_are_answered_with_or_without_memory) {
  for (const Question& question : Questions()) {
    int failures = 0;
    for (const char* const source : {"OUTER { PART 12 }", kText}) {
      const String text("BODY { " + String(source) + " }");
      failures += SweepFailures([&](int n, FailMode mode) {
        host_.error_boxes.clear();
        IxoMepParser parser{text, String("test")};
        EXPECT_EQ(parser.Parse(), IMEPERR_NONE);
        IxoMepParser& body = *parser.GetBodyParser();
        body.SetVars(&scope_);
        (void)body.SetCurElemIndex(n % 3);
        EmptyFreeLists();
        {
          const FailingNew failing(n, mode);
          EXPECT_NO_THROW(question.ask(body)) << question.name << ", allocation " << n;
        }
        const bool has_failed = FailingNew::HasFailed();
        body.SetText(text);
        EXPECT_EQ(body.Parse(), IMEPERR_NONE) << question.name << ", allocation " << n;
        return has_failed && !HasFailure();
      });
    }
    std::cout << question.name << ": " << failures << "\n";
  }
}

TEST_F(DefinitionFaults, A_conversion_gives_the_document_or_nothing) {
  const String root("root");
  for (const char* source : {kText, kIncluding}) {
    IxoMepConverter converter{String(source)};
    (void)converter.Parse();
    const String complete = converter.ToXML(true, root);
    EXPECT_FALSE(complete.IsEmpty());
    const int failures = SweepFailures([&](int n, FailMode mode) {
      IxoMepConverter again{String(source)};
      (void)again.Parse();
      String xml;
      {
        const FailingNew failing(n, mode);
        EXPECT_NO_THROW(xml = again.ToXML(true, root)) << n;
      }
      EXPECT_TRUE(xml == complete || xml.IsEmpty()) << "allocation " << n << "\n" << xml.c_str();
      return FailingNew::HasFailed() && !HasFailure();
    });
    EXPECT_GT(failures, 4);
  }
}

TEST_F(DefinitionFaults, A_literal_is_read_or_fails_with_37_or_38) {
  int failures = 0;
  for (const char* source :
       {"\"a string that is long enough\"", "\"with \\\"escapes\\\" in it, many of them\"",
        "12.5cm", "$ff8800", "01:002:03:04:05", "{1, {\"k\": 2}, \"text\"}", "(1 + w)", "(1 / 0)",
        "{"}) {
    const String text(source);
    const std::string expected = LiteralOf(source);
    failures += SweepFailures([&](int n, FailMode mode) {
      std::int32_t position = 0;
      std::int32_t code = -1;
      String error_text;
      IxoMepValue* value = nullptr;
      {
        const FailingNew failing(n, mode);
        value = IxoMepValue::Create(text, position, code, error_text, nullptr, 1);
      }
      const ValuePtr owner(value);
      EXPECT_EQ(value == nullptr, code != 0) << source;
      if (value == nullptr && !IsMemoryCode(code)) {
        EXPECT_EQ("error " + std::to_string(code), expected);
      }
      return FailingNew::HasFailed() && !HasFailure();
    });
    EXPECT_EQ(LiteralOf(source), expected);
  }
  EXPECT_GT(failures, AtLeast(30));
}

}  // namespace
}  // namespace ixomep::test
