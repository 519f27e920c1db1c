// The texts that the readers of definition texts, XML and JSON are measured with: the same
// information three times.
#pragma once

#include <cstdint>
#include <string>

namespace ixomep::bench {

// About 180 bytes of definition text an element: a string, numbers with and without units, a
// modifier, an option, and for one element in five a body with four children.
struct Sample {
  std::string definition;
  std::string xml;
  std::string json;
};

// Definition text of at least that many bytes. ASCII only, so that every format has the same
// texts.
Sample MakeSample(std::int64_t bytes);

}  // namespace ixomep::bench
