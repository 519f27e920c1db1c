// What the benchmarks of definition texts ask of this library and of its peers, the readers of XML
// and JSON: read a text, walk what was read, free it; and write a tree as XML. This library's are
// in mep_reader.cpp, those of peers in modules of their own (../peers).
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace ixomep::bench {

// What a walk found. The same for a definition text and for the XML and JSON that say the same.
struct Counts {
  std::int64_t elements = 0;
  std::int64_t attributes = 0;
  std::int64_t numbers = 0;     // values that are numbers, with or without a unit
  std::int64_t text_bytes = 0;  // of all other values, and of the modifiers

  bool operator==(const Counts&) const = default;

  // A value that the format keeps as text. The texts of the samples never start with a digit, and
  // "true" is what an option without a value becomes.
  void Add(std::string_view value) {
    const bool is_number = !value.empty() && value.front() >= '0' && value.front() <= '9';
    if (is_number) {
      ++numbers;
    } else if (value != "true") {
      text_bytes += static_cast<std::int64_t>(value.size());
    }
  }
};

class Reader {
 public:
  virtual ~Reader() = default;
  // Everything from the text to the freed tree, copies that the reader needs of the text included.
  // No elements: the text could not be read.
  virtual Counts ReadWalkFree(const std::string& text) = 0;
};

class XmlWriter {
 public:
  virtual ~XmlWriter() = default;
  // Reads the tree to be written; false when the text could not be read.
  virtual bool Load(const std::string& text) = 0;
  virtual void Unload() = 0;
  // The tree as a text in memory, which the writer keeps until the next call of any kind.
  virtual std::string_view Write() = 0;
};

}  // namespace ixomep::bench
