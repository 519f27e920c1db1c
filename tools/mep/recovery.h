// Where a definition text can be read on after an error, so that one check reports more than the
// first error, and no error that only follows from another.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace mep {

// A part of a text that can be read by itself.
struct Stretch {
  std::size_t begin;
  std::size_t end;
};

// The stretches behind an error at `error` in the stretch: the rest of each body around the error
// and of the stretch itself, each from the next keyword that begins a line there. None when the
// brackets do not match, since nothing behind them is certain then.
std::vector<Stretch> StretchesBehind(std::string_view text, Stretch stretch, std::size_t error);

}  // namespace mep
