// The text form of a value. Arrays, maps and objects are written with a stack of their own, so
// that values of any depth have a text, in time linear in its length.
#include <exception>
#include <utility>
#include <variant>
#include <vector>

#include "ixomep/host/core_time.h"
#include "ixomep/host/limit_watch.h"
#include "ixomep/host/numbers.h"
#include "ixomep/values/engine_hooks.h"
#include "ixomep/values/mep_text.h"
#include "ixomep/values/object_access.h"
#include "ixomep/values/units.h"
#include "ixomep/values/value.h"
#include "ixomep/values/value_rep.h"

namespace ixomep {

namespace {

using Type = IxoMepValueType;

// Marks an object as being written for as long as it lives: an object that is reached from its
// own properties is not written again.
class RenderingMark {
 public:
  explicit RenderingMark(const IxoMepObject& object) : object_(&object) {
    ObjectAccess::Rendering(object) = true;
  }
  RenderingMark(RenderingMark&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  RenderingMark& operator=(RenderingMark&&) = delete;
  ~RenderingMark() {
    if (object_ != nullptr) ObjectAccess::Rendering(*object_) = false;
  }

 private:
  const IxoMepObject* object_;
};

struct OpenList {
  const ElementList* items;
  std::size_t next = 0;
};

struct OpenMap {
  IxoMepValueMap::const_iterator next, end;
  bool first = true;
  bool at_value = false;
};

struct OpenObject {
  std::map<String, IxoMepValue*>::const_iterator next, end;
  RenderingMark mark;
  bool first = true;
};

class TextWriter {
 public:
  void Write(const IxoMepValue& value, bool period) {
    Start(value, period);
    Finish();
  }
  void Write(const IxoMepObject& object) {
    StartObject(object);
    Finish();
  }
  String Take() { return std::move(out_); }

 private:
  using Open = std::variant<OpenList, OpenMap, OpenObject>;

  // Hosts ask for texts themselves and expect no exception: interrupted, there is no text.
  void Finish() {
    while (!open_.empty()) {
      if (!LimitWatch::MayWorkOn()) {
        open_.clear();
        out_.Clear();
        return;
      }
      std::visit([this](auto& top) { Continue(top); }, open_.back());
    }
  }

  // Writes a value, or its opening brace when there is more to it.
  void Start(const IxoMepValue& value, bool period) {
    switch (value.GetType()) {
      case Type::String:
        AppendMepTextOfString(out_, ValueAccess::Text(value));
        break;
      case Type::Integer:
        out_ += StringFromInteger(ValueAccess::Integer(value));
        break;
      case Type::Real:
        WriteReal(ValueAccess::Number(value), period);
        break;
      case Type::Measure:
        out_ += MepTextOfTenths(WholeTenthsOf(ValueAccess::Number(value)));
        break;
      case Type::Time:
        out_ += IxoCoreTime(ValueAccess::Number(value)).asString();
        break;
      case Type::Expression:
        WriteExpression(ValueAccess::Expression(value));
        break;
      case Type::Array:
        out_ += '{';
        open_.emplace_back(OpenList{&ValueAccess::Items(value)});
        break;
      case Type::Map: {
        const IxoMepValueMap& entries = ValueAccess::Entries(value);
        out_ += '{';
        open_.emplace_back(OpenMap{entries.begin(), entries.end()});
        break;
      }
      case Type::Reference:
        out_ += "(reference)";
        break;
      case Type::Object:
        if (ValueAccess::Object(value) != nullptr) {
          StartObject(*ValueAccess::Object(value));
        } else {
          out_ += "OBJECT{}";
        }
        break;
      default:
        out_ += "(undefined)";
    }
  }

  void WriteReal(double number, bool period) {
    char buffer[kFormatRealSize];
    out_ += FormatReal(number, period, buffer);
  }

  // An expression may hold a constant, which may hold an expression, each on native stack.
  void WriteExpression(const IxoMepExpressionParser* parser) {
    if (parser == nullptr) return;
    if (!HasStack()) throw std::bad_alloc();
    out_ += TextOfExpression(parser);
  }

  void StartObject(const IxoMepObject& object) {
    if (ObjectAccess::Rendering(object)) {
      out_ += "OBJECT{...}";
      return;
    }
    const auto& properties = ObjectAccess::Properties(object);
    out_ += "OBJECT{";
    open_.emplace_back(OpenObject{properties.begin(), properties.end(), RenderingMark(object)});
  }

  // Each writes one element more, or closes. `top` is gone when something was opened.
  void Continue(OpenList& top) {
    if (top.next == top.items->size()) {
      Close();
      return;
    }
    if (top.next > 0) out_ += ", ";
    StartSlot((*top.items)[top.next++]);
  }

  void Continue(OpenMap& top) {
    if (top.next == top.end) {
      Close();
      return;
    }
    if (std::exchange(top.at_value, !top.at_value)) {
      out_ += ": ";
      StartSlot((top.next++)->second);
      return;
    }
    if (!std::exchange(top.first, false)) out_ += ", ";
    StartSlot(top.next->first);
  }

  void Continue(OpenObject& top) {
    if (top.next == top.end) {
      Close();
      return;
    }
    if (!std::exchange(top.first, false)) out_ += ", ";
    out_ += top.next->first;
    out_ += ": ";
    StartSlot((top.next++)->second);
  }

  void StartSlot(const IxoMepValue* value) {
    Start(value != nullptr ? *value : *IxoMepValue::GetNull(), false);
  }

  void Close() {
    out_ += '}';
    open_.pop_back();
  }

  String out_;
  std::vector<Open> open_;
};

}  // namespace

}  // namespace ixomep

String ixomep::ValueAccess::TextOf(const IxoMepValue& value, bool period) {
  TextWriter writer;
  writer.Write(value, period);
  return writer.Take();
}

String IxoMepValue::GetText(bool period) const {
  try {
    return ixomep::ValueAccess::TextOf(*this, period);
  } catch (const std::exception&) {  // too long, or no memory
    return {};
  }
}

String IxoMepObject::GetText() const {
  try {
    ixomep::TextWriter writer;
    writer.Write(*this);
    return writer.Take();
  } catch (const std::exception&) {
    return {};
  }
}
