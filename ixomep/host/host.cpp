// IxoHost: which host answers, and the members of the base class, which ask the default host. A
// default host that overrides nothing itself gives the neutral answers written here.
#include "ixomep/host/host.h"

#include <cstdlib>

#include "ixomep/host/color.h"
#include "ixomep/host/limit_watch.h"
#include "ixomep/host/windowing.h"

namespace {

constinit IxoHost* installed_host = nullptr;

// The host to ask on behalf of `self`: the default one, or null when that is `self`.
IxoHost* Fallback(const IxoHost* self) noexcept {
  IxoHost* host = ixomep::DefaultHost();
  return host == self ? nullptr : host;
}

}  // namespace

IxoHost::~IxoHost() {
  if (installed_host == this) Install(nullptr);
}

IxoHost& IxoHost::Current() noexcept {
  return installed_host != nullptr ? *installed_host : *ixomep::DefaultHost();
}

IxoHost* IxoHost::Install(IxoHost* host) noexcept {
  IxoHost* previous = installed_host;
  installed_host = host;
  ixomep::LimitWatch::SetHasHost(host != nullptr);
  return previous;
}

// Texts -----------------------------------------------------------------------------------------

String IxoHost::ResourceText(std::int32_t number) {
  IxoHost* host = Fallback(this);
  return host == nullptr ? String() : host->ResourceText(number);
}

String IxoHost::ToUtf8(std::string_view text) {
  IxoHost* host = Fallback(this);
  return host == nullptr ? String(text) : host->ToUtf8(text);
}

String IxoHost::FromUtf8(std::string_view text) {
  IxoHost* host = Fallback(this);
  return host == nullptr ? String(text) : host->FromUtf8(text);
}

void IxoHost::MapToOem(char* bytes, std::size_t count) {
  if (IxoHost* host = Fallback(this)) host->MapToOem(bytes, count);
}

void IxoHost::MapFromOem(char* bytes, std::size_t count) {
  if (IxoHost* host = Fallback(this)) host->MapFromOem(bytes, count);
}

void IxoHost::MapToLower(char* bytes, std::size_t count, CharSet char_set) {
  if (IxoHost* host = Fallback(this)) host->MapToLower(bytes, count, char_set);
}

void IxoHost::MapToUpper(char* bytes, std::size_t count, CharSet char_set) {
  if (IxoHost* host = Fallback(this)) host->MapToUpper(bytes, count, char_set);
}

char IxoHost::DecimalSeparator() {
  IxoHost* host = Fallback(this);
  return host == nullptr ? '.' : host->DecimalSeparator();
}

bool IxoHost::IsRegEx(std::string_view pattern, int options) {
  IxoHost* host = Fallback(this);
  return host != nullptr && host->IsRegEx(pattern, options);
}

bool IxoHost::MatchesRegEx(std::string_view pattern, std::string_view text, int options) {
  IxoHost* host = Fallback(this);
  return host != nullptr && host->MatchesRegEx(pattern, text, options);
}

bool IxoHost::FindColor(std::string_view name, Color& color) {
  IxoHost* host = Fallback(this);
  return host != nullptr && host->FindColor(name, color);
}

// Files -----------------------------------------------------------------------------------------

bool IxoHost::ReadTextFile(const String& name, String& text) {
  IxoHost* host = Fallback(this);
  return host != nullptr && host->ReadTextFile(name, text);
}

bool IxoHost::IsRepositoryName(const String& name) {
  IxoHost* host = Fallback(this);
  return host != nullptr && host->IsRepositoryName(name);
}

// Reports and windows ---------------------------------------------------------------------------

void IxoHost::ReportAssertion(std::string_view message, const char* source, int line) {
  if (IxoHost* host = Fallback(this)) host->ReportAssertion(message, source, line);
}

void IxoHost::ReportInternalFault(std::string_view message) {
  if (IxoHost* host = Fallback(this)) host->ReportInternalFault(message);
}

int IxoHost::ShowErrorBox(void* parent, int style, const String& title, const String& text) {
  IxoHost* host = Fallback(this);
  return host == nullptr ? IxoErrorBox::kAnswerContinue
                         : host->ShowErrorBox(parent, style, title, text);
}

void* IxoHost::ApplicationWindow() {
  IxoHost* host = Fallback(this);
  return host == nullptr ? nullptr : host->ApplicationWindow();
}

void* IxoHost::TopWindow(int screen) {
  IxoHost* host = Fallback(this);
  return host == nullptr ? nullptr : host->TopWindow(screen);
}

std::intptr_t IxoHost::NativeHandle(const void* window) {
  IxoHost* host = Fallback(this);
  return host == nullptr ? 0 : host->NativeHandle(window);
}

String IxoHost::EventName(std::int32_t index) {
  IxoHost* host = Fallback(this);
  return host == nullptr ? String() : host->EventName(index);
}

void IxoHost::TriggerEvent(std::int32_t number, const String& name, const String& reason) {
  if (IxoHost* host = Fallback(this)) host->TriggerEvent(number, name, reason);
}

void IxoHost::EndProcess(int status) {
  IxoHost* host = Fallback(this);
  if (host == nullptr) std::exit(status);
  host->EndProcess(status);
}

// Machine ---------------------------------------------------------------------------------------

std::uint32_t IxoHost::TickCount() {
  IxoHost* host = Fallback(this);
  return host == nullptr ? 0 : host->TickCount();
}

std::int32_t IxoHost::RandomFifteenBits() {
  IxoHost* host = Fallback(this);
  return host == nullptr ? 0 : host->RandomFifteenBits();
}

void IxoHost::DecipherBlocks(const unsigned char key[8], unsigned char* bytes, std::size_t blocks) {
  if (IxoHost* host = Fallback(this)) host->DecipherBlocks(key, bytes, blocks);
}

void IxoHost::EncipherBlocks(const unsigned char key[8], unsigned char* bytes, std::size_t blocks) {
  if (IxoHost* host = Fallback(this)) host->EncipherBlocks(key, bytes, blocks);
}

std::size_t IxoHost::DefaultMemoryLimit() {
  IxoHost* host = Fallback(this);
  return host == nullptr ? 0 : host->DefaultMemoryLimit();
}

const void* IxoHost::StackLimit() {
  IxoHost* host = Fallback(this);
  return host == nullptr ? nullptr : host->StackLimit();
}

void IxoHost::PrepareMemory(void* memory, std::size_t bytes) noexcept {
  IxoHost* host = Fallback(this);
  if (host != nullptr) host->PrepareMemory(memory, bytes);
}

// Interruption ----------------------------------------------------------------------------------

bool IxoHost::IsInterruptRequested() noexcept {
  // Asked often: without a further question to Fallback.
  IxoHost* const host = ixomep::DefaultHost();
  return host != this && host->IsInterruptRequested();
}
