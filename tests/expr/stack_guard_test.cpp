// How much native stack is left: the host's answer, the fallback, and the refresh before giving up.
#include "ixomep/expr/stack_guard.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <thread>

#include "tests/support/test_host.h"

namespace {

using ixomep::StackGuard;
using ixomep::test::TestHost;

std::uintptr_t Here() { return reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0)); }

const void* At(std::uintptr_t address) { return reinterpret_cast<const void*>(address); }

// Every thread remembers its own answer, so each case runs in a thread of its own.
template <class Body>
void OnFreshThread(Body body) {
  std::thread(body).join();
}

TEST(StackGuard, There_is_room_near_the_top_of_a_thread) {
  OnFreshThread([] { EXPECT_TRUE(StackGuard::HasRoom()); });
}

TEST(StackGuard, There_is_no_room_within_the_reserve_above_the_stacks_end) {
  TestHost host;
  OnFreshThread([&host] {
    host.stack_limit = At(Here() - 64 * 1024);
    EXPECT_FALSE(StackGuard::HasRoom());
  });
}

TEST(StackGuard, A_thread_that_has_no_room_asks_again) {
  TestHost host;
  OnFreshThread([&host] {
    host.stack_limit = At(Here() - 64 * 1024);
    EXPECT_FALSE(StackGuard::HasRoom());
    host.stack_limit = At(Here() - 4096 * 1024);
    EXPECT_TRUE(StackGuard::HasRoom());
  });
}

TEST(StackGuard, A_thread_that_has_room_remembers_the_answer) {
  TestHost host;
  OnFreshThread([&host] {
    host.stack_limit = At(Here() - 4096 * 1024);
    EXPECT_TRUE(StackGuard::HasRoom());
    host.stack_limit = At(Here() - 64 * 1024);
    EXPECT_TRUE(StackGuard::HasRoom());
  });
}

// Goes down until the guard stops it and gives the bytes that it got.
[[gnu::noinline]] std::uintptr_t Descend(std::uintptr_t top) {
  volatile char frame[1024] = {};
  if (!StackGuard::HasRoom()) return top - Here();
  frame[0] = 1;
  return Descend(top) + static_cast<std::uintptr_t>(frame[0] - 1);
}

TEST(StackGuard, Without_an_answer_a_fixed_depth_below_the_first_call_counts) {
  TestHost host;
  host.stack_limit = nullptr;
  OnFreshThread([] {
    const std::uintptr_t depth = Descend(Here());
    EXPECT_GT(depth, 100u * 1024);
    EXPECT_LT(depth, 4096u * 1024);
  });
}

TEST(StackGuard, Recursion_that_asks_ends_before_the_stack_does) {
  OnFreshThread([] { EXPECT_GT(Descend(Here()), 1024u * 1024); });
}

}  // namespace
