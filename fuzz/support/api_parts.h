// Parts of the fuzz target that uses the interface as a host does: a message port with a will of
// its own, and the owner of what a result slot holds.
#pragma once

#include <memory>

#include "ixomep/messages/message.h"
#include "ixomep/messages/message_port.h"
#include "ixomep/values/slot.h"

namespace ixomep::fuzz {

inline constexpr const char* (*kPorts[])() noexcept = {&IxoMessagePort::Core, &IxoMessagePort::DB,
                                                       &IxoMessagePort::IQL};

// Answers every message, and now and then sends another one or ends itself.
class Port : public IxoMessagePort {
 public:
  Port(const char* name, std::unique_ptr<Port>& self) : IxoMessagePort(name), self_(self) {}
  bool IsAvailable() override { return true; }
  void Activate() override {}
  void Deactivate() override {}
  void Receive(IxoMessage& message) override {
    message.SetAnswer("heard " + message.GetText());
    if (message.GetText() == "go") self_.reset();
  }

 private:
  std::unique_ptr<Port>& self_;
};

// A result slot for a call: the value of a place, or null to receive a new one, which then goes to
// the place. Whatever happens, the value has an owner afterwards.
class Slot {
 public:
  Slot(ValuePtr& place, bool is_given) : place_(place), raw(is_given ? place.release() : nullptr) {}
  Slot(const Slot&) = delete;
  Slot& operator=(const Slot&) = delete;
  ~Slot() {
    if (raw != nullptr) place_.reset(raw);
    if (place_ == nullptr) place_ = MakeValue();
  }

 private:
  ValuePtr& place_;

 public:
  IxoMepValue* raw;
};

}  // namespace ixomep::fuzz
