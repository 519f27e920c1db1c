// IxoMepExpressionParser: one compiled expression: what the host holds, evaluates against scopes
// and derives from to add functions. The tree is shared among copies. Defined in
// expression_parser.cpp; scanner and grammar in scanner.cpp and grammar.cpp.
#pragma once

#include <cstdint>
#include <deque>

#include "ixomep/export.h"
#include "ixomep/expr/node.h"
#include "ixomep/expr/value_set.h"
#include "ixomep/host/string.h"
#include "ixomep/values/value.h"

namespace ixomep {
class NodePtr;
class TokenList;
class ExprGrammar;
}  // namespace ixomep

class IXOMEP_API IxoMepExpressionParser {
 public:
  static constexpr std::uint32_t kUnknownLine = 4294967295u;

  IxoMepExpressionParser() noexcept = default;
  IxoMepExpressionParser(const IxoMepExpressionParser& other);  // shares the tree
  // Shares the tree; line number and expression text stay as they were.
  IxoMepExpressionParser& operator=(const IxoMepExpressionParser& other);

  // The order of the virtual members is part of the interface.
  // The hook of hosts: a call of a name that is neither mathematical nor built in. call gives the
  // unevaluated parameters. Return 22 for a name that is not yours: a variable holding a lambda
  // is tried next. A derived class that overrides this form hides the protected one below.
  virtual IxoMepErrorEnum EvaluateFunctionCall(const IxoMepExprNode* call, IxoMepValueSet* scope,
                                               const String& name, IxoMepValue*& result,
                                               String& errorText, bool strict) const;
  virtual ~IxoMepExpressionParser();
  // A copy of the same class; the caller owns it.
  virtual IxoMepExpressionParser* CreateCopy() const;
  // 36, with result and errorText untouched, when there is no expression. result: null to receive
  // a new value, else assigned into; null after a failure. strict: unknown variables and
  // assignments fail with 20. ownScope: variables that the expression creates are discarded.
  virtual IxoMepErrorEnum Evaluate(IxoMepValueSet* scope, IxoMepValue*& result, String& errorText,
                                   bool strict, bool ownScope) const;

  // Compiles text, which becomes the expression text also when that fails. On failure there is no
  // tree and errorText holds the message.
  IxoMepErrorEnum SetExpression(const String& text, String& errorText);
  // The text stays. Without the memory for a copy of value there is no tree afterwards.
  void SetConstant(const IxoMepValue& value);
  // The null value without a tree; the value of a constant (borrowed); null for anything else.
  const IxoMepValue* GetConstant() const noexcept;
  // Owned by the caller.
  static IxoMepExpressionParser* CreateConstantEP(const IxoMepValue& value);
  // "(" the pretty text ")", variables visible in scope (may be null) by value; empty without a
  // tree.
  String GetExpression(const IxoMepValueSet* scope) const;
  const String& GetOriginalExpression() const noexcept { return text_; }
  // Stores a copy of value into the place that the expression denotes; 36 without a tree.
  IxoMepErrorEnum AssignToLValue(IxoMepValue* value, IxoMepValueSet* scope, String& errorText);
  // False without a tree.
  bool IsJustOneVarContained(const String& name) const;
  std::uint32_t GetLineNo() const noexcept { return line_; }
  void SetLineNo(std::uint32_t line) noexcept { line_ = line; }
  // The root of the tree (borrowed), or null.
  const IxoMepExprNode* GetTree() const noexcept { return tree_; }

 protected:
  // "curlineno" and nothing else; 22 for any other name.
  IxoMepErrorEnum EvaluateFunctionCall(IxoMepValueSet* scope, const String& name,
                                       const IxoMepValueList& args, IxoMepValue*& result,
                                       String& errorText, bool strict) const;

 private:
  friend class ixomep::ExprGrammar;

  // The grammar, lowest level first: each consumes tokens from the front of the list and gives
  // the subtree, or null with error and text set.
  using Tokens = ixomep::TokenList;
  using Node = ixomep::NodePtr;
  static Node CommaExpr(Tokens& tokens, std::int32_t& error, String& text);
  static Node AssignmentExpr(Tokens& tokens, std::int32_t& error, String& text);
  static Node OrExpr(Tokens& tokens, std::int32_t& error, String& text);
  static Node AndExpr(Tokens& tokens, std::int32_t& error, String& text);
  static Node EqualityExpr(Tokens& tokens, std::int32_t& error, String& text);
  static Node AddExpr(Tokens& tokens, std::int32_t& error, String& text);
  static Node MultExpr(Tokens& tokens, std::int32_t& error, String& text);
  static Node UnaryExpr(Tokens& tokens, std::int32_t& error, String& text);
  static Node PostfixExpr(Tokens& tokens, std::int32_t& error, String& text);
  static Node PrimaryExpr(Tokens& tokens, std::int32_t& error, String& text);
  static Node ParamList(Tokens& tokens, std::int32_t& error, String& text, std::uint32_t& count,
                        bool& is_map);

  IxoMepExprNode* tree_ = nullptr;  // one counted reference
  std::uint32_t line_ = kUnknownLine;
  String text_;
};
