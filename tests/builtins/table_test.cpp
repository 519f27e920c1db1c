// The table of built-in functions: its names, their order and handlers, its hash, and the two
// ways to find a function in it.
#include "ixomep/builtins/table.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "ixomep/expr/builtin_table.h"
#include "ixomep/expr/node_ptr.h"
#include "ixomep/values/string_address_map.h"
#include "tests/support/trees.h"

namespace ixomep {
namespace {

constexpr std::string_view kNames[] = {
    "cond",         "while",     "set",       "rgbval",
    "rgb2hsv",      "hsvval",    "hsv2rgb",   "for",
    "fortok",       "try",       "{",         "{:",
    "areplace",     "aappend",   "ainsert",   "aerase",
    "asinsert",     "search",    "bsearch",   "copy",
    "replace",      "replall",   "lower",     "upper",
    "ilower",       "iupper",    "mstr",      "base64encode",
    "base64decode", "toutf8",    "fromutf8",  "tooem",
    "fromoem",      "tokcnt",    "token",     "tokindex",
    "tokcat",       "tokunion",  "tokisect",  "tokdiff",
    "tokstr",       "valtokstr", "strarray",  "valarray",
    "uistr",        "uival",     "pow",       "min",
    "max",          "regex",     "byte",      "error",
    "type",         "valofvar",  "curvars",   "internal",
    "array",        "map",       "merase",    "random",
    "getTickCount", "abs",       "eval",      "parse",
    "lambda",       "object",    "encodeuri", "tourlquerystring",
};

constexpr std::string_view kMathNames[] = {
    "acos", "asin", "atan", "cos",  "cosh", "exp",  "log",   "log10",
    "sin",  "sinh", "tan",  "tanh", "sqrt", "ceil", "floor", "round",
};

using Node = IxoMepExprNode;

// A given name of a handler that is not simply "_" and the name in the language.
struct GivenName {
  std::string_view name;
  Node::Handler Node::*handler;
};
constexpr GivenName kGivenNames[] = {
    {"while", &Node::_mepwhile}, {"for", &Node::_mepfor},
    {"try", &Node::_meptry},     {"{", &Node::_curly},
    {"{:", &Node::_curlycolon},  {"cond", &Node::_cond},
    {"tokcnt", &Node::_tokcnt},  {"getTickCount", &Node::_getTickCount},
};

TEST(BuiltinTable, Has_the_68_names_in_their_order) {
  std::vector<std::string_view> names;
  for (const BuiltinRow& row : BuiltinRows()) names.push_back(row.name);
  EXPECT_EQ(names, std::vector<std::string_view>(std::begin(kNames), std::end(kNames)));
  EXPECT_EQ(names.size(), 68u);
}

TEST(BuiltinTable, No_two_names_share_a_handler_or_a_body) {
  std::set<BuiltinFunction> bodies;
  for (const BuiltinRow& row : BuiltinRows()) {
    EXPECT_TRUE(bodies.insert(row.body).second) << row.name;
    for (const BuiltinRow& other : BuiltinRows()) {
      EXPECT_EQ(row.handler == other.handler, &row == &other) << row.name << " " << other.name;
    }
  }
}

TEST(BuiltinTable, The_first_node_fills_the_map_of_handlers) {
  const NodePtr node = test::Name("anything");
  const auto& map = IxoMepExprNode::aFunctionCallMap;
  EXPECT_EQ(map.size(), 68u);
  for (const BuiltinRow& row : BuiltinRows()) {
    const auto found = map.find(row.name);
    ASSERT_NE(found, map.end()) << row.name;
    EXPECT_TRUE(found->second == row.handler) << row.name;
    EXPECT_EQ(found->first, Intern(row.name)) << row.name;
  }
  for (const GivenName& given : kGivenNames) {
    EXPECT_TRUE(map.find(given.name.data())->second == given.handler) << given.name;
  }
}

TEST(BuiltinTable, The_map_compares_texts_case_sensitively) {
  const NodePtr node = test::Name("anything");
  const auto& map = IxoMepExprNode::aFunctionCallMap;
  const std::string copied_name = "getTickCount";
  EXPECT_EQ(map.count(copied_name.c_str()), 1u);
  EXPECT_EQ(map.count("gettickcount"), 0u);
  EXPECT_EQ(map.count("Cond"), 0u);
  EXPECT_EQ(map.count("sin"), 0u);
  EXPECT_EQ(map.count(""), 0u);
  EXPECT_EQ(map.count(nullptr), 0u);
}

TEST(BuiltinTable, The_hash_multiplies_by_five_and_adds_signed_bytes_in_32_bits) {
  EXPECT_EQ(ixo_hash(""), 0u);
  EXPECT_EQ(ixo_hash("a"), 97u);
  EXPECT_EQ(ixo_hash("ab"), 97u * 5 + 98);
  EXPECT_EQ(ixo_hash("\xff"), 4294967295u);
  EXPECT_EQ(ixo_hash("a\x80"), 97u * 5 - 128);
  std::uint32_t expected = 0;
  for (const char byte : std::string("tourlquerystring")) {
    expected = expected * 5 + static_cast<std::uint32_t>(byte);
  }
  EXPECT_EQ(ixo_hash("tourlquerystring"), expected);
  EXPECT_EQ(FunctionNameHash()("ab"), 97u * 5 + 98);
}

TEST(BuiltinTable, Every_name_and_every_mathematical_name_is_found_by_its_interned_address) {
  for (const std::string_view name : kNames) EXPECT_TRUE(IsBuiltinName(Intern(name))) << name;
  for (const std::string_view name : kMathNames) EXPECT_TRUE(IsBuiltinName(Intern(name))) << name;
  std::set<BuiltinBody> bodies;
  for (const std::string_view name : kNames) bodies.insert(FindBuiltin(Intern(name)));
  for (const std::string_view name : kMathNames) bodies.insert(FindBuiltin(Intern(name)));
  EXPECT_EQ(bodies.size(), 84u);
}

TEST(BuiltinTable, Other_names_and_addresses_that_were_never_interned_are_not_found) {
  EXPECT_EQ(FindBuiltin(Intern("Cond")), nullptr);
  EXPECT_EQ(FindBuiltin(Intern("curlineno")), nullptr);
  EXPECT_EQ(FindBuiltin(nullptr), nullptr);
  const std::string own = "cond";
  EXPECT_EQ(FindBuiltin(own.c_str()), nullptr);
  // Only compared, never read: an address that points to nothing.
  EXPECT_EQ(FindBuiltin(reinterpret_cast<const char*>(std::uintptr_t{8})), nullptr);
}

TEST(BuiltinTable, A_null_name_is_another_name_than_every_text_and_the_same_as_itself) {
  EXPECT_FALSE(FunctionNameEqual()(nullptr, "cond"));
  EXPECT_FALSE(FunctionNameEqual()("cond", nullptr));
  EXPECT_TRUE(FunctionNameEqual()(nullptr, nullptr));
}

}  // namespace
}  // namespace ixomep
