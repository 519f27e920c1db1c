// Bracketed and braced literals: the extent is cut out, compiled by an expression object and
// folded at once; what needs names that nobody knows yet stays an expression value.
#include <memory>
#include <utility>

#include "ixomep/expr/error_place.h"
#include "ixomep/expr/expression_parser.h"
#include "ixomep/expr/stack_guard.h"
#include "ixomep/parser/extent.h"
#include "ixomep/parser/literal_reader.h"
#include "ixomep/parser/parser.h"
#include "ixomep/values/raise.h"

namespace ixomep {
namespace {

ValuePtr TakeFolded(LiteralContext& context) {
  FoldedLiteral& literal = context.folded->front();
  ValuePtr value = std::move(literal.value);
  context.code = literal.code;
  if (literal.code != IMEPERR_NONE) context.error_text = literal.error_text;
  context.folded->pop_front();
  return value;
}

// Compiles and folds; `source_start` is where the source stands in the text being read.
ValuePtr Fold(std::string_view source, std::size_t source_start, LiteralContext& context) {
  if (!StackGuard::HasRoom()) {
    context.code = Raise(context.error_text, IMEPERR_TOO_DEEP);
    return nullptr;
  }
  if (context.folded != nullptr && !context.folded->empty() &&
      context.folded->front().at == source_start) {
    return TakeFolded(context);
  }
  std::unique_ptr<IxoMepExpressionParser> expression = NewExpression(context.parser);
  context.code = expression->SetExpression(String(source), context.error_text);
  if (context.code != IMEPERR_NONE) {
    if (ErrorPlace::Offset() >= 0) {
      context.error_place = source_start + static_cast<std::size_t>(ErrorPlace::Offset());
    }
    return nullptr;
  }
  expression->SetLineNo(static_cast<std::uint32_t>(context.line));

  IxoMepValue* result = nullptr;
  String evaluation_text;
  const IxoMepErrorEnum code =
      expression->Evaluate(nullptr, result, evaluation_text, /*strict=*/true, /*ownScope=*/false);
  ValuePtr folded(result);
  if (code == IMEPERR_NONE) return folded != nullptr ? std::move(folded) : MakeValue();
  if (code == IMEPERR_UNKNOWN_VARIABLE || code == IMEPERR_UNKNOWN_FUNCTION) {
    ValuePtr kept = MakeValue(expression.get(), true);
    (void)expression.release();
    return kept;
  }
  context.code = code;
  context.error_text = evaluation_text;
  return nullptr;
}

}  // namespace

std::unique_ptr<IxoMepExpressionParser> NewExpression(IxoMepParser* parser) {
  std::unique_ptr<IxoMepExpressionParser> made(parser != nullptr ? parser->NewExprParser()
                                                                 : nullptr);
  return made != nullptr ? std::move(made) : std::make_unique<IxoMepExpressionParser>();
}

ValuePtr ReadExpression(const LiteralText& text, std::size_t& position, LiteralContext& context) {
  const std::size_t first = position + 1;
  const BracketExtent extent = FindBracketEnd(text.bytes, first, '(', ')');
  ValuePtr value = Fold(text.bytes.substr(first, extent.closer - first), first, context);
  position = extent.end;
  return value;
}

ValuePtr ReadArray(const LiteralText& text, std::size_t& position, LiteralContext& context) {
  const std::size_t first = position;
  const BracketExtent extent = FindBracketEnd(text.bytes, first + 1, '{', '}');
  ValuePtr value = Fold(text.bytes.substr(first, extent.end - first), first, context);
  position = extent.end;
  return value;
}

}  // namespace ixomep
