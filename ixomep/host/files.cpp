// Reading files and telling repository names, through the host. See files.h.
#include "ixomep/host/files.h"

#include "ixomep/host/host.h"

namespace {

void DropCarriageReturns(String& text) {
  if (text.Search("\r\n") == String::kNotFound) return;
  char* bytes = text.MutableText();
  std::int32_t kept = 0;
  for (std::int32_t i = 0; i < text.Len(); ++i) {
    // The terminating zero byte makes the look at the next byte safe.
    if (bytes[i] == '\r' && bytes[i + 1] == '\n') continue;
    bytes[kept++] = bytes[i];
  }
  text.Resize(kept);
}

}  // namespace

bool IxoSystemFileManager::readStringFromFile(String& text, const String& name,
                                              bool plain_line_ends) {
  if (!IxoHost::Current().ReadTextFile(name, text)) return false;
  if (plain_line_ends) DropCarriageReturns(text);
  return true;
}

bool Ixo_Valid_DBFilename(const String& name) { return IxoHost::Current().IsRepositoryName(name); }
