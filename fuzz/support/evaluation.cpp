// Evaluating for fuzz targets. See evaluation.h.
#include "fuzz/support/evaluation.h"

#include <map>
#include <new>

#include "fuzz/support/bounds.h"
#include "fuzz/support/fuzz_host.h"
#include "ixomep/expr/program_quick.h"
#include "ixomep/values/object.h"
#include "ixomep/values/slot.h"

namespace ixomep::fuzz {
namespace {

using Type = IxoMepValueType;

ValuePtr ValueOf(const char* text) {
  IxoMepExpressionParser parser;
  String error;
  IxoMepValue* slot = nullptr;
  Check(parser.SetExpression(String(text), error) == IMEPERR_NONE, "a variable's text", text);
  Check(parser.Evaluate(nullptr, slot, error, false, true) == IMEPERR_NONE, "a variable", text);
  return ValuePtr(slot);
}

// The variables in the order of their names' texts.
std::string Variables(const IxoMepValueSet& scope) {
  IxoMepValueSetMap copies;
  scope.GetAllVars(copies, true);
  std::map<std::string, std::string> shown;
  for (const auto& [name, value] : copies) {
    const ValuePtr owner(value);
    shown[name] = Shown(value);
  }
  std::string text;
  for (const auto& [name, value] : shown) text += name + " = " + value + "\n";
  return text;
}

}  // namespace

Objects::~Objects() {
  for (IxoMepValue& object : objects_) {
    for (const char* const name : {"a", "b", "c", "d", "f", "g", "p", "last", "length"}) {
      if (object.GetObject()->FindProperty(name) != nullptr) {
        object.MoveValue(name, new IxoMepValue());
      }
    }
  }
}

IxoMepValue Objects::Make() {
  static const ValuePtr method = ValueOf("lambda(a, (a := 5, a))");
  IxoMepValue object(Type::Object);
  object.MoveValue("p", new IxoMepValue(7));
  object.MoveValue("g", new IxoMepValue(*method));
  Add(object);
  return object;
}

Scene::Scene() {
  static const ValuePtr array = ValueOf("{1, 2.5, {3, 4}, \"k\"}");
  static const ValuePtr map = ValueOf("{\"k\": 1, 2: \"two\", \"text\": {5, 6}}");
  static const ValuePtr lambda = ValueOf("lambda(p, n, (p + i, cond(p > n, n, p + 1)))");
  static const ValuePtr expression = ValueOf("parse(\"i + 1\")");
  scope_.OldSetValue("a", *array, true);
  scope_.OldSetValue("m", *map, true);
  scope_.OldSetValue("s", IxoMepValue("text, more"), true);
  scope_.OldSetValue("i", IxoMepValue(2), true);
  scope_.OldSetValue("r", IxoMepValue(1.5), true);
  scope_.OldSetValue("t", IxoMepValue(Type::Measure, 200.0), true);
  scope_.OldSetValue("d", IxoMepValue(Type::Time, 90.0), true);
  scope_.OldSetValue("u", IxoMepValue(), true);
  scope_.OldSetValue("w", IxoMepValue(&outside_), true);
  scope_.OldSetValue("f", *lambda, true);
  scope_.OldSetValue("e", *expression, true);
  scope_.OldSetValue("o", objects_.Make(), true);
}

std::string Shown(const IxoMepValue* value) {
  if (value == nullptr) return "none";
  const std::string name(IxoMepValue::GetTypeName(value->GetType()).view());
  try {
    return name + " " + std::string(value->GetText(true).view());
  } catch (const std::bad_alloc&) {
    return name + " whose text passes the bound on memory";
  }
}

std::string Outcome(const IxoMepExpressionParser& parser, const Setting& setting, bool programs) {
  const bool before = UsePrograms(programs);
  Scene scene;
  String text;
  IxoMepValue* slot = nullptr;
  const IxoMepErrorEnum code =
      parser.Evaluate(&scene.scope(), slot, text, setting.strict, setting.own_scope);
  const ValuePtr result(slot);
  UsePrograms(before);
  Check(code == IMEPERR_NONE || result == nullptr, "a failure leaves a value");
  Check(code >= 0 && code <= 43, "an unknown code");
  return "code " + std::to_string(code) + " \"" + std::string(text.view()) + "\" " +
         Shown(result.get()) + "\nw -> " + Shown(&scene.outside()) + "\n" +
         Variables(scene.scope());
}

std::string CheckBothWays(const IxoMepExpressionParser& parser, const Setting& setting) {
  std::string expected;
  {
    const Bounds bounds;
    expected = Outcome(parser, setting, false);
    if (bounds.Reached()) return {};
  }
  for (int round = 0; round < 3; ++round) {
    const Bounds bounds(10 * Bounds::kSteps);
    const std::string actual = Outcome(parser, setting, true);
    Check(expected == actual, "the program gives another outcome than the walk",
          expected + "---\n" + actual);
  }
  return expected;
}

void CheckQuickly(const IxoMepExpressionParser& parser) {
  Scene scene;
  const auto evaluate = [&](IxoMepValue* slot) {
    String text;
    const IxoMepErrorEnum code = parser.Evaluate(&scene.scope(), slot, text, false, false);
    const ValuePtr result(slot);
    return "code " + std::to_string(code) + " \"" + std::string(text.view()) + "\" " +
           Shown(result.get());
  };
  const Bounds bounds;
  for (int i = 0; i < 3; ++i) (void)evaluate(nullptr);
  const QuickTree* const quick = FindQuickTree(*parser.GetTree());
  if (bounds.Reached() || quick == nullptr || !quick->names.IsBoundTo(&scene.scope())) return;
  const std::string actual = evaluate(new IxoMepValue(0));
  const bool before = UsePrograms(false);
  const std::string expected = evaluate(new IxoMepValue(0));
  UsePrograms(before);
  if (bounds.Reached()) return;
  Check(expected == actual, "the quick tree gives another outcome than the walk",
        expected + "\n---\n" + actual);
}

}  // namespace ixomep::fuzz
