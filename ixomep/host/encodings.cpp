// Base64, URL and XML escaping; the character set conversions are the host's. See encodings.h.
#include "ixomep/host/encodings.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <utility>

#include "ixomep/host/host.h"
#include "ixomep/host/string_pieces.h"

namespace {

constexpr std::string_view kBase64 =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::string_view kHexDigits = "0123456789ABCDEF";
constexpr unsigned char kNoBase64 = 64;

constexpr std::array<unsigned char, 256> MakeBase64Values() {
  std::array<unsigned char, 256> values{};
  values.fill(kNoBase64);
  for (std::size_t i = 0; i < kBase64.size(); ++i) {
    values[static_cast<unsigned char>(kBase64[i])] = static_cast<unsigned char>(i);
  }
  return values;
}

constexpr auto kBase64Values = MakeBase64Values();

bool IsSpace(char byte) noexcept { return byte == ' ' || (byte >= '\t' && byte <= '\r'); }

unsigned ByteAt(std::string_view bytes, std::size_t at) noexcept {
  return at < bytes.size() ? static_cast<unsigned char>(bytes[at]) : 0U;
}

// What counts as Base64: how many letters stand in front of the padding. False when anything but
// letters, white space and a fitting padding occurs.
bool CountBase64Letters(std::string_view text, std::size_t& letters) noexcept {
  letters = 0;
  std::size_t padding = 0;
  for (const char byte : text) {
    if (IsSpace(byte)) continue;
    if (byte == '=') {
      ++padding;
      continue;
    }
    if (padding != 0 || kBase64Values[static_cast<unsigned char>(byte)] == kNoBase64) return false;
    ++letters;
  }
  const std::size_t open = letters % 4;  // letters of the last, incomplete group
  if (open == 1) return false;
  return open == 0 ? padding == 0 : padding <= 4 - open;
}

// Reads the UTF-8 sequence at `at` and moves behind it. The host's conversion made it, so it is
// taken as well-formed; bytes that are not give some number below 2^21.
std::uint32_t NextCodePoint(std::string_view text, std::size_t& at) noexcept {
  const auto lead = static_cast<unsigned char>(text[at++]);
  if (lead < 0x80) return lead;
  std::uint32_t code_point = lead & (lead >= 0xF0 ? 0x07U : lead >= 0xE0 ? 0x0FU : 0x1FU);
  const std::size_t end = std::min(text.size(), at + 3);
  while (at < end && (static_cast<unsigned char>(text[at]) & 0xC0U) == 0x80U) {
    code_point = (code_point << 6) | (static_cast<unsigned char>(text[at++]) & 0x3FU);
  }
  return code_point;
}

void AddReference(ixomep::StringPieces& out, std::uint32_t code_point) {
  char text[ixomep::StringPieces::kMost] = {'&', '#'};
  char* const end = std::to_chars(text + 2, std::end(text) - 1, code_point).ptr;
  *end = ';';
  out.Add({text, static_cast<std::size_t>(end + 1 - text)});
}

// The text that an ASCII byte of XML content has to be replaced by; null when it may stay.
const char* XmlReplacement(char byte) noexcept {
  switch (byte) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '"':
      return "&quot;";
    case '\'':
      return "&apos;";
    case '\t':
      return "&#9;";
    case '\n':
      return "&#10;";
    case '\r':
      return "&#13;";
    default:
      return byte >= 0 && byte < ' ' ? "" : nullptr;
  }
}

bool ConvertBytes(const char* source, char* destination, std::size_t count,
                  void (IxoHost::*map)(char*, std::size_t)) {
  if (source == nullptr || destination == nullptr) return false;
  std::memmove(destination, source, count);
  (IxoHost::Current().*map)(destination, count);
  return true;
}

std::size_t SizeWithEnd(const char* text) noexcept {
  return text == nullptr ? 0 : std::strlen(text) + 1;
}

}  // namespace

