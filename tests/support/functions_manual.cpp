// Reads the manual of the functions; see functions_manual.h.
#include "tests/support/functions_manual.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string_view>
#include <utility>

namespace ixomep::test {

namespace {

constexpr std::string_view kOutcome = "#=>";

std::string Trimmed(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(' ');
  if (begin == std::string_view::npos) return "";
  return std::string(text.substr(begin, text.find_last_not_of(' ') - begin + 1));
}

// Reads the manual line by line.
class ManualReader {
 public:
  std::vector<ManualEntry> Read() {
    std::ifstream file(kManual);
    EXPECT_TRUE(file) << kManual << " cannot be read";
    for (std::string line; std::getline(file, line);) {
      ++line_;
      if (in_block_) {
        TakeBlockLine(line);
      } else {
        TakeTextLine(line);
      }
    }
    EXPECT_FALSE(in_block_) << "the last block of examples is not closed";
    return std::move(entries_);
  }

 private:
  void TakeTextLine(std::string_view line) {
    constexpr std::string_view kHeading = "### ";
    constexpr std::string_view kSignature = "Signature: `";
    if (line.starts_with(kHeading)) {
      entries_.push_back({std::string(line.substr(kHeading.size())), "", {}});
    } else if (entries_.empty()) {
      EXPECT_FALSE(line.starts_with("```")) << "an example in front of the first entry";
    } else if (line.starts_with(kSignature)) {
      entries_.back().signature = line.substr(kSignature.size());
      entries_.back().signature.pop_back();
    } else if (line == "```mep") {
      in_block_ = true;
      entries_.back().blocks.emplace_back();
    }
  }

  void TakeBlockLine(const std::string& line) {
    if (line == "```") {
      EXPECT_EQ(pending_, "") << "line " << line_ << ": an example without an outcome";
      in_block_ = false;
      return;
    }
    const std::size_t at = line.find(kOutcome);
    pending_ += line.substr(0, at) + "\n";
    if (at == std::string::npos) return;
    entries_.back().blocks.back().push_back(
        {line_, pending_, Trimmed(std::string_view(line).substr(at + kOutcome.size()))});
    pending_.clear();
  }

  int line_ = 0;
  bool in_block_ = false;
  std::string pending_;
  std::vector<ManualEntry> entries_;
};

}  // namespace

std::vector<ManualEntry> ReadManual() { return ManualReader().Read(); }

}  // namespace ixomep::test
