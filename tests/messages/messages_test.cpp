// Message ports: registration, look-up by address and text, delivery, answers.
#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "ixomep/messages/message.h"
#include "ixomep/messages/message_port.h"
#include "ixomep/messages/message_port_manager.h"
#include "tests/support/test_host.h"

namespace {

using ixomep::test::TestHost;

class Port : public IxoMessagePort {
 public:
  explicit Port(const char* name) : IxoMessagePort(name) {}
  bool IsAvailable() override {
    ++asked;
    return available;
  }
  void Activate() override { ++unused_calls; }
  void Receive(IxoMessage& message) override {
    received.push_back(message.GetText());
    infos.push_back(message.GetInfo());
    if (on_receive) on_receive(message);
  }
  void Deactivate() override { ++unused_calls; }

  std::function<void(IxoMessage&)> on_receive;
  std::vector<String> received;
  std::vector<void*> infos;
  bool available = true;
  int asked = 0;
  int unused_calls = 0;
};

IxoMessagePortManager& Manager() { return IxoMessagePortManager::Instance(); }

// One block of names, so that the order of their addresses is known.
constexpr std::array<char[8], 4> kNames = {{"first", "second", "third", "fourth"}};

TEST(WellKnownNames, EachIsTheAddressOfItsOwnText) {
  using P = IxoMessagePort;
  const std::vector<std::pair<const char* (*)() noexcept, const char*>> names = {
      {P::Acquisition, "Acquisition"},
      {P::IxoScript, "IxoScript"},
      {P::Analysis, "Analysis"},
      {P::Application, "Application"},
      {P::IQL, "IQL"},
      {P::Core, "Core"},
      {P::CoreUI, "CoreUI"},
      {P::Documentation, "Documentation"},
      {P::Evaluation, "Evaluation"},
      {P::ImportExport, "ImportExport"},
      {P::Modeling, "Modeling"},
      {P::Simulation, "Simulation"},
      {P::UserMgt, "UserMgt"},
      {P::Drawing, "Drawing"},
      {P::DB, "DB"},
      {P::Explorer, "Explorer"}};
  std::set<const char*> addresses;
  for (const auto& [function, text] : names) {
    EXPECT_STREQ(function(), text);
    EXPECT_EQ(function(), function());
    addresses.insert(function());
  }
  EXPECT_EQ(addresses.size(), 16u);
}

TEST(Message, Constructors_set_the_text_and_leave_info_and_answer_empty) {
  EXPECT_TRUE(IxoMessage().GetText().IsEmpty());
  EXPECT_EQ(IxoMessage(String("a")).GetText(), "a");
  EXPECT_EQ(IxoMessage("b").GetText(), "b");
  EXPECT_TRUE(IxoMessage(static_cast<const char*>(nullptr)).GetText().IsEmpty());
  EXPECT_EQ(IxoMessage("b").GetInfo(), nullptr);
  EXPECT_TRUE(IxoMessage("b").GetAnswer().IsEmpty());
}

TEST(Message, Assigning_a_text_replaces_the_text_only) {
  int companion = 0;
  IxoMessage message("old");
  message.SetInfo(&companion);
  message.SetAnswer("kept");
  message = String("new");
  EXPECT_EQ(message.GetText(), "new");
  message = "newer";
  EXPECT_EQ(message.GetText(), "newer");
  EXPECT_EQ(message.GetInfo(), &companion);
  EXPECT_EQ(message.GetAnswer(), "kept");
}

TEST(Message, SetAnswer_appends_each_answer_on_its_own_line) {
  IxoMessage message;
  message.SetAnswer("a");
  message.SetAnswer("b");
  EXPECT_EQ(message.GetAnswer(), "a\nb");
}

TEST(Message, SetAnswer_adds_no_second_line_feed) {
  IxoMessage message;
  message.SetAnswer("a\n");
  message.SetAnswer("b");
  EXPECT_EQ(message.GetAnswer(), "a\nb");
}

TEST(Message, SetAnswer_of_the_own_answer_doubles_it) {
  IxoMessage message;
  message.SetAnswer("a");
  message.SetAnswer(message.GetAnswer());
  EXPECT_EQ(message.GetAnswer(), "a\na");
}

TEST(Message, SetAnswer_of_an_empty_text_still_starts_a_line) {
  IxoMessage message;
  message.SetAnswer("");
  EXPECT_EQ(message.GetAnswer(), "");
  message.SetAnswer("a");
  message.SetAnswer("");
  EXPECT_EQ(message.GetAnswer(), "a\n");
}

TEST(Port, Is_registered_from_construction_to_destruction) {
  {
    Port port(IxoMessagePort::Core());
    EXPECT_EQ(port.GetMsgPortName(), IxoMessagePort::Core());
    EXPECT_EQ(Manager().FindMessagePort(IxoMessagePort::Core()), &port);
    EXPECT_EQ(Manager().getMessagePortContainer().size(), 1u);
  }
  EXPECT_EQ(Manager().FindMessagePort(IxoMessagePort::Core()), nullptr);
  EXPECT_TRUE(Manager().getMessagePortContainer().empty());
}

TEST(Port, A_later_port_of_the_same_address_replaces_the_earlier) {
  Port first(IxoMessagePort::Core());
  Port second(IxoMessagePort::Core());
  EXPECT_EQ(Manager().FindMessagePort(IxoMessagePort::Core()), &second);
}

TEST(Port, Destroying_it_unregisters_the_name_although_a_newer_port_holds_it) {
  auto first = std::make_unique<Port>(IxoMessagePort::Core());
  Port second(IxoMessagePort::Core());
  first.reset();
  EXPECT_EQ(Manager().FindMessagePort(IxoMessagePort::Core()), nullptr);
}

TEST(Manager, ExistsMessagePort_asks_the_port_whether_it_is_available) {
  EXPECT_FALSE(Manager().ExistsMessagePort(IxoMessagePort::DB()));
  Port port(IxoMessagePort::DB());
  EXPECT_TRUE(Manager().ExistsMessagePort(IxoMessagePort::DB()));
  port.available = false;
  EXPECT_FALSE(Manager().ExistsMessagePort(IxoMessagePort::DB()));
  EXPECT_EQ(port.asked, 2);
}

TEST(Manager, FindMessagePort_looks_up_by_address_only) {
  Port port(IxoMessagePort::DB());
  const std::string same_text = "DB";
  EXPECT_EQ(Manager().FindMessagePort(same_text.c_str()), nullptr);
  EXPECT_FALSE(Manager().ExistsMessagePort(same_text.c_str()));
}

TEST(Manager, GetMPNameStrAddress_finds_the_registered_address_of_a_text) {
  Port port(IxoMessagePort::DB());
  EXPECT_EQ(Manager().GetMPNameStrAddress("DB"), IxoMessagePort::DB());
  EXPECT_EQ(Manager().GetMPNameStrAddress("db"), nullptr);
  EXPECT_EQ(Manager().GetMPNameStrAddress(""), nullptr);
}

TEST(Manager, Orders_ports_by_address_not_by_text) {
  Port later(kNames[1]);
  Port earlier(kNames[0]);
  std::vector<IxoMessagePort*> order;
  for (const auto& [name, port] : Manager().getMessagePortContainer()) order.push_back(port);
  EXPECT_EQ(order, (std::vector<IxoMessagePort*>{&earlier, &later}));
}

TEST(SendTo, Delivers_the_message_itself) {
  Port port(IxoMessagePort::Simulation());
  port.on_receive = [](IxoMessage& message) { message.SetAnswer("done"); };
  int companion = 0;
  IxoMessage message("run");
  message.SetInfo(&companion);
  EXPECT_TRUE(message.SendTo(IxoMessagePort::Simulation()));
  EXPECT_EQ(port.received, std::vector<String>{"run"});
  EXPECT_EQ(port.infos, std::vector<void*>{&companion});
  EXPECT_EQ(message.GetAnswer(), "done");
  EXPECT_EQ(port.unused_calls, 0);
}

TEST(SendTo, A_name_built_at_run_time_reaches_the_port_of_that_text) {
  Port port(IxoMessagePort::Modeling());
  const std::string built = std::string("Model") + "ing";
  EXPECT_TRUE(IxoMessage("hello").SendTo(built.c_str()));
  EXPECT_EQ(port.received.size(), 1u);
}

TEST(SendTo, Prefers_the_port_of_the_address_to_one_of_the_text) {
  const std::string same_text = "Modeling";
  Port by_text(IxoMessagePort::Modeling());
  Port by_address(same_text.c_str());
  EXPECT_TRUE(IxoMessage("hello").SendTo(same_text.c_str()));
  EXPECT_EQ(by_address.received.size(), 1u);
  EXPECT_TRUE(by_text.received.empty());
}

TEST(SendTo, Delivers_to_a_port_that_is_not_available) {
  Port port(IxoMessagePort::Modeling());
  port.available = false;
  EXPECT_TRUE(IxoMessage("hello").SendTo(IxoMessagePort::Modeling()));
  EXPECT_EQ(port.received.size(), 1u);
  EXPECT_EQ(port.asked, 0);
}

TEST(SendTo, An_unknown_port_is_reported_and_false) {
  TestHost host;
  EXPECT_FALSE(IxoMessage("hello").SendTo("Nobody"));
  ASSERT_EQ(host.assertions.size(), 1u);
  EXPECT_NE(host.assertions[0].message.find("Nobody"), std::string::npos);
  EXPECT_GT(host.assertions[0].line, 0);
  EXPECT_FALSE(IxoMessage("hello").SendTo(nullptr));
  EXPECT_EQ(host.assertions.size(), 2u);
}

TEST(SendTo, A_port_may_destroy_itself_while_it_receives) {
  auto port = std::make_unique<Port>(IxoMessagePort::Modeling());
  port->on_receive = [&port](IxoMessage&) {
    // Moved out first: the function must not be destroyed while it runs.
    const auto keep = std::move(port->on_receive);
    port.reset();
  };
  EXPECT_TRUE(IxoMessage("die").SendTo(IxoMessagePort::Modeling()));
  EXPECT_EQ(port, nullptr);
}

TEST(SendToAll, Without_ports_does_nothing) {
  TestHost host;
  IxoMessage message("hello");
  message.SendToAll();
  EXPECT_TRUE(host.assertions.empty());
  EXPECT_TRUE(message.GetAnswer().IsEmpty());
}

TEST(SendToAll, Calls_every_port_in_ascending_order_of_the_addresses) {
  Port third(kNames[2]);
  Port first(kNames[0]);
  Port second(kNames[1]);
  for (Port* port : {&first, &second, &third}) {
    port->on_receive = [port](IxoMessage& m) { m.SetAnswer(port->GetMsgPortName()); };
  }
  IxoMessage message("who");
  message.SendToAll();
  EXPECT_EQ(message.GetAnswer(), "first\nsecond\nthird");
}

TEST(SendToAll, A_port_unregistered_meanwhile_is_not_called) {
  Port first(kNames[0]);
  auto second = std::make_unique<Port>(kNames[1]);
  Port third(kNames[2]);
  first.on_receive = [&second](IxoMessage&) { second.reset(); };
  IxoMessage("who").SendToAll();
  EXPECT_EQ(second, nullptr);
  EXPECT_EQ(third.received.size(), 1u);
}

TEST(SendToAll, A_port_that_unregisters_itself_does_not_stop_the_delivery) {
  auto first = std::make_unique<Port>(kNames[0]);
  Port second(kNames[1]);
  first->on_receive = [&first](IxoMessage&) {
    const auto keep = std::move(first->on_receive);
    first.reset();
  };
  IxoMessage("who").SendToAll();
  EXPECT_EQ(second.received.size(), 1u);
}

TEST(SendToAll, A_port_registered_meanwhile_is_called_when_its_address_is_still_to_come) {
  std::unique_ptr<Port> earlier;
  std::unique_ptr<Port> later;
  Port second(kNames[1]);
  second.on_receive = [&](IxoMessage&) {
    earlier = std::make_unique<Port>(kNames[0]);
    later = std::make_unique<Port>(kNames[3]);
  };
  IxoMessage("who").SendToAll();
  EXPECT_TRUE(earlier->received.empty());
  EXPECT_EQ(later->received.size(), 1u);
  EXPECT_EQ(second.received.size(), 1u);
}

}  // namespace
