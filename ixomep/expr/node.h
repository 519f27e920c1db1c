// IxoMepExprNode: one node of an expression tree; a token of the scanner is a node already.
// Nodes are shared by counted references and come from a pool. The members are defined in
// node.cpp (life, parameters), node_copy.cpp, node_text.cpp, evaluate_front.cpp (the evaluation
// members, thin over the evaluator) and, one family a file, in ../builtins/.
// Trees may be deep: no member but evaluation walks them by native recursion.
#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_map>

#include "ixomep/export.h"
#include "ixomep/expr/node_type.h"
#include "ixomep/host/string.h"
#include "ixomep/values/error_code.h"
#include "ixomep/values/value.h"

class IxoMepExpressionParser;
class IxoMepValueSet;

namespace ixomep {
struct NodeAccess;
class TreeSlot;
// Hash and equality of the built-in table: over the text of the name.
struct IXOMEP_API FunctionNameHash {
  std::size_t operator()(const char* name) const noexcept;
};
struct IXOMEP_API FunctionNameEqual {
  bool operator()(const char* a, const char* b) const noexcept;
};
}  // namespace ixomep

class IXOMEP_API IxoMepExprNode {
 public:
  // The signature of every evaluation member and of every built-in handler. result: null to
  // receive a new value, else assigned into; on failure the value is destroyed and result null.
  // strict: reading an unknown variable and every assignment fail with 20.
  using Handler = IxoMepErrorEnum(const IxoMepExpressionParser* parser, IxoMepValueSet* scope,
                                  IxoMepValue*& result, String& errorText, bool strict) const;
  using FunctionCallMap = std::unordered_map<const char*, Handler IxoMepExprNode::*,
                                             ixomep::FunctionNameHash, ixomep::FunctionNameEqual>;

  // One owner, no children. name is an interned address or null. The first node built fills the
  // table of built-in functions.
  IxoMepExprNode(IxoMepExprNodeType kind, const char* name);
  IxoMepExprNode(const IxoMepExprNode&) = delete;
  IxoMepExprNode& operator=(const IxoMepExprNode&) = delete;

  static void* operator new(std::size_t size);
  static void operator delete(void* block) noexcept;

  // One more owner: the node itself, or a deep copy once 65535 further owners exist.
  IxoMepExprNode* NewReference();
  // One owner less; the last one releases the node, its value and its children.
  void DeleteReference() noexcept;
  std::uint32_t ExtraReferences() const noexcept { return extra_references_ & kCountMask; }

  IxoMepExprNodeType GetType() const noexcept { return kind_; }
  // The value of a Constant (borrowed), else null.
  const IxoMepValue* GetValue() const noexcept;
  IxoMepValue* Value() noexcept;
  // The children (borrowed); Left is null for a Constant.
  const IxoMepExprNode* Left() const noexcept;
  const IxoMepExprNode* Right() const noexcept { return right_; }
  // The name of a Variable, else the empty text / null.
  String GetName() const;
  const char* GetNameAddress() const noexcept { return name_; }

  // Parameters of a call, numbered from 1; 0 is the callee; null when there is no such one.
  const IxoMepExprNode* GetParam(std::int32_t i) const noexcept;
  const IxoMepExprNode* GetParam0() const noexcept { return GetParam(0); }
  const IxoMepExprNode* GetParam1() const noexcept { return GetParam(1); }
  const IxoMepExprNode* GetParam2() const noexcept { return GetParam(2); }
  const IxoMepExprNode* GetParam3() const noexcept { return GetParam(3); }
  const IxoMepExprNode* GetParam4() const noexcept { return GetParam(4); }
  std::int32_t GetParamCount() const noexcept;
  std::int32_t GetLambdaParamCount() const noexcept;

  // A deep copy with one owner (the caller's); variables visible in scope (may be null) become
  // constants of their current value.
  IxoMepExprNode* Copy(const IxoMepValueSet* scope) const;
  // The tree as text without blanks; variables visible in scope (may be null) by value.
  String GetPrettyText(const IxoMepValueSet* scope) const;
  // The spelling of a token or operator kind, else "???".
  static String GetOpName(IxoMepExprNodeType kind);
  // Is every variable of the tree called so? Constants are neutral.
  bool IsJustOneVarContained(const String& name) const;

  // --- Evaluation (evaluate_front.cpp) ----------------------------------------------------------
  static std::int32_t m_nCallDepth;

