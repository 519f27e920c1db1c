// Number and time literals: text to integer, real, measure or time. Two accumulators run side by
// side, a wrapping 32-bit integer and a double; what they say at the end decides the type. The
// overflow test is "the double became smaller", here as everywhere in this reader.
#include "ixomep/parser/literal_number.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "ixomep/host/core_time.h"
#include "ixomep/host/numbers.h"
#include "ixomep/parser/bytes.h"
#include "ixomep/values/raise.h"
#include "ixomep/values/units.h"

namespace ixomep {
namespace {

constexpr std::size_t kTimeLength = 15;
constexpr int kTimeColons = 4;
constexpr int kMaxExponent = 100000;  // far beyond every double, far below overflow

std::int32_t Negated(std::int32_t number) noexcept {
  return static_cast<std::int32_t>(0u - static_cast<std::uint32_t>(number));
}

// number * base + digit, wrapping.
std::int32_t Shifted(std::int32_t number, unsigned base, unsigned digit) noexcept {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(number) * base + digit);
}

class NumberReader {
 public:
  NumberReader(const LiteralText& text, std::size_t start) noexcept
      : text_(text), bytes_(text.bytes), start_(start), position_(start) {}

  ValuePtr Read(IxoMepErrorEnum& code, String& error_text);
  std::size_t position() const noexcept { return position_; }

 private:
  char At(std::size_t position) const noexcept {
    return position < bytes_.size() ? bytes_[position] : '\0';
  }
  bool IsDigitAt(std::size_t position) const noexcept { return Is(At(position), kDigit); }
  unsigned DigitAt(std::size_t position) const noexcept {
    return static_cast<unsigned>(bytes_[position] - '0');
  }
  // The lower-case letters from a position on.
  std::string_view LettersAt(std::size_t position) const noexcept {
    return bytes_.substr(position, Skip(bytes_, position, bytes_.size(), kLower) - position);
  }
  void Multiply(double factor) noexcept {
    const double product = real_ * factor;
    if (product < real_) overflow_ = true;
    real_ = product;
  }

  bool ReadHexadecimal();
  void ReadDecimal();
  void ReadIntegerPart();
  bool ReadPoint(bool is_first);
  void ReadFraction();
  void ReadExponent();
  ValuePtr Overflow(IxoMepErrorEnum& code, String& error_text) const;
  ValuePtr PlainResult(bool from_accumulator) const;
  ValuePtr UnitResult(const Unit& unit) const;
  bool IsExactInteger() const noexcept { return exact_ && real_ == static_cast<double>(integer_); }
  std::int32_t SignedInteger() const noexcept { return negative_ ? Negated(integer_) : integer_; }
  double SignedReal() const noexcept { return negative_ ? -real_ : real_; }

