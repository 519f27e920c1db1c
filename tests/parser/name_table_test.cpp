// The names of a text and their numbers: names of all lengths that differ in one byte, found by
// whatever way they are asked for.
#include "ixomep/parser/name_table.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace ixomep::test {
namespace {

// Names of 1 to 40 bytes, of each length one for each byte that may differ.
std::vector<std::string> AllNames() {
  std::vector<std::string> names;
  for (std::size_t size = 1; size <= 40; ++size) {
    names.emplace_back(size, 'n');
    for (std::size_t place = 0; place < size; ++place) {
      names.emplace_back(size, 'n');
      names.back()[place] = 'm';
    }
  }
  return names;
}

TEST(NameTable, Tells_names_apart_that_differ_in_one_byte) {
  const std::vector<std::string> names = AllNames();
  std::string text;
  for (const std::string& name : names) text += name + ' ';
  text += std::string(16, ' ');
  NameTable table(text);
  std::uint32_t at = 0;
  std::vector<std::uint32_t> places;
  for (const std::string& name : names) {
    const auto size = static_cast<std::uint32_t>(name.size());
    EXPECT_EQ(table.Find(std::string_view(name)), NameTable::kUnknown) << name;
    ASSERT_EQ(table.Add(at, size), places.size() + 1) << name;
    places.push_back(at);
    at += size + 1;
  }
  EXPECT_EQ(table.Count(), names.size() + 1);
  for (std::uint32_t i = 0; i < names.size(); ++i) {
    const std::string& name = names[i];
    const auto size = static_cast<std::uint32_t>(name.size());
    EXPECT_EQ(table.Find(std::string_view(name)), i + 1) << name;
    EXPECT_EQ(table.Add(places[i], size), i + 1) << name;
    EXPECT_EQ(table.View(i + 1), name);
    if (size > NameTable::kShort) continue;
    const std::uint32_t quick = table.FindShort(NameTable::ShortKey(text.data() + places[i], size));
    EXPECT_TRUE(quick == i + 1 || quick == NameTable::kNoName) << name;
  }
}

TEST(NameTable, Knows_a_text_that_it_gave) {
  const std::string text = "width height";
  NameTable table(text);
  const std::uint32_t width = table.Add(0, 5);
  const std::uint32_t height = table.Add(6, 6);
  EXPECT_EQ(table.KnownText(width), nullptr);
  const String name = table.Text(width);
  EXPECT_EQ(name, "width");
  EXPECT_TRUE(table.KnownText(width)->SharesTextWith(name));
  EXPECT_EQ(table.Find(name), width);
  EXPECT_EQ(table.Text(height), "height");
  EXPECT_EQ(table.Find(name), width);
  EXPECT_EQ(table.Find(String("height")), height);
  EXPECT_EQ(table.Find(String("depth")), NameTable::kUnknown);
  EXPECT_EQ(table.Find(String()), NameTable::kNoName);
  EXPECT_EQ(table.Text(NameTable::kNoName), "");
}

}  // namespace
}  // namespace ixomep::test
