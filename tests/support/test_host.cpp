// TestHost and ScopedMemoryLimit. See test_host.h.
#include "tests/support/test_host.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>

#include "ixomep/host/memory_budget.h"

void PrintTo(const String& text, std::ostream* out) {
  *out << '"';
  for (const char byte : text.view()) {
    const auto value = static_cast<unsigned char>(byte);
    if (value >= ' ' && value < 127) {
      *out << byte;
    } else {
      constexpr std::string_view kDigits = "0123456789ABCDEF";
      *out << "\\x" << kDigits[value >> 4] << kDigits[value & 15U];
    }
  }
  *out << '"';
}

namespace ixomep::test {

TestHost::TestHost() : previous_(IxoHost::Install(this)) {}

TestHost::~TestHost() { IxoHost::Install(previous_); }

int TestHost::ReadsOf(std::string_view name) const {
  return static_cast<int>(std::count(read_names.begin(), read_names.end(), name));
}

String TestHost::ResourceText(std::int32_t number) {
  const auto found = resources.find(number);
  return found == resources.end() ? IxoHost::ResourceText(number) : found->second;
}

char TestHost::DecimalSeparator() {
  return decimal_separator ? *decimal_separator : IxoHost::DecimalSeparator();
}

bool TestHost::ReadTextFile(const String& name, String& text) {
  read_names.emplace_back(name.view());
  const auto found = files.find(read_names.back());
  if (found == files.end()) return any_file && IxoHost::ReadTextFile(name, text);
  text = found->second;
  return true;
}

void TestHost::ReportAssertion(std::string_view message, const char* source, int line) {
  assertions.push_back({std::string(message), source, line});
}

void TestHost::ReportInternalFault(std::string_view message) {
  internal_faults.emplace_back(message);
}

int TestHost::ShowErrorBox(void* parent, int style, const String& title, const String& text) {
  error_boxes.push_back({parent, style, title, text});
  return error_box_answer;
}

void* TestHost::ApplicationWindow() { return application_window; }

void* TestHost::TopWindow(int) { return top_window; }

std::intptr_t TestHost::NativeHandle(const void* window) {
  const auto found = native_handles.find(window);
  return found == native_handles.end() ? 0 : found->second;
}

void TestHost::TriggerEvent(std::int32_t number, const String& name, const String& reason) {
  events.push_back({number, name, reason});
}

void TestHost::EndProcess(int status) { exit_statuses.push_back(status); }

std::uint32_t TestHost::TickCount() { return tick_count; }

std::int32_t TestHost::RandomFifteenBits() {
  return random ? *random : IxoHost::RandomFifteenBits();
}

std::size_t TestHost::DefaultMemoryLimit() {
  return memory_limit ? *memory_limit : IxoHost::DefaultMemoryLimit();
}

const void* TestHost::StackLimit() { return stack_limit ? *stack_limit : IxoHost::StackLimit(); }

ScopedMemoryLimit::ScopedMemoryLimit(std::size_t more_bytes) : previous_(MemoryBudget::Limit()) {
  MemoryBudget::SetLimit(MemoryBudget::InUse() + more_bytes);
}

ScopedMemoryLimit::~ScopedMemoryLimit() { MemoryBudget::SetLimit(previous_); }

std::uint32_t RandomSeed(int rounds) {
  const char* given = std::getenv("MEP_TEST_SEED");
  constexpr std::uint32_t kSeed = 20240611;
  const std::uint32_t seed =
      given == nullptr ? kSeed : static_cast<std::uint32_t>(std::strtoul(given, nullptr, 10));
  std::cout << "MEP_TEST_SEED=" << seed << ", " << rounds << " rounds\n";
  return seed;
}

}  // namespace ixomep::test
