// Internal: how a parser's complete text is made of the text it was given and of the files that
// @INCLUDE spliced into it. The grammar reads every file in place; the complete text is composed
// only when somebody asks for it, so that a thousand includes do not copy it a thousand times.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "ixomep/host/string.h"

class IxoMepParser;

namespace ixomep {

// A place of a complete text, seen from the file it stands in.
struct TextPlace {
  String context;              // the file's name; the parser's context for its own text
  std::int32_t line = 0;       // from 1; 0 when the offset is no place
  std::int32_t column = 0;     // from 1, in bytes
  bool several_lines = false;  // the complete text has a line feed before its last byte
};

// A place of a complete text that is looked for. The end of an included file is that file's,
// although the offset is that of what comes next.
struct SoughtPlace {
  // Implicit: most places are an offset and nothing else.
  SoughtPlace(std::int32_t at) noexcept : offset(at) {}  // NOLINT(google-explicit-constructor)
  SoughtPlace(std::int32_t at, bool at_file_end) noexcept : offset(at), is_file_end(at_file_end) {}

  std::int32_t offset;
  bool is_file_end = false;
};

// The complete text as a list of stretches of files, in order and without gaps.
class SegmentList {
 public:
  SegmentList(const String& text, const String& context);

  void Splice(std::int32_t at, std::int32_t removed, const String& text, const String& context);
  // A stretch of the complete text; the caller keeps it within the text.
  String Copy(std::int32_t start, std::int32_t count) const;
  // An offset outside the text is no place.
  TextPlace Find(SoughtPlace sought) const;
  std::int32_t Length() const noexcept;

 private:
  struct Segment {
    std::int32_t at;     // offset in the complete text
    std::int32_t begin;  // offset in the source
    std::int32_t length;
    String source;  // the whole text of the file
    String context;
    std::string_view View() const noexcept {
      return source.view().substr(static_cast<std::size_t>(begin),
                                  static_cast<std::size_t>(length));
    }
  };
  bool HasSeveralLines() const noexcept;

  std::vector<Segment> segments_;
};

// What a parser remembers of the includes in its text.
class Splices {
 public:
  // For the text as it was given.
  explicit Splices(const String& original);
  // For a body's text: that of the parser around it, as it is at this moment. That parser owns
  // the body and so outlives it.
  explicit Splices(const IxoMepParser& outer);

  void Add(std::int32_t at, std::int32_t removed, const String& text, const String& context);
  SegmentList Segments(const String& context) const;
  // Length of the complete text.
  std::int32_t Length() const noexcept { return length_; }
  // Whether the parser's text_ holds the complete text.
  bool IsComposed() const noexcept { return composed_; }
  void SetComposed() noexcept { composed_ = true; }

 private:
  struct Record {
    std::int32_t at;
    std::int32_t removed;
    String text;
    String context;
  };

  String original_;
  const Splices* outer_ = nullptr;
  std::size_t outer_count_ = 0;  // how many of the outer parser's splices this text has
  std::vector<Record> log_;
  std::int32_t length_;
  bool composed_ = false;
};

}  // namespace ixomep
