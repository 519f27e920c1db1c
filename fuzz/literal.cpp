// Fuzz target: value literals and the texts around values. A literal is read, asked everything,
// copied and written; a text that was written reads back as a value of the same text. The other
// readers of the library (numbers, times, colours, encodings) get the same bytes.
#include "fuzz/support/bounds.h"
#include "fuzz/support/bytes.h"
#include "fuzz/support/evaluation.h"
#include "fuzz/support/fuzz_host.h"
#include "ixomep/expr/program.h"
#include "ixomep/host/color.h"
#include "ixomep/host/core_time.h"
#include "ixomep/host/encodings.h"
#include "ixomep/host/international.h"
#include "ixomep/host/numbers.h"
#include "ixomep/host/reg_ex.h"
#include "ixomep/parser/parser.h"
#include "ixomep/values/slot.h"

using namespace ixomep::fuzz;
using ixomep::ValuePtr;
using Type = IxoMepValueType;

namespace {

struct Reading {
  ValuePtr value;
  std::int32_t position = 0;
  std::int32_t code = 0;
};

Reading Read(const String& text, std::int32_t position) {
  Reading reading;
  reading.position = position;
  String error;
  reading.value.reset(IxoMepValue::Create(text, reading.position, reading.code, error, nullptr, 1));
  Check(reading.position >= position && reading.position <= text.Len(), "the position is outside");
  Check((reading.value != nullptr) == (reading.code == 0), "a value or a code");
  Check(reading.value != nullptr || !error.IsEmpty(), "a failure without a message");
  return reading;
}

void AskEverything(const IxoMepValue& value) {
  (void)value.GetInt();
  (void)value.GetReal();
  (void)value.GetSec();
  (void)value.GetTMM();
  (void)value.GetTPt();
  (void)value.GetStr();
  (void)value.GetText(false);
  const ValuePtr keys(value.GetType() == Type::Map ? value.GetKeysOfMap() : nullptr);
  const std::unique_ptr<IxoMepExpressionParser> expression(value.CreateExprParser());
  Check(expression != nullptr, "no expression object");
  const IxoMepValue copy(value);
  Check(Shown(&copy) == Shown(&value), "a copy shows another text", Shown(&value));
}

// A string or a whole number reads back as it was.
void CheckReadsBack(const IxoMepValue& value) {
  if (value.GetType() != Type::String && value.GetType() != Type::Integer) return;
  if (value.GetType() == Type::Integer && value.GetInt() == -2147483647 - 1) return;
  const Reading again = Read(value.GetText(true), 0);
  Check(again.value != nullptr && *again.value == value, "does not read back", Shown(&value));
}

void ReadOtherwise(const String& text) {
  (void)ixo_atof(text.view());
  (void)DoubleFromString(text.view());
  (void)IxoMepParser::GetAttrMepTextLen(text, 0);
  (void)IxoMepParser::GetLineOfErrorText(text);
  (void)ConvertUTF8StringToString(ConvertStringToUTF8(text));
  (void)HttpRequest::escapeUrlStyle(text, "abc");
  (void)IxoSGMLString::XMLStr(text, true);
  (void)IxoSGMLString::XMLStr(text, false);
  String encoded;
  String decoded;
  Check(Ixo_NewBase64Encode(text.view(), encoded), "Base64 cannot be made");
  Check(Ixo_NewBase64Decode(encoded.view(), decoded) && decoded == text, "Base64 does not undo");
  (void)Ixo_NewBase64Decode(text.view(), decoded);
  Check(ConvertUTF8StringToString(ConvertStringToUTF8(text)) == text, "UTF-8 does not undo");
  const Reading quoted = Read(IxoMepParser::GetMepTextOfStrValue(text), 0);
  Check(quoted.value != nullptr && quoted.value->GetStr() == text, "a quoted text is another one");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzHost host;
  const Bounds bounds;
  const bool before = ixomep::UsePrograms(false);
  const String text(TextOf(data, size));
  for (std::int32_t position = 0; position < text.Len();) {
    const Reading reading = Read(text, position);
    if (reading.value == nullptr) break;
    AskEverything(*reading.value);
    CheckReadsBack(*reading.value);
    position = std::max(reading.position, position + 1);
  }
  ReadOtherwise(text);
  ixomep::UsePrograms(before);
  return 0;
}
