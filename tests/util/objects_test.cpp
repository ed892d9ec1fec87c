// Message nodes, factories and the owning composite: the object plumbing
// that tools and GUI components are built from.

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "util/abstractfactory.h"
#include "util/compositedynamic.h"
#include "util/factorymanager.h"
#include "util/messagenode.h"

namespace vuk::util {
namespace {

// Where a message arrived, its id, origin, sender and receiver, and whether it came by broadcast.
using Received = std::tuple<MessageNode*, std::int32_t, MessageNode*, MessageNode*, MessageNode*, bool>;
using Log = std::vector<Received>;

// A node that logs what reaches it and can run an action on arrival.
class Probe : public MessageNode {
 public:
  explicit Probe(Log* log = nullptr) : log_(log) {}

  void Receive(Message& message, bool fromBroadcast) override {
    if (log_) log_->emplace_back(this, message.id, message.origin, message.sender, message.receiver, fromBroadcast);
    if (onReceive) onReceive(message);
  }

  std::function<void(Message&)> onReceive;

 private:
  Log* log_;
};

bool Unrouted(const Message& m) { return !m.origin && !m.sender && !m.receiver; }

TEST(MessageNode, ConnectAndDisconnectLinkBothWaysAndAnnounceThemselves) {
  Log log;
  Probe listener, source(&log);
  EXPECT_TRUE(listener.Connect(&source));
  EXPECT_TRUE(listener.Connect(&source));  // again: true, and nothing sent
  EXPECT_TRUE(listener.HasSource(&source));
  EXPECT_EQ(source.GetListener(0), &listener);
  EXPECT_TRUE(source.Connect(&listener));  // a two-way conversation is two links
  EXPECT_TRUE(listener.HasListener(&source));

  bool linkedOnArrival = false;  // the news of a disconnection comes first
  source.onReceive = [&](Message&) { linkedOnArrival = source.HasListener(&listener); };
  EXPECT_TRUE(listener.Disconnect(&source));
  EXPECT_TRUE(linkedOnArrival);
  EXPECT_FALSE(listener.HasSource(&source) || source.HasListener(&listener));
  EXPECT_TRUE(listener.Disconnect(&source));  // not connected: nothing to do
  EXPECT_EQ(log, (Log{{&source, Message::kConnected, &listener, &listener, &source, false},
                      {&source, Message::kDisconnected, &listener, &listener, &source, false}}));
  EXPECT_FALSE(listener.Connect(nullptr) || listener.Disconnect(nullptr));
}

// Last to first. A listener may disconnect itself, or others, while being
// called; nobody is called twice and those removed before their turn aren't.
TEST(MessageNode, BroadcastCallsListenersLastToFirstWhoMayDisconnectMeanwhile) {
  Log log;
  Probe hub, first(&log), second(&log), third(&log);
  for (Probe* p : {&first, &second, &third}) ASSERT_TRUE(p->Connect(&hub));
  auto heard = [&hub](Probe* at, std::int32_t id, MessageNode* origin) {
    return Received{at, id, origin, &hub, at, true};
  };
  Message message(42);
  hub.OriginateBroadcast(message);
  EXPECT_TRUE(Unrouted(message));
  second.onReceive = [&](Message& m) {
    if (m.id == 7) second.Disconnect(&hub);
  };
  Message itself(7);
  hub.Broadcast(itself);
  EXPECT_FALSE(hub.HasListener(&second));

  ASSERT_TRUE(second.Connect(&hub));  // now the last, so called first
  second.onReceive = [&](Message& m) {
    if (m.id != 9) return;
    first.Disconnect(&hub);
    third.Disconnect(&hub);
  };
  Message others(9);
  hub.Broadcast(others);
  EXPECT_EQ(log, (Log{heard(&third, 42, &hub), heard(&second, 42, &hub), heard(&first, 42, &hub),
                      heard(&third, 7, nullptr), heard(&second, 7, nullptr), heard(&first, 7, nullptr),
                      heard(&second, 9, nullptr)}));
  EXPECT_EQ(hub.GetListenerCount(), 1u);
}

TEST(MessageNode, NestedSendRestoresRoutingFields) {
  Log log;
  Probe a, b(&log), c(&log);
  b.onReceive = [&](Message& message) { b.Send(&c, message); };
  Message message(5, 6, 7);
  a.Originate(&b, message);
  EXPECT_EQ(log, (Log{{&b, 5, &a, &a, &b, false}, {&c, 5, &a, &b, &c, false}}));
  EXPECT_TRUE(Unrouted(message));
}

TEST(MessageNode, DestructionDetachesBothWaysAndCopyConnectionsReplacesOwnLinks) {
  Log log;
  Probe upstream(&log), downstream(&log);
  {
    Probe middle;
    ASSERT_TRUE(middle.Connect(&upstream));
    ASSERT_TRUE(downstream.Connect(&middle));
    log.clear();
  }
  EXPECT_EQ(upstream.GetListenerCount() + downstream.GetSourceCount(), 0u);
  ASSERT_EQ(log.size(), 1u);  // the source hears of it; the dying node can't
  EXPECT_TRUE(std::get<0>(log[0]) == &upstream && std::get<1>(log[0]) == Message::kDisconnected);

  Probe copy, old;  // upstream listens to old and is heard by downstream; copy listens to downstream
  ASSERT_TRUE(upstream.Connect(&old));
  ASSERT_TRUE(downstream.Connect(&upstream));
  ASSERT_TRUE(copy.Connect(&downstream));
  copy.CopyConnections(upstream);
  EXPECT_TRUE(copy.HasSource(&old) && copy.GetSourceCount() == 1u && downstream.HasSource(&copy));
  EXPECT_TRUE(upstream.HasSource(&old));  // the model keeps its own
}

// Notes its id when freed, to show the order things go in.
class Counted {
 public:
  Counted(int id, std::vector<int>& freed) : id_(id), freed_(freed) {}
  virtual ~Counted() { freed_.push_back(id_); }

