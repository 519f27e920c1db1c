// The sub-commands of mep. Each file adds its own to the argument parser; running one gives the
// exit status.
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace mep {

// What scripts may rely on.
enum ExitStatus : int {
  kExitSuccess = 0,
  kExitTextError = 1,  // the text has an error
  kExitUsage = 2,      // called wrongly, or a file that cannot be read or written
};

// The options of sub-commands that evaluate expressions.
struct CommonOptions {
  std::string encoding = "utf-8";
  std::vector<std::string> variables;
};

// Adds --encoding and -v; the former alone; --include-root.
void AddCommonOptions(CLI::App& command, CommonOptions& options);
void AddEncodingOption(CLI::App& command, std::string& encoding);
void AddIncludeRootOption(CLI::App& command, std::string& folder);

// Each adds its sub-command; when that is given, the status of its run is stored in status.
void AddShow(CLI::App& app, int& status);
void AddEval(CLI::App& app, int& status);
void AddCheck(CLI::App& app, int& status);
void AddQuery(CLI::App& app, int& status);
void AddXml(CLI::App& app, int& status);
void AddProtect(CLI::App& app, int& status);  // and unprotect

}  // namespace mep
