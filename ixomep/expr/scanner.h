// Internal: text -> tokens, the first stage of compiling an expression; the grammar is next and
// asks for tokens as it goes, so that a long text is never a long list.
#pragma once

#include <array>
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
  explicit Scanner(const String& text)
      : text_(text), begin_(text.c_str()), end_(begin_ + text.Len()), at_(begin_) {}

  // Fewer tokens than a batch only at the end of the text or on a failure.
  bool ReadMore(TokenList& tokens) override;

  // Of the failure that ended the reading, if one did.
  IxoMepErrorEnum Code() const noexcept { return code_; }
  const String& ErrorText() const noexcept { return error_text_; }
  // Where the reading goes on; after a failure, where the offending token starts.
  std::int32_t Offset() const noexcept { return OffsetOf(at_); }

 private:
  std::int32_t OffsetOf(const char* place) const noexcept {
    return static_cast<std::int32_t>(place - begin_);
  }
  void ReadBatch(TokenList& tokens);
  const char* Fail(IxoMepErrorEnum code, std::initializer_list<Fill> fills = {});

  // Each appends the token that starts at a place and gives the place behind it; null after a
  // failure.
  const char* ReadName(TokenList& tokens, const char* at);
  const char* ReadHyphenName(TokenList& tokens, const char* at);
  const char* ReadNumber(TokenList& tokens, const char* at);
  const char* ReadLiteral(TokenList& tokens, const char* at);
  const char* ReadKeyword(TokenList& tokens, const char* at);
  const char* ReadPair(TokenList& tokens, const char* at);
  // To behind the next such mark or to the end of the text.
  const char* Behind(std::string_view mark, const char* from) const noexcept;

  // A name that is interned when the batch has been read: the memory of all of them is then waited
  // for at one time.
  struct AnnouncedName {
    const char* begin;
    std::size_t length;
    const char** place;
  };

  const String& text_;
  const char* const begin_;
  const char* const end_;  // a zero byte, as may stand inside the text too
  const char* at_;
  IxoMepStringAddressMap& names_ = IxoMepStringAddressMap::Global();
  bool announces_ = false;
  std::array<AnnouncedName, TokenList::kBatch> announced_;
  AnnouncedName* announced_end_ = announced_.data();
  LongWork work_;
  IxoMepErrorEnum code_ = IMEPERR_NONE;
  String error_text_;
};

}  // namespace ixomep
