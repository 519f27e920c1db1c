// The life of a value: construction by content and by type, copying, moving and the release of
// payloads. Storage of arrays and maps is value_rep.cpp's; what only expressions know is asked
// through engine_hooks.h.
#include "ixomep/values/value.h"

#include "ixomep/host/assertion.h"
#include "ixomep/values/engine_hooks.h"
#include "ixomep/values/free_list.h"
#include "ixomep/values/object.h"
#include "ixomep/values/units.h"
#include "ixomep/values/value_rep.h"

using ixomep::ValueAccess;
using Type = IxoMepValueType;

namespace {

using ValueBlocks = ixomep::FreeList<IxoMepValue, sizeof(IxoMepValue)>;

// The type's payload must never be read as anything: what the tag alone names is made neutral.
void SetTagOnly(IxoMepValue& value, IxoMepValueType& tag, IxoMepValueType type) {
  if (type == Type::String) ValueAccess::SetText(value, {});
  if (type == Type::Array || type == Type::Map) ValueAccess::MakeEmpty(value, type);
  tag = type;
}

}  // namespace

void* IxoMepValue::operator new(std::size_t) { return ValueBlocks::Take(); }

void IxoMepValue::operator delete(void* block) noexcept {
  if (block != nullptr) ValueBlocks::Give(block);
}

IxoMepValue::IxoMepValue(const String& text) noexcept : IxoMepValue() {
  ValueAccess::SetText(*this, text);
}

IxoMepValue::IxoMepValue(const char* text) : IxoMepValue() {
  ValueAccess::SetText(*this, String(text));
}

IxoMepValue::IxoMepValue(IxoMepValue* target) noexcept : type_(Type::Reference) {
  payload_.target = target;
}

IxoMepValue::IxoMepValue(IxoMepObject* object) noexcept : type_(Type::Object) {
  payload_.object = object;
}

IxoMepValue::IxoMepValue(IxoMepExprNode* lambda) noexcept : type_(Type::Lambda) {
  payload_.lambda = lambda;
}

IxoMepValue::IxoMepValue(const IxoMepExpressionParser* parser) : IxoMepValue() {
  if (parser != nullptr) payload_.expression = ixomep::CloneExpression(parser);
  type_ = Type::Expression;
}

IxoMepValue::IxoMepValue(IxoMepExpressionParser* parser, bool take) : IxoMepValue() {
  payload_.expression = take || parser == nullptr ? parser : ixomep::CloneExpression(parser);
  type_ = Type::Expression;
}

IxoMepValue::IxoMepValue(IxoMepValueType type) : IxoMepValue() {
  switch (type) {
    case Type::Integer:
      type_ = type;
      break;
    case Type::Real:
    case Type::Measure:
    case Type::Time:
      ValueAccess::SetNumber(*this, type, 0.0);
      break;
    case Type::Array:
    case Type::Map:
      ValueAccess::MakeEmpty(*this, type);
      break;
    case Type::Object:
      ValueAccess::SetObject(*this, new IxoMepObject);
      break;
    default:
      ixomep::ReportAssertion("a value cannot be made from this type alone");
      SetTagOnly(*this, type_, type);
  }
}

IxoMepValue::IxoMepValue(IxoMepValueType type, int n) : IxoMepValue() {
  switch (type) {
    case Type::Integer:
      ValueAccess::SetInteger(*this, n);
      break;
    case Type::Real:
    case Type::Measure:
    case Type::Time:
      ValueAccess::SetNumber(*this, type, n);
      break;
    case Type::Array:
      ValueAccess::MakeEmpty(*this, type);
      for (int i = 0; i < n; ++i) ValueAccess::AppendOwned(*this, ixomep::MakeValue());
      break;
    default:
      ixomep::ReportAssertion("a value of this type cannot be made from a whole number");
      SetTagOnly(*this, type_, type);
  }
}

