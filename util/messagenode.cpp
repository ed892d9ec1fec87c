#include "util/messagenode.h"

#include <algorithm>

namespace vuk::util {
namespace {

bool Contains(const std::vector<MessageNode*>& nodes, const MessageNode* node) {
  return std::find(nodes.begin(), nodes.end(), node) != nodes.end();
}

void Erase(std::vector<MessageNode*>& nodes, const MessageNode* node) {
  nodes.erase(std::remove(nodes.begin(), nodes.end(), node), nodes.end());
}

// Puts a message's routing fields back when a nested call returns, so that a
// receiver may pass the same message on.
class RoutingScope {
 public:
  RoutingScope(Message& message, MessageNode* sender)
      : message_(message), sender_(message.sender), receiver_(message.receiver) {
    message.sender = sender;
  }
  ~RoutingScope() {
    message_.sender = sender_;
    message_.receiver = receiver_;
  }

 private:
  Message& message_;
  MessageNode* sender_;
  MessageNode* receiver_;
};

class OriginScope {
 public:
  OriginScope(Message& message, MessageNode* origin) : message_(message), origin_(message.origin) {
    message.origin = origin;
  }
  ~OriginScope() { message_.origin = origin_; }

 private:
  Message& message_;
  MessageNode* origin_;
};

}  // namespace

void MessageNode::Receive(Message&, bool) {}

void MessageNode::Send(MessageNode* target, Message& message) {
  if (!target) return;
  RoutingScope scope(message, this);
  message.receiver = target;
  target->Receive(message, false);
}

void MessageNode::Broadcast(Message& message) {
  RoutingScope scope(message, this);
  // Backward over the live list, so that a listener may disconnect itself
  // while being called. If a listener removed others, carry on from where the
  // one just called now stands, so nobody is called twice.
  std::size_t next = listeners.size();
  while (next > 0 && !listeners.empty()) {
    const std::size_t i = std::min(next, listeners.size()) - 1;
    MessageNode* listener = listeners[i];
    message.receiver = listener;
    listener->Receive(message, true);
    next = i;
    if (i >= listeners.size() || listeners[i] != listener) {
      const auto end = listeners.begin() + static_cast<std::ptrdiff_t>(std::min(i, listeners.size()));
      const auto found = std::find(listeners.begin(), end, listener);
      if (found != end) next = static_cast<std::size_t>(found - listeners.begin());
    }
  }
}

void MessageNode::Originate(MessageNode* target, Message& message) {
  OriginScope scope(message, this);
  Send(target, message);
}

void MessageNode::OriginateBroadcast(Message& message) {
  OriginScope scope(message, this);
  Broadcast(message);
}

bool MessageNode::Connect(MessageNode* other) {
  if (!other) return false;
  if (Contains(sources, other)) return true;
  if (Contains(other->listeners, this)) return false;  // half a link: refuse to double it
  sources.push_back(other);
  other->listeners.push_back(this);
  Message connected(Message::kConnected);
  Originate(other, connected);
  return true;
}

bool MessageNode::Disconnect(MessageNode* other) {
  if (!other) return false;
  if (!Contains(sources, other)) return true;
  if (!Contains(other->listeners, this)) return false;
  Message disconnected(Message::kDisconnected);
  Originate(other, disconnected);
  Erase(sources, other);
  Erase(other->listeners, this);
  return true;
}

MessageNode* MessageNode::GetSource(std::size_t index) const {
  return index < sources.size() ? sources[index] : nullptr;
}

MessageNode* MessageNode::GetListener(std::size_t index) const {
  return index < listeners.size() ? listeners[index] : nullptr;
}

bool MessageNode::HasListener(const MessageNode* node) const { return Contains(listeners, node); }

bool MessageNode::HasSource(const MessageNode* node) const { return Contains(sources, node); }

void MessageNode::CopyConnections(const MessageNode& from) {
  if (&from == this) return;
  DisconnectAll();
  for (MessageNode* source : from.sources) Connect(source);
  for (MessageNode* listener : from.listeners) listener->Connect(this);
}

void MessageNode::DisconnectAll() {
  while (!sources.empty()) {
    MessageNode* source = sources.back();
    Disconnect(source);
    Erase(sources, source);  // also when the mirror was broken, so the loop ends
  }
  while (!listeners.empty()) {
    MessageNode* listener = listeners.back();
    listener->Disconnect(this);
    Erase(listeners, listener);
  }
}

MessageNode::~MessageNode() { DisconnectAll(); }

}  // namespace vuk::util
