// The token functions, row by row; that they agree with a literal reading of their definitions is
// in token_sets_test.cpp.
#include <gtest/gtest.h>

#include <string>

#include "ixomep/expr/expression_parser.h"
#include "ixomep/values/value_rep.h"
#include "tests/support/call_checks.h"
#include "tests/support/eval.h"
#include "tests/support/test_host.h"

namespace ixomep::test {
namespace {

TEST(TokenLists, Counts_and_types_of_arguments_are_those_of_the_table) {
  CheckCountsAndTypes({"tokcnt", {"S", "SS"}});
  CheckCountsAndTypes({"token", {"SI", "SIS"}});
  for (const char* name : {"tokindex", "tokcat", "tokunion", "tokisect", "tokdiff"}) {
    CheckCountsAndTypes({name, {"SS", "SSS"}});
  }
  for (const char* name : {"tokstr", "valtokstr"}) CheckCountsAndTypes({name, {"A", "AS"}});
  for (const char* name : {"strarray", "valarray"}) CheckCountsAndTypes({name, {"S", "SS"}});
}

TEST(TokCnt, One_more_than_the_separators_and_none_for_the_empty_list) {
  Session session;
  CheckAll(session, {{"tokcnt(\"\")", "integer 0"},
                     {"tokcnt(\" \")", "integer 2"},
                     {"tokcnt(\"one two three\")", "integer 3"},
                     {"tokcnt(\"a  b\")", "integer 3"},
                     {"tokcnt(\"a b\", \",\")", "integer 1"},
                     {"tokcnt(\",a,,b\", \",\")", "integer 4"},
                     {"tokcnt(\"a;b,c\", \";,\")", "integer 2"}});
}

TEST(TokCnt, Empty_separator_finds_no_separator) {
  Session session;
  session.Set("zeros", IxoMepValue(String(std::string_view("a\0b", 3))));
  CheckAll(session, {{"tokcnt(\"a b\", \"\")", "integer 1"},
                     {"tokcnt(\"\", \"\")", "integer 0"},
                     {"tokcnt(zeros, \"\")", "integer 1"}});
}

TEST(Token, Gives_the_token_at_the_index) {
  Session session;
  CheckAll(session, {{"token(\"a b c\", 0)", "string \"a\""},
                     {"token(\"a b c\", 1)", "string \"b\""},
                     {"token(\"a b c\", 2)", "string \"c\""},
                     {"token(\",a,,b\", 0, \",\")", "string \"\""},
                     {"token(\",a,,b\", 1, \",\")", "string \"a\""},
                     {"token(\",a,,b\", 2, \",\")", "string \"\""},
                     {"token(\",a,,b\", 3, \",\")", "string \"b\""},
                     {"token(\"a b\", 0, \"\")", "string \"a b\""},
                     {"token(\"a b\", 1, \"\")", "string \"\""}});
}

TEST(Token, Index_outside_the_list_gives_the_empty_string) {
  Session session;
  CheckAll(session, {{"token(\"a b c\", 5)", "string \"\""},
                     {"token(\"a b c\", 3)", "string \"\""},
                     {"token(\"a b c\", -1)", "string \"\""},
                     {"token(\"\", 0)", "string \"\""},
                     {"token(\"a b c\", 2147483647)", "string \"\""}});
}

TEST(Token, Real_index_is_refused) {
  Session session;
  EXPECT_EQ(session.Eval("token(\"a b\", 1.0)"),
            "error 21: A value has the wrong type: token(string, real)");
}

TEST(TokIndex, Index_of_the_first_equal_token) {
  Session session;
  CheckAll(session, {{"tokindex(\"a b c\", \"a\")", "integer 0"},
                     {"tokindex(\"a b c\", \"c\")", "integer 2"},
                     {"tokindex(\"a b b\", \"b\")", "integer 1"},
                     {"tokindex(\"ab b\", \"b\")", "integer 1"},
                     {"tokindex(\"a,b\", \"b\", \",\")", "integer 1"},
                     {"tokindex(\"a b c\", \"A\")", "integer -1"},
                     {"tokindex(\"a b c\", \"d\")", "integer -1"},
                     {"tokindex(\"a b c\", \"a b\")", "integer -1"}});
}

TEST(TokIndex, Empty_token_or_list_gives_minus_one) {
  Session session;
  CheckAll(session, {{"tokindex(\"a  b\", \"\")", "integer -1"},
                     {"tokindex(\"\", \"a\")", "integer -1"},
                     {"tokindex(\"\", \"\")", "integer -1"}});
}

TEST(TokIndex, Empty_separator_means_the_space) {
  Session session;
  CheckAll(session, {{"tokindex(\"a b c\", \"b\", \"\")", "integer 1"},
                     {"tokindex(\"a b c\", \"a b c\", \"\")", "integer -1"}});
}

TEST(TokCat, Joins_with_the_separator_unless_a_side_is_empty) {
  Session session;
  CheckAll(session, {{"tokcat(\"a\", \"b\")", "string \"a b\""},
                     {"tokcat(\"a b\", \"c\", \",\")", "string \"a b,c\""},
                     {"tokcat(\"a\", \"b\", \";,\")", "string \"a;b\""},
                     {"tokcat(\"\", \"b c\")", "string \"b c\""},
                     {"tokcat(\"a\", \"\")", "string \"a\""},
                     {"tokcat(\"\", \"\")", "string \"\""},
                     {"tokcat(\"a\", \"b\", \"\")", "string \"ab\""}});
}

TEST(TokUnion, Adds_the_tokens_that_the_first_list_lacks) {
  Session session;
  CheckAll(session, {{"tokunion(\"a b\", \"b c\")", "string \"a b c\""},
                     {"tokunion(\"a b\", \"a b\")", "string \"a b\""},
                     {"tokunion(\"\", \"a b\")", "string \"a b\""},
                     {"tokunion(\"a b\", \"\")", "string \"a b\""},
                     {"tokunion(\"\", \"\")", "string \"\""},
                     {"tokunion(\"ab\", \"a b\")", "string \"ab a b\""},
                     {"tokunion(\"a,b\", \"b,c\", \",\")", "string \"a,b,c\""}});
}

TEST(TokUnion, Token_that_the_second_list_repeats_is_appended_each_time) {
  Session session;
  EXPECT_EQ(session.Eval("tokunion(\"a\", \"b b\")"), "string \"a b b\"");
}

TEST(TokUnion, Keeps_duplicates_of_the_first_list) {
  Session session;
  EXPECT_EQ(session.Eval("tokunion(\"a a\", \"a c\")"), "string \"a a c\"");
}

TEST(TokIsect, Common_tokens_in_order_and_number_of_the_second_list) {
  Session session;
  CheckAll(session, {{"tokisect(\"a b c\", \"c a\")", "string \"c a\""},
                     {"tokisect(\"a b\", \"b b c\")", "string \"b b\""},
                     {"tokisect(\"a b\", \"c d\")", "string \"\""},
                     {"tokisect(\"\", \"a\")", "string \"\""},
                     {"tokisect(\"a\", \"\")", "string \"\""},
                     {"tokisect(\"a,b\", \"b,a\", \",\")", "string \"b,a\""}});
}

TEST(TokDiff, Tokens_of_the_first_list_that_the_second_lacks) {
  Session session;
  CheckAll(session, {{"tokdiff(\"a b c b\", \"c\")", "string \"a b b\""},
                     {"tokdiff(\"c b a\", \"b\")", "string \"c a\""},
                     {"tokdiff(\"a b\", \"\")", "string \"a b\""},
                     {"tokdiff(\"\", \"a\")", "string \"\""},
                     {"tokdiff(\"a b\", \"a b\")", "string \"\""},
                     {"tokdiff(\"a,b\", \"b\", \",\")", "string \"a\""}});
}

TEST(TokenSets, Empty_tokens_take_part) {
  Session session;
  CheckAll(session, {{"tokunion(\"a\", \" b\")", "string \"a  b\""},
                     {"tokunion(\"a  c\", \" b\")", "string \"a  c b\""},
                     {"tokisect(\"\", \" a\")", "string \"\""},
                     {"tokdiff(\"a  b\", \"\")", "string \"a b\""},
                     {"tokdiff(\" a\", \"b\")", "string \"a\""}});
}

TEST(TokenSets, Empty_separator_compares_whole_lists_and_joins_with_nothing) {
  Session session;
  CheckAll(session, {{"tokunion(\"a b\", \"c\", \"\")", "string \"a bc\""},
                     {"tokunion(\"a b\", \"a b\", \"\")", "string \"a b\""},
                     {"tokunion(\"abc\", \"b\", \"\")", "string \"abcb\""},
                     {"tokisect(\"a b\", \"a b\", \"\")", "string \"a b\""},
                     {"tokisect(\"a b\", \"a\", \"\")", "string \"\""},
                     {"tokdiff(\"a b\", \"a\", \"\")", "string \"a b\""}});
}

TEST(TokStr, Joins_elements_with_the_separator) {
  Session session;
  CheckAll(session, {{"tokstr({\"a\", \"b\", \"c\"})", "string \"a b c\""},
                     {"tokstr({\"a\", \"b\"}, \",;\")", "string \"a,b\""},
                     {"tokstr({\"a\"}, \",\")", "string \"a\""},
                     {"tokstr({})", "string \"\""},
                     {"tokstr({\"\", \"\"}, \",\")", "string \",\""},
                     {"tokstr({\"a\", \"b\"}, \"\")", "string \"ab\""}});
}

TEST(TokStr, Strings_stand_as_they_are_and_times_in_the_hosts_layout) {
  Session session;
  session.Set("absent", IxoMepValue());
  CheckAll(
      session,
      {{"tokstr({\"a\\\"b\", 1, 2.0, 2.5, 3cm}, \"|\")", "string \"a\\\"b|1|2|2.5|3cm\""},
       {"tokstr({65s})", "string \"00:000:00:01:05\""},
       {"tokstr({{1, \"x\"}, map(), absent}, \"|\")", "string \"{1, \\\"x\\\"}|{}|(undefined)\""}});
}

TEST(ValTokStr, Every_element_stands_as_a_literal) {
  Session session;
  CheckAll(session, {{"valtokstr({\"a\\\"b\", 1, 2.5})", "string \"\\\"a\\\\\\\"b\\\" 1 2.5\""},
                     {"valtokstr({\"a\", \"b\"}, \",;\")", "string \"\\\"a\\\",\\\"b\\\"\""},
                     {"valtokstr({})", "string \"\""},
                     {"valtokstr({1, 2}, \"\")", "string \"12\""}});
}

TEST(ValTokStr, Can_be_read_back_with_valarray) {
  Session session;
  EXPECT_EQ(session.Eval("valarray(valtokstr({1, 2.5, \"a\", 3cm, -7, {1, 2}}, \"|\"), \"|\")"),
            session.Eval("{1, 2.5, \"a\", 3cm, -7, {1, 2}}"));
}

TEST(StrArray, Gives_the_tokens_as_strings) {
  Session session;
  CheckAll(session, {{"strarray(\"a b c\")", "array {\"a\", \"b\", \"c\"}"},
                     {"strarray(\"\")", "array {}"},
                     {"strarray(\"a,b\", \",\")", "array {\"a\", \"b\"}"},
                     {"strarray(\"1 2\")", "array {\"1\", \"2\"}"},
                     {"strarray(\",,a\", \",\")", "array {\"\", \"\", \"a\"}"},
                     {"strarray(\"a b\", \"\")", "array {\"a b\"}"}});
}

TEST(StrArray, List_that_ends_with_the_separator_yields_a_last_empty_string) {
  Session session;
  EXPECT_EQ(session.Eval("strarray(\"a,\", \",\")"), "array {\"a\", \"\"}");
}

TEST(ValArray, Reads_every_token_as_a_literal) {
  Session session;
  CheckAll(session, {{"valarray(\"1 2.5 -3\")", "array {1, 2.5, -3}"},
                     {"valarray(\"1cm,(1+2),\\\"x\\\"\", \",\")", "array {1cm, 3, \"x\"}"},
                     {"valarray(\"\")", "array {}"},
                     {"type(valarray(\"(a+1)\")[0])", "string \"expression\""}});
}

TEST(ValArray, Token_that_cannot_be_read_is_undefined) {
  Session session;
  CheckAll(session, {{"valarray(\"1 x 2\")", "array {1, (undefined), 2}"},
                     {"valarray(\"1,,2\", \",\")", "array {1, (undefined), 2}"},
                     {"valarray(\"5km\")", "array {(undefined)}"}});
}

TEST(ValArray, Token_that_opens_a_bracket_and_cannot_be_read_is_undefined) {
  Session session;
  CheckAll(session, {{"valtokstr(valarray(\"( { 1\", \" \"), \";\")",
                      "string \"(undefined);(undefined);1\""}});
}

TEST(ValArray, Want_of_memory_for_a_token_is_a_failure_and_not_an_undefined_element) {
  IxoMepValueSet scope;
  Eval("long := \"\\\"\" + \"x\" * 1000000 + \"\\\"\"", &scope);
  EXPECT_EQ(Eval("LEN valarray(long, \" \")", &scope).Shown(), "integer 1");
  const ScopedMemoryLimit limit(1500000);  // one copy of the token and no other
  EXPECT_EQ(Eval("valarray(long, \" \")", &scope).Shown(), "error 37");
}

// A token that cannot be had is no token that cannot be read.
TEST(ValArray, Without_memory_for_a_value_fails_with_37) {
  String tokens = "1 \"" + std::string(20000, 'x') + "\" nonsense 2";
  IxoMepValueSet scope;
  scope.OldSetValue("s", IxoMepValue(tokens), true);
  IxoMepExpressionParser parser;
  String text;
  ASSERT_EQ(parser.SetExpression("valarray(s)", text), IMEPERR_NONE);
  int refused = 0;
  for (std::size_t bytes = 0; bytes < 120000; bytes += 500) {
    const ScopedMemoryLimit limit(bytes);
    IxoMepValue* slot = nullptr;
    const IxoMepErrorEnum code = parser.Evaluate(&scope, slot, text, false, false);
    const ValuePtr array(slot);
    if (code != IMEPERR_NONE) {
      ++refused;
    } else {
      EXPECT_EQ(ValueAccess::Element(*array, 1).GetType(), IxoMepValueType::String) << bytes;
    }
  }
  EXPECT_GT(refused, 0);
}

}  // namespace
}  // namespace ixomep::test
