// Errors and warnings as the user sees them, on standard error:
//   file:line:column: error: text [code]
//      line | the line of the text
//           |    ^
// Columns count characters from 1; a tab counts one. Texts come in the host's character set.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "ixomep/host/string.h"

namespace mep {

class TextIo;

// Whether the line of the text and the caret follow, and notes.
enum class Detail { kExcerpt, kOneLine };

class Diagnostics {
 public:
  explicit Diagnostics(const TextIo& io, Detail detail = Detail::kExcerpt)
      : io_(io), detail_(detail) {}

  // An error at an offset (clipped to the end) of a host text. The code is left out when 0.
  void ErrorAt(const std::string& source, std::string_view host_text, std::size_t offset,
               std::string_view text, int code);
  // The same for a line and column from 1.
  void ErrorAtColumn(const std::string& source, std::string_view host_text, long line, long column,
                     std::string_view text, int code);
  // An error of which only the line is known; nothing when the line is not known either (0).
  void ErrorOnLine(const std::string& source, long line, std::string_view text, int code);
  // An error that concerns the source as a whole; the text is the user's own encoding already.
  void Error(const std::string& source, std::string_view text);

  // What more there is to say about the error before.
  void Note(const std::string& source, std::string_view text);

  // The same for bytes that could not become host text: the line is shown as it stands.
  void ErrorInBytes(const std::string& source, std::string_view bytes, std::size_t offset,
                    std::string_view text);
  void WarningInBytes(const std::string& source, std::string_view bytes, std::size_t offset,
                      std::string_view text);

  // Errors reported so far; warnings do not count.
  int ErrorCount() const { return error_count_; }

 private:
  const TextIo& io_;
  Detail detail_;
  int error_count_ = 0;
};

// The offset of a line and column from 1 in a host text; its end when it has fewer lines.
std::size_t OffsetOf(std::string_view host_text, long line, long column);

// The error text of a definition text without the block that names line and context, which the
// report says in its own way.
std::string_view WithoutContextBlock(std::string_view error_text);

}  // namespace mep
