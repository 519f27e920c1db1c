// Internal: the host that answers while an application installs none, made of the parts declared
// here. Each part has a source of its own in this folder; this is the only folder that knows
// third-party libraries and the operating system.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "ixomep/host/color.h"
#include "ixomep/host/host.h"
#include "ixomep/host/string.h"

namespace ixomep::portable {

// texts_english.cpp: the resource text of that number; empty when there is none.
std::string_view EnglishText(std::int32_t number) noexcept;

// color_names.cpp: 0xRRGGBB of one of the 148 CSS names, upper and lower case alike; -1 when
// unknown.
std::int32_t CssColor(std::string_view name) noexcept;

// pcre2_matcher.cpp: Perl-compatible patterns over bytes. Compiled patterns are kept.
bool CompilesPattern(std::string_view pattern, int options);
bool MatchesPattern(std::string_view pattern, std::string_view text, int options);

// nettle_cipher.cpp: DES over whole blocks in place.
void DecipherDes(const unsigned char key[8], unsigned char* bytes, std::size_t blocks) noexcept;
void EncipherDes(const unsigned char key[8], unsigned char* bytes, std::size_t blocks) noexcept;

// system_files.cpp: regular files of the system and of the repository folder.
bool ReadSystemFile(std::string_view name, String& text);
bool IsRepositoryName(std::string_view name) noexcept;

// machine.cpp: clock, generator, memory and stack of the machine.
std::uint32_t Milliseconds() noexcept;
std::int32_t TopFifteenBitsOfRand() noexcept;
std::size_t HalfOfMemory() noexcept;
const void* LowestStackAddress() noexcept;
void AskForLargePages(void* memory, std::size_t bytes) noexcept;

// Overrides every member of IxoHost, as there is nobody else to ask.
class DefaultHost final : public IxoHost {
 public:
  String ResourceText(std::int32_t number) override;
  String ToUtf8(std::string_view text) override;
  String FromUtf8(std::string_view text) override;
  void MapToOem(char* bytes, std::size_t count) override;
  void MapFromOem(char* bytes, std::size_t count) override;
  void MapToLower(char* bytes, std::size_t count, CharSet char_set) override;
  void MapToUpper(char* bytes, std::size_t count, CharSet char_set) override;
  char DecimalSeparator() override;
  bool IsRegEx(std::string_view pattern, int options) override;
  bool MatchesRegEx(std::string_view pattern, std::string_view text, int options) override;
  bool FindColor(std::string_view name, Color& color) override;

  bool ReadTextFile(const String& name, String& text) override;
  bool IsRepositoryName(const String& name) override;

  void ReportAssertion(std::string_view message, const char* source, int line) override;
  void ReportInternalFault(std::string_view message) override;
  int ShowErrorBox(void* parent, int style, const String& title, const String& text) override;
  void* ApplicationWindow() override;
  void* TopWindow(int screen) override;
  std::intptr_t NativeHandle(const void* window) override;
  String EventName(std::int32_t index) override;
  void TriggerEvent(std::int32_t number, const String& name, const String& reason) override;
  void EndProcess(int status) override;

  std::uint32_t TickCount() override;
  std::int32_t RandomFifteenBits() override;
  void DecipherBlocks(const unsigned char key[8], unsigned char* bytes,
                      std::size_t blocks) override;
  void EncipherBlocks(const unsigned char key[8], unsigned char* bytes,
                      std::size_t blocks) override;
  std::size_t DefaultMemoryLimit() override;
  const void* StackLimit() override;
  void PrepareMemory(void* memory, std::size_t bytes) noexcept override;
  bool IsInterruptRequested() noexcept override { return false; }
};

}  // namespace ixomep::portable
