// Properties and methods of values. Names arrive as interned addresses and are compared as such;
// the methods are the rows of one table.
#include <array>
#include <string_view>

#include "ixomep/values/array_sort.h"
#include "ixomep/values/engine_hooks.h"
#include "ixomep/values/error.h"
#include "ixomep/values/object_access.h"
#include "ixomep/values/raise.h"
#include "ixomep/values/slot.h"
#include "ixomep/values/string_address_map.h"
#include "ixomep/values/value.h"
#include "ixomep/values/value_rep.h"

using Type = IxoMepValueType;
using Names = IxoMepStringAddressMap;

namespace ixomep {

namespace {

// One call of a method. `result` stays undefined and `has_result` false for a method without one.
struct MethodCall {
  IxoMepValue& receiver;
  const IxoMepValueList& args;
  const char* shown_name;  // "string.copy"
  String& error_text;
  IxoMepValue result;
  bool has_result = false;

  std::size_t Count() const noexcept { return args.size(); }
  const IxoMepValue& Arg(std::size_t index) const noexcept {
    return args[index] != nullptr ? *args[index] : *IxoMepValue::GetNull();
  }
  // The type of the argument as given: a reference is a reference.
  bool Is(std::size_t index, Type type) const noexcept { return Arg(index).GetType() == type; }

