// Internal: side programs. A tree that is evaluated again and again gets a second form: one small
// operation for each node, chosen by what its operands are, that hands its result back in two
// machine registers instead of writing a value object. The tree stays the law: an operation does
// only what is common (numbers, texts, elements, calls of lambdas) and hands everything else,
// every failure included, to the plain evaluation of its node. program_test.cpp compares both.
//
// A lambda that is called from a program gets no scope of its own until somebody could see that
// scope: its arguments stay where they were evaluated (Run), and the scope is made from them when
// a node is evaluated the plain way, a variable is assigned or foreign code is called.
//
// Compiled by program_compile.cpp, kept by program_table.cpp; the operations are in
// program_operators.cpp (operators, reading) and program_calls.cpp (control, calls, assignment).
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <typeinfo>
#include <vector>

#include "ixomep/expr/evaluator.h"
#include "ixomep/expr/expression_parser.h"
#include "ixomep/expr/node.h"
#include "ixomep/expr/scalar.h"
#include "ixomep/expr/stack_guard.h"
#include "ixomep/expr/value_set.h"
#include "ixomep/values/value_rep.h"

namespace ixomep {

// A value in two machine registers: its type's number and its payload. Whoever holds one of a type
// with heap payload owns it and passes it on, or turns it into a value (OwnedValue).
struct Reg {
  std::int64_t tag;
  std::int64_t bits;
};

inline constexpr std::int64_t kTagUndefined = 0;
inline constexpr std::int64_t kTagString = 1;
inline constexpr std::int64_t kTagInteger = 2;
inline constexpr std::int64_t kTagReal = 3;
inline constexpr std::int64_t kTagFailed = -1;  // Run::code and the error text say why
inline constexpr std::int64_t kTagUnset = -2;   // success without a result

inline constexpr Reg kFailure{kTagFailed, 0};
inline constexpr Reg kNothing{kTagUndefined, 0};

inline Reg IntegerReg(std::int32_t n) noexcept {
  return {kTagInteger, static_cast<std::int64_t>(static_cast<std::uint32_t>(n))};
}
inline Reg RealReg(double d) noexcept { return {kTagReal, std::bit_cast<std::int64_t>(d)}; }
inline std::int32_t IntegerOf(Reg r) noexcept { return static_cast<std::int32_t>(r.bits); }
inline double RealOf(Reg r) noexcept { return std::bit_cast<double>(r.bits); }
inline bool IsNumber(Reg r) noexcept { return r.tag == kTagInteger || r.tag == kTagReal; }
inline double NumberOf(Reg r) noexcept {
  return r.tag == kTagInteger ? static_cast<double>(IntegerOf(r)) : RealOf(r);
}

inline IxoMepValue OwnedValue(Reg r) noexcept {
  if (r.tag < 0) return IxoMepValue();
  return ValueAccess::FromBits(static_cast<IxoMepValueType>(r.tag), r.bits);
}
inline Reg RegOf(IxoMepValue&& value) noexcept {
  const auto tag = static_cast<std::int64_t>(value.GetType());
  return {tag, ValueAccess::TakeBits(value)};
}
// Out of line, so that operations on numbers stay small.
[[gnu::noinline]] Reg CopyOfOwner(const IxoMepValue& value);
inline Reg CopyOf(const IxoMepValue& value) {
  const auto tag = static_cast<std::int64_t>(value.GetType());
  return IsScalar(tag) ? Reg{tag, ValueAccess::Bits(value)} : CopyOfOwner(value);
}
inline void Drop(Reg r) noexcept {
  if (r.tag >= 0 && !IsScalar(r.tag)) OwnedValue(r);
}

// A name as the operations look it up.
struct NameRef {
  explicit NameRef(const char* interned) noexcept;
  NameRef() noexcept = default;

  const char* name = nullptr;
  std::uint32_t bucket = 0;
  // Three of 64, for the mask of names that wait for their scopes: that a name seems to be among a
  // few others though it is none of them costs a search of all levels, and happens once in
  // hundreds.
  std::uint64_t bits = 0;

