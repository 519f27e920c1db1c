// The set of written names and the conversion of names. See xml_names.h.
#include "ixomep/parser/xml_names.h"

#include <algorithm>

#include "ixomep/host/encodings.h"

namespace ixomep {

namespace {

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

// One bit of 64: names that differ mostly have different ones.
std::uint64_t MarkOf(std::string_view name) noexcept {
  if (name.empty()) return 1;
  const auto first = static_cast<unsigned char>(name.front());
  const auto last = static_cast<unsigned char>(name.back());
  return std::uint64_t{1} << ((name.size() * 5 + first + last * 7U) % 64);
}

}  // namespace

bool XmlNameSet::Insert(const String& name) {
  const std::uint64_t mark = MarkOf(name.view());
  if ((marks_ & mark) != 0 && Contains(name)) return false;
  marks_ |= mark;
  if (few_.size() < kFew) {
    few_.push_back(name);
  } else {
    many_.insert(name);
  }
  // Meant: a name is looked for among the lines of a list of names, so that a name also counts as
  // written when it is one line of an index part that has several.
  const std::string_view bytes = name.view();
  const bool has_lines = std::any_of(bytes.begin(), bytes.end(), [](char b) { return b == '\n'; });
  if (has_lines) InsertLines(bytes);
  return true;
}

bool XmlNameSet::Contains(const String& name) const {
  return std::find(few_.begin(), few_.end(), name) != few_.end() ||
         (!many_.empty() && many_.count(name) != 0);
}

void XmlNameSet::InsertLines(std::string_view name) {
  for (std::size_t start = 0; start <= name.size();) {
    const std::size_t end = std::min(name.find('\n', start), name.size());
    const String line(name.substr(start, end - start));
    marks_ |= MarkOf(line.view());
    many_.insert(line);
    start = end + 1;
  }
}

const String& XmlNames::Of(const String& name) {
  Known& known = known_[name.Hash() % known_.size()];
  if (known.name != name || known.xml_name.IsEmpty()) {
    known.xml_name = XmlNameOf(name);
    known.name = name;
  }
  return known.xml_name;
}

XmlNumberedNames::XmlNumberedNames(const NameTable& names, bool xml_names)
    : names_(names),
      xml_names_(xml_names),
      texts_(std::min(names.Count(), kKept)),
      written_(names.Count() - texts_.size()) {
  if (xml_names) known_.resize(names.Count());
}

bool XmlNumberedNames::Insert(std::uint32_t& number) {
  if (xml_names_) number = Convert(number).number;
  std::uint32_t& written =
      number < TextCount() ? texts_[number].written : written_[number - TextCount()];
  const bool is_new = written != element_;
  written = element_;
  return is_new;
}

const XmlNumberedNames::Known& XmlNumberedNames::Convert(std::uint32_t number) {
  Known& known = known_[number];
  if (known.number == NameTable::kNoName) {
    known.xml_name = XmlNameOf(String(names_.View(number)));
    known.number = numbers_.try_emplace(known.xml_name, number).first->second;
  }
  return known;
}

void XmlNumberedNames::KeepTag(std::uint32_t number) {
  if (number >= TextCount() || texts_[number].IsTag()) return;
  std::string text = "<";
  AppendTagOf(number, text);
  texts_[number].KeepTag(text);
}

void XmlNumberedNames::KeepAttribute(std::uint32_t number) {
  if (number >= TextCount() || texts_[number].IsAttribute()) return;
  std::string text = " val-";
  text += Of(number);
  text += "=\"";
  texts_[number].KeepValue(text);
}

void XmlNumberedNames::AppendTagOf(std::uint32_t number, std::string& out) const {
  AppendTag(names_.View(number), xml_names_, out);
}

void AppendTag(std::string_view keyword, bool xml_names, std::string& out) {
  if (xml_names && keyword == ";") {
    out += "statement";
    return;
  }
  for (const char byte : keyword) {
    const bool is_upper = byte >= 'A' && byte <= 'Z';
    out += byte == '_' ? '-' : static_cast<char>(byte + (is_upper ? 32 : 0));
  }
}

}  // namespace ixomep
