// Random definition texts and the report of a reading. See random_definitions.h.
#include "tests/support/random_definitions.h"

#include <cmath>
#include <memory>

#include "ixomep/expr/expression_parser.h"
#include "ixomep/host/color.h"
#include "tests/support/definitions.h"

namespace ixomep::test {
namespace {

const std::vector<std::string_view> kKeywords = {"A", "NODE", "NODE_CLASS", "B", "LONG_KEYWORD_X"};
const std::vector<std::string_view> kNames = {
    "a", "b", "width", "title", "r", "red", "color", "x-y", "_n", "name_that_is_long", "w\xE4rme"};
const std::vector<std::string_view> kModifiers = {"de", "true", "yes", "mod-1", "longerModifier"};
const std::vector<std::string_view> kPlain = {
    "1",    "-5",  "0",      "007",   "12.5cm", "3mm",  "-2.5pt", "1m",       "5s",
    "-0cm", "-0s", "-0.0mm", "-2.5s", "0.25",   "-0.5", "\"\"",   "\"text\"", "999999999"};
const std::vector<std::string_view> kRare = {"$ff",
                                             "$",
                                             "1e3",
                                             "5e-1",
                                             "2147483648",
                                             "12345678901234567890",
                                             "01:002:03:04:05",
                                             "3.cm",
                                             ".5",
                                             "5.",
                                             "5km",
                                             "50%",
                                             "\"a\\\"b\"",
                                             "\"line\nfeed\"",
                                             "\"\\\\\"",
                                             "\"# { (* ;\"",
                                             "1.12345678901234567cm",
                                             "\"\xE4\xA0\"",
                                             "-",
                                             "12:3",
                                             "-.5",
                                             "1234567890"};
const std::vector<std::string_view> kExpressions = {
    "(w * h)",   "(2*3)",       "(x + 1)",    "(random())",  "(random() + x)", "(\"a\" + \"b\")",
    "{1, 2}",    "{\"}\", 1}",  "{(1), {2}}", "(x[1])",      "(curlineno())",  "(f(x, \")\"))",
    "(w - 5)",   "(w-5+x)",     "(h * 2.5)",  "( a\n / b )", "(a 5)",          "(w *)",
    "(5 + w)",   "(w + 5cm)",   "(x.y + 1)",  "(x + 1) (w)", "(w > 1)",        "(w AND x)",
    "(1 # c\n)", "(1 (* c *))", "(a.b)",      "(1\n+\nx)",   "(width\n)",      "{\"k\": 1}"};
const std::vector<std::string_view> kWrong = {
    "(1 +)", "()", "(1/0)", "(error(\"e\"))", "(\"a\" - 1)", "(1))", "({)", "{1", "(\"", "(1]"};

}  // namespace

std::string RandomDefinitions::Gap() {
  switch (Below(is_rare_ ? 12 : 8)) {
    case 0:
      return "\n";
    case 1:
      return "  ";
    case 2:
      return "\n  ";
    case 8:
      return " (* c ; } \n *) ";
    case 9:
      return " # ; \" {\n";
    case 10:
      return "\xA0";
    case 11:
      return "\r\n\t";
    default:
      return " ";
  }
}

std::string RandomDefinitions::Value() {
  const int kind = Below(100);
  if (is_rare_ && kind < 20) return Pick(kRare);
  if (is_rare_ && kind < 21) return Pick(kWrong);
  if (kind < 40) return Pick(kExpressions);
  return Pick(kPlain);
}

std::string RandomDefinitions::Attribute(int depth) {
  std::string text = Pick(kNames);
  if (is_rare_ && Chance(3)) text += Pick({"[1]", "[x + 1]", "[1", "-[1]"});
  if (Chance(15)) return text;
  text += ":";
  if (Chance(70)) text += Gap();
  if (Chance(25)) {
    text += Pick(kModifiers);
    if (Chance(40)) return text;
    text += ":";
    if (Chance(60)) text += Gap();
  }
  if (depth < 4 && Chance(12)) return text + Body(depth);
  return text + Value();
}

std::string RandomDefinitions::Element(int depth) {
  std::string text = Pick(kKeywords);
  if (Chance(50)) text += Gap() + Value();
  const int attributes = Below(5);
  for (int i = 0; i < attributes; ++i) text += Gap() + Attribute(depth);
  if (depth < 4 && Chance(20)) {
    text += Gap() + Body(depth);
    if (Chance(30)) text += Gap() + Attribute(depth);
  }
  return text;
}

std::string RandomDefinitions::Elements(int depth, bool is_body) {
  std::string text;
  if (is_body && Chance(40)) {
    for (int i = Below(3); i >= 0; --i) text += Attribute(depth) + Gap();
  }
  const int count = Below(depth == 0 ? 6 : 3);
  for (int i = 0; i < count; ++i) {
    text += Element(depth) + Gap();
    if (is_rare_ && Chance(12)) {
      text += Pick({"\nx := 1;", "\nx := {1,\n2};\n", "\nf(x) ; y := 2;", "\n(1); ", "\n\"a\";",
                    "\nx := (;", "\ny; { A }"});
    }
    if (is_rare_ && Chance(2)) {
      text += Pick({"@INCLUDE \"file\" ", "@INCLUDE \"none\" ", "@OTHER "});
    }
  }
  return text;
}

std::string RandomDefinitions::Next() {
  is_rare_ = Chance(60);
  return Gap() + Elements(0, false) + Gap();
}

std::string RandomDefinitions::Damaged(std::string text) {
  constexpr std::string_view kBytes = "{}()[]\"\\#;:*@ \n\taA_-1.$%;:m\xA0\xE4\0";
  for (int i = Below(3); i >= 0 && !text.empty(); --i) {
    const auto at = static_cast<std::size_t>(Below(static_cast<int>(text.size())));
    const char byte = kBytes[static_cast<std::size_t>(Below(static_cast<int>(kBytes.size())))];
    switch (Below(4)) {
      case 0:
        text[at] = byte;
        break;
      case 1:
        text.insert(at, 1, byte);
        break;
      case 2:
        text.erase(at, 1 + static_cast<std::size_t>(Below(3)));
        break;
      default:
        if (Chance(30)) text.resize(at);
        break;
    }
  }
  return text;
}

namespace {

class Reporter {
 public:
  explicit Reporter(bool pointers_first) : pointers_first_(pointers_first) {}

