// Definition texts as XML. The walk keeps its own stack, since bodies nest as deep as a text
// likes, and writes into one growing text. See converter.h.
#include "ixomep/parser/converter.h"

#include <algorithm>
#include <cstdint>
#include <new>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "ixomep/host/encodings.h"
#include "ixomep/parser/query_support.h"

namespace {

constexpr const char* kContext = "IxoMepConverter";
constexpr std::string_view kDeclaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
constexpr std::string_view kIndent = "    ";
constexpr std::string_view kStatementTag = "statement";

struct Range {
  std::uint32_t first;
  std::uint32_t last;
};

// What XML allows inside a name, beyond ASCII.
constexpr Range kNameRanges[] = {
    {0xB7, 0xB7},     {0xC0, 0xD6},     {0xD8, 0xF6},      {0xF8, 0x37D},    {0x37F, 0x1FFF},
    {0x200C, 0x200D}, {0x203F, 0x2040}, {0x2070, 0x218F},  {0x2C00, 0x2FEF}, {0x3001, 0xD7FF},
    {0xF900, 0xFDCF}, {0xFDF0, 0xFFFD}, {0x10000, 0xEFFFF}};

bool IsNameCharacter(std::uint32_t code_point) noexcept {
  if (code_point < 0x80) {
    const auto byte = static_cast<char>(code_point);
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
           (byte >= '0' && byte <= '9') || byte == '_' || byte == '-' || byte == '.';
  }
  return std::any_of(std::begin(kNameRanges), std::end(kNameRanges), [code_point](Range range) {
    return code_point >= range.first && code_point <= range.last;
  });
}

// The bytes of the UTF-8 character at the front of the text and its code point; 0 when it is none.
std::size_t FirstCharacter(std::string_view text, std::uint32_t& code_point) noexcept {
  const auto lead = static_cast<unsigned char>(text[0]);
  code_point = lead;
  if (lead < 0x80) return 1;
  code_point = 0;
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || text.size() < length) return 1;
  std::uint32_t bits = lead & (0x7FU >> length);
  for (const char byte : text.substr(1, length - 1)) {
    const auto next = static_cast<unsigned char>(byte);
    if ((next & 0xC0U) != 0x80U) return 1;
    bits = bits << 6 | (next & 0x3FU);
  }
  code_point = bits;
  return length;
}

String XmlNameOf(const String& name) {
  const String converted = ConvertStringToUTF8(name);
  std::string_view rest = converted.view();
  String xml_name;
  xml_name.Reserve(converted.Len());
  while (!rest.empty()) {
    std::uint32_t code_point = 0;
    const std::size_t length = FirstCharacter(rest, code_point);
    xml_name.Append(IsNameCharacter(code_point) ? rest.substr(0, length) : "_");
    rest.remove_prefix(length);
  }
  return xml_name;
}

String ExportTextOf(const IxoMepValue& value) {
  if (value.GetType() == IxoMepValueType::String) return value.GetStr();
  return value.GetText(/*period=*/false);
}

// The text between the braces.
String TextOfBody(const IxoMepParser& body) {
  String text = body.GetText();
  if (text.Len() != body.GetTextLen()) throw std::bad_alloc();
  return text;
}

// The names of one element's attributes.
class NameSet {
 public:
  // False when the name is there already.
  bool Insert(const String& name) {
    if (std::find(few_.begin(), few_.end(), name) != few_.end()) return false;
    if (few_.size() >= kFew) return many_.insert(name).second;
    few_.push_back(name);
    return true;
  }
  void Clear() {
    few_.clear();
    if (!many_.empty()) many_ = {};
  }

 private:
  static constexpr std::size_t kFew = 16;  // found faster by looking at them all

  std::vector<String> few_;
  std::unordered_set<String> many_;
};

// Where the walk stands in one body.
struct Level {
  IxoMepParser* parser;
  std::int32_t next = 0;
};

class Writer {
 public:
  Writer(String& out, bool references, bool xml_names)
      : out_(out), references_(references), xml_names_(xml_names) {}

