// Internal: the room that a text's storage has behind its bytes, for writers that would otherwise
// collect bytes elsewhere and copy them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "ixomep/host/short_text.h"
#include "ixomep/host/string.h"

namespace ixomep {

class StringTail {
 public:
  // Makes an empty text of it with room for so many bytes. Throws std::bad_alloc, and the text is
  // as it was.
  static char* MakeRoom(String& text, std::size_t bytes) {
    String::Rep* const kept = ShortText::New(bytes);
    String::Rep* const rep =
        kept != nullptr ? kept : String::NewRep(0, static_cast<std::int64_t>(bytes));
    rep->length = 0;
    text.Take(rep);
    return String::TextOf(rep);
  }
  // What may be written until the next use of the text; nothing when the storage is shared.
  static std::span<char> Of(String& text) noexcept {
    const String::Rep& rep = *text.rep_;
    if (rep.owners != 1) return {};
    return {String::TextOf(text.rep_) + rep.length,
            static_cast<std::size_t>(rep.capacity - rep.length)};
  }
  // Makes so many of the bytes that were written there a part of the text.
  static void Take(String& text, std::size_t count) noexcept {
    if (count == 0) return;
    String::Rep& rep = *text.rep_;
    rep.length += static_cast<std::int32_t>(count);
    String::TextOf(text.rep_)[rep.length] = '\0';
  }
};

}  // namespace ixomep
