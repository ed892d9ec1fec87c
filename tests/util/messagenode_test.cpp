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
  explicit Probe(std::vector<Received>* log = nullptr) : log_(log) {}

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

TEST(MessageNode, ConnectAndDisconnectLinkBothWaysAndAnnounceThemselves) {
  std::vector<Received> log;
  Probe listener, source(&log);
  EXPECT_TRUE(listener.Connect(&source));
  EXPECT_TRUE(listener.Connect(&source));  // again: true, and nothing sent
  EXPECT_TRUE(listener.HasSource(&source));
  EXPECT_EQ(source.GetListener(0), &listener);
  EXPECT_EQ(source.GetListenerCount(), 1u);
  EXPECT_EQ(source.GetListener(1), nullptr);
  ASSERT_EQ(log.size(), 1u);
  EXPECT_EQ(log[0].id, Message::kConnected);
  EXPECT_EQ(log[0].origin, &listener);
  EXPECT_EQ(log[0].sender, &listener);
  EXPECT_EQ(log[0].receiver, &source);
  EXPECT_FALSE(log[0].fromBroadcast);
  EXPECT_TRUE(source.Connect(&listener));  // a two-way conversation is two links
  EXPECT_TRUE(listener.HasListener(&source));

  bool linkedOnArrival = false;  // the news of a disconnection comes first
  source.onReceive = [&](Message&) { linkedOnArrival = source.HasListener(&listener); };
  EXPECT_TRUE(listener.Disconnect(&source));
  EXPECT_TRUE(linkedOnArrival);
  ASSERT_EQ(log.size(), 2u);
  EXPECT_EQ(log[1].id, Message::kDisconnected);
  EXPECT_EQ(log[1].origin, &listener);
  EXPECT_FALSE(listener.HasSource(&source));
  EXPECT_FALSE(source.HasListener(&listener));
  EXPECT_TRUE(listener.Disconnect(&source));  // not connected: nothing to do
  EXPECT_EQ(log.size(), 2u);
  EXPECT_FALSE(listener.Connect(nullptr));
  EXPECT_FALSE(listener.Disconnect(nullptr));
}

TEST(MessageNode, HalfLinksAreRefused) {
  Probe source, listener;  // listener goes last: it is destroyed first, still pointing at source
  ASSERT_TRUE(listener.Connect(&source));
  source.ForgetListeners();
  EXPECT_FALSE(listener.Disconnect(&source));
  Probe other, mirror;
  ASSERT_TRUE(mirror.Connect(&other));
  mirror.ForgetSources();
  EXPECT_FALSE(mirror.Connect(&other));
  EXPECT_EQ(other.GetListenerCount(), 1u);
}

TEST(MessageNode, BroadcastCallsListenersLastToFirstAndRestoresRouting) {
  std::vector<Received> log;
  Probe hub, first(&log), second(&log), third(&log);
  for (Probe* p : {&first, &second, &third}) ASSERT_TRUE(p->Connect(&hub));
  Message message(42);
  hub.OriginateBroadcast(message);
  ASSERT_EQ(log.size(), 3u);
  const MessageNode* order[] = {&third, &second, &first};
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(log[i].at, order[i]);
    EXPECT_EQ(log[i].receiver, order[i]);
    EXPECT_EQ(log[i].sender, &hub);
    EXPECT_EQ(log[i].origin, &hub);
    EXPECT_TRUE(log[i].fromBroadcast);
  }
  EXPECT_EQ(message.origin, nullptr);
  EXPECT_EQ(message.sender, nullptr);
  EXPECT_EQ(message.receiver, nullptr);
  log.clear();
  hub.Broadcast(message);
  EXPECT_EQ(log[0].origin, nullptr);
}

