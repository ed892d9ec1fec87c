#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "util/message.h"

namespace vuk::util {

// A named node wired to other nodes. A node that connects to another becomes
// one of its listeners and receives what it broadcasts. Links are kept on both
// sides and a node detaches both ways when it is destroyed. The order of the
// virtual operations is part of the layout that tools and GUI components
// derive from, so lookups nobody calls yet keep their slots.
class MessageNode {
 public:
  explicit MessageNode(std::string name = std::string()) : name(std::move(name)) {}
  MessageNode(const MessageNode&) = delete;
  MessageNode& operator=(const MessageNode&) = delete;

  virtual void SetName(const std::string& newName) { name = newName; }
  virtual void Receive(Message& message, bool fromBroadcast);
  virtual void Send(MessageNode* target, Message& message);
  virtual void Broadcast(Message& message);
  virtual void Originate(MessageNode* target, Message& message);
  virtual void OriginateBroadcast(Message& message);
  // Makes this node a listener of other.
  virtual bool Connect(MessageNode* other);
  virtual bool Disconnect(MessageNode* other);
  virtual const std::string& GetName() const { return name; }
  virtual std::size_t GetSourceCount() const { return sources.size(); }
  virtual MessageNode* GetSource(std::size_t index) const;
  virtual std::size_t GetListenerCount() const { return listeners.size(); }
  virtual MessageNode* GetListener(std::size_t index) const;
  virtual bool HasListener(const MessageNode* node) const;
  virtual bool HasSource(const MessageNode* node) const;
  virtual void CopyConnections(const MessageNode& from);
  virtual ~MessageNode();

 protected:
  std::string name;
  std::vector<MessageNode*> listeners;
  std::vector<MessageNode*> sources;

 private:
  void DisconnectAll();
};

}  // namespace vuk::util
