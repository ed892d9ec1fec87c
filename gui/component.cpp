#include "gui/component.h"

namespace vuk::gui {

Component* Component::FindComponentById(std::int32_t wanted) {
  if (id == wanted) return this;
  for (std::size_t i = 0; i < GetChildCount(); ++i) {
    if (Component* found = GetChild(i)->FindComponentById(wanted)) return found;
  }
  return nullptr;
}

void Component::Adopt(Component* child) {
  if (!child) return;
  child->parent_ = this;
  AddChild(child);
}

Component* Component::GetRoot() {
  Component* root = this;
  while (root->parent_) root = root->parent_;
  return root;
}

std::string Component::ResolvePath(const std::string& path) const {
  std::string resolved = path;
  for (const Component* at = this; at; at = at->parent_) {
    for (const auto& [token, target] : at->aliases_) {
      for (std::size_t found = resolved.find(token); found != std::string::npos; found = resolved.find(token)) {
        resolved.replace(found, token.size(), target);
      }
    }
  }
  return resolved;
}

void Component::Notify(std::int32_t messageId, std::int32_t value) {
  util::Message message(messageId, value);
  message.sender = this;
  Broadcast(message);
}

}  // namespace vuk::gui
