// Tests of the host interface: installing, falling back to the default host, and the free
// functions over it: reports, windows, events, clock, generator, stack.
#include "ixomep/host/host.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <set>
#include <stdexcept>
#include <thread>

#include "ixomep/host/assertion.h"
#include "ixomep/host/clock.h"
#include "ixomep/host/color.h"
#include "ixomep/host/numbers.h"
#include "ixomep/host/res_id.h"
#include "ixomep/host/windowing.h"
#include "tests/support/test_host.h"

namespace {

using ixomep::test::TestHost;

TEST(Host, The_default_host_answers_while_none_is_installed) {
  EXPECT_EQ(&IxoHost::Current(), ixomep::DefaultHost());
}

TEST(Host, Install_returns_the_host_of_before_and_null_restores_the_default) {
  IxoHost first;
  IxoHost second;
  EXPECT_EQ(IxoHost::Install(&first), nullptr);
  EXPECT_EQ(&IxoHost::Current(), &first);
  EXPECT_EQ(IxoHost::Install(&second), &first);
  EXPECT_EQ(&IxoHost::Current(), &second);
  EXPECT_EQ(IxoHost::Install(nullptr), &second);
  EXPECT_EQ(&IxoHost::Current(), ixomep::DefaultHost());
}

TEST(Host, A_host_that_is_destroyed_while_installed_gives_way_to_the_default) {
  {
    IxoHost host;
    IxoHost::Install(&host);
  }
  EXPECT_EQ(&IxoHost::Current(), ixomep::DefaultHost());
}

TEST(Host, Test_hosts_nest) {
  TestHost outer;
  {
    const TestHost inner;
    EXPECT_EQ(&IxoHost::Current(), &inner);
  }
  EXPECT_EQ(&IxoHost::Current(), &outer);
}

TEST(Host, What_a_host_does_not_override_the_default_host_answers) {
  IxoHost host;
  IxoHost& standard = *ixomep::DefaultHost();
  EXPECT_EQ(host.ResourceText(16101), standard.ResourceText(16101));
  EXPECT_EQ(host.ToUtf8("\xE4"), "\xC3\xA4");
  EXPECT_EQ(host.FromUtf8("\xC3\xA4"), "\xE4");
  char byte = '\xE4';
  host.MapToOem(&byte, 1);
  EXPECT_EQ(byte, '\x84');
  host.MapFromOem(&byte, 1);
  host.MapToUpper(&byte, 1, CharSet::Ansi);
  EXPECT_EQ(byte, '\xC4');
  host.MapToLower(&byte, 1, CharSet::Ansi);
  EXPECT_EQ(byte, '\xE4');
  EXPECT_EQ(host.DecimalSeparator(), '.');
  EXPECT_TRUE(host.IsRegEx("a+", 5));
  EXPECT_TRUE(host.MatchesRegEx("a+", "caat", 5));
  Color color;
  EXPECT_TRUE(host.FindColor("red", color));
  String text;
  EXPECT_FALSE(host.ReadTextFile("/no such file", text));
  EXPECT_TRUE(host.IsRepositoryName("db:\\x"));
  EXPECT_EQ(host.ApplicationWindow(), nullptr);
  EXPECT_EQ(host.TopWindow(0), nullptr);
  EXPECT_EQ(host.NativeHandle(&host), 0);
  EXPECT_EQ(host.EventName(76), standard.EventName(76));
  host.TriggerEvent(1, "", "");
  EXPECT_EQ(host.DefaultMemoryLimit(), standard.DefaultMemoryLimit());
  EXPECT_EQ(host.StackLimit(), standard.StackLimit());
  host.PrepareMemory(nullptr, 0);
  const std::uint32_t before = host.TickCount();
  EXPECT_LE(before, standard.TickCount());
  EXPECT_GE(host.RandomFifteenBits(), 0);
  const unsigned char key[8] = {1, 2, 3, 4, 5, 6, 7, 8};
  std::array<unsigned char, 8> block{};
  host.EncipherBlocks(key, block.data(), 1);
  EXPECT_NE(block, (std::array<unsigned char, 8>{}));
  host.DecipherBlocks(key, block.data(), 1);
  EXPECT_EQ(block, (std::array<unsigned char, 8>{}));
}

TEST(Assertion, Is_reported_with_the_place_of_the_call) {
  TestHost host;
  const int line = __LINE__ + 1;
  ixomep::ReportAssertion("broken contract");
  ixomep::ReportAssertion("source.cpp", 12, "by hand");
  ixomep::ReportAssertion(nullptr, 0, "nowhere");
  ASSERT_EQ(host.assertions.size(), 3U);
  EXPECT_EQ(host.assertions[0].message, "broken contract");
  EXPECT_EQ(host.assertions[0].source, "host_test.cpp");
  EXPECT_EQ(host.assertions[0].line, line);
  EXPECT_EQ(host.assertions[1].source, "source.cpp");
  EXPECT_EQ(host.assertions[1].line, 12);
  EXPECT_EQ(host.assertions[2].source, "");
}

TEST(Assertion, Of_the_default_host_writes_one_line_and_continues) {
  ::testing::internal::CaptureStderr();
  ixomep::ReportAssertion("source.cpp", 12, "broken contract");
  displayErrorMessage("fault inside");
  EXPECT_EQ(::testing::internal::GetCapturedStderr(),
            "assertion failed: broken contract (source.cpp, line 12)\n"
            "internal fault: fault inside\n");
}

// Overrides nothing.
class BareHost : public IxoHost {
 public:
  BareHost() : previous_(IxoHost::Install(this)) {}
  ~BareHost() override { IxoHost::Install(previous_); }

