// Internal: the walk over a parser's elements that writes them as XML. It keeps its own stack,
// since bodies nest as deep as a text likes. It goes over views, so that what was read into records
// is written from the records, and it leaves values to xml_literals.h and xml_values.h.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "ixomep/host/limit_watch.h"
#include "ixomep/parser/element_view.h"
#include "ixomep/parser/xml_buffer.h"
#include "ixomep/parser/xml_literals.h"
#include "ixomep/parser/xml_names.h"
#include "ixomep/parser/xml_values.h"

namespace ixomep {

class XmlWriter {
 public:
  // `references`: all but ASCII as numeric references, else UTF-8. `xml_names`: names that XML does
  // not have are changed.
  XmlWriter(XmlBuffer& out, bool references, bool xml_names)
      : out_(out), xml_names_(xml_names), values_(out, references) {}

  // Once: all elements, the last one of each body current afterwards. Throws as String does, and
  // LimitExceeded.
  void Write(IxoMepParser& parser);

 private:
  // Where the walk stands in one body.
  struct Level {
    BodyView body;
    std::int32_t next = 0;
    std::string_view keyword = {};      // of the element that has the body
    const Document* records = nullptr;  // of an element that is a record,
    std::uint32_t number = 0;           // and the number of its keyword
  };

  void WriteBody();
  void Leave();
  std::size_t Indentation() const noexcept { return kIndent * (levels_.size() - 1); }
  void WriteIndent() {
    if (levels_.size() > 1) out_.Blanks(Indentation());
  }

  // Elements that are objects.
  void WriteObject(const ElementView& element);
  void WriteAttribute(const AttributeView& attribute, std::string_view name);
  void WriteTag(std::string_view keyword);

  // Those in records. Names in records have numbers, and none has several lines.
  void UseRecords(const Document& records);
  void WriteRecord(const ElementRecord& element);
  // These give the place to go on at.
  char* WriteStart(const ElementRecord& element);
  char* WriteQuickly(const AttributeRecord& attribute, const XmlNameText& name, char* at) const;
  char* WriteAttribute(const AttributeRecord& attribute, char* at);
  void WriteName(std::uint32_t number, char* (XmlNameText::*write)(char*) const noexcept,
                 std::string_view before, std::string_view behind);
  void WriteTagOf(std::uint32_t keyword);
  void WriteEndTagOf(std::uint32_t keyword);

  static constexpr std::size_t kIndent = 4;

  XmlBuffer& out_;
  bool xml_names_;
  XmlValues values_;
  std::vector<Level> levels_;
  LongWork work_;
  // Of elements that are objects, and of those in records.
  XmlNameSet written_;
  XmlNames xml_name_of_;
  const Document* records_ = nullptr;
  std::optional<XmlNumberedNames> names_;
  XmlLiterals literals_;
};

}  // namespace ixomep
