// Ends of strings and comments, and line feeds, found with the library's byte search. See bytes.h.
#include "ixomep/parser/bytes.h"

#include <algorithm>
#include <cstring>

namespace ixomep {

std::size_t StringEnd(std::string_view text, std::size_t position, std::size_t end) noexcept {
  ++position;
  while (position < end) {
    const char byte = text[position];
    if (byte == '"') return position + 1;
    position += byte == '\\' ? 2 : 1;
  }
  return end;
}

std::size_t BlockCommentEnd(std::string_view text, std::size_t position, std::size_t end) noexcept {
  position += 2;
  while (position + 1 < end) {
    const void* star = std::memchr(text.data() + position, '*', end - 1 - position);
    if (star == nullptr) return end;
    position = static_cast<std::size_t>(static_cast<const char*>(star) - text.data()) + 1;
    if (text[position] == ')') return position + 1;
  }
  return end;
}

std::size_t LineCommentEnd(std::string_view text, std::size_t position, std::size_t end) noexcept {
  const void* feed = std::memchr(text.data() + position, '\n', end - position);
  if (feed == nullptr) return end;
  return static_cast<std::size_t>(static_cast<const char*>(feed) - text.data());
}

std::size_t SkipUnit(std::string_view text, std::size_t position, std::size_t end) noexcept {
  const char byte = text[position];
  if (byte == '"') return StringEnd(text, position, end);
  if (byte == '#') return LineCommentEnd(text, position, end);
  if (OpensComment(text, position, end)) return BlockCommentEnd(text, position, end);
  return position;
}

std::int32_t CountLineFeeds(std::string_view text, std::size_t from, std::size_t to) noexcept {
  return static_cast<std::int32_t>(std::count(text.begin() + static_cast<std::ptrdiff_t>(from),
                                              text.begin() + static_cast<std::ptrdiff_t>(to),
                                              '\n'));
}

}  // namespace ixomep
