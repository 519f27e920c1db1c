// Splits name=EXPR at the first "=", checks the name by the rules of the language and evaluates
// the expression.
#include "tools/mep/variables.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string_view>

#include "tools/mep/commands.h"
#include "tools/mep/diagnostics.h"
#include "tools/mep/expressions.h"
#include "tools/mep/text_io.h"

namespace mep {
namespace {

bool IsLower(unsigned char byte) { return byte >= 'a' && byte <= 'z'; }
bool IsUpper(unsigned char byte) { return byte >= 'A' && byte <= 'Z'; }
bool IsDigit(unsigned char byte) { return byte >= '0' && byte <= '9'; }

// A name as expressions write it; hyphens are allowed as in names written with "?".
bool IsVariableName(std::string_view name) {
  if (name.empty()) return false;
  const auto first = static_cast<unsigned char>(name.front());
  if (!IsLower(first) && first != '_' && first < 128) return false;
  return std::all_of(name.begin(), name.end(), [](unsigned char byte) {
    return IsLower(byte) || IsUpper(byte) || IsDigit(byte) || byte == '_' || byte == '-' ||
           byte >= 128;
  });
}

}  // namespace

int SetVariables(const std::vector<std::string>& definitions, IxoMepValueSet& scope,
                 const TextIo& io, Diagnostics& diagnostics) {
  for (const std::string& definition : definitions) {
    const std::optional<String> text = io.Decode(definition, "-v", diagnostics);
    if (!text) return kExitTextError;
    const std::int32_t equals = text->Search('=');
    const String name = equals == String::kNotFound ? String() : text->Copy(0, equals);
    if (!IsVariableName(name.view())) {
      diagnostics.Error("-v " + definition,
                        "a variable is set as name=EXPR, its name beginning "
                        "with a lower-case letter or \"_\"");
      return kExitUsage;
    }
    std::unique_ptr<IxoMepValue> value =
        EvaluateText(text->Copy(equals + 1), "-v " + io.Encode(name.view()), scope,
                     /*strict=*/true, diagnostics);
    if (!value) return kExitTextError;
    scope.OldMoveValue(name, value.release(), /*local=*/true);
  }
  return kExitSuccess;
}

}  // namespace mep
