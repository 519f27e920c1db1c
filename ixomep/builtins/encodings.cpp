// Built-in functions that put a text into another dress: Base64, UTF-8, the OEM code page, URL
// escaping. The formats themselves are the host's (../host/encodings.h).
#include "ixomep/host/encodings.h"

#include <string_view>
#include <utility>

#include "ixomep/builtins/call.h"
#include "ixomep/builtins/handlers.h"
#include "ixomep/builtins/unescaped_sets.h"

namespace ixomep {

const UnescapedSets& UnescapedSets::Get() {
  // Built on first use rather than at load time: the first text asks the host for its memory
  // limit, and an application installs its host later than that.
  static const UnescapedSets sets = {
      "!'()*-.0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz~",
      "!#$&'()*+,-./0123456789:;=?@ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz~",
      "!\"$'()*,-./0123456789;ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz~",
      "!\"$'()*,-./0123456789:;<>@ABCDEFGHIJKLMNOPQRSTUVWXYZ[\\]^_`"
      "abcdefghijklmnopqrstuvwxyz{|}~",
      "!\"#$'()*+,-./0123456789:;<=>?@ABCDEFGHIJKLMNOPQRSTUVWXYZ[\\]^_`"
      "abcdefghijklmnopqrstuvwxyz{|}~",
  };
  return sets;
}

namespace builtins {
namespace {

// A conversion of bytes in place; zero bytes are bytes like any other.
using ByteConversion = bool(const char* source, char* destination, std::uint32_t length);

IxoMepErrorEnum ReturnConverted(Call& call, ByteConversion& convert) {
  String text = call.Text(0);
  if (char* bytes = text.MutableText()) {
    convert(bytes, bytes, static_cast<std::uint32_t>(text.Len()));
  }
  return call.Return(std::move(text));
}

void AppendEscaped(String& query, const IxoMepValue& value, const String& unescaped) {
  query += HttpRequest::escapeUrlStyle(ValueAccess::StrOf(value), unescaped);
}

}  // namespace

IxoMepErrorEnum Base64Encode(Call& call) {
  String encoded;
  if (!Ixo_NewBase64Encode(call.Text(0), encoded)) {
    return call.Fail(IMEPERR_USER, {{"%s", "base64encode: the text is too long"}});
  }
  return call.Return(std::move(encoded));
}

IxoMepErrorEnum Base64Decode(Call& call) {
  String decoded;
  if (!Ixo_NewBase64Decode(call.Text(0), decoded)) {
    return call.Fail(IMEPERR_USER, {{"%s", "base64decode: the text is not Base64"}});
  }
  return call.Return(std::move(decoded));
}

IxoMepErrorEnum ToUtf8(Call& call) { return call.Return(ConvertStringToUTF8(call.Text(0))); }

IxoMepErrorEnum FromUtf8(Call& call) {
  return call.Return(ConvertUTF8StringToString(call.Text(0)));
}

IxoMepErrorEnum ToOem(Call& call) { return ReturnConverted(call, CharToOemBuffA); }

IxoMepErrorEnum FromOem(Call& call) { return ReturnConverted(call, OemToCharBuffA); }

IxoMepErrorEnum EncodeUri(Call& call) {
  const String& unescaped = call.Has(1) ? call.Text(1) : UnescapedSets::Get().whole_uri;
  return call.Return(HttpRequest::escapeUrlStyle(call.Text(0), unescaped));
}

IxoMepErrorEnum ToUrlQueryString(Call& call) {
  const String& unescaped = call.Has(1) ? call.Text(1) : UnescapedSets::Get().query_component;
  String query;
  for (const auto& [key, value] : ValueAccess::Entries(call.Arg(0))) {
    LimitWatch::Work();
    if (!query.IsEmpty()) query += '&';
    AppendEscaped(query, *key, unescaped);
    query += '=';
    if (value != nullptr) AppendEscaped(query, *value, unescaped);
  }
  return call.Return(std::move(query));
}

}  // namespace builtins
}  // namespace ixomep
