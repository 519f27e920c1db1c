// Answers and delivery of messages.
#include "ixomep/messages/message.h"

#include <exception>
#include <new>
#include <string>
#include <utility>

#include "ixomep/host/assertion.h"
#include "ixomep/messages/message_port.h"
#include "ixomep/messages/message_port_manager.h"

namespace {

// The port of that address, else one of that text; reported when there is none.
IxoMessagePort* FindPort(const char* name) {
  const IxoMessagePortManager& manager = IxoMessagePortManager::Instance();
  IxoMessagePort* const port = manager.FindMessagePort(name);
  if (port != nullptr) return port;
  try {
    const std::string text = name != nullptr ? name : "";
    IxoMessagePort* const other = manager.FindMessagePort(manager.GetMPNameStrAddress(text));
    if (other != nullptr) return other;
    ixomep::ReportAssertion("no message port is registered under the name \"" + text + "\"");
  } catch (const std::bad_alloc&) {
    ixomep::ReportAssertion("no memory to look for a message port");
  }
  return nullptr;
}

}  // namespace

IxoMessage& IxoMessage::operator=(const String& text) {
  text_ = text;
  return *this;
}

IxoMessage& IxoMessage::operator=(const char* text) { return *this = String(text); }

void IxoMessage::SetAnswer(const String& answer) {
  try {
    // In one step, so that growing in place keeps many answers cheap.
    const bool needs_break = !answer_.IsEmpty() && !answer_.view().ends_with('\n');
    answer_.Append(needs_break ? "\n" + answer : answer);
  } catch (const std::exception&) {
    // Too long, or no memory: the answer stays as it is.
  }
}

bool IxoMessage::SendTo(const char* portName) {
  IxoMessagePort* const port = FindPort(portName);
  if (port == nullptr) return false;
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
