// The variable of an editing function.
#include "ixomep/builtins/variables.h"

#include "ixomep/expr/value_set.h"

namespace ixomep {

String EditingCallText(std::string_view function, const IxoMepExprNode& variable) {
  String text(function);
  text += '(';
  text += variable.GetName();
  text += ", ...)";
  return text;
}

IxoMepErrorEnum CheckVariable(Call& call, const IxoMepExprNode& variable,
                              std::string_view function) {
  if (variable.GetType() != IxoMepExprNodeType::Variable) {
    return call.Fail(IMEPERR_NOT_ASSIGNABLE);
  }
  if (call.IsStrict()) return call.Fail(IMEPERR_UNKNOWN_VARIABLE);
  if (FindVariable(call, variable) != nullptr) return IMEPERR_NONE;
  return call.Fail(IMEPERR_NO_SUCH_VARIABLE, {{"%varname", variable.GetName()},
                                              {"%func", EditingCallText(function, variable)}});
}

IxoMepValue* FindVariable(const Call& call, const IxoMepExprNode& variable) noexcept {
  if (call.scope() == nullptr) return nullptr;
  return call.scope()->_find(variable.GetNameAddress());
}

}  // namespace ixomep
