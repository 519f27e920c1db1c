// Internal: one call of a built-in function, from its arguments to its result. The stages are
// count (23) -> evaluate all arguments, left to right -> match their types (21) -> the body. They
// stand in call.cpp and nowhere else; a body starts where its arguments are right. A family of
// functions is a source file of bodies; table.cpp has a row and a handler for each.
//
// Arguments are numbered from 0. Bodies with Value, Code, Place or Name in their signature
// (signature.h) get their parameters unevaluated and evaluate them through this class.
#pragma once

#include <array>
#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "ixomep/builtins/signature.h"
#include "ixomep/expr/evaluator.h"
#include "ixomep/host/string.h"
#include "ixomep/values/error_code.h"
#include "ixomep/values/raise.h"
#include "ixomep/values/value.h"
#include "ixomep/values/value_rep.h"

namespace ixomep {

class Call;

// A function's body. Returns what call.Return(...), call.Fail(...) or an evaluation gives. It may
// throw std::bad_alloc and std::length_error; the runner answers 37 for them where all arguments
// are evaluated beforehand.
using BuiltinFunction = IxoMepErrorEnum (*)(Call& call);

// One row of the table of built-in functions.
struct BuiltinRow {
  const char* name;                                  // as the language spells it
  IxoMepExprNode::Handler IxoMepExprNode::*handler;  // its given name; null for mathematical ones
  BuiltinFunction body;
  Signature signature;
};

class Call {
 public:
  Call(const BuiltinRow& row, const IxoMepExprNode& node, Frame& frame, IxoMepValue& out) noexcept
      : row_(row), node_(node), frame_(frame), out_(out) {}
  Call(const Call&) = delete;
  Call& operator=(const Call&) = delete;

  // The stages before the body: 23, an argument's own code, or 21.
  IxoMepErrorEnum Prepare();

  // --- Arguments ------------------------------------------------------------------------------
  std::int32_t Count() const noexcept { return count_; }
  bool Has(std::int32_t i) const noexcept { return i < count_; }
  // The evaluated argument. It may be the variable's own value: a body that evaluates something
  // keeps a copy.
  const IxoMepValue& Arg(std::int32_t i) const noexcept { return *args_[i]; }
  // The argument as a value of its own: moved where it is a temporary, else copied. Once an
  // argument.
  IxoMepValue TakeArg(std::int32_t i);
  IxoMepValueType TypeOf(std::int32_t i) const noexcept { return Arg(i).GetType(); }
  // For an argument of the type String.
  const String& Text(std::int32_t i) const noexcept { return ValueAccess::Text(Arg(i)); }
  // For Integer and Number: a real is truncated, 0 outside the 32-bit range.
  std::int32_t Int(std::int32_t i) const noexcept { return Arg(i).GetInt(); }
  // For Real and Number.
  double Real(std::int32_t i) const noexcept { return Arg(i).GetReal(); }

  // --- Unevaluated parameters -----------------------------------------------------------------
  const IxoMepExprNode& Node() const noexcept { return node_; }
  // The first cell of the parameter list, or null; the others follow through Right().
  const IxoMepExprNode* List() const noexcept { return node_.Right(); }
  // Walks the list; for functions of few parameters.
  const IxoMepExprNode& Param(std::int32_t i) const noexcept { return *node_.GetParam(i + 1); }
  // Evaluates the parameter as an operand (a result left unset counts as undefined).
  IxoMepErrorEnum Evaluate(std::int32_t i, IxoMepValue& value) {
    return EvaluateOperand(Param(i), frame_, value);
  }
  // Evaluates the parameter as this call's own result, which may be left unset.
  IxoMepErrorEnum ReturnResultOf(const IxoMepExprNode& param) {
    return ixomep::Evaluate(param, frame_, out_);
  }

