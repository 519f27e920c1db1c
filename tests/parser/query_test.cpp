// Walking the elements of a parsed text: indices, names, stored values, bodies, copies.
#include <gtest/gtest.h>

#include <string>

#include "tests/parser/queries.h"

namespace ixomep::test {
namespace {

constexpr std::int32_t kOutside[] = {-2147483647 - 1, -1, 3, 4, 2147483647};
constexpr const char* kThree = "FIRST 5 a: 1\nSECOND b: mod: 2 c\nTHIRD";

TEST(Elements, Count_is_the_number_of_elements) {
  EXPECT_EQ(ReadText(kThree)->GetElemCount(), 3);
  EXPECT_EQ(ReadText("")->GetElemCount(), 0);
}

TEST(Elements, After_parsing_the_first_one_is_current) {
  const auto parser = ReadText(kThree);
  EXPECT_EQ(parser->GetCurElemIndex(), 0);
  EXPECT_EQ(parser->GetCurElement()->GetKeyword(), "FIRST");
}

TEST(Elements, Without_elements_none_is_current) {
  EXPECT_EQ(ReadText("")->GetCurElemIndex(), -1);
  EXPECT_EQ(IxoMepParser(kThree, "unparsed").GetCurElemIndex(), -1);
}

TEST(Elements, Set_current_makes_an_element_current) {
  const auto parser = ReadText(kThree);
  EXPECT_TRUE(parser->SetCurElemIndex(2));
  EXPECT_EQ(parser->GetCurElemIndex(), 2);
  EXPECT_EQ(parser->GetCurElement(), parser->GetElement(2));
}

TEST(Elements, Set_current_beyond_the_count_changes_nothing) {
  const auto parser = ReadText(kThree);
  ASSERT_TRUE(parser->SetCurElemIndex(1));
  for (const std::int32_t index : kOutside) {
    EXPECT_FALSE(parser->SetCurElemIndex(index)) << index;
    EXPECT_EQ(parser->GetCurElemIndex(), 1);
    EXPECT_EQ(parser->GetAttrCount(), 2);
  }
}

TEST(Elements, Keyword_of_an_index) {
  const auto parser = ReadText(kThree);
  EXPECT_EQ(parser->GetKeyword(0), "FIRST");
  EXPECT_EQ(parser->GetKeyword(1), "SECOND");
  EXPECT_EQ(parser->GetKeyword(2), "THIRD");
}

TEST(Elements, Keyword_of_a_statement_is_a_semicolon) {
  EXPECT_EQ(ReadText("x := 1;")->GetKeyword(0), ";");
}

TEST(Elements, Every_query_with_an_index_out_of_range_gives_its_neutral_result) {
  const auto parser = ReadText(kThree);
  for (const std::int32_t index : kOutside) {
    EXPECT_EQ(parser->GetElement(index), nullptr);
    EXPECT_EQ(parser->GetKeyword(index), "");
    EXPECT_EQ(parser->GetElemText(index), "");
    EXPECT_EQ(parser->GetAttrCount(index), 0);
    EXPECT_EQ(parser->GetAttrNameOfPos(index, 0), "");
    EXPECT_EQ(parser->GetModifierOfPos(index, 0), "");
    EXPECT_FALSE(parser->IsContained(index, "a"));
    EXPECT_EQ(parser->GetBodyParser(index), nullptr);
  }
}

TEST(ElementText, Reaches_to_the_start_of_the_next_element) {
  const auto parser = ReadText(kThree);
  EXPECT_EQ(parser->GetElemText(0), "FIRST 5 a: 1\n");
  EXPECT_EQ(parser->GetElemText(1), "SECOND b: mod: 2 c\n");
}

TEST(ElementText, Of_the_last_element_reaches_to_the_end_of_the_text) {
  EXPECT_EQ(ReadText("A 1\n B x: 2  # end\n")->GetElemText(1), "B x: 2  # end\n");
}

TEST(ElementText, Of_the_last_element_of_a_stretch_ends_with_the_stretch) {
  const String text = "before A x: 1 after";
  IxoMepParser parser(text, 7, 7, 0, "test");
  ASSERT_EQ(parser.Parse(), IMEPERR_NONE);
  EXPECT_EQ(parser.GetElemText(0), "A x: 1 ");
}

TEST(ElementText, In_a_body_ends_before_the_closing_brace) {
  const auto parser = ReadText("A { B 1 C 2 } D");
  EXPECT_EQ(parser->GetBodyParser()->GetElemText(0), "B 1 ");
  EXPECT_EQ(parser->GetBodyParser()->GetElemText(1), "C 2 ");
  EXPECT_EQ(parser->GetElemText(0), "A { B 1 C 2 } ");
}

TEST(ElementText, Includes_what_was_included) {
  TestHost host;
  host.files["b.txt"] = "IN 1 x: 2 ";
  const auto parser = ReadText("A a: 1\n@INCLUDE \"b.txt\"\nLAST z");
  ASSERT_EQ(parser->GetElemCount(), 3);
  EXPECT_EQ(parser->GetElemText(0), "A a: 1\n");
  EXPECT_EQ(parser->GetElemText(1), "IN 1 x: 2 \n");
  EXPECT_EQ(parser->GetElemText(2), "LAST z");
}

TEST(ElementText, Of_elements_read_twice_is_the_same_both_times) {
  const auto parser = ReadText("A 1 B 2 ");
  ASSERT_EQ(parser->Parse(), IMEPERR_NONE);
  ASSERT_EQ(parser->GetElemCount(), 4);
  for (const std::int32_t again : {0, 2}) {
    EXPECT_EQ(parser->GetElemText(again), "A 1 ");
    EXPECT_EQ(parser->GetElemText(again + 1), "B 2 ");
  }
}

TEST(Attributes, Count_for_the_current_element_and_for_an_index) {
  const auto parser = ReadText(kThree);
  EXPECT_EQ(parser->GetAttrCount(), 1);
  EXPECT_EQ(parser->GetAttrCount(1), 2);
  EXPECT_EQ(parser->GetAttrCount(2), 0);
}

TEST(Attributes, Name_and_modifier_at_a_position) {
  const auto parser = ReadText(kThree);
  EXPECT_EQ(parser->GetAttrNameOfPos(0), "a");
  EXPECT_EQ(parser->GetModifierOfPos(0), "");
  EXPECT_EQ(parser->GetAttrNameOfPos(1, 0), "b");
  EXPECT_EQ(parser->GetAttrNameOfPos(1, 1), "c");
  EXPECT_EQ(parser->GetModifierOfPos(1, 0), "mod");
  EXPECT_EQ(parser->GetModifierOfPos(1, 1), "");
}

TEST(Attributes, Positions_out_of_range_give_the_neutral_results) {
  const auto parser = ReadText("A x: 1 y: 2 z: 3");
  for (const std::int32_t position : kOutside) {
    EXPECT_EQ(parser->GetAttrNameOfPos(position), "");
    EXPECT_EQ(parser->GetAttrNameOfPos(0, position), "");
    EXPECT_EQ(parser->GetModifierOfPos(position), "");
    EXPECT_EQ(parser->GetModifierOfPos(0, position), "");
    EXPECT_EQ(parser->GetValueOfPos(position), nullptr);
    EXPECT_EQ(parser->GetValueTypeOfPos(position), IxoMepValueType::Undefined);
    EXPECT_EQ(parser->GetBodyParserOfPos(position), nullptr);
    EXPECT_EQ(parser->CreateExprParserCopyOfPos(position), nullptr);
    EXPECT_EQ(parser->GetArrayLValueCopyOfPos(position), nullptr);
  }
}

TEST(Attributes, Contained_are_those_with_and_without_a_value) {
  const auto parser = ReadText(kThree);
  EXPECT_TRUE(parser->IsContained("a"));
  EXPECT_FALSE(parser->IsContained("b"));
  EXPECT_TRUE(parser->IsContained(1, "b"));
  EXPECT_TRUE(parser->IsContained(1, "c"));
  EXPECT_FALSE(parser->IsContained(1, "a"));
  EXPECT_FALSE(parser->IsContained(""));
}

TEST(Attributes, A_name_is_found_byte_for_byte) {
  const auto parser = ReadText("A name: 1 name_b: 2 \xE4: 3");
  for (const char* name : {"Name", "nam", "name_", "names", " name", "NAME", "\xC4"}) {
    EXPECT_FALSE(parser->IsContained(name)) << name;
    EXPECT_EQ(parser->GetValue(name), nullptr) << name;
  }
  EXPECT_TRUE(parser->IsContained("\xE4"));
  EXPECT_FALSE(parser->IsContained(String("name\0", 5)));
}

TEST(Attributes, Of_two_with_one_name_the_first_is_found_by_name) {
  const auto parser = ReadText("A x: one: 1 x: two: 2");
  EXPECT_EQ(parser->GetIntValue("x"), 1);
  EXPECT_EQ(parser->GetModifier("x"), "one");
  EXPECT_EQ(parser->GetValueOfPos(1)->GetInt(), 2);
  EXPECT_EQ(parser->GetModifierOfPos(1), "two");
}

TEST(Attributes, Modifier_of_a_name) {
  const auto parser = ReadText("A x: mod: 1 y: 2 z: only");
  EXPECT_EQ(parser->GetModifier("x"), "mod");
  EXPECT_EQ(parser->GetModifier("y"), "");
  EXPECT_EQ(parser->GetModifier("z"), "only");
  EXPECT_EQ(parser->GetModifier("missing"), "");
}

TEST(Attributes, Modifier_with_an_out_text_tells_whether_the_attribute_is_there) {
  const auto parser = ReadText("A x: mod: 1 y: 2");
  String modifier = "before";
  EXPECT_FALSE(parser->GetModifier("missing", modifier));
  EXPECT_EQ(modifier, "before");
  EXPECT_TRUE(parser->GetModifier("x", modifier));
  EXPECT_EQ(modifier, "mod");
  EXPECT_TRUE(parser->GetModifier("y", modifier));
  EXPECT_EQ(modifier, "");
}

TEST(StoredValues, Own_value_value_by_name_and_by_position) {
  const auto parser = ReadText("A 5 x: \"text\" y: 2.5 z");
  EXPECT_EQ(parser->GetValue()->GetInt(), 5);
  EXPECT_EQ(parser->GetValue("x")->GetStr(), "text");
  EXPECT_EQ(parser->GetValueOfPos(1)->GetReal(), 2.5);
  EXPECT_EQ(parser->GetValueOfPos(2), nullptr);
  EXPECT_EQ(parser->GetValue("z"), nullptr);
  EXPECT_EQ(parser->GetValue("missing"), nullptr);
  EXPECT_EQ(ReadText("A")->GetValue(), nullptr);
}

TEST(StoredValues, Are_not_evaluated) {
  IxoMepValueSet scope;
  SetVariable(scope, "w", 5);
  const auto parser = ReadText("A (w) x: (w)");
  parser->SetVars(&scope);
  EXPECT_EQ(parser->GetVars(), &scope);
  EXPECT_EQ(parser->GetValue()->GetType(), IxoMepValueType::Expression);
  EXPECT_EQ(parser->GetValue("x")->GetType(), IxoMepValueType::Expression);
  EXPECT_EQ(parser->GetValueOfPos(0)->GetType(), IxoMepValueType::Expression);
}

TEST(Bodies, Of_the_element_of_an_attribute_of_an_index_and_of_a_position) {
  const auto parser = ReadText("A x: { IN_X } y: 1 { IN_A }\nB { IN_B }\nC");
  ASSERT_NE(parser->GetBodyParser(), nullptr);
  EXPECT_EQ(parser->GetBodyParser()->GetKeyword(0), "IN_A");
  EXPECT_EQ(parser->GetBodyParser("x")->GetKeyword(0), "IN_X");
  EXPECT_EQ(parser->GetBodyParser(1)->GetKeyword(0), "IN_B");
  EXPECT_EQ(parser->GetBodyParserOfPos(0), parser->GetBodyParser("x"));
  EXPECT_EQ(parser->GetBodyParser("y"), nullptr);
  EXPECT_EQ(parser->GetBodyParser("missing"), nullptr);
  EXPECT_EQ(parser->GetBodyParserOfPos(1), nullptr);
  EXPECT_EQ(parser->GetBodyParser(2), nullptr);
}

TEST(Bodies, Have_variables_of_their_own) {
  IxoMepValueSet scope;
  SetVariable(scope, "w", 5);
  const auto parser = ReadText("A { B x: (w) }");
  parser->SetVars(&scope);
  IxoMepParser* const body = parser->GetBodyParser();
  EXPECT_EQ(body->GetVars(), nullptr);
  EXPECT_EQ(body->GetIntValue("x"), 0);
  body->SetVars(&scope);
  EXPECT_EQ(body->GetIntValue("x"), 5);
}

TEST(ExpressionCopies, Of_own_value_name_and_position_belong_to_the_caller) {
  IxoMepValueSet scope;
  SetVariable(scope, "w", 5);
  auto parser = ReadText("A (w + 1) x: (w + 2) y: 3");
  const ExpressionPtr own(parser->CreateExprParserCopy());
  const ExpressionPtr named(parser->CreateExprParserCopy("x"));
  const ExpressionPtr placed(parser->CreateExprParserCopyOfPos(0));
  EXPECT_EQ(parser->CreateExprParserCopy("y"), nullptr);
  EXPECT_EQ(parser->CreateExprParserCopy("missing"), nullptr);
  EXPECT_EQ(parser->CreateExprParserCopyOfPos(1), nullptr);
  parser.reset();
  EXPECT_EQ(ResultOf(own.get(), &scope), "6");
  EXPECT_EQ(ResultOf(named.get(), &scope), "7");
  EXPECT_EQ(ResultOf(placed.get(), &scope), "7");
  EXPECT_EQ(ReadText("A 5")->CreateExprParserCopy(), nullptr);
}

TEST(ExpressionCopies, Follow_a_reference_to_an_expression) {
  IxoMepValueSet scope;
  SetVariable(scope, "w", 5);
  const auto parser = ReadText("A x: (w + 2) y: 3");
  *parser->GetValue("y") = IxoMepValue(parser->GetValue("x"));
  const ExpressionPtr copy(parser->CreateExprParserCopy("y"));
  EXPECT_EQ(ResultOf(copy.get(), &scope), "7");
}

TEST(ExpressionCopies, Are_of_the_class_that_the_host_made) {
  OwnParser parser("A x: (w)", "test");
  ASSERT_EQ(parser.Parse(), IMEPERR_NONE);
  const ExpressionPtr copy(parser.CreateExprParserCopy("x"));
  EXPECT_NE(dynamic_cast<OwnExpression*>(copy.get()), nullptr);
}

TEST(ExpressionCopies, Array_places_are_copied_by_position) {
  IxoMepValueSet scope;
  const auto parser = ReadText("A list[1]: 5 plain: 6");
  ExpressionPtr place(parser->GetArrayLValueCopyOfPos(0));
  ASSERT_NE(place, nullptr);
  EXPECT_EQ(parser->GetArrayLValueCopyOfPos(1), nullptr);
  IxoMepValue list(IxoMepValueType::Array, 3);
  SetVariable(scope, "list", list);
  IxoMepValue seven(7);
  String error_text;
  EXPECT_EQ(place->AssignToLValue(&seven, &scope, error_text), IMEPERR_NONE);
  EXPECT_EQ(scope.OldGetValue("list")->GetValue(1)->GetInt(), 7);
}

// --- States in which there is nothing to ask about -----------------------------------------------

void ExpectNothing(IxoMepParser& parser) {
  EXPECT_EQ(parser.GetCurElemIndex(), -1);
  EXPECT_NE(parser.GetCurElement(), nullptr);
  EXPECT_EQ(parser.GetElemCount(), 0);
  EXPECT_EQ(parser.GetAttrCount(), 0);
  EXPECT_EQ(parser.GetAttrNameOfPos(0), "");
  EXPECT_EQ(parser.GetModifier("a"), "");
  EXPECT_FALSE(parser.IsContained("a"));
  EXPECT_EQ(parser.GetValue(), nullptr);
  EXPECT_EQ(parser.GetBodyParser(), nullptr);
  EXPECT_EQ(parser.CreateExprParserCopy(), nullptr);
  EXPECT_EQ(parser.GetStrValue(), "");
  EXPECT_EQ(parser.GetIntValue("a"), 0);
  EXPECT_TRUE(parser.GetBoolValue("a", true));
  EXPECT_EQ(parser.GetMapValue("a"), nullptr);
  EXPECT_EQ(parser.CreateColorEP(), nullptr);
  EXPECT_EQ(parser.ExpectValueType(IxoMepValueType::Integer, true), IMEPERR_NONE);
  EXPECT_EQ(parser.ExpectValueType("a", IxoMepValueType::Integer, false), 36);
}

TEST(Elements, A_parser_that_has_not_parsed_answers_every_query) {
  IxoMepParser parser("A a: 1", "test");
  ExpectNothing(parser);
}

TEST(Elements, A_text_of_blanks_answers_every_query) { ExpectNothing(*ReadText(" # c\n")); }

TEST(Elements, After_set_text_nothing_of_the_old_text_is_left) {
  const auto parser = ReadText("A 1 a: 1 { B }");
  parser->SetText("C");
  ExpectNothing(*parser);
}

TEST(Elements, After_an_error_the_elements_read_so_far_answer) {
  const auto parser = FailText("A 1 a: 2\nB b: 3 !");
  EXPECT_EQ(parser->GetElemCount(), 2);
  EXPECT_TRUE(parser->SetCurElemIndex(0));
  EXPECT_EQ(parser->GetIntValue("a"), 2);
  EXPECT_EQ(parser->GetElemText(1), "B b: 3 !");
}

TEST(Elements, A_failed_include_leaves_no_directive_behind) {
  TestHost host;
  const auto parser = FailText("A a: 1\n@INCLUDE \"none.txt\"");
  EXPECT_EQ(parser->GetElemCount(), 1);
  EXPECT_EQ(parser->GetKeyword(0), "A");
  EXPECT_NE(parser->GetCurElement(), nullptr);
  EXPECT_EQ(parser->GetIntValue("missing"), 0);
}

}  // namespace
}  // namespace ixomep::test
