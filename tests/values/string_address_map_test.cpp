// Interning: one address for each text, for the life of the process.
#include "ixomep/values/string_address_map.h"

#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <string>
#include <vector>

namespace ixomep::test {
namespace {

using Names = IxoMepStringAddressMap;

TEST(StringAddressMap, The_empty_name_has_no_address) {
  EXPECT_EQ(Names::GetAddress(""), nullptr);
  EXPECT_EQ(Intern(""), nullptr);
}

struct Constant {
  const char* address;
  const char* text;
};

TEST(StringAddressMap, Each_constant_is_the_address_of_its_text) {
  const Constant rows[] = {
      {Names::IMEPSAM_COPY, "copy"},     {Names::IMEPSAM_EMPTY, "empty"},
      {Names::IMEPSAM_ERASE, "erase"},   {Names::IMEPSAM_ERASE_ALL_FROM, "eraseAllFrom"},
      {Names::IMEPSAM_INSERT, "insert"}, {Names::IMEPSAM_INSERT_ALL_FROM, "insertAllFrom"},
      {Names::IMEPSAM_KEY, "key"},       {Names::IMEPSAM_LAST_INDEX_OF, "lastIndexOf"},
      {Names::IMEPSAM_LENGTH, "length"}, {Names::IMEPSAM_SORT, "sort"},
      {Names::IMEPSAM_TRIM, "trim"},     {Names::IMEPSAM_WITHOUT, "without"},
  };
  for (const Constant& row : rows) {
    EXPECT_STREQ(row.address, row.text);
    EXPECT_EQ(Names::GetAddress(row.text), row.address) << row.text;
    EXPECT_EQ(Intern(row.text), row.address) << row.text;
  }
}

TEST(StringAddressMap, The_same_text_gives_the_same_address_again) {
  const char* const first = Names::GetAddress("some name");
  EXPECT_STREQ(first, "some name");
  std::vector<const char*> others;
  for (int i = 0; i < 10000; ++i) others.push_back(Intern("name" + std::to_string(i)));
  EXPECT_EQ(Names::GetAddress(String("some ") + "name"), first);
  for (int i = 0; i < 10000; ++i) {
    EXPECT_EQ(Intern("name" + std::to_string(i)), others[static_cast<std::size_t>(i)]);
  }
}

TEST(StringAddressMap, Half_a_million_names_keep_their_addresses_while_the_table_grows) {
  Names map;
  std::vector<const char*> addresses;
  const auto name_of = [](int i) {  // short and long ones
    return (i % 3 == 0 ? "a_name_longer_than_a_word_" : "n") + std::to_string(i);
  };
  for (int i = 0; i < 500000; ++i) addresses.push_back(map.Intern(name_of(i)));
  for (int i = 0; i < 500000; ++i) {
    const char* const address = addresses[static_cast<std::size_t>(i)];
    ASSERT_STREQ(address, name_of(i).c_str());
    ASSERT_EQ(map.Intern(name_of(i)), address);
  }
}

TEST(StringAddressMap, Names_of_every_length_differ_in_every_byte) {
  Names map;
  for (std::size_t length = 1; length < 40; ++length) {
    const std::string base(length, 'a');
    const char* const address = map.Intern(base);
    EXPECT_EQ(std::string(address), base);
    for (std::size_t i = 0; i < length; ++i) {
      std::string other = base;
      other[i] = 'b';
      const char* const changed = map.Intern(other);
      EXPECT_NE(changed, address) << length << " " << i;
      EXPECT_EQ(std::string(changed), other);
      EXPECT_EQ(map.Intern(other), changed);
    }
    EXPECT_EQ(map.Intern(base), address);
  }
}

// Names of a few words meet others with the same last bytes wherever they are looked for.
TEST(StringAddressMap, Thousands_of_names_that_end_alike_differ) {
  for (const std::size_t length :
       {std::size_t{8}, std::size_t{9}, std::size_t{12}, std::size_t{17}}) {
    std::set<const char*> addresses;
    for (int i = 10000; i < 20000; ++i) {
      const std::string name = std::to_string(i) + std::string(length - 5, 'e');
      const char* const address = Intern(name);
      EXPECT_EQ(address, name);
      addresses.insert(address);
    }
    EXPECT_EQ(addresses.size(), 10000u) << length;
  }
}

TEST(StringAddressMap, Announcing_names_changes_nothing) {
  Names map;
  EXPECT_FALSE(map.IsLarge());
  map.Announce("name");
  for (int i = 0; i < 100000; ++i) {
    const std::string name = "name" + std::to_string(i);
    map.Announce(name);
    ASSERT_EQ(map.Intern(name), name);
  }
  EXPECT_TRUE(map.IsLarge());
}

TEST(StringAddressMap, A_copy_has_all_names_at_addresses_of_its_own) {
  Names map;
  for (int i = 0; i < 3000; ++i) map.Intern("name number " + std::to_string(i));
  Names copy(map);
  for (int i = 0; i < 3000; ++i) {
    const std::string name = "name number " + std::to_string(i);
    ASSERT_EQ(copy.Intern(name), name);
    ASSERT_NE(copy.Intern(name), map.Intern(name));
  }
}

TEST(StringAddressMap, Very_long_names_have_memory_of_their_own) {
  Names map;
  const std::string long_name(1000000, 'n');
  const char* const address = map.Intern(long_name);
  EXPECT_EQ(map.Intern("short"), map.Intern("short"));
  EXPECT_EQ(map.Intern(long_name), address);
  EXPECT_EQ(std::string(address), long_name);
}

TEST(StringAddressMap, Letter_case_counts) {
  EXPECT_NE(Names::GetAddress("Length"), Names::IMEPSAM_LENGTH);
  EXPECT_NE(Names::GetAddress("Name"), Names::GetAddress("name"));
}

TEST(StringAddressMap, A_prefix_and_a_zero_byte_make_other_names) {
  EXPECT_NE(Intern("abc"), Intern("ab"));
  const String with_zero("a\0b", 3);
  EXPECT_NE(Names::GetAddress(with_zero), Names::GetAddress("a"));
  EXPECT_EQ(std::memcmp(Names::GetAddress(with_zero), "a\0b\0", 4), 0);
}

TEST(StringAddressMap, The_address_is_a_copy_of_its_own) {
  String name("volatile");
  const char* const address = Names::GetAddress(name);
  EXPECT_NE(address, name.c_str());
  name += "!";
  EXPECT_STREQ(address, "volatile");
}

TEST(StringAddressMap, A_copy_holds_the_same_texts_at_addresses_of_its_own) {
  Names map;
  const char* const address = map.Intern("x");
  Names copy(map);
  EXPECT_STREQ(copy.Intern("x"), "x");
  EXPECT_NE(copy.Intern("x"), address);
  Names assigned;
  assigned.Intern("gone");
  assigned = map;
  assigned = *&assigned;
  EXPECT_STREQ(assigned.Intern("x"), "x");
  EXPECT_EQ(map.Intern("x"), address);
}

}  // namespace
}  // namespace ixomep::test
