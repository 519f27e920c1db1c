// Asking a parser everything. See definition_walk.h. Bodies are walked with a list, because they
// nest as deep as a text likes.
#include "fuzz/support/definition_walk.h"

#include <memory>
#include <type_traits>
#include <vector>

#include "fuzz/support/evaluation.h"
#include "fuzz/support/fuzz_host.h"
#include "ixomep/expr/expression_parser.h"
#include "ixomep/expr/value_set.h"
#include "ixomep/host/color.h"
#include "ixomep/parser/parser.h"

namespace ixomep::fuzz {
namespace {

constexpr std::size_t kMaxBodies = 200;
constexpr std::int32_t kMaxElements = 200;

class Walk {
 public:
  explicit Walk(const IxoMepParser& root) { bodies_.push_back(&root); }

  std::string Run() {
    for (std::size_t at = 0; at < bodies_.size(); ++at) {
      AskBody(const_cast<IxoMepParser&>(*bodies_[at]));
    }
    return std::move(answers_);
  }

 private:
  template <class T>
  requires(std::is_arithmetic_v<T> || std::is_enum_v<T>) void Note(T number) {
    answers_ += std::to_string(number) + ' ';
  }
  void Note(const String& text) { answers_.append(text.view()) += ' '; }
  void Note(const IxoMepValue* value) { answers_ += Shown(value) + '\n'; }
  void NoteOwned(IxoMepExpressionParser* parser) {
    const std::unique_ptr<IxoMepExpressionParser> owner(parser);
    if (owner != nullptr) Note(owner->GetExpression(nullptr));
  }

  void Add(const IxoMepParser* body) {
    if (body != nullptr && bodies_.size() < kMaxBodies) bodies_.push_back(body);
  }

  void AskBody(IxoMepParser& parser) {
    const std::int32_t count = parser.GetElemCount();
    Note(count);
    Note(parser.GetText());
    Check(
        parser.GetErrorOffset() >= -1 && parser.GetErrorOffset() <= parser.GetCompleteText().Len(),
        "the place of an error is outside");
    for (const std::int32_t index : {-1, count, count + 5, -2147483647 - 1, 2147483647}) {
      Note(parser.GetKeyword(index));
      Note(parser.GetElemText(index));
      Note(parser.GetAttrNameOfPos(index, 0));
      Check(!parser.SetCurElemIndex(index) && parser.GetElement(index) == nullptr,
            "an element that is not there");
    }
    if (count == 0) AskCurrent(parser);
    for (std::int32_t index = 0; index < count && index < kMaxElements; ++index) {
      Check(parser.SetCurElemIndex(index), "an element is not there");
      Note(parser.GetKeyword(index));
      Note(parser.GetElemText(index));
      Note(parser.GetElement(index)->GetStartOffset());
      Note(parser.GetElement(index)->GetLine());
      Add(parser.GetBodyParser(index));
      AskCurrent(parser);
    }
    Note(parser.GetErrorText());
  }

  void AskCurrent(IxoMepParser& parser) {
    AskOwnValue(parser);
    const std::int32_t count = parser.GetAttrCount();
    for (std::int32_t pos = -1; pos <= count; ++pos) AskAttribute(parser, pos);
    Color color;
    if (parser.GetColor(color)) Note(color.GetPacked());
    NoteOwned(parser.CreateColorEP());
    String text;
    parser.MakeErrorText(text);
    Note(text);
  }

  void AskOwnValue(IxoMepParser& parser) {
    Note(parser.GetValue());
    Note(static_cast<int>(parser.GetValueType()));
    Note(parser.GetStrValue());
    Note(parser.GetIntValue());
    Note(parser.GetRealValue());
    Note(parser.GetBoolValue(true));
    Note(parser.GetValueTMM());
    Note(parser.GetValueTPt());
    Note(parser.GetValueSec());
    Note(parser.ExpectValueType(IxoMepValueType::Integer, true));
    NoteOwned(parser.CreateExprParserCopy());
  }

  void AskAttribute(IxoMepParser& parser, std::int32_t pos) {
    const String name = parser.GetAttrNameOfPos(pos);
    Note(name);
    Note(parser.GetModifierOfPos(pos));
    Note(static_cast<int>(parser.GetValueTypeOfPos(pos)));
    Note(parser.GetValueOfPos(pos));
    NoteOwned(parser.CreateExprParserCopyOfPos(pos));
    NoteOwned(parser.GetArrayLValueCopyOfPos(pos));
    Add(parser.GetBodyParserOfPos(pos));
    Note(parser.ExpectValueTypeOfPos(pos, IxoMepValueType::String, false));
    if (pos < 0) return;
    Note(parser.IsContained(name));
    Note(parser.GetModifier(name));
    Note(parser.GetMapValue(name).get());
    Note(parser.GetStrValue(name));
    Note(parser.GetIntValue(name));
    Note(parser.GetRealValue(name));
    Note(parser.GetBoolValue(name, false));
    Note(parser.GetValueTMM(name));
    Note(parser.GetValueTPt(name));
    Note(parser.GetValueSec(name));
    Note(parser.ExpectValueType(name, IxoMepValueType::Map, true));
    Color color;
    if (parser.GetColor(name, "r", "g", "b", color)) Note(color.GetPacked());
  }

  std::vector<const IxoMepParser*> bodies_;
  std::string answers_;
};

}  // namespace

std::string ReadAndAsk(const String& text, bool use_include_cache) {
  Scene scene;
  IxoMepParser parser(text, "main.mep");
  parser.SetUseIncludeCache(use_include_cache);
  parser.SetVars(&scene.scope());
  const IxoMepErrorEnum code = parser.Parse();
  Check((code == IMEPERR_NONE) == parser.GetErrorText().IsEmpty(), "a code and a message, or none");
  std::string answers = "code " + std::to_string(code) + " ";
  answers += Walk(parser).Run();
  return answers;
}

}  // namespace ixomep::fuzz
