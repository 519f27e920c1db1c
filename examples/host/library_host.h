// What this application answers when the library asks: texts of its own, files from one folder
// only, and assertion reports and error boxes that it keeps instead of showing them.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <ixomep/ixomep.h>

namespace bakery {

// Host text in UTF-8, for the terminal.
std::string Utf8(const String& text);

// Installed for as long as it lives; what it does not override, the default host answers.
class LibraryHost : public IxoHost {
 public:
  explicit LibraryHost(const std::filesystem::path& folder);
  ~LibraryHost() override;

  String ResourceText(std::int32_t number) override;
  // Files are UTF-8 and named relative to the folder. False for everything outside of it.
  bool ReadTextFile(const String& name, String& text) override;
  bool IsRepositoryName(const String& name) override;
  void ReportAssertion(std::string_view message, const char* source, int line) override;
  int ShowErrorBox(void* parent, int style, const String& title, const String& text) override;

  // What was reported and shown, in order.
  const std::vector<std::string>& Reports() const { return reports_; }

 private:
  std::filesystem::path folder_;  // without symbolic links
  std::vector<std::string> reports_;
  IxoHost* previous_;
};

}  // namespace bakery
