// The names of an XML document's attributes: which were written already.
#include "ixomep/parser/xml_names.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace ixomep::test {
namespace {

std::vector<String> ShortNames() {
  std::vector<String> names;
  for (char a = 'a'; a <= 'z'; ++a) {
    names.push_back(String(a));
    for (char b = 'a'; b <= 'z'; ++b) names.push_back(String(std::string{a, b}));
  }
  return names;
}

TEST(XmlNameSet, Takes_every_name_once) {
  XmlNameSet all;
  for (const String& name : ShortNames()) {
    XmlNameSet one;
    EXPECT_TRUE(one.Insert(name));
    EXPECT_FALSE(one.Insert(name)) << name.c_str();
    EXPECT_TRUE(all.Insert(name)) << name.c_str();
  }
  for (const String& name : ShortNames()) EXPECT_FALSE(all.Insert(name)) << name.c_str();
  all.Clear();
  for (const String& name : ShortNames()) EXPECT_TRUE(all.Insert(name)) << name.c_str();
}

TEST(XmlNameSet, The_empty_name_is_one_too) {
  XmlNameSet names;
  EXPECT_TRUE(names.Insert(String()));
  EXPECT_FALSE(names.Insert(String()));
}

TEST(XmlNameSet, The_lines_of_a_name_count_as_names) {
  XmlNameSet names;
  EXPECT_TRUE(names.Insert("a[1,\n2]\n"));
  EXPECT_FALSE(names.Insert("a[1,"));
  EXPECT_FALSE(names.Insert("2]"));
  EXPECT_FALSE(names.Insert(""));
  EXPECT_TRUE(names.Insert("2"));
}

}  // namespace
}  // namespace ixomep::test
