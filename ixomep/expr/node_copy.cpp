// Copies of trees, plain and with capture (capture.h says what is captured). An explicit list of
// tasks instead of recursion; every new node is hung into the copy before its children are made,
// so that the root owns all of it when an allocation fails half-way.
#include <cstdint>
#include <exception>
#include <unordered_map>
#include <utility>
#include <vector>

#include "ixomep/expr/builtin_table.h"
#include "ixomep/expr/capture.h"
#include "ixomep/values/string_address_map.h"
#include "ixomep/values/value_rep.h"

namespace ixomep {
namespace {

using Kind = IxoMepExprNodeType;

class Copier {
 public:
  Copier(const IxoMepValueSet* scope, const char* recursive_name)
      : scope_(scope), recursive_name_(recursive_name) {}

  void Exclude(const char* name) {
    if (scope_ != nullptr) ++excluded_[name];
  }

  NodePtr Copy(const IxoMepExprNode& root) {
    NodePtr copy = CopyNode(root, Role::Plain);
    while (!tasks_.empty()) {
      const Task task = tasks_.back();
      tasks_.pop_back();
      if (task.target == nullptr) {
        LeaveLambda(*task.source);
      } else {
        Hang(*task.target, task.side, CopyNode(*task.source, task.role));
      }
    }
    return copy;
  }

 private:
  enum class Side : std::uint8_t { Left, Right };
  enum class Role : std::uint8_t { Plain, Callee, Name };  // Name: never captured

  struct Task {
    const IxoMepExprNode* source;
    IxoMepExprNode* target;  // null: the parameters of the call `source` of "lambda" end here
    Side side;
    Role role;
  };

  static void Hang(IxoMepExprNode& parent, Side side, NodePtr child) {
    if (side == Side::Left) {
      NodeAccess::SetLeft(parent, std::move(child));
    } else {
      NodeAccess::SetRight(parent, std::move(child));
    }
  }

  void Later(const IxoMepExprNode* source, IxoMepExprNode& target, Side side,
             Role role = Role::Plain) {
    if (source == nullptr) return;
    if (source->Left() == nullptr && source->Right() == nullptr) {
      Hang(target, side, CopyNode(*source, role));  // a leaf: done at once, the list stays short
    } else {
      tasks_.push_back({source, &target, side, role});
    }
  }

  // The node itself; its children are left to later tasks.
  NodePtr CopyNode(const IxoMepExprNode& source, Role role) {
    if (source.GetType() == Kind::Variable) {
      const IxoMepValue* const value = Captured(source, role);
      if (value != nullptr) return MakeConstant(ValueAccess::Follow(*value));
    }
    if (const IxoMepValue* const value = source.GetValue()) return MakeConstant(*value);
    NodePtr copy = NodePtr::Make(source.GetType(), source.GetNameAddress());
    PlanChildren(source, *copy);
    return copy;
  }

  static NodePtr MakeConstant(const IxoMepValue& value) {
    ValuePtr copied = MakeValue(value);
    NodePtr node = NodePtr::Make(Kind::Constant);
    NodeAccess::SetValue(*node, std::move(copied));
    return node;
  }

  // The variable that the name becomes a constant of, or null when it stays a name.
  const IxoMepValue* Captured(const IxoMepExprNode& variable, Role role) const {
    if (scope_ == nullptr || role == Role::Name) return nullptr;
    const char* const name = variable.GetNameAddress();
    const IxoMepValue* const value = scope_->_find(name);
    if (value == nullptr || excluded_.contains(name)) return nullptr;
    if (role == Role::Callee && !IsCapturedCallee(name, *value)) return nullptr;
    return value;
  }

  bool IsCapturedCallee(const char* name, const IxoMepValue& value) const {
    return name != recursive_name_ &&
           ValueAccess::Follow(value).GetType() == IxoMepValueType::Lambda && !IsBuiltinName(name);
  }

