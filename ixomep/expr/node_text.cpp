// Trees read-only: back to text, and the test for a single variable. Both walk with a list of
// their own instead of recursion; the text is appended to one buffer.
#include "ixomep/expr/node_text.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <exception>
#include <string_view>
#include <vector>

#include "ixomep/expr/node_ptr.h"
#include "ixomep/expr/operator_table.h"
#include "ixomep/expr/stack_guard.h"
#include "ixomep/expr/value_set.h"
#include "ixomep/host/assertion.h"
#include "ixomep/values/value_rep.h"

namespace {

using Kind = IxoMepExprNodeType;

// How a node is written, one letter a piece: L and R the subtrees, l and r the names of the
// children, n the own name or its variable's value, v the value, o the operator, p the head of a
// lambda. Anything else stands for itself.
std::string_view ShapeOf(const IxoMepExprNode& node) {
  switch (node.GetType()) {
    case Kind::Constant:
      return "v";
    case Kind::Variable:
      return "n";
    case Kind::ArraySubscription:
      return "L[R]";
    case Kind::ObjectSubscription:
      return "L.r";
    case Kind::FunctionCall:
      return "l(R)";  // Meant: of the callee only the name, so that o.m(1) is written "(1)"
    case Kind::ParamItem:
      return node.Right() != nullptr ? "L,R" : "L";
    case Kind::Lambda:
      return "pR)";
    default:
      return node.Left() != nullptr ? "(L)o(R)" : "o(R)";
  }
}

// Nodes that are not written to their end yet wait in a list, one entry each.
class Printer {
 public:
  Printer(const IxoMepValueSet* scope, String& out) : scope_(scope), out_(out) {}

  void Print(const IxoMepExprNode& root) {
    Enter(&root);
    while (!open_.empty()) {
      Open& open = open_.back();
      const std::string_view piece = open.rest.substr(0, 1);
      if (piece.empty()) {
        open_.pop_back();
      } else {
        open.rest.remove_prefix(1);
        PrintPiece(*open.node, piece);
      }
    }
    Flush();
  }

 private:
  struct Open {
    const IxoMepExprNode* node;
    std::string_view rest;
  };

  // Most pieces are a byte or two: they are collected.
  void Put(std::string_view piece) {
    if (piece.size() > buffer_.size() - used_) Flush();
    if (piece.size() > buffer_.size()) {
      out_ += piece;
      return;
    }
    std::copy(piece.begin(), piece.end(), buffer_.begin() + static_cast<std::ptrdiff_t>(used_));
    used_ += piece.size();
  }
  void Flush() {
    out_ += std::string_view(buffer_.data(), used_);
    used_ = 0;
  }

  void Enter(const IxoMepExprNode* node) {
    if (node != nullptr) open_.push_back({node, ShapeOf(*node)});
  }

  void PrintPiece(const IxoMepExprNode& node, std::string_view piece) {
    switch (piece.front()) {
      case 'L':
        return Enter(node.Left());
      case 'R':
        return Enter(node.Right());
      case 'l':
        return PrintName(node.Left());
      case 'r':
        return PrintName(node.Right());
      case 'n':
        return PrintVariable(node);
      case 'v':
        return PrintValue(node.GetValue());
      case 'o':
        return Put(ixomep::OperatorText(node.GetType()));
      case 'p':
        return PrintLambdaHead(node);
      default:
        Put(piece);
    }
  }

  void PrintName(const IxoMepExprNode* node) {
    const char* const name = node != nullptr ? node->GetNameAddress() : nullptr;
    if (name != nullptr) Put(name);
  }

  void PrintLambdaHead(const IxoMepExprNode& lambda) {
    Put("lambda(");
    for (const IxoMepExprNode* name = lambda.Left(); name != nullptr; name = name->Left()) {
      PrintName(name);
      Put(",");
    }
  }

  void PrintVariable(const IxoMepExprNode& node) {
    const IxoMepValue* const value =
        scope_ != nullptr ? scope_->_find(node.GetNameAddress()) : nullptr;
    if (value != nullptr) {
      PrintValue(value);
    } else {
      PrintName(&node);
    }
  }

  // A value may be an expression whose tree holds a value of that kind again, and so on: that is
  // recursion through GetText, so it asks for native stack.
  void PrintValue(const IxoMepValue* value) {
    if (value == nullptr) return;
    if (ixomep::StackGuard::HasRoom()) {
      Put(ixomep::ValueAccess::TextOf(*value));
    } else {
      Put("...");
    }
  }

  const IxoMepValueSet* scope_;
  String& out_;
  std::vector<Open> open_;
  std::size_t used_ = 0;
  std::array<char, 512> buffer_;
};

// Does the node itself keep "every variable is called so" true? Children to look at are added.
bool HoldsItself(const IxoMepExprNode& node, std::string_view name,
                 std::vector<const IxoMepExprNode*>& children) {
  switch (node.GetType()) {
    case Kind::Constant:
      return true;
    case Kind::Variable: {
      const char* const own = node.GetNameAddress();
      return (own != nullptr ? std::string_view(own) : std::string_view()) == name;
    }
    case Kind::ObjectSubscription:
    case Kind::Lambda:
      ixomep::ReportAssertion("a member access or a lambda is not expected here");
      return false;
    case Kind::FunctionCall:
      children.push_back(node.Right());
      return true;
    default:
      children.push_back(node.Right());
      children.push_back(node.Left());
      return true;
  }
}

}  // namespace

String ixomep::PrettyTextOf(const IxoMepExprNode& node, const IxoMepValueSet* scope) {
  String text;
  Printer(scope, text).Print(node);
  return text;
}

String IxoMepExprNode::GetPrettyText(const IxoMepValueSet* scope) const {
  try {
    return ixomep::PrettyTextOf(*this, scope);
  } catch (const std::exception&) {
    return String();  // no memory, or more text than a String holds
  }
}

String IxoMepExprNode::GetOpName(Kind kind) { return String(ixomep::OperatorText(kind)); }

bool IxoMepExprNode::IsJustOneVarContained(const String& name) const {
  try {
    std::vector<const IxoMepExprNode*> open = {this};
    while (!open.empty()) {
      const IxoMepExprNode* const node = open.back();
      open.pop_back();
      if (node != nullptr && !HoldsItself(*node, name.view(), open)) return false;
    }
    return true;
  } catch (const std::exception&) {
    return false;  // no memory to look further
  }
}
