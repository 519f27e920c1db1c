// Sorting by a lambda such as lambda(a, b, a.x < b.x): one that compares what one expression makes
// of either element. Its outcome is a stable sort by that key, so that each key is evaluated once
// and 1000 elements cost some 10 000 comparisons instead of half a million calls.
#include <algorithm>
#include <exception>
#include <utility>
#include <vector>

#include "ixomep/expr/binary_operators.h"
#include "ixomep/expr/call_depth.h"
#include "ixomep/expr/evaluator.h"
#include "ixomep/expr/scalar.h"
#include "ixomep/expr/value_set_pool.h"
#include "ixomep/values/engine_hooks.h"

namespace ixomep {

namespace {

using Kind = IxoMepExprNodeType;
using Type = IxoMepValueType;

// Numbers that only compare equal are not the same.
bool AreSame(const IxoMepValue* a, const IxoMepValue* b) {
  if (a == nullptr || b == nullptr || a->GetType() != b->GetType()) return false;
  return IsScalar(*a) ? ValueAccess::Bits(*a) == ValueAccess::Bits(*b) : *a == *b;
}

// Are the trees the same, the one name standing for the other? Quiet trees, which are small.
bool AreAlike(const IxoMepExprNode* a, const char* name_of_a, const IxoMepExprNode* b,
              const char* name_of_b) {
  for (; a != nullptr && b != nullptr; a = a->Right(), b = b->Right()) {
    if (a->GetType() != b->GetType()) return false;
    if (a->GetType() == Kind::Variable) {
      const char* const name = a->GetNameAddress();
      return name == name_of_a ? b->GetNameAddress() == name_of_b
                               : name != name_of_b && name == b->GetNameAddress();
    }
    if (a->GetType() == Kind::Constant) return AreSame(a->GetValue(), b->GetValue());
    if (a->GetType() == Kind::ObjectSubscription) {
      // Behind the point stands a member's name, which is no variable.
      return MemberName(*a) == MemberName(*b) &&
             AreAlike(a->Left(), name_of_a, b->Left(), name_of_b);
    }
    if (!AreAlike(a->Left(), name_of_a, b->Left(), name_of_b)) return false;
  }
  return a == b;
}

// The one expression that the lambda compares by, seen from its first parameter.
struct SortKey {
  const IxoMepExprNode* expression = nullptr;
  const char* parameter = nullptr;
  Kind comparison = Kind::Less;  // of the first element's key with the second's
};

bool FindKey(const IxoMepExprNode& lambda, SortKey& key) {
  const IxoMepExprNode* const body = lambda.Right();
  const IxoMepExprNode* const first = lambda.Left();
  const IxoMepExprNode* const second = first != nullptr ? first->Left() : nullptr;
  if (body == nullptr || second == nullptr) return false;
  if (body->GetType() != Kind::Less && body->GetType() != Kind::Greater) return false;
  if (body->Left() == nullptr || !IsQuiet(*body)) return false;
  const char* const a = first->GetNameAddress();
  const char* const b = second->GetNameAddress();
  if (a == b) return false;  // the second argument takes the place of the first
  if (AreAlike(body->Left(), a, body->Right(), b)) {
    key = {body->Left(), a, body->GetType()};
    return true;
  }
  if (!AreAlike(body->Left(), b, body->Right(), a)) return false;
  key = {body->Right(), a, body->GetType() == Kind::Less ? Kind::Greater : Kind::Less};
  return true;
}

struct KeyedElement {
  IxoMepValue key;
  IxoMepValue* element;
};

// The keys of all elements: all numbers or all texts, which are in a total order. False when they
// are not, or one cannot be had: then the exchanges say what happens.
bool EvaluateKeys(const SortKey& key, const ElementList& items, std::vector<KeyedElement>& keyed) {
  const PooledScope scope(nullptr);
  IxoMepValue& argument = *scope->NewGetLValue(key.parameter);
  String text;
  Frame frame{nullptr, scope.get(), text, false};
  // Copying an element may call the host, who may change the array.
  const IxoMepValueList before(items.begin(), items.end());
  keyed.reserve(before.size());
  bool are_numbers = true;
  bool are_texts = true;
  for (std::size_t i = 0; i < before.size(); ++i) {
    IxoMepValue* const element = before[i];
    if (i >= items.size() || items[i] != element) return false;
    argument = element != nullptr ? *element : *IxoMepValue::GetNull();
    IxoMepValue value;
    if (!LimitWatch::Step()) return false;
    if (EvaluateOperand(*key.expression, frame, value) != IMEPERR_NONE) return false;
    are_numbers =
        are_numbers && (value.GetType() == Type::Integer || value.GetType() == Type::Real);
    are_texts = are_texts && value.GetType() == Type::String;
    if (!are_numbers && !are_texts) return false;
    keyed.push_back({std::move(value), element});
  }
  return std::equal(items.begin(), items.end(), before.begin(), before.end());
}

}  // namespace

bool SortByKey(const IxoMepExprNode& lambda, ElementList& items) {
  // In a long chain of evaluations the first call might be refused.
  constexpr std::int32_t kRoom = 32;
  SortKey key;
  if (IxoMepExprNode::m_nCallDepth + kRoom > CallDepth::kMax || !FindKey(lambda, key)) return false;
  try {
    std::vector<KeyedElement> keyed;
    if (!EvaluateKeys(key, items, keyed)) return false;
    String text;
    std::stable_sort(keyed.begin(), keyed.end(), [&](const KeyedElement& a, const KeyedElement& b) {
      LimitWatch::Work();
      IxoMepValue truth;
      ApplyBinaryTo(key.comparison, a.key, b.key, truth, text);
      return truth.GetInt() > 0;
    });
    std::transform(keyed.begin(), keyed.end(), items.begin(),
                   [](const KeyedElement& k) { return k.element; });
    return true;
  } catch (const LimitExceeded&) {
    throw;
  } catch (const std::exception&) {  // no memory: the exchanges need none
    return false;
  }
}

}  // namespace ixomep
