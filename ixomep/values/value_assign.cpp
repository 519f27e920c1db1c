// Writing a value: assignment into slots, which keeps the identity of the value in the slot, and
// the setters.
#include "ixomep/host/assertion.h"
#include "ixomep/values/engine_hooks.h"
#include "ixomep/values/slot.h"
#include "ixomep/values/units.h"
#include "ixomep/values/value.h"
#include "ixomep/values/value_rep.h"

using ixomep::ValueAccess;
using Type = IxoMepValueType;

namespace {

// Rewrites the value in the slot, or puts a new one there.
void Store(IxoMepValue*& p, IxoMepValue&& content) { ixomep::StoreResult(p, std::move(content)); }

// Destroys the value in the slot after the new one stands there: it may own what was copied.
void Exchange(IxoMepValue*& p, ixomep::ValuePtr content) {
  delete std::exchange(p, content.release());
}

}  // namespace

void IxoMepValue::Assign(IxoMepValue*& p, const String& text) { Store(p, text); }
void IxoMepValue::Assign(IxoMepValue*& p, const char* text) { Store(p, text); }
void IxoMepValue::Assign(IxoMepValue*& p, short number) { Store(p, number); }
void IxoMepValue::Assign(IxoMepValue*& p, unsigned short number) { Store(p, number); }
void IxoMepValue::Assign(IxoMepValue*& p, int number) { Store(p, number); }
void IxoMepValue::Assign(IxoMepValue*& p, unsigned int number) { Store(p, number); }
void IxoMepValue::Assign(IxoMepValue*& p, long number) { Store(p, number); }
void IxoMepValue::Assign(IxoMepValue*& p, unsigned long number) { Store(p, number); }
void IxoMepValue::Assign(IxoMepValue*& p, double number) { Store(p, number); }

void IxoMepValue::Assign(IxoMepValue*& p, IxoMepValueType type, int n) {
  Store(p, IxoMepValue(type, n));
}

void IxoMepValue::Assign(IxoMepValue*& p, IxoMepValueType type, double d) {
  Store(p, IxoMepValue(type, d));
}

void IxoMepValue::Assign(IxoMepValue*& p, const IxoMepValue* source) {
  if (source == nullptr) {
    delete std::exchange(p, nullptr);
  } else if (p == nullptr) {
    p = new IxoMepValue(*source);
  } else {
    *p = *source;
  }
}

void IxoMepValue::Assign(IxoMepValue*& p, IxoMepValue* source, bool take) {
  if (source == nullptr) {
    if (p == nullptr || p->type_ != Type::Undefined) Exchange(p, ixomep::MakeValue());
    return;
  }
  if (take) {
    if (p != source) delete std::exchange(p, source);
    return;
  }
  if (p == nullptr || p->type_ != source->type_) {
    Exchange(p, ixomep::MakeValue(*source));
    return;
  }
  switch (p->type_) {
    case Type::String:
    case Type::Integer:
    case Type::Real:
    case Type::Time:
      *p = *source;
      break;
    case Type::Expression:
      p->SetExpr(source->payload_.expression);
      break;
    case Type::Measure:
      // Meant: this form, and only this form, drops the fractions of a measure.
      p->payload_.real = ixomep::WholeTenthsOf(source->payload_.real);
      break;
    default:
      ixomep::ReportAssertion("values of this type cannot be assigned in place");
  }
}

void IxoMepValue::SetInt(long number) { *this = IxoMepValue(number); }
void IxoMepValue::SetReal(double number) { ValueAccess::SetNumber(*this, Type::Real, number); }
void IxoMepValue::SetSec(double seconds) { ValueAccess::SetNumber(*this, Type::Time, seconds); }
void IxoMepValue::SetTMM(double tenths) { ValueAccess::SetNumber(*this, Type::Measure, tenths); }
void IxoMepValue::SetStr(const String& text) { ValueAccess::SetText(*this, text); }
void IxoMepValue::SetNull() noexcept { ValueAccess::SetUndefined(*this); }

// The clone comes first: the parser may be the one that this value holds.
void IxoMepValue::SetExpr(const IxoMepExpressionParser* parser) { *this = IxoMepValue(parser); }
