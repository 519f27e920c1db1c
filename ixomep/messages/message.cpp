// Answers and delivery of messages.
#include "ixomep/messages/message.h"

#include <string>

#include "ixomep/host/assertion.h"
#include "ixomep/messages/message_port.h"
#include "ixomep/messages/message_port_manager.h"

IxoMessage& IxoMessage::operator=(const String& text) {
  text_ = text;
  return *this;
}

IxoMessage& IxoMessage::operator=(const char* text) { return *this = String(text); }

void IxoMessage::SetAnswer(const String& answer) {
  // In one step, so that the answer stays as it was when there is no memory for it.
  const bool needs_break = !answer_.IsEmpty() && !answer_.view().ends_with('\n');
  answer_.Append(needs_break ? "\n" + answer : answer);
}

bool IxoMessage::SendTo(const char* portName) {
  IxoMessagePortManager& manager = IxoMessagePortManager::Instance();
  IxoMessagePort* port = manager.FindMessagePort(portName);
  if (port == nullptr) port = manager.FindMessagePort(manager.GetMPNameStrAddress(portName));
  if (port == nullptr) {
    const std::string name = portName != nullptr ? portName : "";
    ixomep::ReportAssertion("no message port is registered under the name \"" + name + "\"");
    return false;
  }
  port->Receive(*this);
  return true;
}

void IxoMessage::SendToAll() {
  // The next port is looked up after each delivery, so that no iterator outlives a call into a
  // port.
  const auto& ports = IxoMessagePortManager::Instance().getMessagePortContainer();
  auto next = ports.begin();
  while (next != ports.end()) {
    const char* const name = next->first;
    if (next->second != nullptr) next->second->Receive(*this);
    next = ports.upper_bound(name);
  }
}
