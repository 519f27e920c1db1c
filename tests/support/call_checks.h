// What the tests of the built-in functions share: texts evaluated in a scope of variables, with
// results that read like the manual, and the check of every argument count and type of a function
// against one line of a table.
#pragma once

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "ixomep/expr/value_set.h"
#include "ixomep/values/value.h"

namespace ixomep::test {

// Evaluates expression texts with variables of its own.
class Session {
 public:
  // The type and the value as the language writes it, such as "integer 5" or "string \"a\"";
  // "no result"; or "error 21: " and the text.
  std::string Eval(std::string_view text, bool strict = false);
  void Set(const char* name, const IxoMepValue& value);
  IxoMepValueSet& scope() { return scope_; }

 private:
  IxoMepValueSet scope_;
};

// An expression and what Session::Eval has to give for it.
struct EvalCase {
  std::string text;
  std::string result;
};
void PrintTo(const EvalCase& test_case, std::ostream* out);
void CheckAll(Session& session, const std::vector<EvalCase>& cases);

// A function and the ways to call it, one letter an argument: S string, I integer, R real,
// N number (integer, real, reference to a number), A array, M map, X any.
struct CallTypes {
  const char* name;
  std::vector<std::string> forms;
};
// Every count up to one more than the longest form: 23 unless it is accepted, whatever the
// arguments. Every position with every type: 21 with its text unless it is accepted. Accepted
// calls succeed, with the no-assignment flag as without. An argument's failure comes before a
// wrong type.
void CheckCountsAndTypes(const CallTypes& function);

}  // namespace ixomep::test
