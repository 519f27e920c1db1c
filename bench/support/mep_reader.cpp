// This library as a reader of definition texts and a writer of XML: the interface that a host
// uses, nothing inside it.
#include <optional>

#include "bench/support/readers.h"
#include "ixomep/parser/converter.h"
#include "ixomep/parser/parser.h"
#include "ixomep/values/value.h"

namespace ixomep::bench {

namespace {

void AddValue(const IxoMepValue* value, Counts& counts) {
  if (value == nullptr) return;
  if (value->GetType() == IxoMepValueType::String) {
    counts.text_bytes += value->GetStr().Len();
  } else {
    ++counts.numbers;
  }
}

void Walk(const IxoMepParser& parser, Counts& counts) {
  const std::int32_t element_count = parser.GetElemCount();
  for (std::int32_t i = 0; i < element_count; ++i) {
    const IxoMepElement& element = *parser.GetElement(i);
    ++counts.elements;
    AddValue(element.GetValue(), counts);
    const std::int32_t attribute_count = element.GetAttrCount();
    counts.attributes += attribute_count;
    for (std::int32_t k = 0; k < attribute_count; ++k) {
      const IxoMepAttribute& attribute = *element.GetAttr(k);
      counts.text_bytes += attribute.GetModifier().Len();
      AddValue(attribute.GetValue(), counts);
    }
    if (const IxoMepParser* const body = element.GetBodyParser()) Walk(*body, counts);
  }
}

class MepReader : public Reader {
 public:
  Counts ReadWalkFree(const std::string& text) override {
    IxoMepParser parser{String(text), String("bench")};
    Counts counts;
    if (parser.Parse() == IMEPERR_NONE) Walk(parser, counts);
    return counts;
  }
};

class MepWriter : public XmlWriter {
 public:
  bool Load(const std::string& text) override {
    converter_.emplace(String(text));
    return converter_->Parse() == IMEPERR_NONE;
  }
  void Unload() override {
    written_ = String();
    converter_.reset();
  }
  std::string_view Write() override {
    written_ = String();
    written_ = converter_->ToXML(false, "model");
    return written_.view();
  }

 private:
  std::optional<IxoMepConverter> converter_;
  String written_;
};

}  // namespace

std::unique_ptr<Reader> MakeMepReader() { return std::make_unique<MepReader>(); }
std::unique_ptr<XmlWriter> MakeMepWriter() { return std::make_unique<MepWriter>(); }

}  // namespace ixomep::bench