  void Report(IxoMepParser& parser) {
    Line("body", parser.GetElemCount(), parser.GetCurElemIndex());
    Line(parser.GetText().view(), parser.GetTextLen(), 0);
    if (pointers_first_) {
      ReportObject(parser.GetCurElement());
      ReportObject(parser.GetLooseAttributes());
    }
    if (parser.GetElemCount() == 0) ReportCurrent(parser);
    for (std::int32_t i = -1; i <= parser.GetElemCount(); ++i) {
      if (pointers_first_) ReportObject(parser.GetElement(i));
      ReportElement(parser, i);
    }
    if (!pointers_first_) ReportObject(parser.GetLooseAttributes());
    for (std::int32_t i = 0; i < parser.GetElemCount(); ++i) ReportObject(parser.GetElement(i));
  }

  std::string text;

 private:
  template <class A, class B>
  void Line(std::string_view what, A a, B b) {
    text += what;
    text += ' ' + std::to_string(a) + ' ' + std::to_string(b) + '\n';
  }
  void Line(std::string_view what) { (text += what) += '\n'; }

  void ReportElement(IxoMepParser& parser, std::int32_t index) {
    Line(parser.GetKeyword(index).view(), parser.GetAttrCount(index), index);
    Line(parser.GetElemText(index).view());
    Line(parser.GetAttrNameOfPos(index, 0).view());
    Line(parser.GetModifierOfPos(index, 1).view(), parser.IsContained(index, "a"), 0);
    if (IxoMepParser* body = parser.GetBodyParser(index)) Report(*body);
    if (parser.SetCurElemIndex(index)) ReportCurrent(parser);
  }

