// mep show FILE: a definition text as a tree (tree_text.h).
#include <CLI/CLI.hpp>
#include <memory>
#include <string>

#include "ixomep/expr/value_set.h"
#include "tools/mep/commands.h"
#include "tools/mep/definition_file.h"
#include "tools/mep/diagnostics.h"
#include "tools/mep/output.h"
#include "tools/mep/text_io.h"
#include "tools/mep/tree_text.h"
#include "tools/mep/variables.h"

namespace mep {
namespace {

struct ShowOptions {
  CommonOptions common;
  std::string file;
  std::string include_root;
};

int RunShow(const ShowOptions& options) {
  const TextIo io(*EncodingOfName(options.common.encoding));
  Diagnostics diagnostics(io);
  IxoMepValueSet scope;
  const int variables = SetVariables(options.common.variables, scope, io, diagnostics);
  if (variables != kExitSuccess) return variables;
  DefinitionFile file(options.file, options.include_root, io, diagnostics);
  const int loaded = file.Load();
  if (loaded != kExitSuccess) return loaded;
  Output output(io);
  WriteTree(file.Parser(), file.Name(), scope, output, diagnostics);
  const int written = output.Finish();
  if (written != kExitSuccess) return written;
  return diagnostics.ErrorCount() > 0 ? kExitTextError : kExitSuccess;
}

}  // namespace

void AddShow(CLI::App& app, int& status) {
  auto options = std::make_shared<ShowOptions>();
  CLI::App* command =
      app.add_subcommand("show", "Print the elements of a definition text as a tree");
  command->add_option("FILE", options->file, "The text; - reads standard input")->required();
  AddCommonOptions(*command, options->common);
  AddIncludeRootOption(*command, options->include_root);
  command->callback([options, &status] { status = RunShow(*options); });
}

}  // namespace mep
