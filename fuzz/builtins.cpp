// Fuzz target: the built-in functions. The input chooses a function from the tables and, for each
// argument, a value of any type, most often one that the signature accepts; values are given as
// variables, so that every content is possible. Methods of values are called in the same way. Walk
// and side program must agree.
#include "fuzz/support/bounds.h"
#include "fuzz/support/bytes.h"
#include "fuzz/support/evaluation.h"
#include "fuzz/support/fuzz_host.h"
#include "ixomep/builtins/handlers.h"
#include "ixomep/builtins/table.h"
#include "ixomep/expr/program.h"
#include "ixomep/values/object.h"
#include "ixomep/values/slot.h"

using namespace ixomep::fuzz;
using ixomep::ArgType;
using ixomep::BuiltinRow;
using Type = IxoMepValueType;

namespace {

constexpr int kMaxArguments = 7;
constexpr std::string_view kCode[] = {"1",     "0",       "x0 + 1",   "{1, x1}",
                                      "\"a\"", "1 / 0",   "n",        "(n := n + 1)",
                                      "n < 3", "unknown", "(x0 := 5)"};
constexpr std::string_view kPlaces[] = {"n", "x0", "x1[0]", "x1[\"k\"]", "o.p", "1"};
constexpr std::string_view kMethods[] = {"copy",  "trim", "without",       "lastIndexOf",
                                         "sort",  "key",  "insert",        "erase",
                                         "empty", "g",    "insertAllFrom", "eraseAllFrom"};

IxoMepValue MakeValue(Bytes& bytes, Objects& objects, Type type, int depth);

IxoMepValue MakeContainer(Bytes& bytes, Objects& objects, Type type, int depth) {
  IxoMepValue value(type);
  for (int count = bytes.Below(5); count > 0 && depth > 0; --count) {
    IxoMepValue element = MakeValue(bytes, objects, static_cast<Type>(bytes.Below(12)), depth - 1);
    if (type == Type::Array) {
      value.Append(new IxoMepValue(element));
    } else {
      const IxoMepValue key = MakeValue(bytes, objects, static_cast<Type>(bytes.Below(6)), 0);
      (void)value.SetValue(&key, &element);
    }
  }
  return value;
}

IxoMepValue FromText(const char* text) {
  IxoMepExpressionParser parser;
  String error;
  IxoMepValue* slot = nullptr;
  (void)parser.SetExpression(String(text), error);
  (void)parser.Evaluate(nullptr, slot, error, false, true);
  const ixomep::ValuePtr owner(slot);
  return owner != nullptr ? *owner : IxoMepValue();
}

double MakeNumber(Bytes& bytes) {
  static constexpr double kNumbers[] = {0, -0.0, 1, -1, 0.5, 1e300, -1e-300, 2147483648.0, 1e19};
  return bytes.Truth() ? bytes.Pick(kNumbers) : bytes.Real();
}

IxoMepValue MakeValue(Bytes& bytes, Objects& objects, Type type, int depth) {
  static IxoMepValue target(3);
  static constexpr std::int32_t kIntegers[] = {0, 1, -1, 2, 7, 255, 2147483647, -2147483647 - 1};
  static constexpr const char* kLambdas[] = {"lambda(1)", "lambda(a, b, a < b)", "lambda(a, a)",
                                             "lambda(a, b, (a := 5, b))"};
  switch (type) {
    case Type::String:
      return {String(bytes.Text())};
    case Type::Integer:
      return {bytes.Truth() ? bytes.Pick(kIntegers) : bytes.Integer()};
    case Type::Real:
      return {MakeNumber(bytes)};
    case Type::Measure:
    case Type::Time:
      return {type, MakeNumber(bytes)};
    case Type::Expression:
      return FromText("parse(\"n + 1\")");
    case Type::Array:
    case Type::Map:
      return MakeContainer(bytes, objects, type, depth);
    case Type::Reference:
      return {&target};
    case Type::Lambda:
      return FromText(bytes.Pick(kLambdas));
    case Type::Object:
      return objects.Make();
    default:
      return {};
  }
}

Type TypeFor(Bytes& bytes, ArgType wanted) {
  if (bytes.Below(8) == 0) return static_cast<Type>(bytes.Below(12));
  switch (wanted) {
    case ArgType::String:
      return Type::String;
    case ArgType::Integer:
      return Type::Integer;
    case ArgType::Real:
      return Type::Real;
    case ArgType::Number:
      return bytes.Truth() ? Type::Integer : Type::Real;
    case ArgType::Array:
      return Type::Array;
    case ArgType::Map:
      return Type::Map;
    default:
      return static_cast<Type>(bytes.Below(12));
  }
}

// A call and the variables that it uses.
struct Case {
  std::string text;
  Objects objects;
  std::vector<IxoMepValue> values;

