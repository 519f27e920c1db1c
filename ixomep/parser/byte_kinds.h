// Internal: what a byte can be for the quick reading of a definition text: one table of flags and
// one of the items that it starts. All runs end at a zero byte, and one stands behind every text.
#pragma once

#include <array>
#include <cstdint>

#include "ixomep/parser/bytes.h"

namespace ixomep {

enum class Item : std::uint8_t { Keyword, Name, Opener, Closer, Hash, Zero, Other };

enum QuickClass : std::uint8_t {
  kQuickWhite = 1,
  kQuickKeyword = 2,   // inside a keyword
  kQuickName = 4,      // inside an attribute's name
  kQuickModifier = 8,  // inside a modifier
  kQuickLower = 16,
  kQuickDigit = 32,
  kQuickLiteral = 64,  // starts a literal
  kQuickStop = 128,    // quotes, comments, brackets, backslash, semicolon, zero
};

struct QuickByte {
  std::uint8_t classes = 0;
  Item item = Item::Other;
};

constexpr std::array<QuickByte, 256> MakeQuickTable() {
  std::array<QuickByte, 256> table{};
  for (unsigned i = 0; i < table.size(); ++i) {
    const char byte = static_cast<char>(i);
    unsigned classes = 0;
    Item item = Item::Other;
    // The no-break space is white space first.
    const bool is_white = Is(byte, kWhite);
    if (is_white) classes |= kQuickWhite;
    if (Is(byte, kUpper) || byte == '_') classes |= kQuickKeyword;
    if (Is(byte, kNameByte) && !is_white) classes |= kQuickName;
    if (Is(byte, kNameByte) && i < 128) classes |= kQuickModifier;
    if (Is(byte, kLower)) classes |= kQuickLower;
    if (Is(byte, kDigit)) classes |= kQuickDigit;
    constexpr std::string_view kLiteralStarts = "\"$(-.{";
    if (Is(byte, kDigit) || kLiteralStarts.find(byte) != std::string_view::npos) {
      classes |= kQuickLiteral;
    }
    if (Is(byte, kBracketStop) || byte == '\\' || byte == ';' || byte == '\0') {
      classes |= kQuickStop;
    }
    if (Is(byte, kUpper)) item = Item::Keyword;
    if (Is(byte, kNameStart) && !is_white) item = Item::Name;
    if (byte == '{') item = Item::Opener;
    if (byte == '}') item = Item::Closer;
    if (byte == '#') item = Item::Hash;
    if (byte == '\0') item = Item::Zero;
    table[i] = {static_cast<std::uint8_t>(classes), item};
  }
  return table;
}

inline constexpr std::array<QuickByte, 256> kQuickTable = MakeQuickTable();

constexpr bool IsQuick(char byte, unsigned classes) noexcept {
  return (kQuickTable[static_cast<unsigned char>(byte)].classes & classes) != 0;
}
constexpr Item ItemOf(char byte) noexcept {
  return kQuickTable[static_cast<unsigned char>(byte)].item;
}
constexpr const char* SkipQuick(const char* at, unsigned classes) noexcept {
  while (IsQuick(*at, classes)) ++at;
  return at;
}

inline constexpr std::size_t kExactDigits = 9;  // a 32-bit number for certain

// The length of the unit at the position: 0 for none, -1 for letters that are none.
constexpr int UnitLength(const char* at) noexcept {
  if (!IsQuick(at[0], kQuickLower)) return 0;
  if (!IsQuick(at[1], kQuickLower)) return at[0] == 'm' || at[0] == 's' ? 1 : -1;
  if (IsQuick(at[2], kQuickLower)) return -1;
  const bool is_unit = at[1] == 'm' ? at[0] == 'c' || at[0] == 'm' : at[0] == 'p' && at[1] == 't';
  return is_unit ? 2 : -1;
}

}  // namespace ixomep
