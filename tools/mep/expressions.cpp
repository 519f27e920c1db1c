// One expression text, from compilation to its value. Evaluation errors have no place of their
// own; they are reported for the text as a whole.
#include "tools/mep/expressions.h"

#include <algorithm>
#include <cstdint>
#include <set>
#include <utility>

#include "ixomep/expr/error_place.h"
#include "ixomep/expr/node.h"
#include "tools/mep/diagnostics.h"

namespace mep {
namespace {

using Kind = IxoMepExprNodeType;

// The names that an expression uses as variables, and those that it makes itself: targets of
// assignments, loop variables, parameters of lambdas. Walks with a list of its own, since a tree
// may be as deep as its text is long.
class NameWalk {
 public:
  explicit NameWalk(const IxoMepExprNode* tree) {
    Push(tree);
    while (!pending_.empty()) {
      const IxoMepExprNode* node = pending_.back();
      pending_.pop_back();
      Visit(*node);
    }
  }

  // The used names that are neither made nor in the scope, in the order of the text.
  std::vector<String> Missing(const IxoMepValueSet& scope) const {
    std::vector<String> missing;
    for (const char* name : used_) {
      const bool known = made_.contains(name) || scope.NewIsContained(name);
      if (!known && std::find(missing.begin(), missing.end(), name) == missing.end()) {
        missing.emplace_back(name);
      }
    }
    return missing;
  }

 private:
  void Push(const IxoMepExprNode* node) {
    if (node != nullptr) pending_.push_back(node);
  }

  void Make(const IxoMepExprNode* target) {
    if (target != nullptr && target->GetType() == Kind::Variable) {
      made_.insert(target->GetNameAddress());
    }
  }

  void Visit(const IxoMepExprNode& node) {
    switch (node.GetType()) {
      case Kind::Constant:
        return;
      case Kind::Variable:
        used_.push_back(node.GetNameAddress());
        return;
      case Kind::ObjectSubscription:  // the right side is a member's name
        Push(node.Left());
        return;
      case Kind::Lambda:
        for (const IxoMepExprNode* name = node.Left(); name != nullptr; name = name->Left()) {
          Make(name);
        }
        Push(node.Right());
        return;
      case Kind::FunctionCall:
        VisitCall(node);
        return;
      case Kind::Assign:
        Make(node.Left());
        break;
      default:
        break;
    }
    Push(node.Right());
    Push(node.Left());
  }

  void VisitCall(const IxoMepExprNode& call) {
    const IxoMepExprNode* callee = call.Left();
    if (callee != nullptr && callee->GetType() == Kind::Variable) {
      const String name = callee->GetName();
      if (name == "set" || name == "for" || name == "fortok") Make(call.GetParam1());
      if (name == "lambda") MakeParameters(call);
    } else {
      Push(callee);
    }
    Push(call.Right());
  }

  // lambda(x, y, body) before it is evaluated: all arguments but the last are names.
  void MakeParameters(const IxoMepExprNode& call) {
    for (const IxoMepExprNode* item = call.Right(); item != nullptr && item->Right() != nullptr;
         item = item->Right()) {
      Make(item->Left());
    }
  }

  std::vector<const IxoMepExprNode*> pending_;
  std::vector<const char*> used_;
  std::set<const char*> made_;
};

Evaluation Evaluate(const IxoMepExpressionParser& expression, IxoMepValueSet& scope, bool strict,
                    bool own_scope) {
  Evaluation evaluation;
  IxoMepValue* result = nullptr;
  evaluation.code = expression.Evaluate(&scope, result, evaluation.error_text, strict, own_scope);
  evaluation.value.reset(result);
  if (evaluation.code == IMEPERR_NONE && !evaluation.value) {
    evaluation.value = std::make_unique<IxoMepValue>();
  }
  return evaluation;
}

}  // namespace

Evaluation EvaluateStatement(const IxoMepExpressionParser& statement, IxoMepValueSet& scope) {
  return Evaluate(statement, scope, /*strict=*/false, /*own_scope=*/false);
}

Evaluation EvaluateAttribute(const IxoMepExpressionParser& expression, IxoMepValueSet& scope) {
  Evaluation evaluation = Evaluate(expression, scope, /*strict=*/true, /*own_scope=*/true);
  if (evaluation.code == IMEPERR_UNKNOWN_VARIABLE) {
    std::vector<String> missing = NameWalk(expression.GetTree()).Missing(scope);
    // Nothing is missing: what strictness refused was an assignment.
    if (missing.empty()) return Evaluate(expression, scope, /*strict=*/false, /*own_scope=*/true);
    evaluation.missing = std::move(missing);
  }
  return evaluation;
}

void ReportIfError(const Evaluation& evaluation, const IxoMepExpressionParser& expression,
                   const std::string& source, long line, Diagnostics& diagnostics) {
  if (evaluation.value || !evaluation.missing.empty() ||
      evaluation.code == IMEPERR_UNKNOWN_FUNCTION) {
    return;
  }
  const std::uint32_t own_line = expression.GetLineNo();
  diagnostics.ErrorOnLine(source,
                          own_line == IxoMepExpressionParser::kUnknownLine ? line : long{own_line},
                          evaluation.error_text.view(), evaluation.code);
}

std::string SourceOf(const IxoMepExpressionParser& expression) {
  const String& original = expression.GetOriginalExpression();
  if (original.Search('\n') != String::kNotFound) {
    return std::string(expression.GetExpression(nullptr).view());
  }
  if (original.view().starts_with('{')) return std::string(original.view());
  return "(" + std::string(original.view()) + ")";
}

std::unique_ptr<IxoMepValue> EvaluateText(const String& text, const std::string& source,
                                          IxoMepValueSet& scope, bool strict,
                                          Diagnostics& diagnostics) {
  IxoMepExpressionParser expression;
  String error_text;
  const IxoMepErrorEnum code = expression.SetExpression(text, error_text);
  if (code != IMEPERR_NONE) {
    const std::int32_t offset = ixomep::ErrorPlace::Offset();
    if (offset >= 0) {
      diagnostics.ErrorAt(source, text.view(), static_cast<std::size_t>(offset), error_text.view(),
                          code);
    } else {
      diagnostics.ErrorOnLine(source, 0, error_text.view(), code);
    }
    return nullptr;
  }
  Evaluation evaluation = Evaluate(expression, scope, strict, /*own_scope=*/false);
  if (!evaluation.value) {
    diagnostics.ErrorOnLine(source, 0, evaluation.error_text.view(), evaluation.code);
  }
  return std::move(evaluation.value);
}

}  // namespace mep
