// The limits of the library, set from options; time is measured from the reading of the option.
#include "tools/mep/limits.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <limits>
#include <new>
#include <optional>
#include <string>
#include <string_view>

namespace mep {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::int32_t kInterruptedText = 16204;

struct Timeout {
  Clock::time_point end;
  std::string seconds;  // as the user wrote them
};

std::optional<Timeout>& TheTimeout() {
  static std::optional<Timeout> timeout;
  return timeout;
}

std::string TimeText() { return "The limit of " + TheTimeout()->seconds + " seconds is exceeded."; }

// A number from 1 and nothing else.
std::optional<std::uint64_t> ReadCount(std::string_view text) {
  std::uint64_t count = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, count);
  if (error != std::errc() || stop != end || count == 0) return std::nullopt;
  return count;
}

// Bytes: a number, with K, M or G behind it for the powers of 1024.
std::optional<std::size_t> ReadSize(std::string_view text) {
  std::size_t unit = 1;
  const std::size_t letter = text.empty() ? 0 : std::string_view("KkMmGg").find(text.back());
  if (!text.empty() && letter != std::string_view::npos) {
    for (std::size_t i = 0; i <= letter / 2; ++i) unit *= 1024;
    text.remove_suffix(1);
  }
  const std::optional<std::uint64_t> count = ReadCount(text);
  if (!count || *count > std::numeric_limits<std::size_t>::max() / unit) return std::nullopt;
  return static_cast<std::size_t>(*count) * unit;
}

std::optional<Clock::duration> ReadSeconds(std::string_view text) {
  constexpr double kMost = 1e9;
  double seconds = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, seconds);
  if (error != std::errc() || stop != end || !(seconds > 0 && seconds <= kMost)) {
    return std::nullopt;
  }
  return std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
}

bool SetMaxSteps(const std::string& text) {
  const auto steps = ReadCount(text);
  if (!steps) return false;
  IxoLimits limits = IxoHost::GetLimits();
  limits.steps = *steps;
  IxoHost::SetLimits(limits);
  return true;
}

bool SetMaxMemory(const std::string& text) {
  const auto memory = ReadSize(text);
  if (!memory) return false;
  IxoLimits limits = IxoHost::GetLimits();
  limits.memory = *memory;
  IxoHost::SetLimits(limits);
  return true;
}

bool SetTimeout(const std::string& text) {
  const auto duration = ReadSeconds(text);
  if (!duration) return false;
  TheTimeout() = Timeout{Clock::now() + *duration, text};
  return true;
}

void AddLimit(CLI::App& app, const char* name, const char* help, const char* type,
              bool (*set)(const std::string&)) {
  const auto read = [name, set](const std::string& text) {
    if (!set(text)) throw CLI::ValidationError(name, "\"" + text + "\" is no limit");
  };
  app.add_option_function<std::string>(name, read, help)->type_name(type);
}

}  // namespace

bool LimitedHost::IsInterruptRequested() noexcept {
  const std::optional<Timeout>& timeout = TheTimeout();
  return timeout && Clock::now() >= timeout->end;
}

String LimitedHost::ResourceText(std::int32_t number) {
  if (number != kInterruptedText || !TheTimeout()) return IxoHost::ResourceText(number);
  return String(TimeText());
}

void CheckTime() {
  if (!TheTimeout() || Clock::now() < TheTimeout()->end) return;
  throw LimitReached(TimeText());
}

const IxoMepElement& ElementAt(const IxoMepParser& parser, std::int32_t index) {
  const IxoMepElement* const element = parser.GetElement(index);
  if (element == nullptr) throw std::bad_alloc();
  return *element;
}

void CheckMemoryLimit() {
  const std::size_t memory = IxoHost::GetLimits().memory;
  if (memory == 0) return;
  throw LimitReached("The limit of " + std::to_string(memory) + " bytes of memory is exceeded.");
}

void AddLimitOptions(CLI::App& app) {
  AddLimit(app, "--max-steps", "End an evaluation after so many passes and calls", "N",
           &SetMaxSteps);
  AddLimit(app, "--max-memory", "End it when values need more bytes (K, M, G behind the number)",
           "SIZE", &SetMaxMemory);
  AddLimit(app, "--timeout", "End what is read, evaluated or printed after so many seconds",
           "SECONDS", &SetTimeout);
}

}  // namespace mep
