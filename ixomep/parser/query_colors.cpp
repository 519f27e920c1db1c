// Colours of elements: a value or three component attributes turned into a Color, or into an
// expression object that gives the packed colour whenever it is evaluated.
#include <algorithm>
#include <array>
#include <memory>

#include "ixomep/expr/expression_parser.h"
#include "ixomep/host/color.h"
#include "ixomep/host/numbers.h"
#include "ixomep/parser/element_view.h"
#include "ixomep/parser/parser.h"
#include "ixomep/parser/query_support.h"
#include "ixomep/values/slot.h"
#include "ixomep/values/units.h"

namespace {

constexpr const char* kColor = "color";

using Components = std::array<const IxoMepAttribute*, 3>;

struct ComponentNames {
  std::string_view red;
  std::string_view green;
  std::string_view blue;
};
constexpr ComponentNames kLongNames = {"red", "green", "blue"};
constexpr ComponentNames kShortNames = {"r", "g", "b"};

Components FindComponents(const IxoMepElement& element, std::string_view red,
                          std::string_view green, std::string_view blue) noexcept {
  return {element.FindAttr(red), element.FindAttr(green), element.FindAttr(blue)};
}

const ComponentNames& DefaultNames(const ixomep::ElementView& element) noexcept {
  const ComponentNames& names = kLongNames;
  const bool has_long =
      element.FindAttr(names.red) || element.FindAttr(names.green) || element.FindAttr(names.blue);
  return has_long ? kLongNames : kShortNames;
}

const IxoMepExpressionParser* ExpressionOf(const IxoMepAttribute* attribute) noexcept {
  const bool has_value = attribute != nullptr && attribute->GetValue() != nullptr;
  return has_value ? attribute->GetValue()->GetExpr() : nullptr;
}

// The first expression among the components; null when all are constant or missing.
const IxoMepExpressionParser* FirstExpression(const Components& components) noexcept {
  for (const IxoMepAttribute* component : components) {
    if (const auto* expression = ExpressionOf(component)) return expression;
  }
  return nullptr;
}

// An argument of a call. The line feed ends a comment that the source may end in.
String ArgumentOf(const IxoMepAttribute* component) {
  if (const IxoMepExpressionParser* expression = ExpressionOf(component)) {
    const String& source = expression->GetOriginalExpression();
    return "(" + (source.IsEmpty() ? expression->GetExpression(nullptr) : source) + "\n)";
  }
  const bool has_value = component != nullptr && component->GetValue() != nullptr;
  return StringFromInteger(has_value ? std::clamp(component->GetValue()->GetInt(), 0, 255) : 0);
}

std::unique_ptr<IxoMepExpressionParser> NewExpressionLike(const IxoMepElement& element) {
  IxoMepParser* const parser = element.GetParser();
  return std::unique_ptr<IxoMepExpressionParser>(parser != nullptr ? parser->NewExprParser()
                                                                   : nullptr);
}

// A call that puts the components together at every evaluation; null when it cannot be compiled.
IxoMepExpressionParser* CreateCall(const IxoMepElement& element, const Components& components,
                                   std::uint32_t line) {
  const String call = "rgbval(" + ArgumentOf(components[0]) + ", " + ArgumentOf(components[1]) +
                      ", " + ArgumentOf(components[2]) + ")";
  auto expression = NewExpressionLike(element);
  String error_text;
  if (expression == nullptr || expression->SetExpression(call, error_text) != IMEPERR_NONE) {
    return nullptr;
  }
  expression->SetLineNo(line);
  return expression.release();
}

IxoMepExpressionParser* CreateConstant(const IxoMepElement& element, const Color& color) {
  auto expression = NewExpressionLike(element);
  if (expression == nullptr) return nullptr;
  expression->SetConstant(IxoMepValue(color.GetPacked()));
  return expression->GetTree() != nullptr ? expression.release() : nullptr;  // null: no memory
}

}  // namespace

bool IxoMepParser::GetColor(const IxoMepValue* value, Color& color) {
  if (value == nullptr) return false;
  if (value->IsNum()) {
    const double number = value->GetReal();
    if (!ixomep::FitsInt32(number)) return false;
    color = Color::FromPacked(static_cast<std::uint32_t>(static_cast<std::int32_t>(number)));
    return true;
  }
  if (value->GetType() != IxoMepValueType::String) return false;
  return ixomep::OrNeutral(false, [&] {
    Color named;
    if (!getColorOfColorName(value->GetStr(), named)) return false;
    color = named;
    return true;
  });
}

bool IxoMepParser::GetColor(const String& colorName, const String& redName, const String& greenName,
                            const String& blueName, Color& color) const {
  return ixomep::OrNeutral(false, [&] {
    ixomep::ValuePtr evaluated;
    IxoMepValue room;
    if (IsContained(colorName)) {
      return GetColor(Resolve(NamedValue(colorName).Get(room), evaluated), color);
    }
    bool has_any = false;
    std::array<std::int32_t, 3> parts{};
    const std::array<const String*, 3> names = {&redName, &greenName, &blueName};
    for (std::size_t i = 0; i < parts.size(); ++i) {
      if (!IsContained(*names[i])) continue;
      has_any = true;
      const IxoMepValue* const value = Resolve(NamedValue(*names[i]).Get(room), evaluated);
      parts[i] = value != nullptr ? value->GetInt() : 0;
    }
    if (has_any) color = Color(parts[0], parts[1], parts[2]);
    return has_any;
  });
}

bool IxoMepParser::GetColor(Color& color) const {
  return ixomep::OrNeutral(false, [&] {
    const ComponentNames& names = DefaultNames(CurrentView());
    return GetColor(kColor, names.red, names.green, names.blue, color);
  });
}

// What depends on variables stays an expression, also when it could be evaluated now.
IxoMepExpressionParser* IxoMepParser::CreateColorEP(const String& colorName, const String& redName,
                                                    const String& greenName,
                                                    const String& blueName) const {
  const auto create = [&]() -> IxoMepExpressionParser* {
    if (const IxoMepAttribute* attribute = Current().FindAttr(colorName)) {
      if (const auto* expression = ExpressionOf(attribute)) return expression->CreateCopy();
    } else {
      const Components components = FindComponents(Current(), redName, greenName, blueName);
      if (const auto* expression = FirstExpression(components)) {
        return CreateCall(Current(), components, expression->GetLineNo());
      }
    }
    Color color;
    if (!GetColor(colorName, redName, greenName, blueName, color)) return nullptr;
    return CreateConstant(Current(), color);
  };
  return ixomep::OrNeutral<IxoMepExpressionParser*>(nullptr, create);
}

IxoMepExpressionParser* IxoMepParser::CreateColorEP() const {
  return ixomep::OrNeutral<IxoMepExpressionParser*>(nullptr, [this] {
    const ComponentNames& names = DefaultNames(CurrentView());
    return CreateColorEP(kColor, names.red, names.green, names.blue);
  });
}
