// Fuzz target: different forms of one expression. A copy of a tree has its shape and gives what the
// tree gives; so does the pretty text, read again, of trees that it can tell; so does a copy that
// has captured the variables, when evaluating it changes nothing.
#include <cctype>
#include <memory>
#include <vector>

#include "fuzz/support/bounds.h"
#include "fuzz/support/bytes.h"
#include "fuzz/support/evaluation.h"
#include "fuzz/support/fuzz_host.h"
#include "ixomep/builtins/handlers.h"
#include "ixomep/builtins/table.h"
#include "ixomep/expr/node_ptr.h"
#include "ixomep/expr/program.h"
#include "ixomep/values/slot.h"

using namespace ixomep::fuzz;
using ixomep::NodePtr;
using ixomep::ValuePtr;
using Kind = IxoMepExprNodeType;
using Type = IxoMepValueType;

namespace {

constexpr std::size_t kMaxNodes = 2000;

// The nodes of a tree, each before its children; empty for a tree that is too large.
std::vector<const IxoMepExprNode*> NodesOf(const IxoMepExprNode& root) {
  std::vector<const IxoMepExprNode*> nodes{&root};
  for (std::size_t at = 0; at < nodes.size(); ++at) {
    const IxoMepExprNode* const node = nodes[at];
    if (node->GetType() == Kind::Constant) continue;
    for (const IxoMepExprNode* child : {node->Left(), node->Right()}) {
      if (child != nullptr) nodes.push_back(child);
    }
    if (nodes.size() > kMaxNodes) return {};
  }
  return nodes;
}

bool SameShape(const IxoMepExprNode& a, const IxoMepExprNode& b) {
  const auto left = NodesOf(a);
  const auto right = NodesOf(b);
  if (left.size() != right.size()) return false;
  for (std::size_t i = 0; i < left.size(); ++i) {
    if (left[i]->GetType() != right[i]->GetType()) return false;
    if (left[i]->GetNameAddress() != right[i]->GetNameAddress()) return false;
    if (left[i]->GetType() == Kind::Constant &&
        Shown(left[i]->GetValue()) != Shown(right[i]->GetValue())) {
      return false;
    }
  }
  return true;
}

bool IsOperator(Kind kind) { return kind > Kind::Comma; }

// Does the pretty text tell a parameter or index apart from its neighbours?
bool IsToldAsParameter(const IxoMepExprNode& item) {
  const IxoMepExprNode* const value = item.Left();
  return value != nullptr && value->GetType() != Kind::Comma && value->GetType() != Kind::Assign;
}

// A "?" in front of a name is not printed, and what stands behind it need not look like a name: it
// may begin otherwise, and hold hyphens.
bool HasName(const IxoMepExprNode* node) {
  if (node == nullptr || node->GetType() != Kind::Variable) return false;
  const char* const name = node->GetNameAddress();
  return name != nullptr && std::islower(static_cast<unsigned char>(*name)) != 0 &&
         std::string_view(name).find('-') == std::string_view::npos;
}

bool IsTold(const IxoMepExprNode& node) {
  switch (node.GetType()) {
    case Kind::Constant: {
      const IxoMepValue& value = *node.GetValue();
      return value.GetType() == Type::String ||
             (value.GetType() == Type::Integer && value.GetInt() >= 0);
    }
    case Kind::Variable:
      return HasName(&node);
    case Kind::FunctionCall:
    case Kind::ArraySubscription:
      return HasName(node.Left());
    case Kind::ObjectSubscription:
      return HasName(node.Left()) && HasName(node.Right());
    case Kind::ParamItem:
      return IsToldAsParameter(node);
    case Kind::Assign:
    case Kind::Comma:
      return true;
    default:
      return IsOperator(node.GetType());
  }
}

bool IsPureFunction(const IxoMepExprNode* callee) {
  if (!HasName(callee)) return false;
  const std::string_view name = callee->GetNameAddress();
  for (const ixomep::BuiltinRow& row : ixomep::kMathRows) {
    if (name == row.name) return true;
  }
  for (const ixomep::BuiltinRow& row : ixomep::BuiltinRows()) {
    if (name != row.name) continue;
    // These look at variables by name or at the tree.
    if (name == "valofvar" || name == "curvars" || name == "eval" || name == "internal") {
      return false;
    }
    return !row.signature.Form(0).IsLazy() || name == "cond";
  }
  return false;
}

// Is the node's value the same whether names are looked up or captured?
bool IsPure(const IxoMepExprNode& node) {
  switch (node.GetType()) {
    case Kind::Assign:
    case Kind::ObjectSubscription:
      return false;
    case Kind::FunctionCall:
      return IsPureFunction(node.Left());
    case Kind::Variable:
      return node.GetName() != "w";  // a reference is captured as what it refers to
    default:
      return true;
  }
}

bool AllAre(const std::vector<const IxoMepExprNode*>& nodes, bool (*good)(const IxoMepExprNode&)) {
  for (const IxoMepExprNode* node : nodes) {
    if (!good(*node)) return false;
  }
  return !nodes.empty();
}

// What evaluating the tree leaves behind; empty when it comes to its bounds.
std::string OutcomeOf(const IxoMepExprNode& tree) {
  const Bounds bounds;
  Scene scene;
  String text;
  IxoMepValue* slot = nullptr;
  IxoMepExprNode::m_nCallDepth = 0;
  const IxoMepErrorEnum code = tree.Evaluate(nullptr, &scene.scope(), slot, text, false);
  const ValuePtr result(slot);
  if (bounds.Reached()) return {};
  return std::to_string(code) + " \"" + std::string(text.view()) + "\" " + Shown(slot) + "\n" +
         Shown(&scene.outside());
}

void CheckSame(const std::string& expected, const IxoMepExprNode& other, const char* what) {
  const std::string actual = OutcomeOf(other);
  if (expected.empty() || actual.empty()) return;
  Check(actual == expected, what, expected + "\n---\n" + actual);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const FuzzHost host;
  IxoMepExpressionParser parser;
  String error;
  if (parser.SetExpression(String(TextOf(data, size)), error) != IMEPERR_NONE) return 0;
  const IxoMepExprNode& tree = *parser.GetTree();
  const auto nodes = NodesOf(tree);
  if (nodes.empty()) return 0;

  const bool before = ixomep::UsePrograms(false);
  const std::string expected = OutcomeOf(tree);
  const NodePtr copy(tree.Copy(nullptr));
  Check(SameShape(tree, *copy), "a copy has another shape");
  CheckSame(expected, *copy, "a copy gives another result");

  const String pretty = parser.GetExpression(nullptr);
  if (AllAre(nodes, &IsTold)) {
    IxoMepExpressionParser again;
    Check(again.SetExpression(pretty, error) == IMEPERR_NONE, "the pretty text does not compile",
          pretty.view());
    Check(SameShape(tree, *again.GetTree()), "the pretty text has another shape", pretty.view());
    Check(again.GetExpression(nullptr) == pretty, "the pretty text changes", pretty.view());
    CheckSame(expected, *again.GetTree(), "the pretty text gives another result");
  }

  Scene scene;
  (void)tree.GetPrettyText(&scene.scope());
  const NodePtr captured(tree.Copy(&scene.scope()));
  if (AllAre(nodes, &IsPure))
    CheckSame(expected, *captured, "captured variables change the result");
  (void)OutcomeOf(*captured);
  ixomep::UsePrograms(before);
  return 0;
}
