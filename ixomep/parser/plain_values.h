// Internal: strings and plain numbers as runs of items have them (document_run.cpp), whose loops
// they are parts of: where one ends is found in the bytes or in a map of them, and next to nothing
// depends on what a byte is.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "ixomep/parser/byte_block.h"
#include "ixomep/parser/byte_kinds.h"
#include "ixomep/parser/byte_map.h"
#include "ixomep/parser/document_scanner.h"

// One function with its callers: what it returns stays in a register.
#define IXOMEP_FUSED [[gnu::always_inline]] inline

namespace ixomep {

// Of the bytes of a block.
inline std::uint32_t RunLength(std::uint32_t mask) noexcept {
  return FirstBit(~std::uint64_t{mask});
}

// What may stand behind the digits of a number. A unit is found by the low bits of its first letter
// and by whether it has a second one: no two of them share these. Numbers with a fraction have
// places of their own.
struct PlainUnit {
  std::uint32_t letters = 0xFFFFFFFF;  // two at most; these are none
  LiteralKind kind = LiteralKind::Integer;
};
constexpr std::size_t PlainUnitSlot(std::uint32_t letters, std::uint32_t length,
                                    std::uint32_t has_point) noexcept {
  return (letters & 15) | (length & 2) << 3 | has_point << 5;
}
inline constexpr std::array<PlainUnit, 64> kPlainUnits = [] {
  std::array<PlainUnit, 64> units{};
  const auto set = [&units](std::string_view letters, LiteralKind kind, LiteralKind with_point) {
    std::uint32_t bytes = 0;
    for (std::size_t i = 0; i < letters.size(); ++i) {
      bytes |= static_cast<std::uint32_t>(letters[i]) << (8 * i);
    }
    const auto length = static_cast<std::uint32_t>(letters.size());
    units[PlainUnitSlot(bytes, length, 0)] = {bytes, kind};
    units[PlainUnitSlot(bytes, length, 1)] = {bytes, with_point};
  };
  set("", LiteralKind::Integer, LiteralKind::Real);
  for (const char* const unit : {"m", "mm", "cm", "pt"}) {
    set(unit, LiteralKind::Measure, LiteralKind::Measure);
  }
  set("s", LiteralKind::Time, LiteralKind::Time);
  return units;
}();
inline constexpr std::array<std::uint32_t, 3> kPlainUnitBytes = {0, 0xFF, 0xFFFF};

struct DocumentScanner::InBytes {
  static const char* FindQuote(const DocumentScanner& scanner, const char* at) noexcept {
    return scanner.FindQuote(at);
  }
  // How many bytes a number has; more than are read of one when the block is full of it.
  static std::uint32_t NumberLength(const DocumentScanner& /*scanner*/, const ByteRun& run,
                                    const char* /*at*/) noexcept {
    return RunLength(run.InNumber());
  }
};

struct DocumentScanner::InMap {
  static const char* FindQuote(const DocumentScanner& scanner, const char* at) noexcept {
    // As long as all that a window tells of is in the map.
    const char* const end = scanner.map_.End() - ByteMap::kMostWindow;
    for (; at <= end; at += ByteMap::kWindow) {
      const std::uint64_t hits = ByteMap::Place(scanner.map_, at).Quotes();
      if (hits != 0) return at + FirstBit(hits);
    }
    return scanner.FindQuote(at);
  }
  static std::uint32_t NumberLength(const DocumentScanner& scanner, const ByteRun& /*run*/,
                                    const char* at) noexcept {
    const std::uint64_t ends = ByteMap::Place(scanner.map_, at).Ends();
    return FirstBit(ends | std::uint64_t{1} << ByteRun::kSize);
  }
};

// Moves from behind the opening quote behind the closing one; false when the string is not closed
// or something touches it.
template <class Ends>
IXOMEP_FUSED bool DocumentScanner::ReadString(const char*& at,
                                              LiteralRecord& literal) const noexcept {
  const char* const first = at;
  LiteralKind kind = LiteralKind::String;
  const char* end = Ends::FindQuote(*this, first);
  while (*end == '\\') {
    kind = LiteralKind::Escaped;
    if (end_ - end < 2) return false;
    end = Ends::FindQuote(*this, end + 2);
  }
  const auto size = static_cast<std::size_t>(end - first);
  if (end == end_ || size > LiteralRecord::kMostBytes || !EndsAt(end + 1)) return false;
  literal.Set(kind, OffsetOf(first), size);
  at = end + 1;
  return true;
}

// Digits with a fraction and a unit, or without them, that stand in one block with what follows.
// Where the number ends is found in one step, because all that comes behind it waits for that; that
// it is one is checked meanwhile.
template <class Ends>
IXOMEP_FUSED bool DocumentScanner::ReadPlainNumber(const char*& at,
                                                   LiteralRecord& literal) const noexcept {
  const char* const start = at;
  if (start >= block_end_) return false;
  const ByteRun run(start);
  const std::uint32_t size = Ends::NumberLength(*this, run, start);
  const char* const end = start + size;

  const std::uint64_t others = ~std::uint64_t{run.Digits()};
  const std::uint32_t whole = FirstBit(others);
  const std::uint32_t has_point = start[whole] == '.' ? 1 : 0;
  const std::uint32_t number = FirstBit(others & (others - has_point));  // without the point's bit
  const std::uint32_t letters = size - number;
  if (whole - 1 >= kExactDigits || number - whole == 1 || letters > 2) return false;
  const std::uint32_t bytes = (static_cast<unsigned char>(start[number]) |
                               std::uint32_t{static_cast<unsigned char>(start[number + 1])} << 8) &
                              kPlainUnitBytes[letters];
  const PlainUnit& unit = kPlainUnits[PlainUnitSlot(bytes, letters, has_point)];
  if (unit.letters != bytes || size >= ByteRun::kSize || !EndsAt(end)) return false;
  literal.Set(unit.kind, OffsetOf(start), size);
  at = end;
  return true;
}

}  // namespace ixomep
