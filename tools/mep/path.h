// Paths into a definition text: steps with "/" between them, from the outermost elements inwards.
//   CLASS             the elements of that keyword
//   CLASS[2]          the second of them, counted from 1
//   CLASS[Station]    those whose own value has that text
//   CLASS["2"]        the same, written as a string
//   title             the attribute of that name; must be the last step unless it has a body
// An element's own body is entered by a further element step: CLASS[Station]/METHOD.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "ixomep/host/string.h"
#include "ixomep/parser/parser.h"

namespace mep {

struct PathStep {
  String name;
  bool is_element = false;
  std::int32_t number = 0;  // from 1; 0 for any
  std::optional<String> value;
};

// Nothing, with the offset of the mistake and a sentence about it, for what is no path.
std::optional<std::vector<PathStep>> ParsePath(const String& text, std::size_t& mistake,
                                               std::string& reason);

// An element, or an attribute of it.
struct Selection {
  const IxoMepParser* body;
  std::int32_t index;
  const IxoMepElement* element;
  const IxoMepAttribute* attribute = nullptr;
};

// What the path leads to, in the order of the text. When that is nothing, `failed_step` is the
// index of the first step that found nothing.
std::vector<Selection> Select(const IxoMepParser& parser, const std::vector<PathStep>& path,
                              std::size_t& failed_step);

}  // namespace mep
