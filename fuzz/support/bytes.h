// A fuzzer's input read as choices: numbers in a range, truths, short texts. What is not there any
// more reads as zeros, so that every input is a complete program.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace ixomep::fuzz {

class Bytes {
 public:
  Bytes(const std::uint8_t* data, std::size_t size)
      : rest_(reinterpret_cast<const char*>(data), size) {}

  bool IsEmpty() const { return rest_.empty(); }
  std::uint8_t Byte() {
    if (rest_.empty()) return 0;
    const auto byte = static_cast<std::uint8_t>(rest_.front());
    rest_.remove_prefix(1);
    return byte;
  }
  // 0 to limit - 1.
  int Below(int limit) { return Byte() % limit; }
  bool Truth() { return (Byte() & 1U) != 0; }
  std::int32_t Integer() {
    std::uint32_t bits = 0;
    for (int i = 0; i < 4; ++i) bits = bits << 8 | Byte();
    return static_cast<std::int32_t>(bits);
  }
  double Real() {
    std::uint64_t bits = 0;
    for (int i = 0; i < 8; ++i) bits = bits << 8 | Byte();
    double number = 0;
    std::memcpy(&number, &bits, sizeof number);
    return number;
  }
  // A text of at most 255 bytes, its length in front.
  std::string_view Text() {
    const std::size_t length = Byte();
    const std::string_view text = rest_.substr(0, length);
    rest_.remove_prefix(text.size());
    return text;
  }
  std::string_view Rest() const { return rest_; }
  template <class T, std::size_t kCount>
  const T& Pick(const T (&choices)[kCount]) {
    return choices[Byte() % kCount];
  }

 private:
  std::string_view rest_;
};

inline std::string_view TextOf(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

}  // namespace ixomep::fuzz
