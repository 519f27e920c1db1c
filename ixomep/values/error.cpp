// The texts of the error codes, and of errors that show a call.
#include "ixomep/values/error.h"

#include "ixomep/host/res_id.h"
#include "ixomep/values/raise.h"

namespace {

// The resource number of a code's text is its number plus this.
constexpr std::int32_t kFirstResource = 16100;

constexpr bool HasText(std::int32_t code) noexcept {
  constexpr std::int32_t kWithout[] = {0, 7, 11, 12, 33, 34, 35};
  for (const std::int32_t without : kWithout) {
    if (code == without) return false;
  }
  return true;
}

}  // namespace

IxoMepError& IxoMepError::Instance() {
  static IxoMepError instance;
  return instance;
}

void IxoMepError::FillErrorTextArray() {
  for (std::int32_t code = 0; code < static_cast<std::int32_t>(texts_.size()); ++code) {
    if (HasText(code))
      texts_[static_cast<std::size_t>(code)] = String(ResId(kFirstResource + code));
  }
  filled_ = true;
}

String IxoMepError::GetErrorText(IxoMepErrorEnum code) {
  IxoMepError& instance = Instance();
  if (!instance.filled_) instance.FillErrorTextArray();
  const auto number = static_cast<std::size_t>(code);  // a negative code is huge
  return number < instance.texts_.size() ? instance.texts_[number] : String();
}

String IxoMepError::MakeFunctionCallText(const String& name, const IxoMepValueList& args) {
  String call = name + "(";
  std::string_view separator;
  for (const IxoMepValue* arg : args) {
    call += separator;
    call += IxoMepValue::GetTypeName(arg != nullptr ? arg->GetType() : IxoMepValueType::Undefined);
    separator = ", ";
  }
  return call + ")";
}

String IxoMepError::MakeFunctionError(IxoMepErrorEnum code, const String& name,
                                      const IxoMepValue* a1, const IxoMepValue* a2,
                                      const IxoMepValue* a3, const IxoMepValue* a4,
                                      const IxoMepValue* a5, const IxoMepValue* a6) {
  String call = name + "(";
  if (a1 != nullptr) call += IxoMepValue::GetTypeName(a1->GetType());
  // Meant: the separator does not ask whether the first is present.
  for (const IxoMepValue* arg : {a2, a3, a4, a5, a6}) {
    if (arg != nullptr) call += ", " + IxoMepValue::GetTypeName(arg->GetType());
  }
  call += ")";
  String text;
  ixomep::Raise(text, code, {{"%func", call}});
  return text;
}

String IxoMepError::MakeFunctionError(IxoMepErrorEnum code, const String& name,
                                      const IxoMepValueList& args) {
  String text;
  MakeFunctionError(text, code, name, args);
  return text;
}

IxoMepErrorEnum IxoMepError::MakeFunctionError(String& text, IxoMepErrorEnum code,
                                               const String& name, const IxoMepValueList& args) {
  return ixomep::Raise(text, code, {{"%func", MakeFunctionCallText(name, args)}});
}