  bool MayBeAmong(std::uint64_t mask) const noexcept { return (mask & bits) == bits; }

  // What the last long search for the name gave: good for that scope until variables come or go.
  struct Found {
    const IxoMepValueSet* scope = nullptr;
    std::uint64_t changes = 0;
    const IxoMepValue* value = nullptr;
  };
  mutable Found found;
};

class Program;

// One evaluation by a program. This class is a root, or a lambda whose scope is there already:
// everything is in the frame's scope. A lambda called from a program is a LambdaRun.
class Run {
 public:
  static constexpr std::int32_t kMaxArguments = 4;

  Run(Frame& frame, std::int32_t entry_depth) noexcept
      : lookup_(frame.scope != nullptr ? frame.scope : &no_scope_),
        frame_(&frame),
        entry_depth_(entry_depth),
        is_strict_(frame.strict) {}
  Run(const Run&) = delete;
  Run& operator=(const Run&) = delete;

  bool IsStrict() const noexcept { return is_strict_; }
  String& Text() noexcept { return NearestFrame().text; }
  const IxoMepExpressionParser* Parser() const noexcept { return NearestFrame().parser; }
  // Does no host answer calls? Then they need not be handed to one. Found out when first asked.
  bool HasPlainParser() noexcept {
    return HasHadPlainParser() || (calls_ == Calls::NotLooked && LooksAtParser());
  }
  // Was that found out, and the answer yes?
  bool HasHadPlainParser() const noexcept { return calls_ == Calls::OfLambdas; }
  // Does a host answer calls, of a class that was met before? One comparison; false otherwise.
  bool HasKnownHost() const noexcept {
    return frame_ != nullptr && frame_->parser != nullptr &&
           &typeid(*frame_->parser) == other_parser_;
  }
  std::int32_t EntryDepth() const noexcept { return entry_depth_; }
  // The innermost scope that is there, and a mask of the names of arguments that are in none.
  const IxoMepValueSet& Scope() const noexcept { return *lookup_; }
  std::uint64_t Waiting() const noexcept { return waiting_; }
  // The program of the lambda that was called; an empty one at a root.
  const Program& Lambda() const noexcept { return *lambda_; }
  // Makes the level's scope, and those of its callers, when they have none yet.
  Frame& RealFrame() {
    if (arguments_ != nullptr) MakeScope();
    return *frame_;
  }
  // The variable that assignment to the name stores into, when it is there at once: in the level's
  // own scope, where nobody else shares its bucket, and names may be assigned to. Else null.
  IxoMepValue* FindToAssign(const NameRef& ref) const noexcept {
    return arguments_ == nullptr && !is_strict_ ? lookup_->FindInline(ref.bucket, ref.name)
                                                : nullptr;
  }
  // The level's own scope, when there is one and names may be assigned to, else null.
  IxoMepValueSet* ScopeToAssign() const noexcept {
    return arguments_ == nullptr && !is_strict_ ? frame_->scope : nullptr;
  }
  // The argument that stands for a parameter, null when the level has a scope.
  const IxoMepValue* Argument(std::int32_t index) const noexcept {
    return arguments_ != nullptr ? &arguments_[index] : nullptr;
  }
  // The variable's value here and now (borrowed), null when absent.
  const IxoMepValue* Find(const NameRef& ref) const noexcept {
    const IxoMepValue* const found = FindAtOnce(ref);
    return found != nullptr ? found : FindFarther(ref);
  }
  // The same where one comparison finds it, else null.
  const IxoMepValue* FindAtOnce(const NameRef& ref) const noexcept {
    return !ref.MayBeAmong(waiting_) ? lookup_->FindInline(ref.bucket, ref.name) : nullptr;
  }
  // The same as Find for a name that is likely to stand in some outer scope.
  const IxoMepValue* FindAgain(const NameRef& ref) const noexcept {
    const bool is_known = !ref.MayBeAmong(waiting_) && ref.found.scope == lookup_ &&
                          ref.found.changes == IxoMepValueSet::Changes();
    return is_known ? ref.found.value : FindFarther(ref);
  }

