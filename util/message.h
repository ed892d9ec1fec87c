#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "util/dynamicobject.h"

namespace vuk::util {

class MessageNode;

// What travels along the wires between message nodes. Messages live on the
// sender's stack; nothing queues them.
class Message {
 public:
  static constexpr std::int32_t kConnected = -1;
  static constexpr std::int32_t kDisconnected = -2;

  explicit Message(std::int32_t id, std::int32_t value = 0, std::uint64_t data = 0)
      : id(id), value(value), data(data) {}
  Message(const Message&) = delete;
  Message& operator=(const Message&) = delete;

  // Attachments go last to first, as nested owners expect.
  virtual ~Message() {
    while (!attachments.empty()) attachments.pop_back();
  }

  MessageNode* origin = nullptr;
  MessageNode* sender = nullptr;
  std::int32_t id;
  std::int32_t value;
  std::uint64_t data;
  MessageNode* receiver = nullptr;
  std::vector<std::unique_ptr<DynamicObject>> attachments;
};

}  // namespace vuk::util