 private:
  IxoHost* previous_;
};

TEST(Host, One_that_overrides_nothing_reports_as_the_default_host_does) {
  const BareHost host;
  ::testing::internal::CaptureStderr();
  ixomep::ReportAssertion("source.cpp", 12, "broken contract");
  displayErrorMessage("fault inside");
  EXPECT_EQ(IxoHost::Current().ShowErrorBox(nullptr, 0, "title", "text"),
            IxoErrorBox::kAnswerContinue);
  EXPECT_EQ(::testing::internal::GetCapturedStderr(),
            "assertion failed: broken contract (source.cpp, line 12)\n"
            "internal fault: fault inside\n"
            "title\ntext\n");
}

TEST(HostDeathTest, One_that_overrides_nothing_ends_the_process_with_the_status) {
  const BareHost host;
  EXPECT_EXIT(IxoHost::Current().EndProcess(7), ::testing::ExitedWithCode(7), "");
}

class ThrowingHost : public IxoHost {
 public:
  ThrowingHost() : previous_(IxoHost::Install(this)) {}
  ~ThrowingHost() override { IxoHost::Install(previous_); }
  void ReportAssertion(std::string_view, const char*, int) override {
    throw std::runtime_error("reporter");
  }
  void ReportInternalFault(std::string_view) override { throw std::runtime_error("reporter"); }

 private:
  IxoHost* previous_;
};

TEST(Assertion, A_reporter_that_throws_does_not_disturb_the_library) {
  const ThrowingHost host;
  EXPECT_NO_THROW(ixomep::ReportAssertion("broken contract"));
  EXPECT_NO_THROW(displayErrorMessage("fault"));
}

TEST(InternalFault, Goes_to_the_host) {
  TestHost host;
  displayErrorMessage("fault");
  EXPECT_EQ(host.internal_faults, std::vector<std::string>{"fault"});
}

TEST(ErrorBox, Hands_window_style_title_and_text_to_the_host_and_returns_its_answer) {
  TestHost host;
  host.error_box_answer = 3;
  int window = 0;
  host.top_window = &window;
  IxoErrorBox box(Ixo_GetTopWindow(0), 64, "text");
  box.SetTitle("title");
  EXPECT_EQ(box.Execute(), 3);
  ASSERT_EQ(host.error_boxes.size(), 1U);
  EXPECT_EQ(host.error_boxes[0].parent, &window);
  EXPECT_EQ(host.error_boxes[0].style, 64);
  EXPECT_EQ(host.error_boxes[0].title, "title");
  EXPECT_EQ(host.error_boxes[0].text, "text");
}

TEST(ErrorBox, Of_the_default_host_writes_title_and_text_and_does_not_end) {
  ::testing::internal::CaptureStderr();
  IxoErrorBox box(nullptr, IxoErrorBox::kStyleFatal, "text");
  box.SetTitle("title");
  EXPECT_EQ(box.Execute(), IxoErrorBox::kAnswerContinue);
  IxoErrorBox untitled(nullptr, IxoErrorBox::kStyleError, "only text");
  EXPECT_NE(untitled.Execute(), IxoErrorBox::kAnswerEnd);
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "title\ntext\nonly text\n");
}

TEST(Windows, Have_native_handles_and_none_has_zero) {
  TestHost host;
  int window = 0;
  host.application_window = &window;
  host.native_handles[&window] = 4711;
  ASSERT_NE(GetpApp(), nullptr);
  EXPECT_EQ(Sysdepen::GethWnd(GetpApp()->GetAppWindow()), 4711);
  EXPECT_EQ(Sysdepen::GethWnd(Ixo_GetTopWindow(0)), 0);
}

