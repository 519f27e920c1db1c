// The host of the fuzz targets: files from memory, a standing clock, the same random numbers every
// time, silence. A fault that the library finds inside itself ends the process.
#pragma once

#include <map>
#include <string>
#include <string_view>

#include "ixomep/host/host.h"

namespace ixomep::fuzz {

// Prints the text and ends the process so that the fuzzer keeps the input.
[[noreturn]] void Fail(std::string_view what, std::string_view detail = {});
inline void Check(bool good, std::string_view what, std::string_view detail = {}) {
  if (!good) Fail(what, detail);
}

// Installs itself for its lifetime.
class FuzzHost : public IxoHost {
 public:
  FuzzHost();
  ~FuzzHost() override;

  // By their exact name. After kMaxReads reads nothing can be read any more.
  static constexpr int kMaxReads = 200;
  std::map<std::string, std::string, std::less<>> files;
  int reads = 0;

  bool ReadTextFile(const String& name, String& text) override;
  void ReportAssertion(std::string_view message, const char* source, int line) override;
  void ReportInternalFault(std::string_view message) override;
  int ShowErrorBox(void* parent, int style, const String& title, const String& text) override;
  void EndProcess(int status) override;
  std::uint32_t TickCount() override { return 12345; }
  std::int32_t RandomFifteenBits() override { return 4321; }

 private:
  IxoHost* before_;
};

}  // namespace ixomep::fuzz