  Reg Fail(IxoMepErrorEnum failure) noexcept {
    code = failure;
    return kFailure;
  }

  IxoMepErrorEnum code;  // after a failure

 protected:
  Run(Run& caller, const Program& lambda, IxoMepValue* arguments, std::int32_t depth) noexcept;

  void GiveScopeBack() noexcept;

  enum class Calls : std::uint8_t { NotLooked, OfLambdas, OfTheHost };

  IxoMepValueSet* lookup_;     // the innermost scope that is there
  std::uint64_t waiting_ = 0;  // names of arguments without a scope, here and above
  const Program* lambda_ = &no_lambda_;
  IxoMepValue* arguments_ = nullptr;  // null when the level's variables are in frame_->scope
  Frame* frame_;                      // null as long as the level has no scope
  std::int32_t entry_depth_;
  bool is_strict_;
  Calls calls_ = Calls::NotLooked;
  std::int32_t depth_;     // of a LambdaRun: how many of the host's levels are open
  Run* caller_ = nullptr;  // of a LambdaRun
  union {
    Frame own_frame_;  // of a LambdaRun, once MakeScope has made it
  };

 private:
  void MakeScope();
  bool LooksAtParser() noexcept;
  const Frame& NearestFrame() const noexcept {
    const Run* level = this;
    while (level->frame_ == nullptr) level = level->caller_;
    return *level->frame_;
  }
  const IxoMepValue* FindArgument(const char* name) const noexcept;
  const IxoMepValue* FindFarther(const NameRef& ref) const noexcept;

  [[gnu::noinline]] static bool IsPlain(const IxoMepExpressionParser& parser) noexcept;
  static const std::type_info* other_parser_;

  static IxoMepValueSet no_scope_;  // stays empty
  static const Program no_lambda_;
};

// A lambda called from a program, with its arguments, as many as it has parameters. Making one is
// a dozen stores, a good part of what a call costs: what only failures and scopes need is left to
// MakeScope or found at the callers, and the count of open levels is stored from here instead of
// being counted up and down in memory, where each call would wait for the one before it.
class LambdaRun : public Run {
 public:
  // The first one above a root, or of another lambda.
  LambdaRun(Run& caller, const Program& lambda, IxoMepValue* arguments,
            std::int32_t entry_depth) noexcept
      : Run(caller, lambda, arguments, LimitWatch::OpenLevels() + 1) {
    entry_depth_ = entry_depth;
    LimitWatch::SetOpenLevels(depth_);
  }
  // One above another.
  LambdaRun(LambdaRun& caller, const Program& lambda, IxoMepValue* arguments) noexcept
      : Run(caller, lambda, arguments, caller.depth_ + 1) {
    LimitWatch::SetOpenLevels(depth_);
  }
  ~LambdaRun() {
    if (frame_ != nullptr) [[unlikely]]
      GiveScopeBack();
    LimitWatch::SetOpenLevels(depth_ - 1);
  }
  // Once: takes the step of the call. False: RaiseLimit says why.
  bool IsAllowed() const noexcept { return LimitWatch::MayCallAt(depth_); }
};

// Where the count of begun evaluations stands when a node's evaluation begins: at a number, or
// that much above where it stood when the program was entered.
struct SpineDepth {
  std::int32_t count = 0;
  bool above_entry = true;

  SpineDepth Inside() const noexcept { return {count + 1, above_entry}; }
  static SpineDepth AfterAnEnd() noexcept { return {0, false}; }
};

struct Op {
  using Fn = Reg (*)(const Op& op, Run& run);

  Reg operator()(Run& run) const { return fn(*this, run); }

