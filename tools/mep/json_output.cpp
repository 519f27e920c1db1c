// Written as a stream with a stack of its own for bodies, since they nest as deep as a text likes;
// a value nested deeper than kMaxValueDepth is given by its text.
#include "tools/mep/json_output.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "ixomep/expr/expression_parser.h"
#include "ixomep/host/encodings.h"
#include "tools/mep/expressions.h"
#include "tools/mep/limits.h"
#include "tools/mep/output.h"

namespace mep {
namespace {

constexpr int kMaxValueDepth = 200;

void AppendUnit(unsigned unit, std::string& json) {
  char escape[8];
  std::snprintf(escape, sizeof escape, "\\u%04x", unit);
  json += escape;
}

// The code point that starts at `at`, which moves behind it. The text is well-formed UTF-8.
unsigned NextCodePoint(std::string_view text, std::size_t& at) {
  const unsigned first = static_cast<unsigned char>(text[at++]);
  const int more = first < 0x80u ? 0 : first < 0xE0u ? 1 : first < 0xF0u ? 2 : 3;
  unsigned code = more == 0 ? first : first & (0x3Fu >> static_cast<unsigned>(more));
  for (int i = 0; i < more && at < text.size(); ++i) {
    code = (code << 6u) | (static_cast<unsigned char>(text[at++]) & 0x3Fu);
  }
  return code;
}

std::string JsonString(std::string_view host_text) {
  const String utf8 = ConvertStringToUTF8(String(host_text));
  std::string json = "\"";
  for (std::size_t at = 0; at < utf8.view().size();) {
    const unsigned code = NextCodePoint(utf8.view(), at);
    if (code == '"' || code == '\\') {
      json += {'\\', static_cast<char>(code)};
    } else if (code >= 32 && code < 127) {
      json += static_cast<char>(code);
    } else if (code < 0x10000u) {
      AppendUnit(code, json);
    } else {
      AppendUnit(0xD800u + ((code - 0x10000u) >> 10u), json);
      AppendUnit(0xDC00u + ((code - 0x10000u) & 0x3FFu), json);
    }
  }
  return json + "\"";
}

std::string JsonReal(double number) {
  if (!std::isfinite(number)) return "null";
  char digits[40];
  const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
  return std::string(digits, end);
}

class JsonWriter {
 public:
  JsonWriter(IxoMepValueSet& scope, Output& output) : scope_(scope), output_(output) {}

  void Write(const std::vector<Selection>& selections) {
    Put("[");
    bool first = true;
    for (const Selection& selection : selections) {
      if (!first) Put(", ");
      first = false;
      if (selection.attribute == nullptr) {
        OpenElement(*selection.element);
      } else {
        OpenAttribute(*selection.attribute);
      }
      while (!levels_.empty()) Step();
    }
    Put("]\n");
  }

 private:
  enum class Kind { kElement, kAttribute, kBody };
  // What is being written: an element from its attributes on, an attribute whose body stands open,
  // or the elements of a body.
  struct Level {
    Kind kind;
    const IxoMepElement* element;
    const IxoMepParser* body;
    std::int32_t next = 0;
    bool body_done = false;
  };

  void Put(const std::string& json) { output_.Write(json); }

  void OpenElement(const IxoMepElement& element) {
    Put("{\"keyword\": " + JsonString(element.GetKeyword().view()) +
        ", \"line\": " + std::to_string(element.GetLine()));
    if (element.GetValue() != nullptr) Put(", \"value\": " + JsonOf(*element.GetValue(), 0));
    Put(", \"attributes\": [");
    levels_.push_back({Kind::kElement, &element, element.GetBodyParser()});
  }

  void OpenAttribute(const IxoMepAttribute& attribute) {
    Put("{\"name\": " + JsonString(attribute.GetName().view()));
    if (!attribute.GetModifier().IsEmpty()) {
      Put(", \"modifier\": " + JsonString(attribute.GetModifier().view()));
    }
    if (attribute.GetValue() != nullptr) Put(", \"value\": " + JsonOf(*attribute.GetValue(), 0));
    levels_.push_back({Kind::kAttribute, nullptr, attribute.GetBodyParser()});
  }

