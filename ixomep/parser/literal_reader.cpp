// IxoMepValue::Create: one look at the first byte says which literal follows. Strings are read
// here, numbers and times in literal_number.cpp, brackets and braces in literal_expression.cpp.
#include "ixomep/parser/literal_reader.h"

#include <array>
#include <cstring>
#include <exception>

#include "ixomep/host/string_tail.h"
#include "ixomep/parser/byte_block.h"
#include "ixomep/parser/bytes.h"
#include "ixomep/values/raise.h"
#include "ixomep/values/value_rep.h"

namespace ixomep {
namespace {

ValuePtr Fail(LiteralContext& context, IxoMepErrorEnum code) {
  context.code = Raise(context.error_text, code);
  return nullptr;
}

using Reader = ValuePtr (*)(const LiteralText&, std::size_t&, LiteralContext&);

// Runs a reader so that no exception gets out: memory that cannot be had is a failure of its own.
ValuePtr Guarded(Reader read, const LiteralText& text, std::size_t& position,
                 LiteralContext& context, IxoMepErrorEnum no_memory) noexcept {
  try {
    return read(text, position, context);
  } catch (const std::exception& cause) {
    context.code = RaiseNoMemory(context.error_text, no_memory, cause);
  }
  return nullptr;
}

// The frame of the static readers: turns the interface's arguments to views and back.
IxoMepValue* Run(Reader read, const String& text, std::int32_t& position, std::int32_t& code,
                 String& error_text, IxoMepParser* parser, std::int32_t line) noexcept {
  LiteralContext context(parser, line);
  // A position before the text is none in it.
  std::size_t at = position < 0 ? text.view().size() : static_cast<std::size_t>(position);
  ValuePtr value = Guarded(read, {text.view()}, at, context, IMEPERR_TOO_DEEP);
  code = context.code;
  if (position >= 0) position = static_cast<std::int32_t>(at);
  if (value == nullptr) error_text = context.error_text;
  return value.release();
}

ValuePtr ReadTimeOrNumber(const LiteralText& text, std::size_t& position, LiteralContext& context) {
  if (ValuePtr time = ReadTime(text, position)) return time;
  return ReadNumber(text, position, context.code, context.error_text);
}

// Whole blocks as they are, up to the backslash in them. A block behind the end is read, and
// written behind what is returned.
char* UnescapeBlocks(const char* in, const char* end, char* out) noexcept {
  while (true) {
    const ByteBlock::Mask hits = ByteBlock(in).Is('\\');
    std::memcpy(out, in, ByteBlock::kSize);
    const std::size_t plain = hits != 0 ? ByteBlock::First(hits) : ByteBlock::kSize;
    const auto left = static_cast<std::size_t>(end - in);
    if (plain >= left) return out + left;
    in += plain;
    out += plain;
    if (hits == 0) continue;
    *out++ = Unescaped(in[1]);
    in += 2;
  }
}

}  // namespace

char* Unescape(std::string_view content, char* out) noexcept {
  const char* in = content.data();
  const char* const end = in + content.size();
  // Whole words as they are, up to the backslash in them. Nothing is written behind what was read.
  while (end - in >= std::ptrdiff_t{WordBlock::kSize}) {
    const WordBlock::Mask hits = WordBlock(in).Is('\\');
    std::memcpy(out, in, WordBlock::kSize);
    const std::size_t plain = hits != 0 ? WordBlock::First(hits) : WordBlock::kSize;
    in += plain;
    out += plain;
    if (hits == 0) continue;
    *out++ = Unescaped(in[1]);
    in += 2;
  }
  for (; in != end; ++in) *out++ = *in == '\\' ? Unescaped(*++in) : *in;
  return out;
}

void UnescapePart(std::string_view text, std::size_t at, std::size_t size, String& out) {
  constexpr std::size_t kBlock = ByteBlock::kSize;
  constexpr std::size_t kLeast = 3;  // of two bytes one is left, which has a storage of its own
  if (text.size() - at < size + kBlock || size < kLeast) [[unlikely]] {
    out = Unescape(text.substr(at, size));
    return;
  }
  char* const first = StringTail::MakeRoom(out, size + kBlock);
  const char* const in = text.data() + at;
  StringTail::Take(out, static_cast<std::size_t>(UnescapeBlocks(in, in + size, first) - first));
}

String Unescape(std::string_view content) {
  std::array<char, 512> piece;
  if (content.size() <= piece.size()) {
    const char* const end = Unescape(content, piece.data());
    return String(std::string_view(piece.data(), static_cast<std::size_t>(end - piece.data())));
  }
  String text(content);
  char* const bytes = text.MutableText();
  text.Resize(static_cast<std::int32_t>(Unescape(content, bytes) - bytes));
  return text;
}

ValuePtr ReadString(const LiteralText& text, std::size_t& position, LiteralContext& context) {
  const std::string_view bytes = text.bytes;
  const std::size_t first = position + 1;
  bool has_escapes = false;
  std::size_t end = first;
  for (; end < bytes.size() && bytes[end] != '"'; ++end) {
    if (bytes[end] != '\\') continue;
    has_escapes = true;
    ++end;
  }
  if (end >= bytes.size()) {
    position = bytes.size();
    return Fail(context, end > bytes.size() ? IMEPERR_BACKSLASH_AT_END : IMEPERR_STRING_NOT_CLOSED);
  }
  const std::string_view content = bytes.substr(first, end - first);
  ValuePtr value = MakeValue();
  ValueAccess::SetText(*value, has_escapes ? Unescape(content) : String(content));
  position = end + 1;
  return value;
}

ValuePtr ReadLiteral(const LiteralText& text, std::size_t& position, LiteralContext& context) {
  const char first = position < text.bytes.size() ? text.bytes[position] : '\0';
  switch (first) {
    case '"':
      return Guarded(ReadString, text, position, context, IMEPERR_TOO_LONG);
    case '(':
      return Guarded(ReadExpression, text, position, context, IMEPERR_TOO_DEEP);
    case '{':
      return Guarded(ReadArray, text, position, context, IMEPERR_TOO_DEEP);
    case '-':
    case '.':
    case '$':
      return Guarded(ReadTimeOrNumber, text, position, context, IMEPERR_TOO_DEEP);
    default:
      if (!Is(first, kDigit)) return Fail(context, IMEPERR_VALUE_EXPECTED);
      return Guarded(ReadTimeOrNumber, text, position, context, IMEPERR_TOO_DEEP);
  }
}

}  // namespace ixomep

