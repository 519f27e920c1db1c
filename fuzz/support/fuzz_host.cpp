// FuzzHost and the failure of a check. See fuzz_host.h.
#include "fuzz/support/fuzz_host.h"

#include <cstdio>
#include <cstdlib>

#include "ixomep/host/windowing.h"

namespace ixomep::fuzz {

void Fail(std::string_view what, std::string_view detail) {
  std::fprintf(stderr, "fuzz target: %.*s\n%.*s\n", static_cast<int>(what.size()), what.data(),
               static_cast<int>(detail.size()), detail.data());
  std::abort();
}

FuzzHost::FuzzHost() : before_(IxoHost::Install(this)) {}

FuzzHost::~FuzzHost() { IxoHost::Install(before_); }

bool FuzzHost::ReadTextFile(const String& name, String& text) {
  if (++reads > kMaxReads) return false;
  const auto found = files.find(name.view());
  if (found == files.end()) return false;
  text = found->second;
  return true;
}

void FuzzHost::ReportAssertion(std::string_view, const char*, int) {}

void FuzzHost::ReportInternalFault(std::string_view message) {
  Fail("the library reports a fault inside itself", message);
}

int FuzzHost::ShowErrorBox(void*, int, const String&, const String&) {
  return IxoErrorBox::kAnswerContinue;
}

void FuzzHost::EndProcess(int) { Fail("the library wants to end the process"); }

}  // namespace ixomep::fuzz