  // Writes the body of the innermost level, once; false when it has none or is done.
  bool EnterBody(Level& level) {
    if (level.body_done || level.body == nullptr) return false;
    level.body_done = true;
    Put(", \"body\": [");
    levels_.push_back({Kind::kBody, nullptr, level.body});
    return true;
  }

  void Step() {
    CheckTime();
    Level& level = levels_.back();
    if (level.kind == Kind::kBody) {
      if (level.next >= level.body->GetElemCount()) return Close("]");
      if (level.next > 0) Put(", ");
      OpenElement(ElementAt(*level.body, level.next++));
    } else if (level.kind == Kind::kAttribute) {
      if (!EnterBody(level)) Close("}");
    } else if (level.next < level.element->GetAttrCount()) {
      if (level.next > 0) Put(", ");
      OpenAttribute(*level.element->GetAttr(level.next++));
    } else {
      if (!level.body_done) Put("]");  // of the attributes
      if (!EnterBody(level)) Close("}");
    }
  }

  void Close(const char* closer) {
    Put(closer);
    levels_.pop_back();
  }

  std::string JsonOf(const IxoMepValue& value, int depth) {
    if (depth > kMaxValueDepth) return TypeOf(value) + TextOf(value);
    switch (value.GetType()) {
      case IxoMepValueType::Undefined:
        return "null";
      case IxoMepValueType::String:
        return JsonString(value.GetStr().view());
      case IxoMepValueType::Integer:
        return std::to_string(value.GetInt());
      case IxoMepValueType::Real:
        return std::isfinite(value.GetReal()) ? JsonReal(value.GetReal())
                                              : TypeOf(value) + TextOf(value);
      case IxoMepValueType::Measure:
        return "{\"measure\": " + std::to_string(value.GetTMM()) + TextOf(value);
      case IxoMepValueType::Time:
        return "{\"time\": " + JsonReal(value.GetSec()) + TextOf(value);
      case IxoMepValueType::Array:
        return JsonOfArray(value, depth);
      case IxoMepValueType::Map:
        return JsonOfMap(value, depth);
      case IxoMepValueType::Expression:
        return JsonOfExpression(*value.GetExpr(), depth);
      default:
        return TypeOf(value) + TextOf(value);
    }
  }

  static std::string TypeOf(const IxoMepValue& value) {
    return "{\"type\": " + JsonString(IxoMepValue::GetTypeName(value.GetType()).view());
  }

  static std::string TextOf(const IxoMepValue& value) {
    return ", \"text\": " + JsonString(value.GetText().view()) + "}";
  }

  std::string JsonOfArray(const IxoMepValue& array, int depth) {
    std::string json = "[";
    for (std::int32_t i = 0; i < array.GetSize(); ++i) {
      json += (i > 0 ? ", " : "") + JsonOf(*array.GetValue(i), depth + 1);
    }
    return json + "]";
  }

  std::string JsonOfMap(const IxoMepValue& map, int depth) {
    const std::unique_ptr<IxoMepValue> keys(map.GetKeysOfMap());
    std::string json = "{\"map\": [";
    for (std::int32_t i = 0; i < keys->GetSize(); ++i) {
      const IxoMepValue* key = keys->GetValue(i);
      json += (i > 0 ? ", [" : "[") + JsonOf(*key, depth + 1) + ", " +
              JsonOf(*map.GetValueOfMap(key), depth + 1) + "]";
    }
    return json + "]}";
  }

  std::string JsonOfExpression(const IxoMepExpressionParser& expression, int depth) {
    const Evaluation evaluation = EvaluateAttribute(expression, scope_);
    const std::string source =
        "{\"expression\": " + JsonString(expression.GetOriginalExpression().view());
    if (evaluation.value)
      return source + ", \"value\": " + JsonOf(*evaluation.value, depth + 1) + "}";
    return source + ", \"error\": " + std::to_string(evaluation.code) +
           ", \"text\": " + JsonString(evaluation.error_text.view()) + "}";
  }

  IxoMepValueSet& scope_;
  Output& output_;
  std::vector<Level> levels_;
};

}  // namespace

void WriteJson(const std::vector<Selection>& selections, IxoMepValueSet& scope, Output& output) {
  JsonWriter(scope, output).Write(selections);
}

}  // namespace mep
