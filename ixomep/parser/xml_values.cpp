// Export texts by way of the value. See xml_values.h.
#include "ixomep/parser/xml_values.h"

#include <charconv>
#include <functional>

#include "ixomep/host/core_time.h"
#include "ixomep/host/encodings.h"
#include "ixomep/host/numbers.h"
#include "ixomep/parser/literal_number.h"
#include "ixomep/values/mep_text.h"
#include "ixomep/values/units.h"
#include "ixomep/values/value_rep.h"

namespace ixomep {

namespace {

bool HasAsciiItself() {
  String ascii;
  ascii.Resize(128);
  for (int i = 0; i < 128; ++i) ascii.MutableText()[i] = static_cast<char>(i);
  return ConvertStringToUTF8(ascii) == ascii;
}

}  // namespace

String ExportTextOf(const IxoMepValue& value) {
  if (value.GetType() == IxoMepValueType::String) return value.GetStr();
  return ValueAccess::TextOf(value);
}

XmlValues::XmlValues(XmlBuffer& out, bool references)
    : out_(out), references_(references), is_ascii_itself_(HasAsciiItself()) {}

void XmlValues::Write(const ValueView& value) {
  if (!is_ascii_itself_) return WriteMade(value);
  switch (value.Kind()) {
    case LiteralKind::String:
      if (out_.AppendEscaped(value.Source(), value.TextEnd())) return;
      return WriteForeign(value.Source());
    case LiteralKind::Measure:
      return WriteMeasure(NumberOfPlainMeasure(value.Source()));
    case LiteralKind::Time:
      return WriteTime(NumberOfPlainMeasure(value.Source()));
    case LiteralKind::Source:
      return WriteEscaped(source_texts_.Of(value).view());
    default:
      return WriteMade(value);
  }
}

// That of a number has nothing to escape.
void XmlValues::WriteMade(const ValueView& view) {
  IxoMepValue room;
  const IxoMepValue& value = *view.Get(room);
  const IxoMepValueType type = value.GetType();
  if (type == IxoMepValueType::String) return WriteEscaped(ValueAccess::Text(value).view());
  if (!is_ascii_itself_) return WriteEscaped(ExportTextOf(value).view());
  switch (type) {
    case IxoMepValueType::Integer: {
      constexpr std::size_t kIntegerSize = 12;
      char* const out = out_.Room(kIntegerSize);
      return out_.Advance(std::to_chars(out, out + kIntegerSize, ValueAccess::Integer(value)).ptr);
    }
    case IxoMepValueType::Real:
      return Advance(
          FormatReal(ValueAccess::Number(value), /*period=*/false, out_.Room(kFormatRealSize)));
    case IxoMepValueType::Measure:
      return WriteMeasure(ValueAccess::Number(value));
    case IxoMepValueType::Time:
      return WriteTime(ValueAccess::Number(value));
    default:
      return WriteEscaped(ExportTextOf(value).view());
  }
}

void XmlValues::WriteMeasure(double tenths) {
  char buffer[kTenthsTextSize];
  out_.Append(WriteTenths(WholeTenthsOf(tenths), buffer));
}

void XmlValues::WriteTime(double seconds) {
  Advance(FormatTime(seconds, out_.Room(kFormatTimeSize)));
}

void XmlValues::WriteEscaped(std::string_view text) {
  if (is_ascii_itself_ && out_.AppendEscaped(text)) return;
  WriteForeign(text);
}

// A text that is not ASCII.
void XmlValues::WriteForeign(std::string_view text) {
  out_.Append(IxoSGMLString::XMLStr(String(text), references_).view());
}

const String& XmlValues::SourceTexts::Of(const ValueView& value) {
  const std::string_view source = value.Source();
  Known& known = known_[std::hash<std::string_view>()(source) % known_.size()];
  if (known.source != source || known.text.IsEmpty()) {
    IxoMepValue room;
    known.text = ExportTextOf(*value.Get(room));
    known.source = source;
  }
  return known.text;
}

}  // namespace ixomep
