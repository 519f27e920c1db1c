// Definition texts as XML. The walk keeps its own stack, since bodies nest as deep as a text
// likes. It goes over views, so that what was read into records is written from the records; what
// it writes goes through XmlBuffer. See converter.h.
#include "ixomep/parser/converter.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <exception>
#include <functional>
#include <optional>
#include <string_view>
#include <vector>

#include "ixomep/host/core_time.h"
#include "ixomep/host/encodings.h"
#include "ixomep/host/limit_watch.h"
#include "ixomep/host/memory_budget.h"
#include "ixomep/host/numbers.h"
#include "ixomep/parser/element_view.h"
#include "ixomep/parser/literal_number.h"
#include "ixomep/parser/literal_reader.h"
#include "ixomep/parser/query_support.h"
#include "ixomep/parser/xml_buffer.h"
#include "ixomep/parser/xml_names.h"
#include "ixomep/values/mep_text.h"
#include "ixomep/values/units.h"
#include "ixomep/values/value_rep.h"

namespace {

using ixomep::AttributeView;
using ixomep::BodyView;
using ixomep::ElementView;
using ixomep::LiteralKind;
using ixomep::ValueView;
using NamePart = ixomep::XmlNumberedNames::Part;

constexpr const char* kContext = "IxoMepConverter";
constexpr std::string_view kDeclaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
constexpr std::size_t kIndent = 4;

// --- Writing ------------------------------------------------------------------------------------

String ExportTextOf(const IxoMepValue& value) {
  if (value.GetType() == IxoMepValueType::String) return value.GetStr();
  return ixomep::ValueAccess::TextOf(value);
}

// Whether the host's character set has ASCII as everyone has it.
bool IsAsciiItself() {
  String ascii;
  ascii.Resize(128);
  for (int i = 0; i < 128; ++i) ascii.MutableText()[i] = static_cast<char>(i);
  return ConvertStringToUTF8(ascii) == ascii;
}

// Room for what a text of that length mostly becomes, where there is plenty of it.
void ReserveFor(std::int32_t text_length, String& xml) {
  const auto length = static_cast<std::int64_t>(text_length);
  const std::int64_t usual = std::min<std::int64_t>(length + length / 2, String::kMaxLength);
  if (!ixomep::MemoryBudget::MayTake(static_cast<std::size_t>(4 * usual))) return;
  xml.Reserve(static_cast<std::int32_t>(usual));
}

// Whether a decimal number is written as it stands: a few digits, none of them a zero that does not
// count, far from where a real number becomes inexact.
bool IsDecimalAsItStands(std::string_view decimal, std::size_t most_places) noexcept {
  constexpr std::size_t kMostDigits = 5;
  std::size_t digits = 0;
  while (digits < decimal.size() && decimal[digits] >= '0' && decimal[digits] <= '9') ++digits;
  if (digits == 0 || digits > kMostDigits || (decimal.front() == '0' && digits > 1)) return false;
  if (digits == decimal.size()) return true;
  return decimal.size() - digits - 1 <= most_places && decimal.back() != '0';
}

// The same for a plain measure: centimetres, and no zero before the point.
bool IsMeasureAsItStands(std::string_view measure) noexcept {
  return measure[measure.size() - 2] == 'c' && measure.front() != '0' &&
         IsDecimalAsItStands(measure.substr(0, measure.size() - 2), 2);
}

// The tenths of a millimetre of a plain measure of few millimetres with one place at most; false
// for any other.
bool ReadMillimetres(std::string_view measure, std::int32_t& tenths) noexcept {
  constexpr std::size_t kMostBytes = 9;
  if (!measure.ends_with("mm") || measure.size() > kMostBytes) return false;
  measure.remove_suffix(2);
  const bool has_place = measure.size() > 2 && measure[measure.size() - 2] == '.';
  std::int32_t number = 0;
  for (const char byte : measure.substr(0, measure.size() - (has_place ? 2 : 0))) {
    if (byte < '0' || byte > '9') return false;
    number = number * 10 + (byte - '0');
  }
  tenths = number * 10 + (has_place ? measure.back() - '0' : 0);
  return true;
}

// The export texts of expressions that are compiled when they are asked for. Those met lately are
// kept: the same source is often there many times.
class SourceTexts {
 public:
  // Borrowed until the next call.
  const String& Of(const ValueView& value) {
    const std::string_view source = value.Source();
    Known& known = known_[std::hash<std::string_view>()(source) % known_.size()];
    if (known.source != source || known.text.IsEmpty()) {
      IxoMepValue room;
      known.text = ExportTextOf(*value.Get(room));
      known.source = source;
    }
    return known.text;
  }

