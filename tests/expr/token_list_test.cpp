// Tokens on their way from scanner to grammar: read batch by batch, made nodes when taken, dropped
// without a trace; and the short way for whole numbers beside the general reader.
#include "ixomep/expr/token_list.h"

#include <gtest/gtest.h>

#include <string>

#include "ixomep/expr/scanner.h"
#include "ixomep/host/memory_budget.h"
#include "tests/support/test_host.h"
#include "tests/support/trees.h"

namespace {

using ixomep::NodePtr;
using ixomep::Scanner;
using ixomep::TokenList;
using ixomep::test::Compile;
using ixomep::test::Compiled;
using ixomep::test::ScopedMemoryLimit;
using Kind = IxoMepExprNodeType;

constexpr int kBatch = static_cast<int>(TokenList::kBatch);

// "x+x+x" with that many names.
std::string Sum(int names) {
  std::string text = "x";
  for (int i = 1; i < names; ++i) text += "+x";
  return text;
}

TEST(TokenList, A_list_with_a_source_gives_every_token_in_order_around_the_ends_of_batches) {
  for (int names = 1; names < 2 * kBatch; ++names) {
    const String text(Sum(names));
    Scanner scanner(text);
    TokenList tokens(text.Len(), scanner);
    for (int at = 0; at < text.Len(); ++at) {
      ASSERT_EQ(tokens.FrontOffset(), at);
      ASSERT_EQ(tokens.TakeFront()->GetType(), at % 2 == 0 ? Kind::Variable : Kind::Plus);
    }
    EXPECT_TRUE(tokens.IsEmpty());
    EXPECT_EQ(tokens.FrontOffset(), text.Len());
  }
}

TEST(TokenList, A_taken_name_and_a_taken_constant_are_complete_nodes) {
  const String text("width \"a text\" 12");
  Scanner scanner(text);
  TokenList tokens(text.Len(), scanner);
  EXPECT_EQ(tokens.TakeFront()->GetName(), "width");
  EXPECT_EQ(tokens.TakeFront()->GetValue()->GetStr(), "a text");
  EXPECT_EQ(tokens.TakeFront()->GetValue()->GetInt(), 12);
}

TEST(TokenList, Dropped_constants_give_their_memory_back) {
  const String text("\"a long text that needs memory\" \"and another one\"");
  const std::size_t before = ixomep::MemoryBudget::InUse();
  {
    Scanner scanner(text);
    TokenList tokens(text.Len(), scanner);
    tokens.DropFront();
  }
  EXPECT_LE(ixomep::MemoryBudget::InUse(), before + 2 * sizeof(IxoMepValue));
}

TEST(TokenList, Dropping_all_reads_the_whole_text) {
  const String text(Sum(10 * kBatch) + " Foo");
  Scanner scanner(text);
  TokenList tokens(text.Len(), scanner);
  EXPECT_EQ(scanner.Code(), 0);
  tokens.DropAll();
  EXPECT_TRUE(tokens.IsEmpty());
  EXPECT_EQ(scanner.Code(), 24);
}

TEST(TokenList, A_scanner_failure_batches_behind_a_grammar_failure_comes_first) {
  for (const int names : {1, kBatch / 2, kBatch, 10 * kBatch}) {
    const std::string text = "a b " + Sum(names) + " ! c";
    const Compiled compiled = Compile(String(text));
    EXPECT_EQ(compiled.code, 17) << names;
    EXPECT_EQ(compiled.place, static_cast<int>(text.size()) - 3) << names;
    EXPECT_EQ(compiled.text, ixomep::test::TextOf(IMEPERR_UNKNOWN_CHARACTER)) << names;
    EXPECT_FALSE(compiled.tree);
  }
}

TEST(TokenList, A_scanner_failure_behind_a_complete_expression_leaves_no_tree) {
  for (const int names : {1, kBatch / 2, kBatch, 10 * kBatch}) {
    const Compiled compiled = Compile(String(Sum(names) + "!"));
    EXPECT_EQ(compiled.code, 17) << names;
    EXPECT_EQ(compiled.place, 2 * names - 1) << names;
    EXPECT_FALSE(compiled.tree);
  }
}

TEST(TokenList, A_grammar_failure_keeps_its_place_when_much_text_follows) {
  const Compiled compiled = Compile(String("a b " + Sum(10 * kBatch)));
  EXPECT_EQ(compiled.code, 15);
  EXPECT_EQ(compiled.place, 2);
}

TEST(TokenList, A_long_sum_needs_a_node_a_token_and_no_list_beside_it) {
  constexpr int kNames = 500000;
  const String text(Sum(kNames));
  const ScopedMemoryLimit limit(2 * kNames * sizeof(IxoMepExprNode) + 16 * 1024);
  EXPECT_EQ(Compile(text).code, 0);
}

TEST(TokenList, Memory_that_runs_out_at_any_token_loses_nothing) {
  const std::string part = "\"a text of more bytes than one\" + 12 + name + {7, \"another text\"}";
  const String text(part + " + " + part + " + " + part);
  Compile(text);  // blocks of values and nodes are there from now on
  const std::size_t before = ixomep::MemoryBudget::InUse();
  int failures = 0;
  for (std::size_t bytes = 0; bytes < 300; bytes += 3) {
    const ScopedMemoryLimit limit(bytes);
    const Compiled compiled = Compile(text);
    EXPECT_EQ(compiled.code == 0, compiled.tree.get() != nullptr) << bytes;
    if (compiled.code != 0) ++failures;
  }
  EXPECT_GT(failures, 10);
  Compile("1");
  EXPECT_EQ(ixomep::MemoryBudget::InUse(), before);
}

// What the general reader says of the literal at the start of a text.
struct Literal {
  int code;
  std::int32_t end;
  IxoMepValueType type;
  double number;
};

Literal Read(const String& text) {
  Literal literal{0, 0, IxoMepValueType::Undefined, 0};
  std::int32_t code = 0;
  String error;
  const ixomep::ValuePtr value(IxoMepValue::Create(text, literal.end, code, error, nullptr, -1));
  literal.code = code;
  if (value != nullptr) {
    literal.type = value->GetType();
    literal.number = value->GetReal() + value->GetTMM() + value->GetSec();
  }
  return literal;
}

TEST(WholeNumbers, Agree_with_the_general_reader_whatever_follows) {
  for (const char* digits :
       {"0", "7", "007", "12", "99999999", "123456789", "999999999", "1234567890", "2147483647",
        "2147483648", "4294967296", "99999999999999999999"}) {
    for (int byte = 0; byte < 256; ++byte) {
      for (const char* rest : {"", "5", "m", "e1", " ", "0:000:00:00:00"}) {
        const String text(std::string(digits) + static_cast<char>(byte) + rest);
        const Literal expected = Read(text);
        Scanner scanner(text);
        TokenList tokens(text.Len(), scanner);
        if (tokens.IsEmpty()) {
          ASSERT_EQ(scanner.Code(), expected.code) << digits << " " << byte << rest;
          continue;
        }
        ASSERT_EQ(expected.code, 0) << digits << " " << byte << rest;
        const NodePtr token = tokens.TakeFront();
        const IxoMepValue& value = *token->GetValue();
        ASSERT_EQ(value.GetType(), expected.type) << digits << " " << byte << rest;
        ASSERT_EQ(value.GetReal() + value.GetTMM() + value.GetSec(), expected.number)
            << digits << " " << byte << rest;
      }
    }
  }
}

}  // namespace
