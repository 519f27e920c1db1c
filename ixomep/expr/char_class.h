// Internal: what each byte may be in an expression text: one table for the scanner. Only ASCII
// letters count as letters, whatever the locale; every byte of 128 or more is part of names.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace ixomep {

class CharClass {
 public:
  static constexpr bool IsWhite(char byte) noexcept { return Has(byte, kWhite); }
  static constexpr bool IsDigit(char byte) noexcept { return Has(byte, kDigit); }
  static constexpr bool IsUpper(char byte) noexcept { return Has(byte, kUpper); }
  // Starts a name, unless the byte is white: 160 is both, and separates where a name would start.
  static constexpr bool IsNameStart(char byte) noexcept { return Has(byte, kNameStart); }
  // Continues a name; 160 included.
  static constexpr bool IsNameByte(char byte) noexcept { return Has(byte, kNameByte); }

  // The classes of every byte.
  static constexpr std::array<std::uint8_t, 256> MakeTable() {
    std::array<std::uint8_t, 256> table{};
    for (std::size_t byte = 0; byte < table.size(); ++byte) table[byte] = ClassesOf(byte);
    return table;
  }

 private:
  static constexpr std::uint8_t kWhite = 1;
  static constexpr std::uint8_t kDigit = 2;
  static constexpr std::uint8_t kUpper = 4;
  static constexpr std::uint8_t kNameStart = 8;
  static constexpr std::uint8_t kNameByte = 16;

  static constexpr std::uint8_t ClassesOf(std::size_t byte) {
    const bool digit = byte >= '0' && byte <= '9';
    const bool upper = byte >= 'A' && byte <= 'Z';
    const bool lower = byte >= 'a' && byte <= 'z';
    const bool high = byte >= 128;
    std::uint8_t classes = 0;
    if ((byte >= 9 && byte <= 13) || byte == 32 || byte == 160) classes |= kWhite;
    if (digit) classes |= kDigit;
    if (upper) classes |= kUpper;
    if (lower || high || byte == '_' || byte == '?') classes |= kNameStart;
    if (lower || upper || digit || high || byte == '_') classes |= kNameByte;
    return classes;
  }
  static constexpr bool Has(char byte, std::uint8_t bit) noexcept;
};

inline constexpr std::array<std::uint8_t, 256> kByteClasses = CharClass::MakeTable();

constexpr bool CharClass::Has(char byte, std::uint8_t bit) noexcept {
  return (kByteClasses[static_cast<unsigned char>(byte)] & bit) != 0;
}

}  // namespace ixomep