bool Ixo_NewBase64Encode(std::string_view bytes, String& text) {
  constexpr std::size_t kMaxBytes = static_cast<std::size_t>(String::kMaxLength) / 4 * 3;
  if (bytes.size() > kMaxBytes) return false;
  String encoded = String::Filled(static_cast<std::int32_t>((bytes.size() + 2) / 3 * 4), '=');
  char* out = encoded.MutableText();
  for (std::size_t at = 0; at < bytes.size(); at += 3) {
    const std::uint32_t group =
        ByteAt(bytes, at) << 16 | ByteAt(bytes, at + 1) << 8 | ByteAt(bytes, at + 2);
    const std::size_t letters = std::min<std::size_t>(bytes.size() - at, 3) + 1;
    for (std::size_t i = 0; i < letters; ++i) out[i] = kBase64[(group >> (18 - 6 * i)) & 63U];
    out += 4;
  }
  text = std::move(encoded);
  return true;
}

bool Ixo_NewBase64Decode(std::string_view text, String& bytes) {
  std::size_t letters = 0;
  if (!CountBase64Letters(text, letters)) return false;
  String decoded;
  decoded.Resize(static_cast<std::int32_t>(letters / 4 * 3 + letters % 4 * 3 / 4));
  char* out = decoded.MutableText();
  std::uint32_t bits = 0;
  int held = 0;
  for (const char byte : text) {
    const unsigned char value = kBase64Values[static_cast<unsigned char>(byte)];
    if (value == kNoBase64) continue;  // white space and padding
    bits = bits << 6 | value;
    held += 6;
    if (held < 8) continue;
    held -= 8;
    *out++ = static_cast<char>(static_cast<unsigned char>(bits >> held & 255U));
  }
  bytes = std::move(decoded);
  return true;
}

String ConvertStringToUTF8(const String& text) { return IxoHost::Current().ToUtf8(text); }

String ConvertUTF8StringToString(const String& text) { return IxoHost::Current().FromUtf8(text); }

bool CharToOemA(const char* source, char* destination) {
  return ConvertBytes(source, destination, SizeWithEnd(source), &IxoHost::MapToOem);
}

bool OemToCharA(const char* source, char* destination) {
  return ConvertBytes(source, destination, SizeWithEnd(source), &IxoHost::MapFromOem);
}

bool CharToOemBuffA(const char* source, char* destination, std::uint32_t length) {
  return ConvertBytes(source, destination, length, &IxoHost::MapToOem);
}

bool OemToCharBuffA(const char* source, char* destination, std::uint32_t length) {
  return ConvertBytes(source, destination, length, &IxoHost::MapFromOem);
}

String HttpRequest::escapeUrlStyle(const String& text, const String& unescaped) {
  std::array<bool, 256> stays{};
  for (const char byte : unescaped.view()) stays[static_cast<unsigned char>(byte)] = true;
  String escaped;
  escaped.Reserve(text.Len());
  for (const char byte : text.view()) {
    const auto value = static_cast<unsigned char>(byte);
    if (stays[value]) {
      escaped += byte;
    } else {
      const char code[] = {'%', kHexDigits[value >> 4], kHexDigits[value & 15U]};
      escaped.Append({code, sizeof code});
    }
  }
  return escaped;
}

String IxoSGMLString::XMLStr(const String& text, bool references) {
  const String converted = ConvertStringToUTF8(text);
  const std::string_view utf8 = converted.view();
  String escaped;
  escaped.Reserve(converted.Len());
  ixomep::StringPieces pieces(escaped);
  for (std::size_t at = 0; at < utf8.size();) {
    const std::size_t start = at;
    const std::uint32_t code_point = NextCodePoint(utf8, at);
    if (code_point >= 0x80) {
      if (references) {
        AddReference(pieces, code_point);
      } else {
        pieces.Add(utf8.substr(start, at - start));
      }
    } else if (const char* replacement = XmlReplacement(utf8[start])) {
      pieces.Add(std::string_view(replacement));
    } else {
      pieces.Add(utf8.substr(start, at - start));
    }
  }
  pieces.Flush();
  return escaped;
}
