// Internal: the character tables of the default host: Windows-1252 with its Unicode numbers and
// letter pairs, and its bytes in code page 850. The tables are computed from the two lists of
// Unicode numbers in the source.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

#include "ixomep/host/string.h"

namespace ixomep::portable {

// One byte for every byte.
using ByteMap = std::array<unsigned char, 256>;

const ByteMap& LowerCase1252() noexcept;
const ByteMap& UpperCase1252() noexcept;
// What the other set lacks becomes "?".
const ByteMap& OemOf1252() noexcept;
const ByteMap& Windows1252OfOem() noexcept;

void Map(const ByteMap& map, char* bytes, std::size_t count) noexcept;

String Utf8Of1252(std::string_view text);
// Malformed UTF-8 and what has no byte become "?", one for every maximal part that could begin a
// sequence.
String Windows1252OfUtf8(std::string_view text);

}  // namespace ixomep::portable
