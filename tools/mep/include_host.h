// The host of the command for definition texts: included files are read relative to the folder of
// the main file, only from below a root folder, and in the encoding the user named.
#pragma once

#include <filesystem>
#include <map>
#include <string>

#include "tools/mep/limits.h"

namespace mep {

class Diagnostics;
class TextIo;

// Installed as the current host for its lifetime; what was installed before comes back.
class IncludeHost : public LimitedHost {
 public:
  // An empty folder is the current one, an empty root the folder.
  IncludeHost(std::filesystem::path folder, const std::filesystem::path& root, const TextIo& io,
              Diagnostics& diagnostics);
  ~IncludeHost() override;

  // False for what does not exist, is no plain file, lies outside the root (symbolic links
  // followed) or is not in the encoding; the reason is kept for the report.
  bool ReadTextFile(const String& name, String& text) override;

  // Why the last file could not be read; empty when none failed.
  const std::string& LastReason() const { return last_reason_; }
  // The text of a file that was read under that name, null for any other; its name for reports.
  const String* TextOf(const String& name) const;
  std::string NameOf(const String& name) const;

 private:
  bool Fail(const std::string& name, const std::string& reason);

  std::filesystem::path folder_;
  std::filesystem::path root_;  // canonical
  std::map<String, String> texts_;
  const TextIo& io_;
  Diagnostics& diagnostics_;
  IxoHost* previous_;
  std::string last_reason_;
};

}  // namespace mep
