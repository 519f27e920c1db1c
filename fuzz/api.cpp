// Fuzz target: the interface as a host uses it. The input is a program: every byte chooses an
// operation on a few values, scopes, expression objects, parsers, objects and ports; the bytes
// behind it choose its operands. References refer only to values that live as long as the run.
#include <array>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "fuzz/support/api_parts.h"
#include "fuzz/support/bounds.h"
#include "fuzz/support/bytes.h"
#include "fuzz/support/evaluation.h"
#include "fuzz/support/fuzz_host.h"
#include "ixomep/expr/value_set_pool.h"
#include "ixomep/messages/message.h"
#include "ixomep/messages/message_port_manager.h"
#include "ixomep/parser/parser.h"
#include "ixomep/values/object.h"
#include "ixomep/values/slot.h"
#include "ixomep/values/string_address_map.h"

using namespace ixomep::fuzz;
using ixomep::Intern;
using ixomep::ValuePtr;
using Type = IxoMepValueType;

namespace {

constexpr int kMaxOperations = 300;
constexpr std::string_view kNames[] = {"a", "b", "c", "d", "f", "length", "p", "g"};
constexpr std::string_view kTexts[] = {"a := 1, b := {1, 2, a}",
                                       "f := lambda(x, x + a), f(2)",
                                       "b[1] := b",
                                       "m := {\"k\": 1}, m[\"k\"] := m",
                                       "for(i, 1, 5){a := i}",
                                       "d.p := c",
                                       "c",
                                       "b[0]",
                                       "d.g(1)",
                                       "b.sort(lambda(x, y, x < y))",
                                       "aappend(b, b), b",
                                       "try(1 / 0, a)"};

// Everything that the operations work on.
class Machine {
 public:
  explicit Machine(Bytes& bytes) : bytes_(bytes) {
    for (std::size_t i = 0; i < targets_.size(); ++i) {
      targets_[i] = IxoMepValue(static_cast<int>(i));
    }
    scopes_[1].SetParent(&scopes_[0]);
    scopes_[2].SetParent(&scopes_[1]);
  }

  void Run();

 private:
  IxoMepValue& Value() { return *values_[static_cast<std::size_t>(bytes_.Below(kCount))]; }
  IxoMepValueSet& Scope() { return scopes_[static_cast<std::size_t>(bytes_.Below(3))]; }
  IxoMepExpressionParser& Parser() {
    return parsers_[static_cast<std::size_t>(bytes_.Below(kCount))];
  }
  String Name() { return String(bytes_.Pick(kNames)); }
  const char* Address() { return Intern(bytes_.Pick(kNames)); }
  // An index of an array, near its bounds; the unchecked members need one inside.
  long Index(const IxoMepValue& array) { return bytes_.Below(array.GetSize()); }
  static bool HasElements(const IxoMepValue& value) {
    return value.GetType() == Type::Array && value.GetSize() > 0;
  }
  // Containers are kept small: a value that holds itself doubles with every copy.
  void Trim(IxoMepValue& value) {
    if (value.GetType() >= Type::Expression && value.GetText().Len() > 2000) value.SetNull();
  }

  void Make();
  void Assign();
  void Read();
  void EditContainer();
  void CallMethod();
  void UseScope();
  void UseParser();
  void UseObject();
  void UseDefinition();
  void UsePorts();

