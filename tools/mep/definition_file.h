// A definition text given by the user: read, converted, parsed, its error reported.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "ixomep/parser/parser.h"
#include "tools/mep/include_host.h"

namespace mep {

class Diagnostics;
class TextIo;

// Makes the parser of a text; the name is its context.
using ParserFactory =
    std::function<std::unique_ptr<IxoMepParser>(const String& text, const String& name)>;

// A parser of no special kind.
std::unique_ptr<IxoMepParser> MakePlainParser(const String& text, const String& name);

class DefinitionFile {
 public:
  // Included files are read from below `include_root`; when that is empty, from below the folder
  // of the file, or the current folder for standard input.
  DefinitionFile(std::string path, const std::string& include_root, const TextIo& io,
                 Diagnostics& diagnostics);

  // Reads, and makes the parser without parsing. The exit status; what is wrong has been reported.
  int Read(const ParserFactory& factory = MakePlainParser);
  // Reads and parses. The exit status, 0 when the text is free of errors.
  int Load(const ParserFactory& factory = MakePlainParser);
  // Reports the error that the parser, this file's or one of a stretch of it, ended with.
  void ReportError(const IxoMepParser& parser);

  // After Read or Load gave 0.
  IxoMepParser& Parser() const { return *parser_; }
  // The file's own text, before any include.
  const String& Text() const { return text_; }
  // The name for reports: the path, or "<standard input>".
  const std::string& Name() const { return name_; }

 private:
  std::string path_;
  std::string name_;
  const TextIo& io_;
  Diagnostics& diagnostics_;
  IncludeHost host_;
  String text_;
  std::unique_ptr<IxoMepParser> parser_;
};

}  // namespace mep
