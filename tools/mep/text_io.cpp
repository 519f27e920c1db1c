// Reading files and converting texts. The character tables are the host's (ToUtf8, FromUtf8);
// here are only the checks that tell the user what would be lost.
#include "tools/mep/text_io.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <system_error>

#include "ixomep/host/encodings.h"
#include "ixomep/host/host.h"
#include "tools/mep/diagnostics.h"

namespace mep {
namespace {

struct EncodingName {
  std::string_view name;
  Encoding encoding;
};

constexpr EncodingName kEncodingNames[] = {
    {"utf-8", Encoding::kUtf8},        {"utf8", Encoding::kUtf8},
    {"windows-1252", Encoding::kHost}, {"cp1252", Encoding::kHost},
    {"host", Encoding::kHost},         {"latin-1", Encoding::kLatin1},
    {"latin1", Encoding::kLatin1},     {"iso-8859-1", Encoding::kLatin1},
    {"oem", Encoding::kOem},           {"cp850", Encoding::kOem},
    {"ibm850", Encoding::kOem},
};

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

unsigned ByteAt(std::string_view text, std::size_t index) {
  return static_cast<unsigned char>(text[index]);
}

bool IsContinuation(std::string_view text, std::size_t index) {
  return index < text.size() && (ByteAt(text, index) & 0xC0u) == 0x80u;
}

// The length of the UTF-8 sequence that starts at the index, 0 when it is malformed: overlong
// forms, surrogates and numbers beyond U+10FFFF are.
std::size_t SequenceLength(std::string_view text, std::size_t index) {
  const unsigned first = ByteAt(text, index);
  if (first < 0x80u) return 1;
  const std::size_t length = first >= 0xF5u   ? 0
                             : first >= 0xF0u ? 4
                             : first >= 0xE0u ? 3
                             : first >= 0xC2u ? 2
                                              : 0;
  for (std::size_t i = 1; i < length; ++i) {
    if (!IsContinuation(text, index + i)) return 0;
  }
  if (length < 3) return length;
  const unsigned second = ByteAt(text, index + 1);
  const bool bad = (first == 0xE0u && second < 0xA0u) || (first == 0xEDu && second >= 0xA0u) ||
                   (first == 0xF0u && second < 0x90u) || (first == 0xF4u && second >= 0x90u);
  return bad ? 0 : length;
}

std::size_t FirstMalformed(std::string_view text) {
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t length = SequenceLength(text, i);
    if (length == 0) return i;
    i += length;
  }
  return std::string_view::npos;
}

// The first character of well-formed text that the host turns into "?".
std::size_t FirstUnknownToHost(std::string_view text) {
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t length = SequenceLength(text, i);
    if (length > 1 && ConvertUTF8StringToString(String(text.substr(i, length))) == "?") return i;
    i += length;
  }
  return std::string_view::npos;
}

std::string Latin1ToUtf8(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size() + bytes.size() / 8);
  for (const char byte : bytes) {
    const auto code = static_cast<unsigned char>(byte);
    if (code < 0x80u) {
      text += byte;
    } else {
      text += static_cast<char>(0xC0u | (code >> 6u));
      text += static_cast<char>(0x80u | (code & 0x3Fu));
    }
  }
  return text;
}

std::string Utf8ToLatin1(std::string_view text) {
  std::string bytes;
  bytes.reserve(text.size());
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t length = std::max<std::size_t>(SequenceLength(text, i), 1);
    if (length == 1) {
      bytes += text[i];
    } else if (length == 2 && ByteAt(text, i) <= 0xC3u) {
      bytes += static_cast<char>(((ByteAt(text, i) & 3u) << 6u) | (ByteAt(text, i + 1) & 0x3Fu));
    } else {
      bytes += '?';
    }
    i += length;
  }
  return bytes;
}

String FromOem(std::string_view bytes) {
  String text(bytes);
  if (!text.IsEmpty()) {
    OemToCharBuffA(text.c_str(), text.MutableText(), static_cast<std::uint32_t>(text.Len()));
  }
  return text;
}

