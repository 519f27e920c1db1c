// The texts that the readers of definition texts, XML and JSON are measured with: the same
// information three times.
#pragma once

#include <cstdint>
#include <string>

namespace ixomep::bench {

struct Sample {
  std::string definition;
  std::string xml;
  std::string json;
};

enum class Shape {
  // About 180 bytes of definition text an element: a string, numbers with and without units, a
  // modifier, an option, and for one element in five a body with four children. Every element of a
  // kind says the same things in the same order.
  Model,
  Varied,  // twelve kinds of elements, attributes that are there or not, values of any length
  Lines,   // the same, each attribute on a line of its own, tabs and comments
  Flat,    // elements without bodies, with few short attributes
  Nested,  // short elements, most of them inside others, up to ten deep
};

// Definition text of at least that many bytes. ASCII only, so that every format has the same
// texts.
Sample MakeSample(std::int64_t bytes, Shape shape = Shape::Model);

}  // namespace ixomep::bench
