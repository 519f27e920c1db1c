// Fuzz target: definition texts. Each is read, every question is asked about every element, also
// with indices that do not exist, and it is converted to XML. Reading twice gives the same.
#include "fuzz/support/bounds.h"
#include "fuzz/support/bytes.h"
#include "fuzz/support/definition_walk.h"
#include "fuzz/support/fuzz_host.h"
#include "ixomep/expr/program.h"
#include "ixomep/parser/converter.h"

using namespace ixomep::fuzz;

namespace {

std::string XmlOf(const String& text, bool xml_names) {
  IxoMepConverter converter(text);
  converter.SetXmlNames(xml_names);
  (void)converter.Parse();
  return std::string(converter.ToXML(xml_names, "root").view());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzHost host;
  host.files["a.mep"] = "PART \"a\" x: 1\n";
  const bool before = ixomep::UsePrograms(false);
  const String text(TextOf(data, size));
  {
    const Bounds bounds;
    const std::string first = ReadAndAsk(text);
    const std::string second = ReadAndAsk(text);
    Check(bounds.Reached() || first == second, "a second reading differs",
          first + "---\n" + second);
  }
  {
    const Bounds bounds;
    const std::string xml = XmlOf(text, true);
    Check(bounds.Reached() || xml == XmlOf(text, true), "a second conversion differs");
    (void)XmlOf(text, false);
  }
  ixomep::UsePrograms(before);
  return 0;
}