 private:
  int id_;
  std::vector<int>& freed_;
};

struct Product {
  explicit Product(std::string madeBy) : madeBy(std::move(madeBy)) {}
  std::string madeBy;
};

// Accepts elements with one tag and stamps what it makes with its own label.
class TagFactory : public Factory<Product> {
 public:
  TagFactory(std::string tag, std::string label) : tag_(std::move(tag)), label_(std::move(label)) {}
  bool CanCreate(const xml::Element& element) const override { return element.name == tag_; }
  Product* Create(const xml::Element&) const override { return new Product(label_); }

 private:
  std::string tag_;
  std::string label_;
};

// The list and the manager are separate process-wide registries.
TEST(Factories, TheFirstThatAcceptsWinsAndTheManagerFindsByTag) {
  auto& factories = AbstractFactory<Product>::Instance();
  factories.Add(new TagFactory("label", "first"));
  factories.Add(nullptr);
  factories.Add(new TagFactory("label", "second"));
  factories.Add(new TagFactory("button", "button"));
  EXPECT_EQ(factories.Count(), 3u);
  EXPECT_EQ(std::unique_ptr<Product>(factories.Create(xml::Tag("label")))->madeBy, "first");
  EXPECT_EQ(std::unique_ptr<Product>(factories.Create(xml::Tag("button")))->madeBy, "button");
  EXPECT_EQ(factories.Create(xml::Tag("slider")), nullptr);
  auto& manager = FactoryManager<Product>::Instance();
  manager.Add(new TagFactory("sum", "sum"));
  manager.Add(new TagFactory("product", "product"));
  EXPECT_EQ(std::unique_ptr<Product>(manager.Find("product")->Create(xml::Tag("product")))->madeBy, "product");
  EXPECT_EQ(manager.Find("quotient"), nullptr);
}

class Branch : public Counted, public Composite_Dynamic<Branch> {
 public:
  using Counted::Counted;
};

TEST(CompositeDynamic, OwnsItsSubtreeAndFreesItLastToFirst) {
  std::vector<int> freed;
  {
    Branch root(0, freed);
    auto* a = new Branch(1, freed);
    a->AddChild(new Branch(11, freed));
    a->AddChild(new Branch(12, freed));
    root.AddChild(a);
    root.AddChild(new Branch(2, freed));
    auto* taken = new Branch(3, freed);
    root.InsertChild(99, taken);  // clamped to the end
    EXPECT_TRUE(root.TakeChild(taken));
    root.InsertChild(0, taken);
    EXPECT_EQ(root.GetChild(0), taken);
    EXPECT_FALSE(root.RemoveChild(a->GetChild(0)));  // a grandchild isn't a child
    EXPECT_TRUE(root.RemoveChild(taken));
    EXPECT_EQ(freed, std::vector<int>{3});
  }
  // Counted's destructor runs after the children's, as a base's does.
  EXPECT_EQ(freed, (std::vector<int>{3, 2, 12, 11, 1, 0}));
}

}  // namespace
}  // namespace vuk::util
