// Hands reports of broken contracts to the host; a reporter that throws is not heard further, as
// execution has to continue. See assertion.h.
#include "ixomep/host/assertion.h"

#include <cstring>

#include "ixomep/host/host.h"

namespace ixomep {

void ReportAssertion(const char* source, int line, std::string_view message) noexcept {
  try {
    IxoHost::Current().ReportAssertion(message, source == nullptr ? "" : source, line);
  } catch (...) {
  }
}

void ReportAssertion(std::string_view message, const char* source, int line) noexcept {
  // Where the tree lay when it was compiled is of no use to anyone who reads the report.
  const char* folders_end = source == nullptr ? nullptr : std::strrchr(source, '/');
  ReportAssertion(folders_end == nullptr ? source : folders_end + 1, line, message);
}

}  // namespace ixomep

void displayErrorMessage(const String& message) noexcept {
  try {
    IxoHost::Current().ReportInternalFault(message);
  } catch (...) {
  }
}