std::string ToOem(std::string_view host_text) {
  String text(host_text);
  if (!text.IsEmpty()) {
    CharToOemBuffA(text.c_str(), text.MutableText(), static_cast<std::uint32_t>(text.Len()));
  }
  return std::string(text.view());
}

std::string Utf8Of(std::string_view host_text) {
  return std::string(ConvertStringToUTF8(String(host_text)).view());
}

std::optional<String> DecodeUtf8(std::string_view bytes, const std::string& source,
                                 Diagnostics& diagnostics) {
  if (bytes.starts_with(kByteOrderMark)) bytes.remove_prefix(kByteOrderMark.size());
  const std::size_t malformed = FirstMalformed(bytes);
  if (malformed != std::string_view::npos) {
    diagnostics.ErrorInBytes(source, bytes, malformed,
                             "this is not UTF-8; say --encoding windows-1252 (or latin-1) if the "
                             "text is written so");
    return std::nullopt;
  }
  String text = ConvertUTF8StringToString(String(bytes));
  if (std::count(bytes.begin(), bytes.end(), '?') <
      std::count(text.view().begin(), text.view().end(), '?')) {
    diagnostics.WarningInBytes(source, bytes, FirstUnknownToHost(bytes),
                               "the host's character set does not have this character; it is "
                               "read as \"?\"");
  }
  return text;
}

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

bool ReadAll(std::FILE* file, std::string& bytes, std::string& reason) {
  char block[65536];
  for (;;) {
    const std::size_t count = std::fread(block, 1, sizeof block, file);
    bytes.append(block, count);
    if (bytes.size() > static_cast<std::size_t>(String::kMaxLength)) {
      reason = "it is longer than a text can be (2147483635 bytes)";
      return false;
    }
    if (count < sizeof block) break;
  }
  if (std::ferror(file) != 0) {
    reason = std::strerror(errno);
    return false;
  }
  return true;
}

}  // namespace

std::optional<Encoding> EncodingOfName(std::string_view name) {
  std::string lower(name);
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](unsigned char byte) { return static_cast<char>(std::tolower(byte)); });
  for (const EncodingName& row : kEncodingNames) {
    if (row.name == lower) return row.encoding;
  }
  return std::nullopt;
}

std::optional<std::string> ReadBytes(const std::string& path, std::string& reason) {
  std::string bytes;
  if (path == "-") {
    if (!ReadAll(stdin, bytes, reason)) return std::nullopt;
    return bytes;
  }
  std::error_code ignored;
  if (std::filesystem::is_directory(path, ignored)) {
    reason = "it is a directory";
    return std::nullopt;
  }
  const std::unique_ptr<std::FILE, CloseFile> file(std::fopen(path.c_str(), "rb"));
  if (!file) {
    reason = std::strerror(errno);
    return std::nullopt;
  }
  if (!ReadAll(file.get(), bytes, reason)) return std::nullopt;
  return bytes;
}

std::string WellFormed(std::string_view bytes) {
  std::string text;
  for (std::size_t i = 0; i < bytes.size();) {
    const std::size_t length = SequenceLength(bytes, i);
    text += length == 0 ? std::string_view("?") : bytes.substr(i, length);
    i += std::max<std::size_t>(length, 1);
  }
  return text;
}

std::optional<String> TextIo::Decode(std::string_view bytes, const std::string& source,
                                     Diagnostics& diagnostics) const {
  switch (encoding_) {
    case Encoding::kUtf8:
      return DecodeUtf8(bytes, source, diagnostics);
    case Encoding::kLatin1:
      return ConvertUTF8StringToString(String(Latin1ToUtf8(bytes)));
    case Encoding::kOem:
      return FromOem(bytes);
    case Encoding::kHost:
      break;
  }
  return String(bytes);
}

String TextIo::DecodeName(const std::string& name) {
  return ConvertUTF8StringToString(String(name));
}

std::string TextIo::Encode(std::string_view host_text) const {
  switch (encoding_) {
    case Encoding::kUtf8:
      return Utf8Of(host_text);
    case Encoding::kLatin1:
      return Utf8ToLatin1(Utf8Of(host_text));
    case Encoding::kOem:
      return ToOem(host_text);
    case Encoding::kHost:
      break;
  }
  return std::string(host_text);
}

}  // namespace mep