 private:
  struct Known {
    std::string_view source;
    String text;
  };
  std::array<Known, 64> known_;
};

class Writer {
 public:
  Writer(ixomep::XmlBuffer& out, bool references, bool xml_names)
      : out_(out),
        references_(references),
        xml_names_(xml_names),
        is_ascii_itself_(IsAsciiItself()) {}

  void Write(IxoMepParser& parser) {
    levels_.push_back({BodyView(&parser)});
    while (!levels_.empty()) Step();
  }

 private:
  // Where the walk stands in one body.
  struct Level {
    BodyView body;
    std::int32_t next = 0;
    std::string_view keyword = {};              // of the element that has the body
    const ixomep::Document* records = nullptr;  // of an element that is a record,
    std::uint32_t number = 0;                   // and the number of its keyword
  };

  void Step() {
    work_.Part();
    Level& level = levels_.back();
    if (level.next == level.body.Count()) return Leave();
    const ElementView element = level.body.Enter(level.next++);
    if (!element) ixomep::MemoryBudget::Refuse();
    WriteIndent();
    Level inner;
    if (const ixomep::Document* const records = element.Records()) {
      WriteRecord(*records, element.Record());
      inner.records = records;
      inner.number = element.Record().keyword;
    } else {
      WriteObject(element);
      inner.keyword = element.KeywordBytes();
    }
    inner.body = element.BodyPlace();
    if (inner.body) {
      out_.Literal(">\n");
      levels_.push_back(inner);
    } else {
      out_.Literal(" />\n");
    }
  }

  void Leave() {
    const Level left = levels_.back();
    left.body.LeaveAtLast();
    levels_.pop_back();
    if (levels_.empty()) return;
    WriteIndent();
    out_.Literal("</");
    if (left.records != nullptr) {
      out_.AppendPadded(NamesOf(*left.records).Of(NamePart::Tag, left.number).substr(1));
    } else {
      WriteTag(left.keyword);
    }
    out_.Literal(">\n");
  }

  void WriteIndent() {
    if (levels_.size() > 1) out_.Blanks(kIndent * (levels_.size() - 1));
  }

  void WriteTag(std::string_view keyword) {
    std::string tag;
    ixomep::AppendTag(keyword, xml_names_, tag);
    out_.Append(tag);
  }

  void WriteObject(const ElementView& element) {
    out_.Append('<');
    WriteTag(element.KeywordBytes());
    if (const ValueView value = element.Value()) {
      out_.Literal(" val=\"");
      WriteValue(value);
      out_.Append('"');
    }
    written_.Clear();
    const std::int32_t count = element.AttrCount();
    for (std::int32_t i = 0; i < count; ++i) {
      work_.Part();
      const AttributeView attribute = element.Attr(i);
      const String& name = xml_names_ ? xml_name_of_.Of(attribute.Name()) : attribute.Name();
      if (written_.Insert(name)) WriteAttribute(attribute, name.view());
    }
  }

  // Names in records have numbers, and none has several lines.
  void WriteRecord(const ixomep::Document& records, const ixomep::ElementRecord& element) {
    ixomep::XmlNumberedNames& names = NamesOf(records);
    out_.AppendPadded(names.Of(NamePart::Tag, element.keyword));
    if (const ValueView value(records, element.literal); value) {
      out_.Literal(" val=\"");
      WriteValue(value);
      out_.Append('"');
    }
    names.Begin();
    for (std::uint32_t i = 0; i < element.attribute_count; ++i) {
      work_.Part();
      const ixomep::AttributeRecord& attribute = records.Attribute(element.first_attribute + i);
      std::uint32_t number = attribute.name;
      if (names.Insert(number)) WriteAttribute(records, names, attribute, number);
    }
  }