using ixomep::Run;

IxoMepValue* IxoMepValue::Create(const String& text, std::int32_t& position,
                                 std::int32_t& errorCode, String& errorText, IxoMepParser* parser,
                                 std::int32_t line) {
  return Run(ixomep::ReadLiteral, text, position, errorCode, errorText, parser, line);
}

IxoMepValue* IxoMepValue::Create(const String& text, std::int32_t& position,
                                 IxoMepErrorEnum& errorCode, String& errorText,
                                 IxoMepParser* parser, std::int32_t line) {
  std::int32_t code = IMEPERR_NONE;
  IxoMepValue* const value = Create(text, position, code, errorText, parser, line);
  errorCode = static_cast<IxoMepErrorEnum>(code);
  return value;
}

IxoMepValue* IxoMepValue::CreateString(const String& text, std::int32_t& position,
                                       std::int32_t& errorCode, String& errorText,
                                       IxoMepParser* parser, std::int32_t line) {
  return Run(ixomep::ReadString, text, position, errorCode, errorText, parser, line);
}

IxoMepValue* IxoMepValue::CreateExpression(const String& text, std::int32_t& position,
                                           std::int32_t& errorCode, String& errorText,
                                           IxoMepParser* parser, std::int32_t line) {
  return Run(ixomep::ReadExpression, text, position, errorCode, errorText, parser, line);
}

IxoMepValue* IxoMepValue::CreateArray(const String& text, std::int32_t& position,
                                      std::int32_t& errorCode, String& errorText,
                                      IxoMepParser* parser, std::int32_t line) {
  return Run(ixomep::ReadArray, text, position, errorCode, errorText, parser, line);
}
