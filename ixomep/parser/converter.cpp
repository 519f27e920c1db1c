// Definition texts as XML: the document around the elements, which XmlWriter writes. See
// converter.h.
#include "ixomep/parser/converter.h"

#include <algorithm>
#include <cstdint>
#include <exception>
#include <string_view>

#include "ixomep/host/memory_budget.h"
#include "ixomep/host/string_tail.h"
#include "ixomep/parser/query_support.h"
#include "ixomep/parser/xml_buffer.h"
#include "ixomep/parser/xml_values.h"
#include "ixomep/parser/xml_writer.h"

namespace {

constexpr const char* kContext = "IxoMepConverter";
constexpr std::string_view kDeclaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

// Room for what a text of that length mostly becomes, where there is plenty of it.
void ReserveFor(std::int32_t text_length, String& xml) {
  const auto length = static_cast<std::int64_t>(text_length);
  const std::int64_t usual = std::min<std::int64_t>(length + length / 2, String::kMaxLength);
  if (!ixomep::MemoryBudget::MayTake(static_cast<std::size_t>(4 * usual))) return;
  xml.Reserve(static_cast<std::int32_t>(usual));
}

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
    ixomep::XmlWriter(out, escape_flag_, xml_names_).Write(*this);
    if (!rootName.IsEmpty()) {
      out.Literal("</");
      out.Append(rootName.view());
      out.Literal(">\n");
    }
    out.Flush();
    const bool is_mostly_unused = ixomep::StringTail::Of(xml).size() > xml.view().size();
    return is_mostly_unused ? String(xml.view()) : xml;
  } catch (const std::exception& cause) {
    NoteNoMemory(cause);
    return String();
  }
}

String IxoMepConverter::ToExportStr(const IxoMepValue* value) {
  if (value == nullptr) return String();
  return ixomep::OrNeutral(String(), [value] { return ixomep::ExportTextOf(*value); });
}
