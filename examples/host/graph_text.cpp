// Walks the elements with the query interface: SetCurElemIndex, then the getters by name.
#include "graph_text.h"

#include <utility>

#include "graph_expression.h"
#include "library_host.h"

namespace bakery {

IxoMepParser* GraphText::NewParser(const String& text, std::int32_t start, std::int32_t length,
                                   std::int32_t firstLine, const String& context) {
  return new GraphText(text, start, length, firstLine, context, graph_);
}

IxoMepExpressionParser* GraphText::NewExprParser() { return new GraphExpression(graph_); }

bool GraphText::Fail(std::string& problem, const std::string& sentence) const {
  String text(sentence);
  MakeErrorText(text);  // adds line and source of the current element
  problem = Utf8(text);
  return false;
}

bool GraphText::Read(std::string& problem) {
  if (Parse() != IMEPERR_NONE) {
    problem = Utf8(GetErrorContext()) + ":" + std::to_string(GetErrorLine()) + ":" +
              std::to_string(GetErrorColumn()) + ": error " + std::to_string(GetErrorCode()) +
              "\n" + Utf8(GetErrorText());
    return false;
  }
  for (std::int32_t i = 0; i < GetElemCount(); ++i) {
    SetCurElemIndex(i);
    if (!ReadElement(problem)) return false;
  }
  return true;
}

bool GraphText::ReadElement(std::string& problem) {
  struct Row {
    const char* keyword;
    bool (GraphText::*read)(std::string& problem);
  };
  static constexpr Row kRows[] = {
      {"GRAPH", &GraphText::ReadGraph}, {";", &GraphText::ReadStatement},
      {"KIND", &GraphText::ReadKind},   {"RESOURCE", &GraphText::ReadResource},
      {"TASK", &GraphText::ReadTask},   {"SUMMARY", &GraphText::ReadSummary},
  };
  const String keyword = GetKeyword(GetCurElemIndex());
  for (const Row& row : kRows) {
    if (keyword == row.keyword) return (this->*row.read)(problem);
  }
  return Fail(problem, "A library of this application has no element " + Utf8(keyword) + ".");
}

bool GraphText::ReadGraph(std::string& problem) {
  graph_.Scope().OldSetValue("graph", IxoMepValue(GetStrValue()), /*local=*/true);
  return SetVariables(graph_.Scope(), problem);
}

// A statement is kept as an expression; it means something once it is evaluated, here in the scope
// of the graph itself, so that what it assigns stays.
bool GraphText::ReadStatement(std::string& problem) {
  const std::unique_ptr<IxoMepExpressionParser> statement(CreateExprParserCopy());
  IxoMepValue* result = nullptr;
  String error;
  const IxoMepErrorEnum code = statement->Evaluate(&graph_.Scope(), result, error,
                                                   /*strict=*/false, /*ownScope=*/false);
  const std::unique_ptr<IxoMepValue> owner(result);
  return code == IMEPERR_NONE || Fail(problem, Utf8(error));
}

bool GraphText::ReadResource(std::string& problem) {
  if (ExpectValueType("rate", IxoMepValueType::Real, /*allowMissing=*/false) != IMEPERR_NONE) {
    problem = Utf8(GetErrorText());
    return false;
  }
  graph_.AddResource(GetStrValue(), {GetRealValue("rate"), GetRealValue("power")});
  return true;
}

bool GraphText::ReadKind(std::string& problem) {
  IxoMepParser* body = GetBodyParser();  // stays the element's
  if (body == nullptr) return Fail(problem, "A kind has a body of computed attributes.");
  for (std::int32_t i = 0; i < body->GetElemCount(); ++i) {
    body->SetCurElemIndex(i);
    Formula formula = FormulaOf(*body);
    if (formula.expression == nullptr) return Fail(problem, "A computed attribute has a value.");
    graph_.AddFormula(GetStrValue(), std::move(formula));
  }
  return true;
}

bool GraphText::ReadTask(std::string& problem) {
  Task& task = graph_.AddTask(GetStrValue());
  task.kind = GetModifier("kind");
  const std::unique_ptr<IxoMepValue> after = GetMapValue("after");
  for (long i = 0; after != nullptr && i < after->GetSize(); ++i) {
    task.after.push_back(after->GetValue(i)->GetStr());
  }
  return SetVariables(task.scope, problem);
}

bool GraphText::ReadSummary(std::string& problem) {
  Formula formula = FormulaOf(*this);
  if (formula.expression == nullptr) return Fail(problem, "A summary has a value.");
  graph_.AddSummary(std::move(formula));
  return true;
}

bool GraphText::SetVariables(IxoMepValueSet& scope, std::string& problem) {
  for (std::int32_t i = 0; i < GetAttrCount(); ++i) {
    const String name = GetAttrNameOfPos(i);
    if (GetValueOfPos(i) == nullptr) continue;  // a modifier, a body or a mere name
    std::unique_ptr<IxoMepValue> value = GetMapValue(name);
    if (value == nullptr) return Fail(problem, Utf8(name) + ": " + Utf8(GetErrorText()));
    scope.OldMoveValue(name, value.release(), /*local=*/true);
  }
  return true;
}

// What could be computed while the text was read is a plain value already; CreateExprParser makes
// a constant expression of it.
Formula GraphText::FormulaOf(const IxoMepParser& text) {
  const IxoMepValue* value = text.GetValue("value");
  Formula formula{text.GetStrValue(), text.GetStrValue("unit"), nullptr};
  if (value != nullptr) formula.expression.reset(value->CreateExprParser());
  return formula;
}

}  // namespace bakery