  // --- Result ---------------------------------------------------------------------------------
  template <std::same_as<std::int32_t> N>
  IxoMepErrorEnum Return(N number) noexcept {
    ValueAccess::SetInteger(out_, number);
    return Done();
  }
  template <std::same_as<bool> B>
  IxoMepErrorEnum Return(B truth) noexcept {
    return Return(std::int32_t{truth});
  }
  template <std::same_as<double> D>
  IxoMepErrorEnum Return(D number) noexcept {
    ValueAccess::SetNumber(out_, IxoMepValueType::Real, number);
    return Done();
  }
  IxoMepErrorEnum Return(String text) noexcept {
    ValueAccess::SetText(out_, std::move(text));
    return Done();
  }
  IxoMepErrorEnum Return(IxoMepValue&& value) noexcept {
    out_ = std::move(value);
    return Done();
  }
  IxoMepErrorEnum LeaveUnset() noexcept {
    ValueAccess::SetUndefined(out_);
    frame_.no_result = true;
    return IMEPERR_NONE;
  }

  // --- Failure --------------------------------------------------------------------------------
  IxoMepErrorEnum Fail(IxoMepErrorEnum code, std::initializer_list<Fill> fills = {}) {
    return Raise(frame_.text, code, fills);
  }
  // 21, showing the call with the types of its arguments, six at most.
  IxoMepErrorEnum WrongTypes();
  // 21, showing a call of that text with the types of those values, six at most.
  IxoMepErrorEnum WrongTypes(std::string_view shown,
                             std::initializer_list<const IxoMepValue*> values);
  IxoMepErrorEnum WrongTypes(std::string_view shown, const IxoMepValueList& values);
  // 23, showing the call without arguments.
  IxoMepErrorEnum WrongCount();

  // --- Surroundings ---------------------------------------------------------------------------
  // The function's name in the language.
  const char* Name() const noexcept { return row_.name; }
  Frame& frame() noexcept { return frame_; }
  // May be null: then every name is unknown.
  IxoMepValueSet* scope() const noexcept { return frame_.scope; }
  // The expression object that evaluates; may be null.
  const IxoMepExpressionParser* Caller() const noexcept { return frame_.parser; }
  // Are assignments forbidden?
  bool IsStrict() const noexcept { return frame_.strict; }
  IxoMepValue& out() noexcept { return out_; }

 private:
  static constexpr std::int32_t kInline = 4;

  IxoMepErrorEnum Done() noexcept {
    frame_.no_result = false;
    return IMEPERR_NONE;
  }
  void Scan() noexcept;
  void MakeRoom();
  IxoMepErrorEnum EvaluateAll();
  bool Matches(const SignatureForm& form) const noexcept;

  const BuiltinRow& row_;
  const IxoMepExprNode& node_;
  Frame& frame_;
  IxoMepValue& out_;
  std::int32_t count_ = 0;
  std::int32_t last_active_ = -1;  // the last parameter whose evaluation may change something
  const IxoMepValue** args_ = nullptr;
  IxoMepValue* storage_ = nullptr;
  std::array<const IxoMepValue*, kInline> inline_args_{};
  std::array<IxoMepValue, kInline> inline_storage_;
  struct Spill {
    std::vector<const IxoMepValue*> args;
    std::vector<IxoMepValue> storage;
  };
  std::unique_ptr<Spill> spill_;  // of a call with more than kInline arguments
};

// Runs a row: contract as BuiltinBody (../expr/builtin_table.h).
IxoMepErrorEnum RunBuiltin(const BuiltinRow& row, const IxoMepExprNode& node, Frame& frame,
                           IxoMepValue& out);

// The same through a result slot, for the members of IxoMepExprNode.
IxoMepErrorEnum RunHandler(const BuiltinRow& row, const IxoMepExprNode& node,
                           const IxoMepExpressionParser* parser, IxoMepValueSet* scope,
                           IxoMepValue*& result, String& text, bool strict);

}  // namespace ixomep
