// The records of a text: names looked up, lines counted. What is made of them is in
// document_objects.cpp, how they come about in document_scanner.cpp. See document.h.
#include "ixomep/parser/document.h"

#include <algorithm>
#include <exception>
#include <numeric>

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

// The first of equal names comes first, since positions decide where names do not.
void Document::OrderAttributes(const ElementRecord& element) const {
  if (by_name_.IsEmpty()) by_name_.AssignZero(attributes_.Size());
  std::uint32_t* const begin = by_name_.Data() + element.first_attribute;
  if (*begin != 0) return;
  std::uint32_t* const end = begin + element.attribute_count;
  std::iota(begin, end, element.first_attribute + 1);
  const auto is_before = [this](std::uint32_t a, std::uint32_t b) {
    const std::uint32_t name = attributes_[a - 1].name;
    const std::uint32_t other = attributes_[b - 1].name;
    return name != other ? name < other : a < b;
  };
  if (!std::is_sorted(begin, end, is_before)) std::sort(begin, end, is_before);
}

std::uint32_t Document::FindAmongMany(const ElementRecord& element,
                                      std::uint32_t name) const noexcept {
  if (name == NameTable::kUnknown) return kNoRecord;
  try {
    OrderAttributes(element);
  } catch (const std::exception&) {
    return FindAmongFew(element, name);
  }
  const std::uint32_t* const begin = by_name_.Data() + element.first_attribute;
  const std::uint32_t* const end = begin + element.attribute_count;
  const auto name_of = [this](std::uint32_t position) { return attributes_[position - 1].name; };
  // Names that are not repeated were numbered one after the other: this is where it would stand.
  const std::uint32_t guess = name - name_of(*begin);
  const bool is_there = guess < element.attribute_count && name_of(begin[guess]) == name &&
                        (guess == 0 || name_of(begin[guess - 1]) != name);
  if (is_there) return begin[guess] - 1;
  const std::uint32_t* const found = std::lower_bound(
      begin, end, name,
      [&](std::uint32_t position, std::uint32_t wanted) { return name_of(position) < wanted; });
  return found != end && name_of(*found) == name ? *found - 1 : kNoRecord;
}

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
