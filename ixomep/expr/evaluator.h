// Internal: tree -> result. What every evaluation carries (Frame), the evaluation of a node into
// storage of the caller, and places that can be assigned to. Dispatch by kind, variables and
// subscripts are in evaluate.cpp, places and assignment in evaluate_place.cpp, calls in
// evaluate_call.cpp; the members of IxoMepExprNode (evaluate_front.cpp) are thin over this.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "ixomep/expr/expression_parser.h"
#include "ixomep/expr/node.h"
#include "ixomep/expr/value_set.h"
#include "ixomep/values/raise.h"
#include "ixomep/values/slot.h"
#include "ixomep/values/value_rep.h"

namespace ixomep {

struct Frame {
  const IxoMepExpressionParser* parser;  // may be null
  IxoMepValueSet* scope;                 // may be null: then every name is unknown
  String& text;                          // error text of the innermost failure
  bool strict;
  // Did the evaluation that completed last leave its result unset? Operands and arguments count
  // as undefined then; the outermost caller keeps its slot as it was.
  bool no_result = false;

  // The same evaluation with another scope or flag.
  Frame In(IxoMepValueSet* other) const { return Frame{parser, other, text, strict}; }
  Frame With(bool other_strict) const { return Frame{parser, scope, text, other_strict}; }
};

// Evaluates the node; out may hold anything and receives the result. On failure out is undefined
// and frame.text holds the message. Memory that cannot be had is code 38.
IxoMepErrorEnum Evaluate(const IxoMepExprNode& node, Frame& frame, IxoMepValue& out);

// The same for an operand, argument or element: a result left unset counts as undefined.
inline IxoMepErrorEnum EvaluateOperand(const IxoMepExprNode& node, Frame& frame, IxoMepValue& out) {
  const IxoMepErrorEnum code = Evaluate(node, frame, out);
  frame.no_result = false;
  return code;
}

// The rule for failures at the border: the value in the slot is destroyed and the slot nulled; a
// variable of the scope is left to the scope (evaluate_front.cpp).
void FailResult(IxoMepValue*& slot, const IxoMepValueSet* scope) noexcept;

// Can evaluating this node change nothing and call nobody (a constant or a name)? Then a value
// borrowed from a variable before it is still what it was.
inline bool IsInert(const IxoMepExprNode& node) noexcept {
  return node.GetType() == IxoMepExprNodeType::Constant ||
         node.GetType() == IxoMepExprNodeType::Variable;
}

// The same for operators, subscripts and properties of such nodes, or a list of them. A tree that
// is not small counts as not inert.
bool IsQuiet(const IxoMepExprNode& node) noexcept;

// May evaluating this node take steps (limit_watch.h)? A tree that is not small counts as if.
bool MayTakeSteps(const IxoMepExprNode& node) noexcept;

// Reads an operand without copying where it is stored somewhere already (a constant, a variable,
// an element or property of one): on success value points at the stored value (borrowed until
// anything else is evaluated that is not inert or quiet) or at storage.
IxoMepErrorEnum BorrowOperand(const IxoMepExprNode& node, Frame& frame, IxoMepValue& storage,
                              const IxoMepValue*& value);

// What a place is wanted for.
enum class PlaceUse : std::uint8_t {
  Assign,           // to store into: names and map entries are created, references followed
  Lend,             // the same, and a pointer to it leaves the engine
  Receive,          // the receiver of a method: nothing is created, no reference is followed
  ReceiveToChange,  // the same for a method that changes its receiver
};

// A place that can be assigned to, or used in place: the path to it, its expressions evaluated.
// The place itself is found anew at every use, because what was evaluated in between may have
// moved or erased it.
class Place {
 public:
  // Does the node denote a place (a name, or subscripts and members of one)?
  static bool IsPlace(const IxoMepExprNode& node) noexcept;
  // Evaluates the path of node and checks that it leads somewhere now (for Assign and Lend a name
  // or map entry is created). 31 for a node that is no place; 21, 26, 27, 42 as the steps give; 20
  // for a name that cannot be had.
  IxoMepErrorEnum Evaluate(const IxoMepExprNode& node, Frame& frame,
                           PlaceUse use = PlaceUse::Assign);
  // Where the path leads now (borrowed until anything else is evaluated; for Assign and Lend a
  // reference at the end is followed). A receiver that is stored nowhere (an absent map entry, a
  // text's length) is a temporary of the place.
  IxoMepErrorEnum Find(Frame& frame, IxoMepValue*& value);
  // Stores value there, what it refers to instead of a reference; the stored value keeps its
  // identity.
  IxoMepErrorEnum Store(Frame& frame, IxoMepValue&& value);
  // The same without looking for the place again: only when nothing but quiet nodes have been
  // evaluated since Evaluate, and for a value that shares no storage with the place (no container).
  void StoreAtOnce(IxoMepValue&& value) noexcept { *found_ = std::move(value); }
  bool IsPlainVariable() const noexcept { return steps_.empty(); }
  // Does the path end in a map entry, and was that entry created by Evaluate?
  bool CreatedMapEntry() const noexcept { return created_entry_; }

