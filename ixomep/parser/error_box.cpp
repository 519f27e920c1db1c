// The box in which the host shows error texts, and the end of the process when the user asks for
// it after a fatal error.
#include "ixomep/host/res_id.h"
#include "ixomep/host/windowing.h"
#include "ixomep/parser/parser.h"
#include "ixomep/parser/query_support.h"

namespace {

constexpr ResId kEndQuestion(33570584);
constexpr const char* kReason = "mep error";
constexpr int kFailureStatus = 1;

// The title of all error boxes of the process.
String& BoxTitle() noexcept {
  static String title;
  return title;
}

int Ask(const String& text, int style) noexcept {
  return ixomep::OrNeutral(int{IxoErrorBox::kAnswerContinue}, [&] {
    IxoErrorBox box(Ixo_GetTopWindow(0), style, text);
    box.SetTitle(BoxTitle());
    return box.Execute();
  });
}

void AnnounceEnd() {
  const String name = Ixo_GetEventNames()[IxoEvent::kExitApplicationName];
  IxoEvent(IxoEvent::kExitApplication, name, kReason).Trigger();
}

}  // namespace

void IxoMepParser::SetErrorBoxTitle(const String& title) { BoxTitle() = title; }

void IxoMepParser::ShowErrorBox() const { ShowErrorBox(GetErrorText(), /*fatal=*/false); }

void IxoMepParser::ShowErrorBox(const String& text, bool fatal) {
  if (!fatal) {
    Ask(text, IxoErrorBox::kStyleError);
    return;
  }
  const String question = ixomep::OrNeutral(text, [&] { return text + String(kEndQuestion); });
  if (Ask(question, IxoErrorBox::kStyleFatal) != IxoErrorBox::kAnswerEnd) return;
  ixomep::OrNeutral(0, [] {
    AnnounceEnd();
    return 0;
  });
  ixomep::EndProcess(kFailureStatus);
}