  Fn fn = nullptr;
  const IxoMepExprNode* node = nullptr;
  SpineDepth depth;
};

// Evaluates the operation's node the plain way.
Reg RunPlainly(const Op& op, Run& run);
// Stands the call-depth counter where it would be, before foreign code or plain evaluation runs.
inline void RestoreDepth(const SpineDepth& depth, const Run& run) noexcept {
  IxoMepExprNode::m_nCallDepth = depth.count + (depth.above_entry ? run.EntryDepth() : 0);
}

class QuickTree;
class QuickLambda;

// The operations of one tree, or of one lambda's body. They refer to the nodes of the tree, which
// must outlive them.
class Program {
 public:
  Program() = default;
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  template <class T>
  T& New() {
    auto holder = std::make_unique<Holder<T>>();
    T& made = holder->object;
    holders_.push_back(std::move(holder));
    return made;
  }

  const Op* root = nullptr;
  QuickTree* quick = nullptr;  // of a quiet tree (program_quick.h)
  // The longest chain of evaluations without an end among them that begins with the program.
  std::int32_t spine = 0;

  // Of a lambda: its node and its parameters, different names.
  const IxoMepExprNode* lambda = nullptr;
  std::int32_t parameter_count = 0;
  NameRef parameters[Run::kMaxArguments];
  std::uint64_t parameter_bits = 0;
  QuickLambda* quick_lambda = nullptr;  // of a quiet one (program_quick_lambda.h)

 private:
  struct HolderBase {
    virtual ~HolderBase() = default;
  };
  template <class T>
  struct Holder : HolderBase {
    T object;
  };
  std::vector<std::unique_ptr<HolderBase>> holders_;
};

inline Run::Run(Run& caller, const Program& lambda, IxoMepValue* arguments,
                std::int32_t depth) noexcept
    : lookup_(caller.lookup_),
      waiting_(caller.waiting_ | lambda.parameter_bits),
      lambda_(&lambda),
      arguments_(arguments),
      frame_(nullptr),
      entry_depth_(0),
      is_strict_(caller.is_strict_),
      calls_(caller.calls_),
      depth_(depth),
      caller_(&caller) {}

// Compiles a tree, or a lambda's body when the node is a lambda; what is too deep in it is walked.
// Null for a lambda of unusual shape.
std::unique_ptr<Program> CompileProgram(const IxoMepExprNode& node);

// The programs that were asked for last, one for each slot: finding one again is a comparison.
struct CachedProgram {
  const IxoMepExprNode* node = nullptr;
  const Program* program = nullptr;
  QuickTree* quick = nullptr;  // the program's
};
inline constexpr std::size_t kCachedPrograms = 256;
extern CachedProgram cached_programs[kCachedPrograms];
inline CachedProgram& CachedProgramFor(const IxoMepExprNode& node) noexcept {
  return cached_programs[(reinterpret_cast<std::uintptr_t>(&node) >> 5) % kCachedPrograms];
}

// The program of that node: null for trees without one and, unless a loop is in sight, on the first
// call, so that what is evaluated once is not compiled. Valid while the node lives.
const Program* FindProgram(const IxoMepExprNode& node);
inline const Program* ProgramFor(const IxoMepExprNode& node) {
  const CachedProgram& cached = CachedProgramFor(node);
  if (cached.node == &node) [[likely]]
    return cached.program;
  return FindProgram(node);
}
// Off: everything is walked, until it is switched on again. For comparing both ways. Gives what
// was set before.
bool UsePrograms(bool use) noexcept;
// Called when a node that ProgramFor has seen is destroyed.
void ForgetProgram(const IxoMepExprNode& node) noexcept;

// An evaluation of an expression object, within the limits of the host: evaluates the tree by its
// program when it has one, else plainly; contract as IxoMepExprNode::Evaluate. The tree is held
// meanwhile: a hook may give its owner another one.
IxoMepErrorEnum EvaluateToSlot(const IxoMepExprNode& root, const IxoMepExpressionParser* parser,
                               IxoMepValueSet* scope, IxoMepValue*& result, String& text,
                               bool strict);
// Evaluates the body of a lambda whose arguments are in frame.scope already.
IxoMepErrorEnum EvaluateBody(const IxoMepExprNode& lambda, Frame& frame, IxoMepValue& out);

}  // namespace ixomep
