// Internal: how a built-in function may be called, as data: "String, Integer, [String] -> String".
// One text a function, parsed by the compiler; the argument checker, the tests and the manual
// read the same rows.
//
//   String, Integer, Real, Array, Map    the argument's own type
//   Number                               an integer, a real, or a reference to one
//   Any                                  every type
//   Value                                every type; the body evaluates it itself, in order
//   Code                                 unevaluated: the body decides whether, when, how often
//   Place                                unevaluated: something that can be assigned to
//   Name                                 unevaluated: the bare name of a variable
//   [X]  X...  [X, Y]...                 may be left out; once or more; any number of times
//   A -> B | C, D -> E                   several ways, told apart by the number of arguments
//
// One of Value, Code, Place and Name makes the body evaluate and check the other parameters too.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace ixomep {

enum class ArgType : std::uint8_t {
  Any,
  String,
  Integer,
  Real,
  Number,
  Array,
  Map,
  Value,
  Code,
  Place,
  Name,
};

// The word for the type in a signature.
std::string_view ArgTypeName(ArgType type) noexcept;

// One way to call a function.
class SignatureForm {
 public:
  static constexpr std::int32_t kMaxParams = 6;
  static constexpr std::int32_t kUnbounded = 2147483647;

  constexpr bool Accepts(std::int32_t count) const noexcept {
    if (count < required_) return false;
    const std::int32_t extra = count - required_;
    return repeat_size_ > 0 ? extra % repeat_size_ == 0 : extra <= optional_;
  }
  // The type of argument `index` (from 0) in a call with that many arguments, which is accepted.
  constexpr ArgType TypeOf(std::int32_t index, std::int32_t count) const noexcept {
    if (repeat_size_ == 0 || index < repeat_start_) return At(index);
    const std::int32_t extra = count - required_;
    const std::int32_t into = index - repeat_start_;
    if (into < extra) return At(repeat_start_ + into % repeat_size_);
    return At(index - extra + repeat_size_);
  }
  constexpr std::int32_t MinCount() const noexcept { return required_; }
  constexpr std::int32_t MaxCount() const noexcept {
    return repeat_size_ > 0 ? kUnbounded : required_ + optional_;
  }
  // Are the arguments handed to the body unevaluated?
  constexpr bool IsLazy() const noexcept { return lazy_; }
  // What stands behind the arrow.
  constexpr std::string_view Result() const noexcept { return result_; }

  // From the text of one form; a mistake in it does not compile.
  constexpr SignatureForm() noexcept = default;
  explicit constexpr SignatureForm(std::string_view text);

 private:
  constexpr ArgType At(std::int32_t i) const noexcept {
    return params_[static_cast<std::size_t>(i)];
  }
  constexpr void Add(std::string_view word);
  constexpr std::size_t ReadGroup(std::string_view text, std::size_t at);

  // The parameters as written; a repeated group stands once.
  std::array<ArgType, kMaxParams> params_{};
  std::int32_t written_ = 0;
  std::int32_t required_ = 0;
  std::int32_t optional_ = 0;
  std::int32_t repeat_start_ = 0;
  std::int32_t repeat_size_ = 0;
  bool lazy_ = false;
  std::string_view result_;
};

class Signature {
 public:
  static constexpr std::size_t kMaxForms = 3;

  // Implicit, so that a row of the table is written as plain text.
  consteval Signature(const char* text);

  // The form that accepts that many arguments; null when none does.
  constexpr const SignatureForm* FormFor(std::int32_t count) const noexcept {
    for (std::size_t i = 0; i < form_count_; ++i) {
      if (forms_[i].Accepts(count)) return &forms_[i];
    }
    return nullptr;
  }
  constexpr std::size_t FormCount() const noexcept { return form_count_; }
  constexpr const SignatureForm& Form(std::size_t i) const noexcept { return forms_[i]; }
  constexpr std::string_view Text() const noexcept { return text_; }

 private:
  std::string_view text_;
  std::array<SignatureForm, kMaxForms> forms_{};
  std::size_t form_count_ = 0;
};

// --- Parsing, for the compiler alone ---------------------------------------------------------

namespace signature_text {

struct Word {
  std::string_view text;
  ArgType type;
};

inline constexpr Word kWords[] = {
    {"Any", ArgType::Any},     {"String", ArgType::String}, {"Integer", ArgType::Integer},
    {"Real", ArgType::Real},   {"Number", ArgType::Number}, {"Array", ArgType::Array},
    {"Map", ArgType::Map},     {"Value", ArgType::Value},   {"Code", ArgType::Code},
    {"Place", ArgType::Place}, {"Name", ArgType::Name},
};

constexpr std::string_view Trim(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return text;
}

constexpr bool TakeSuffix(std::string_view& text, std::string_view suffix) {
  if (!text.ends_with(suffix)) return false;
  text.remove_suffix(suffix.size());
  return true;
}

}  // namespace signature_text

constexpr void SignatureForm::Add(std::string_view word) {
  for (const signature_text::Word& known : signature_text::kWords) {
    if (known.text != word) continue;
    if (written_ == kMaxParams) throw "too many parameters in a signature";
    params_[static_cast<std::size_t>(written_++)] = known.type;
    if (known.type >= ArgType::Value) lazy_ = true;
    return;
  }
  throw "unknown word in a signature";
}

// Reads the bracketed group that starts at `at`; returns the position behind it.
constexpr std::size_t SignatureForm::ReadGroup(std::string_view text, std::size_t at) {
  const std::size_t close = text.find(']', at);
  if (close == std::string_view::npos) throw "a bracket is missing in a signature";
  const std::int32_t start = written_;
  std::string_view inside = text.substr(at + 1, close - at - 1);
  while (true) {
    const std::size_t comma = inside.find(',');
    Add(signature_text::Trim(inside.substr(0, comma)));
    if (comma == std::string_view::npos) break;
    inside.remove_prefix(comma + 1);
  }
  if (text.substr(close + 1).starts_with("...")) {
    repeat_start_ = start;
    repeat_size_ = written_ - start;
    return close + 4;
  }
  optional_ += written_ - start;
  return close + 1;
}

constexpr SignatureForm::SignatureForm(std::string_view text) {
  const std::size_t arrow = text.find("->");
  if (arrow == std::string_view::npos) throw "a signature has no result";
  result_ = signature_text::Trim(text.substr(arrow + 2));
  std::string_view rest = signature_text::Trim(text.substr(0, arrow));
  while (!rest.empty()) {
    std::size_t end = 0;
    if (rest.front() == '[') {
      end = ReadGroup(rest, 0);
    } else {
      end = rest.find(',') == std::string_view::npos ? rest.size() : rest.find(',');
      std::string_view word = signature_text::Trim(rest.substr(0, end));
      const bool repeated = signature_text::TakeSuffix(word, "...");
      Add(word);
      ++required_;
      if (repeated) {
        repeat_start_ = written_;
        Add(word);
        repeat_size_ = 1;
      }
    }
    rest = signature_text::Trim(rest.substr(end));
    if (rest.empty()) break;
    if (rest.front() != ',') throw "a comma is missing in a signature";
    rest = signature_text::Trim(rest.substr(1));
  }
}

consteval Signature::Signature(const char* text) : text_(text) {
  std::string_view rest = text_;
  while (true) {
    const std::size_t bar = rest.find('|');
    if (form_count_ == kMaxForms) throw "too many forms in a signature";
    forms_[form_count_++] = SignatureForm(rest.substr(0, bar));
    if (bar == std::string_view::npos) return;
    rest.remove_prefix(bar + 1);
  }
}

}  // namespace ixomep