  std::string Variable(IxoMepValue value) {
    values.push_back(std::move(value));
    return "x" + std::to_string(values.size() - 1);
  }
};

std::string Argument(Bytes& bytes, ArgType wanted, Case& made) {
  if (wanted == ArgType::Code && bytes.Below(4) != 0) return std::string(bytes.Pick(kCode));
  if (wanted == ArgType::Place && bytes.Below(8) != 0) return std::string(bytes.Pick(kPlaces));
  return made.Variable(MakeValue(bytes, made.objects, TypeFor(bytes, wanted), 2));
}

void MakeCall(Bytes& bytes, const BuiltinRow& row, Case& made) {
  int count = bytes.Below(kMaxArguments + 1);
  for (int tries = 0; row.signature.FormFor(count) == nullptr && tries < kMaxArguments; ++tries) {
    if (bytes.Below(16) == 0) break;  // a wrong count
    count = (count + 1) % (kMaxArguments + 1);
  }
  const ixomep::SignatureForm* const form = row.signature.FormFor(count);
  std::string arguments;
  for (int i = 0; i < count; ++i) {
    if (i > 0) arguments += ", ";
    arguments += Argument(bytes, form != nullptr ? form->TypeOf(i, count) : ArgType::Any, made);
  }
  const std::string_view name = row.name;
  if (name == "{" || name == "{:") {
    made.text = "{" + arguments + "}";
  } else {
    made.text = std::string(name) + "(" + arguments + ")";
  }
}

void MakeMethodCall(Bytes& bytes, Case& made) {
  made.text = made.Variable(MakeValue(bytes, made.objects, static_cast<Type>(bytes.Below(12)), 2)) +
              "." + std::string(bytes.Pick(kMethods)) + "(";
  const int count = bytes.Below(4);
  for (int i = 0; i < count; ++i) {
    made.text += (i > 0 ? ", " : "") + Argument(bytes, ArgType::Any, made);
  }
  made.text += ")";
}

void MakeOperation(Bytes& bytes, Case& made) {
  static constexpr std::string_view kBinary[] = {
      "+", "-", "*", "/", "MOD", "=", "<=", "!=", "<", ">=", ">", "AND", "OR", "SUB", "IN", ":="};
  static constexpr std::string_view kUnary[] = {"VAL",  "STR", "LEN",  "NOT", "ROUND", "FLOOR",
                                                "CEIL", "CM",  "CMS",  "PT",  "PTS",   "ASC",
                                                "CHR",  "INT", "REAL", "-"};
  const std::string first = Argument(bytes, ArgType::Any, made);
  switch (bytes.Below(3)) {
    case 0:
      made.text = std::string(bytes.Pick(kUnary)) + " " + first;
      break;
    case 1:
      made.text = first + "[" + Argument(bytes, ArgType::Any, made) + "]";
      break;
    default:
      made.text = first + " " + std::string(bytes.Pick(kBinary)) + " " +
                  Argument(bytes, ArgType::Any, made);
      break;
  }
}

std::string Run(const IxoMepExpressionParser& parser, const Case& made, bool strict,
                bool programs) {
  const bool before = ixomep::UsePrograms(programs);
  std::string outcome;
  {
    IxoMepValueSet scope;
    scope.OldSetValue("n", IxoMepValue(0), true);
    scope.OldSetValue("o", FromText("object()"), true);
    for (std::size_t i = 0; i < made.values.size(); ++i) {
      scope.OldSetValue(String("x" + std::to_string(i)), made.values[i], true);
    }
    String text;
    IxoMepValue* slot = nullptr;
    const IxoMepErrorEnum code = parser.Evaluate(&scope, slot, text, strict, false);
    const ixomep::ValuePtr result(slot);
    Check(code == IMEPERR_NONE || result == nullptr, "a failure leaves a value", made.text);
    outcome = std::to_string(code) + " \"" + std::string(text.view()) + "\" " + Shown(slot);
    for (std::size_t i = 0; i < made.values.size(); ++i) {
      outcome += "\n" + Shown(scope.OldGetValue(String("x" + std::to_string(i))));
    }
  }
  ixomep::UsePrograms(before);
  return outcome;
}

void RunBothWays(const Case& made, bool strict) {
  IxoMepExpressionParser parser;
  String error;
  if (parser.SetExpression(String(made.text), error) != IMEPERR_NONE) return;
  std::string expected;
  {
    const Bounds bounds;
    expected = Run(parser, made, strict, false);
    if (bounds.Reached()) return;
  }
  for (int round = 0; round < 3; ++round) {
    const Bounds bounds(10 * Bounds::kSteps);
    const std::string actual = Run(parser, made, strict, true);
    Check(actual == expected, "the program gives another outcome than the walk",
          made.text + "\n" + expected + "\n---\n" + actual);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const FuzzHost host;
  Bytes bytes(data, size);
  const bool strict = bytes.Below(4) == 0;
  const int kind = bytes.Below(8);
  Case made;
  if (kind == 0) {
    MakeMethodCall(bytes, made);
  } else if (kind == 1) {
    MakeOperation(bytes, made);
  } else {
    const auto rows = ixomep::BuiltinRows();
    const auto choice = static_cast<std::size_t>(
        bytes.Below(static_cast<int>(rows.size() + ixomep::kMathRows.size())));
    MakeCall(bytes, choice < rows.size() ? rows[choice] : ixomep::kMathRows[choice - rows.size()],
             made);
  }
  RunBothWays(made, strict);
  return 0;
}
