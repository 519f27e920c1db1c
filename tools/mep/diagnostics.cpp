// Line, column, excerpt and caret. Lines are cut to a window around the place, so that a text of
// one endless line stays readable; control characters never reach the terminal as they are.
#include "tools/mep/diagnostics.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>

#include "tools/mep/text_io.h"

namespace mep {
namespace {

constexpr std::size_t kExcerptBefore = 60;  // characters shown before the place, and behind it
constexpr std::size_t kExcerptBehind = 40;
constexpr std::size_t kMaxMessage = 2000;
constexpr std::string_view kCut = "...";

bool IsUtf8Continuation(char byte) { return (static_cast<unsigned char>(byte) & 0xC0u) == 0x80u; }

// Where a place stands: the number and the extent of its line, and the clipped offset.
struct Position {
  long line;
  std::size_t line_start;
  std::size_t line_end;
  std::size_t place;
};

Position PositionOf(std::string_view text, std::size_t offset) {
  const std::size_t place = std::min(offset, text.size());
  const std::string_view before = text.substr(0, place);
  const std::size_t feed = before.rfind('\n');
  Position position{};
  position.line = 1 + std::count(before.begin(), before.end(), '\n');
  position.line_start = feed == std::string_view::npos ? 0 : feed + 1;
  position.line_end = std::min(text.find('\n', place), text.size());
  if (position.line_end > place && text[position.line_end - 1] == '\r') --position.line_end;
  position.place = place;
  return position;
}

// Control characters as "\x1b"; line feeds and tabs become blanks, since a message is one line.
std::string OneLine(std::string_view text) {
  std::size_t end = std::min(text.size(), kMaxMessage);
  while (end < text.size() && end > kMaxMessage - 4 && IsUtf8Continuation(text[end])) --end;
  std::string line;
  for (const char byte : text.substr(0, end)) {
    const auto code = static_cast<unsigned char>(byte);
    if (byte == '\n' || byte == '\t') {
      line += ' ';
    } else if (code < 32 || code == 127) {
      char escape[8];
      std::snprintf(escape, sizeof escape, "\\x%02x", static_cast<unsigned>(code));
      line += escape;
    } else {
      line += byte;
    }
  }
  if (end < text.size()) line += kCut;
  return line;
}

// A stretch of an excerpt with control characters other than tabs replaced, one for one.
std::string Printable(std::string_view text) {
  std::string line(text);
  for (char& byte : line) {
    const auto code = static_cast<unsigned char>(byte);
    if ((code < 32 && byte != '\t') || code == 127) byte = '?';
  }
  return line;
}

// How the characters of a text are made of bytes: one each in host text, one to four in UTF-8.
enum class Width { kOneByte, kUtf8 };

std::size_t CharacterCount(std::string_view text, Width width) {
  const auto continuations =
      width == Width::kOneByte ? 0 : std::count_if(text.begin(), text.end(), IsUtf8Continuation);
  return text.size() - static_cast<std::size_t>(continuations);
}

// The part of a line that is shown, in front of the place and behind it.
struct Excerpt {
  std::string_view before;
  std::string_view behind;
  bool cut_before;
  bool cut_behind;
};

Excerpt ExcerptOf(std::string_view line, std::size_t place, Width width) {
  std::size_t from = place > kExcerptBefore ? place - kExcerptBefore : 0;
  std::size_t to = std::min(line.size(), place + kExcerptBehind);
  if (width == Width::kUtf8) {
    while (from > 0 && from < place && IsUtf8Continuation(line[from])) ++from;
    while (to < line.size() && IsUtf8Continuation(line[to])) ++to;
  }
  return {line.substr(from, place - from), line.substr(place, to - place), from > 0,
          to < line.size()};
}

// The blanks under the excerpt: a tab stays a tab, so that the caret stands under its place.
std::string CaretIndent(const Excerpt& excerpt, Width width) {
  std::string indent(excerpt.cut_before ? kCut.size() : 0, ' ');
  for (const char byte : excerpt.before) {
    if (width == Width::kUtf8 && IsUtf8Continuation(byte)) continue;
    indent += byte == '\t' ? '\t' : ' ';
  }
  return indent;
}

void PrintHead(const std::string& source, long line, std::size_t column, const char* kind,
               std::string_view text, int code) {
  std::string head = OneLine(source);
  if (line > 0) head += ":" + std::to_string(line);
  if (column > 0) head += ":" + std::to_string(column);
  head += std::string(": ") + kind + ": " + OneLine(text);
  if (code != 0) head += " [" + std::to_string(code) + "]";
  std::fprintf(stderr, "%s\n", head.c_str());
}

// What is reported at a place: the words, and how the text around it is made.
struct Report {
  const char* kind;
  std::string text;
  int code;
  Width width;
  Detail detail;
};

// `encode` turns a stretch of the text into bytes for the terminal.
template <class Encode>
void PrintReport(const std::string& source, std::string_view text, std::size_t offset,
                 const Report& report, const Encode& encode) {
  const Position position = PositionOf(text, offset);
  const std::string_view line =
      text.substr(position.line_start, position.line_end - position.line_start);
  const std::size_t at = position.place - position.line_start;
  const Excerpt excerpt = ExcerptOf(line, at, report.width);
  PrintHead(source, position.line, CharacterCount(line.substr(0, at), report.width) + 1,
            report.kind, report.text, report.code);
  if (report.detail == Detail::kOneLine) return;
  std::string shown(excerpt.cut_before ? kCut : "");
  shown += encode(Printable(excerpt.before)) + encode(Printable(excerpt.behind));
  if (excerpt.cut_behind) shown += kCut;
  std::fprintf(stderr, "%6ld | %s\n       | %s^\n", position.line, shown.c_str(),
               CaretIndent(excerpt, report.width).c_str());
}

}  // namespace

void Diagnostics::ErrorAt(const std::string& source, std::string_view host_text, std::size_t offset,
                          std::string_view text, int code) {
  ++error_count_;
  PrintReport(source, host_text, offset,
              {"error", io_.Encode(text), code, Width::kOneByte, detail_},
              [this](const std::string& stretch) { return io_.Encode(stretch); });
}

void Diagnostics::ErrorAtColumn(const std::string& source, std::string_view host_text, long line,
                                long column, std::string_view text, int code) {
  ErrorAt(source, host_text, OffsetOf(host_text, line, column), text, code);
}

void Diagnostics::ErrorOnLine(const std::string& source, long line, std::string_view text,
                              int code) {
  ++error_count_;
  PrintHead(source, line, 0, "error", io_.Encode(text), code);
}

void Diagnostics::Error(const std::string& source, std::string_view text) {
  ++error_count_;
  PrintHead(source, 0, 0, "error", text, 0);
}

void Diagnostics::Note(const std::string& source, std::string_view text) {
  if (detail_ == Detail::kExcerpt) PrintHead(source, 0, 0, "note", text, 0);
}

void Diagnostics::ErrorInBytes(const std::string& source, std::string_view bytes,
                               std::size_t offset, std::string_view text) {
  ++error_count_;
  PrintReport(source, bytes, offset, {"error", std::string(text), 0, Width::kUtf8, detail_},
              WellFormed);
}

void Diagnostics::WarningInBytes(const std::string& source, std::string_view bytes,
                                 std::size_t offset, std::string_view text) {
  PrintReport(source, bytes, offset, {"warning", std::string(text), 0, Width::kUtf8, detail_},
              WellFormed);
}

std::size_t OffsetOf(std::string_view host_text, long line, long column) {
  std::size_t start = 0;
  for (long i = 1; i < line; ++i) {
    const std::size_t feed = host_text.find('\n', start);
    if (feed == std::string_view::npos) return host_text.size();
    start = feed + 1;
  }
  return std::min(start + static_cast<std::size_t>(std::max(column, 1L) - 1), host_text.size());
}

std::string_view WithoutContextBlock(std::string_view error_text) {
  const std::size_t block = error_text.rfind("\n\n");
  return block == std::string_view::npos ? error_text : error_text.substr(0, block);
}

}  // namespace mep
