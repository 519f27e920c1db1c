// Internal: what the questions to a parser share: the border that no exception passes, and the
// reading of a leading integer.
#pragma once

#include <cstdint>
#include <exception>
#include <limits>
#include <string_view>
#include <utility>

namespace ixomep {

// What work returns; the neutral result when memory or length does not suffice for it.
template <class Result, class Work>
Result OrNeutral(Result neutral, Work&& work) noexcept {
  try {
    return std::forward<Work>(work)();
  } catch (const std::exception&) {
    return neutral;
  }
}

// The decimal integer at the start of a text, behind white space and a sign; 0 when there is none,
// the nearest 32-bit number when it is beyond that range.
constexpr std::int32_t LeadingInteger(std::string_view text) noexcept {
  constexpr std::int64_t kBeyond = std::int64_t{1} << 32;
  std::size_t position = 0;
  while (position < text.size() &&
         (text[position] == ' ' || (text[position] >= '\t' && text[position] <= '\r'))) {
    ++position;
  }
  const bool is_negative = position < text.size() && text[position] == '-';
  if (is_negative || (position < text.size() && text[position] == '+')) ++position;
  std::int64_t number = 0;
  for (; position < text.size() && text[position] >= '0' && text[position] <= '9'; ++position) {
    if (number < kBeyond) number = number * 10 + (text[position] - '0');
  }
  if (is_negative) number = -number;
  if (number < std::numeric_limits<std::int32_t>::min()) {
    return std::numeric_limits<std::int32_t>::min();
  }
  if (number > std::numeric_limits<std::int32_t>::max()) {
    return std::numeric_limits<std::int32_t>::max();
  }
  return static_cast<std::int32_t>(number);
}

}  // namespace ixomep
