// One scan over the stretch, with strings and comments as units and a stack of open brackets. A
// brace opens a body when no value begins inside it and all brackets around it are bodies too.
#include "tools/mep/recovery.h"

#include <algorithm>
#include <cstdint>

#include "tools/mep/limits.h"

namespace mep {
namespace {

constexpr std::size_t kNone = std::string_view::npos;
constexpr std::uint32_t kStepsBetweenQuestions = 1 << 16;

bool IsWhite(char byte) {
  return (byte >= 9 && byte <= 13) || byte == 32 || static_cast<unsigned char>(byte) == 160;
}

bool BeginsElement(char byte) { return byte == '@' || (byte >= 'A' && byte <= 'Z'); }

// Inside a brace: the characters that a value of an array or map begins with.
bool BeginsValue(char byte) {
  return (byte >= '0' && byte <= '9') || std::string_view("\"$(-.{").find(byte) != kNone;
}

char CloserOf(char opener) { return opener == '(' ? ')' : opener == '[' ? ']' : '}'; }

struct Bracket {
  char opener;
  bool is_body;
  bool around_error;
  std::size_t resume;  // the first keyword behind the error that begins a line here
};

class Scan {
 public:
  Scan(std::string_view text, Stretch stretch, std::size_t error)
      : text_(text.substr(0, stretch.end)), error_(error), at_(stretch.begin) {
    // The stretch itself is like a body that nothing closes.
    open_.push_back({'\0', true, true, kNone});
  }

  std::vector<Stretch> Run() {
    for (std::uint32_t steps = 1; at_ < text_.size(); ++steps) {
      if (steps % kStepsBetweenQuestions == 0) CheckTime();
      if (!Step()) return {};
    }
    if (open_.size() > 1) return {};
    Leave(text_.size());
    return std::move(found_);
  }

 private:
  // False when a bracket or string does not end where it has to.
  bool Step() {
    const char byte = text_[at_];
    if (byte == '\n') {
      line_start_ = true;
    } else if (byte == '#') {
      at_ = std::min(text_.find('\n', at_), text_.size());
      return true;
    } else if (byte == '"') {
      return SkipString();
    } else if (text_.substr(at_, 2) == "(*") {
      const std::size_t end = text_.find("*)", at_ + 2);
      at_ = end == kNone ? text_.size() : end + 2;
      return true;
    } else if (byte == '(' || byte == '[' || byte == '{') {
      Open(byte);
    } else if (byte == ')' || byte == ']' || byte == '}') {
      if (!Close(byte)) return false;
    } else if (!IsWhite(byte)) {
      NoteElement(byte);
    }
    ++at_;
    return true;
  }

  bool SkipString() {
    line_start_ = false;
    for (++at_; at_ < text_.size(); ++at_) {
      if (text_[at_] == '\\') {
        ++at_;
      } else if (text_[at_] == '"') {
        ++at_;
        return true;
      }
    }
    return false;
  }

  void NoteElement(char byte) {
    Bracket& bracket = open_.back();
    const bool here = line_start_ && at_ > error_ && bracket.is_body && bracket.around_error;
    if (here && bracket.resume == kNone && BeginsElement(byte)) bracket.resume = at_;
    line_start_ = false;
  }

  void Open(char byte) {
    std::size_t inner = at_ + 1;
    while (inner < text_.size() && IsWhite(text_[inner])) ++inner;
    const bool has_value = inner < text_.size() && BeginsValue(text_[inner]);
    const bool is_body = byte == '{' && open_.back().is_body && !has_value;
    open_.push_back({byte, is_body, at_ < error_, kNone});
    line_start_ = false;
  }

  bool Close(char byte) {
    if (open_.size() == 1 || byte != CloserOf(open_.back().opener)) return false;
    Leave(at_);
    open_.pop_back();
    line_start_ = false;
    return true;
  }

  // The innermost bracket ends here.
  void Leave(std::size_t end) {
    if (open_.back().resume != kNone) found_.push_back({open_.back().resume, end});
  }

  std::string_view text_;
  std::size_t error_;
  std::size_t at_;
  bool line_start_ = true;
  std::vector<Bracket> open_;
  std::vector<Stretch> found_;
};

}  // namespace

std::vector<Stretch> StretchesBehind(std::string_view text, Stretch stretch, std::size_t error) {
  return Scan(text, stretch, error).Run();
}

}  // namespace mep
