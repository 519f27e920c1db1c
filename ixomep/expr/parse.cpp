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

NodePtr ScanAndBuild(const String& text, IxoMepErrorEnum& code, String& error_text) {
  TokenList tokens(text.Len());
  std::int32_t offset = -1;
  code = Scan(text, tokens, error_text, offset);
  if (code != IMEPERR_NONE) {
    ErrorPlace::Set(offset);
    return {};
  }
  NodePtr tree = Build(tokens, code, error_text);
  ErrorPlace::Set(code != IMEPERR_NONE ? tokens.FrontOffset() : -1);
  return tree;
}

// An allocation failed; the text is left as it is when not even that can be had.
void RaiseOutOfMemory(const String& text, IxoMepErrorEnum& code, String& error_text) noexcept {
  code = IMEPERR_TOO_DEEP;
  ErrorPlace::Set(text.Len());
  try {
    Raise(error_text, IMEPERR_TOO_DEEP);
  } catch (const std::exception&) {
    error_text.Clear();
  }
}

}  // namespace

NodePtr ParseExpression(const String& text, IxoMepErrorEnum& code, String& error_text) noexcept {
  try {
    return ScanAndBuild(text, code, error_text);
  } catch (const std::exception&) {
    RaiseOutOfMemory(text, code, error_text);
    return {};
  }
}

}  // namespace ixomep
