// This library as an engine of the benchmarks: the interface that a host uses, nothing inside it.
// The host keeps the places of its variables, which is the fastest way to set them.
#include "bench/support/engines.h"
#include "ixomep/expr/expression_parser.h"
#include "ixomep/expr/value_set.h"
#include "ixomep/values/slot.h"
#include "ixomep/values/string_address_map.h"

namespace ixomep::bench {

namespace {

class HostExpression : public IxoMepExpressionParser {
 public:
  IxoMepErrorEnum EvaluateFunctionCall(const IxoMepExprNode* call, IxoMepValueSet* scope,
                                       const String& name, IxoMepValue*& result, String& text,
                                       bool strict) const override {
    if (name != "hostmax") return IMEPERR_UNKNOWN_FUNCTION;
    IxoMepValue first, second;
    IxoMepValue* a = &first;
    IxoMepValue* b = &second;
    if (const auto code = call->GetParamResults(this, scope, a, b, text, strict)) return code;
    IxoMepValue::Assign(result, std::max(first.GetReal(), second.GetReal()));
    return IMEPERR_NONE;
  }
};

class MepScript : public Script {
 public:
  MepScript(std::unique_ptr<IxoMepExpressionParser> expression, const std::string& setup,
            const std::vector<std::string>& names)
      : expression_(std::move(expression)) {
    for (const std::string& name : names) places_.push_back(scope_.NewGetLValue(Intern(name)));
    if (setup.empty()) return;
    IxoMepExpressionParser once;
    String text;
    IxoMepValue* unwanted = nullptr;
    once.SetExpression(String(setup), text);
    once.Evaluate(&scope_, unwanted, text, false, false);
    const ValuePtr owner(unwanted);
  }

  void Run(const Value* values) override {
    for (IxoMepValue* const place : places_) Set(*place, *values++);
    IxoMepValue* slot = result_.release();
    failed_ = expression_->Evaluate(&scope_, slot, text_, false, places_.empty()) != IMEPERR_NONE;
    result_.reset(slot);
  }

  Value Result() override {
    if (failed_ || result_ == nullptr) return Value::Of(std::string(text_.view()));
    switch (result_->GetType()) {
      case IxoMepValueType::Integer:
        return Value::Of(result_->GetInt());
      case IxoMepValueType::Real:
        return Value::Of(result_->GetReal());
      default:
        return Value::Of(std::string(result_->GetStr().view()));
    }
  }

 private:
  static void Set(IxoMepValue& place, const Value& value) {
    switch (value.kind) {
      case Value::Kind::Integer:
        place = IxoMepValue(value.integer);
        return;
      case Value::Kind::Real:
        place = IxoMepValue(value.real);
        return;
      case Value::Kind::Text:
        place = IxoMepValue(String(value.text));
    }
  }

  std::unique_ptr<IxoMepExpressionParser> expression_;
  IxoMepValueSet scope_;
  std::vector<IxoMepValue*> places_;  // in the scope
  ValuePtr result_;
  String text_;
  bool failed_ = false;
};

class MepEngine : public Engine {
 public:
  std::unique_ptr<Script> Compile(const std::string& setup, const std::string& expression,
                                  const std::vector<std::string>& names) override {
    const bool calls_host = expression.find("hostmax") != std::string::npos;
    std::unique_ptr<IxoMepExpressionParser> parser =
        calls_host ? std::make_unique<HostExpression>()
                   : std::make_unique<IxoMepExpressionParser>();
    String text;
    if (parser->SetExpression(String(expression), text) != IMEPERR_NONE) return nullptr;
    return std::make_unique<MepScript>(std::move(parser), setup, names);
  }

  bool CompileOnly(const std::string& expression) override {
    IxoMepExpressionParser parser;
    String text;
    return parser.SetExpression(String(expression), text) == IMEPERR_NONE;
  }
};

}  // namespace

std::unique_ptr<Engine> MakeMepEngine() { return std::make_unique<MepEngine>(); }

}  // namespace ixomep::bench