  Handler Evaluate;
  Handler EvaluateOpCall;
  Handler EvaluateFunctionCall;
  Handler EvaluateMethodCall;
  Handler EvaluateObjectSubscriptionCall;
  // result is pointed at the stored value itself (borrowed), created when it is a new variable or
  // map entry.
  IxoMepErrorEnum EvaluateLValue(const IxoMepExpressionParser* parser, IxoMepValueSet* scope,
                                 IxoMepValue*& result, String& errorText) const;
  IxoMepErrorEnum EvaluateArraySubscriptionLValue(const IxoMepExpressionParser* parser,
                                                  IxoMepValueSet* scope, IxoMepValue*& result,
                                                  String& errorText) const;
  IxoMepErrorEnum EvaluateObjectSubscriptionLValue(const IxoMepExpressionParser* parser,
                                                   IxoMepValueSet* scope, IxoMepValue*& result,
                                                   String& errorText) const;
  // Stores a copy of value into the place that this node denotes.
  IxoMepErrorEnum AssignToLValue(IxoMepValue* value, const IxoMepExpressionParser* parser,
                                 IxoMepValueSet* scope, String& errorText) const;
  // The operand becomes the result.
  static IxoMepErrorEnum EvaluateUnaryOpCall(IxoMepExprNodeType kind, IxoMepValue& operand,
                                             String& errorText, bool strict);
  // right becomes the result.
  static IxoMepErrorEnum EvaluateBinaryOpCall(IxoMepExprNodeType kind, const IxoMepValue& left,
                                              IxoMepValue& right, String& errorText, bool strict);
  // Calls the lambda with this call's parameters.
  IxoMepErrorEnum EvaluateLambda(const IxoMepExprNode* lambda, const IxoMepExpressionParser* parser,
                                 IxoMepValueSet* scope, IxoMepValue*& result, String& errorText,
                                 bool strict) const;
  // The first one, two or three parameters in order; stops at the first failure.
  Handler GetParamResult;
  IxoMepErrorEnum GetParamResults(const IxoMepExpressionParser* parser, IxoMepValueSet* scope,
                                  IxoMepValue*& first, IxoMepValue*& second, String& errorText,
                                  bool strict) const;
  IxoMepErrorEnum GetParamResults(const IxoMepExpressionParser* parser, IxoMepValueSet* scope,
                                  IxoMepValue*& first, IxoMepValue*& second, IxoMepValue*& third,
                                  String& errorText, bool strict) const;

  // --- Built-in functions (../builtins/) --------------------------------------------------------
  // Name to handler; filled once, before the first evaluation.
  static FunctionCallMap aFunctionCallMap;

  Handler _cond, _mepwhile, _mepfor, _fortok, _meptry, _set;                      // control.cpp
  Handler _eval, _parse, _lambda, _error, _type, _valofvar, _curvars, _internal;  // meta.cpp
  Handler _curly, _curlycolon, _array, _map, _merase, _object;                    // collections.cpp
  Handler _tokcnt, _token, _tokindex, _tokcat, _tokunion, _tokisect, _tokdiff;    // token_lists.cpp
  Handler _tokstr, _valtokstr, _strarray, _valarray;                              // token_lists.cpp
  Handler _areplace, _aappend, _ainsert, _aerase, _asinsert;                      // arrays.cpp
  Handler _search, _bsearch, _replace, _replall;                                  // search.cpp
  Handler _copy, _lower, _upper, _ilower, _iupper, _mstr, _uistr, _uival;         // strings.cpp
  Handler _regex, _byte;                                                          // strings.cpp
  Handler _base64encode, _base64decode, _toutf8, _fromutf8, _tooem, _fromoem;     // encodings.cpp
  Handler _encodeuri, _tourlquerystring;                                          // encodings.cpp
  Handler _pow, _min, _max, _random, _getTickCount, _abs;                         // numbers.cpp
  Handler _rgbval, _rgb2hsv, _hsvval, _hsv2rgb;                                   // colors.cpp
  // The sixteen mathematical functions; name chooses.
  IxoMepErrorEnum _math(const IxoMepExpressionParser* parser, IxoMepValueSet* scope,
                        const String& name, IxoMepValue*& result, String& errorText,
                        bool strict) const;

 private:
  friend struct ixomep::NodeAccess;
  friend class ixomep::TreeSlot;
  // The count of further owners never passes 16 bits. Beside it stand the bucket of a scope in
  // which the name is looked up, and in the top two bits what the engine knows of the tree that
  // begins here (NodeAccess::Mark).
  static constexpr std::uint32_t kCountMask = 0xffffu;
  static constexpr std::uint32_t kBucketShift = 16;
  static constexpr std::uint32_t kMaxExtraReferences = 65535;
  // Complete, in a block that the caller has.
  IxoMepExprNode(IxoMepExprNodeType kind, std::uint32_t bits, IxoMepExprNode* left,
                 const char* name) noexcept
      : kind_(kind), extra_references_(bits), left_(left), right_(nullptr), name_(name) {}
  ~IxoMepExprNode() = default;  // DeleteReference is the only way out

  static void FillFunctionTable() {
    static const bool is_filled = (InitFunctionCallMap(), true);
    static_cast<void>(is_filled);
  }
  static void InitFunctionCallMap();  // ../builtins/table.cpp

  IxoMepExprNodeType kind_;
  mutable std::uint32_t extra_references_;
  union {
    IxoMepExprNode* left_;
    IxoMepValue* value_;  // of a Constant; owned
  };
  IxoMepExprNode* right_;
  const char* name_;
};

static_assert(sizeof(IxoMepExprNode) == 32);
