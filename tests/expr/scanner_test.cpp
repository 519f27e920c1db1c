// Text -> tokens: every token kind, every byte, comments, keywords, names, literals, failures.
#include "ixomep/expr/scanner.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ixomep/values/string_address_map.h"
#include "tests/support/test_host.h"
#include "tests/support/trees.h"

namespace {

using Kind = IxoMepExprNodeType;
using ixomep::NodePtr;
using ixomep::test::TextOf;

struct Scanned {
  IxoMepErrorEnum code;
  String text;
  std::int32_t error_offset = -1;
  std::vector<NodePtr> tokens;
  std::vector<std::int32_t> offsets;

  std::vector<int> Kinds() const {
    std::vector<int> kinds;
    for (const NodePtr& token : tokens) kinds.push_back(static_cast<int>(token->GetType()));
    return kinds;
  }
};

Scanned Scan(const String& text) {
  Scanned result;
  ixomep::Scanner scanner(text);
  ixomep::TokenList list(text.Len(), scanner);
  while (!list.IsEmpty()) {
    result.offsets.push_back(list.FrontOffset());
    result.tokens.push_back(list.TakeFront());
  }
  result.code = scanner.Code();
  if (result.code != IMEPERR_NONE) {
    result.text = scanner.ErrorText();
    result.error_offset = scanner.Offset();
  }
  return result;
}

Scanned ScanByte(int byte) { return Scan(String::Filled(1, static_cast<char>(byte))); }

std::vector<int> Kinds(std::initializer_list<Kind> kinds) {
  std::vector<int> numbers;
  for (const Kind kind : kinds) numbers.push_back(static_cast<int>(kind));
  return numbers;
}

std::string NameOf(const String& text) {
  const Scanned scanned = Scan(text);
  if (scanned.code != 0 || scanned.tokens.size() != 1) return "not one token";
  if (scanned.tokens[0]->GetType() != Kind::Variable) return "not a name";
  return std::string(scanned.tokens[0]->GetName().view());
}

TEST(Scanner, An_empty_text_has_no_tokens) {
  EXPECT_EQ(Scan("").code, 0);
  EXPECT_TRUE(Scan("").tokens.empty());
}

struct Spelling {
  const char* text;
  int kind;
};

class ScannerSpelling : public testing::TestWithParam<Spelling> {};

TEST_P(ScannerSpelling, Gives_one_token_of_its_kind) {
  const Scanned scanned = Scan(GetParam().text);
  EXPECT_EQ(scanned.code, 0);
  ASSERT_EQ(scanned.tokens.size(), 1u);
  EXPECT_EQ(static_cast<int>(scanned.tokens[0]->GetType()), GetParam().kind);
  EXPECT_EQ(scanned.tokens[0]->GetNameAddress(), nullptr);
  EXPECT_EQ(scanned.tokens[0]->Left(), nullptr);
  EXPECT_EQ(scanned.tokens[0]->Right(), nullptr);
}

INSTANTIATE_TEST_SUITE_P(
    All, ScannerSpelling,
    testing::Values(Spelling{":=", 7}, Spelling{",", 8}, Spelling{":", 9}, Spelling{".", 10},
                    Spelling{"(", 11}, Spelling{")", 12}, Spelling{"+", 13}, Spelling{"-", 14},
                    Spelling{"*", 15}, Spelling{"/", 16}, Spelling{"MOD", 17}, Spelling{"=", 18},
                    Spelling{"<=", 19}, Spelling{"!=", 20}, Spelling{"<>", 20}, Spelling{"<", 21},
                    Spelling{">=", 22}, Spelling{">", 23}, Spelling{"{", 24}, Spelling{"}", 25},
                    Spelling{"[", 26}, Spelling{"]", 27}, Spelling{"VAL", 28}, Spelling{"STR", 29},
                    Spelling{"AND", 30}, Spelling{"OR", 31}, Spelling{"LEN", 32},
                    Spelling{"NOT", 33}, Spelling{"SUB", 34}, Spelling{"IN", 35},
                    Spelling{"ROUND", 36}, Spelling{"FLOOR", 37}, Spelling{"CEIL", 38},
                    Spelling{"CM", 39}, Spelling{"CMS", 40}, Spelling{"PT", 41},
                    Spelling{"PTS", 42}, Spelling{"ASC", 43}, Spelling{"CHR", 44},
                    Spelling{"INT", 45}, Spelling{"REAL", 46}));

TEST(Scanner, Bytes_9_to_13_and_32_and_160_separate) {
  for (const int byte : {9, 10, 11, 12, 13, 32, 160}) {
    EXPECT_EQ(ScanByte(byte).code, 0) << byte;
    EXPECT_TRUE(ScanByte(byte).tokens.empty()) << byte;
  }
  EXPECT_EQ(Scan("1\t\n\v\f\r \xa0+").Kinds(), Kinds({Kind::Constant, Kind::Plus}));
}

// What each byte is when it stands alone, as a list of kinds or the code of the failure.
int ExpectedOfByte(int byte) {
  if ((byte >= 9 && byte <= 13) || byte == 32 || byte == 160 || byte == '#') return 0;
  if ((byte >= 'a' && byte <= 'z') || byte == '_' || byte == '?' || byte >= 128) return 101;
  if (byte >= '0' && byte <= '9') return 100;
  if (byte >= 'A' && byte <= 'Z') return -24;
  if (byte == '$') return -5;
  if (byte == '"') return -2;
  const std::string symbols = ",:.()+-*/=<>{}[]";
  const int kinds[] = {8, 9, 10, 11, 12, 13, 14, 15, 16, 18, 21, 23, 24, 25, 26, 27};
  const std::size_t at = byte == 0 ? std::string::npos : symbols.find(static_cast<char>(byte));
  return at != std::string::npos ? 100 + kinds[at] : -17;
}

TEST(Scanner, Every_single_byte_is_classified) {
  for (int byte = 0; byte < 256; ++byte) {
    const Scanned scanned = ScanByte(byte);
    const int expected = ExpectedOfByte(byte);
    EXPECT_EQ(scanned.code, expected < 0 ? -expected : 0) << byte;
    ASSERT_EQ(scanned.tokens.size(), expected > 0 ? 1u : 0u) << byte;
    if (expected > 0) {
      EXPECT_EQ(100 + scanned.Kinds()[0], expected) << byte;
    }
  }
}

TEST(Scanner, A_hash_comment_runs_to_the_line_feed_or_the_end) {
  EXPECT_EQ(Scan("a # b \"\n+ #").Kinds(), Kinds({Kind::Variable, Kind::Plus}));
  EXPECT_EQ(Scan("a # b \r c").Kinds(), Kinds({Kind::Variable}));
}

TEST(Scanner, A_block_comment_ends_behind_its_first_closer) {
  EXPECT_EQ(Scan("(* note *) 1 # rest").Kinds(), Kinds({Kind::Constant}));
  EXPECT_EQ(Scan("(* (* *) + *)").Kinds(),
            Kinds({Kind::Plus, Kind::Times, Kind::CloseParen}));  // no nesting
  EXPECT_EQ(Scan("(* \n # *) -").Kinds(), Kinds({Kind::Minus}));
}

TEST(Scanner, The_star_of_a_comment_opener_does_not_close_it) {
  EXPECT_EQ(Scan("(*) 1 *) +").Kinds(), Kinds({Kind::Plus}));
}

TEST(Scanner, An_unterminated_block_comment_runs_to_the_end) {
  EXPECT_EQ(Scan("a (* b").Kinds(), Kinds({Kind::Variable}));
  EXPECT_EQ(Scan("a (*").Kinds(), Kinds({Kind::Variable}));
}

TEST(Scanner, A_parenthesis_and_a_star_with_a_blank_between_are_two_tokens) {
  EXPECT_EQ(Scan("( *").Kinds(), Kinds({Kind::OpenParen, Kind::Times}));
}

TEST(Scanner, Two_byte_symbols_need_no_delimiter) {
  EXPECT_EQ(Scan(":=:<=<>!=>=><").Kinds(),
            Kinds({Kind::Assign, Kind::Colon, Kind::LessEqual, Kind::NotEqual, Kind::NotEqual,
                   Kind::GreaterEqual, Kind::Greater, Kind::Less}));
  EXPECT_EQ(Scan("==").Kinds(), Kinds({Kind::Equal, Kind::Equal}));
  EXPECT_EQ(Scan(": =").Kinds(), Kinds({Kind::Colon, Kind::Equal}));
}

TEST(Scanner, A_lone_exclamation_mark_is_an_unknown_character) {
  const Scanned scanned = Scan("a ! b");
  EXPECT_EQ(scanned.code, 17);
  EXPECT_EQ(scanned.text, TextOf(IMEPERR_UNKNOWN_CHARACTER));
  EXPECT_EQ(scanned.error_offset, 2);
  EXPECT_EQ(Scan("!").code, 17);
}

TEST(Scanner, A_zero_byte_is_an_unknown_character) {
  EXPECT_EQ(Scan(String("a\0b", 3)).code, 17);
  EXPECT_EQ(Scan(String("a\0b", 3)).error_offset, 1);
}

TEST(Scanner, A_point_before_a_digit_starts_a_number) {
  EXPECT_EQ(Scan(".5").Kinds(), Kinds({Kind::Constant}));
  EXPECT_EQ(Scan("a.b").Kinds(), Kinds({Kind::Variable, Kind::Dot, Kind::Variable}));
  EXPECT_EQ(Scan("a.5").Kinds(), Kinds({Kind::Variable, Kind::Constant}));
  EXPECT_EQ(Scan("a.").Kinds(), Kinds({Kind::Variable, Kind::Dot}));
}

TEST(Scanner, A_keyword_needs_no_delimiter_behind_it) {
  EXPECT_EQ(Scan("NOTa").Kinds(), Kinds({Kind::Not, Kind::Variable}));
  EXPECT_EQ(Scan("1MOD2").Kinds(), Kinds({Kind::Constant, Kind::Mod, Kind::Constant}));
  EXPECT_EQ(Scan("NOT_a").Kinds(), Kinds({Kind::Not, Kind::Variable}));
}

TEST(Scanner, Keywords_in_lower_case_are_names) {
  for (const char* word : {"mod", "and", "or", "not", "in", "sub", "len", "foo"}) {
    EXPECT_EQ(NameOf(word), word);
  }
}

struct UnknownWord {
  const char* text;
  const char* word;
  int offset;
};

class ScannerUnknownWord : public testing::TestWithParam<UnknownWord> {};

TEST_P(ScannerUnknownWord, Fails_with_24_naming_the_run_of_upper_case_letters) {
  const Scanned scanned = Scan(GetParam().text);
  EXPECT_EQ(scanned.code, 24);
  EXPECT_EQ(scanned.text, TextOf(IMEPERR_UNKNOWN_KEYWORD, {{"%s", GetParam().word}}));
  EXPECT_EQ(scanned.error_offset, GetParam().offset);
}

INSTANTIATE_TEST_SUITE_P(
    All, ScannerUnknownWord,
    testing::Values(UnknownWord{"Foo", "F", 0}, UnknownWord{"a + Foo", "F", 4},
                    UnknownWord{"XOR", "XOR", 0}, UnknownWord{"ANDOR", "ANDOR", 0},
                    UnknownWord{"MODA", "MODA", 0}, UnknownWord{"MO", "MO", 0},
                    UnknownWord{"ABCDEFGHI", "ABCDEFGHI", 0},    // 9 letters
                    UnknownWord{"ABCDEFGHIJ", "ABCDEFGHIJ", 0},  // 10 letters
                    UnknownWord{"NOTNOTNOTNOT", "NOTNOTNOTNOT", 0},
                    UnknownWord{"ABCDEFGHIJKLMNOPQRST", "ABCDEFGHIJKLMNOPQRST", 0},  // 20 letters
                    UnknownWord{"ABCDEFGHIJKLMNOPQRSTU", "ABCDEFGHIJKLMNOPQRST...", 0}));

struct NameCase {
  const char* text;
  const char* name;
};

class ScannerName : public testing::TestWithParam<NameCase> {};

TEST_P(ScannerName, Is_one_token) { EXPECT_EQ(NameOf(GetParam().text), GetParam().name); }

INSTANTIATE_TEST_SUITE_P(All, ScannerName,
                         testing::Values(NameCase{"a", "a"}, NameCase{"aB9_z", "aB9_z"},
                                         NameCase{"_", "_"}, NameCase{"_1", "_1"},
                                         NameCase{"\xe4pfel", "\xe4pfel"},
                                         NameCase{"\x80\xff", "\x80\xff"},
                                         NameCase{"a\xa0z", "a\xa0z"}, NameCase{"?name", "name"},
                                         NameCase{"?my-name", "my-name"}, NameCase{"?Foo", "Foo"},
                                         NameCase{"?1a", "1a"}, NameCase{"?-", "-"},
                                         NameCase{"?\xa0", "\xa0"}, NameCase{"?", ""}));

TEST(Scanner, A_byte_of_160_where_a_name_would_start_separates) {
  EXPECT_EQ(NameOf("\xa0z"), "z");
  EXPECT_EQ(NameOf("a \xa0"), "a");
}

TEST(Scanner, A_hyphen_ends_a_name_that_does_not_begin_with_a_question_mark) {
  EXPECT_EQ(Scan("a-b").Kinds(), Kinds({Kind::Variable, Kind::Minus, Kind::Variable}));
}

TEST(Scanner, A_question_mark_inside_ends_a_name) {
  const Scanned scanned = Scan("a?b");
  ASSERT_EQ(scanned.tokens.size(), 2u);
  EXPECT_EQ(scanned.tokens[1]->GetName(), "b");
}

TEST(Scanner, Names_hold_interned_addresses) {
  const Scanned scanned = Scan("abc ?abc aBc");
  ASSERT_EQ(scanned.tokens.size(), 3u);
  EXPECT_EQ(scanned.tokens[0]->GetNameAddress(), IxoMepStringAddressMap::GetAddress("abc"));
  EXPECT_EQ(scanned.tokens[1]->GetNameAddress(), scanned.tokens[0]->GetNameAddress());
  EXPECT_NE(scanned.tokens[2]->GetNameAddress(), scanned.tokens[0]->GetNameAddress());
}

TEST(Scanner, Names_hold_interned_addresses_also_when_there_are_very_many) {
  std::string text;
  for (int i = 0; i < 60000; ++i)
    text += "many" + std::to_string(i) + (i % 3 == 0 ? " ?a-b " : " ");
  for (int round = 0; round < 2; ++round) {  // the second one finds all of them
    const Scanned scanned = Scan(String(text + "!"));
    EXPECT_EQ(scanned.code, 17);
    std::size_t at = 0;
    for (int i = 0; i < 60000; ++i) {
      ASSERT_EQ(scanned.tokens[at++]->GetNameAddress(), ixomep::Intern("many" + std::to_string(i)));
      if (i % 3 == 0) {
        ASSERT_EQ(scanned.tokens[at++]->GetNameAddress(), ixomep::Intern("a-b"));
      }
    }
    EXPECT_EQ(at, scanned.tokens.size());
  }
}

TEST(Scanner, A_literal_becomes_a_constant_that_owns_its_value) {
  const Scanned scanned = Scan("\"a\\tb\" 12 .5 $ff ");
  ASSERT_EQ(scanned.Kinds(),
            Kinds({Kind::Constant, Kind::Constant, Kind::Constant, Kind::Constant}));
  EXPECT_EQ(scanned.tokens[0]->GetValue()->GetStr(), "a\tb");
  EXPECT_EQ(scanned.tokens[1]->GetValue()->GetInt(), 12);
  EXPECT_EQ(scanned.tokens[2]->GetValue()->GetReal(), 0.5);
  EXPECT_EQ(scanned.tokens[3]->GetValue()->GetType(), IxoMepValueType::Integer);
  EXPECT_EQ(scanned.tokens[3]->GetValue()->GetInt(), 255);
}

TEST(Scanner, A_number_has_no_sign_of_its_own) {
  EXPECT_EQ(Scan("-1").Kinds(), Kinds({Kind::Minus, Kind::Constant}));
  EXPECT_EQ(Scan("1-1").Kinds(), Kinds({Kind::Constant, Kind::Minus, Kind::Constant}));
}

TEST(Scanner, A_number_with_a_unit_is_one_constant) {
  const Scanned scanned = Scan("1cm+2");
  ASSERT_EQ(scanned.Kinds(), Kinds({Kind::Constant, Kind::Plus, Kind::Constant}));
  EXPECT_EQ(scanned.tokens[0]->GetValue()->GetTMM(), 100);
}

TEST(Scanner, A_failing_literal_gives_the_readers_code_and_text) {
  const Scanned scanned = Scan("1 + 5km");
  EXPECT_EQ(scanned.code, 6);
  EXPECT_EQ(scanned.text, TextOf(IMEPERR_UNKNOWN_UNIT, {{"%s", "km"}}));
  EXPECT_EQ(scanned.error_offset, 4);
  EXPECT_EQ(Scan("\"abc").code, 2);
  EXPECT_EQ(Scan("\"abc\\").code, 1);
  EXPECT_EQ(Scan("$").code, 5);
  EXPECT_EQ(Scan("5e-1").code, 19);
}

TEST(Scanner, Offsets_are_where_tokens_start) {
  const Scanned scanned = Scan(" ab(*x*):=\n1 ?q");
  EXPECT_EQ(scanned.offsets, (std::vector<std::int32_t>{1, 8, 11, 13}));
}

}  // namespace
