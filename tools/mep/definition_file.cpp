// The parser says line, column and file of an error; the line itself is shown from the text of
// that file, which the include host has kept.
#include "tools/mep/definition_file.h"

#include <optional>
#include <utility>

#include "ixomep/parser/protected_text.h"
#include "tools/mep/commands.h"
#include "tools/mep/diagnostics.h"
#include "tools/mep/text_io.h"

namespace mep {
namespace {

std::filesystem::path FolderOf(const std::string& path) {
  return path == "-" ? std::filesystem::path() : std::filesystem::path(path).parent_path();
}

}  // namespace

std::unique_ptr<IxoMepParser> MakePlainParser(const String& text, const String& name) {
  return std::make_unique<IxoMepParser>(text, name);
}

DefinitionFile::DefinitionFile(std::string path, const std::string& include_root, const TextIo& io,
                               Diagnostics& diagnostics)
    : path_(std::move(path)),
      name_(path_ == "-" ? "<standard input>" : path_),
      io_(io),
      diagnostics_(diagnostics),
      host_(FolderOf(path_), include_root, io, diagnostics) {}

int DefinitionFile::Read(const ParserFactory& factory) {
  std::string reason;
  const std::optional<std::string> bytes = ReadBytes(path_, reason);
  if (!bytes) {
    diagnostics_.Error(name_, "cannot be read: " + reason);
    return kExitUsage;
  }
  // A protected text is no text yet: its bytes go to the parser as they are.
  String text(*bytes);
  if (!ixomep::IsProtectedText(text)) {
    const std::optional<String> decoded = io_.Decode(*bytes, name_, diagnostics_);
    if (!decoded) return kExitTextError;
    text = *decoded;
  }
  parser_ = factory(text, TextIo::DecodeName(name_));
  text_ = parser_->GetCompleteText();
  return kExitSuccess;
}

int DefinitionFile::Load(const ParserFactory& factory) {
  const int status = Read(factory);
  if (status != kExitSuccess) return status;
  if (parser_->Parse() == IMEPERR_NONE) return kExitSuccess;
  ReportError(*parser_);
  return kExitTextError;
}

void DefinitionFile::ReportError(const IxoMepParser& parser) {
  const std::string_view message = WithoutContextBlock(parser.GetErrorText().view());
  const int code = parser.GetErrorCode();
  const String& context = parser.GetErrorContext();
  const bool is_own = context == parser.GetContext();
  const String* text = is_own ? &text_ : host_.TextOf(context);
  const std::string source = is_own ? name_ : host_.NameOf(context);
  if (text != nullptr && parser.GetErrorLine() > 0) {
    diagnostics_.ErrorAtColumn(source, text->view(), parser.GetErrorLine(), parser.GetErrorColumn(),
                               message, code);
  } else {
    diagnostics_.ErrorOnLine(source, parser.GetErrorLine(), message, code);
  }
  if (code == IMEPERR_INCLUDE_FAILED && !host_.LastReason().empty()) {
    diagnostics_.Note(source, host_.LastReason());
  }
}

}  // namespace mep
