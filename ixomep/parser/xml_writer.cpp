// Elements as XML. Those in records take the quick way where names and values are short and plain:
// one look at the room for all of an attribute, copies of fixed sizes, the place to write at in a
// register. That takes little more than half the instructions of appending piece by piece. See
// xml_writer.h.
#include "ixomep/parser/xml_writer.h"

#include <string>

#include "ixomep/host/memory_budget.h"

namespace ixomep {

namespace {

bool IsDefined(const ValueView& value) {
  IxoMepValueType type = IxoMepValueType::Undefined;
  return !value.GetType(type) || type != IxoMepValueType::Undefined;
}

// For all of an attribute but its value, and for what stands around an element.
constexpr std::size_t kAttributeRoom = 2 * XmlNameText::kRoom + XmlLiterals::kNameRoom + 2;
constexpr std::size_t kTagRoom = XmlBuffer::kFewBlanks + XmlNameText::kRoom + 16;
constexpr std::size_t kEndRoom = 8;

}  // namespace

// --- The walk -----------------------------------------------------------------------------------

void XmlWriter::Write(IxoMepParser& parser) {
  levels_.emplace_back().body = BodyView(&parser);
  while (!levels_.empty()) WriteBody();
}

// Goes on in the innermost body, up to its end or to the next body.
void XmlWriter::WriteBody() {
  Level& level = levels_.back();
  for (;;) {
    work_.Part();
    if (level.next == level.body.Count()) return Leave();
    const ElementView element = level.body.Enter(level.next++);
    if (!element) MemoryBudget::Refuse();
    if (const Document* const records = element.Records()) {
      UseRecords(*records);
      WriteRecord(element.Record());
    } else {
      WriteIndent();
      WriteObject(element);
    }
    const BodyView body = element.BodyPlace();
    if (!body) continue;
    // Filled where it stays: a copy of what has just been written would have to wait.
    Level& inner = levels_.emplace_back();
    inner.body = body;
    if (const Document* const records = element.Records()) {
      inner.records = records;
      inner.number = element.Record().keyword;
    } else {
      inner.keyword = element.KeywordBytes();
    }
    return;
  }
}

void XmlWriter::Leave() {
  const Level& left = levels_.back();
  left.body.LeaveAtLast();
  const Document* const records = left.records;
  const std::uint32_t number = left.number;
  const std::string_view keyword = left.keyword;
  levels_.pop_back();
  if (levels_.empty()) return;
  if (records != nullptr) {
    UseRecords(*records);
    return WriteEndTagOf(number);
  }
  WriteIndent();
  out_.Literal("</");
  WriteTag(keyword);
  out_.Literal(">\n");
}

// --- Objects ------------------------------------------------------------------------------------

void XmlWriter::WriteTag(std::string_view keyword) {
  std::string tag;
  AppendTag(keyword, xml_names_, tag);
  out_.Append(tag);
}

void XmlWriter::WriteObject(const ElementView& element) {
  out_.Append('<');
  WriteTag(element.KeywordBytes());
  if (const ValueView value = element.Value()) {
    out_.Literal(" val=\"");
    values_.Write(value);
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
  if (element.BodyPlace()) {
    out_.Literal(">\n");
  } else {
    out_.Literal(" />\n");
  }
}

void XmlWriter::WriteAttribute(const AttributeView& attribute, std::string_view name) {
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
    values_.WriteEscaped(body.Text(room));
  } else {
    values_.Write(value);
  }
  out_.Append('"');
}

// --- Records ------------------------------------------------------------------------------------

void XmlWriter::UseRecords(const Document& records) {
  if (records_ == &records) return;
  names_.emplace(records.Names(), xml_names_);
  literals_ = XmlLiterals(records.Text(), values_.IsAsciiItself());
  records_ = &records;
}

void XmlWriter::WriteTagOf(std::uint32_t keyword) {
  std::string tag;
  names_->AppendTagOf(keyword, tag);
  out_.Append(tag);
}

void XmlWriter::WriteEndTagOf(std::uint32_t keyword) {
  const XmlNameText* const tag = names_->TextOf(keyword);
  if (tag != nullptr && tag->IsTag() && Indentation() <= XmlBuffer::kFewBlanks) {
    char* at = XmlBuffer::WriteFewBlanks(Indentation(), out_.Room(kTagRoom));
    std::memcpy(at, "</", 3);
    at = tag->WriteEndTag(at + 2);
    std::memcpy(at, ">\n", 3);
    return out_.Advance(at + 2);
  }
  WriteIndent();
  out_.Literal("</");
  WriteTagOf(keyword);
  out_.Literal(">\n");
}

void XmlWriter::WriteRecord(const ElementRecord& element) {
  char* at = WriteStart(element);
  const char* end = out_.End();
  const std::uint32_t mark = names_->Begin();
  const std::uint32_t texts = names_->TextCount();
  const XmlLiterals literals = literals_;
  const std::uint32_t last = element.first_attribute + element.attribute_count;
  for (std::uint32_t i = element.first_attribute; i != last; ++i) {
    work_.Part();
    const AttributeRecord& attribute = records_->Attribute(i);
    const std::size_t room = kAttributeRoom + XmlLiterals::RoomOf(attribute.literal.size);
    if (attribute.name < texts && literals.MayWrite(attribute.literal) &&
        static_cast<std::size_t>(end - at) >= room) [[likely]] {
      XmlNameText& name = names_->TextAt(attribute.name);
      if (name.written == mark) continue;
      if (name.IsShortAttribute()) [[likely]] {
        if (char* const next = WriteQuickly(attribute, name, at)) [[likely]] {
          name.written = mark;
          at = next;
          continue;
        }
      }
    }
    at = WriteAttribute(attribute, at);
    end = out_.End();
  }
  if (static_cast<std::size_t>(end - at) < kEndRoom) {
    out_.Advance(at);
    at = out_.Room(kEndRoom);
  }
  const bool has_body = element.body != kNoRecord;
  std::memcpy(at, has_body ? ">\n\0\0" : " />\n", 5);
  out_.Advance(at + (has_body ? 2 : 4));
}

// Up to the attributes.
char* XmlWriter::WriteStart(const ElementRecord& element) {
  const XmlNameText* const tag = names_->TextOf(element.keyword);
  const bool has_value = IsValue(element.literal);
  const std::size_t blanks = Indentation();
  const std::size_t room = kTagRoom + XmlLiterals::RoomOf(element.literal.size);
  char* at = out_.At();
  if (tag != nullptr && tag->IsTag() && blanks <= XmlBuffer::kFewBlanks &&
      literals_.MayWrite(element.literal) && static_cast<std::size_t>(out_.End() - at) >= room) {
    at = tag->WriteTag(XmlBuffer::WriteFewBlanks(blanks, at));
    if (!has_value) return at;
    std::memcpy(at, " val=\"\0", 8);
    at = literals_.Write(element.literal, at + 6);
    if (at != nullptr) {
      *at = '"';
      return at + 1;
    }
  }
  names_->KeepTag(element.keyword);
  WriteIndent();
  out_.Append('<');
  WriteTagOf(element.keyword);
  if (has_value) {
    out_.Literal(" val=\"");
    values_.Write(ValueView(*records_, element.literal));
    out_.Append('"');
  }
  return out_.At();
}

// One with a short name and a literal of the text, for which there is room; null when it is left to
// others.
inline char* XmlWriter::WriteQuickly(const AttributeRecord& attribute, const XmlNameText& name,
                                     char* at) const {
  constexpr std::size_t kCopy = XmlNameText::kShort;
  if (attribute.modifier != NameTable::kNoName) {
    at = name.WriteModifier<kCopy>(at);
    at = literals_.WriteName(records_->Names().View(attribute.modifier), at);
    if (at == nullptr) return nullptr;
    *at++ = '"';
  }
  if (attribute.literal.Kind() == LiteralKind::None) return name.WriteOption<kCopy>(at);
  at = literals_.Write(attribute.literal, name.WriteValue<kCopy>(at));
  if (at == nullptr) return nullptr;
  *at = '"';
  return at + 1;
}

// Any other one.
[[gnu::noinline]] char* XmlWriter::WriteAttribute(const AttributeRecord& attribute, char* at) {
  out_.Advance(at);
  std::uint32_t number = attribute.name;
  if (!names_->Insert(number)) return at;
  names_->KeepAttribute(number);
  if (attribute.modifier != NameTable::kNoName) {
    WriteName(number, &XmlNameText::WriteModifier<XmlNameText::kAny>, " modifier-", "=\"");
    out_.Append(records_->Names().View(attribute.modifier));
    out_.Append('"');
  }
  const ValueView value(*records_, attribute.literal);
  const bool is_body = attribute.literal.Kind() == LiteralKind::Body;
  if (!is_body && !IsDefined(value)) {
    WriteName(number, &XmlNameText::WriteOption<XmlNameText::kAny>, " opt-", "=\"true\"");
    return out_.At();
  }
  WriteName(number, &XmlNameText::WriteValue<XmlNameText::kAny>, " val-", "=\"");
  if (is_body) {
    String room;
    values_.WriteEscaped(BodyView(*records_, attribute.literal.at).Text(room));
  } else {
    values_.Write(value);
  }
  out_.Append('"');
  return out_.At();
}

// What is kept of a name as a function writes it, or what that would be.
inline void XmlWriter::WriteName(std::uint32_t number,
                                 char* (XmlNameText::*write)(char*) const noexcept,
                                 std::string_view before, std::string_view behind) {
  const XmlNameText* const text = names_->TextOf(number);
  if (text != nullptr && text->IsAttribute()) {
    return out_.Advance((text->*write)(out_.Room(XmlNameText::kRoom)));
  }
  out_.Append(before);
  out_.Append(names_->Of(number));
  out_.Append(behind);
}

}  // namespace ixomep