  void ReportCurrent(IxoMepParser& parser) {
    Line("current", parser.GetCurElemIndex(), parser.GetAttrCount());
    Line(parser.GetStrValue().view(), parser.GetIntValue(), parser.GetRealValue());
    Line("own", parser.GetValueTMM(), parser.GetValueTPt());
    Line("own", parser.GetValueSec(), parser.GetBoolValue(true));
    Line("own", static_cast<int>(parser.GetValueType()), parser.GetIntValue(""));
    ReportCopy(parser.CreateExprParserCopy());
    Color color;
    if (parser.GetColor(color)) Line("color", color.GetPacked(), 0);
    ReportCopy(parser.CreateColorEP());
    for (std::int32_t i = -1; i <= parser.GetAttrCount(); ++i) ReportAttribute(parser, i);
    const IxoMepErrorEnum code = parser.ExpectValueType(IxoMepValueType::Integer, true);
    Line(parser.GetErrorText().view(), code, parser.GetErrorOffset());
    String block;
    parser.MakeErrorText(block);
    Line(block.view());
  }

  void ReportAttribute(IxoMepParser& parser, std::int32_t pos) {
    const String name = parser.GetAttrNameOfPos(pos);
    Line(name.view(), pos, parser.IsContained(name));
    Line(parser.GetModifierOfPos(pos).view());
    Line(parser.GetModifier(name).view());
    Line("type", static_cast<int>(parser.GetValueTypeOfPos(pos)),
         static_cast<int>(parser.GetValueType(name)));
    Line(parser.GetStrValue(name).view(), parser.GetIntValue(name), parser.GetRealValue(name));
    Line("measure", parser.GetValueTMM(name), parser.GetValueTPt(name));
    Line("other", parser.GetValueSec(name), parser.GetBoolValue(name, true));
    const IxoMepErrorEnum code =
        parser.ExpectValueTypeOfPos(pos, IxoMepValueType::String, (pos & 1) != 0);
    Line(parser.GetErrorText().view(), code, parser.GetErrorLine());
    if (const auto value = parser.GetMapValue(name)) Line(Described(value.get()));
    ReportCopy(parser.CreateExprParserCopyOfPos(pos));
    ReportCopy(parser.GetArrayLValueCopyOfPos(pos));
    if (IxoMepParser* body = parser.GetBodyParserOfPos(pos)) Report(*body);
    Line("named body", parser.GetBodyParser(name) != nullptr, parser.GetBodyParser() != nullptr);
    Line(Described(parser.GetValueOfPos(pos)));
    Line(Described(parser.GetValue(name)));
  }

  void ReportCopy(IxoMepExpressionParser* copy) {
    const std::unique_ptr<IxoMepExpressionParser> owned(copy);
    if (owned == nullptr) return;
    Line(owned->GetOriginalExpression().view(), owned->GetLineNo(), 0);
    Line(owned->GetExpression(nullptr).view());
  }

  void ReportObject(const IxoMepElement* element) {
    if (element == nullptr) return Line("no object");
    Line(element->GetKeyword().view(), element->GetStartOffset(), element->GetLine());
    ReportValue(element->GetValue());
    Line("has", element->GetParser() != nullptr, element->GetBodyParser() != nullptr);
    for (std::int32_t i = 0; i < element->GetAttrCount(); ++i) {
      const IxoMepAttribute& attribute = *element->GetAttr(i);
      Line(attribute.GetName().view(), attribute.GetBodyParser() != nullptr,
           element->FindAttr(attribute.GetName()) == &attribute);
      Line(attribute.GetModifier().view());
      ReportValue(attribute.GetValue());
    }
  }

  void ReportValue(const IxoMepValue* value) {
    Line(Described(value));
    if (value == nullptr || value->GetExpr() == nullptr) return;
    Line(value->GetExpr()->GetOriginalExpression().view(), value->GetExpr()->GetLineNo(), 0);
  }

  bool pointers_first_;
};

}  // namespace

std::string ReportOf(IxoMepParser& parser, bool pointers_first) {
  Reporter reporter(pointers_first);
  reporter.Report(parser);
  return reporter.text;
}

}  // namespace ixomep::test
