// What tests share that compare the two ways of reading a definition text.
#pragma once

#include <cstdint>

#include "ixomep/parser/document_scanner.h"
#include "tests/support/test_host.h"

namespace ixomep::test {

// Random numbers that count, so that it shows how often and in which order they were asked for.
class CountingHost : public TestHost {
 public:
  std::int32_t RandomFifteenBits() override { return ++calls; }
  std::int32_t calls = 0;
};

// While it lives, all texts are read plainly.
class PlainReading {
 public:
  PlainReading() { QuickReading::Use(false); }
  PlainReading(const PlainReading&) = delete;
  PlainReading& operator=(const PlainReading&) = delete;
  ~PlainReading() { QuickReading::Use(true); }
};

}  // namespace ixomep::test
