// The stages of a call: count, evaluate, match, body; and the failures that all functions share.
#include "ixomep/builtins/call.h"

#include <new>
#include <stdexcept>

#include "ixomep/values/error.h"

namespace ixomep {

namespace {

constexpr std::int32_t kMostShown = 6;  // argument types in an error text

bool MatchesType(const IxoMepValue& value, ArgType type) noexcept {
  switch (type) {
    case ArgType::String:
      return value.GetType() == IxoMepValueType::String;
    case ArgType::Integer:
      return value.GetType() == IxoMepValueType::Integer;
    case ArgType::Real:
      return value.GetType() == IxoMepValueType::Real;
    case ArgType::Number:
      return value.IsNum();
    case ArgType::Array:
      return value.GetType() == IxoMepValueType::Array;
    case ArgType::Map:
      return value.GetType() == IxoMepValueType::Map;
    default:
      return true;
  }
}

IxoMepErrorEnum RaiseCall(String& text, IxoMepErrorEnum code, std::string_view shown,
                          const IxoMepValueList& values) {
  return IxoMepError::MakeFunctionError(text, code, String(shown), values);
}

}  // namespace

IxoMepErrorEnum Call::Prepare() {
  Scan();
  const SignatureForm* const form = row_.signature.FormFor(count_);
  if (form == nullptr) return WrongCount();
  if (count_ == 0 || form->IsLazy()) return IMEPERR_NONE;
  MakeRoom();
  if (const IxoMepErrorEnum code = EvaluateAll(); code != IMEPERR_NONE) return code;
  return Matches(*form) ? IMEPERR_NONE : WrongTypes();
}

void Call::Scan() noexcept {
  for (const IxoMepExprNode* cell = List(); cell != nullptr; cell = cell->Right()) {
    if (!IsInert(*cell->Left()) && !IsQuiet(*cell->Left())) last_active_ = count_;
    ++count_;
  }
}

void Call::MakeRoom() {
  if (count_ <= kInline) {
    args_ = inline_args_.data();
    storage_ = inline_storage_.data();
    return;
  }
  const auto size = static_cast<std::size_t>(count_);
  spill_ = std::make_unique<Spill>();
  spill_->args.resize(size);
  spill_->storage.resize(size);
  args_ = spill_->args.data();
  storage_ = spill_->storage.data();
}

IxoMepErrorEnum Call::EvaluateAll() {
  std::int32_t i = 0;
  for (const IxoMepExprNode* cell = List(); cell != nullptr; cell = cell->Right(), ++i) {
    const IxoMepExprNode& param = *cell->Left();
    args_[i] = &storage_[i];
    // What is stored is lent only when nothing that is evaluated after it can change it.
    const bool lend = i > last_active_ || param.GetType() == IxoMepExprNodeType::Constant;
    const IxoMepErrorEnum code = lend ? BorrowOperand(param, frame_, storage_[i], args_[i])
                                      : EvaluateOperand(param, frame_, storage_[i]);
    if (code != IMEPERR_NONE) return code;
  }
  return IMEPERR_NONE;
}

bool Call::Matches(const SignatureForm& form) const noexcept {
  for (std::int32_t i = 0; i < count_; ++i) {
    if (!MatchesType(Arg(i), form.TypeOf(i, count_))) return false;
  }
  return true;
}

IxoMepValue Call::TakeArg(std::int32_t i) {
  if (args_[i] == &storage_[i]) return std::move(storage_[i]);
  return *args_[i];
}

IxoMepErrorEnum Call::WrongTypes() {
  IxoMepValueList shown;
  for (std::int32_t i = 0; i < count_ && i < kMostShown; ++i) {
    shown.push_back(const_cast<IxoMepValue*>(&Arg(i)));  // lent for reading only
  }
  return WrongTypes(Name(), shown);
}

IxoMepErrorEnum Call::WrongTypes(std::string_view shown,
                                 std::initializer_list<const IxoMepValue*> values) {
  IxoMepValueList list;
  for (const IxoMepValue* value : values) {
    list.push_back(const_cast<IxoMepValue*>(value));  // lent for reading only
  }
  return WrongTypes(shown, list);
}

IxoMepErrorEnum Call::WrongTypes(std::string_view shown, const IxoMepValueList& values) {
  if (values.size() <= kMostShown) {
    return RaiseCall(frame_.text, IMEPERR_WRONG_TYPE, shown, values);
  }
  const IxoMepValueList first(values.begin(), values.begin() + kMostShown);
  return RaiseCall(frame_.text, IMEPERR_WRONG_TYPE, shown, first);
}

IxoMepErrorEnum Call::WrongCount() {
  return RaiseCall(frame_.text, IMEPERR_WRONG_ARGUMENT_COUNT, Name(), {});
}

namespace {

IxoMepErrorEnum RunStages(const BuiltinRow& row, const IxoMepExprNode& node, Frame& frame,
                          IxoMepValue& out) {
  Call call(row, node, frame, out);
  if (const IxoMepErrorEnum code = call.Prepare(); code != IMEPERR_NONE) return code;
  return row.body(call);
}

}  // namespace

IxoMepErrorEnum RunBuiltin(const BuiltinRow& row, const IxoMepExprNode& node, Frame& frame,
                           IxoMepValue& out) {
  IxoMepErrorEnum code = IMEPERR_NONE;
  if (row.signature.Form(0).IsLazy()) {
    // What cannot be had while foreign code runs is the business of whoever began that.
    code = RunStages(row, node, frame, out);
  } else {
    try {
      code = RunStages(row, node, frame, out);
    } catch (const std::bad_alloc& cause) {
      code = RaiseNoMemory(frame.text, IMEPERR_TOO_LONG, cause);
    } catch (const std::length_error& cause) {
      code = RaiseNoMemory(frame.text, IMEPERR_TOO_LONG, cause);
    }
  }
  if (code != IMEPERR_NONE) ValueAccess::SetUndefined(out);
  return code;
}

IxoMepErrorEnum RunHandler(const BuiltinRow& row, const IxoMepExprNode& node,
                           const IxoMepExpressionParser* parser, IxoMepValueSet* scope,
                           IxoMepValue*& result, String& text, bool strict) {
  Frame frame{parser, scope, text, strict};
  const OuterEntry entry;
  IxoMepErrorEnum code = IMEPERR_NONE;
  try {
    IxoMepValue out;
    code = entry.IsAllowed() ? WithinLimits(RunBuiltin(row, node, frame, out), text)
                             : RaiseLimit(text);
    if (code == IMEPERR_NONE && !frame.no_result) StoreResult(result, std::move(out));
  } catch (const std::bad_alloc& cause) {
    code = RaiseNoMemory(text, IMEPERR_TOO_DEEP, cause);
  } catch (const std::length_error& cause) {
    code = RaiseNoMemory(text, IMEPERR_TOO_LONG, cause);
  }
  if (code != IMEPERR_NONE) FailResult(result, scope);
  return code;
}

}  // namespace ixomep
