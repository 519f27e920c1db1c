// The number of a text among the host's string resources. `String(ResId(n))` asks the current
// host for the text; a number that the host does not have gives the empty text.
#pragma once

#include <cstdint>

#include "ixomep/export.h"

class IXOMEP_API ResId {
 public:
  constexpr explicit ResId(std::int32_t number) noexcept : number_(number) {}

  constexpr std::int32_t GetNumber() const noexcept { return number_; }

 private:
  std::int32_t number_;
};
