// Evaluates texts and checks argument counts and types; see call_checks.h.
#include "tests/support/call_checks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>

#include "ixomep/expr/expression_parser.h"
#include "ixomep/values/error.h"
#include "ixomep/values/raise.h"
#include "ixomep/values/slot.h"

namespace ixomep::test {

namespace {

// A variable of each type, the types' words in error texts, and the letters of the arguments that
// accept it. The string is a text that every function can digest, the integers are small.
struct Sample {
  const char* variable;
  const char* type;
  std::string_view accepted_by;
};
constexpr Sample kSamples[] = {
    {"of_undefined", "undefined", "X"},
    {"of_string", "string", "SX"},
    {"of_integer", "integer", "INX"},
    {"of_real", "real", "RNX"},
    {"of_measure", "measure", "X"},
    {"of_time", "time", "X"},
    {"of_expression", "expression", "X"},
    {"of_array", "array", "AX"},
    {"of_map", "map", "MX"},
    {"of_integer_reference", "reference", "NX"},
    {"of_real_reference", "reference", "NX"},
    {"of_string_reference", "reference", "X"},
    {"of_map_reference", "reference", "X"},
    {"of_lambda", "lambda", "X"},
    {"of_object", "object", "X"},
};

void SetSamples(Session& session) {
  const auto set = [&](const char* name, const char* text) {
    session.Eval(std::string("set(") + name + ", " + text + ")");
  };
  session.Set("of_undefined", IxoMepValue());
  set("of_string", "\"abcd\"");
  set("of_integer", "1");
  set("of_real", "0.5");
  set("of_measure", "1cm");
  set("of_time", "1s");
  set("of_expression", "parse(\"1\")");
  set("of_array", "{1, \"a\"}");
  set("of_map", "{\"k\": 1}");
  set("of_lambda", "lambda(x, x)");
  set("of_object", "object()");
  const auto refer = [&](const char* name, const char* target) {
    session.Set(name, IxoMepValue(session.scope().OldGetLValue(String(target))));
  };
  refer("of_integer_reference", "of_integer");
  refer("of_real_reference", "of_real");
  refer("of_string_reference", "of_string");
  refer("of_map_reference", "of_map");
}

bool Accepts(char letter, const Sample& sample) {
  return sample.accepted_by.find(letter) != std::string_view::npos;
}

const Sample& FirstAccepted(char letter) {
  return *std::find_if(std::begin(kSamples), std::end(kSamples),
                       [&](const Sample& sample) { return Accepts(letter, sample); });
}

std::string Joined(const std::vector<std::string>& parts) {
  std::string text;
  for (const std::string& part : parts) text += (text.empty() ? "" : ", ") + part;
  return text;
}

// The failure whose text shows that call.
std::string FailureShowing(IxoMepErrorEnum code, const std::string& call) {
  String text = IxoMepError::GetErrorText(code);
  FillPlaceholder(text, "%func", call);
  return "error " + std::to_string(code) + ": " + std::string(text.view());
}

void CheckCount(Session& session, const std::string& name, std::size_t count) {
  const std::string wrong = FailureShowing(IMEPERR_WRONG_ARGUMENT_COUNT, name + "()");
  for (const char* argument : {"of_string", "error(\"evaluated\")"}) {
    const std::string call = name + "(" + Joined(std::vector<std::string>(count, argument)) + ")";
    EXPECT_EQ(session.Eval(call), wrong) << call;
  }
}

// One form with one argument replaced by a value of each type.
void CheckPosition(Session& session, const std::string& name, const std::string& form,
                   std::size_t position) {
  for (const Sample& sample : kSamples) {
    std::vector<std::string> arguments;
    std::vector<std::string> types;
    for (std::size_t i = 0; i < form.size(); ++i) {
      const Sample& chosen = i == position ? sample : FirstAccepted(form[i]);
      arguments.push_back(chosen.variable);
      types.push_back(chosen.type);
    }
    const std::string call = name + "(" + Joined(arguments) + ")";
    const std::string wrong = FailureShowing(IMEPERR_WRONG_TYPE, name + "(" + Joined(types) + ")");
    const std::string result = session.Eval(call);
    const std::string strict_result = session.Eval(call, /*strict=*/true);
    if (Accepts(form[position], sample)) {
      EXPECT_FALSE(result.starts_with("error")) << call << " gives " << result;
      EXPECT_EQ(strict_result, result) << call;
    } else {
      EXPECT_EQ(result, wrong) << call;
      EXPECT_EQ(strict_result, wrong) << call;
    }
  }
}

// All arguments are evaluated before the first type is looked at, and in their order.
void CheckOrder(Session& session, const std::string& name, const std::string& form) {
  std::vector<std::string> arguments(form.size(), "of_undefined");
  arguments.back() = "error(\"last\")";
  EXPECT_EQ(session.Eval(name + "(" + Joined(arguments) + ")"), "error 32: last") << name;
  arguments.front() = "error(\"first\")";
  EXPECT_EQ(session.Eval(name + "(" + Joined(arguments) + ")"), "error 32: first") << name;
}

}  // namespace

std::string Session::Eval(std::string_view text, bool strict) {
  IxoMepExpressionParser parser;
  String error_text;
  IxoMepErrorEnum code = parser.SetExpression(String(text), error_text);
  IxoMepValue* slot = nullptr;
  if (code == IMEPERR_NONE) {
    code = parser.Evaluate(&scope_, slot, error_text, strict, /*ownScope=*/false);
  }
  const ValuePtr result(slot);
  if (code != IMEPERR_NONE) {
    EXPECT_EQ(result, nullptr) << text;
    return "error " + std::to_string(code) + ": " + std::string(error_text.view());
  }
  if (result == nullptr) return "no result";
  return std::string(IxoMepValue::GetTypeName(result->GetType()).view()) + " " +
         std::string(result->GetText(/*period=*/true).view());
}

void Session::Set(const char* name, const IxoMepValue& value) {
  scope_.OldSetValue(String(name), value, /*local=*/true);
}

void PrintTo(const EvalCase& test_case, std::ostream* out) {
  *out << test_case.text << " gives " << test_case.result;
}

void CheckAll(Session& session, const std::vector<EvalCase>& cases) {
  for (const EvalCase& row : cases) EXPECT_EQ(session.Eval(row.text), row.result) << row.text;
}

void CheckCountsAndTypes(const CallTypes& function) {
  SCOPED_TRACE(function.name);
  Session session;
  SetSamples(session);
  std::size_t longest = 0;
  for (const std::string& form : function.forms) longest = std::max(longest, form.size());
  for (std::size_t count = 0; count <= longest + 1; ++count) {
    const bool accepted =
        std::any_of(function.forms.begin(), function.forms.end(),
                    [&](const std::string& form) { return form.size() == count; });
    if (!accepted) CheckCount(session, function.name, count);
  }
  for (const std::string& form : function.forms) {
    for (std::size_t i = 0; i < form.size(); ++i) CheckPosition(session, function.name, form, i);
    if (form.empty()) {
      EXPECT_FALSE(session.Eval(std::string(function.name) + "()", true).starts_with("error"));
    } else {
      CheckOrder(session, function.name, form);
    }
  }
}

}  // namespace ixomep::test
