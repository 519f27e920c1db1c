// Every allocation of compiling and evaluating an expression fails, one after the other: over the
// examples of the manual, which call every function, and the cases of the language, which use every
// operator. The outcome is the usual one or code 37 or 38, nothing is lost, and the engine works
// afterwards.
#include <gtest/gtest.h>

#include <filesystem>
#include <iostream>
#include <string>

#include "ixomep/host/memory_budget.h"
#include "tests/faults/failing_new.h"
#include "tests/support/eval.h"
#include "tests/support/functions_manual.h"
#include "tests/support/language_cases.h"
#include "tests/support/test_host.h"

namespace ixomep::test {
namespace {

std::size_t BytesInUse() {
  EmptyFreeLists();
  return MemoryBudget::InUse();
}

// Compiles and evaluates `times` times with the n-th allocation failing. What EvalWith of eval.h
// checks, but nothing that this program allocates itself is counted.
struct Attempt {
  Attempt(const String& text, IxoMepValueSet& scope, bool strict, int times, int n, FailMode mode) {
    IxoMepExpressionParser parser;
    {
      const FailingNew failing(n, mode);
      outcome.code = parser.SetExpression(text, outcome.text);
      for (int i = 0; i < times && outcome.code == IMEPERR_NONE; ++i) {
        outcome.value.reset();
        IxoMepValue* slot = nullptr;
        outcome.code = parser.Evaluate(&scope, slot, outcome.text, strict, false);
        outcome.value.reset(slot);
      }
    }
    has_failed = FailingNew::HasFailed();
  }

  Outcome outcome;
  bool has_failed;
};

bool IsMemoryCode(int code) { return code == IMEPERR_TOO_LONG || code == IMEPERR_TOO_DEEP; }

void CheckProbe(const std::string& where) {
  EXPECT_EQ(Shown("f := lambda(x, {x, STR x + \"!\"}), f(6 * 7)[1]"), "string \"42!\"") << where;
}

// Catching one's failures is what try does; a text of it may go on with any outcome.
bool MayCatch(const std::string& text) { return text.find("try(") != std::string::npos; }

// One expression, evaluated after `before` in the same scope; gives the number of failures.
int Sweep(const std::vector<std::string>& before, const std::string& text, bool strict, int times) {
  const auto prepare = [&](IxoMepValueSet& scope) {
    for (const std::string& line : before) (void)Eval(line, &scope);
  };
  const std::string where = text + (strict ? " (strict)" : "");
  std::string expected;
  {
    IxoMepValueSet scope;
    prepare(scope);
    expected =
        Attempt(String(text), scope, strict, times, 0, FailMode::Once).outcome.ShownWithText();
  }
  const std::size_t bytes = BytesInUse();
  const int failures = SweepFailures([&](int n, FailMode mode) {
    IxoMepValueSet scope;
    prepare(scope);
    EmptyFreeLists();
    const Attempt attempt(String(text), scope, strict, times, n, mode);
    const std::string shown = attempt.outcome.ShownWithText();
    const bool good = shown == expected ||
                      (attempt.has_failed && IsMemoryCode(attempt.outcome.code)) ||
                      (attempt.has_failed && MayCatch(text));
    EXPECT_TRUE(good) << where << " gives " << shown << " when allocation " << n
                      << (mode == FailMode::Once ? " fails" : " and all behind it fail")
                      << ", else " << expected;
    EXPECT_TRUE(attempt.outcome.code == IMEPERR_NONE || attempt.outcome.value == nullptr) << where;
    return attempt.has_failed && good;
  });
  EXPECT_EQ(BytesInUse(), bytes) << where << " loses memory";
  CheckProbe(where);
  return failures;
}

class Faults : public testing::Test {
 protected:
  void SetUp() override {
    host_.tick_count = 1000;
    host_.random = 5;
    CheckProbe("before");
    (void)Shown("1 / 0");  // loads the texts of the errors
  }
  TestHost host_;
};

TEST_F(Faults, Every_example_of_the_functions_survives_every_failing_allocation) {
  int failures = 0;
  for (const ManualEntry& entry : ReadManual()) {
    for (const auto& block : entry.blocks) {
      std::vector<std::string> before;
      for (const ManualExample& example : block) {
        failures += Sweep(before, example.expression, false, 1);
        before.push_back(example.expression);
      }
    }
  }
  std::cout << failures << " failed allocations\n";
  EXPECT_GT(failures, AtLeast(1500));
}

class LanguageFaults : public Faults, public testing::WithParamInterface<std::string> {};

// Evaluated three times, so that side programs run too.
TEST_P(LanguageFaults, Every_case_survives_every_failing_allocation) {
  int failures = 0;
  for (const LanguageCase& row : ReadLanguageCases(GetParam())) {
    failures += Sweep({}, row.expression, row.mode == Mode::Strict, 3);
  }
  std::cout << failures << " failed allocations\n";
  EXPECT_GT(failures, AtLeast(500));
}

std::string NameOf(const testing::TestParamInfo<std::string>& info) {
  return std::filesystem::path(info.param).stem().string();
}

INSTANTIATE_TEST_SUITE_P(Files, LanguageFaults, testing::ValuesIn(FindCaseFiles("tests/language")),
                         NameOf);

}  // namespace
}  // namespace ixomep::test
