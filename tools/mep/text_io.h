// Text between the outside (files, arguments, standard streams) and the character set of the
// host in which the library works. UTF-8 outside unless the user names another encoding.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "ixomep/host/string.h"

namespace mep {

class Diagnostics;

enum class Encoding { kUtf8, kHost, kLatin1, kOem };

// The encoding of that name, any case: utf-8, windows-1252, latin-1, oem and their usual aliases.
std::optional<Encoding> EncodingOfName(std::string_view name);

// The content of a file, or of standard input for "-". Nothing, with `reason` set to a sentence,
// when it cannot be read, is no plain file, or is longer than a text of the library can be.
std::optional<std::string> ReadBytes(const std::string& path, std::string& reason);

// The bytes with a "?" in place of each that is not part of well-formed UTF-8.
std::string WellFormed(std::string_view bytes);

class TextIo {
 public:
  explicit TextIo(Encoding encoding) : encoding_(encoding) {}

  // Bytes from outside as host text; a byte-order mark of UTF-8 is dropped. Nothing, with an
  // error reported under the name of the source, when the bytes are not in the encoding. A
  // character that the host does not have becomes "?", with a warning for the first one.
  std::optional<String> Decode(std::string_view bytes, const std::string& source,
                               Diagnostics& diagnostics) const;

  // A file name, which is UTF-8 whatever the encoding of texts.
  static String DecodeName(const std::string& name);

  // Host text as bytes for the outside; what the encoding does not have becomes "?".
  std::string Encode(std::string_view host_text) const;

 private:
  Encoding encoding_;
};

}  // namespace mep
