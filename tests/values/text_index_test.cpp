// The hash beside a map's order: what is found by it is what the order would find, through all
// changes of the map.
#include "ixomep/values/text_index.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <map>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "ixomep/host/memory_budget.h"
#include "ixomep/values/value_rep.h"
#include "tests/support/test_host.h"
#include "tests/values/samples.h"

namespace ixomep::test {
namespace {

IxoMepValue Text(const std::string& text) { return IxoMepValue(String(text)); }

void Put(IxoMepValue& map, const std::string& key, int number) {
  *ValueAccess::OwnEntry(map, Text(key), true) = number;
}

// Enough lookups to make the hash worth its building.
void AskOften(const IxoMepValue& map) {
  for (std::size_t i = 0; i < ValueAccess::Count(map) + 10; ++i) {
    ValueAccess::FindEntry(map, Text("absent"));
  }
}

std::string RandomKey(std::mt19937& random) {
  std::string key(random() % 20, 'k');
  for (char& byte : key) byte = static_cast<char>('a' + random() % 3);
  return key;
}

TEST(TextIndex, Finds_what_the_order_finds_through_all_changes) {
  std::mt19937 random(11);
  for (int round = 0; round < 30; ++round) {
    IxoMepValue map(IxoMepValueType::Map);
    std::map<std::string, int> expected;
    for (int step = 0; step < 600; ++step) {
      const std::string key = RandomKey(random);
      switch (random() % 8) {
        case 0:
          Put(map, key, step);
          expected[key] = step;
          break;
        case 1:
          EXPECT_EQ(ValueAccess::EraseKey(map, Text(key)), expected.erase(key) != 0);
          break;
        default: {
          const IxoMepValue* const found = ValueAccess::FindEntry(map, Text(key));
          const auto known = expected.find(key);
          ASSERT_EQ(found != nullptr, known != expected.end()) << key;
          if (found != nullptr) {
            ASSERT_EQ(found->GetInt(), known->second) << key;
          }
        }
      }
    }
  }
}

TEST(TextIndex, Leaves_other_keys_to_the_order) {
  IxoMepValue map(IxoMepValueType::Map);
  for (int i = 0; i < 20; ++i) {
    Put(map, "key" + std::to_string(i), i);
    *ValueAccess::OwnEntry(map, IxoMepValue(i), true) = -i;
  }
  AskOften(map);
  for (int i = 0; i < 20; ++i) {
    EXPECT_EQ(ValueAccess::FindEntry(map, Text("key" + std::to_string(i)))->GetInt(), i);
    EXPECT_EQ(ValueAccess::FindEntry(map, IxoMepValue(i))->GetInt(), -i);
  }
  EXPECT_EQ(ValueAccess::FindEntry(map, Text("7")), nullptr);
}

TEST(TextIndex, Sees_a_value_that_was_replaced) {
  IxoMepValue map(IxoMepValueType::Map);
  for (int i = 0; i < 50; ++i) Put(map, "key" + std::to_string(i), i);
  AskOften(map);
  map.MoveValue("key7", new IxoMepValue("other"));
  EXPECT_EQ(TextOf(*ValueAccess::FindEntry(map, Text("key7"))), "\"other\"");
}

TEST(TextIndex, Copy_that_is_changed_has_entries_of_its_own) {
  IxoMepValue map(IxoMepValueType::Map);
  for (int i = 0; i < 50; ++i) Put(map, "key" + std::to_string(i), i);
  AskOften(map);
  IxoMepValue copy = map;
  Put(copy, "key7", 1000);
  AskOften(copy);
  EXPECT_EQ(ValueAccess::FindEntry(copy, Text("key7"))->GetInt(), 1000);
  EXPECT_EQ(ValueAccess::FindEntry(map, Text("key7"))->GetInt(), 7);
}

TEST(TextIndex, Gives_its_memory_back) {
  const std::size_t before = MemoryBudget::InUse();
  {
    IxoMepValue map(IxoMepValueType::Map);
    for (int i = 0; i < 50; ++i) Put(map, "key" + std::to_string(i), i);
    const std::size_t without = MemoryBudget::InUse();
    AskOften(map);
    EXPECT_GE(MemoryBudget::InUse(), without + 50 * 16);
    ValueAccess::EraseKey(map, Text("key7"));
    const std::size_t dropped = MemoryBudget::InUse();
    EXPECT_LT(dropped, without + 50 * 16);
    AskOften(map);
    EXPECT_GE(MemoryBudget::InUse(), dropped + 50 * 16);
  }
  // Freed blocks of values stay with the library, those of the index do not.
  EXPECT_LT(MemoryBudget::InUse(), before + 50 * 200);
}

TEST(TextIndex, Reads_the_bytes_of_a_key_and_none_beside_it) {
  for (std::size_t length = 1; length <= 26; ++length) {
    const std::string key(length, 'k');
    IxoMepValue map(IxoMepValueType::Map);
    Put(map, key, 1);
    for (int i = 0; i < 20; ++i) Put(map, "other" + std::to_string(i), 0);
    TextIndex index;
    while (!index.IsReady(ValueAccess::Entries(map))) {
    }
    for (const char beside : {'k', 'x'}) {
      const std::string text = std::string(9, beside) + key + std::string(9, beside);
      EXPECT_NE(index.Find(std::string_view(text).substr(9, length)), nullptr) << length;
      EXPECT_EQ(index.Find(std::string_view(text).substr(9, length - 1)), nullptr) << length;
    }
    for (std::size_t at = 0; at < length; ++at) {
      std::string different = key;
      different[at] = 'x';
      EXPECT_EQ(index.Find(different), nullptr) << different;
    }
  }
}

// However the keys were chosen: an absent one is known to be absent after a few steps.
TEST(TextIndex, Misses_cost_the_same_in_a_crowded_map) {
  IxoMepValue map(IxoMepValueType::Map);
  for (int i = 0; i < 30000; ++i) Put(map, std::to_string(i), i);
  AskOften(map);
  for (int i = 0; i < 30000; ++i) {
    ASSERT_EQ(ValueAccess::FindEntry(map, Text("x" + std::to_string(i))), nullptr);
    ASSERT_EQ(ValueAccess::FindEntry(map, Text(std::to_string(i)))->GetInt(), i);
  }
}

// A text of eight bytes that the hash sends to that slot of a table of up to 65536: the steps of
// the hash (values/text_index.cpp), taken back.
std::string KeyOfSlot(std::uint64_t slot, std::uint64_t variant) {
  constexpr std::uint64_t kFactor = 0x9E3779B97F4A7C15u;
  std::uint64_t inverse = kFactor;  // modulo 2^64, by Newton's iteration
  for (int i = 0; i < 6; ++i) inverse *= 2 - kFactor * inverse;
  const std::uint64_t hash = slot + (variant << 48);
  const std::uint64_t word = (hash * inverse) ^ std::rotl(8 * kFactor, 23);
  std::string key(sizeof word, '\0');
  std::memcpy(key.data(), &word, sizeof word);
  return key;
}

// The shortest of a few runs of lookups of absent keys, in nanoseconds.
double TimeOfMisses(const IxoMepValue& map, std::uint64_t slot) {
  std::vector<IxoMepValue> keys;
  for (std::uint64_t i = 1; i <= 1000; ++i) keys.push_back(Text(KeyOfSlot(slot, i)));
  double shortest = 1e18;
  for (int run = 0; run < 7; ++run) {
    const auto begin = std::chrono::steady_clock::now();
    const auto found = std::count_if(keys.begin(), keys.end(), [&](const IxoMepValue& key) {
      return ValueAccess::FindEntry(map, key) != nullptr;
    });
    const std::chrono::duration<double, std::nano> time = std::chrono::steady_clock::now() - begin;
    EXPECT_EQ(found, 0);
    shortest = std::min(shortest, time.count());
  }
  return shortest;
}

// Each key alone in its slot, and all slots beside each other: nothing free stands behind the first
// for the half of the table.
TEST(TextIndex, A_miss_ends_after_a_few_slots_where_none_of_them_is_free) {
  constexpr std::uint64_t kKeys = 16384;
  IxoMepValue map(IxoMepValueType::Map);
  for (std::uint64_t slot = 0; slot < kKeys; ++slot) Put(map, KeyOfSlot(slot, 0), 1);
  AskOften(map);
  const double in_a_gap = TimeOfMisses(map, kKeys * 3 / 2);
  const double in_the_crowd = TimeOfMisses(map, 0);
  EXPECT_LT(in_the_crowd, 40 * in_a_gap);
}

TEST(TextIndex, Without_memory_the_order_answers) {
  IxoMepValue map(IxoMepValueType::Map);
  for (int i = 0; i < 50; ++i) Put(map, "key" + std::to_string(i), i);
  const IxoMepValue key = Text("key7");
  const std::size_t limit = MemoryBudget::Limit();
  MemoryBudget::SetLimit(1);
  for (int i = 0; i < 100; ++i) EXPECT_EQ(ValueAccess::FindEntry(map, key)->GetInt(), 7);
  MemoryBudget::SetLimit(limit);
}

}  // namespace
}  // namespace ixomep::test
