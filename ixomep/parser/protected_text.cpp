// Protected texts: the marker, the key, and both directions over the host's cipher.
#include "ixomep/parser/protected_text.h"

#include <exception>
#include <string_view>

#include "ixomep/host/cipher.h"
#include "ixomep/parser/parser.h"
#include "ixomep/parser/parser_state.h"

namespace ixomep {
namespace {

constexpr std::string_view kMarker = "TERVOX V.4.0 NT  \r\n";
static_assert(kMarker.size() == 19);

constexpr std::int32_t kBlockSize = 8;
constexpr unsigned char kKey[kBlockSize] = {0x4D, 0x31, 0xA8, 0x5E, 0xC2, 0x97, 0x1C, 0xF4};

using Cipher = void (*)(unsigned char* bytes, std::int32_t blocks);

// Ciphers all whole blocks of the text from an offset on, in place.
void ApplyFrom(String& text, std::int32_t offset, Cipher cipher) {
  const std::int32_t blocks = (text.Len() - offset) / kBlockSize;
  if (blocks < 1) return;
  ades_key(kKey);
  cipher(reinterpret_cast<unsigned char*>(text.MutableText()) + offset, blocks);
}

}  // namespace

bool IsProtectedText(const String& text) noexcept { return text.view().starts_with(kMarker); }

String ProtectText(const String& plain) {
  const std::int32_t loose = plain.Len() % kBlockSize;
  String text(kMarker);
  text += plain;
  if (loose != 0) text += String::Filled(kBlockSize - loose, ' ');
  ApplyFrom(text, static_cast<std::int32_t>(kMarker.size()), ades_enc);
  return text;
}

String UnprotectText(const String& text) {
  if (!IsProtectedText(text)) return text;
  String plain(text.view().substr(kMarker.size()));
  ApplyFrom(plain, 0, ades_dec);
  return plain;
}

}  // namespace ixomep

void IxoMepParser::Init() noexcept {
  ixomep::ParserState& state = State();
  if (!ixomep::IsProtectedText(state.text)) return;
  try {
    state.text = ixomep::UnprotectText(state.text);
  } catch (const std::exception&) {
    state.text.Clear();
  }
  state.length = state.text.Len();
}