  void Write(IxoMepParser& parser) {
    levels_.push_back({&parser});
    while (!levels_.empty()) Step();
  }

 private:
  void Step() {
    Level& level = levels_.back();
    const IxoMepElement* const element = level.parser->GetElement(level.next);
    if (element == nullptr) {
      if (level.next < level.parser->GetElemCount()) throw std::bad_alloc();
      levels_.pop_back();
      if (!levels_.empty()) WriteEnd();
      return;
    }
    level.parser->SetCurElemIndex(level.next++);
    WriteStart(*element);
    if (IxoMepParser* const body = element->GetBodyParser()) {
      out_ += ">\n";
      levels_.push_back({body});
    } else {
      out_ += " />\n";
    }
  }

  void WriteIndent() {
    for (std::size_t i = 1; i < levels_.size(); ++i) out_ += kIndent;
  }

  void WriteEnd() {
    WriteIndent();
    out_ += "</";
    WriteTag(*levels_.back().parser->GetCurElement());
    out_ += ">\n";
  }

  void WriteStart(const IxoMepElement& element) {
    WriteIndent();
    out_ += '<';
    WriteTag(element);
    if (const IxoMepValue* value = element.GetValue()) {
      out_ += " val=\"";
      out_ += Escaped(ExportTextOf(*value));
      out_ += '"';
    }
    written_.Clear();
    for (std::int32_t i = 0; i < element.GetAttrCount(); ++i) {
      const IxoMepAttribute& attribute = *element.GetAttr(i);
      const String name = xml_names_ ? XmlNameOf(attribute.GetName()) : attribute.GetName();
      if (written_.Insert(name)) WriteAttribute(attribute, name);
    }
  }

  void WriteTag(const IxoMepElement& element) {
    const std::string_view keyword = element.GetKeyword();
    if (xml_names_ && keyword == ";") {
      out_ += kStatementTag;
      return;
    }
    for (const char byte : keyword) {
      const bool is_upper = byte >= 'A' && byte <= 'Z';
      out_ += byte == '_' ? '-' : static_cast<char>(is_upper ? byte - 'A' + 'a' : byte);
    }
  }

  void WriteAttribute(const IxoMepAttribute& attribute, const String& name) {
    if (!attribute.GetModifier().IsEmpty()) {
      WritePair(" modifier-", name, attribute.GetModifier());
    }
    const IxoMepValue* const value = attribute.GetValue();
    if (const IxoMepParser* const body = attribute.GetBodyParser()) {
      WritePair(" val-", name, Escaped(TextOfBody(*body)));
    } else if (value != nullptr && value->GetType() != IxoMepValueType::Undefined) {
      WritePair(" val-", name, Escaped(ExportTextOf(*value)));
    } else {
      WritePair(" opt-", name, "true");
    }
  }

  void WritePair(std::string_view prefix, const String& name, std::string_view text) {
    out_ += prefix;
    out_ += name;
    out_ += "=\"";
    out_ += text;
    out_ += '"';
  }

  String Escaped(const String& text) const { return IxoSGMLString::XMLStr(text, references_); }

  String& out_;
  bool references_;
  bool xml_names_;
  std::vector<Level> levels_;
  NameSet written_;
};

}  // namespace

IxoMepConverter::IxoMepConverter(const String& text) : IxoMepParser(text, kContext) {}

String IxoMepConverter::ToXML(bool withDeclaration, const String& rootName) {
  if (withDeclaration) escape_flag_ = false;
  return ixomep::OrNeutral(String(), [&] {
    String xml;
    if (withDeclaration) xml += kDeclaration;
    if (!rootName.IsEmpty()) xml += "<" + rootName + ">\n";
    Writer(xml, escape_flag_, xml_names_).Write(*this);
    if (!rootName.IsEmpty()) xml += "</" + rootName + ">\n";
    return xml;
  });
}

String IxoMepConverter::ToExportStr(const IxoMepValue* value) {
  if (value == nullptr) return String();
  return ixomep::OrNeutral(String(), [value] { return ExportTextOf(*value); });
}
