// Operations of side programs that store: assignment to names, and aappend to one.
#include <new>
#include <utility>

#include "ixomep/expr/program_numbers.h"
#include "ixomep/values/error.h"

namespace ixomep {

namespace {

using Type = IxoMepValueType;

constexpr Reg kUnwantedNumber{kTagInteger, 0};

// `x := x + e` for a text in x: it grows in place. False when e is none.
[[gnu::noinline]] bool AppendText(const AssignOp& op, IxoMepValue& variable, Run& run,
                                  Reg& result) {
  IxoMepValue storage;
  const IxoMepValue* const more = ReadOperand(op.appended->right, run, storage);
  result = kFailure;
  if (more == nullptr) return true;
  if (more->GetType() != Type::String) return false;  // read again: it is quiet
  String& text = ValueAccess::Text(variable);
  const String& added = ValueAccess::Text(*more);
  try {
    if (std::int64_t{text.Len()} + added.Len() <= String::kMaxLength) {
      text += added;
      result = kNothing;
      return true;
    }
  } catch (const std::bad_alloc& cause) {
    result = run.Fail(RaiseNoMemory(run.Text(), IMEPERR_TOO_LONG, cause));
    return true;
  }
  result = run.Fail(Raise(run.Text(), IMEPERR_TOO_LONG));
  return true;
}

// Out of line, so that storing a number stays small.
[[gnu::noinline]] Reg StoreOwner(const AssignOp& assign, IxoMepValueSet& scope, Reg r,
                                 bool wanted) {
  IxoMepValue value = OwnedValue(r);
  ReplaceReference(value);
  const Reg result = wanted ? CopyOf(value) : kNothing;
  TargetOf(FindOrCreate(scope, assign.variable)) = std::move(value);
  return result;
}

template <bool kWanted>
Reg Assign(const Op& op, Run& run) {
  const auto& assign = As<AssignOp>(op);
  if (run.IsStrict()) return RunPlainly(op, run);
  IxoMepValueSet* const scope = run.RealFrame().scope;
  if (scope == nullptr) return RunPlainly(op, run);
  IxoMepValue* variable = &FindOrCreate(*scope, assign.variable);
  if constexpr (!kWanted) {
    if (assign.appended != nullptr && variable->GetType() == Type::String) {
      Reg result{};
      if (AppendText(assign, *variable, run, result)) return result;
    }
  }
  const Reg r = (*assign.value)(run);
  if (IsScalar(r.tag)) {
    if (!assign.quiet) variable = &FindOrCreate(*scope, assign.variable);
    StoreScalar(TargetOf(*variable), static_cast<Type>(r.tag), r.bits);
    return r;
  }
  return r.tag == kTagFailed ? r : StoreOwner(assign, *scope, r, kWanted);
}

// `x := x + e` with a quiet e: a number is added where it stands, x being looked up once. All else
// is evaluated from the start.
template <Shape kMore>
Reg AddOnly(const Op& op, Run& run) {
  const auto& assign = As<AssignOp>(op);
  IxoMepValue* const variable = run.FindToAssign(assign.variable);
  if (variable == nullptr) return RunAssignOnly(op, run);
  const Reg more = NumberAtOnce<kMore>(assign.appended->right, run);
  if (variable->GetType() == Type::Real && IsNumber(more)) {
    ValueAccess::AddToReal(*variable, NumberOf(more));
    return kUnwantedNumber;
  }
  const Reg sum = Compute<IxoMepExprNodeType::Plus>(
      {static_cast<std::int64_t>(variable->GetType()), ValueAccess::Bits(*variable)}, more);
  if (sum.tag == kNotMine.tag) return RunAssignOnly(op, run);
  ValueAccess::SetScalar(*variable, static_cast<Type>(sum.tag), sum.bits);
  return sum;
}

}  // namespace

Op::Fn AddOnlyFunction(Shape more) noexcept {
  switch (more) {
    case Shape::Variable:
      return &AddOnly<Shape::Variable>;
    case Shape::Number:
      return &AddOnly<Shape::Number>;
    case Shape::Argument:
      return &AddOnly<Shape::Argument>;
    default:
      return &RunAssignOnly;
  }
}

Reg RunAssign(const Op& op, Run& run) { return Assign<true>(op, run); }
Reg RunAssignOnly(const Op& op, Run& run) { return Assign<false>(op, run); }

// aappend(name, value) with a quiet value.
Reg RunAppendOnly(const Op& op, Run& run) {
  const auto& append = As<AppendOp>(op);
  IxoMepValueSet* const scope = run.RealFrame().scope;
  IxoMepValue* const variable =
      scope != nullptr && !run.IsStrict()
          ? scope->FindInBucket(append.variable.bucket, append.variable.name)
          : nullptr;
  if (variable == nullptr || variable->GetType() != Type::Array) return RunPlainly(op, run);
  const Reg r = (*append.value)(run);
  if (r.tag == kTagFailed) return r;
  IxoMepValue value = OwnedValue(r);
  ReplaceReference(value);
  try {
    ValueAccess::AppendOwned(*variable, MakeValue(std::move(value)));
  } catch (const std::bad_alloc& cause) {
    return run.Fail(RaiseNoMemory(run.Text(), IMEPERR_TOO_LONG, cause));
  }
  return kNothing;
}

}  // namespace ixomep
