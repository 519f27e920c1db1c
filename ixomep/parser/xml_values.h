// Internal: the export texts of values in XML, of every kind and from every source. Literals that
// can be written straight from the definition text seldom come here (xml_literals.h).
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "ixomep/host/string.h"
#include "ixomep/parser/element_view.h"
#include "ixomep/parser/xml_buffer.h"
#include "ixomep/values/value.h"

namespace ixomep {

// A string as it is, any other value in its text form.
String ExportTextOf(const IxoMepValue& value);

class XmlValues {
 public:
  // `references`: all but ASCII as numeric references, else UTF-8.
  XmlValues(XmlBuffer& out, bool references);

  // Whether the host's character set has ASCII as everyone has it.
  bool IsAsciiItself() const noexcept { return is_ascii_itself_; }
  // The export text of a value; any text. Escaped.
  void Write(const ValueView& value);
  void WriteEscaped(std::string_view text);

 private:
  // The export texts of expressions that are compiled when they are asked for. Those met lately
  // are kept: the same source is often there many times.
  class SourceTexts {
   public:
    // Borrowed until the next call.
    const String& Of(const ValueView& value);

   private:
    struct Known {
      std::string_view source;
      String text;
    };
    std::array<Known, 64> known_;
  };

  void WriteMade(const ValueView& view);
  void WriteMeasure(double tenths);
  void WriteTime(double seconds);
  void WriteForeign(std::string_view text);
  void Advance(std::string_view written) { out_.Advance(written.data() + written.size()); }

  XmlBuffer& out_;
  bool references_;
  bool is_ascii_itself_;
  SourceTexts source_texts_;
};

}  // namespace ixomep
