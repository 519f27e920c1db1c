// The registry of message ports.
#include "ixomep/messages/message_port_manager.h"

#include "ixomep/messages/message_port.h"

IxoMessagePortManager& IxoMessagePortManager::Instance() {
  static IxoMessagePortManager manager;
  return manager;
}

void IxoMessagePortManager::AddMessagePort(const char* name, IxoMessagePort* port) {
  ports_[name] = port;
}

void IxoMessagePortManager::RemoveMessagePort(const char* name) { ports_.erase(name); }

bool IxoMessagePortManager::ExistsMessagePort(const char* name) const {
  IxoMessagePort* const port = FindMessagePort(name);
  return port != nullptr && port->IsAvailable();
}

IxoMessagePort* IxoMessagePortManager::FindMessagePort(const char* name) const noexcept {
  const auto found = ports_.find(name);
  return found != ports_.end() ? found->second : nullptr;
}

const char* IxoMessagePortManager::GetMPNameStrAddress(const String& name) const {
  for (const auto& [address, port] : ports_) {
    // A port may have been registered without a name; a name ends at its first zero byte.
    if (address != nullptr && name == address) return address;
  }
  return nullptr;
}
