// muParserX as an engine of the benchmarks: variables are bound once and set in place.
#include <mpParser.h>

#include <deque>

#include "bench/support/engine.h"

namespace {

using ixomep::bench::Engine;
using ixomep::bench::Script;

class HostMax : public mup::ICallback {
 public:
  HostMax() : ICallback(mup::cmFUNC, "hostmax", 2) {}
  void Eval(mup::ptr_val_type& result, const mup::ptr_val_type* arguments, int) override {
    const mup::float_type a = arguments[0]->GetFloat();
    const mup::float_type b = arguments[1]->GetFloat();
    *result = a > b ? a : b;
  }
  const mup::char_type* GetDesc() const override { return "the greater one"; }
  mup::IToken* Clone() const override { return new HostMax(*this); }
};

class FormulaScript : public Script {
 public:
  FormulaScript(const std::string& expression, const std::vector<std::string>& names) {
    parser_.DefineFun(new HostMax);
    for (const std::string& name : names) {
      values_.emplace_back(0.0);
      parser_.DefineVar(name, mup::Variable(&values_.back()));
    }
    parser_.SetExpr(expression);
  }

  void Run(const ixomep::bench::Value* values) override {
    for (mup::Value& variable : values_) {
      const ixomep::bench::Value& value = *values++;
      switch (value.kind) {
        case ixomep::bench::Value::Kind::Integer:
          variable = static_cast<mup::int_type>(value.integer);
          break;
        case ixomep::bench::Value::Kind::Real:
          variable = value.real;
          break;
        case ixomep::bench::Value::Kind::Text:
          variable = value.text;
          break;
      }
    }
    result_ = &parser_.Eval();
  }

  ixomep::bench::Value Result() override {
    if (result_->GetType() == 's') return ixomep::bench::Value::Of(result_->GetString());
    if (result_->GetType() == 'b')
      return ixomep::bench::Value::Of(static_cast<int>(result_->GetBool()));
    return ixomep::bench::Value::Of(static_cast<double>(result_->GetFloat()));
  }

 private:
  std::deque<mup::Value> values_;
  mup::ParserX parser_{mup::pckCOMMON | mup::pckNON_COMPLEX | mup::pckSTRING};
  const mup::IValue* result_ = nullptr;
};

class FormulaEngine : public Engine {
 public:
  std::unique_ptr<Script> Compile(const std::string&, const std::string& expression,
                                  const std::vector<std::string>& names) override {
    try {
      auto script = std::make_unique<FormulaScript>(expression, names);
      return script;
    } catch (const mup::ParserError&) {
      return nullptr;
    }
  }
  // Compiling happens at the first evaluation and cannot be had alone.
  bool CompileOnly(const std::string&) override { return false; }
};

}  // namespace

extern "C" __attribute__((visibility("default"))) Engine* MakePeerEngine() {
  return new FormulaEngine;
}
