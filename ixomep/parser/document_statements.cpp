// The quick reading: comments, and the search for statements, which may stand wherever an attribute
// may. See document_scanner.h.
#include <cstring>
#include <utility>

#include "ixomep/parser/byte_kinds.h"
#include "ixomep/parser/bytes.h"
#include "ixomep/parser/document_scanner.h"

namespace ixomep {

// Statements are rare, and to look for one wherever one may start takes time: the first scan knows
// none and fails at the first ";" that is in no string or comment. This is the second one. What the
// first one compiled it takes over.
bool DocumentScanner::ScanWithStatements() {
  at_ = text_ + document_.start_;
  if (std::memchr(at_, ';', static_cast<std::size_t>(end_ - at_)) == nullptr) return false;
  document_.elements_.Clear();
  document_.attributes_.Clear();
  document_.bodies_.Clear();
  compiled_ = std::move(document_.made_);
  document_.made_.clear();
  pending_elements_.Clear();
  pending_attributes_.Clear();
  sources_.reset();
  made_of_source_.clear();
  frame_ = Frame();
  outer_.clear();
  attributes_ = &document_.attributes_;
  followers_.Clear();
  credit_ = kMostCredit;
  last_ = kAfterCloser;
  is_fresh_ = true;
  next_semicolon_ = text_;
  MayStartStatement();
  return Scan();
}

bool DocumentScanner::SkipLineComment() noexcept {
  const auto* feed =
      static_cast<const char*>(std::memchr(at_, '\n', static_cast<std::size_t>(end_ - at_)));
  at_ = feed != nullptr ? feed : end_;
  return true;
}

// Anything but a comment is either a statement or wrong.
bool DocumentScanner::ReadRest() {
  if (at_[0] != '(' || at_[1] != '*') {
    bool done = false;
    return next_semicolon_ != nullptr && TryStatement(done) && done;
  }
  is_fresh_ = IsAtStatementStart();
  const std::string_view text(text_, static_cast<std::size_t>(end_ - text_));
  at_ = text_ + BlockCommentEnd(text, OffsetOf(at_), text.size());
  gap_ = at_;
  return true;
}

// Whether a ";" stands somewhere behind the position, and nothing but the line feed that makes a
// statement possible before it.
bool DocumentScanner::MayStartStatement() {
  if (next_semicolon_ < at_ || next_semicolon_ == text_) {
    next_semicolon_ =
        static_cast<const char*>(std::memchr(at_, ';', static_cast<std::size_t>(end_ - at_)));
    if (next_semicolon_ == nullptr) return false;
  }
  return IsAtStatementStart();
}

bool DocumentScanner::IsAtStatementStart() const noexcept {
  return is_fresh_ || std::memchr(gap_, '\n', static_cast<std::size_t>(at_ - gap_)) != nullptr;
}

bool DocumentScanner::FindStatement(std::uint32_t& end) {
  const std::string_view text(text_, static_cast<std::size_t>(end_ - text_));
  std::size_t position = OffsetOf(at_);
  std::uint32_t depth = 0;
  while ((position = Find(text, position, text.size(), kLineStop)) < text.size()) {
    const char byte = text[position];
    if (depth == 0 && byte == '\n') return true;
    if (depth == 0 && byte == ';') {
      end = static_cast<std::uint32_t>(position);
      return true;
    }
    if (byte == '}' && depth-- == 0) return true;  // the stretch ends
    if (byte == '{') ++depth;
    const std::size_t next = SkipUnit(text, position, text.size());
    // Bodies inside bodies, each looked through: the Grammar has a better way.
    if (depth > 0) statement_steps_ += next - position + 1;
    if (statement_steps_ > 4 * text.size() + 4096) return false;
    position = next == position ? position + 1 : next;
  }
  return true;
}

// Reads the statement at the position, if there is one; false to give up.
bool DocumentScanner::TryStatement(bool& done) {
  std::uint32_t end = kNoRecord;
  if (*at_ == '@' || !MayStartStatement()) return true;
  if (!FindStatement(end)) return false;
  if (end == kNoRecord) return true;
  const std::uint32_t start = OffsetOf(at_);
  ElementRecord statement{};
  statement.start = start;
  statement.body = kNoRecord;
  statement.keyword = document_.names_.Add(end, 1);
  std::uint32_t index = 0;
  if (statement.keyword == NameTable::kUnknown ||
      !Compile({at_, end - start}, start, /*is_literal=*/false, /*is_shared=*/false, index)) {
    return false;
  }
  statement.literal.Set(LiteralKind::Made, index);
  // Not the owner of what follows: that is the element before it.
  pending_elements_.Push(statement);
  at_ = text_ + end + 1;
  gap_ = at_;
  is_fresh_ = true;
  done = true;
  return true;
}

}  // namespace ixomep
