// The token functions against a literal reading of their definitions, on all small lists; and
// their time on long ones.
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "ixomep/builtins/token_set.h"
#include "ixomep/builtins/tokens.h"
#include "tests/support/call_checks.h"

namespace ixomep::test {
namespace {

// --- The definitions, word by word ------------------------------------------------------------

std::string Token(const std::string& list, int index, char separator) {
  std::size_t start = 0;
  for (int i = 0; i < index; ++i) {
    const std::size_t at = list.find(separator, start);
    if (at == std::string::npos) return "";
    start = at + 1;
  }
  return list.substr(start, list.find(separator, start) - start);
}

int Count(const std::string& list, char separator) {
  if (list.empty()) return 0;
  int count = 1;
  for (const char byte : list) count += byte == separator ? 1 : 0;
  return count;
}

bool Occurs(const std::string& token, const std::string& list, char c) {
  return (c + list + c).find(c + token + c) != std::string::npos;
}

void Append(std::string& result, const std::string& token, char c) {
  if (!result.empty()) result += c;
  result += token;
}

std::string Union(const std::string& a, const std::string& b, char c) {
  std::string result = a;
  for (int i = 0; i < Count(b, c); ++i) {
    if (!Occurs(Token(b, i, c), a, c)) Append(result, Token(b, i, c), c);
  }
  return result;
}

std::string Intersection(const std::string& a, const std::string& b, char c) {
  std::string result;
  for (int i = 0; i < Count(b, c); ++i) {
    if (Occurs(Token(b, i, c), a, c)) Append(result, Token(b, i, c), c);
  }
  return result;
}

std::string Difference(const std::string& a, const std::string& b, char c) {
  std::string result;
  for (int i = 0; i < Count(a, c); ++i) {
    if (!Occurs(Token(a, i, c), b, c)) Append(result, Token(a, i, c), c);
  }
  return result;
}

// All texts over a, b and the separator of up to that length.
std::vector<std::string> SmallLists(std::size_t longest) {
  std::vector<std::string> lists = {""};
  for (std::size_t i = 0; i < lists.size(); ++i) {
    if (lists[i].size() == longest) break;
    for (const char byte : {'a', 'b', ','}) lists.push_back(lists[i] + byte);
  }
  return lists;
}

TEST(TokenSets, Agree_with_their_definitions_on_all_small_lists) {
  Session session;
  const std::vector<std::string> lists = SmallLists(4);
  for (const std::string& a : lists) {
    session.Set("a", IxoMepValue(String(a)));
    for (const std::string& b : lists) {
      session.Set("b", IxoMepValue(String(b)));
      ASSERT_EQ(session.Eval("tokunion(a, b, \",\")"), "string \"" + Union(a, b, ',') + "\"")
          << a << " | " << b;
      ASSERT_EQ(session.Eval("tokisect(a, b, \",\")"), "string \"" + Intersection(a, b, ',') + "\"")
          << a << " | " << b;
      ASSERT_EQ(session.Eval("tokdiff(a, b, \",\")"), "string \"" + Difference(a, b, ',') + "\"")
          << a << " | " << b;
    }
  }
}

TEST(TokenReader, Agrees_with_its_definition_on_all_small_lists) {
  for (const std::string& list : SmallLists(6)) {
    const Separator comma(",");
    ASSERT_EQ(CountTokens(list, comma), Count(list, ',')) << list;
    TokenWalker walker(list, comma);
    std::string_view token;
    int index = 0;
    for (; walker.Next(token); ++index) {
      ASSERT_EQ(token, Token(list, index, ',')) << list;
      ASSERT_EQ(TokenAt(list, index, comma), token) << list;
    }
    ASSERT_EQ(index, Count(list, ',')) << list;
    ASSERT_EQ(TokenAt(list, index, comma), "") << list;
    ASSERT_EQ(TokenAt(list, -1, comma), "") << list;
  }
}

TEST(TokenSet, Holds_exactly_what_was_added) {
  // Tokens of 1 to 14 bytes: short ones stand in the set itself, long ones in the text.
  std::string text;
  std::vector<std::pair<std::size_t, std::size_t>> places;
  for (int i = 0; i < 5000; ++i) {
    const std::string token =
        std::to_string(i * 7919) + std::string(static_cast<std::size_t>(i % 7), 'x');
    places.emplace_back(text.size(), token.size());
    text += token;
  }
  TokenSet set(text);
  for (const auto& [position, size] : places) {
    const std::string_view token = std::string_view(text).substr(position, size);
    EXPECT_FALSE(set.Contains(token));
    set.Add(token);
    set.Add(token);
  }
  for (const auto& [position, size] : places) {
    const std::string token = text.substr(position, size);
    EXPECT_TRUE(set.Contains(token));
    EXPECT_FALSE(set.Contains(token + "y"));
    EXPECT_FALSE(set.Contains(token + std::string(1, '\0')));
  }
  EXPECT_FALSE(set.Contains(""));
  set.Add(std::string_view());
  EXPECT_TRUE(set.Contains(""));
}

// A list of that many bytes: numbers in a scrambled order, so that few tokens repeat.
String LongList(std::size_t bytes, std::uint32_t step) {
  std::string list;
  list.reserve(bytes + 16);
  for (std::uint32_t number = 1; list.size() < bytes; number = number * 1664525u + step) {
    list += std::to_string(number % 1000000u);
    list += ' ';
  }
  return list;
}

TEST(TokenLists, Work_on_long_lists_takes_linear_time) {
  Session session;
  session.Set("a", IxoMepValue(String(LongList(2000000, 1013904223u))));
  session.Set("b", IxoMepValue(String(LongList(2000000, 1013904225u))));
  session.Set("n", IxoMepValue(0));
  const auto start = std::chrono::steady_clock::now();
  for (const char* call :
       {"tokcnt(a)", "token(a, 200000)", "tokindex(a, \"none\")", "LEN tokunion(a, b)",
        "LEN tokisect(a, b)", "LEN tokdiff(a, b)", "LEN strarray(a)", "LEN tokstr(strarray(a))",
        "fortok(t, a, \" \", (n := n + 1), n)"}) {
    EXPECT_TRUE(session.Eval(call).find("error") == std::string::npos) << call;
  }
  // Quadratic work on 300 000 tokens would take minutes, even without sanitizers.
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(30));
  EXPECT_EQ(session.Eval("n"), session.Eval("tokcnt(a)"));
  EXPECT_EQ(session.Eval("tokstr(strarray(a)) = a"), "integer 1");
}

}  // namespace
}  // namespace ixomep::test
