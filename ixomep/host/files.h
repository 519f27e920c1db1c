// Files as the host serves them: reading a whole text, and the test whether a name is one of the
// host's repository names (which alone may be cached).
#pragma once

#include "ixomep/export.h"
#include "ixomep/host/string.h"

class IXOMEP_API IxoSystemFileManager {
 public:
  // Reads the whole file; false, and `text` unchanged, when it cannot be read (absent, a folder,
  // refused, longer than a String). With `plain_line_ends` every carriage return that stands
  // before a line feed is dropped; otherwise the bytes come as they are.
  static bool readStringFromFile(String& text, const String& name, bool plain_line_ends);
};

// Whether the name is a repository name: its first four characters are the repository's prefix.
IXOMEP_API bool Ixo_Valid_DBFilename(const String& name);