  static constexpr int kCount = 6;
  Bytes& bytes_;
  Objects objects_;
  std::array<IxoMepValue, 4> targets_;
  std::array<ValuePtr, kCount> values_ = {
      ixomep::MakeValue(), ixomep::MakeValue(1),           ixomep::MakeValue("text"),
      ixomep::MakeValue(), ixomep::MakeValue(Type::Array), ixomep::MakeValue(Type::Map)};
  std::array<IxoMepValueSet, 3> scopes_;
  std::array<IxoMepExpressionParser, kCount> parsers_;
  std::array<std::unique_ptr<Port>, 3> ports_;
};

void Machine::Make() {
  IxoMepValue& value = Value();
  switch (bytes_.Below(12)) {
    case 0:
      value = IxoMepValue(String(bytes_.Text()));
      break;
    case 1:
      value = IxoMepValue(bytes_.Integer());
      break;
    case 2:
      value = IxoMepValue(bytes_.Real());
      break;
    case 3:
      value = IxoMepValue(static_cast<Type>(bytes_.Byte()));
      if (value.GetObject() != nullptr) objects_.Add(value);
      break;
    case 4:
      value = IxoMepValue(static_cast<Type>(bytes_.Below(16)), bytes_.Below(50));
      break;
    case 5:
      value = IxoMepValue(static_cast<Type>(bytes_.Below(16)), bytes_.Real());
      break;
    case 6:
      value = IxoMepValue(&targets_[static_cast<std::size_t>(bytes_.Below(4))]);
      break;
    case 7:
      value = IxoMepValue(&Parser());
      break;
    case 8:
      value = IxoMepValue(bytes_.Truth());
      break;
    case 9:
      // A chain of references; a circle when it comes back.
      targets_[static_cast<std::size_t>(bytes_.Below(4))] =
          IxoMepValue(&targets_[static_cast<std::size_t>(bytes_.Below(4))]);
      break;
    case 10: {
      IxoMepValueList list;
      for (int i = bytes_.Below(5); i > 0; --i) list.push_back(new IxoMepValue(Value()));
      value = IxoMepValue(bytes_.Truth() ? Type::Array : Type::Map, list);
      break;
    }
    default:
      value = IxoMepValue(static_cast<const char*>(nullptr));
      break;
  }
}

void Machine::Assign() {
  ValuePtr& place = values_[static_cast<std::size_t>(bytes_.Below(kCount))];
  Slot slot(place, bytes_.Truth());
  IxoMepValue*& raw = slot.raw;
  switch (bytes_.Below(8)) {
    case 0:
      IxoMepValue::Assign(raw, String(bytes_.Text()));
      break;
    case 1:
      IxoMepValue::Assign(raw, bytes_.Integer());
      break;
    case 2:
      IxoMepValue::Assign(raw, bytes_.Real());
      break;
    case 3:
      IxoMepValue::Assign(raw, static_cast<Type>(bytes_.Below(16)), bytes_.Integer());
      break;
    case 4:
      IxoMepValue::Assign(raw, static_cast<Type>(bytes_.Below(16)), bytes_.Real());
      break;
    case 5:
      IxoMepValue::Assign(raw, new IxoMepValue(targets_[0]), true);
      break;
    case 6:
      IxoMepValue::Assign(raw, &targets_[1], false);
      break;
    default:
      IxoMepValue::Assign(raw, static_cast<const IxoMepValue*>(&targets_[2]));
      break;
  }
}

void Machine::Read() {
  const IxoMepValue& value = Value();
  (void)value.GetInt();
  (void)value.GetReal();
  (void)value.GetSec();
  (void)value.GetTMM();
  (void)value.GetTPt();
  (void)value.GetStr();
  (void)value.GetText(bytes_.Truth());
  (void)value.IsNum();
  (void)value.GetSize();
  (void)value.GetReferencedValue();
  (void)value.GetExpr();
  (void)value.GetLambda();
  const IxoMepValue& other = Value();
  (void)(value == other);
  (void)(value < other);
  (void)(value > other);
  (void)value.GetValueOfMap(&other);
  const ValuePtr keys(value.GetType() == Type::Map ? value.GetKeysOfMap() : nullptr);
  const std::unique_ptr<IxoMepExpressionParser> expression(value.CreateExprParser());
  IxoMepValue* property = nullptr;
  String text;
  const long code = value.GetPropertyValue(Address(), property, text);
  Check((code == 0) == (property != nullptr), "a property or a code");
  const ValuePtr owner(property);
}

void Machine::EditContainer() {
  IxoMepValue& value = Value();
  const IxoMepValue key(Value());
  const IxoMepValue other(Value());
  switch (bytes_.Below(11)) {
    case 0:
      if (value.GetType() == Type::Array) value.Append(new IxoMepValue(other));
      break;
    case 1:
      if (HasElements(value)) value.Insert(Index(value), new IxoMepValue(other));
      break;
    case 2:
      if (HasElements(value)) value.Erase(Index(value));
      break;
    case 3:
      value.Erase(&key);
      break;
    case 4:
      (void)value.SetValue(&key, &other);
      break;
    case 5:
      if (HasElements(value)) value.SetValue(Index(value), &other);
      break;
    case 6:
      if (value.GetType() == Type::Map || value.GetType() == Type::Object) {
        value.MoveValue(Name(), new IxoMepValue(other));
      }
      break;
    case 7:
      if (HasElements(value)) value.GetValue(Index(value))->SetInt(bytes_.Integer());
      break;
    case 8:
      if (HasElements(value)) *value.GetValue(Index(value)) = other;
      break;
    case 9: {
      IxoMepValue** const slot = value.GetpValueOfMap(&key);
      if (value.GetType() == Type::Map && *slot == nullptr) *slot = new IxoMepValue(other);
      break;
    }
    default:
      switch (bytes_.Below(6)) {
        case 0:
          value.SetInt(bytes_.Integer());
          break;
        case 1:
          value.SetReal(bytes_.Real());
          break;
        case 2:
          value.SetSec(bytes_.Real());
          break;
        case 3:
          value.SetTMM(bytes_.Real());
          break;
        case 4:
          value.SetStr(String(bytes_.Text()));
          break;
        default:
          value.SetExpr(&Parser());
          break;
      }
      break;
  }
  Trim(value);
}

void Machine::CallMethod() {
  const char* const methods[] = {IxoMepStringAddressMap::IMEPSAM_COPY,
                                 IxoMepStringAddressMap::IMEPSAM_EMPTY,
                                 IxoMepStringAddressMap::IMEPSAM_ERASE,
                                 IxoMepStringAddressMap::IMEPSAM_ERASE_ALL_FROM,
                                 IxoMepStringAddressMap::IMEPSAM_INSERT,
                                 IxoMepStringAddressMap::IMEPSAM_INSERT_ALL_FROM,
                                 IxoMepStringAddressMap::IMEPSAM_KEY,
                                 IxoMepStringAddressMap::IMEPSAM_LAST_INDEX_OF,
                                 IxoMepStringAddressMap::IMEPSAM_LENGTH,
                                 IxoMepStringAddressMap::IMEPSAM_SORT,
                                 IxoMepStringAddressMap::IMEPSAM_TRIM,
                                 IxoMepStringAddressMap::IMEPSAM_WITHOUT,
                                 Intern("g")};
  IxoMepValue& value = Value();
  const char* const name = bytes_.Pick(methods);
  std::vector<IxoMepValue> copies;
  for (int i = bytes_.Below(4); i > 0; --i) copies.push_back(Value());
  IxoMepValueList args;
  for (IxoMepValue& copy : copies) args.push_back(&copy);
  ValuePtr place = ixomep::MakeValue(7);
  {
    Slot slot(place, bytes_.Truth());
    String text;
    (void)value.EvaluateMethodCall(name, args, slot.raw, text, bytes_.Truth());
  }
  Trim(value);
}

void Machine::UseScope() {
  IxoMepValueSet& scope = Scope();
  switch (bytes_.Below(10)) {
    case 0:
      scope.OldSetValue(Name(), Value(), bytes_.Truth());
      break;
    case 1:
      scope.NewSetValue(Address(), Value(), bytes_.Truth());
      break;
    case 2:
      scope.OldMoveValue(Name(), new IxoMepValue(Value()), bytes_.Truth());
      break;
    case 3:
      Value() = *scope.OldGetValue(Name());
      break;
    case 4:
      *scope.NewGetLValue(Address()) = Value();
      break;
    case 5: {
      IxoMepValueSetMap all;
      scope.GetAllVars(all, bytes_.Truth());
      for (const auto& [name, value] : all) delete value;
      break;
    }
    case 6:
      scope.Assign(Scope());
      break;
    case 7:
      scope.Clear();
      break;
    case 8: {
      // Many names, so that buckets hold several.
      for (int i = bytes_.Below(80); i > 0; --i) {
        scope.OldSetValue(String("v" + std::to_string(i)), IxoMepValue(i), true);
      }
      break;
    }
    default: {
      const ixomep::PooledScope pooled(&scope);
      pooled->OldSetValue(Name(), Value(), true);
      break;
    }
  }
}

void Machine::UseParser() {
  IxoMepExpressionParser& parser = Parser();
  String text;
  switch (bytes_.Below(9)) {
    case 0:
      (void)parser.SetExpression(String(bytes_.Pick(kTexts)), text);
      break;
    case 1:
      (void)parser.SetExpression(String(bytes_.Text()), text);
      break;
    case 2:
      parser = Parser();
      break;
    case 3:
      parser.SetConstant(Value());
      break;
    case 4: {
      IxoMepValue value(Value());
      (void)parser.AssignToLValue(&value, &Scope(), text);
      break;
    }
    case 5: {
      const std::unique_ptr<IxoMepExpressionParser> copy(parser.CreateCopy());
      (void)copy->GetExpression(&Scope());
      (void)copy->IsJustOneVarContained(Name());
      (void)parser.GetConstant();
      break;
    }
    case 6: {
      const std::unique_ptr<IxoMepExpressionParser> constant(
          IxoMepExpressionParser::CreateConstantEP(Value()));
      Value().SetExpr(constant.get());
      break;
    }
    default: {
      ValuePtr& place = values_[static_cast<std::size_t>(bytes_.Below(kCount))];
      {
        Slot slot(place, bytes_.Truth());
        IxoMepValueSet* const scope = bytes_.Below(8) == 0 ? nullptr : &Scope();
        const IxoMepErrorEnum code =
            parser.Evaluate(scope, slot.raw, text, bytes_.Below(4) == 0, bytes_.Truth());
        Check(code == IMEPERR_NONE || code == IMEPERR_UNEXPECTED_TYPE || slot.raw == nullptr,
              "a failure leaves a value");
      }
      Trim(*place);
      break;
    }
  }
}

void Machine::UseObject() {
  IxoMepValue& value = Value();
  if (value.GetObject() == nullptr) value = objects_.Make();
  IxoMepObject* const object = value.GetObject();
  switch (bytes_.Below(5)) {
    case 0:
      object->MoveValue(Name(), new IxoMepValue(targets_[0]));
      break;
    case 1:
      object->SetNativeMethod(Name(),
                              [](IxoMepObject* self, const IxoMepValueList& args,
                                 IxoMepValue*& result, String& text) -> long {
                                if (args.empty()) {
                                  text = "nothing given";
                                  return IMEPERR_WRONG_ARGUMENT_COUNT;
                                }
                                self->MoveValue("last", new IxoMepValue(1));
                                IxoMepValue::Assign(result,
                                                    static_cast<const IxoMepValue*>(args[0]));
                                return IMEPERR_NONE;
                              });
      break;
    case 2: {
      const IxoMepValue copy(value);
      (void)object->GetText();
      break;
    }
    case 3: {
      IxoMepValue* property = nullptr;
      String text;
      if (object->GetObjectPropertyLValue(Address(), property, text) == IMEPERR_NONE) {
        *property = IxoMepValue(bytes_.Integer());
      }
      break;
    }
    default:
      (void)object->FindProperty(Name());
      break;
  }
}

void Machine::UseDefinition() {
  IxoMepParser parser(String(bytes_.Text()), "api");
  parser.SetVars(&Scope());
  (void)parser.Parse();
  (void)parser.GetStrValue(Name());
  (void)parser.GetIntValue();
  parser.SetText(String(bytes_.Text()));
  (void)parser.Parse();
  (void)parser.GetElemText(0);
}

void Machine::UsePorts() {
  const auto which = static_cast<std::size_t>(bytes_.Below(3));
  const char* const name = kPorts[which]();
  switch (bytes_.Below(5)) {
    case 0:
      ports_[which].reset();
      ports_[which] = std::make_unique<Port>(name, ports_[which]);
      break;
    case 1:
      ports_[which].reset();
      break;
    case 2: {
      IxoMessage message(bytes_.Truth() ? "go" : "stay");
      message.SendToAll();
      (void)message.GetAnswer();
      break;
    }
    case 3: {
      IxoMessage message(bytes_.Truth() ? "go" : "stay");
      const bool heard = message.SendTo(name);
      Check(heard != message.GetAnswer().IsEmpty(), "a message that was heard is answered");
      break;
    }
    default:
      (void)IxoMessagePortManager::Instance().ExistsMessagePort(name);
      (void)IxoMessagePortManager::Instance().GetMPNameStrAddress(Name());
      break;
  }
}

void Machine::Run() {
  using Step = void (Machine::*)();
  static constexpr Step kSteps[] = {
      &Machine::Make,     &Machine::Assign,       &Machine::Read,      &Machine::EditContainer,
      &Machine::UseScope, &Machine::UseParser,    &Machine::UseObject, &Machine::CallMethod,
      &Machine::UsePorts, &Machine::UseDefinition};
  for (int i = 0; i < kMaxOperations && !bytes_.IsEmpty(); ++i) (this->*bytes_.Pick(kSteps))();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const FuzzHost host;
  const Bounds bounds;
  Bytes bytes(data, size);
  try {
    Machine(bytes).Run();
  } catch (const std::bad_alloc&) {
    // Copying values by hand passes the bound on memory; the interface for that is the exception.
  }
  return 0;
}
