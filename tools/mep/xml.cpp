// mep xml FILE: a definition text as a well-formed XML document in UTF-8.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <string>
#include <string_view>

#include "ixomep/parser/converter.h"
#include "tools/mep/commands.h"
#include "tools/mep/definition_file.h"
#include "tools/mep/diagnostics.h"
#include "tools/mep/output.h"
#include "tools/mep/text_io.h"

namespace mep {
namespace {

struct XmlOptions {
  std::string encoding = "utf-8";
  std::string file;
  std::string include_root;
  std::string root = "definitions";
  bool no_declaration = false;
};

int RunXml(const XmlOptions& options) {
  const TextIo io(*EncodingOfName(options.encoding));
  Diagnostics diagnostics(io);
  DefinitionFile file(options.file, options.include_root, io, diagnostics);
  IxoMepConverter* converter = nullptr;
  const int loaded = file.Load([&converter](const String& text, const String& /*name*/) {
    auto made = std::make_unique<IxoMepConverter>(text);
    converter = made.get();
    return made;
  });
  if (loaded != kExitSuccess) return loaded;
  converter->SetXmlNames(true);
  Output output(io);
  const String xml = converter->ToXML(!options.no_declaration, String(options.root));
  if (converter->GetErrorCode() != IMEPERR_NONE) {
    file.ReportError(*converter);
    return kExitTextError;
  }
  output.WriteBytes(xml.view());
  return output.Finish();
}

// A name that XML accepts without looking it up: ASCII letters, digits, "-", "_" and ".".
std::string CheckName(const std::string& name) {
  constexpr std::string_view kStart = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_";
  constexpr std::string_view kOther = "0123456789-.";
  const std::size_t start = name.find_first_not_of(kStart);
  const bool good =
      !name.empty() && start != 0 &&
      name.find_first_not_of(std::string(kStart) + std::string(kOther)) == std::string::npos;
  return good ? std::string() : "\"" + name + "\" is no name of an XML element";
}

}  // namespace

void AddXml(CLI::App& app, int& status) {
  auto options = std::make_shared<XmlOptions>();
  CLI::App* command = app.add_subcommand("xml", "Print a definition text as XML (UTF-8)");
  command->add_option("FILE", options->file, "The text; - reads standard input")->required();
  AddEncodingOption(*command, options->encoding);
  AddIncludeRootOption(*command, options->include_root);
  command->add_option("--root", options->root, "Name of the root element")
      ->capture_default_str()
      ->check(CheckName);
  command->add_flag("--no-declaration", options->no_declaration,
                    "No <?xml ...?> line; what is not ASCII becomes numeric references");
  command->callback([options, &status] { status = RunXml(*options); });
}

}  // namespace mep
