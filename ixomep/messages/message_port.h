// IxoMessagePort: what a component of the host derives from to receive messages. A port is
// registered under its name from construction to destruction.
#pragma once

#include "ixomep/export.h"

class IxoMessage;

class IXOMEP_API IxoMessagePort {
 public:
  // Registers the port; an earlier one under the same address is replaced. The pointer is kept,
  // not the text: it must outlive the port, and is normally one of the well-known names below.
  explicit IxoMessagePort(const char* name);
  IxoMessagePort(const IxoMessagePort&) = delete;
  IxoMessagePort& operator=(const IxoMessagePort&) = delete;

  // The order of the virtual members is part of the interface.
  // Unregisters the name, whichever port is registered under it now.
  virtual ~IxoMessagePort();
  // Asked by IxoMessagePortManager::ExistsMessagePort.
  virtual bool IsAvailable() = 0;
  // For the host's own use; this library never calls it.
  virtual void Activate() = 0;
  // A message for this port, or for all.
  virtual void Receive(IxoMessage& message) = 0;
  // For the host's own use; this library never calls it.
  virtual void Deactivate() = 0;

  const char* GetMsgPortName() const noexcept { return name_; }

  // The well-known names: each function gives the one address of its own name's text.
  static const char* Acquisition() noexcept;
  static const char* IxoScript() noexcept;
  static const char* Analysis() noexcept;
  static const char* Application() noexcept;
  static const char* IQL() noexcept;
  static const char* Core() noexcept;
  static const char* CoreUI() noexcept;
  static const char* Documentation() noexcept;
  static const char* Evaluation() noexcept;
  static const char* ImportExport() noexcept;
  static const char* Modeling() noexcept;
  static const char* Simulation() noexcept;
  static const char* UserMgt() noexcept;
  static const char* Drawing() noexcept;
  static const char* DB() noexcept;
  static const char* Explorer() noexcept;

 private:
  const char* name_;
};
