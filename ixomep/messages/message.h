// IxoMessage: a text with an untyped companion, sent synchronously to one named port or to all;
// receivers may write answers into it. Ports are found through message_port_manager.h.
#pragma once

#include "ixomep/export.h"
#include "ixomep/host/string.h"

class IXOMEP_API IxoMessage {
 public:
  IxoMessage() = default;
  IxoMessage(const String& text) : text_(text) {}
  IxoMessage(const char* text) : text_(text) {}  // null gives the empty text

  // Replace the text; info and answer stay.
  IxoMessage& operator=(const String& text);
  IxoMessage& operator=(const char* text);

  const String& GetText() const noexcept { return text_; }

  // What the receivers wrote back, one line each.
  const String& GetAnswer() const noexcept { return answer_; }
  // Appends to the answer, on a line of its own; the answer stays as it is when it would be too
  // long or the memory cannot be had.
  void SetAnswer(const String& answer);

  // The companion object; not owned, null by default.
  void* GetInfo() const noexcept { return info_; }
  void SetInfo(void* info) noexcept { info_ = info; }

  // Hands the message to the port registered under that address, else to one registered under the
  // same text. False, and an assertion report, when there is none.
  bool SendTo(const char* portName);
  // Hands the message to every registered port in ascending order of the name addresses. A port
  // may register and unregister ports meanwhile: one that is gone is not called any more, a new
  // one is called when its address is still to come.
  void SendToAll();

 private:
  String text_;
  void* info_ = nullptr;
  String answer_;
};
