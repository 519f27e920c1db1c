// A function that wants its arguments evaluated is a row of kFunctions; one that evaluates them
// itself, as often as it likes, gets the call (each). A name that is not ours goes on to the base
// class, whose answer 22 sends the library on to a variable that holds a lambda.
#include "graph_expression.h"

#include <algorithm>
#include <memory>
#include <string>
#include <utility>

#include "library_host.h"

namespace bakery {
namespace {

using Value = std::unique_ptr<IxoMepValue>;

// Values that are freed with the list, lent to whoever wants pointers.
class ValueList {
 public:
  ValueList() = default;
  ValueList(const ValueList&) = delete;
  ValueList& operator=(const ValueList&) = delete;
  ~ValueList() {
    for (IxoMepValue* value : pointers_) delete value;
  }
  void Add(Value value) {
    pointers_.push_back(value.get());
    value.release();
  }
  const IxoMepValueList& Lend() const { return pointers_; }
  // The pointers, which are the caller's from now on.
  IxoMepValueList Release() { return std::exchange(pointers_, {}); }

 private:
  IxoMepValueList pointers_;
};

IxoMepErrorEnum Fail(String& error, const std::string& sentence) {
  error = IxoMepError::GetErrorText(IMEPERR_USER);
  error.ReplaceFirst("%s", sentence);
  return IMEPERR_USER;
}

// One node, evaluated; a result left unset counts as undefined.
IxoMepErrorEnum EvaluateNode(const IxoMepExprNode& node, const IxoMepExpressionParser& parser,
                             IxoMepValueSet* scope, String& error, bool strict, ValueList& list) {
  IxoMepValue* result = nullptr;
  const IxoMepErrorEnum code = node.Evaluate(&parser, scope, result, error, strict);
  Value value(result);
  if (code == IMEPERR_NONE) list.Add(value ? std::move(value) : std::make_unique<IxoMepValue>());
  return code;
}

}  // namespace

const GraphExpression::Entry GraphExpression::kFunctions[] = {
    {"rate", 1, &GraphExpression::Rate},
    {"power", 1, &GraphExpression::Power},
    {"task", 1, &GraphExpression::TaskObject},
};

IxoMepExpressionParser* GraphExpression::CreateCopy() const { return new GraphExpression(*this); }

IxoMepErrorEnum GraphExpression::EvaluateFunctionCall(const IxoMepExprNode* call,
                                                      IxoMepValueSet* scope, const String& name,
                                                      IxoMepValue*& result, String& errorText,
                                                      bool strict) const {
  // While a text is being read, its expressions are tried without a scope. The graph does not
  // stand yet: the base class answers 22, and the expression is kept for later.
  if (scope != nullptr) {
    if (name == "each") return Each(*call, *scope, result, errorText, strict);
    for (const Entry& entry : kFunctions) {
      if (!(name == entry.name)) continue;
      ValueList arguments;
      for (std::int32_t i = 1; i <= call->GetParamCount(); ++i) {
        const IxoMepErrorEnum code =
            EvaluateNode(*call->GetParam(i), *this, scope, errorText, strict, arguments);
        if (code != IMEPERR_NONE) return code;
      }
      if (arguments.Lend().size() != entry.argument_count) {
        return IxoMepError::MakeFunctionError(errorText, IMEPERR_WRONG_ARGUMENT_COUNT, name,
                                              arguments.Lend());
      }
      return (this->*entry.function)(arguments.Lend(), result, errorText);
    }
  }
  return IxoMepExpressionParser::EvaluateFunctionCall(call, scope, name, result, errorText, strict);
}

IxoMepErrorEnum GraphExpression::Rate(const Arguments& arguments, IxoMepValue*& result,
                                      String& error) const {
  return AddUp("rate", &Resource::rate, arguments, result, error);
}

IxoMepErrorEnum GraphExpression::Power(const Arguments& arguments, IxoMepValue*& result,
                                       String& error) const {
  return AddUp("power", &Resource::power, arguments, result, error);
}

IxoMepErrorEnum GraphExpression::AddUp(const char* name, double Resource::*field,
                                       const Arguments& arguments, IxoMepValue*& result,
                                       String& error) const {
  const IxoMepValue& uses = *arguments[0]->GetReferencedValue();
  const bool is_array = uses.GetType() == IxoMepValueType::Array;
  if (!is_array && uses.GetType() != IxoMepValueType::String) {
    return IxoMepError::MakeFunctionError(error, IMEPERR_WRONG_TYPE, name, arguments);
  }
  double sum = 0.0;
  for (long i = 0; i < (is_array ? uses.GetSize() : 1); ++i) {
    const String resource_name = uses.GetValue(i)->GetStr();
    const Resource* resource = graph_->FindResource(resource_name);
    if (resource == nullptr) {
      return Fail(error, "There is no resource \"" + std::string(resource_name.view()) + "\".");
    }
    sum += resource->*field;
  }
  IxoMepValue::Assign(result, sum);
  return IMEPERR_NONE;
}

IxoMepErrorEnum GraphExpression::TaskObject(const Arguments& arguments, IxoMepValue*& result,
                                            String& error) const {
  const String name = arguments[0]->GetStr();
  const Task* task = graph_->FindTask(name);
  if (task == nullptr) return Fail(error, "There is no task \"" + std::string(name.view()) + "\".");
  Value value = std::make_unique<IxoMepValue>(IxoMepValueType::Object);
  IxoMepObject& object = *value->GetObject();
  IxoMepValueSetMap variables;
  task->scope.GetAllVars(variables, /*withParents=*/false);
  for (const auto& [variable, copy] : variables) object.MoveValue(variable, copy);
  object.SetNativeMethod("follows", [graph = graph_, task](IxoMepObject*, const Arguments& others,
                                                           IxoMepValue*& answer, String& text) {
    if (others.size() != 1) {
      return static_cast<long>(
          IxoMepError::MakeFunctionError(text, IMEPERR_WRONG_ARGUMENT_COUNT, "follows", others));
    }
    IxoMepValue::Assign(answer, graph->Follows(*task, others[0]->GetStr()));
    return 0L;
  });
  IxoMepValue::Assign(result, value.release(), /*take=*/true);
  return IMEPERR_NONE;
}

IxoMepErrorEnum GraphExpression::Each(const IxoMepExprNode& call, const IxoMepValueSet& scope,
                                      IxoMepValue*& result, String& error, bool strict) const {
  if (call.GetParamCount() != 1) {
    return IxoMepError::MakeFunctionError(error, IMEPERR_WRONG_ARGUMENT_COUNT, &call);
  }
  const Task* current = graph_->FindTask(scope.OldGetValue("task")->GetStr());
  ValueList values;
  for (const std::unique_ptr<Task>& task : graph_->Tasks()) {
    if (current != nullptr && std::find(current->after.begin(), current->after.end(), task->name) ==
                                  current->after.end()) {
      continue;
    }
    const ixomep::PooledScope own(&task->scope);  // for what the argument itself assigns
    const IxoMepErrorEnum code =
        EvaluateNode(*call.GetParam(1), *this, own.get(), error, strict, values);
    if (code != IMEPERR_NONE) return code;
  }
  IxoMepValue::Assign(result, new IxoMepValue(IxoMepValueType::Array, values.Release()),
                      /*take=*/true);
  return IMEPERR_NONE;
}

}  // namespace bakery
