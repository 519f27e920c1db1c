// IxoHost: everything that the library asks of the application it lives in, as one interface. An
// application derives from it, overrides what it wants to answer itself and installs the object;
// what it does not override, the default host answers. The free functions of the other headers in
// this folder are the library's own way to ask.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "ixomep/export.h"
#include "ixomep/host/international.h"
#include "ixomep/host/limits.h"
#include "ixomep/host/string.h"

class Color;

// Calls come from the thread that drives the library. An override may throw std::bad_alloc and
// nothing else. The comment of each member says what the default host answers.
class IXOMEP_API IxoHost {
 public:
  IxoHost() = default;
  IxoHost(const IxoHost&) = delete;
  IxoHost& operator=(const IxoHost&) = delete;
  virtual ~IxoHost();

  // The host that answers now: the installed one, else the default host.
  static IxoHost& Current() noexcept;
  // Installs a host (not owned; null goes back to the default) and returns the one installed
  // before, null for the default.
  static IxoHost* Install(IxoHost* host) noexcept;

  // What evaluations may use up from now on, whichever host is installed; at the start nothing is
  // limited. During an evaluation a new number of steps counts from the next outermost one.
  static void SetLimits(const IxoLimits& limits) noexcept;
  static IxoLimits GetLimits() noexcept;

  // Texts -------------------------------------------------------------------------------------

  // The string resource of that number; empty when there is none. Default: English texts.
  virtual String ResourceText(std::int32_t number);
  // Into UTF-8 and back. Default: Windows-1252; what has no byte, or is malformed, becomes "?".
  virtual String ToUtf8(std::string_view text);
  virtual String FromUtf8(std::string_view text);
  // Byte-wise conversions in place. Default: code page 850, Windows-1252 letters.
  virtual void MapToOem(char* bytes, std::size_t count);
  virtual void MapFromOem(char* bytes, std::size_t count);
  virtual void MapToLower(char* bytes, std::size_t count, CharSet char_set);
  virtual void MapToUpper(char* bytes, std::size_t count, CharSet char_set);
  // Default: a point.
  virtual char DecimalSeparator();
  // Whether the pattern compiles; whether it matches somewhere in the text. Options as in
  // IxoRegEx. Default: Perl-compatible patterns, case-sensitive, with bounded matching.
  virtual bool IsRegEx(std::string_view pattern, int options);
  virtual bool MatchesRegEx(std::string_view pattern, std::string_view text, int options);
  // The colour of a name; false, and `color` unchanged, when unknown. Default: the CSS names.
  virtual bool FindColor(std::string_view name, Color& color);

  // Files -------------------------------------------------------------------------------------

  // Reads a whole file; false, and `text` unchanged, when it cannot be read. This is the one
  // place where a host confines what definition texts may include. Default: files of the system,
  // "\" and "/" alike; repository names below the folder set with SetRepositoryFolder.
  virtual bool ReadTextFile(const String& name, String& text);
  // Whether the name is served from a repository; its first four characters are then a prefix.
  // Default: names that begin with "db:\".
  virtual bool IsRepositoryName(const String& name);

  // Reports and windows -----------------------------------------------------------------------

  // A broken contract. Default: one line on standard error.
  virtual void ReportAssertion(std::string_view message, const char* source, int line);
  // A fault inside the library. Default: one line on standard error.
  virtual void ReportInternalFault(std::string_view message);
  // A modal box; the answers are IxoErrorBox's. Default: writes title and text to standard error
  // and answers kAnswerContinue.
  virtual int ShowErrorBox(void* parent, int style, const String& title, const String& text);
  // Default: none (null, 0).
  virtual void* ApplicationWindow();
  virtual void* TopWindow(int screen);
  virtual std::intptr_t NativeHandle(const void* window);
  // Default: "exitApplication" for IxoEvent::kExitApplicationName, else empty.
  virtual String EventName(std::int32_t index);
  // Default: nothing.
  virtual void TriggerEvent(std::int32_t number, const String& name, const String& reason);
  // Default: std::exit.
  virtual void EndProcess(int status);

  // Machine -----------------------------------------------------------------------------------

  // Milliseconds, wrapping. Default: the steady clock.
  virtual std::uint32_t TickCount();
  // 0 to 32767. Default: the top fifteen bits of std::rand.
  virtual std::int32_t RandomFifteenBits();
  // DES in electronic codebook mode over whole blocks of 8 bytes, in place. Default: DES.
  virtual void DecipherBlocks(const unsigned char key[8], unsigned char* bytes, std::size_t blocks);
  virtual void EncipherBlocks(const unsigned char key[8], unsigned char* bytes, std::size_t blocks);
  // Bytes that texts and values may hold; 0 when unknown. Default: half the machine's memory.
  virtual std::size_t DefaultMemoryLimit();
  // The lowest usable address of the calling thread's native stack; null when unknown. Default:
  // what the thread library tells.
  virtual const void* StackLimit();
  // A stretch of new memory, of a size and at an address that are a multiple of 2 MB, will be used
  // from end to end: the machine may back it by large pages. Default: asks it to.
  virtual void PrepareMemory(void* memory, std::size_t bytes) noexcept;

  // Interruption ------------------------------------------------------------------------------

  // Is what is being evaluated, read or written as XML to be ended? It ends with code 38 then.
  // Asked again and again: of an installed host when an outermost evaluation begins, at the latest
  // after 4096 steps (IxoLimits), and now and then during long work of a built-in function and
  // while a long text is read or written. Keep to a yes until all has ended. Default: no.
  virtual bool IsInterruptRequested() noexcept;
};

namespace ixomep {

// The host that answers while none is installed and for what an installed one does not override.
// The library's own is defined in host/portable; a build without that folder defines this
// function itself. Never null, and usable until the process has ended.
IXOMEP_API IxoHost* DefaultHost() noexcept;

// The folder below which the default host looks for repository names, such as "db:\a.txt"; an
// empty text (the start) means that they cannot be read.
IXOMEP_API void SetRepositoryFolder(const String& folder);

}  // namespace ixomep