  void PlanChildren(const IxoMepExprNode& source, IxoMepExprNode& copy) {
    switch (source.GetType()) {
      case Kind::FunctionCall:
        if (BuildsLambda(source)) return PlanLambdaCall(source, copy);
        Later(source.Right(), copy, Side::Right);
        return Later(source.Left(), copy, Side::Left, Role::Callee);
      case Kind::ObjectSubscription:
        Later(source.Right(), copy, Side::Right, Role::Name);
        return Later(source.Left(), copy, Side::Left);
      case Kind::Lambda:
        return PlanLambda(source, copy);
      default:
        Later(source.Right(), copy, Side::Right);
        return Later(source.Left(), copy, Side::Left);
    }
  }

  // Does evaluating the node build a lambda? Only a capture needs to know.
  bool BuildsLambda(const IxoMepExprNode& call) const {
    static const char* const lambda = Intern("lambda");
    const IxoMepExprNode* const callee = call.Left();
    return scope_ != nullptr && callee != nullptr && callee->GetType() == Kind::Variable &&
           callee->GetNameAddress() == lambda && call.Right() != nullptr;
  }

  // A lambda inside: its parameters stay names, in their list and in its body, the last argument.
  // The body's task is done before anything planned earlier, between here and LeaveLambda.
  void PlanLambdaCall(const IxoMepExprNode& source, IxoMepExprNode& copy) {
    Later(source.Left(), copy, Side::Left, Role::Name);
    IxoMepExprNode* last = &copy;
    const IxoMepExprNode* cell = source.Right();
    for (; cell->Right() != nullptr; cell = cell->Right()) {
      last = AddCell(*last);
      Later(cell->Left(), *last, Side::Left, Role::Name);
    }
    last = AddCell(*last);
    EnterLambda(source);
    tasks_.push_back({&source, nullptr, Side::Left, Role::Plain});
    Later(cell->Left(), *last, Side::Left);
  }

  static IxoMepExprNode* AddCell(IxoMepExprNode& before) {
    NodePtr cell = NodePtr::Make(Kind::ParamItem);
    IxoMepExprNode* const added = cell.get();
    NodeAccess::SetRight(before, std::move(cell));
    return added;
  }

  // The root of a lambda's tree; nowhere else does this kind occur.
  void PlanLambda(const IxoMepExprNode& source, IxoMepExprNode& copy) {
    IxoMepExprNode* last = &copy;
    for (const IxoMepExprNode* name = source.Left(); name != nullptr; name = name->Left()) {
      Exclude(name->GetNameAddress());
      NodePtr copied = NodePtr::Make(name->GetType(), name->GetNameAddress());
      IxoMepExprNode* const added = copied.get();
      NodeAccess::SetLeft(*last, std::move(copied));
      last = added;
    }
    Later(source.Right(), copy, Side::Right);
  }

  template <class Use>
  static void ForEachParameter(const IxoMepExprNode& call, Use use) {
    for (const IxoMepExprNode* cell = call.Right(); cell->Right() != nullptr;
         cell = cell->Right()) {
      const IxoMepExprNode* const parameter = cell->Left();
      if (parameter->GetType() == Kind::Variable) use(parameter->GetNameAddress());
    }
  }
  void EnterLambda(const IxoMepExprNode& call) {
    ForEachParameter(call, [this](const char* name) { ++excluded_[name]; });
  }
  void LeaveLambda(const IxoMepExprNode& call) {
    ForEachParameter(call, [this](const char* name) {
      if (--excluded_[name] == 0) excluded_.erase(name);
    });
  }

  const IxoMepValueSet* scope_;
  const char* recursive_name_;
  std::unordered_map<const char*, std::uint32_t> excluded_;  // name -> lambdas that bind it here
  std::vector<Task> tasks_;
};

}  // namespace

NodePtr CopyBody(const IxoMepExprNode& body, const IxoMepValueSet* scope,
                 const std::vector<const char*>& excluded_names, const char* recursive_name) {
  Copier copier(scope, recursive_name);
  for (const char* name : excluded_names) copier.Exclude(name);
  return copier.Copy(body);
}

}  // namespace ixomep

IxoMepExprNode* IxoMepExprNode::Copy(const IxoMepValueSet* scope) const {
  try {
    return ixomep::CopyBody(*this, scope, {}).Release();
  } catch (const std::exception&) {
    return nullptr;  // out of memory
  }
}