IxoMepValue::IxoMepValue(IxoMepValueType type, double d) : IxoMepValue() {
  switch (type) {
    case Type::Integer:
      ValueAccess::SetInteger(*this, ixomep::ToInt32OrZero(d));
      break;
    case Type::Real:
    case Type::Measure:
    case Type::Time:
      ValueAccess::SetNumber(*this, type, d);
      break;
    default:
      ixomep::ReportAssertion("a value of this type cannot be made from a real number");
      SetTagOnly(*this, type_, type);
  }
}

IxoMepValue::IxoMepValue(IxoMepValueType type, const IxoMepValueList& list) : IxoMepValue() {
  if (type != Type::Array && type != Type::Map) {
    SetTagOnly(*this, type_, type);
    return;
  }
  ixomep::OwnedList owned;
  owned.View() = list;
  if (type == Type::Array) {
    ValueAccess::MakeArray(*this, std::move(owned));
  } else {
    ValueAccess::MakeEmpty(*this, type);
    ValueAccess::AddPairs(*this, std::move(owned));
  }
  ValueAccess::Pin(*this);  // the caller may have kept the elements' addresses
}

// Undefined until the copy is made, for making it may fail.
void IxoMepValue::CopyOwner(const IxoMepValue& other) {
  type_ = Type::Undefined;
  if (other.type_ == Type::Array || other.type_ == Type::Map) {
    ValueAccess::CopyContainer(*this, other);
  } else {
    ValueAccess::CopySimple(*this, other);
  }
}

IxoMepValue& IxoMepValue::AssignOwner(const IxoMepValue& other) {
  if (type_ == Type::String && other.type_ == Type::String) {
    ValueAccess::Text(*this) = ValueAccess::Text(other);
    return *this;
  }
  if (this == &other) return *this;
  IxoMepValue copy;
  if (other.type_ == Type::Array || other.type_ == Type::Map) {
    ValueAccess::CopyContainer(copy, other, this);
  } else {
    ValueAccess::CopySimple(copy, other);
  }
  return *this = std::move(copy);
}

// The old payload goes last: releasing it may run code of the host, which may look at this value.
IxoMepValue& IxoMepValue::ReplaceOwner(Type type, Payload payload) noexcept {
  const auto replace = [&] {
    type_ = type;
    payload_ = payload;
  };
  if (type_ == Type::String) {  // most often
    const String old(std::move(ValueAccess::Text(*this)));
    replace();
  } else {
    const IxoMepValue old(std::move(*this));
    replace();
  }
  return *this;
}

void IxoMepValue::Discard() noexcept {
  switch (type_) {
    case Type::String:
      ValueAccess::Text(*this).~String();
      break;
    case Type::Expression:
      if (payload_.expression != nullptr) ixomep::DestroyExpression(payload_.expression);
      break;
    case Type::Array:
      ValueAccess::DropList(payload_.list);
      break;
    case Type::Map:
      ValueAccess::DropMap(payload_.map);
      break;
    case Type::Lambda:
      if (payload_.lambda != nullptr) ixomep::DropLambda(payload_.lambda);
      break;
    case Type::Object:
      if (payload_.object != nullptr) payload_.object->DeleteReference();
      break;
    default:
      break;
  }
}

void ixomep::ValueAccess::CopySimple(IxoMepValue& to, const IxoMepValue& from) {
  switch (from.type_) {
    case Type::String:
      new (static_cast<void*>(&to.payload_.text)) String(Text(from));
      break;
    case Type::Expression:
      to.payload_.expression = from.payload_.expression == nullptr
                                   ? nullptr
                                   : ixomep::CloneExpression(from.payload_.expression);
      break;
    case Type::Lambda:
      to.payload_.lambda =
          from.payload_.lambda == nullptr ? nullptr : ixomep::KeepLambda(from.payload_.lambda);
      break;
    case Type::Object:
      // Meant: at the cap of an object's count the copy holds no object.
      to.payload_.object =
          from.payload_.object == nullptr ? nullptr : from.payload_.object->NewReference();
      break;
    default:
      to.payload_.bits = from.payload_.bits;
  }
  to.type_ = from.type_;
}
