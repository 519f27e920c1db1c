// The error box: what the host is asked to show, and when the process ends.
#include <gtest/gtest.h>

#include "tests/parser/queries.h"

namespace ixomep::test {
namespace {

constexpr int kContinue = 0;
constexpr int kEnd = 3;

TEST(ErrorBox, Shows_the_text_in_the_style_of_an_error) {
  TestHost host;
  int window = 0;
  host.top_window = &window;
  IxoMepParser::SetErrorBoxTitle("Title");
  IxoMepParser::ShowErrorBox("text", false);
  ASSERT_EQ(host.error_boxes.size(), 1U);
  EXPECT_EQ(host.error_boxes[0].parent, &window);
  EXPECT_EQ(host.error_boxes[0].style, 16);
  EXPECT_EQ(host.error_boxes[0].title, "Title");
  EXPECT_EQ(host.error_boxes[0].text, "text");
}

TEST(ErrorBox, A_fatal_one_has_its_style_and_asks_the_question) {
  TestHost host;
  const String text = "text";
  IxoMepParser::ShowErrorBox(text, true);
  ASSERT_EQ(host.error_boxes.size(), 1U);
  EXPECT_EQ(host.error_boxes[0].style, 64);
  EXPECT_EQ(host.error_boxes[0].text, "textEnd the application?");
  EXPECT_EQ(text, "text");
}

TEST(ErrorBox, The_question_is_the_hosts) {
  TestHost host;
  host.resources[33570584] = " Beenden?";
  IxoMepParser::ShowErrorBox("text", true);
  EXPECT_EQ(host.error_boxes.at(0).text, "text Beenden?");
}

TEST(ErrorBox, Of_a_parser_shows_its_error_text_and_is_not_fatal) {
  TestHost host;
  host.error_box_answer = kEnd;
  const auto parser = FailText("!");
  parser->ShowErrorBox();
  ASSERT_EQ(host.error_boxes.size(), 1U);
  EXPECT_EQ(host.error_boxes[0].style, 16);
  EXPECT_EQ(host.error_boxes[0].text, parser->GetErrorText());
  EXPECT_TRUE(host.exit_statuses.empty());
}

TEST(ErrorBox, The_title_is_that_of_all_later_boxes) {
  TestHost host;
  IxoMepParser::SetErrorBoxTitle("First");
  IxoMepParser::ShowErrorBox("a", false);
  IxoMepParser::SetErrorBoxTitle("Second");
  IxoMepParser::ShowErrorBox("b", true);
  ReadText("A")->ShowErrorBox();
  EXPECT_EQ(host.error_boxes.at(0).title, "First");
  EXPECT_EQ(host.error_boxes.at(1).title, "Second");
  EXPECT_EQ(host.error_boxes.at(2).title, "Second");
  IxoMepParser::SetErrorBoxTitle("");
}

TEST(ErrorBox, A_fatal_one_that_is_answered_with_the_end_announces_it_and_ends_with_1) {
  TestHost host;
  host.error_box_answer = kEnd;
  IxoMepParser::ShowErrorBox("text", true);
  ASSERT_EQ(host.events.size(), 1U);
  EXPECT_EQ(host.events[0].number, 776);
  EXPECT_EQ(host.events[0].name, "exitApplication");
  EXPECT_EQ(host.events[0].reason, "mep error");
  EXPECT_EQ(host.exit_statuses, std::vector<int>{1});
}

TEST(ErrorBox, The_event_is_named_by_entry_76_of_the_table) {
  class NamingHost : public TestHost {
   public:
    String EventName(std::int32_t index) override { return "name " + std::to_string(index); }
  };
  NamingHost host;
  host.error_box_answer = kEnd;
  IxoMepParser::ShowErrorBox("text", true);
  EXPECT_EQ(host.events.at(0).name, "name 76");
}

TEST(ErrorBox, A_fatal_one_that_is_answered_otherwise_ends_nothing) {
  TestHost host;
  for (const int answer : {kContinue, 1, 2, 4, -1}) {
    host.error_box_answer = answer;
    IxoMepParser::ShowErrorBox("text", true);
  }
  EXPECT_EQ(host.error_boxes.size(), 5U);
  EXPECT_TRUE(host.events.empty());
  EXPECT_TRUE(host.exit_statuses.empty());
}

TEST(ErrorBox, One_that_is_not_fatal_never_ends_the_process) {
  TestHost host;
  for (const int answer : {kContinue, 1, 2, kEnd, 4}) {
    host.error_box_answer = answer;
    IxoMepParser::ShowErrorBox("text", false);
  }
  EXPECT_EQ(host.error_boxes.size(), 5U);
  EXPECT_TRUE(host.events.empty());
  EXPECT_TRUE(host.exit_statuses.empty());
}

TEST(ErrorBox, Without_memory_for_the_question_the_text_is_shown_alone) {
  TestHost host;
  const String text = String::Filled(10000, 't');
  const ScopedMemoryLimit limit(100);
  IxoMepParser::ShowErrorBox(text, true);
  ASSERT_EQ(host.error_boxes.size(), 1U);
  EXPECT_EQ(host.error_boxes[0].style, 64);
  EXPECT_EQ(host.error_boxes[0].text, text);
}

}  // namespace
}  // namespace ixomep::test
