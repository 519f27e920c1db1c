// Text -> tree: runs scanner and grammar, checks that nothing is left over, and notes the place of
// a failure. The one spot where running out of memory while compiling turns into a code.
#include "ixomep/expr/parse.h"

#include <exception>

#include "ixomep/expr/error_place.h"
#include "ixomep/expr/grammar.h"
#include "ixomep/expr/scanner.h"

namespace ixomep {
namespace {

NodePtr Build(TokenList& tokens, IxoMepErrorEnum& code, String& error_text) {
  std::int32_t error = 0;
  NodePtr tree = ExprGrammar::Parse(tokens, error, error_text);
  code = static_cast<IxoMepErrorEnum>(error);
  return tree;
}

// The scanner is asked for tokens as the grammar goes, but its failures come first: what cannot be
// read is reported whatever the grammar makes of the tokens before it.
NodePtr ScanAndBuild(const String& text, IxoMepErrorEnum& code, String& error_text) {
  Scanner scanner(text);
  TokenList tokens(text.Len(), scanner);
  String grammar_text = error_text;
  NodePtr tree = Build(tokens, code, grammar_text);
  const std::int32_t offset = tokens.FrontOffset();
  if (code != IMEPERR_NONE) tokens.DropAll();
  if (scanner.Code() != IMEPERR_NONE) {
    code = scanner.Code();
    error_text = scanner.ErrorText();
    ErrorPlace::Set(scanner.Offset());
    return {};
  }
  error_text = grammar_text;
  ErrorPlace::Set(code != IMEPERR_NONE ? offset : -1);
  return tree;
}

// An allocation failed.
void RaiseOutOfMemory(const String& text, const std::exception& cause, IxoMepErrorEnum& code,
                      String& error_text) noexcept {
  ErrorPlace::Set(text.Len());
  code = RaiseNoMemory(error_text, IMEPERR_TOO_DEEP, cause);
}

}  // namespace

NodePtr ParseExpression(const String& text, IxoMepErrorEnum& code, String& error_text) noexcept {
  try {
    return ScanAndBuild(text, code, error_text);
  } catch (const std::exception& cause) {
    RaiseOutOfMemory(text, cause, code, error_text);
    return {};
  }
}

}  // namespace ixomep
