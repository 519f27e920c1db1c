// IxoMessagePortManager: the process-wide registry of message ports, by the address of the name.
#pragma once

#include <functional>
#include <map>

#include "ixomep/export.h"
#include "ixomep/host/string.h"

class IxoMessagePort;

class IXOMEP_API IxoMessagePortManager {
 public:
  // Ordered by the address of the name, not by its text; ports are not owned.
  using MessagePortContainer = std::map<const char*, IxoMessagePort*, std::less<const char*>>;

  IxoMessagePortManager(const IxoMessagePortManager&) = delete;
  IxoMessagePortManager& operator=(const IxoMessagePortManager&) = delete;

  // Created on first use.
  static IxoMessagePortManager& Instance();

  // Replaces an earlier port under the same address.
  void AddMessagePort(const char* name, IxoMessagePort* port);
  void RemoveMessagePort(const char* name);
  // Is a port registered under that address, and does it say that it is available?
  bool ExistsMessagePort(const char* name) const;
  // By address only; null when there is none.
  IxoMessagePort* FindMessagePort(const char* name) const noexcept;
  // The registered address whose text is name, or null.
  const char* GetMPNameStrAddress(const String& name) const;
  const MessagePortContainer& getMessagePortContainer() const noexcept { return ports_; }

 protected:
  IxoMessagePortManager() = default;
  ~IxoMessagePortManager() = default;

 private:
  MessagePortContainer ports_;
};
