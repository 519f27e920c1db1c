// The default host: each member hands the question to its part in this folder; reports and error
// boxes go to standard error. See default_host.h.
#include "ixomep/host/portable/default_host.h"

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <new>

#include "ixomep/host/portable/windows_1252.h"
#include "ixomep/host/windowing.h"

namespace ixomep {
namespace portable {
namespace {

void Write(std::string_view text) noexcept {
  if (!text.empty()) std::fwrite(text.data(), 1, text.size(), stderr);
}

}  // namespace

String DefaultHost::ResourceText(std::int32_t number) { return String(EnglishText(number)); }

String DefaultHost::ToUtf8(std::string_view text) { return Utf8Of1252(text); }

String DefaultHost::FromUtf8(std::string_view text) { return Windows1252OfUtf8(text); }

void DefaultHost::MapToOem(char* bytes, std::size_t count) { Map(OemOf1252(), bytes, count); }

void DefaultHost::MapFromOem(char* bytes, std::size_t count) {
  Map(Windows1252OfOem(), bytes, count);
}

void DefaultHost::MapToLower(char* bytes, std::size_t count, CharSet) {
  Map(LowerCase1252(), bytes, count);
}

void DefaultHost::MapToUpper(char* bytes, std::size_t count, CharSet) {
  Map(UpperCase1252(), bytes, count);
}

char DefaultHost::DecimalSeparator() { return '.'; }

bool DefaultHost::IsRegEx(std::string_view pattern, int options) {
  return CompilesPattern(pattern, options);
}

bool DefaultHost::MatchesRegEx(std::string_view pattern, std::string_view text, int options) {
  return MatchesPattern(pattern, text, options);
}

bool DefaultHost::FindColor(std::string_view name, Color& color) {
  const std::int32_t packed = CssColor(name);
  if (packed < 0) return false;
  color = Color::FromPacked(static_cast<std::uint32_t>(packed));
  return true;
}

bool DefaultHost::ReadTextFile(const String& name, String& text) {
  return ReadSystemFile(name, text);
}

bool DefaultHost::IsRepositoryName(const String& name) { return portable::IsRepositoryName(name); }

void DefaultHost::ReportAssertion(std::string_view message, const char* source, int line) {
  Write("assertion failed: ");
  Write(message);
  std::fprintf(stderr, " (%s, line %d)\n", source, line);
}

void DefaultHost::ReportInternalFault(std::string_view message) {
  Write("internal fault: ");
  Write(message);
  Write("\n");
}

int DefaultHost::ShowErrorBox(void*, int, const String& title, const String& text) {
  for (const String& line : {title, text}) {
    Write(line);
    Write(line.IsEmpty() ? "" : "\n");
  }
  return IxoErrorBox::kAnswerContinue;
}

void* DefaultHost::ApplicationWindow() { return nullptr; }

void* DefaultHost::TopWindow(int) { return nullptr; }

std::intptr_t DefaultHost::NativeHandle(const void*) { return 0; }

String DefaultHost::EventName(std::int32_t index) {
  return String(index == IxoEvent::kExitApplicationName ? "exitApplication" : "");
}

void DefaultHost::TriggerEvent(std::int32_t, const String&, const String&) {}

void DefaultHost::EndProcess(int status) { std::exit(status); }

std::uint32_t DefaultHost::TickCount() { return Milliseconds(); }

std::int32_t DefaultHost::RandomFifteenBits() { return TopFifteenBitsOfRand(); }

void DefaultHost::DecipherBlocks(const unsigned char key[8], unsigned char* bytes,
                                 std::size_t blocks) {
  DecipherDes(key, bytes, blocks);
}

void DefaultHost::EncipherBlocks(const unsigned char key[8], unsigned char* bytes,
                                 std::size_t blocks) {
  EncipherDes(key, bytes, blocks);
}

std::size_t DefaultHost::DefaultMemoryLimit() { return HalfOfMemory(); }

const void* DefaultHost::StackLimit() { return LowestStackAddress(); }

void DefaultHost::PrepareMemory(void* memory, std::size_t bytes) noexcept {
  AskForLargePages(memory, bytes);
}

}  // namespace portable

IxoHost* DefaultHost() noexcept {
  // Made in static storage and never destroyed: objects with static lifetime may still need it
  // while the process ends. It owns no memory.
  alignas(portable::DefaultHost) static std::byte storage[sizeof(portable::DefaultHost)];
  static IxoHost* const host = new (storage) portable::DefaultHost;
  return host;
}

}  // namespace ixomep