  ixomep::XmlNumberedNames& NamesOf(const ixomep::Document& records) {
    if (records_ != &records) {
      numbered_.emplace(records.Names(), xml_names_);
      records_ = &records;
    }
    return *numbered_;
  }

  void WriteAttribute(const ixomep::Document& records, ixomep::XmlNumberedNames& names,
                      const ixomep::AttributeRecord& attribute, std::uint32_t number) {
    if (attribute.modifier != ixomep::NameTable::kNoName) {
      out_.AppendPadded(names.Of(NamePart::Modifier, number));
      out_.Append(records.Names().View(attribute.modifier));
      out_.Append('"');
    }
    const ValueView value(records, attribute.literal);
    if (attribute.literal.Kind() == LiteralKind::Body) {
      String room;
      out_.AppendPadded(names.Of(NamePart::Value, number));
      WriteEscaped(BodyView(records, attribute.literal.at).Text(room));
      out_.Append('"');
    } else if (IsDefined(value)) {
      out_.AppendPadded(names.Of(NamePart::Value, number));
      WriteValue(value);
      out_.Append('"');
    } else {
      out_.AppendPadded(names.Of(NamePart::Option, number));
    }
  }

  void WriteAttribute(const AttributeView& attribute, std::string_view name) {
    const std::string_view modifier = attribute.ModifierBytes();
    if (!modifier.empty()) {
      out_.Literal(" modifier-");
      out_.Append(name);
      out_.Literal("=\"");
      out_.Append(modifier);
      out_.Append('"');
    }
    const BodyView body = attribute.BodyPlace();
    const ValueView value = attribute.Value();
    if (!body && !IsDefined(value)) {
      out_.Literal(" opt-");
      out_.Append(name);
      out_.Literal("=\"true\"");
      return;
    }
    out_.Literal(" val-");
    out_.Append(name);
    out_.Literal("=\"");
    if (body) {
      String room;
      WriteEscaped(body.Text(room));
    } else {
      WriteValue(value);
    }
    out_.Append('"');
  }

  static bool IsDefined(const ValueView& value) {
    IxoMepValueType type = IxoMepValueType::Undefined;
    return !value.GetType(type) || type != IxoMepValueType::Undefined;
  }

  // The export text of a value, most literals as they stand in the text.
  void WriteValue(const ValueView& value) {
    if (!is_ascii_itself_) return WriteMadeValue(value);
    switch (value.Kind()) {
      case LiteralKind::String:
        if (out_.AppendEscaped(value.Source(), value.TextEnd())) return;
        return WriteForeign(value.Source());
      case LiteralKind::Escaped:
        if (value.Source().size() > kPiece) return WriteMadeValue(value);
        {
          char* const end = ixomep::Unescape(value.Source(), piece_.data());
          const std::string_view text(piece_.data(), static_cast<std::size_t>(end - piece_.data()));
          if (out_.AppendEscaped(text, piece_.data() + piece_.size())) return;
          return WriteForeign(text);
        }
      case LiteralKind::Integer:
        // Zeros in front, and a sign of zero, get lost.
        if (value.Source()[value.Source().front() == '-'] == '0') return WriteMadeValue(value);
        return out_.Append(value.Source());
      case LiteralKind::Real:
        if (IsDecimalAsItStands(value.Source(), 4)) return out_.Append(value.Source());
        return WriteMadeValue(value);
      case LiteralKind::Measure:
        if (IsMeasureAsItStands(value.Source())) return out_.Append(value.Source());
        if (std::int32_t tenths = 0; ReadMillimetres(value.Source(), tenths)) {
          return WriteTenths(tenths);
        }
        return WriteMeasure(ixomep::NumberOfPlainMeasure(value.Source()));
      case LiteralKind::Time:
        return WriteTime(ixomep::NumberOfPlainMeasure(value.Source()));
      case LiteralKind::Source:
        return WriteEscaped(source_texts_.Of(value).view());
      default:
        return WriteMadeValue(value);
    }
  }

