// This library as a reader of definition texts and a writer of XML: the interface that a host
// uses, nothing inside it.
#include <optional>

#include "bench/support/readers.h"
#include "ixomep/parser/converter.h"
#include "ixomep/parser/parser.h"
#include "ixomep/values/value.h"

namespace ixomep::bench {

namespace {

void AddAttribute(const IxoMepParser& parser, std::int32_t position, Counts& counts) {
  counts.text_bytes += parser.GetModifierOfPos(position).Len();
  switch (parser.GetValueTypeOfPos(position)) {
    case IxoMepValueType::String:
      counts.text_bytes += parser.GetStrValue(parser.GetAttrNameOfPos(position)).Len();
      break;
    case IxoMepValueType::Undefined:
      break;
    default:
      ++counts.numbers;
  }
}

// All elements at all depths, by queries of the current element. None of them asks for an element
// or a value as an object.
void Walk(IxoMepParser& parser, Counts& counts) {
  for (std::int32_t i = 0; parser.SetCurElemIndex(i); ++i) {
    ++counts.elements;
    if (parser.GetValueType() == IxoMepValueType::String) {
      counts.text_bytes += parser.GetStrValue().Len();
    } else if (parser.GetValueType() != IxoMepValueType::Undefined) {
      ++counts.numbers;
    }
    const std::int32_t attribute_count = parser.GetAttrCount();
    counts.attributes += attribute_count;
    for (std::int32_t k = 0; k < attribute_count; ++k) AddAttribute(parser, k, counts);
    if (IxoMepParser* const body = parser.GetBodyParser()) Walk(*body, counts);
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
