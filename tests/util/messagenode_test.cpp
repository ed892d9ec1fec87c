#include "util/messagenode.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace vuk::util {
namespace {

struct Received {
  MessageNode* at;
  std::int32_t id;
  MessageNode* origin;
  MessageNode* sender;
  MessageNode* receiver;
  bool fromBroadcast;
};

// A node that logs what reaches it and can run an action on arrival.
class Probe : public MessageNode {
 public:
  explicit Probe(std::string name, std::vector<Received>* log = nullptr) : MessageNode(std::move(name)), log_(log) {}

  void Receive(Message& message, bool fromBroadcast) override {
    if (log_) log_->push_back({this, message.id, message.origin, message.sender, message.receiver, fromBroadcast});
    if (onReceive) onReceive(message);
  }

  // Break one side of a link, as a faulty subclass could.
  void ForgetListeners() { listeners.clear(); }
  void ForgetSources() { sources.clear(); }

  std::function<void(Message&)> onReceive;

 private:
  std::vector<Received>* log_;
};

TEST(MessageNodeTest, ConnectLinksBothWaysAndAnnouncesItself) {
  std::vector<Received> log;
  Probe listener("listener", &log), source("source", &log);

  EXPECT_TRUE(listener.Connect(&source));

  EXPECT_TRUE(listener.HasSource(&source));
  EXPECT_TRUE(source.HasListener(&listener));
  EXPECT_EQ(listener.GetSource(0), &source);
  EXPECT_EQ(source.GetListener(0), &listener);
  ASSERT_EQ(log.size(), 1u);
  EXPECT_EQ(log[0].at, &source);
  EXPECT_EQ(log[0].id, Message::kConnected);
  EXPECT_EQ(log[0].origin, &listener);
  EXPECT_EQ(log[0].sender, &listener);
  EXPECT_EQ(log[0].receiver, &source);
  EXPECT_FALSE(log[0].fromBroadcast);
}

TEST(MessageNodeTest, ConnectingTwiceSucceedsAndSendsNothingMore) {
  std::vector<Received> log;
  Probe listener("listener"), source("source", &log);
  ASSERT_TRUE(listener.Connect(&source));
  EXPECT_TRUE(listener.Connect(&source));
  EXPECT_EQ(log.size(), 1u);
  EXPECT_EQ(source.GetListenerCount(), 1u);
}

TEST(MessageNodeTest, NullPeersAreRefused) {
  Probe node("node");
  EXPECT_FALSE(node.Connect(nullptr));
  EXPECT_FALSE(node.Disconnect(nullptr));
}

TEST(MessageNodeTest, ConnectingBackAlongAnExistingLinkIsAllowedBothWays) {
  Probe a("a"), b("b");
  ASSERT_TRUE(a.Connect(&b));
  EXPECT_TRUE(b.Connect(&a));  // a two-way conversation is two links
  EXPECT_TRUE(a.HasListener(&b));
  EXPECT_TRUE(b.HasListener(&a));
}

TEST(MessageNodeTest, DisconnectAnnouncesThenUnlinksBothWays) {
  std::vector<Received> log;
  Probe listener("listener"), source("source", &log);
  ASSERT_TRUE(listener.Connect(&source));
  source.onReceive = [&](Message& message) {
    // Still linked while the news arrives.
    if (message.id == Message::kDisconnected) {
      EXPECT_TRUE(source.HasListener(&listener));
    }
  };

  EXPECT_TRUE(listener.Disconnect(&source));

  ASSERT_EQ(log.size(), 2u);
  EXPECT_EQ(log[1].id, Message::kDisconnected);
  EXPECT_EQ(log[1].origin, &listener);
  EXPECT_FALSE(listener.HasSource(&source));
  EXPECT_FALSE(source.HasListener(&listener));
  EXPECT_TRUE(listener.Disconnect(&source));  // not connected: nothing to do
  EXPECT_EQ(log.size(), 2u);
}

TEST(MessageNodeTest, DisconnectWithABrokenMirrorFails) {
  Probe source("source"), listener("listener");  // listener goes first: it still points at source
  ASSERT_TRUE(listener.Connect(&source));
  source.ForgetListeners();
  EXPECT_FALSE(listener.Disconnect(&source));
}

TEST(MessageNodeTest, ConnectOverAHalfLinkFails) {
  Probe listener("listener"), source("source");
  ASSERT_TRUE(listener.Connect(&source));
  listener.ForgetSources();
  EXPECT_FALSE(listener.Connect(&source));
  EXPECT_EQ(source.GetListenerCount(), 1u);
}

TEST(MessageNodeTest, BroadcastCallsListenersLastToFirst) {
  std::vector<Received> log;
  Probe hub("hub"), first("first", &log), second("second", &log), third("third", &log);
  for (Probe* p : {&first, &second, &third}) ASSERT_TRUE(p->Connect(&hub));
  log.clear();

  Message message(42);
  hub.Broadcast(message);

  ASSERT_EQ(log.size(), 3u);
  EXPECT_EQ(log[0].at, &third);
  EXPECT_EQ(log[1].at, &second);
  EXPECT_EQ(log[2].at, &first);
  for (const Received& r : log) {
    EXPECT_TRUE(r.fromBroadcast);
    EXPECT_EQ(r.sender, &hub);
    EXPECT_EQ(r.receiver, r.at);
    EXPECT_EQ(r.origin, nullptr);
  }
  EXPECT_EQ(message.sender, nullptr);
  EXPECT_EQ(message.receiver, nullptr);
}

TEST(MessageNodeTest, ListenerMayDisconnectItselfDuringBroadcast) {
  std::vector<Received> log;
  Probe hub("hub"), first("first", &log), second("second", &log), third("third", &log);
  for (Probe* p : {&first, &second, &third}) ASSERT_TRUE(p->Connect(&hub));
  second.onReceive = [&](Message& message) {
    if (message.id == 7) second.Disconnect(&hub);
  };
  log.clear();

  Message message(7);
  hub.Broadcast(message);

  std::vector<MessageNode*> order;
  for (const Received& r : log) {
    if (r.id == 7) order.push_back(r.at);
  }
  EXPECT_EQ(order, (std::vector<MessageNode*>{&third, &second, &first}));
  EXPECT_EQ(hub.GetListenerCount(), 2u);
  EXPECT_FALSE(hub.HasListener(&second));
}

TEST(MessageNodeTest, ListenerRemovingOthersDuringBroadcastIsSafe) {
  Probe hub("hub"), first("first"), second("second"), third("third");
  for (Probe* p : {&first, &second, &third}) ASSERT_TRUE(p->Connect(&hub));
  int calls = 0;
  auto count = [&](Message& m) { calls += m.id == 9; };
  first.onReceive = count;
  second.onReceive = count;
  third.onReceive = [&](Message& m) {
    count(m);
    if (m.id == 9) {
      first.Disconnect(&hub);
      second.Disconnect(&hub);
    }
  };
  Message message(9);
  hub.Broadcast(message);
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(hub.GetListenerCount(), 1u);
}

TEST(MessageNodeTest, NestedSendRestoresRoutingFields) {
  std::vector<Received> log;
  Probe a("a"), b("b", &log), c("c", &log);
  b.onReceive = [&](Message& message) { b.Send(&c, message); };

  Message message(5, 6, 7);
  a.Originate(&b, message);

  ASSERT_EQ(log.size(), 2u);
  EXPECT_EQ(log[0].sender, &a);
  EXPECT_EQ(log[0].origin, &a);
  EXPECT_EQ(log[1].sender, &b);
  EXPECT_EQ(log[1].receiver, &c);
  EXPECT_EQ(log[1].origin, &a);
  EXPECT_EQ(message.origin, nullptr);
  EXPECT_EQ(message.sender, nullptr);
  EXPECT_EQ(message.receiver, nullptr);
  EXPECT_EQ(message.value, 6);
  EXPECT_EQ(message.data, 7u);
}

TEST(MessageNodeTest, SendToNullDoesNothing) {
  Probe a("a");
  Message message(1);
  a.Send(nullptr, message);
  EXPECT_EQ(message.sender, nullptr);
}

TEST(MessageNodeTest, OriginateBroadcastSetsOriginForTheDuration) {
  std::vector<Received> log;
  Probe hub("hub"), listener("listener", &log);
  ASSERT_TRUE(listener.Connect(&hub));
  Message message(3);
  hub.OriginateBroadcast(message);
  ASSERT_EQ(log.size(), 1u);
  EXPECT_EQ(log[0].origin, &hub);
  EXPECT_EQ(message.origin, nullptr);
}

TEST(MessageNodeTest, DestructionDetachesBothWays) {
  std::vector<Received> log;
  Probe upstream("upstream", &log), downstream("downstream", &log);
  {
    Probe middle("middle");
    ASSERT_TRUE(middle.Connect(&upstream));
    ASSERT_TRUE(downstream.Connect(&middle));
    log.clear();
  }
  EXPECT_EQ(upstream.GetListenerCount(), 0u);
  EXPECT_EQ(downstream.GetSourceCount(), 0u);
  ASSERT_EQ(log.size(), 1u);  // the source hears of it; the dying node can't
  EXPECT_EQ(log[0].at, &upstream);
  EXPECT_EQ(log[0].id, Message::kDisconnected);
}

TEST(MessageNodeTest, CopyConnectionsReplacesOwnLinks) {
  Probe model("model"), copy("copy"), source("source"), listener("listener"), old("old");
  ASSERT_TRUE(model.Connect(&source));
  ASSERT_TRUE(listener.Connect(&model));
  ASSERT_TRUE(copy.Connect(&old));

  copy.CopyConnections(model);

  EXPECT_FALSE(copy.HasSource(&old));
  EXPECT_FALSE(old.HasListener(&copy));
  EXPECT_TRUE(copy.HasSource(&source));
  EXPECT_TRUE(copy.HasListener(&listener));
  EXPECT_TRUE(model.HasSource(&source));  // the model keeps its own
}

TEST(MessageNodeTest, OutOfRangeLookupsAnswerNull) {
  Probe node("node");
  EXPECT_EQ(node.GetSource(0), nullptr);
  EXPECT_EQ(node.GetListener(3), nullptr);
  node.SetName("renamed");
  EXPECT_EQ(node.GetName(), "renamed");
}

class Marker : public DynamicObject {
 public:
  Marker(int id, std::vector<int>& order) : id_(id), order_(order) {}
  ~Marker() override { order_.push_back(id_); }

 private:
  int id_;
  std::vector<int>& order_;
};

TEST(MessageTest, AttachmentsAreDestroyedLastToFirst) {
  std::vector<int> order;
  {
    Message message(1);
    for (int i = 0; i < 3; ++i) message.attachments.push_back(std::make_unique<Marker>(i, order));
  }
  EXPECT_EQ(order, (std::vector<int>{2, 1, 0}));
}

}  // namespace
}  // namespace vuk::util
