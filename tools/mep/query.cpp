// mep query FILE PATH: the elements or attributes that a path leads to (path.h), as text for
// people and scripts or as JSON.
#include <CLI/CLI.hpp>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ixomep/expr/value_set.h"
#include "tools/mep/commands.h"
#include "tools/mep/definition_file.h"
#include "tools/mep/diagnostics.h"
#include "tools/mep/expressions.h"
#include "tools/mep/json_output.h"
#include "tools/mep/limits.h"
#include "tools/mep/output.h"
#include "tools/mep/path.h"
#include "tools/mep/text_io.h"
#include "tools/mep/tree_text.h"
#include "tools/mep/variables.h"

namespace mep {
namespace {

struct QueryOptions {
  CommonOptions common;
  std::string file;
  std::string path;
  std::string include_root;
  bool json = false;
};

// What the statements of a text assign is known to its expressions.
void RunStatements(const IxoMepParser& parser, IxoMepValueSet& scope) {
  for (std::int32_t i = 0; i < parser.GetElemCount(); ++i) {
    CheckTime();
    const IxoMepElement& element = ElementAt(parser, i);
    if (element.GetKeyword() != ";" || element.GetValue() == nullptr) continue;
    const IxoMepExpressionParser* statement = element.GetValue()->GetExpr();
    if (statement != nullptr) EvaluateStatement(*statement, scope);
  }
}

// The value of an attribute on a line of its own: a string without quotes, an expression by its
// value or, while that cannot be had, by its source; without a value the modifier, and "true" for
// a flag.
void WriteValue(const Selection& selection, const std::string& source, IxoMepValueSet& scope,
                Output& output, Diagnostics& diagnostics) {
  const IxoMepAttribute& attribute = *selection.attribute;
  const IxoMepValue* value = attribute.GetValue();
  Evaluation evaluation;
  if (value != nullptr && value->GetExpr() != nullptr) {
    evaluation = EvaluateAttribute(*value->GetExpr(), scope);
    ReportIfError(evaluation, *value->GetExpr(), source, selection.element->GetLine(), diagnostics);
    if (evaluation.value) value = evaluation.value.get();
  }
  if (value == nullptr) {
    output.Write(attribute.GetModifier().IsEmpty() ? "true" : attribute.GetModifier().view());
  } else if (value->GetExpr() != nullptr) {
    output.Write(SourceOf(*value->GetExpr()));
  } else if (value->GetType() == IxoMepValueType::String) {
    output.Write(value->GetStr().view());
  } else {
    output.Write(value->GetText(/*period=*/true).view());
  }
  output.Write("\n");
}

void WriteText(const std::vector<Selection>& selections, const std::string& source,
               IxoMepValueSet& scope, Output& output, Diagnostics& diagnostics) {
  for (const Selection& selection : selections) {
    if (selection.attribute == nullptr) {
      WriteElementTree(*selection.body, selection.index, source, scope, output, diagnostics);
    } else if (selection.attribute->GetBodyParser() != nullptr) {
      WriteTree(*selection.attribute->GetBodyParser(), source, scope, output, diagnostics);
    } else {
      WriteValue(selection, source, scope, output, diagnostics);
    }
  }
}

int RunQuery(const QueryOptions& options) {
  const TextIo io(*EncodingOfName(options.common.encoding));
  Diagnostics diagnostics(io);
  const std::optional<String> path_text = io.Decode(options.path, "<path>", diagnostics);
  if (!path_text) return kExitUsage;
  std::size_t mistake = 0;
  std::string reason;
  const std::optional<std::vector<PathStep>> path = ParsePath(*path_text, mistake, reason);
  if (!path) {
    diagnostics.ErrorAt("<path>", path_text->view(), mistake, reason, 0);
    return kExitUsage;
  }
  IxoMepValueSet scope;
  const int variables = SetVariables(options.common.variables, scope, io, diagnostics);
  if (variables != kExitSuccess) return variables;
  DefinitionFile file(options.file, options.include_root, io, diagnostics);
  const int loaded = file.Load();
  if (loaded != kExitSuccess) return loaded;
  RunStatements(file.Parser(), scope);
  std::size_t failed_step = 0;
  const std::vector<Selection> selections = Select(file.Parser(), *path, failed_step);
  if (selections.empty()) {
    const PathStep& step = (*path)[failed_step];
    diagnostics.Error(file.Name(), std::string("nothing is found for the ") +
                                       (step.is_element ? "element " : "attribute ") +
                                       io.Encode(step.name.view()) + " of the path");
    return kExitTextError;
  }
  Output output(io);
  if (options.json) {
    WriteJson(selections, scope, output);
  } else {
    WriteText(selections, file.Name(), scope, output, diagnostics);
  }
  const int written = output.Finish();
  if (written != kExitSuccess) return written;
  return diagnostics.ErrorCount() > 0 ? kExitTextError : kExitSuccess;
}

}  // namespace

void AddQuery(CLI::App& app, int& status) {
  auto options = std::make_shared<QueryOptions>();
  CLI::App* command =
      app.add_subcommand("query", "Print the elements or attributes that a path leads to");
  command->add_option("FILE", options->file, "The text; - reads standard input")->required();
  command
      ->add_option("PATH", options->path,
                   "Steps with / between them: KEYWORD, KEYWORD[number], KEYWORD[value], attribute")
      ->required();
  AddCommonOptions(*command, options->common);
  AddIncludeRootOption(*command, options->include_root);
  command->add_flag("-j,--json", options->json, "Print JSON: an array of what was found");
  command->callback([options, &status] { status = RunQuery(*options); });
}

}  // namespace mep
