// TestHost: a host for tests. It installs itself for its lifetime, serves files from memory,
// records what the library reports, and never ends the process. What is not set here, the default
// host answers. ScopedMemoryLimit lets allocations fail after a chosen number of bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "ixomep/host/host.h"
#include "ixomep/host/string.h"

// Shows a String in a failed comparison; found by the test framework.
void PrintTo(const String& text, std::ostream* out);

namespace ixomep::test {

class TestHost : public IxoHost {
 public:
  struct AssertionReport {
    std::string message;
    std::string source;
    int line;
  };
  struct ErrorBox {
    void* parent;
    int style;
    String title;
    String text;
  };
  struct Event {
    std::int32_t number;
    String name;
    String reason;
  };

  // Installs the host; the destructor installs the one that was there before.
  TestHost();
  ~TestHost() override;

  // Files by their exact name. With any_file, names that are not here are read from the system.
  std::map<std::string, std::string> files;
  bool any_file = false;
  // Every name asked for, in order, found or not.
  std::vector<std::string> read_names;
  int ReadsOf(std::string_view name) const;

  // Resource texts that replace the default ones.
  std::map<std::int32_t, String> resources;

  std::vector<AssertionReport> assertions;
  std::vector<std::string> internal_faults;

  std::vector<ErrorBox> error_boxes;
  int error_box_answer = 0;
  std::vector<Event> events;
  // The statuses with which the process would have ended.
  std::vector<int> exit_statuses;

  // Windows are addresses; their native handles are the numbers here, 0 for any other.
  void* application_window = nullptr;
  void* top_window = nullptr;
  std::map<const void*, std::intptr_t> native_handles;

  std::uint32_t tick_count = 0;
  std::optional<std::int32_t> random;
  std::optional<char> decimal_separator;
  std::optional<const void*> stack_limit;
  std::optional<std::size_t> memory_limit;

  String ResourceText(std::int32_t number) override;
  char DecimalSeparator() override;
  bool ReadTextFile(const String& name, String& text) override;
  void ReportAssertion(std::string_view message, const char* source, int line) override;
  void ReportInternalFault(std::string_view message) override;
  int ShowErrorBox(void* parent, int style, const String& title, const String& text) override;
  void* ApplicationWindow() override;
  void* TopWindow(int screen) override;
  std::intptr_t NativeHandle(const void* window) override;
  void TriggerEvent(std::int32_t number, const String& name, const String& reason) override;
  void EndProcess(int status) override;
  std::uint32_t TickCount() override;
  std::int32_t RandomFifteenBits() override;
  std::size_t DefaultMemoryLimit() override;
  const void* StackLimit() override;

 private:
  IxoHost* previous_;
};

// Lets texts and values take that many bytes more than are in use now; the limit of before comes
// back at the end.
class ScopedMemoryLimit {
 public:
  explicit ScopedMemoryLimit(std::size_t more_bytes);
  ScopedMemoryLimit(const ScopedMemoryLimit&) = delete;
  ScopedMemoryLimit& operator=(const ScopedMemoryLimit&) = delete;
  ~ScopedMemoryLimit();

 private:
  std::size_t previous_;
};

// The seed of a random test: the environment's MEP_TEST_SEED, else a fixed one. Prints it together
// with the number of rounds, so that a run can be repeated or varied.
std::uint32_t RandomSeed(int rounds);

}  // namespace ixomep::test
