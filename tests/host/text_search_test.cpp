// Finding texts in texts: against the standard search on all small and on repetitive texts, and
// linear in the worst cases of plain searching.
#include "ixomep/host/text_search.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <random>
#include <string>
#include <string_view>

#include "ixomep/host/string.h"
#include "tests/support/test_host.h"

namespace ixomep {
namespace {

using test::RandomSeed;

std::string RandomText(std::mt19937& random, std::size_t size, int letters) {
  std::string text(size, 'a');
  for (char& byte : text) {
    byte = static_cast<char>('a' + std::uniform_int_distribution<int>(0, letters - 1)(random));
  }
  return text;
}

void ExpectSameAsStandardSearch(const std::string& text, const std::string& pattern,
                                std::size_t from) {
  const TextSearch search(pattern);
  ASSERT_EQ(search.Find(text, from), text.find(pattern, from)) << text << " " << pattern;
  ASSERT_EQ(search.FindBackward(text, from), text.rfind(pattern, from)) << text << " " << pattern;
}

TEST(TextSearch, Agrees_with_the_standard_search_on_all_small_texts) {
  const auto word = [](int code, int length) {
    std::string text;
    for (int i = 0; i < length; ++i) text += static_cast<char>('a' + ((code >> i) & 1));
    return text;
  };
  for (int size = 0; size <= 7; ++size) {
    for (int code = 0; code < 1 << size; ++code) {
      for (int pattern_size = 1; pattern_size <= 4; ++pattern_size) {
        for (int pattern = 0; pattern < 1 << pattern_size; ++pattern) {
          for (std::size_t from = 0; from <= 8; ++from) {
            ExpectSameAsStandardSearch(word(code, size), word(pattern, pattern_size), from);
          }
        }
      }
    }
  }
}

TEST(TextSearch, Agrees_with_the_standard_search_on_repetitive_texts_that_make_it_switch) {
  constexpr int kRounds = 3000;
  std::mt19937 random(RandomSeed(kRounds));
  const auto below = [&](std::size_t end) {
    return std::uniform_int_distribution<std::size_t>(0, end - 1)(random);
  };
  for (int round = 0; round < kRounds; ++round) {
    // Periodic text with a few changed bytes, and a pattern cut out of it or nearly so.
    const std::string period = RandomText(random, 1 + below(5), 2);
    std::string text;
    while (text.size() < 800) text += period;
    for (std::size_t i = 0; i < below(4); ++i) text[below(text.size())] = 'b';
    const std::size_t start = below(text.size() - 100);
    std::string pattern = text.substr(start, 20 + below(80));
    if (round % 3 == 0) pattern[below(pattern.size())] = 'b';
    ExpectSameAsStandardSearch(text, pattern, below(text.size()));
    ExpectSameAsStandardSearch(text, pattern, round % 2 == 0 ? 0 : text.size());
  }
}

double SecondsOf(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

TEST(TextSearch, Worst_cases_of_plain_searching_stay_linear) {
  const std::string text(2000000, 'a');
  const std::string half(1000000, 'a');
  const std::string ends = half + "b";
  const std::string begins = "b" + half;
  const std::string middle = half + "b" + half;
  // Quadratic work would take hours.
  EXPECT_LT(SecondsOf([&] {
              for (const std::string& pattern : {ends, begins, middle}) {
                EXPECT_EQ(TextSearch(pattern).Find(text, 0), TextSearch::kNone);
                EXPECT_EQ(TextSearch(pattern).FindBackward(text, text.size()), TextSearch::kNone);
              }
            }),
            20.0);
}

TEST(String, Search_of_a_repetitive_pattern_stays_linear) {
  const String text = String::Filled(2000000, 'a');
  const String pattern = String::Filled(1000000, 'a') + "b";
  EXPECT_LT(SecondsOf([&] {
              EXPECT_EQ(text.Search(pattern), String::kNotFound);
              EXPECT_EQ(text.SearchBackward(pattern), String::kNotFound);
            }),
            20.0);
}

}  // namespace
}  // namespace ixomep
