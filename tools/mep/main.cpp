// The mep command: reads its arguments and hands over to a sub-command (commands.h).
// Exit status: 0 success, 1 an error in the text, 2 called wrongly or nothing to read or write.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <exception>
#include <iterator>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include "ixomep/export.h"
#include "tools/mep/commands.h"
#include "tools/mep/limits.h"
#include "tools/mep/text_io.h"

namespace mep {

void AddEncodingOption(CLI::App& command, std::string& encoding) {
  command
      .add_option("-e,--encoding", encoding,
                  "Encoding of what is read and written: utf-8, windows-1252, latin-1, oem")
      ->capture_default_str()
      ->check([](const std::string& name) {
        return EncodingOfName(name) ? std::string() : "\"" + name + "\" is not a known encoding";
      });
}

void AddIncludeRootOption(CLI::App& command, std::string& folder) {
  command
      .add_option("--include-root", folder,
                  "Included files must lie below this folder (default: that of the file)")
      ->type_name("DIR");
}

void AddCommonOptions(CLI::App& command, CommonOptions& options) {
  AddEncodingOption(command, options.encoding);
  command.add_option("-v,--var", options.variables, "Set a variable: name=EXPR (repeatable)")
      ->type_name("NAME=EXPR")
      ->expected(1)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
      ->allow_extra_args(false);
}

namespace {

// Is it an option of eval or of all commands whose value is the next argument?
bool TakesNext(const std::string& argument) {
  constexpr std::string_view kOptions[] = {"-v",          "--var",        "-e",       "--encoding",
                                           "--max-steps", "--max-memory", "--timeout"};
  return std::find(std::begin(kOptions), std::end(kOptions), argument) != std::end(kOptions);
}

// An expression may begin with "-" and a digit or bracket, which the argument parser would take
// for an option: everything behind "eval" that looks so is moved behind "--".
std::vector<std::string> SeparateExpression(int count, char** arguments) {
  std::vector<std::string> given(arguments + 1, arguments + count);
  std::size_t command = 0;
  while (command < given.size() && given[command].starts_with('-')) {
    command += TakesNext(given[command]) ? 2 : 1;
  }
  if (command >= given.size() || given[command] != "eval") return given;
  for (std::size_t i = command + 1; i < given.size() && given[i] != "--"; ++i) {
    const std::string& argument = given[i];
    if (TakesNext(argument)) {
      ++i;
    } else if (argument.size() > 1 && argument[0] == '-' &&
               std::strchr("0123456789.$({\" ", argument[1]) != nullptr) {
      std::string expression = argument;
      given.erase(given.begin() + static_cast<std::ptrdiff_t>(i));
      given.insert(given.end(), {"--", std::move(expression)});
      break;
    }
  }
  return given;
}

int Run(int count, char** arguments) {
  int status = kExitSuccess;
  CLI::App app("Reads definition texts and evaluates expressions of the Mep language.", "mep");
  app.set_version_flag("--version", "mep " IXOMEP_VERSION_TEXT);
  app.require_subcommand(1);
  app.fallthrough();
  LimitedHost host;
  IxoHost::Install(&host);
  AddLimitOptions(app);
  app.footer("Exit status: 0 success, 1 an error in the text, 2 called wrongly.");
  AddShow(app, status);
  AddEval(app, status);
  AddCheck(app, status);
  AddQuery(app, status);
  AddXml(app, status);
  AddProtect(app, status);
  std::vector<std::string> given = SeparateExpression(count, arguments);
  std::reverse(given.begin(), given.end());  // the argument parser takes them from the back
  try {
    app.parse(given);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kExitSuccess : kExitUsage;
  } catch (const std::bad_alloc&) {
    CheckMemoryLimit();
    throw;
  }
  return status;
}

}  // namespace
}  // namespace mep

int main(int count, char** arguments) {
  try {
    return mep::Run(count, arguments);
  } catch (const mep::LimitReached& limit) {
    std::fprintf(stderr, "mep: error: %s [%d]\n", limit.what(), int{IMEPERR_TOO_DEEP});
    return mep::kExitTextError;
  } catch (const std::bad_alloc&) {
    std::fputs("mep: error: out of memory\n", stderr);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "mep: error: %s\n", error.what());
  }
  return mep::kExitUsage;
}
