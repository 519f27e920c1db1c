// The buffer in which XML grows: what is not ASCII is left to the caller, whole.
#include "ixomep/parser/xml_buffer.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

namespace ixomep::test {
namespace {

bool IsTaken(const std::string& text, String& written) {
  XmlBuffer buffer(written);
  buffer.Append("before ");
  const bool is_taken = buffer.AppendEscaped(text);
  buffer.Flush();
  return is_taken;
}

// Of the length of single moves, blocks and pieces, and beside them.
constexpr std::size_t kSizes[] = {1, 3, 15, 16, 17, 31, 32, 33, 4095, 4096, 4097, 9000};

TEST(XmlBuffer, A_text_with_a_byte_beyond_ASCII_is_left_to_the_caller) {
  for (const std::size_t size : kSizes) {
    for (const char foreign : {'\x80', '\xFF'}) {
      for (const std::size_t position : {std::size_t{0}, size / 2, size - 1}) {
        std::string text(size, 'a');
        text[position] = foreign;
        String written;
        EXPECT_FALSE(IsTaken(text, written)) << size << " at " << position;
        EXPECT_EQ(written, "before ") << size << " at " << position;
      }
      String written;
      EXPECT_FALSE(IsTaken(std::string(size, foreign), written)) << size;
      EXPECT_EQ(written, "before ") << size;
    }
  }
}

TEST(XmlBuffer, ASCII_of_every_length_is_taken_and_escaped) {
  for (const std::size_t size : kSizes) {
    String written;
    EXPECT_TRUE(IsTaken(std::string(size, '\x7F'), written)) << size;
    std::string text(size, 'a');
    text[size / 2] = '<';
    std::string expected = "before " + text;
    expected.replace(7 + size / 2, 1, "&lt;");
    String escaped;
    EXPECT_TRUE(IsTaken(text, escaped)) << size;
    EXPECT_EQ(escaped, expected) << size;
  }
}

}  // namespace
}  // namespace ixomep::test
