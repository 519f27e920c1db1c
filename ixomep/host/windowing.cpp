// The window, error-box and event names over the host's answers. See windowing.h.
#include "ixomep/host/windowing.h"

#include <utility>

#include "ixomep/host/host.h"

void* Application::GetAppWindow() const { return IxoHost::Current().ApplicationWindow(); }

Application* GetpApp() {
  static Application application;
  return &application;
}

std::intptr_t Sysdepen::GethWnd(const void* window) {
  return window == nullptr ? 0 : IxoHost::Current().NativeHandle(window);
}

void* Ixo_GetTopWindow(int screen) { return IxoHost::Current().TopWindow(screen); }

IxoErrorBox::IxoErrorBox(void* parent, int style, String text)
    : parent_(parent), style_(style), text_(std::move(text)) {}

int IxoErrorBox::Execute() {
  return IxoHost::Current().ShowErrorBox(parent_, style_, title_, text_);
}

String IxoEventNames::operator[](std::int32_t index) const {
  return IxoHost::Current().EventName(index);
}

const IxoEventNames& Ixo_GetEventNames() {
  static const IxoEventNames names;
  return names;
}

IxoEvent::IxoEvent(std::int32_t number, String name, String reason)
    : number_(number), name_(std::move(name)), reason_(std::move(reason)) {}

void IxoEvent::Trigger() const { IxoHost::Current().TriggerEvent(number_, name_, reason_); }

namespace ixomep {

void EndProcess(int status) { IxoHost::Current().EndProcess(status); }

}  // namespace ixomep
