// mep protect FILE and mep unprotect FILE: definition texts enciphered with the key of the library,
// which every parser reads, and back.
#include <CLI/CLI.hpp>
#include <memory>
#include <optional>
#include <string>

#include "ixomep/parser/protected_text.h"
#include "tools/mep/commands.h"
#include "tools/mep/diagnostics.h"
#include "tools/mep/output.h"
#include "tools/mep/text_io.h"

namespace mep {
namespace {

struct ProtectOptions {
  std::string encoding = "utf-8";
  std::string file;
  std::string output;
};

int RunProtect(const ProtectOptions& options, bool protect) {
  const TextIo io(*EncodingOfName(options.encoding));
  Diagnostics diagnostics(io);
  const std::string name = options.file == "-" ? "<standard input>" : options.file;
  std::string reason;
  const std::optional<std::string> bytes = ReadBytes(options.file, reason);
  if (!bytes) {
    diagnostics.Error(name, "cannot be read: " + reason);
    return kExitUsage;
  }
  if (ixomep::IsProtectedText(String(*bytes)) == protect) {
    diagnostics.Error(name, protect ? "is a protected text already" : "is not a protected text");
    return kExitTextError;
  }
  if (!protect) {
    Output output(io, options.output);
    output.Write(ixomep::UnprotectText(String(*bytes)).view());
    return output.Finish();
  }
  const std::optional<String> text = io.Decode(*bytes, name, diagnostics);
  if (!text) return kExitTextError;
  Output output(io, options.output);
  output.WriteBytes(ixomep::ProtectText(*text).view());
  return output.Finish();
}

void AddCommand(CLI::App& app, int& status, const char* name, const char* description,
                bool protect) {
  auto options = std::make_shared<ProtectOptions>();
  CLI::App* command = app.add_subcommand(name, description);
  command->add_option("FILE", options->file, "The text; - reads standard input")->required();
  AddEncodingOption(*command, options->encoding);
  command->add_option("-o,--output", options->output, "Write to this file (default: the output)")
      ->type_name("FILE");
  command->callback([options, protect, &status] { status = RunProtect(*options, protect); });
}

}  // namespace

void AddProtect(CLI::App& app, int& status) {
  AddCommand(app, status, "protect", "Encipher a definition text, so that it is not readable",
             /*protect=*/true);
  AddCommand(app, status, "unprotect", "Decipher a protected definition text",
             /*protect=*/false);
}

}  // namespace mep