// A listener may disconnect itself, or others, while being called; nobody is
// called twice and those removed before their turn aren't called.
TEST(MessageNode, ListenersMayDisconnectDuringBroadcast) {
  std::vector<Received> log;
  Probe hub, first(&log), second(&log), third(&log);
  for (Probe* p : {&first, &second, &third}) ASSERT_TRUE(p->Connect(&hub));
  second.onReceive = [&](Message& m) {
    if (m.id == 7) second.Disconnect(&hub);
  };
  log.clear();
  Message itself(7);
  hub.Broadcast(itself);
  ASSERT_EQ(log.size(), 3u);
  EXPECT_EQ(log[0].at, &third);
  EXPECT_EQ(log[1].at, &second);
  EXPECT_EQ(log[2].at, &first);
  EXPECT_FALSE(hub.HasListener(&second));

  ASSERT_TRUE(second.Connect(&hub));  // now the last, so called first
  second.onReceive = [&](Message& m) {
    if (m.id != 9) return;
    first.Disconnect(&hub);
    third.Disconnect(&hub);
  };
  log.clear();
  Message others(9);
  hub.Broadcast(others);
  ASSERT_EQ(log.size(), 1u);
  EXPECT_EQ(log[0].at, &second);
  EXPECT_EQ(hub.GetListenerCount(), 1u);
}

TEST(MessageNode, NestedSendRestoresRoutingFields) {
  std::vector<Received> log;
  Probe a, b(&log), c(&log);
  b.onReceive = [&](Message& message) { b.Send(&c, message); };
  Message message(5, 6, 7);
  a.Originate(&b, message);
  ASSERT_EQ(log.size(), 2u);
  EXPECT_EQ(log[0].sender, &a);
  EXPECT_EQ(log[1].sender, &b);
  EXPECT_EQ(log[1].receiver, &c);
  EXPECT_EQ(log[1].origin, &a);
  EXPECT_EQ(message.origin, nullptr);
  EXPECT_EQ(message.sender, nullptr);
  EXPECT_EQ(message.receiver, nullptr);
  EXPECT_EQ(message.value, 6);
  EXPECT_EQ(message.data, 7u);
  a.Send(nullptr, message);
  EXPECT_EQ(log.size(), 2u);
}

TEST(MessageNode, DestructionDetachesBothWaysAndCopyConnectionsReplacesOwnLinks) {
  std::vector<Received> log;
  Probe upstream(&log), downstream(&log);
  {
    Probe middle;
    ASSERT_TRUE(middle.Connect(&upstream));
    ASSERT_TRUE(downstream.Connect(&middle));
    log.clear();
  }
  EXPECT_EQ(upstream.GetListenerCount(), 0u);
  EXPECT_EQ(downstream.GetSourceCount(), 0u);
  ASSERT_EQ(log.size(), 1u);  // the source hears of it; the dying node can't
  EXPECT_EQ(log[0].at, &upstream);
  EXPECT_EQ(log[0].id, Message::kDisconnected);

  Probe copy, old;  // upstream listens to old and is heard by downstream; copy listens to downstream
  ASSERT_TRUE(upstream.Connect(&old));
  ASSERT_TRUE(downstream.Connect(&upstream));
  ASSERT_TRUE(copy.Connect(&downstream));
  copy.CopyConnections(upstream);
  EXPECT_FALSE(downstream.HasListener(&copy));
  EXPECT_EQ(copy.GetSource(0), &old);
  EXPECT_EQ(copy.GetSourceCount(), 1u);
  EXPECT_TRUE(downstream.HasSource(&copy));
  EXPECT_TRUE(upstream.HasSource(&old));  // the model keeps its own
}

class Marker : public DynamicObject {
 public:
  Marker(int id, std::vector<int>& order) : id_(id), order_(order) {}
  ~Marker() override { order_.push_back(id_); }

 private:
  int id_;
  std::vector<int>& order_;
};

TEST(Message, AttachmentsAreDestroyedLastToFirst) {
  std::vector<int> order;
  {
    Message message(1);
    for (int i = 0; i < 3; ++i) message.attachments.push_back(std::make_unique<Marker>(i, order));
  }
  EXPECT_EQ(order, (std::vector<int>{2, 1, 0}));
}

}  // namespace
}  // namespace vuk::util
