// The objects of the public interface, made of the records of a document when they are asked for.
// See document.h.
#include <new>
#include <utility>

#include "ixomep/expr/expression_parser.h"
#include "ixomep/host/memory_budget.h"
#include "ixomep/parser/document.h"
#include "ixomep/parser/literal_reader.h"
#include "ixomep/parser/parser.h"
#include "ixomep/values/value_rep.h"

namespace ixomep {
namespace {

static_assert(sizeof(IxoMepParser) == sizeof(BodySlot));

std::int32_t IntegerOf(std::string_view digits) noexcept {
  const bool is_negative = digits.front() == '-';
  std::int32_t number = 0;
  for (const char digit : digits.substr(is_negative ? 1 : 0)) number = number * 10 + (digit - '0');
  return is_negative ? -number : number;
}

}  // namespace

Document::~Document() {
  for (std::uint32_t i = 0; i < objects_.Size(); ++i) delete objects_[i];
  for (std::uint32_t i = 0; !slots_.IsEmpty() && i < bodies_.Size(); ++i) {
    if (IxoMepParser* const parser = MadeParser(i)) parser->~IxoMepParser();
  }
}

IxoMepValue Document::ReadLiteral(const LiteralRecord& literal) const {
  const std::string_view bytes = text_.view();
  switch (literal.Kind()) {
    case LiteralKind::String:
    case LiteralKind::Escaped: {
      const std::string_view content = bytes.substr(literal.at, literal.size);
      IxoMepValue value;
      ValueAccess::SetText(
          value, literal.Kind() == LiteralKind::String ? String(content) : Unescape(content));
      return value;
    }
    case LiteralKind::Integer:
      return IxoMepValue(IntegerOf(bytes.substr(literal.at, literal.size)));
    case LiteralKind::Measure:
      return IxoMepValue(IxoMepValueType::Measure,
                         NumberOfPlainMeasure(bytes.substr(literal.at, literal.size)));
    case LiteralKind::Time:
      return IxoMepValue(IxoMepValueType::Time,
                         NumberOfPlainMeasure(bytes.substr(literal.at, literal.size)));
    case LiteralKind::Source:
      return std::move(*CompileSource(literal));
    default: {
      LiteralContext context(nullptr, 0);
      std::size_t position = literal.at;
      const ValuePtr value = ixomep::ReadLiteral({bytes}, position, context);
      if (value == nullptr) MemoryBudget::Refuse();
      return std::move(*value);
    }
  }
}

ValuePtr Document::CompileSource(const LiteralRecord& literal) const {
  auto expression = std::make_unique<IxoMepExpressionParser>();
  String error_text;
  const String source(text_.view().substr(literal.at, literal.size));
  // Known to be right: only memory can be missing.
  if (expression->SetExpression(source, error_text) != IMEPERR_NONE) MemoryBudget::Refuse();
  expression->SetLineNo(static_cast<std::uint32_t>(LineAt(literal.at)));
  ValuePtr value = MakeValue(expression.get(), true);
  (void)expression.release();
  return value;
}

// Null for none, and for a value that nobody else gets: MakeObject takes it in the end.
ValuePtr Document::MakeValueOf(const LiteralRecord& literal, std::uint32_t start) const {
  switch (literal.Kind()) {
    case LiteralKind::None:
    case LiteralKind::Body:
      return nullptr;
    case LiteralKind::Made:
      break;
    case LiteralKind::Source:
      return CompileSource(literal);
    default:
      return MakeValue(ReadLiteral(literal));
  }
  const MadeValue& made = made_[literal.at];
  if (!made.is_shared) return nullptr;
  const IxoMepExpressionParser* const expression = made.value->GetExpr();
  if (made.value->GetType() != IxoMepValueType::Expression) return MakeValue(*made.value);
  std::unique_ptr<IxoMepExpressionParser> copy(expression->CreateCopy());
  copy->SetLineNo(static_cast<std::uint32_t>(LineAt(start + literal.size)));
  ValuePtr value = MakeValue(copy.get(), true);
  (void)copy.release();
  return value;
}

IxoMepElement* Document::ElementObject(std::uint32_t index, bool is_loose,
                                       IxoMepParser* parser) const {
  if (objects_.IsEmpty()) objects_.AssignZero(elements_.Size());
  IxoMepElement*& object = objects_[index];
  if (object == nullptr) {
    const auto offset = is_loose ? -1 : static_cast<std::int32_t>(elements_[index].start);
    object = MakeObject(index, parser, offset).release();
  }
  return object;
}

std::unique_ptr<IxoMepElement> Document::TakeObject(std::uint32_t index) const noexcept {
  if (objects_.IsEmpty()) return nullptr;
  return std::unique_ptr<IxoMepElement>(std::exchange(objects_[index], nullptr));
}

std::unique_ptr<IxoMepElement> Document::MakeObject(std::uint32_t index, IxoMepParser* parser,
                                                    std::int32_t offset) const {
  const ElementRecord& record = elements_[index];
  auto element = std::make_unique<IxoMepElement>(names_.Text(record.keyword), parser, offset,
                                                 LineAt(record.start));
  element->value_ = MakeValueOf(record.literal, record.start);
  element->attributes_.reserve(record.attribute_count);
  for (std::uint32_t i = 0; i < record.attribute_count; ++i) {
    const AttributeRecord& from = attributes_[record.first_attribute + i];
    auto attribute = std::make_unique<IxoMepAttribute>(names_.Text(from.name));
    if (from.modifier != NameTable::kNoName) attribute->SetModifier(names_.Text(from.modifier));
    attribute->value_ = MakeValueOf(from.literal, record.start);
    if (from.literal.Kind() == LiteralKind::Body) {
      attribute->body_ = BodyPtr(BodyParser(from.literal.at), BodyDeleter{/*is_borrowed=*/true});
    }
    element->attributes_.push_back(std::move(attribute));
  }
  if (record.body != kNoRecord) {
    element->body_ = BodyPtr(BodyParser(record.body), BodyDeleter{/*is_borrowed=*/true});
  }
  // Nothing fails any more: what exists once is taken now.
  const auto take = [this](const LiteralRecord& literal, ValuePtr& value) {
    if (literal.Kind() != LiteralKind::Made) return;
    const MadeValue& made = made_[literal.at];
    if (!made.is_shared) value = std::move(made_[literal.at].value);
  };
  take(record.literal, element->value_);
  for (std::uint32_t i = 0; i < record.attribute_count; ++i) {
    take(attributes_[record.first_attribute + i].literal, element->attributes_[i]->value_);
  }
  return element;
}

IxoMepParser* Document::BodyParser(std::uint32_t index) const {
  if (IxoMepParser* const made = MadeParser(index)) return made;
  if (slots_.IsEmpty()) {
    slots_.Reserve(bodies_.Size() + 1);
    slots_.Push({this, 0});
  }
  const BodyRecord& body = bodies_[index];
  const std::uint32_t count = CountOf(index);
  std::uint32_t current = body.first;
  if (count == 0) {
    current = body.has_loose != 0 ? current - 1 : kNoRecord;
  } else if (body.is_left_at_last != 0) {
    current += count - 1;
  }
  body.has_parser = 1;
  return new (static_cast<void*>(ParserAt(index))) IxoMepParser(index, current);
}

void Document::SetVarsOf(std::uint32_t body, IxoMepValueSet* vars) const {
  if (vars_.IsEmpty()) {
    if (vars == nullptr) return;
    vars_.AssignZero(bodies_.Size());
  }
  vars_[body] = vars;
}

}  // namespace ixomep