 private:
  struct Step {
    IxoMepValue index;               // of a subscription
    const char* property = nullptr;  // of a member access
  };
  bool Creates() const noexcept { return use_ == PlaceUse::Assign || use_ == PlaceUse::Lend; }
  IxoMepErrorEnum FindRoot(Frame& frame, IxoMepValue*& value) const;
  IxoMepErrorEnum AddLevel(const IxoMepExprNode& node, Frame& frame, IxoMepValue*& value);
  // One step from value: to the element, entry or property.
  IxoMepErrorEnum Follow(Frame& frame, const Step& step, IxoMepValue*& value);
  IxoMepErrorEnum FollowIndex(Frame& frame, const Step& step, IxoMepValue*& value);
  IxoMepErrorEnum FollowProperty(Frame& frame, const Step& step, IxoMepValue*& value);
  IxoMepValue* ElementOf(IxoMepValue& array, std::size_t position) const;
  IxoMepValue* EntryOf(IxoMepValue& map, const IxoMepValue& key);

  PlaceUse use_ = PlaceUse::Assign;
  const char* name_ = nullptr;
  std::vector<Step> steps_;
  bool created_entry_ = false;
  IxoMepValue* found_ = nullptr;  // where Evaluate found the place
  IxoMepValue temporary_;
};

// Selects one element or entry by index for reading: an array, a map, else 21. selected is
// borrowed from base.
IxoMepErrorEnum SelectElement(const IxoMepValue& base, const IxoMepValue& index, Frame& frame,
                              const IxoMepValue*& selected);
// 21 for an index or key that is none.
IxoMepErrorEnum FailIndex(const IxoMepValue& index, String& text);
// An index of an array as a position: 21 unless it is an integer, 26, 27.
IxoMepErrorEnum ReadPosition(const IxoMepValue& array, const IxoMepValue& index, String& text,
                             std::size_t& position);
// 21 for a subscript of a value that has no elements.
IxoMepErrorEnum FailSubscript(const IxoMepValue& base, String& text);

// The member that an ObjectSubscription names; the empty text, which is no interned name, when
// what stands behind the point is no name.
const char* MemberName(const IxoMepExprNode& node) noexcept;
// 42 for that property or method.
IxoMepErrorEnum FailMember(const IxoMepValue& value, const char* name, String& text);

// Replaces a reference by a copy of what it refers to, for a value that is about to be stored or
// to leave a method call. A circle of references becomes undefined.
void ReplaceReference(IxoMepValue& value);

// The workers of Evaluate, one for each kind of node that is not simply read.
IxoMepErrorEnum EvaluateAssignment(const IxoMepExprNode& node, Frame& frame, IxoMepValue& out);
IxoMepErrorEnum EvaluateOperator(const IxoMepExprNode& node, Frame& frame, IxoMepValue& out);
IxoMepErrorEnum EvaluateProperty(const IxoMepExprNode& node, Frame& frame, IxoMepValue& out);
IxoMepErrorEnum EvaluateCall(const IxoMepExprNode& call, Frame& frame, IxoMepValue& out);
IxoMepErrorEnum EvaluateMethod(const IxoMepExprNode& call, Frame& frame, IxoMepValue& out);

// Calls a lambda with the parameters of a call node. The lambda is held during the call.
IxoMepErrorEnum CallLambda(const IxoMepExprNode& lambda, const IxoMepExprNode& call, Frame& frame,
                           IxoMepValue& out);

// Calls the variable that the call names, once the hook has answered 22 for it. An undefined one
// keeps that code and the hook's text.
IxoMepErrorEnum CallVariable(const IxoMepExprNode& call, const String& text_before, Frame& frame,
                             IxoMepValue& out);

// The operators on values (binary_operators.cpp, unary_operators.cpp). Results replace the right
// and the only operand; on failure these are unspecified but valid.
IxoMepErrorEnum ApplyBinary(IxoMepExprNodeType kind, const IxoMepValue& left, IxoMepValue& right,
                            String& text);
IxoMepErrorEnum ApplyUnary(IxoMepExprNodeType kind, IxoMepValue& operand, String& text);

// The truth of a condition of cond and while; false when value is no condition (code 21 then).
bool ReadCondition(const IxoMepValue& value, bool& truth) noexcept;

}  // namespace ixomep
