// The plain way to XML and to the texts of numbers. See plain_xml.h.
#include "tests/support/plain_xml.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "ixomep/host/encodings.h"
#include "ixomep/values/value.h"

namespace ixomep::test {

namespace {

std::string Bytes(const String& text) { return std::string(text.view()); }

std::string TagOf(const String& keyword) {
  std::string tag = Bytes(keyword);
  for (char& byte : tag) {
    if (byte >= 'A' && byte <= 'Z') byte = static_cast<char>(byte - 'A' + 'a');
    if (byte == '_') byte = '-';
  }
  return tag;
}

std::string EscapedText(const String& text, bool references) {
  return Bytes(IxoSGMLString::XMLStr(text, references));
}

std::string EscapedValue(const IxoMepValue& value, bool references) {
  const bool is_text = value.GetType() == IxoMepValueType::String;
  return EscapedText(is_text ? value.GetStr() : value.GetText(false), references);
}

std::string PlainAttribute(const IxoMepAttribute& attribute, bool references) {
  const std::string name = Bytes(attribute.GetName());
  std::string xml;
  if (!attribute.GetModifier().IsEmpty()) {
    xml += " modifier-" + name + "=\"" + Bytes(attribute.GetModifier()) + "\"";
  }
  if (attribute.GetBodyParser() != nullptr) {
    const String text = attribute.GetBodyParser()->GetText();
    return xml + " val-" + name + "=\"" + EscapedText(text, references) + "\"";
  }
  const IxoMepValue* const value = attribute.GetValue();
  if (value != nullptr && value->GetType() != IxoMepValueType::Undefined) {
    return xml + " val-" + name + "=\"" + EscapedValue(*value, references) + "\"";
  }
  return xml + " opt-" + name + "=\"true\"";
}

std::string Formatted(const char* format, int first) {
  char buffer[32];
  std::snprintf(buffer, sizeof buffer, format, first);
  return buffer;
}

// Without zeros at the end of the fraction.
std::string WithoutZeros(std::string text) {
  if (text.find('.') == std::string::npos) return text;
  text.erase(text.find_last_not_of('0') + 1);
  if (text.back() == '.') text.pop_back();
  return text;
}

}  // namespace

std::string PlainXml(const IxoMepParser& parser, bool references, int level) {
  const std::string indent(static_cast<std::size_t>(level) * 4, ' ');
  std::string xml;
  for (std::int32_t i = 0; i < parser.GetElemCount(); ++i) {
    const IxoMepElement& element = *parser.GetElement(i);
    const std::string tag = TagOf(element.GetKeyword());
    xml += indent + "<" + tag;
    if (element.GetValue() != nullptr) {
      xml += " val=\"" + EscapedValue(*element.GetValue(), references) + "\"";
    }
    std::string written = "\n";
    for (std::int32_t k = 0; k < element.GetAttrCount(); ++k) {
      const std::string name = Bytes(element.GetAttr(k)->GetName());
      if (written.find("\n" + name + "\n") != std::string::npos) continue;
      written += name + "\n";
      xml += PlainAttribute(*element.GetAttr(k), references);
    }
    if (element.GetBodyParser() == nullptr) {
      xml += " />\n";
      continue;
    }
    xml += ">\n" + PlainXml(*element.GetBodyParser(), references, level + 1);
    xml += indent + "</" + tag + ">\n";
  }
  return xml;
}

std::string PlainReal(double number) {
  char written[40];
  std::snprintf(written, sizeof written, "%.11e", std::fabs(number));
  std::string digits = written[0] + std::string(written + 2, 11);
  const int exponent = std::atoi(std::strchr(written, 'e') + 1);
  if (exponent < 0) digits.insert(0, static_cast<std::size_t>(-exponent), '0');
  const int point = std::max(exponent, 0) + 1;
  const int missing = point - static_cast<int>(digits.size());
  if (missing > 0) digits.append(static_cast<std::size_t>(missing), '0');
  digits.insert(static_cast<std::size_t>(point), 1, '.');
  return (number < 0 ? "-" : "") + WithoutZeros(digits);
}

std::string PlainTenths(std::int32_t tenths) {
  if (tenths == 0) return "0cm";
  const std::int64_t size = std::abs(std::int64_t{tenths});
  std::string text = tenths < 0 ? "-" : "";
  if (size >= 100) text += std::to_string(size / 100);
  if (size % 100 != 0) {
    text = WithoutZeros(text + "." + Formatted("%02d", static_cast<int>(size % 100)));
  }
  return text + "cm";
}

std::string PlainTime(double seconds) {
  constexpr std::int64_t kDay = 24 * 60 * 60;
  const auto whole = static_cast<std::int64_t>(seconds);
  const std::int64_t size = std::abs(whole);
  std::string text = whole < 0 ? "-" : "";
  text += Formatted("%02d", static_cast<int>(size / (365 * kDay)));
  text += Formatted(":%03d", static_cast<int>(size / kDay % 365));
  text += Formatted(":%02d", static_cast<int>(size / 3600 % 24));
  text += Formatted(":%02d", static_cast<int>(size / 60 % 60));
  return text + Formatted(":%02d", static_cast<int>(size % 60));
}

}  // namespace ixomep::test
