// Names that programs tell apart by a few bits before they look: a variable that seems to be an
// argument is none, and an argument is found, whatever the addresses of names are.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ixomep/expr/program.h"
#include "ixomep/values/string_address_map.h"
#include "tests/support/eval.h"

namespace ixomep::test {
namespace {

std::string NameOf(int number) { return "name" + std::to_string(number) + "x"; }

NameRef RefOf(const std::string& name) { return NameRef(Intern(name.c_str())); }

// In a loop, which has a program at once: the arguments of its calls wait for their scopes.
std::string Often(const std::string& expression) {
  return "for(round, 1, 4){" + expression + "}{" + expression + "}";
}

TEST(ProgramNames, A_variable_whose_bits_are_those_of_arguments_is_found_where_it_is) {
  const std::vector<std::string> parameters = {NameOf(0), NameOf(1), NameOf(2), NameOf(3)};
  std::uint64_t mask = 0;
  for (const std::string& name : parameters) mask |= RefOf(name).bits;
  int confused = 0;
  for (int i = 4; i < 20000 && confused < 8; ++i) {
    const std::string name = NameOf(i);
    if (!RefOf(name).MayBeAmong(mask)) continue;
    ++confused;
    IxoMepValueSet scope;
    // g sees the arguments of f and the variable; nothing was there that could be captured.
    Eval("f := lambda(" + parameters[0] + ", " + parameters[1] + ", " + parameters[2] + ", " +
             parameters[3] + ", g())",
         &scope);
    Eval("g := lambda(STR " + name + " + STR " + parameters[2] + ")", &scope);
    Eval(name + " := 7", &scope);
    EXPECT_EQ(Shown(Often("f(1, 2, 3, 4)"), &scope), "string \"73\"") << name;
    EXPECT_EQ(Shown(Often("f(\"a\", {}, 5, 0)"), &scope), "string \"75\"") << name;
  }
  EXPECT_EQ(confused, 8);
}

TEST(ProgramNames, An_argument_hides_the_variable_of_its_name_for_all_names) {
  for (int i = 0; i < 300; ++i) {
    const std::string name = NameOf(i);
    IxoMepValueSet scope;
    Eval("f := lambda(" + name + ", g()), g := lambda(STR " + name + ")", &scope);
    Eval(name + " := 7", &scope);
    ASSERT_EQ(Shown(Often("f(1) + g() + f(\"t\") + g()"), &scope), "string \"17t7\"") << name;
  }
}

}  // namespace
}  // namespace ixomep::test
