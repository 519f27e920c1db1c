// mep check FILE...: the errors of definition texts, one line each in the form of compilers. After
// an error the rest of the text is read on from the next element that stands by itself
// (recovery.h); behind a string or bracket that is not closed, or an error in an included file,
// nothing is certain, and the text ends there.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "tools/mep/commands.h"
#include "tools/mep/definition_file.h"
#include "tools/mep/diagnostics.h"
#include "tools/mep/limits.h"
#include "tools/mep/recovery.h"
#include "tools/mep/text_io.h"

namespace mep {
namespace {

constexpr int kMaxErrors = 100;  // in one file

struct CheckOptions {
  std::string encoding = "utf-8";
  std::vector<std::string> files;
  std::string include_root;
};

bool MakesTheRestUncertain(IxoMepErrorEnum code) {
  return code == IMEPERR_BACKSLASH_AT_END || code == IMEPERR_STRING_NOT_CLOSED ||
         code == IMEPERR_CLOSER_EXPECTED || code == IMEPERR_NOTHING_OPEN;
}

class Checker {
 public:
  Checker(DefinitionFile& file, Diagnostics& diagnostics)
      : file_(file), diagnostics_(diagnostics), first_error_(diagnostics.ErrorCount()) {}

  void Run() {
    const String& text = file_.Text();
    Parse(file_.Parser(), {0, static_cast<std::size_t>(text.Len())});
    while (!pending_.empty() && diagnostics_.ErrorCount() - first_error_ < kMaxErrors) {
      CheckTime();
      const Stretch stretch = pending_.back();
      pending_.pop_back();
      const std::string_view before = text.view().substr(0, stretch.begin);
      const auto line = 1 + std::count(before.begin(), before.end(), '\n');
      IxoMepParser parser(text, static_cast<std::int32_t>(stretch.begin),
                          static_cast<std::int32_t>(stretch.end - stretch.begin),
                          static_cast<std::int32_t>(line), file_.Parser().GetContext());
      Parse(parser, stretch);
    }
  }

 private:
  void Parse(IxoMepParser& parser, Stretch stretch) {
    if (parser.Parse() == IMEPERR_NONE) return;
    file_.ReportError(parser);
    const bool is_own = parser.GetErrorContext() == parser.GetContext();
    if (!is_own || parser.GetErrorLine() < 1 || MakesTheRestUncertain(parser.GetErrorCode())) {
      return;
    }
    const std::string_view text = file_.Text().view();
    const std::size_t error =
        OffsetOf(text, parser.GetErrorLine(), std::max(parser.GetErrorColumn(), 1));
    std::vector<Stretch> stretches = StretchesBehind(text, stretch, error);
    pending_.insert(pending_.end(), stretches.rbegin(), stretches.rend());
  }

  DefinitionFile& file_;
  Diagnostics& diagnostics_;
  int first_error_;
  std::vector<Stretch> pending_;  // in reverse order of the text
};

int RunCheck(const CheckOptions& options) {
  const TextIo io(*EncodingOfName(options.encoding));
  int status = kExitSuccess;
  for (const std::string& name : options.files) {
    Diagnostics diagnostics(io, Detail::kOneLine);
    DefinitionFile file(name, options.include_root, io, diagnostics);
    const int read = file.Read();
    if (read == kExitSuccess) Checker(file, diagnostics).Run();
    const bool failed = read != kExitSuccess || diagnostics.ErrorCount() > 0;
    if (failed) status = std::max(status, std::max<int>(read, kExitTextError));
  }
  return status;
}

}  // namespace

void AddCheck(CLI::App& app, int& status) {
  auto options = std::make_shared<CheckOptions>();
  CLI::App* command = app.add_subcommand("check", "Report the errors of definition texts");
  command->add_option("FILE", options->files, "The texts; - reads standard input")->required();
  AddEncodingOption(*command, options->encoding);
  AddIncludeRootOption(*command, options->include_root);
  command->callback([options, &status] { status = RunCheck(*options); });
}

}  // namespace mep
