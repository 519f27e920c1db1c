// The records of a text: names looked up, lines counted. What is made of them is in
// document_objects.cpp, how they come about in document_scanner.cpp. See document.h.
#include "ixomep/parser/document.h"

#include "ixomep/parser/bytes.h"
#include "ixomep/parser/parser.h"

namespace ixomep {
namespace {

constexpr std::uint32_t kLineMark = 1 << 12;

std::uint32_t LineFeeds(std::string_view text, std::uint32_t from, std::uint32_t to) noexcept {
  return static_cast<std::uint32_t>(CountLineFeeds(text, from, to));
}

}  // namespace

Document::Document(const String& text, std::uint32_t start, std::int32_t first_line,
                   const String& context, const String& filename_stack)
    : text_(text),
      context_(context),
      filename_stack_(filename_stack),
      start_(start),
      first_line_(first_line),
      names_(text_.view()),
      lines_offset_(start) {}

std::uint32_t Document::CountedLines(std::uint32_t offset) const {
  const std::string_view text = text_.view();
  if (line_marks_.IsEmpty()) {
    line_marks_.Reserve(static_cast<std::uint32_t>(text.size() / kLineMark) + 1);
    line_marks_.Push(0);
    for (std::size_t at = kLineMark; at <= text.size(); at += kLineMark) {
      const auto end = static_cast<std::uint32_t>(at);
      line_marks_.Push(line_marks_.Back() + LineFeeds(text, end - kLineMark, end));
    }
  }
  const std::uint32_t mark = offset / kLineMark;
  return line_marks_[mark] + LineFeeds(text, mark * kLineMark, offset);
}

std::int32_t Document::LineAt(std::uint32_t offset) const {
  if (offset >= lines_offset_ && offset - lines_offset_ <= kLineMark) {
    lines_ += LineFeeds(text_.view(), lines_offset_, offset);
  } else {
    const std::uint32_t before = CountedLines(start_);
    lines_ = CountedLines(offset) - before;
  }
  lines_offset_ = offset;
  // A host may start with any line: wraps.
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(first_line_) + lines_);
}

}  // namespace ixomep
