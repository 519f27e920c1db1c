// Internal: text -> tokens, the first stage of compiling an expression; the grammar is next and
// asks for tokens as it goes, so that a long text is never a long list.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string_view>

#include "ixomep/expr/token_list.h"
#include "ixomep/host/limit_watch.h"
#include "ixomep/host/string.h"
#include "ixomep/values/error_code.h"
#include "ixomep/values/raise.h"
#include "ixomep/values/string_address_map.h"

namespace ixomep {

class Scanner final : public TokenSource {
 public:
  // The text must outlive the scanner.
  explicit Scanner(const String& text) : text_(text), bytes_(text.view()) {}

  // Appends up to `count` further tokens; fewer only at the end of the text or on a failure,
  // whose code is returned from then on.
  IxoMepErrorEnum Read(TokenList& tokens, std::size_t count);
  bool ReadMore(TokenList& tokens) override;

  IxoMepErrorEnum Code() const noexcept { return code_; }
  const String& ErrorText() const noexcept { return error_text_; }
  // Where the token read last starts, the offending one after a failure.
  std::int32_t Offset() const noexcept { return static_cast<std::int32_t>(start_); }

 private:
  // The byte so far behind the position; zero behind the end of the text.
  char Peek(std::size_t ahead = 0) const noexcept {
    const std::size_t at = position_ + ahead;
    return at < bytes_.size() ? bytes_[at] : '\0';
  }
  void SkipBehind(std::string_view mark, std::size_t opener);
  bool Fail(IxoMepErrorEnum code, std::initializer_list<Fill> fills = {});

  // Each appends the token that starts here and moves behind it; false when there is none.
  bool ReadKeyword(TokenList& tokens);
  void ReadName(TokenList& tokens);
  bool ReadWholeNumber(TokenList& tokens);
  bool ReadLiteral(TokenList& tokens);
  bool ReadSymbol(TokenList& tokens);

  const String& text_;
  std::string_view bytes_;
  IxoMepStringAddressMap& names_ = IxoMepStringAddressMap::Global();
  std::size_t position_ = 0;
  std::size_t start_ = 0;
  LongWork work_;
  IxoMepErrorEnum code_ = IMEPERR_NONE;
  String error_text_;
};

// Appends the tokens of the whole text. On failure returns the code, error_text is set and
// error_offset is where the offending token starts; tokens holds those before it.
IxoMepErrorEnum Scan(const String& text, TokenList& tokens, String& error_text,
                     std::int32_t& error_offset);

}  // namespace ixomep