  // That of a number has nothing to escape.
  void WriteMadeValue(const ValueView& view) {
    using ixomep::ValueAccess;
    IxoMepValue room;
    const IxoMepValue& value = *view.Get(room);
    const IxoMepValueType type = value.GetType();
    if (type == IxoMepValueType::String) return WriteEscaped(ValueAccess::Text(value).view());
    if (!is_ascii_itself_) return WriteEscaped(ExportTextOf(value).view());
    switch (type) {
      case IxoMepValueType::Integer: {
        char* const out = out_.Room(kIntegerSize);
        return out_.Advance(
            std::to_chars(out, out + kIntegerSize, ValueAccess::Integer(value)).ptr);
      }
      case IxoMepValueType::Real:
        return Advance(ixomep::FormatReal(ValueAccess::Number(value), /*period=*/false,
                                          out_.Room(ixomep::kFormatRealSize)));
      case IxoMepValueType::Measure:
        return WriteMeasure(ValueAccess::Number(value));
      case IxoMepValueType::Time:
        return WriteTime(ValueAccess::Number(value));
      default:
        return WriteEscaped(ExportTextOf(value).view());
    }
  }

  void WriteMeasure(double tenths) { WriteTenths(ixomep::WholeTenthsOf(tenths)); }

  void WriteTenths(std::int32_t tenths) {
    char buffer[ixomep::kTenthsTextSize];
    out_.Append(ixomep::WriteTenths(tenths, buffer));
  }

  void WriteTime(double seconds) {
    Advance(ixomep::FormatTime(seconds, out_.Room(ixomep::kFormatTimeSize)));
  }

  // What has been written into the buffer's room.
  void Advance(std::string_view written) { out_.Advance(written.data() + written.size()); }

  void WriteEscaped(std::string_view text) {
    if (is_ascii_itself_ && out_.AppendEscaped(text)) return;
    WriteForeign(text);
  }

  // A text that is not ASCII.
  void WriteForeign(std::string_view text) {
    out_.Append(IxoSGMLString::XMLStr(String(text), references_).view());
  }

  static constexpr std::size_t kIntegerSize = 12;
  static constexpr std::size_t kPiece = 512;

  ixomep::XmlBuffer& out_;
  bool references_;
  bool xml_names_;
  bool is_ascii_itself_;
  std::vector<Level> levels_;
  ixomep::LongWork work_;
  // Of elements that are objects, and of those in records.
  ixomep::XmlNameSet written_;
  ixomep::XmlNames xml_name_of_;
  const ixomep::Document* records_ = nullptr;
  std::optional<ixomep::XmlNumberedNames> numbered_;
  SourceTexts source_texts_;
  std::array<char, kPiece> piece_{};
};

}  // namespace

IxoMepConverter::IxoMepConverter(const String& text) : IxoMepParser(text, kContext) {}

String IxoMepConverter::ToXML(bool withDeclaration, const String& rootName) {
  if (withDeclaration) escape_flag_ = false;
  try {
    String xml;
    ReserveFor(GetTextLen(), xml);
    ixomep::XmlBuffer out(xml);
    if (withDeclaration) out.Append(kDeclaration);
    if (!rootName.IsEmpty()) {
      out.Append('<');
      out.Append(rootName.view());
      out.Literal(">\n");
    }
    Writer(out, escape_flag_, xml_names_).Write(*this);
    if (!rootName.IsEmpty()) {
      out.Literal("</");
      out.Append(rootName.view());
      out.Literal(">\n");
    }
    out.Flush();
    const bool is_mostly_unused = xml.Len() < GetTextLen() / 2;
    return is_mostly_unused ? String(xml.view()) : xml;
  } catch (const std::exception& cause) {
    NoteNoMemory(cause);
    return String();
  }
}

String IxoMepConverter::ToExportStr(const IxoMepValue* value) {
  if (value == nullptr) return String();
  return ixomep::OrNeutral(String(), [value] { return ExportTextOf(*value); });
}