TEST(Windows, Are_absent_in_the_default_host) {
  EXPECT_EQ(GetpApp()->GetAppWindow(), nullptr);
  EXPECT_EQ(Ixo_GetTopWindow(0), nullptr);
  EXPECT_EQ(Sysdepen::GethWnd(nullptr), 0);
}

TEST(Event, Exit_of_the_application_reaches_the_host_with_its_name_and_reason) {
  TestHost host;
  IxoEvent(776, Ixo_GetEventNames()[76], "mep error").Trigger();
  ixomep::EndProcess(1);
  ASSERT_EQ(host.events.size(), 1U);
  EXPECT_EQ(host.events[0].number, IxoEvent::kExitApplication);
  EXPECT_EQ(host.events[0].name, Ixo_GetEventNames()[IxoEvent::kExitApplicationName]);
  EXPECT_FALSE(host.events[0].name.IsEmpty());
  EXPECT_EQ(host.events[0].reason, "mep error");
  EXPECT_EQ(host.exit_statuses, std::vector<int>{1});
}

TEST(Event, Names_outside_the_table_are_empty) {
  for (const std::int32_t index : {-1, 0, 77, 2147483647}) {
    EXPECT_TRUE(Ixo_GetEventNames()[index].IsEmpty()) << index;
  }
}

TEST(EndProcessDeathTest, Of_the_default_host_ends_the_process_with_the_status) {
  EXPECT_EXIT(ixomep::EndProcess(7), ::testing::ExitedWithCode(7), "");
}

TEST(Clock, Counts_milliseconds) {
  const std::uint32_t before = GetTickCount();
  std::this_thread::sleep_for(std::chrono::milliseconds(30));
  const std::uint32_t passed = GetTickCount() - before;
  EXPECT_GE(passed, 29U);
  EXPECT_LT(passed, 10000U);
  TestHost host;
  host.tick_count = 0xFFFFFFFFU;
  EXPECT_EQ(GetTickCount(), 0xFFFFFFFFU);
}

TEST(Random, Has_fifteen_bits_and_uses_all_of_the_range) {
  std::int32_t smallest = 32767;
  std::int32_t largest = 0;
  std::set<std::int32_t> seen;
  for (int i = 0; i < 20000; ++i) {
    const std::int32_t number = ixomep::RandomFifteenBits();
    smallest = std::min(smallest, number);
    largest = std::max(largest, number);
    seen.insert(number);
    ASSERT_TRUE(number >= 0 && number <= 32767);
  }
  EXPECT_LT(smallest, 100);
  EXPECT_GT(largest, 32667);
  EXPECT_GT(seen.size(), 10000U);
}

TEST(Random, Follows_the_generator_of_the_standard_library) {
  std::srand(5);
  const std::int32_t first = ixomep::RandomFifteenBits();
  std::srand(5);
  EXPECT_EQ(ixomep::RandomFifteenBits(), first);
  std::srand(5);
  EXPECT_EQ(std::rand() / ((static_cast<long long>(RAND_MAX) + 1) / 32768), first);
}

TEST(Random, An_answer_out_of_range_is_cut_to_fifteen_bits) {
  TestHost host;
  for (const std::int32_t answer : {-1, 32768, 2147483647}) {
    host.random = answer;
    const std::int32_t number = ixomep::RandomFifteenBits();
    EXPECT_TRUE(number >= 0 && number <= 32767) << answer;
  }
}

// The address of something on the stack of the caller.
const char* StackPlace() { return static_cast<const char*>(__builtin_frame_address(0)); }

TEST(Stack, The_limit_lies_below_the_running_function_in_every_thread) {
  const auto* limit = static_cast<const char*>(IxoHost::Current().StackLimit());
  ASSERT_NE(limit, nullptr);
  EXPECT_LT(limit, StackPlace());
  EXPECT_GT(StackPlace() - limit, 64 * 1024);
  const void* other = nullptr;
  std::thread([&other] {
    other = IxoHost::Current().StackLimit();
    EXPECT_LT(static_cast<const char*>(other), StackPlace());
  }).join();
  EXPECT_NE(other, limit);
  EXPECT_EQ(IxoHost::Current().StackLimit(), limit);
}

// Constructed before main and destroyed after everything that tests made: by then the kept patterns
// are gone, and the default host still has to answer.
struct AtExit {
  ~AtExit() {
    const bool answers = !String("text").IsEmpty() && !String(ResId(16101)).IsEmpty() &&
                         IxoHost::Current().IsRegEx("a+b", 5) && GetpApp() != nullptr;
    if (!answers) std::_Exit(99);
  }
};
const AtExit at_exit;

TEST(DefaultHost, Answers_until_the_process_has_ended) {
  // The destructor above ends the test program with an error otherwise.
  EXPECT_TRUE(IxoHost::Current().IsRegEx("a+b", 5));
}

}  // namespace
