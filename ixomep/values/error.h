// IxoMepError: the texts of the error codes, loaded from the host's resources on first use, and
// the texts of failed calls, in which a call is shown as its name and its arguments' type names.
#pragma once

#include <array>
#include <concepts>
#include <cstdint>

#include "ixomep/export.h"
#include "ixomep/host/string.h"
#include "ixomep/values/error_code.h"
#include "ixomep/values/value.h"

class IxoMepExprNode;

class IXOMEP_API IxoMepError {
 public:
  IxoMepError() = default;
  IxoMepError(const IxoMepError&) {}
  IxoMepError& operator=(const IxoMepError&) { return *this; }
  virtual ~IxoMepError() = default;

  // The text with its placeholders unfilled; empty for 0, for codes without a text and for
  // numbers outside 0 to 43.
  static String GetErrorText(IxoMepErrorEnum code);
  // The text of the code, its first "%func" replaced by the call: the name and, in parentheses,
  // the type names of the arguments that are present.
  static String MakeFunctionError(IxoMepErrorEnum code, const String& name,
                                  const IxoMepValue* a1 = nullptr, const IxoMepValue* a2 = nullptr,
                                  const IxoMepValue* a3 = nullptr, const IxoMepValue* a4 = nullptr,
                                  const IxoMepValue* a5 = nullptr, const IxoMepValue* a6 = nullptr);
  static String MakeFunctionError(IxoMepErrorEnum code, const String& name,
                                  const IxoMepValueList& args);
  // The same, stored into text; returns the code.
  static IxoMepErrorEnum MakeFunctionError(String& text, IxoMepErrorEnum code, const String& name,
                                           const IxoMepValueList& args);
  // The call is the node's name and an empty pair of parentheses. In ../expr/engine_hooks.cpp.
  static IxoMepErrorEnum MakeFunctionError(String& text, IxoMepErrorEnum code,
                                           const IxoMepExprNode* node);

  // The same for codes that a host keeps as plain numbers.
  static String GetErrorText(std::int32_t code) {
    return GetErrorText(static_cast<IxoMepErrorEnum>(code));
  }
  template <std::same_as<int> Code, class... Args>
  static String MakeFunctionError(Code code, const String& name, const Args&... args) {
    return MakeFunctionError(static_cast<IxoMepErrorEnum>(code), name, args...);
  }
  template <std::same_as<int> Code, class... Args>
  static IxoMepErrorEnum MakeFunctionError(String& text, Code code, const Args&... args) {
    return MakeFunctionError(text, static_cast<IxoMepErrorEnum>(code), args...);
  }

 private:
  static String MakeFunctionCallText(const String& name, const IxoMepValueList& args);
  void FillErrorTextArray();
  static IxoMepError& Instance();

  std::array<String, 44> texts_;
  bool filled_ = false;
};
