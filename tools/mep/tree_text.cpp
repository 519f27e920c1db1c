// One line an element or attribute:
//   KEYWORD type value
//     name: modifier: type value
//     name: expression (source) -> type value
// Bodies stand in braces, one level deeper. The walk keeps its own stack: bodies may nest as deep
// as a text likes.
#include "tools/mep/tree_text.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "ixomep/expr/expression_parser.h"
#include "tools/mep/diagnostics.h"
#include "tools/mep/expressions.h"
#include "tools/mep/limits.h"
#include "tools/mep/output.h"

namespace mep {
namespace {

constexpr std::size_t kMaxIndent = 120;  // steps of two blanks; what lies deeper stays there

// Where the walk stands in one body: the element, and the attribute of it that is next.
struct Level {
  const IxoMepParser* body;
  std::int32_t element;
  std::int32_t end;
  std::int32_t attribute = -1;  // -1: the element's own line is next
  bool body_done = false;
};

std::string TypedText(const IxoMepValue& value) {
  std::string text(IxoMepValue::GetTypeName(value.GetType()).view());
  if (value.GetType() == IxoMepValueType::Undefined) return text;
  return text + " " + std::string(value.GetText(/*period=*/true).view());
}

std::string NeedsText(const std::vector<String>& names) {
  std::string text = "needs ";
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (i > 0) text += ", ";
    text += names[i].view();
  }
  return text;
}

class TreeWriter {
 public:
  TreeWriter(const std::string& source, IxoMepValueSet& scope, Output& output,
             Diagnostics& diagnostics)
      : source_(source), scope_(scope), output_(output), diagnostics_(diagnostics) {}

  void Write(const IxoMepParser& parser, std::int32_t begin, std::int32_t end) {
    levels_.push_back({&parser, begin, end});
    while (!levels_.empty()) Step();
  }

 private:
  void Line(std::size_t deeper, const std::string& text) {
    const std::size_t indent = std::min((levels_.size() - 1) * 2 + deeper, kMaxIndent);
    output_.Write(std::string(indent * 2, ' ') + text + "\n");
  }

  void Enter(const IxoMepParser* body) { levels_.push_back({body, 0, body->GetElemCount()}); }

  void Step() {
    CheckTime();
    Level& level = levels_.back();
    if (level.element >= level.end) {
      levels_.pop_back();
      if (!levels_.empty()) Line(1, "}");
      return;
    }
    const IxoMepElement& element = ElementAt(*level.body, level.element);
    if (level.attribute < 0) {
      level.attribute = 0;
      WriteElement(element);
    } else if (level.attribute < element.GetAttrCount()) {
      WriteAttribute(*element.GetAttr(level.attribute++));
    } else if (!level.body_done && element.GetBodyParser() != nullptr) {
      level.body_done = true;
      Line(1, "{");
      Enter(element.GetBodyParser());
    } else {
      level = {level.body, level.element + 1, level.end};
    }
  }

  void WriteElement(const IxoMepElement& element) {
    const std::string keyword(element.GetKeyword().view());
    const IxoMepValue* value = element.GetValue();
    line_ = element.GetLine();
    if (value == nullptr) {
      Line(0, keyword);
    } else if (keyword == ";" && value->GetExpr() != nullptr) {
      const IxoMepExpressionParser& statement = *value->GetExpr();
      const Evaluation evaluation = EvaluateStatement(statement, scope_);
      Line(0, std::string(statement.GetOriginalExpression().view()) + ";" +
                  (evaluation.value ? " -> " + TypedText(*evaluation.value)
                                    : " -> failed: " + std::string(evaluation.error_text.view())));
    } else {
      Line(0, keyword + " " + ValueText(*value));
    }
  }

  void WriteAttribute(const IxoMepAttribute& attribute) {
    std::string text(attribute.GetName().view());
    if (!attribute.GetModifier().IsEmpty()) {
      text += ": " + std::string(attribute.GetModifier().view());
    }
    if (attribute.GetValue() != nullptr) text += ": " + ValueText(*attribute.GetValue());
    if (attribute.GetBodyParser() == nullptr) {
      Line(1, text);
    } else {
      Line(1, text + ": {");
      Enter(attribute.GetBodyParser());
    }
  }

  // The value with its type; of an expression the source and what came of it.
  std::string ValueText(const IxoMepValue& value) {
    const IxoMepExpressionParser* expression = value.GetExpr();
    if (expression == nullptr) return TypedText(value);
    const Evaluation evaluation = EvaluateAttribute(*expression, scope_);
    const std::string text = "expression " + SourceOf(*expression) + " -> ";
    if (evaluation.value) return text + TypedText(*evaluation.value);
    if (!evaluation.missing.empty()) return text + NeedsText(evaluation.missing);
    ReportIfError(evaluation, *expression, source_, line_, diagnostics_);
    return text + "failed: " + std::string(evaluation.error_text.view());
  }

  const std::string& source_;
  IxoMepValueSet& scope_;
  Output& output_;
  Diagnostics& diagnostics_;
  std::vector<Level> levels_;
  long line_ = 0;
};

}  // namespace

void WriteTree(const IxoMepParser& parser, const std::string& source, IxoMepValueSet& scope,
               Output& output, Diagnostics& diagnostics) {
  TreeWriter(source, scope, output, diagnostics).Write(parser, 0, parser.GetElemCount());
}

void WriteElementTree(const IxoMepParser& parser, std::int32_t index, const std::string& source,
                      IxoMepValueSet& scope, Output& output, Diagnostics& diagnostics) {
  TreeWriter(source, scope, output, diagnostics).Write(parser, index, index + 1);
}

}  // namespace mep
