// Definition texts as XML. The walk keeps its own stack, since bodies nest as deep as a text
// likes. What it asks of the parsed text stands in "The tree" alone; what it writes goes through
// XmlBuffer. See converter.h.
#include "ixomep/parser/converter.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <new>
#include <string_view>
#include <vector>

#include "ixomep/host/core_time.h"
#include "ixomep/host/encodings.h"
#include "ixomep/host/memory_budget.h"
#include "ixomep/host/numbers.h"
#include "ixomep/parser/query_support.h"
#include "ixomep/parser/xml_buffer.h"
#include "ixomep/parser/xml_names.h"
#include "ixomep/values/mep_text.h"
#include "ixomep/values/units.h"
#include "ixomep/values/value_rep.h"

namespace {

constexpr const char* kContext = "IxoMepConverter";
constexpr std::string_view kDeclaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
constexpr std::size_t kIndent = 4;

// --- The tree -----------------------------------------------------------------------------------

// The parts of an element and of an attribute. Borrowed; null where there is none.
struct ElementParts {
  const String& keyword;
  const IxoMepValue* value;
  std::int32_t attribute_count;
  IxoMepParser* body;
};
struct AttributeParts {
  const String& name;
  const String& modifier;
  const IxoMepValue* value;
  const IxoMepParser* body;
};

constexpr std::int32_t kAhead = 8;

void Prefetch(const void* place) noexcept {
#ifdef __GNUC__
  __builtin_prefetch(place);
#else
  (void)place;
#endif
}

ElementParts PartsOf(const IxoMepElement& element) noexcept {
  return {element.GetKeyword(), element.GetValue(), element.GetAttrCount(),
          element.GetBodyParser()};
}

AttributeParts PartsOf(const IxoMepElement& element, std::int32_t position) noexcept {
  const IxoMepAttribute& attribute = *element.GetAttr(position);
  return {attribute.GetName(), attribute.GetModifier(), attribute.GetValue(),
          attribute.GetBodyParser()};
}

// Makes the element current; null behind the last one. The parts lie scattered in memory: what
// will be read soon is asked for ahead.
const IxoMepElement* MakeCurrent(IxoMepParser& parser, std::int32_t index) {
  if (!parser.SetCurElemIndex(index)) return nullptr;
  const IxoMepElement& element = *parser.GetCurElement();
  if (const IxoMepElement* const next = parser.GetElement(index + 1)) {
    Prefetch(parser.GetElement(index + 2));
    for (std::int32_t i = 0; i < std::min(next->GetAttrCount(), kAhead); ++i) {
      Prefetch(next->GetAttr(i));
    }
  }
  for (std::int32_t i = 0; i < std::min(element.GetAttrCount(), kAhead); ++i) {
    const IxoMepAttribute& attribute = *element.GetAttr(i);
    Prefetch(attribute.GetValue());
  }
  return &element;
}

// The text between the braces.
String TextOfBody(const IxoMepParser& body) {
  String text = body.GetText();
  if (text.Len() != body.GetTextLen()) throw std::bad_alloc();
  return text;
}

// --- Writing ------------------------------------------------------------------------------------

String ExportTextOf(const IxoMepValue& value) {
  if (value.GetType() == IxoMepValueType::String) return value.GetStr();
  return value.GetText(/*period=*/false);
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

class Writer {
 public:
  Writer(ixomep::XmlBuffer& out, bool references, bool xml_names)
      : out_(out),
        references_(references),
        xml_names_(xml_names),
        is_ascii_itself_(IsAsciiItself()) {}

  void Write(IxoMepParser& parser) {
    levels_.push_back({&parser});
    while (!levels_.empty()) Step();
  }

 private:
  // Where the walk stands in one body.
  struct Level {
    IxoMepParser* parser;
    std::int32_t next = 0;
  };

  void Step() {
    Level& level = levels_.back();
    const IxoMepElement* const element = MakeCurrent(*level.parser, level.next++);
    if (element == nullptr) {
      if (level.next < level.parser->GetElemCount()) throw std::bad_alloc();
      levels_.pop_back();
      if (!levels_.empty()) WriteEnd(*levels_.back().parser->GetCurElement());
      return;
    }
    const ElementParts parts = PartsOf(*element);
    WriteStart(*element, parts);
    if (parts.body != nullptr) {
      out_.Literal(">\n");
      levels_.push_back({parts.body});
    } else {
      out_.Literal(" />\n");
    }
  }

  void WriteIndent() {
    if (levels_.size() > 1) out_.Blanks(kIndent * (levels_.size() - 1));
  }

  void WriteEnd(const IxoMepElement& element) {
    WriteIndent();
    out_.Literal("</");
    WriteTag(element.GetKeyword());
    out_.Literal(">\n");
  }

  void WriteStart(const IxoMepElement& element, const ElementParts& parts) {
    WriteIndent();
    out_.Append('<');
    WriteTag(parts.keyword);
    if (parts.value != nullptr) {
      out_.Literal(" val=\"");
      WriteValue(*parts.value);
      out_.Append('"');
    }
    written_.Clear();
    for (std::int32_t i = 0; i < parts.attribute_count; ++i) {
      const AttributeParts attribute = PartsOf(element, i);
      const String& name = xml_names_ ? xml_name_of_.Of(attribute.name) : attribute.name;
      if (written_.Insert(name)) WriteAttribute(attribute, name.view());
    }
  }

  void WriteTag(const String& keyword) {
    if (xml_names_ && keyword == ";") return out_.Literal("statement");
    for (std::string_view rest = keyword.view(); !rest.empty();) {
      const std::size_t count = std::min(rest.size(), ixomep::XmlBuffer::kBlockSize);
      char* const tag = out_.Room(count);
      out_.Advance(std::transform(
          rest.begin(), rest.begin() + static_cast<std::ptrdiff_t>(count), tag, [](char byte) {
            const bool is_upper = byte >= 'A' && byte <= 'Z';
            const char lower = static_cast<char>(byte + (is_upper ? 32 : 0));
            return byte == '_' ? '-' : lower;
          }));
      rest.remove_prefix(count);
    }
  }

  void WriteAttribute(const AttributeParts& attribute, std::string_view name) {
    if (!attribute.modifier.IsEmpty()) {
      out_.Literal(" modifier-");
      out_.Append(name);
      out_.Literal("=\"");
      out_.Append(attribute.modifier.view());
      out_.Append('"');
    }
    const bool has_value =
        attribute.value != nullptr && attribute.value->GetType() != IxoMepValueType::Undefined;
    if (attribute.body == nullptr && !has_value) {
      out_.Literal(" opt-");
      out_.Append(name);
      out_.Literal("=\"true\"");
      return;
    }
    out_.Literal(" val-");
    out_.Append(name);
    out_.Literal("=\"");
    if (attribute.body != nullptr) {
      WriteEscaped(TextOfBody(*attribute.body));
    } else {
      WriteValue(*attribute.value);
    }
    out_.Append('"');
  }

  // The export text. That of a number has nothing to escape.
  void WriteValue(const IxoMepValue& value) {
    using ixomep::ValueAccess;
    const IxoMepValueType type = value.GetType();
    if (type == IxoMepValueType::String) return WriteEscaped(ValueAccess::Text(value));
    if (!is_ascii_itself_) return WriteEscaped(ExportTextOf(value));
    switch (type) {
      case IxoMepValueType::Integer: {
        char* const out = out_.Room(kIntegerSize);
        return out_.Advance(
            std::to_chars(out, out + kIntegerSize, ValueAccess::Integer(value)).ptr);
      }
      case IxoMepValueType::Real:
        return Advance(ixomep::FormatReal(ValueAccess::Number(value), /*period=*/false,
                                          out_.Room(ixomep::kFormatRealSize)));
      case IxoMepValueType::Measure: {
        char buffer[ixomep::kTenthsTextSize];
        const std::int32_t tenths = ixomep::WholeTenthsOf(ValueAccess::Number(value));
        return out_.Append(ixomep::WriteTenths(tenths, buffer));
      }
      case IxoMepValueType::Time:
        return Advance(
            ixomep::FormatTime(ValueAccess::Number(value), out_.Room(ixomep::kFormatTimeSize)));
      default:
        return WriteEscaped(ExportTextOf(value));
    }
  }

  // What has been written into the buffer's room.
  void Advance(std::string_view written) { out_.Advance(written.data() + written.size()); }

  void WriteEscaped(const String& text) {
    if (is_ascii_itself_ && out_.AppendEscaped(text.view())) return;
    out_.Append(IxoSGMLString::XMLStr(text, references_).view());
  }

  static constexpr std::size_t kIntegerSize = 12;

  ixomep::XmlBuffer& out_;
  bool references_;
  bool xml_names_;
  bool is_ascii_itself_;
  std::vector<Level> levels_;
  ixomep::XmlNameSet written_;
  ixomep::XmlNames xml_name_of_;
};

}  // namespace

IxoMepConverter::IxoMepConverter(const String& text) : IxoMepParser(text, kContext) {}

String IxoMepConverter::ToXML(bool withDeclaration, const String& rootName) {
  if (withDeclaration) escape_flag_ = false;
  return ixomep::OrNeutral(String(), [&] {
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
  });
}

String IxoMepConverter::ToExportStr(const IxoMepValue* value) {
  if (value == nullptr) return String();
  return ixomep::OrNeutral(String(), [value] { return ExportTextOf(*value); });
}
