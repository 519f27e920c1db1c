// Tests of String: storage and sharing, construction, search, edit, comparison, the limits.
#include "ixomep/host/string.h"

#include <gtest/gtest.h>

#include <random>
#include <span>
#include <stdexcept>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include "ixomep/host/memory_budget.h"
#include "tests/support/test_host.h"

namespace {

using ixomep::MemoryBudget;
using ixomep::test::ScopedMemoryLimit;

TEST(String, Is_one_pointer_wide) { EXPECT_EQ(sizeof(String), sizeof(void*)); }

TEST(String, Has_the_given_maximum_length_and_not_found_position) {
  EXPECT_EQ(String::kMaxLength, 2147483635);
  EXPECT_EQ(String::kNotFound, 2147483647);
}

TEST(String, Default_text_is_empty_and_takes_no_memory) {
  const std::size_t before = MemoryBudget::InUse();
  const String text;
  EXPECT_TRUE(text.IsEmpty());
  EXPECT_EQ(text.Len(), 0);
  EXPECT_STREQ(text.c_str(), "");
  EXPECT_EQ(text[0], '\0');
  EXPECT_EQ(MemoryBudget::InUse(), before);
}

TEST(String, Null_pointers_and_negative_lengths_give_the_empty_text) {
  EXPECT_TRUE(String(static_cast<const char*>(nullptr)).IsEmpty());
  EXPECT_TRUE(String(nullptr, 5).IsEmpty());
  EXPECT_TRUE(String("abc", -1).IsEmpty());
  EXPECT_TRUE(String("abc", 0).IsEmpty());
}

TEST(String, Keeps_zero_bytes_inside_and_ends_in_one) {
  const String text("a\0b", 3);
  EXPECT_EQ(text.Len(), 3);
  EXPECT_EQ(text.view(), std::string_view("a\0b", 3));
  EXPECT_EQ(text[1], '\0');
  EXPECT_EQ(text[3], '\0');
  EXPECT_EQ(text.c_str()[3], '\0');
}

TEST(String, Is_made_from_views_and_standard_strings) {
  EXPECT_EQ(String(std::string_view("view")), "view");
  EXPECT_EQ(String(std::string("standard")), "standard");
  EXPECT_EQ(String('x'), "x");
  const String converted = std::string("converted");
  EXPECT_EQ(converted, "converted");
}

TEST(String, Filled_repeats_the_byte_and_is_empty_below_one) {
  EXPECT_EQ(String::Filled(3, '.'), "...");
  EXPECT_EQ(String::Filled(1, '\xFF'), "\xFF");
  EXPECT_TRUE(String::Filled(0, 'a').IsEmpty());
  EXPECT_TRUE(String::Filled(-5, 'a').IsEmpty());
}

TEST(String, Copies_share_the_text_and_take_no_memory) {
  const String text("shared text");
  const std::size_t before = MemoryBudget::InUse();
  String copy(text);
  String assigned;
  assigned = text;
  for (const String* other : {&copy, &assigned}) {
    EXPECT_TRUE(other->SharesTextWith(text));
    EXPECT_EQ(other->c_str(), text.c_str());
  }
  EXPECT_EQ(MemoryBudget::InUse(), before);
}

TEST(String, Texts_made_apart_do_not_share) {
  EXPECT_FALSE(String("same text").SharesTextWith(String("same text")));
}

TEST(String, Moving_leaves_the_empty_text_behind) {
  String text("moved");
  String target(std::move(text));
  EXPECT_EQ(target, "moved");
  EXPECT_TRUE(text.IsEmpty());  // NOLINT: the state after the move is what is tested
  String assigned("old");
  assigned = std::move(target);
  EXPECT_EQ(assigned, "moved");
  EXPECT_TRUE(target.IsEmpty());  // NOLINT
}

TEST(String, Assigning_a_text_to_itself_keeps_it) {
  String text("self");
  String& same = text;
  text = same;
  EXPECT_EQ(text, "self");
  text = std::move(same);
  EXPECT_EQ(text, "self");
}

TEST(String, Writing_to_a_copy_leaves_the_original_alone) {
  const String text("original");
  String appended = text;
  appended += "!";
  String erased = text;
  erased.Erase(0, 4);
  String written = text;
  written.MutableText()[0] = 'O';
  String resized = text;
  resized.Resize(2);
  EXPECT_EQ(text, "original");
  EXPECT_EQ(appended, "original!");
  EXPECT_EQ(erased, "inal");
  EXPECT_EQ(written, "Original");
  EXPECT_EQ(resized, "or");
}

TEST(String, Writing_to_a_one_byte_text_changes_no_other_text_of_that_byte) {
  String text("a");
  text.MutableText()[0] = 'b';
  EXPECT_EQ(text, "b");
  EXPECT_EQ(String("a"), "a");
  String longer("c");
  longer += "d";
  EXPECT_EQ(longer, "cd");
  EXPECT_EQ(String("c"), "c");
}

TEST(String, All_storage_is_counted_and_given_back) {
  const std::size_t before = MemoryBudget::InUse();
  {
    String text("counted");
    EXPECT_GE(MemoryBudget::InUse(), before + 8);
    text += String::Filled(1000, 'x');
    EXPECT_GE(MemoryBudget::InUse(), before + 1008);
    String copy = text;
    copy.Erase(0, 500);
    text.Clear();
  }
  EXPECT_EQ(MemoryBudget::InUse(), before);
}

struct CopyCase {
  std::int32_t start, count;
  const char* expected;
};

TEST(String, Copy_clips_the_stretch) {
  const String text("abc");
  for (const CopyCase& test : {CopyCase{0, 3, "abc"},
                               {1, 10, "bc"},
                               {1, 1, "b"},
                               {0, 0, ""},
                               {0, -1, ""},
                               {-1, 2, ""},
                               {3, 1, ""},
                               {4, 1, ""},
                               {String::kNotFound, String::kMaxLength, ""},
                               {2, String::kNotFound, "c"}}) {
    EXPECT_EQ(text.Copy(test.start, test.count), test.expected) << test.start << " " << test.count;
  }
  EXPECT_EQ(text.Copy(1), "bc");
  EXPECT_TRUE(text.Copy(0).SharesTextWith(text));
}

TEST(String, Search_finds_the_first_occurrence_at_or_behind_from) {
  const String text("abcabc");
  EXPECT_EQ(text.Search("abc"), 0);
  EXPECT_EQ(text.Search("abc", 1), 3);
  EXPECT_EQ(text.Search("abc", 4), String::kNotFound);
  EXPECT_EQ(text.Search("x"), String::kNotFound);
  EXPECT_EQ(text.Search('c', 3), 5);
  EXPECT_EQ(text.Search('c', -7), 2);
  EXPECT_EQ(text.Search('c', 6), String::kNotFound);
  EXPECT_EQ(text.Search('c', String::kNotFound), String::kNotFound);
  EXPECT_EQ(text.Search("", 6), 6);
  EXPECT_EQ(text.Search("", 7), String::kNotFound);
  EXPECT_EQ(String().Search("a"), String::kNotFound);
  EXPECT_EQ(String("a\0b", 3).Search('\0'), 1);
  EXPECT_EQ(text.Search(String("ca")), 2);
}

TEST(String, SearchBackward_finds_the_last_occurrence_that_starts_at_or_before_from) {
  const String text("abcabc");
  EXPECT_EQ(text.SearchBackward("abc"), 3);
  EXPECT_EQ(text.SearchBackward("abc", 3), 3);
  EXPECT_EQ(text.SearchBackward("abc", 2), 0);
  EXPECT_EQ(text.SearchBackward("abc", -1), 3);
  EXPECT_EQ(text.SearchBackward("abc", 100), 3);
  EXPECT_EQ(text.SearchBackward("x"), String::kNotFound);
  EXPECT_EQ(text.SearchBackward('a', 2), 0);
  EXPECT_EQ(text.SearchBackward('b', 0), String::kNotFound);
  EXPECT_EQ(String().SearchBackward("a"), String::kNotFound);
}

TEST(String, Erase_removes_the_clipped_stretch) {
  EXPECT_EQ(String("abcdef").Erase(1, 2), "adef");
  EXPECT_EQ(String("abcdef").Erase(4), "abcd");
  EXPECT_EQ(String("abcdef").Erase(4, 100), "abcd");
  EXPECT_EQ(String("abcdef").Erase(0), "");
  EXPECT_EQ(String("abcdef").Erase(6, 1), "abcdef");
  EXPECT_EQ(String("abcdef").Erase(-1, 3), "abcdef");
  EXPECT_EQ(String("abcdef").Erase(1, -3), "abcdef");
}

TEST(String, Insert_clips_the_position) {
  EXPECT_EQ(String("ad").Insert("bc", 1), "abcd");
  EXPECT_EQ(String("b").Insert("a", -5), "ab");
  EXPECT_EQ(String("a").Insert("b", 99), "ab");
  EXPECT_EQ(String().Insert("b", 0), "b");
  EXPECT_EQ(String("a").Insert("", 0), "a");
}

TEST(String, Replace_exchanges_a_stretch) {
  EXPECT_EQ(String("abc").Replace(1, 1, "XYZ"), "aXYZc");
  EXPECT_EQ(String("abc").Replace(0, 3, ""), "");
  EXPECT_EQ(String("abc").Replace(3, 5, "d"), "abcd");
  EXPECT_EQ(String("abc").Replace(9, 1, "d"), "abcd");
}

TEST(String, ReplaceFirst_changes_one_occurrence_and_tells_when_there_is_none) {
  String text("%s and %s");
  EXPECT_TRUE(text.ReplaceFirst("%s", "%s%s"));
  EXPECT_EQ(text, "%s%s and %s");
  EXPECT_TRUE(text.ReplaceFirst("%s", ""));
  EXPECT_EQ(text, "%s and %s");
  EXPECT_FALSE(text.ReplaceFirst("%c", "x"));
  EXPECT_FALSE(text.ReplaceFirst("", "x"));
  EXPECT_EQ(text, "%s and %s");
}

TEST(String, A_part_of_the_text_itself_can_be_appended_inserted_and_put_in) {
  String text("abcdefghij");
  text += text;
  EXPECT_EQ(text, "abcdefghijabcdefghij");
  text.Reserve(100);
  text.Append(text.view().substr(5, 5));
  EXPECT_EQ(text, "abcdefghijabcdefghijfghij");
  text.Insert(text.view().substr(0, 2), 4);
  EXPECT_EQ(text, "abcdabefghijabcdefghijfghij");
  text.Replace(0, 25, text.view().substr(25));
  EXPECT_EQ(text, "ijij");
  text += text.c_str();
  EXPECT_EQ(text, "ijijijij");
}

TEST(String, Appending_byte_by_byte_copies_a_number_of_bytes_in_proportion_to_the_text) {
  String text;
  int moves = 0;
  const char* place = text.c_str();
  for (int i = 0; i < 100000; ++i) {
    text += 'x';
    if (text.c_str() != place) ++moves;
    place = text.c_str();
  }
  EXPECT_EQ(text, String::Filled(100000, 'x'));
  EXPECT_LT(moves, 40);
}

TEST(String, Appending_a_text_to_the_empty_one_shares_it) {
  const String text("shared text");
  String empty;
  empty += text;
  EXPECT_TRUE(empty.SharesTextWith(text));
}

TEST(String, Reserve_keeps_the_text_and_makes_room) {
  String text("ab");
  text.Reserve(1000);
  EXPECT_EQ(text, "ab");
  const char* place = text.c_str();
  text += String::Filled(900, 'c');
  EXPECT_EQ(text.c_str(), place);
  text.Reserve(-3);
  EXPECT_EQ(text.Len(), 902);
}

TEST(String, Resize_cuts_or_fills_with_zero_bytes) {
  String text("abc");
  text.Resize(5);
  EXPECT_EQ(text.view(), std::string_view("abc\0\0", 5));
  text.Resize(1);
  EXPECT_EQ(text, "a");
  text.Resize(2);
  EXPECT_EQ(text.view(), std::string_view("a\0", 2));
  text.Resize(-1);
  EXPECT_TRUE(text.IsEmpty());
  text.Resize(0);
  EXPECT_TRUE(text.IsEmpty());
}

TEST(String, MutableText_of_the_empty_text_is_null) { EXPECT_EQ(String().MutableText(), nullptr); }

TEST(String, Plus_joins_all_kinds_of_text) {
  const String text("b");
  EXPECT_EQ("a" + text, "ab");
  EXPECT_EQ(text + "c", "bc");
  EXPECT_EQ(text + text, "bb");
  EXPECT_EQ(text + 'c', "bc");
  EXPECT_EQ(text + std::string_view("c"), "bc");
  EXPECT_EQ(std::string_view("a") + text, "ab");
  EXPECT_EQ(text + std::string("c"), "bc");
  EXPECT_EQ(std::string("a") + text, "ab");
  EXPECT_TRUE((String() + String()).IsEmpty());
}

TEST(String, Join_replaces_the_text_where_it_stands_unless_that_is_shared_or_far_too_large) {
  const std::string_view parts[] = {"abc", "", "defgh"};
  String text = String::Filled(20, 'x');
  const char* const storage = text.c_str();
  EXPECT_EQ(text.Join(parts), "abcdefgh");
  EXPECT_EQ(text.c_str(), storage);
  EXPECT_EQ(text.c_str()[8], '\0');
  const String copy = text;
  EXPECT_EQ(text.Join(std::span(parts, 1)), "abc");
  EXPECT_EQ(copy, "abcdefgh");
  String large = String::Filled(100000, 'x');
  const char* const large_storage = large.c_str();
  EXPECT_EQ(large.Join(parts), "abcdefgh");
  EXPECT_NE(large.c_str(), large_storage);
  EXPECT_EQ(large.Join(std::span<const std::string_view>()), "");
  EXPECT_TRUE(large.SharesTextWith(String()));
  EXPECT_EQ(large.Join(parts), "abcdefgh");
  String one("y");
  EXPECT_EQ(one.Join(parts), "abcdefgh");
  EXPECT_EQ(String("y"), "y");
}

TEST(String, Compares_bytes_as_unsigned_numbers_and_the_shorter_beginning_is_less) {
  const std::vector<String> ascending = {String(),       String("\0", 1), String("a\0", 2),
                                         "a\x01",        String("ab"),    String("b"),
                                         String("\x7F"), "\x80",          String("\xFF")};
  for (std::size_t i = 0; i < ascending.size(); ++i) {
    for (std::size_t j = 0; j < ascending.size(); ++j) {
      EXPECT_EQ(ascending[i] < ascending[j], i < j) << i << " " << j;
      EXPECT_EQ(ascending[i] == ascending[j], i == j) << i << " " << j;
      EXPECT_EQ(ascending[i] >= ascending[j], i >= j) << i << " " << j;
    }
  }
}

TEST(String, Compares_with_pointers_views_and_standard_strings_from_both_sides) {
  const String text("abc");
  EXPECT_TRUE(text == "abc" && "abc" == text && text != "abd" && "abd" != text);
  EXPECT_TRUE(text < "abd" && "abb" < text && text <= "abc" && "abc" >= text && text > "abb");
  EXPECT_TRUE(text == std::string_view("abc") && std::string_view("abd") > text);
  EXPECT_TRUE(text == std::string("abc") && std::string("abb") < text);
  EXPECT_FALSE(String("a\0b", 3) == "a");
  const char* none = nullptr;
  EXPECT_TRUE(String() == none && text > none);
}

TEST(String, Equal_texts_have_equal_hashes) {
  std::unordered_set<String> texts;
  texts.insert("a");
  texts.insert(String("a", 1));
  texts.insert("b");
  EXPECT_EQ(texts.size(), 2U);
}

TEST(String, A_length_beyond_the_maximum_fails_before_any_memory_is_asked_for) {
  // A stretch of that many bytes does not exist; only its length is looked at.
  String text("abcd");
  const std::string_view endless(text.c_str(), static_cast<std::size_t>(String::kMaxLength) + 1);
  EXPECT_THROW(String{endless}, std::length_error);
  EXPECT_THROW(text.Append(endless), std::length_error);
  EXPECT_THROW(text.Insert(endless, 0), std::length_error);
  const std::string_view almost(text.c_str(), static_cast<std::size_t>(String::kMaxLength) - 3);
  EXPECT_THROW(text.Append(almost), std::length_error);
  EXPECT_THROW(text.Insert(almost, 1), std::length_error);
  EXPECT_THROW(text + almost, std::length_error);
  EXPECT_THROW(text.Resize(String::kMaxLength + 1), std::length_error);
  EXPECT_THROW(text.Reserve(String::kMaxLength + 1), std::length_error);
  EXPECT_EQ(text, "abcd");
}

TEST(String, A_text_that_would_pass_the_memory_budget_fails_and_changes_nothing) {
  String text("abcd");
  const std::size_t before = MemoryBudget::InUse();
  {
    const ScopedMemoryLimit limit(1000);
    EXPECT_THROW(String::Filled(2000, 'x'), std::bad_alloc);
    EXPECT_THROW(text.Resize(2000), std::bad_alloc);
    EXPECT_THROW(text.Reserve(2000), std::bad_alloc);
    EXPECT_EQ(text, "abcd");
    EXPECT_EQ(MemoryBudget::InUse(), before);
  }
  EXPECT_EQ(String::Filled(2000, 'x').Len(), 2000);
}

TEST(String, Growing_takes_less_room_when_the_budget_has_no_more) {
  String text = String::Filled(1000, 'x');
  const ScopedMemoryLimit limit(1100);
  text += 'y';
  EXPECT_EQ(text.Len(), 1001);
}

TEST(String, Random_edits_agree_with_the_standard_string) {
  constexpr int kCount = 20000;
  std::mt19937 random(ixomep::test::RandomSeed(kCount));
  const auto below = [&random](std::size_t count) { return random() % count; };
  String text;
  std::string expected;
  for (int i = 0; i < kCount; ++i) {
    const std::string piece(below(9), static_cast<char>('a' + below(4)));
    const std::size_t at = below(expected.size() + 1);
    const std::size_t count = below(12);
    const String shared = text;
    switch (below(6)) {
      case 0:
        text += piece;
        expected += piece;
        break;
      case 1:
        text.Insert(piece, static_cast<std::int32_t>(at));
        expected.insert(at, piece);
        break;
      case 2:
        text.Erase(static_cast<std::int32_t>(at), static_cast<std::int32_t>(count));
        expected.erase(at, count);
        break;
      case 3:
        text.Replace(static_cast<std::int32_t>(at), static_cast<std::int32_t>(count), piece);
        expected.replace(at, count, piece);
        break;
      case 4:
        text.Resize(static_cast<std::int32_t>(at));
        expected.resize(at);
        break;
      default: {
        const std::size_t found = expected.find("ab", at);
        const std::int32_t position = text.Search("ab", static_cast<std::int32_t>(at));
        ASSERT_EQ(position == String::kNotFound, found == std::string::npos);
        if (found != std::string::npos) {
          ASSERT_EQ(static_cast<std::size_t>(position), found);
        }
      }
    }
    ASSERT_EQ(text, expected) << i;
    ASSERT_EQ(text.c_str()[text.Len()], '\0');
  }
}

}  // namespace
