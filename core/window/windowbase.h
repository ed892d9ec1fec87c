#pragma once
// A window of the core built from a layout file: a message node that listens
// to the controls of the layout and runs the handler of each control's
// element id. Menu items, which are not controls of their own, have handlers
// by their item ids, run when the menu that holds them reports a choice.

#include <QWidget>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "gui/builder.h"
#include "gui/component.h"
#include "util/messagenode.h"
#include "util/xml/element.h"

namespace vuk::rgw::core {

// What the desktop gives the windows: its file dialogs, a question for a
// line of text, and the system's browser. Each answers "" when cancelled.
// Tests answer them in place of the user.
struct Desktop {
  std::function<std::string(const std::string& caption, const std::string& filter)> openFile;
  std::function<std::string(const std::string& caption, const std::string& filter)> saveFile;
  std::function<std::string(const std::string& caption, const std::string& initial)> askText;
  std::function<void(const std::string& address)> openAddress;
};

// A layout file of the data tree ("/core/layout/rgw_main.xml") read and
// filled in; an empty element when it can't be read.
util::xml::Element ReadLayout(const std::string& file, const gui::Placeholders& texts = {});

// The integer form of a version "major.minor.patch": major x 1000 + minor x
// 100 + patch, the number the version check reports.
std::int32_t BuildNumber(const std::string& version);
// The program's version and build number, as the windows fill them in.
gui::Placeholders ProgramTexts(const std::string& version);

class WindowBase : public util::MessageNode {
 public:
  // The value of a control's message: the control's id, or for a menu or a
  // pop-out the id of the entry chosen.
  using Handler = std::function<void(std::int32_t value)>;

  WindowBase(const std::string& name, const util::xml::Element& layout);
  ~WindowBase() override;
  WindowBase(const WindowBase&) = delete;
  WindowBase& operator=(const WindowBase&) = delete;

  // False when the layout gave no window.
  bool IsBuilt() const { return root_ != nullptr; }
  gui::Component* Root() const { return root_.get(); }
  // The control of that id, when it is of that kind.
  template <typename Kind>
  Kind* ControlOf(std::int32_t id) const {
    return root_ ? dynamic_cast<Kind*>(root_->FindComponentById(id)) : nullptr;
  }

  // The window's widget, made at the first call; null when nothing was built.
  QWidget* Widget();
  // Shows the window, or brings it up when it is shown already.
  void Show();
  void Close();
  bool IsShown() const { return widget_ && widget_->isVisible(); }

  // Every id with a handler: controls and menu items.
  std::vector<std::int32_t> HandledIds() const;
  void Receive(util::Message& message, bool fromBroadcast) override;

 protected:
  // Listens to the control of that id.
  void On(std::int32_t id, Handler handler);
  // A menu bar or menu: its choices go to the handlers of their items.
  void OnMenu(std::int32_t id);
  void OnItem(std::int32_t itemId, std::function<void()> handler);

 private:
  std::unique_ptr<gui::Component> root_;
  // Goes before the components, which it shows.
  std::unique_ptr<QWidget> widget_;
  std::map<std::int32_t, Handler> handlers_;
  std::map<std::int32_t, std::function<void()>> items_;
};

}  // namespace vuk::rgw::core
