// Internal: the few questions that values ask of the expression engine. Answered in
// ../expr/engine_hooks.cpp, so that values need no header of expr.
#pragma once

#include <cstdint>

#include "ixomep/values/element_list.h"
#include "ixomep/values/value.h"

namespace ixomep {

// Expressions: clone through the virtual CreateCopy, destroy, text as GetExpression(null) gives it.
IxoMepExpressionParser* CloneExpression(const IxoMepExpressionParser* parser);
void DestroyExpression(IxoMepExpressionParser* parser) noexcept;
String TextOfExpression(const IxoMepExpressionParser* parser);

// Lambdas: one more counted reference (a deep copy at the cap), one less, parameter count.
IxoMepExprNode* KeepLambda(IxoMepExprNode* lambda);
void DropLambda(IxoMepExprNode* lambda) noexcept;
std::int32_t LambdaParamCount(const IxoMepExprNode* lambda) noexcept;

// A predicate of a sort: binds copies of first and second in a fresh scope without a parent and
// evaluates the body; truth is its integer reading > 0. The lambda is held during the call.
IxoMepErrorEnum ApplyPredicate(IxoMepExprNode* lambda, const IxoMepValue& first,
                               const IxoMepValue& second, bool& truth, String& error_text);

// Sorts the elements as the exchanges by that predicate would, when it only compares one quiet
// expression of either element; false, and nothing changed, for any other (sort_by_key.cpp).
bool SortByKey(const IxoMepExprNode& lambda, ElementList& items);

// Destroys nodes that wait for their destruction; called by the outermost teardown. True when
// there were any.
bool BuryDoomedNodes() noexcept;

// Is there native stack left for one more level of recursion?
bool HasStack() noexcept;

}  // namespace ixomep