  const LiteralText& text_;
  const std::string_view bytes_;
  const std::size_t start_;
  std::size_t position_;
  bool negative_ = false;
  std::int32_t integer_ = 0;
  double real_ = 0.0;
  bool exact_ = true;
  bool overflow_ = false;
  bool ended_at_point_ = false;
};

bool NumberReader::ReadHexadecimal() {
  ++position_;
  const std::size_t first = position_;
  for (; Is(At(position_), kDigit | kHexLetter); ++position_) {
    const char byte = bytes_[position_];
    // The low four bits of a letter count from 1.
    const unsigned digit = (static_cast<unsigned>(byte) & 15u) + (Is(byte, kDigit) ? 0u : 9u);
    const std::int32_t next = Shifted(integer_, 16, digit);
    if (next < integer_) exact_ = false;
    integer_ = next;
  }
  real_ = integer_;
  return position_ > first;
}

void NumberReader::ReadIntegerPart() {
  for (; IsDigitAt(position_); ++position_) {
    const unsigned digit = DigitAt(position_);
    const std::int32_t next = Shifted(integer_, 10, digit);
    if (next < integer_) exact_ = false;
    integer_ = next;
    const double next_real = real_ * 10.0 + digit;
    if (next_real < real_) overflow_ = true;
    real_ = next_real;
  }
}

// Steps over the "." that belongs to the number; false when it belongs to what follows.
bool NumberReader::ReadPoint(bool is_first) {
  if (FindUnit(LettersAt(position_ + 1)) == nullptr && !is_first && !IsDigitAt(position_ + 1)) {
    return false;
  }
  ++position_;
  return true;
}

void NumberReader::ReadFraction() {
  double factor = 1.0;
  for (; IsDigitAt(position_); ++position_) {
    factor *= 0.1;
    real_ += DigitAt(position_) * factor;
    exact_ = false;
  }
}

void NumberReader::ReadExponent() {
  if (At(position_) != 'e' && At(position_) != 'E') return;
  const bool has_sign = At(position_ + 1) == '+' || At(position_ + 1) == '-';
  std::size_t digit = position_ + (has_sign ? 2 : 1);
  if (!IsDigitAt(digit)) return;
  const bool negative = At(position_ + 1) == '-';
  int exponent = 0;
  for (; IsDigitAt(digit); ++digit) {
    exponent = std::min(exponent * 10 + static_cast<int>(DigitAt(digit)), kMaxExponent);
  }
  position_ = digit;
  exact_ = false;
  // Meant: a negative exponent makes the number smaller and so counts as overflow: 5e-1.
  Multiply(std::pow(10.0, negative ? -exponent : exponent));
}

void NumberReader::ReadDecimal() {
  const std::size_t first = position_;
  ReadIntegerPart();
  if (At(position_) == '.') {
    if (!ReadPoint(position_ == first)) {
      ended_at_point_ = true;
      return;
    }
    ReadFraction();
  }
  ReadExponent();
}

ValuePtr NumberReader::Overflow(IxoMepErrorEnum& code, String& error_text) const {
  code = Raise(error_text, IMEPERR_NUMBER_OVERFLOW, {{"%func", bytes_}});
  return nullptr;
}

ValuePtr NumberReader::PlainResult(bool from_accumulator) const {
  if (IsExactInteger()) return MakeValue(SignedInteger());
  if (from_accumulator) return MakeValue(SignedReal());
  return MakeValue(ixo_atof(bytes_.substr(start_, position_ - start_)));
}

ValuePtr NumberReader::UnitResult(const Unit& unit) const {
  if (IsExactInteger()) return MakeValue(unit.type, SignedInteger());
  return MakeValue(unit.type, SignedReal());
}

ValuePtr NumberReader::Read(IxoMepErrorEnum& code, String& error_text) {
  if (At(position_) == '-') {
    negative_ = true;
    ++position_;
  }
  const char first = At(position_);
  const bool starts_number = first == '$' ? ReadHexadecimal() : first == '.' || Is(first, kDigit);
  if (!starts_number) {
    code = Raise(error_text, IMEPERR_VALUE_EXPECTED);
    return nullptr;
  }
  if (first != '$') ReadDecimal();

  if (ended_at_point_ || text_.EndsAt(position_)) {
    // Meant: a decimal number that the text ends keeps the accumulated real, with its rounding.
    return overflow_ ? Overflow(code, error_text) : PlainResult(/*from_accumulator=*/first != '$');
  }
  if (At(position_) == '%' && text_.EndsAt(position_ + 1)) {
    ++position_;
    return MakeValue((negative_ ? -0.01 : 0.01) * real_);
  }
  const std::string_view letters = LettersAt(position_);
  const Unit* const unit = FindUnit(letters);
  position_ += letters.size();
  if (unit == nullptr && !letters.empty()) {
    code = Raise(error_text, IMEPERR_UNKNOWN_UNIT, {{"%s", letters}});
    return nullptr;
  }
  if (unit != nullptr) Multiply(unit->factor);
  if (overflow_) return Overflow(code, error_text);
  return unit != nullptr ? UnitResult(*unit) : PlainResult(false);
}

}  // namespace

ValuePtr ReadNumber(const LiteralText& text, std::size_t& position, IxoMepErrorEnum& code,
                    String& error_text) {
  NumberReader reader(text, position);
  ValuePtr value = reader.Read(code, error_text);
  position = reader.position();
  return value;
}

double NumberOfPlainMeasure(std::string_view literal) noexcept {
  const bool is_negative = literal.front() == '-';
  std::size_t position = is_negative ? 1 : 0;
  double real = 0.0;
  for (; Is(literal[position], kDigit); ++position) real = real * 10.0 + (literal[position] - '0');
  const double whole = real;
  const bool has_fraction = literal[position] == '.';
  if (has_fraction) {
    double factor = 1.0;
    for (++position; Is(literal[position], kDigit); ++position) {
      factor *= 0.1;
      real += (literal[position] - '0') * factor;
    }
  }
  real *= FindUnit(literal.substr(position))->factor;
  // An integer has no negative zero.
  const bool is_zero_integer = !has_fraction && real == whole && whole == 0.0;
  return is_negative && !is_zero_integer ? -real : real;
}

ValuePtr ReadTime(const LiteralText& text, std::size_t& position) {
  const std::string_view bytes = text.bytes;
  if (bytes.size() - position < kTimeLength) return nullptr;
  std::size_t end = position;
  int colons = 0;
  while (end < bytes.size() && colons < kTimeColons) {
    if (bytes[end] == ':') {
      ++colons;
    } else if (!Is(bytes[end], kDigit)) {
      break;
    }
    ++end;
  }
  const std::string_view candidate = bytes.substr(position, end + 2 - position);
  if (!IxoCoreTime::isTime(candidate)) return nullptr;
  position += candidate.size();
  return MakeValue(IxoMepValueType::Time, IxoCoreTime(String(candidate)).asDouble());
}

}  // namespace ixomep
