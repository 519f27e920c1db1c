// Internal: what a byte can be in a definition text, as one table, and the ends of strings and
// comments. Shared by the grammar, the extent finder and the literal reader.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace ixomep {

enum ByteClass : std::uint16_t {
  kWhite = 1,  // 9 to 13, 32 and 160
  kDigit = 2,
  kHexLetter = 4,  // a to f of either case
  kLower = 8,
  kUpper = 16,
  kNameStart = 32,     // a-z, "_", 128 and more
  kNameByte = 64,      // letters, digits, "_", "-", 128 and more
  kBracketStop = 128,  // quotes, comments and brackets: what the brace scan stops at
  kAttrStop = 256,     // the same, white space and ":"
  kLineStop = 512,     // quotes, comments, braces, ";" and line feed
  kNestStop = 1024,    // quotes, comments, backslash, round brackets and braces
};

constexpr std::array<std::uint16_t, 256> MakeByteTable() {
  std::array<std::uint16_t, 256> table{};
  const auto add = [&table](std::string_view bytes, unsigned classes) {
    for (const char byte : bytes) {
      auto& entry = table[static_cast<unsigned char>(byte)];
      entry = static_cast<std::uint16_t>(entry | classes);
    }
  };
  add("\t\n\v\f\r \xA0", kWhite | kAttrStop);
  add("0123456789", kDigit | kNameByte);
  add("abcdefABCDEF", kHexLetter);
  add("abcdefghijklmnopqrstuvwxyz", kLower | kNameStart | kNameByte);
  add("ABCDEFGHIJKLMNOPQRSTUVWXYZ", kUpper | kNameByte);
  add("_", kNameStart | kNameByte);
  add("-", kNameByte);
  add("\"#(", kBracketStop | kAttrStop | kLineStop | kNestStop);
  add("{}", kBracketStop | kAttrStop | kLineStop | kNestStop);
  add(")", kBracketStop | kAttrStop | kNestStop);
  add("[]", kBracketStop | kAttrStop);
  add(":", kAttrStop);
  add(";\n", kLineStop);
  add("\\", kNestStop);
  for (std::size_t byte = 128; byte < 256; ++byte) {
    table[byte] = static_cast<std::uint16_t>(table[byte] | kNameStart | kNameByte);
  }
  return table;
}

inline constexpr std::array<std::uint16_t, 256> kByteTable = MakeByteTable();

constexpr bool Is(char byte, unsigned classes) noexcept {
  return (kByteTable[static_cast<unsigned char>(byte)] & classes) != 0;
}

// The first position from `position` on whose byte is (is not) of the classes; `end` when none.
constexpr std::size_t Find(std::string_view text, std::size_t position, std::size_t end,
                           unsigned classes) noexcept {
  while (position < end && !Is(text[position], classes)) ++position;
  return position;
}
constexpr std::size_t Skip(std::string_view text, std::size_t position, std::size_t end,
                           unsigned classes) noexcept {
  while (position < end && Is(text[position], classes)) ++position;
  return position;
}

// Whether a block comment opens at the position.
constexpr bool OpensComment(std::string_view text, std::size_t position, std::size_t end) noexcept {
  return end - position >= 2 && text[position] == '(' && text[position + 1] == '*';
}

// Behind the closing quote of the string that opens at the position; `end` when it stays open.
std::size_t StringEnd(std::string_view text, std::size_t position, std::size_t end) noexcept;
// Behind the "*)" of the comment that opens at the position; `end` when it stays open.
std::size_t BlockCommentEnd(std::string_view text, std::size_t position, std::size_t end) noexcept;
// At the line feed that ends the "#" comment at the position, or `end`.
std::size_t LineCommentEnd(std::string_view text, std::size_t position, std::size_t end) noexcept;

// Behind the string or comment at the position; the position itself when neither opens there.
std::size_t SkipUnit(std::string_view text, std::size_t position, std::size_t end) noexcept;

// The number of line feeds in a stretch.
std::int32_t CountLineFeeds(std::string_view text, std::size_t from, std::size_t to) noexcept;

}  // namespace ixomep
