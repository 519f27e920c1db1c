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
  // Into a copy first: answer may be this message's own.
  String whole = answer_;
  if (!whole.IsEmpty() && !whole.view().ends_with('\n')) whole += '\n';
  whole += answer;
  answer_ = whole;
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
