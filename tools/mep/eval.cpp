// mep eval EXPR: the value of one expression, printed as the language writes it.
#include <CLI/CLI.hpp>
#include <memory>
#include <optional>
#include <string>

#include "ixomep/expr/value_set.h"
#include "ixomep/values/value.h"
#include "tools/mep/commands.h"
#include "tools/mep/diagnostics.h"
#include "tools/mep/expressions.h"
#include "tools/mep/output.h"
#include "tools/mep/text_io.h"
#include "tools/mep/variables.h"

namespace mep {
namespace {

struct EvalOptions {
  CommonOptions common;
  std::string expression;
  bool strict = false;
  bool raw = false;
  bool type = false;
};

int Print(const IxoMepValue& value, const EvalOptions& options, const TextIo& io) {
  Output output(io);
  if (options.type) {
    output.Write(IxoMepValue::GetTypeName(value.GetType()).view());
    output.Write(" ");
  }
  const bool raw = options.raw && value.GetType() == IxoMepValueType::String;
  output.Write((raw ? value.GetStr() : value.GetText(/*period=*/true)).view());
  output.Write("\n");
  return output.Finish();
}

// The bytes of the expression: the argument, or standard input for "-".
std::optional<std::string> ExpressionBytes(const std::string& argument, Diagnostics& diagnostics) {
  if (argument != "-") return argument;
  std::string reason;
  std::optional<std::string> bytes = ReadBytes(argument, reason);
  if (!bytes) diagnostics.Error("<standard input>", "cannot be read: " + reason);
  return bytes;
}

int RunEval(const EvalOptions& options) {
  const TextIo io(*EncodingOfName(options.common.encoding));
  Diagnostics diagnostics(io);
  IxoMepValueSet scope;
  const int variables = SetVariables(options.common.variables, scope, io, diagnostics);
  if (variables != kExitSuccess) return variables;
  const std::optional<std::string> bytes = ExpressionBytes(options.expression, diagnostics);
  if (!bytes) return kExitUsage;
  const std::string source = options.expression == "-" ? "<standard input>" : "<expression>";
  const std::optional<String> text = io.Decode(*bytes, source, diagnostics);
  if (!text) return kExitTextError;
  const std::unique_ptr<IxoMepValue> value =
      EvaluateText(*text, source, scope, options.strict, diagnostics);
  if (!value) return kExitTextError;
  return Print(*value, options, io);
}

}  // namespace

void AddEval(CLI::App& app, int& status) {
  auto options = std::make_shared<EvalOptions>();
  CLI::App* command = app.add_subcommand("eval", "Evaluate an expression and print its value");
  command->add_option("EXPR", options->expression, "The expression; - reads standard input")
      ->required();
  AddCommonOptions(*command, options->common);
  command->add_flag("-s,--strict", options->strict, "Unknown variables and assignments are errors");
  command->add_flag("-r,--raw", options->raw, "Print a string without quotes and escapes");
  command->add_flag("-t,--type", options->type, "Print the type in front of the value");
  command->callback([options, &status] { status = RunEval(*options); });
}

}  // namespace mep
