// Lambdas that run without a caller's scope: the methods of objects, and the predicates of sorts.
// Each gets a fresh scope without a parent; what runs is held while it runs.
#include "ixomep/expr/calling_parser.h"
#include "ixomep/expr/evaluator.h"
#include "ixomep/expr/guarded.h"
#include "ixomep/expr/node_ptr.h"
#include "ixomep/expr/program.h"
#include "ixomep/expr/value_set_pool.h"
#include "ixomep/values/engine_hooks.h"
#include "ixomep/values/object.h"

namespace ixomep {

namespace {

// One further reference to an object for the length of a call; none at the cap, where 65535 other
// holders keep it alive.
class ObjectHold {
 public:
  explicit ObjectHold(IxoMepObject& object) noexcept : object_(object.NewReference()) {}
  ObjectHold(const ObjectHold&) = delete;
  ObjectHold& operator=(const ObjectHold&) = delete;
  ~ObjectHold() {
    if (object_ != nullptr) object_->DeleteReference();
  }

 private:
  IxoMepObject* object_;
};

IxoMepErrorEnum RunBody(const IxoMepExprNode& lambda, IxoMepValueSet& scope, IxoMepValue& result,
                        bool& has_result, String& text) {
  if (lambda.Right() == nullptr) return Raise(text, IMEPERR_NOT_CALLABLE);
  const CallLevel level;
  if (!level.IsAllowed()) return RaiseLimit(text);
  Frame frame{CallingParser::Current(), &scope, text, false};
  const IxoMepErrorEnum code = EvaluateBody(lambda, frame, result);
  has_result = !frame.no_result;
  return code;
}

// The parameters refer to the arguments, so that the method can assign to its caller's values.
// What leaves the call is a copy, never a reference to them.
IxoMepErrorEnum CallMethod(const IxoMepExprNode& method, const IxoMepValueList& args,
                           IxoMepValue*& result, String& text) {
  const NodePtr held = NodePtr::Share(&method);
  IxoMepValue value;
  bool has_result = false;
  {
    const PooledScope scope(nullptr);
    const IxoMepExprNode* parameter = held->Left();
    for (IxoMepValue* const arg : args) {
      if (parameter == nullptr) break;
      if (arg != nullptr) scope->NewSetValue(parameter->GetNameAddress(), IxoMepValue(arg), true);
      parameter = parameter->Left();
    }
    const IxoMepErrorEnum code = RunBody(*held, *scope.get(), value, has_result, text);
    if (code != IMEPERR_NONE) return code;
    ReplaceReference(value);
  }
  if (has_result) StoreResult(result, std::move(value));
  return IMEPERR_NONE;
}

}  // namespace

IxoMepErrorEnum ApplyPredicate(IxoMepExprNode* lambda, const IxoMepValue& first,
                               const IxoMepValue& second, bool& truth, String& error_text) {
  truth = false;
  return Guarded(error_text, [&] {
    const NodePtr held = NodePtr::Share(lambda);
    const PooledScope scope(nullptr);
    const IxoMepExprNode* parameter = held->Left();
    for (const IxoMepValue* const arg : {&first, &second}) {
      if (parameter == nullptr) break;
      scope->NewSetValue(parameter->GetNameAddress(), *arg, true);
      parameter = parameter->Left();
    }
    IxoMepValue result;
    bool has_result = false;
    const IxoMepErrorEnum code = RunBody(*held, *scope.get(), result, has_result, error_text);
    truth = code == IMEPERR_NONE && result.GetInt() > 0;
    return code;
  });
}

}  // namespace ixomep

// Meant: 42 leaves errorText alone; the caller knows the type and the name to show.
long IxoMepObject::EvaluateObjectMethodCall(const char* name, const IxoMepValueList& args,
                                            IxoMepValue*& result, String& errorText) {
  const ixomep::OuterEntry entry;
  const ixomep::ObjectHold hold(*this);
  IxoMepNativeMethod native;
  const IxoMepErrorEnum code = ixomep::Guarded(errorText, [&] {
    const String key(name);
    if (!entry.IsAllowed()) return ixomep::RaiseLimit(errorText);
    if (const IxoMepValue* const property = FindProperty(key)) {
      IxoMepExprNode* const method = property->GetType() == IxoMepValueType::Lambda
                                         ? ixomep::ValueAccess::Lambda(*property)
                                         : nullptr;
      return method != nullptr ? ixomep::CallMethod(*method, args, result, errorText)
                               : IMEPERR_UNKNOWN_MEMBER;
    }
    const auto found = native_methods_.find(key);
    if (found == native_methods_.end()) return IMEPERR_UNKNOWN_MEMBER;
    native = found->second;  // a copy: it may replace itself while it runs
    if (native == nullptr) return IMEPERR_UNKNOWN_MEMBER;
    return ixomep::LimitWatch::Step() ? IMEPERR_NONE : ixomep::RaiseLimit(errorText);
  });
  if (code == IMEPERR_NONE && native != nullptr) return native(this, args, result, errorText);
  if (code != IMEPERR_NONE) ixomep::FailSlot(result);
  return code;
}
