#include "core/window/windowbase.h"

#include <cstdio>

#include "gui/component/choices.h"
#include "gui/qt/realizer.h"

namespace vuk::rgw::core {

util::xml::Element ReadLayout(const std::string& file, const gui::Placeholders& texts) {
  util::xml::Element layout;
  if (layout.Parse(gui::DataRoot() + file) != util::xml::kParsed) return util::xml::Element();
  gui::FillPlaceholders(layout, texts);
  return layout;
}

std::int32_t BuildNumber(const std::string& version) {
  int major = 0, minor = 0, patch = 0;
  std::sscanf(version.c_str(), "%d.%d.%d", &major, &minor, &patch);
  return major * 1000 + minor * 100 + patch;
}

gui::Placeholders ProgramTexts(const std::string& version) {
  return {{"%VERSION%", version}, {"%BUILD%", std::to_string(BuildNumber(version))}};
}

WindowBase::WindowBase(const std::string& name, const util::xml::Element& layout)
    : util::MessageNode(name), root_(gui::BuildComponent(layout)) {
  if (root_) root_->SetAlias("[coreimages]", gui::DataRoot() + "/core/images");
}

WindowBase::~WindowBase() {
  // The widgets go first: they hold on to the components.
  widget_.reset();
}

QWidget* WindowBase::Widget() {
  if (!widget_ && root_) widget_.reset(gui::component::qt::Realize(*root_));
  return widget_.get();
}

void WindowBase::Show() {
  QWidget* window = Widget();
  if (!window) return;
  window->show();
  window->raise();
  window->activateWindow();
}

void WindowBase::Close() {
  if (widget_) widget_->hide();
}

std::vector<std::int32_t> WindowBase::HandledIds() const {
  std::vector<std::int32_t> ids;
  for (const auto& handled : handlers_) ids.push_back(handled.first);
  for (const auto& handled : items_) ids.push_back(handled.first);
  return ids;
}

void WindowBase::On(std::int32_t id, Handler handler) {
  if (gui::Component* control = root_ ? root_->FindComponentById(id) : nullptr) Connect(control);
  handlers_[id] = std::move(handler);
}

void WindowBase::OnMenu(std::int32_t id) {
  On(id, [this](std::int32_t itemId) {
    const auto found = items_.find(itemId);
    if (found != items_.end()) found->second();
  });
}

void WindowBase::OnItem(std::int32_t itemId, std::function<void()> handler) { items_[itemId] = std::move(handler); }

void WindowBase::Receive(util::Message& message, bool fromBroadcast) {
  util::MessageNode::Receive(message, fromBroadcast);
  const auto* control = dynamic_cast<const gui::Component*>(message.sender);
  if (!control || message.id < gui::kMessageFirst || message.id > gui::kMessageLast) return;
  const auto found = handlers_.find(control->id);
  if (found != handlers_.end()) found->second(message.value);
}

}  // namespace vuk::rgw::core