  IxoMepErrorEnum Fail(IxoMepErrorEnum code) {
    return IxoMepError::MakeFunctionError(error_text, code, shown_name, args);
  }
  IxoMepErrorEnum Return(IxoMepValue value) {
    result = std::move(value);
    has_result = true;
    return IMEPERR_NONE;
  }
};

const String& ReceiverText(const MethodCall& call) { return ValueAccess::Text(call.receiver); }

IxoMepErrorEnum StringCopy(MethodCall& call) {
  if (call.Count() > 2) return call.Fail(IMEPERR_WRONG_ARGUMENT_COUNT);
  for (std::size_t i = 0; i < call.Count(); ++i) {
    if (!call.Is(i, Type::Integer)) return call.Fail(IMEPERR_WRONG_TYPE);
  }
  const std::int32_t start = call.Count() > 0 ? ValueAccess::Integer(call.Arg(0)) : 0;
  const std::int32_t count = call.Count() > 1 ? ValueAccess::Integer(call.Arg(1)) : -1;
  return call.Return(ReceiverText(call).Copy(start, count < 0 ? String::kMaxLength : count));
}

// Checks for exactly one argument of the type.
IxoMepErrorEnum CheckOne(MethodCall& call, Type type) {
  if (call.Count() != 1) return call.Fail(IMEPERR_WRONG_ARGUMENT_COUNT);
  return call.Is(0, type) ? IMEPERR_NONE : call.Fail(IMEPERR_WRONG_TYPE);
}

IxoMepErrorEnum StringLastIndexOf(MethodCall& call) {
  if (const auto code = CheckOne(call, Type::String); code != IMEPERR_NONE) return code;
  const std::string_view pattern = ValueAccess::Text(call.Arg(0));
  if (pattern.empty()) return call.Return(-1);
  const std::int32_t position = ReceiverText(call).SearchBackward(pattern);
  return call.Return(position == String::kNotFound ? -1 : position);
}

std::string_view Between(const String& text, std::int32_t start, std::int32_t end) {
  return text.view().substr(static_cast<std::size_t>(start), static_cast<std::size_t>(end - start));
}

// The searches go on behind each removal, so what a removal brings together on its left is not
// looked at again, and one run over the text finds all.
String Without(const String& text, std::string_view pattern) {
  if (pattern.empty()) return text;
  std::int32_t start = 0;
  std::int32_t found = text.Search(pattern);
  if (found == String::kNotFound) return text;
  String kept;
  for (; found != String::kNotFound; found = text.Search(pattern, start)) {
    LimitWatch::WorkOfEvaluation();
    kept += Between(text, start, found);
    start = found + static_cast<std::int32_t>(pattern.size());
  }
  return kept += Between(text, start, text.Len());
}

IxoMepErrorEnum StringWithout(MethodCall& call) {
  if (const auto code = CheckOne(call, Type::String); code != IMEPERR_NONE) return code;
  return call.Return(Without(ReceiverText(call), ValueAccess::Text(call.Arg(0))));
}

IxoMepErrorEnum StringTrim(MethodCall& call) {
  if (call.Count() != 0) return call.Fail(IMEPERR_WRONG_ARGUMENT_COUNT);
  constexpr std::string_view kBlanks = "\t\n\r ";
  const std::string_view text = ReceiverText(call);
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return call.Return(String());
  const std::size_t last = text.find_last_not_of(kBlanks);
  return call.Return(String(text.substr(first, last - first + 1)));
}

IxoMepErrorEnum ArraySort(MethodCall& call) {
  if (call.Count() > 1) return call.Fail(IMEPERR_WRONG_ARGUMENT_COUNT);
  IxoMepExprNode* lambda = nullptr;
  if (call.Count() == 1) {
    if (call.Is(0, Type::Lambda)) lambda = ValueAccess::Lambda(call.Arg(0));
    if (lambda == nullptr || LambdaParamCount(lambda) != 2) return call.Fail(IMEPERR_WRONG_TYPE);
  }
  return SortArray(call.receiver, lambda, call.error_text);
}

IxoMepErrorEnum MapKey(MethodCall& call) {
  if (const auto code = CheckOne(call, Type::Integer); code != IMEPERR_NONE) return code;
  const std::int32_t index = ValueAccess::Integer(call.Arg(0));
  const bool too_large = index >= call.receiver.GetSize();
  if (index < 0 || too_large) {
    const auto code = index < 0 ? IMEPERR_INDEX_TOO_SMALL : IMEPERR_INDEX_TOO_LARGE;
    return Raise(call.error_text, code, {{"%type", IxoMepValue::GetTypeName(Type::Map)}});
  }
  return call.Return(ValueAccess::KeyAt(call.receiver, static_cast<std::size_t>(index)));
}

// True when every entry was new. A map into itself has nothing new.
bool InsertAll(IxoMepValue& map, const IxoMepValue& source) {
  const IxoMepValueMap& entries = ValueAccess::Entries(source);
  if (&entries == &ValueAccess::Entries(map)) return entries.empty();
  bool all_new = true;
  for (const auto& [key, value] : entries) {
    LimitWatch::WorkOfEvaluation();
    if (ValueAccess::FindEntry(map, *key) != nullptr) {
      all_new = false;
      continue;
    }
    ValuePtr copy = value != nullptr ? MakeValue(*value) : nullptr;
    all_new &= ValueAccess::InsertEntry(map, MakeValue(*key), std::move(copy));
  }
  return all_new;
}

IxoMepErrorEnum MapInsertAllFrom(MethodCall& call) {
  if (const auto code = CheckOne(call, Type::Map); code != IMEPERR_NONE) return code;
  return call.Return(InsertAll(call.receiver, call.Arg(0)));
}

struct Method {
  Type type;
  const char* const* name;  // the interned address, known once the library is loaded
  const char* shown_name;
  IxoMepErrorEnum (*body)(MethodCall&);
};

constexpr std::array<Method, 7> kMethods = {{
    {Type::String, &Names::IMEPSAM_COPY, "string.copy", &StringCopy},
    {Type::String, &Names::IMEPSAM_LAST_INDEX_OF, "string.lastIndexOf", &StringLastIndexOf},
    {Type::String, &Names::IMEPSAM_WITHOUT, "string.without", &StringWithout},
    {Type::String, &Names::IMEPSAM_TRIM, "string.trim", &StringTrim},
    {Type::Array, &Names::IMEPSAM_SORT, "array.sort", &ArraySort},
    {Type::Map, &Names::IMEPSAM_KEY, "map.key", &MapKey},
    {Type::Map, &Names::IMEPSAM_INSERT_ALL_FROM, "map.insertAllFrom", &MapInsertAllFrom},
}};

const Method* FindMethod(Type type, const char* name) noexcept {
  if (name == nullptr) return nullptr;
  for (const Method& method : kMethods) {
    if (method.type == type && *method.name == name) return &method;
  }
  return nullptr;
}

IxoMepErrorEnum RaiseUnknownMember(String& error_text, Type type, const char* name) {
  return Raise(error_text, IMEPERR_UNKNOWN_MEMBER,
               {{"%type", IxoMepValue::GetTypeName(type)}, {"%property", String(name)}});
}

// The text of an error inside a method stays; the text for a method that is not there is ours.
long CallObjectMethod(IxoMepObject* object, const char* name, const IxoMepValueList& args,
                      IxoMepValue*& result, String& error_text) {
  if (object == nullptr || !ObjectAccess::HasMethod(*object, name)) {
    return RaiseUnknownMember(error_text, Type::Object, name);
  }
  return object->EvaluateObjectMethodCall(name, args, result, error_text);
}

// The property of anything but an object.
IxoMepErrorEnum ReadProperty(const IxoMepValue& value, const char* name, IxoMepValue*& result,
                             String& error_text) {
  const Type type = value.GetType();
  const bool is_text = type == Type::String;
  const bool has_length = is_text || type == Type::Array || type == Type::Map;
  const bool asks_length = name == Names::IMEPSAM_LENGTH;
  if (name == nullptr || !has_length || !(asks_length || name == Names::IMEPSAM_EMPTY)) {
    return RaiseUnknownMember(error_text, type, name);
  }
  const std::int32_t length = is_text ? ValueAccess::Text(value).Len() : value.GetSize();
  StoreResult(result, IxoMepValue(asks_length ? length : (length == 0 ? 1 : 0)));
  return IMEPERR_NONE;
}

long ReadObjectProperty(const IxoMepObject* object, const char* name, IxoMepValue*& result,
                        String& error_text) {
  long code = IMEPERR_UNKNOWN_MEMBER;
  if (object != nullptr) code = object->GetObjectPropertyValue(name, result, error_text);
  if (code != IMEPERR_UNKNOWN_MEMBER) return code;
  return RaiseUnknownMember(error_text, Type::Object, name);
}

// The receiver may be gone when the method returns.
IxoMepErrorEnum CallMethod(IxoMepValue& receiver, const char* name, const IxoMepValueList& args,
                           IxoMepValue*& result, String& error_text) {
  const Method* const method = FindMethod(receiver.GetType(), name);
  if (method == nullptr) return RaiseUnknownMember(error_text, receiver.GetType(), name);
  MethodCall call{receiver, args, method->shown_name, error_text, {}, false};
  const IxoMepErrorEnum code = method->body(call);
  if (code == IMEPERR_NONE && call.has_result) StoreResult(result, std::move(call.result));
  return code;
}

}  // namespace

}  // namespace ixomep

long IxoMepValue::GetPropertyValue(const char* name, IxoMepValue*& result,
                                   String& errorText) const {
  return ixomep::CatchTooLong(errorText, [&]() -> long {
    if (type_ != Type::Object) return ixomep::ReadProperty(*this, name, result, errorText);
    return ixomep::ReadObjectProperty(payload_.object, name, result, errorText);
  });
}

// `strict` changes nothing here.
long IxoMepValue::EvaluateMethodCall(const char* name, const IxoMepValueList& args,
                                     IxoMepValue*& result, String& errorText, bool) {
  if (type_ == Type::Undefined) return IMEPERR_NONE;  // Meant: success without a result.
  const ixomep::OuterEntry entry;
  if (!entry.IsAllowed()) return ixomep::RaiseLimit(errorText);
  return ixomep::CatchTooLong(errorText, [&]() -> long {
    if (type_ != Type::Object) return ixomep::CallMethod(*this, name, args, result, errorText);
    return ixomep::CallObjectMethod(payload_.object, name, args, result, errorText);
  });
}
