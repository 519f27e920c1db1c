// Functions that work on the language itself: expression texts, lambdas, errors, types, variables
// and the host's windows: eval, parse, lambda, error, type, valofvar, curvars, internal.
#include <memory>
#include <vector>

#include "ixomep/builtins/handlers.h"
#include "ixomep/expr/capture.h"
#include "ixomep/expr/expression_parser.h"
#include "ixomep/expr/node_ptr.h"
#include "ixomep/expr/value_set.h"
#include "ixomep/host/windowing.h"
#include "ixomep/values/slot.h"
#include "ixomep/values/string_address_map.h"

namespace ixomep::builtins {

namespace {

using ExpressionPtr = std::unique_ptr<IxoMepExpressionParser>;

// An expression of the caller's class (and line number) for another text.
ExpressionPtr NewExpression(const Call& call) {
  const IxoMepExpressionParser* const caller = call.Caller();
  ExpressionPtr made(caller != nullptr ? caller->CreateCopy() : nullptr);
  return made != nullptr ? std::move(made) : std::make_unique<IxoMepExpressionParser>();
}

// The object of an expression value, not of a reference to one; null for any other value.
const IxoMepExpressionParser* OwnExpression(const IxoMepValue& value) noexcept {
  const bool is_expression = value.GetType() == IxoMepValueType::Expression;
  return is_expression ? ValueAccess::Expression(value) : nullptr;
}

IxoMepErrorEnum ReturnResultOfExpression(Call& call, const IxoMepExpressionParser& expression) {
  IxoMepValue* slot = nullptr;
  const IxoMepErrorEnum code = expression.Evaluate(call.scope(), slot, call.frame().text,
                                                   call.IsStrict(), /*ownScope=*/false);
  const ValuePtr result(slot);
  if (code != IMEPERR_NONE) return code;
  return result != nullptr ? call.Return(std::move(*result)) : call.LeaveUnset();
}

// Owns what IxoMepValueSet::GetAllVars puts into a map.
struct VariableCopies {
  VariableCopies() = default;
  VariableCopies(const VariableCopies&) = delete;
  VariableCopies& operator=(const VariableCopies&) = delete;
  ~VariableCopies() {
    for (const auto& [name, value] : map) delete value;
  }
  IxoMepValueSetMap map;
};

std::int32_t HandleOf(const void* window) {
  return static_cast<std::int32_t>(Sysdepen::GethWnd(window));
}

}  // namespace

IxoMepErrorEnum Eval(Call& call) {
  // Evaluating may replace the variable that the argument came from.
  const IxoMepValue source = call.TakeArg(0);
  if (const IxoMepExpressionParser* expression = OwnExpression(source)) {
    return ReturnResultOfExpression(call, *expression);
  }
  if (source.GetType() != IxoMepValueType::String) {
    return call.WrongTypes(call.Name(), {&source});
  }
  const ExpressionPtr expression = NewExpression(call);
  const IxoMepErrorEnum code =
      expression->SetExpression(ValueAccess::Text(source), call.frame().text);
  if (code != IMEPERR_NONE) return code;
  return ReturnResultOfExpression(call, *expression);
}

IxoMepErrorEnum Parse(Call& call) {
  ExpressionPtr expression = NewExpression(call);
  const IxoMepErrorEnum code = expression->SetExpression(call.Text(0), call.frame().text);
  if (code != IMEPERR_NONE) return code;
  return call.Return(IxoMepValue(expression.release(), /*take=*/true));
}

IxoMepErrorEnum Lambda(Call& call) {
  const char* const assigned_name = AssignedName::Take();
  std::vector<const char*> names;
  const IxoMepExprNode* cell = call.List();
  for (; cell->Right() != nullptr; cell = cell->Right()) {
    if (cell->Left()->GetType() != IxoMepExprNodeType::Variable) {
      return call.Fail(IMEPERR_NOT_ASSIGNABLE);
    }
    names.push_back(cell->Left()->GetNameAddress());
  }
  NodePtr lambda = NodePtr::Make(IxoMepExprNodeType::Lambda);
  NodePtr params;
  for (auto name = names.rbegin(); name != names.rend(); ++name) {
    NodePtr param = NodePtr::Make(IxoMepExprNodeType::Variable, *name);
    NodeAccess::SetLeft(*param, std::move(params));
    params = std::move(param);
  }
  NodeAccess::SetLeft(*lambda, std::move(params));
  NodeAccess::SetRight(*lambda, CopyBody(*cell->Left(), call.scope(), names, assigned_name));
  return call.Return(IxoMepValue(lambda.Release()));
}

IxoMepErrorEnum Error(Call& call) { return call.Fail(IMEPERR_USER, {{"%s", call.Text(0)}}); }

IxoMepErrorEnum Type(Call& call) { return call.Return(IxoMepValue::GetTypeName(call.TypeOf(0))); }

IxoMepErrorEnum ValOfVar(Call& call) {
  if (call.IsStrict()) return call.Fail(IMEPERR_UNKNOWN_VARIABLE);
  const char* const name = IxoMepStringAddressMap::GetAddress(call.Text(0));
  if (name == nullptr || call.scope() == nullptr) return call.Return(IxoMepValue());
  return call.Return(IxoMepValue(*call.scope()->NewGetValue(name)));
}

IxoMepErrorEnum CurVars(Call& call) {
  if (call.IsStrict()) return call.Fail(IMEPERR_UNKNOWN_VARIABLE);
  VariableCopies variables;
  if (call.scope() != nullptr) call.scope()->GetAllVars(variables.map, /*withParents=*/true);
  String text;
  for (const auto& [name, value] : variables.map) {
    text += name;
    text += ':';
    text += ValueAccess::TextOf(*value);
    text += '\n';
  }
  return call.Return(std::move(text));
}

IxoMepErrorEnum Internal(Call& call) {
  if (call.IsStrict()) return call.Fail(IMEPERR_UNKNOWN_VARIABLE);
  const String& key = call.Text(0);
  if (key == "APPWIN") return call.Return(HandleOf(GetpApp()->GetAppWindow()));
  if (key == "TOPWIN") return call.Return(HandleOf(Ixo_GetTopWindow(0)));
  return call.Return(IxoMepValue());
}

}  // namespace ixomep::builtins
