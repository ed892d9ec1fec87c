#pragma once
// The page of the program's own preferences: the core's layout, then the
// host's page, with each control bound to the setting of its id.

#include "core/adaptorinterface.h"
#include "core/configadaptor/node.h"
#include "core/coreinterface.h"

namespace vuk::rgw::core::configadaptor::element {

class MainConfig : public Node {
 public:
  MainConfig(CoreInterface* core, AdaptorInterface* adaptor) : Node(-1, "", "", nullptr), core_(core), adaptor_(adaptor) {}
  std::string GetTypeName() const override { return "MainConfig"; }
  // "rgw_mainconfig.xml" with the present values, and the host's page after it.
  util::xml::Element BuildLayout() override;
  void AttachView(gui::Component* view) override;
  void UpdateViews() override;
  // Every control whose id is a setting reports to this page.
  void Receive(util::Message& message, bool fromBroadcast) override;

 private:
  void AttachControls(gui::Component& component);
  // Writes the setting of the control's id into the control.
  void ShowSetting(gui::Component& control);
  void ShowAllSettings(gui::Component& component);

  CoreInterface* core_;
  AdaptorInterface* adaptor_;
};

}  // namespace vuk::rgw::core::configadaptor::element
