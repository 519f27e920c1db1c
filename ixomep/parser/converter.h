// IxoMepConverter: a definition text as XML, one XML element for each element, for tools that read
// no definition texts. Defined in converter.cpp.
#pragma once

#include "ixomep/export.h"
#include "ixomep/host/string.h"
#include "ixomep/parser/parser.h"

class IXOMEP_API IxoMepConverter : public IxoMepParser {
 public:
  // The whole text, with the context "IxoMepConverter". Call Parse before converting.
  explicit IxoMepConverter(const String& text);

  // The elements, in the order of the text, between the tags of the root (none for the empty
  // name) and behind the XML declaration when asked for. From the first declaration on, values are
  // UTF-8; before it, all but ASCII is written as numeric references. Elements become current as
  // they are converted. Empty when the result passes the memory or the maximum length, or the host
  // asks for the end: GetErrorCode and GetErrorText then say so (and go on saying so; a result that
  // is not empty is whole).
  String ToXML(bool withDeclaration, const String& rootName);

  // Whether names that XML does not have are changed, so that every document is well-formed:
  // statements become "statement", other bytes than XML allows in a name become "_", and names are
  // UTF-8. Off by default: names then are written as they stand in the text, a statement as ";".
  void SetXmlNames(bool xmlNames) noexcept { xml_names_ = xmlNames; }

  // A string as it is, any other value in its text form; null gives the empty text.
  static String ToExportStr(const IxoMepValue* value);
  static String ToExportStr(const IxoMepValue& value) { return ToExportStr(&value); }

 private:
  bool escape_flag_ = true;  // numeric references instead of UTF-8
  bool xml_names_ = false;
};
