// The parsers of bodies: they are numbers in their document until they are asked for what takes
// more, and nobody can tell. What they take of memory when all of them have been asked for.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "ixomep/expr/value_set.h"
#include "ixomep/host/memory_budget.h"
#include "ixomep/parser/converter.h"
#include "ixomep/parser/element_view.h"
#include "tests/support/definitions.h"
#include "tests/support/test_host.h"

namespace ixomep::test {
namespace {

constexpr const char* kText =
    "OUTER a: { ROW 1 ROW 2 b: (w * 2) label: \"x\" ROW 3 } c: 5\n"
    "{ loose: 7 INNER \"in\" { DEEP } INNER size: (w) }\nNEXT { }\n";

IxoMepParser& BodyOf(const IxoMepParser& parser) { return *parser.GetBodyParser(0); }
IxoMepParser& RowsOf(const IxoMepParser& parser) { return *parser.GetBodyParser("a"); }

TEST(BodyParsers, Are_one_each_however_they_are_asked_for) {
  const Definition definition(kText);
  const IxoMepParser& parser = definition.parser;
  EXPECT_EQ(&BodyOf(parser), parser.GetBodyParser());
  EXPECT_EQ(&BodyOf(parser), definition.Element(0).GetBodyParser());
  EXPECT_EQ(&RowsOf(parser), parser.GetBodyParserOfPos(0));
  EXPECT_EQ(&RowsOf(parser), definition.Element(0).GetAttr(0)->GetBodyParser());
  EXPECT_NE(&RowsOf(parser), &BodyOf(parser));
  EXPECT_EQ(parser.GetBodyParser(1)->GetElemCount(), 0);
  EXPECT_EQ(parser.GetBodyParser(2), nullptr);
}

TEST(BodyParsers, Tell_their_stretch_and_its_source) {
  const Definition definition(kText, "source");
  IxoMepParser& rows = RowsOf(definition.parser);
  EXPECT_EQ(rows.GetText(), " ROW 1 ROW 2 b: (w * 2) label: \"x\" ROW 3 ");
  EXPECT_EQ(rows.GetTextLen(), rows.GetText().Len());
  EXPECT_EQ(rows.GetCompleteText(), kText);
  EXPECT_EQ(rows.GetContext(), "source");
  EXPECT_EQ(rows.GetErrorContext(), "source");
  EXPECT_EQ(rows.GetErrorCode(), IMEPERR_NONE);
  EXPECT_EQ(rows.GetErrorOffset(), -1);
  EXPECT_EQ(rows.GetErrorLine() + rows.GetErrorColumn(), 0);
  EXPECT_EQ(rows.GetErrorText(), "");
  EXPECT_EQ(rows.GetElemText(2), "ROW 3 ");
  EXPECT_EQ(rows.GetVars(), nullptr);
  String text;
  rows.MakeErrorText(text);
  EXPECT_NE(text.Search("source"), String::kNotFound);
}

TEST(BodyParsers, Have_a_current_element_of_their_own) {
  const Definition definition(kText);
  IxoMepParser& rows = RowsOf(definition.parser);
  EXPECT_EQ(rows.GetCurElemIndex(), 0);
  EXPECT_FALSE(rows.SetCurElemIndex(3));
  EXPECT_FALSE(rows.SetCurElemIndex(-1));
  EXPECT_TRUE(rows.SetCurElemIndex(2));
  EXPECT_EQ(rows.GetIntValue(), 3);
  EXPECT_EQ(BodyOf(definition.parser).GetCurElemIndex(), 0);
  EXPECT_EQ(definition.parser.GetCurElemIndex(), 0);
  IxoMepParser& empty = *definition.parser.GetBodyParser(1);
  EXPECT_EQ(empty.GetCurElemIndex(), -1);
  EXPECT_FALSE(empty.SetCurElemIndex(0));
  EXPECT_EQ(empty.GetCurElement()->GetStartOffset(), -1);
  EXPECT_EQ(empty.GetAttrCount(), 0);
}

TEST(BodyParsers, With_attributes_alone_have_them_current) {
  const Definition definition("A { b: 1 c: \"two\" }");
  IxoMepParser& body = BodyOf(definition.parser);
  EXPECT_EQ(body.GetCurElemIndex(), -1);
  EXPECT_EQ(body.GetElemCount(), 0);
  EXPECT_EQ(body.GetIntValue("b"), 1);
  EXPECT_EQ(body.GetLooseAttributes()->GetAttrCount(), 2);
  EXPECT_EQ(body.GetCurElement(), body.GetLooseAttributes());
  EXPECT_EQ(body.GetStrValue("c"), "two");
}

TEST(BodyParsers, Keep_their_variables_apart) {
  IxoMepValueSet six, ten;
  six.OldSetValue("w", IxoMepValue(6), true);
  ten.OldSetValue("w", IxoMepValue(10), true);
  const Definition definition(kText);
  IxoMepParser& rows = RowsOf(definition.parser);
  IxoMepParser& body = BodyOf(definition.parser);
  rows.SetVars(nullptr);
  rows.SetVars(&six);
  body.SetVars(&ten);
  EXPECT_EQ(rows.GetVars(), &six);
  EXPECT_EQ(body.GetVars(), &ten);
  EXPECT_EQ(definition.parser.GetVars(), nullptr);
  ASSERT_TRUE(rows.SetCurElemIndex(1) && body.SetCurElemIndex(1));
  EXPECT_EQ(rows.GetIntValue("b"), 12);
  EXPECT_EQ(body.GetIntValue("size"), 10);
  rows.SetVars(nullptr);
  EXPECT_EQ(rows.GetVars(), nullptr);
}

TEST(BodyParsers, Keep_everything_when_they_get_an_error) {
  const TestHost host;
  IxoMepValueSet vars;
  vars.OldSetValue("w", IxoMepValue(6), true);
  const Definition definition(kText, "source");
  IxoMepParser& rows = RowsOf(definition.parser);
  rows.SetVars(&vars);
  ASSERT_TRUE(rows.SetCurElemIndex(1));
  const IxoMepElement* const current = rows.GetCurElement();
  const IxoMepElement* const first = rows.GetElement(0);
  EXPECT_EQ(rows.ExpectValueType("label", IxoMepValueType::Measure, false),
            IMEPERR_UNEXPECTED_TYPE);
  EXPECT_EQ(rows.GetErrorCode(), IMEPERR_UNEXPECTED_TYPE);
  EXPECT_EQ(rows.GetErrorOffset(), current->GetStartOffset());
  EXPECT_EQ(rows.GetErrorContext(), "source");
  EXPECT_FALSE(rows.GetErrorText().IsEmpty());
  EXPECT_EQ(rows.GetCurElement(), current);
  EXPECT_EQ(rows.GetElement(0), first);
  EXPECT_EQ(rows.GetVars(), &vars);
  EXPECT_EQ(rows.GetIntValue("b"), 12);
  EXPECT_EQ(rows.GetText(), " ROW 1 ROW 2 b: (w * 2) label: \"x\" ROW 3 ");
  EXPECT_EQ(&RowsOf(definition.parser), &rows);
  EXPECT_EQ(BodyOf(definition.parser).GetErrorCode(), IMEPERR_NONE);
  ASSERT_TRUE(rows.SetCurElemIndex(2));
  EXPECT_EQ(rows.GetIntValue(), 3);
  EXPECT_EQ(definition.parser.GetErrorCode(), IMEPERR_NONE);
}

TEST(BodyParsers, Keep_the_text_of_an_evaluation_that_failed) {
  const TestHost host;
  IxoMepValueSet none;
  const Definition definition(kText);
  IxoMepParser& rows = RowsOf(definition.parser);
  rows.SetVars(&none);
  ASSERT_TRUE(rows.SetCurElemIndex(1));
  EXPECT_EQ(rows.GetIntValue("b"), 0);
  EXPECT_NE(rows.GetErrorText().Search('w'), String::kNotFound);
  EXPECT_EQ(rows.GetCurElemIndex(), 1);
}

TEST(BodyParsers, Take_another_text_while_the_others_stay) {
  const Definition definition(kText);
  IxoMepParser& rows = RowsOf(definition.parser);
  IxoMepParser& body = BodyOf(definition.parser);
  ASSERT_NE(rows.GetElement(1), nullptr);
  EXPECT_EQ(body.GetBodyParser(0)->GetKeyword(0), "DEEP");
  rows.SetText("OTHER { THIS }");
  EXPECT_EQ(rows.GetElemCount(), 0);
  EXPECT_EQ(rows.GetCompleteText(), "OTHER { THIS }");
  ASSERT_EQ(rows.Parse(), IMEPERR_NONE);
  EXPECT_EQ(Shape(rows), "OTHER {THIS}");
  body.SetText("");
  EXPECT_EQ(body.Parse(), IMEPERR_NONE);
  EXPECT_EQ(Shape(definition.parser), "OUTER a{OTHER {THIS}} c=5 {}; NEXT {}");
}

TEST(BodyParsers, Read_again_what_they_have_read) {
  const Definition definition(kText);
  IxoMepParser& rows = RowsOf(definition.parser);
  const IxoMepElement* const first = rows.GetElement(0);
  ASSERT_TRUE(rows.SetCurElemIndex(2));
  ASSERT_EQ(rows.Parse(), IMEPERR_NONE);
  const std::string once = "ROW=1; ROW=2 b=((w)*(2)) label=\"x\"; ROW=3";
  EXPECT_EQ(Shape(rows), once + "; " + once);
  EXPECT_EQ(rows.GetElement(0), first);
  EXPECT_EQ(rows.GetCurElement(), first);
  ASSERT_EQ(BodyOf(definition.parser).Parse(), IMEPERR_NONE);
  EXPECT_EQ(BodyOf(definition.parser).GetElemCount(), 4);
  EXPECT_EQ(BodyOf(definition.parser).GetLooseAttributes()->GetAttrCount(), 1);
}

TEST(BodyParsers, Use_the_include_cache_when_told_so) {
  TestHost host;
  host.files["db:\\part"] = "PART";
  const Definition definition("A { B } A { B }");
  for (std::int32_t i = 0; i < 2; ++i) {
    IxoMepParser& body = *definition.parser.GetBodyParser(i);
    body.SetUseIncludeCache(false);
    body.SetUseIncludeCache(true);
    EXPECT_EQ(body.GetElemCount(), 1);
    body.SetText("@INCLUDE \"db:\\\\part\"");
    EXPECT_EQ(body.Parse(), IMEPERR_NONE);
    EXPECT_EQ(body.GetKeyword(0), "PART");
    host.files.clear();
  }
}

// --- Without memory -----------------------------------------------------------------------------

TEST(BodyParsers, Without_memory_for_them_go_on_without_variables) {
  IxoMepValueSet vars;
  const Definition definition("A { B b: (w) }");
  IxoMepParser& body = BodyOf(definition.parser);
  {
    const ScopedMemoryLimit limit(0);
    body.SetVars(&vars);
    EXPECT_EQ(body.GetVars(), nullptr);
  }
  body.SetVars(&vars);
  EXPECT_EQ(body.GetVars(), &vars);
}

TEST(BodyParsers, Without_memory_for_an_error_give_38) {
  const TestHost host;
  const Definition definition("A { B b: 1 }");
  IxoMepParser& body = BodyOf(definition.parser);
  {
    const ScopedMemoryLimit limit(0);
    EXPECT_EQ(body.ExpectValueType("b", IxoMepValueType::String, false), IMEPERR_TOO_DEEP);
    EXPECT_EQ(body.Parse(), IMEPERR_TOO_DEEP);
  }
  EXPECT_EQ(body.GetIntValue("b"), 1);
  EXPECT_EQ(body.ExpectValueType("b", IxoMepValueType::String, false), IMEPERR_UNEXPECTED_TYPE);
}

TEST(BodyParsers, Without_memory_for_another_text_have_none_until_they_get_one) {
  const TestHost host;
  const Definition definition("A { B b: 1 } C { D }");
  IxoMepParser& body = BodyOf(definition.parser);
  ASSERT_NE(body.GetElement(0), nullptr);
  const String text("OTHER");
  {
    const ScopedMemoryLimit limit(0);
    body.SetText(text);
    EXPECT_EQ(body.GetElemCount(), 0);
    EXPECT_EQ(body.Parse(), IMEPERR_TOO_DEEP);
  }
  body.SetText(text);
  EXPECT_EQ(body.Parse(), IMEPERR_NONE);
  EXPECT_EQ(Shape(definition.parser), "A {OTHER}; C {D}");
}

// --- Memory -------------------------------------------------------------------------------------

// Asks for every body and for keywords, attribute names and values, as a host does.
void WalkAll(IxoMepParser& outermost) {
  std::vector<IxoMepParser*> waiting = {&outermost};
  while (!waiting.empty()) {
    IxoMepParser& parser = *waiting.back();
    waiting.pop_back();
    for (std::int32_t i = 0; parser.SetCurElemIndex(i); ++i) {
      EXPECT_FALSE(parser.GetKeyword(i).IsEmpty());
      (void)parser.GetStrValue();
      for (std::int32_t k = 0; k < parser.GetAttrCount(); ++k) {
        (void)parser.GetIntValue(parser.GetAttrNameOfPos(k));
        if (IxoMepParser* const body = parser.GetBodyParserOfPos(k)) waiting.push_back(body);
      }
      if (IxoMepParser* const body = parser.GetBodyParser()) waiting.push_back(body);
    }
  }
}

struct MemoryShape {
  const char* name;
  std::string text;
  double most;  // bytes for a byte of text, beside it
};

std::string Nested(const char* open, const char* close, std::size_t depth) {
  return Repeated(Repeated(open, depth) + Repeated(close, depth), 100000 / depth);
}

TEST(BodyParsers, Take_little_memory_when_all_have_been_asked_for) {
  const MemoryShape shapes[] = {
      {"flat", Repeated("STATION \"number 12\" width: 12.5cm title: de: \"Platz\" on\n", 5000),
       1.5},
      {"mixed", Repeated("STATION \"a station\" width: 12.5cm { SLOT \"left\" size: 3cm }\n", 5000),
       3},
      {"items on lines, depth 10", Nested("ITEM 1 {\n", "}\n", 10), 6},
      {"items on lines, depth 1000", Nested("ITEM 1 {\n", "}\n", 1000), 6},
      {"items on lines, depth 10000", Nested("ITEM 1 {\n", "}\n", 10000), 6},
      {"items with an attribute", Nested("ITEM a: 1 {\n", "}\n", 1000), 6},
      {"items of ten bytes", Nested("ITEMS {\n", "}\n", 1000), 6},
      {"items side by side", Repeated("ITEM { PART {} }\n", 20000), 7},
      {"rows of attributes", Repeated("ITEM rows: { ROW 1 ROW 2 }\n", 20000), 6},
      {"the shortest bodies", Nested("A {", "}", 1000), 15},
  };
  for (const MemoryShape& shape : shapes) {
    const String text(shape.text);
    const std::size_t before = MemoryBudget::InUse();
    IxoMepParser parser(text);
    ASSERT_EQ(parser.Parse(), IMEPERR_NONE) << shape.name;
    WalkAll(parser);
    const auto taken = static_cast<double>(MemoryBudget::InUse() - before);
    EXPECT_LE(taken / text.Len(), shape.most) << shape.name;
  }
}

TEST(BodyParsers, Give_back_all_memory) {
  const String text(Nested("ITEM b: (w) {\n", "}\n", 100));
  std::size_t before = 0;
  // What goes back to the free lists once is there for the next time.
  for (int round = 0; round < 2; ++round) {
    before = MemoryBudget::InUse();
    IxoMepValueSet vars;
    IxoMepParser parser(text);
    ASSERT_EQ(parser.Parse(), IMEPERR_NONE);
    WalkAll(parser);
    IxoMepParser* body = &parser;
    for (int depth = 0; depth < 50; ++depth) {
      body = body->GetBodyParser(0);
      body->SetVars(&vars);
      (void)body->ExpectValueType("b", IxoMepValueType::Map, false);
    }
    body->SetText("A");
  }
  EXPECT_EQ(MemoryBudget::InUse(), before);
}

}  // namespace
}  // namespace ixomep::test
