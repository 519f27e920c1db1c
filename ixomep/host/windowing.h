// The host's windows, its error box and its application events, under the host's names. A window
// is an opaque pointer that only the host understands; null means that there is none.
#pragma once

#include <cstdint>

#include "ixomep/export.h"
#include "ixomep/host/string.h"

class IXOMEP_API Application {
 public:
  // The application's main window; borrowed.
  void* GetAppWindow() const;
};

// The one application object; never null.
IXOMEP_API Application* GetpApp();

class IXOMEP_API Sysdepen {
 public:
  // The native handle of a window as a number; 0 for none.
  static std::intptr_t GethWnd(const void* window);
};

// The window that lies on top now; borrowed. The argument selects among the host's screens, 0
// being the first.
IXOMEP_API void* Ixo_GetTopWindow(int screen);

// A modal box that shows an error text.
class IXOMEP_API IxoErrorBox {
 public:
  static constexpr int kStyleError = 16;
  static constexpr int kStyleFatal = 64;
  static constexpr int kAnswerContinue = 0;
  static constexpr int kAnswerEnd = 3;  // the user chose to end the application

  IxoErrorBox(void* parent, int style, String text);
  void SetTitle(const String& title) { title_ = title; }
  // Shows the box and waits for the answer.
  int Execute();

 private:
  void* parent_;
  int style_;
  String text_;
  String title_;
};

// The host's names of its application events, by index.
class IXOMEP_API IxoEventNames {
 public:
  // The empty text for an index without a name.
  String operator[](std::int32_t index) const;
};
IXOMEP_API const IxoEventNames& Ixo_GetEventNames();

// An application event: a number, a name and a reason in words.
class IXOMEP_API IxoEvent {
 public:
  static constexpr std::int32_t kExitApplication = 776;
  static constexpr std::int32_t kExitApplicationName = 76;

  IxoEvent(std::int32_t number, String name, String reason);
  // Hands the event to the host and waits until it has been dealt with.
  void Trigger() const;

 private:
  std::int32_t number_;
  String name_;
  String reason_;
};

namespace ixomep {

// Ends the process through the host. A host may decline (a test does); then this returns.
IXOMEP_API void EndProcess(int status);

}  // namespace ixomep
