#include "core/window/configwindow.h"

#include <algorithm>

#include "core/messagebox.h"

namespace vuk::rgw::core {

namespace {

// The layout with the tool's page in its list.
util::xml::Element LayoutWithPage(Instance& instance) {
  util::xml::Element layout = ReadLayout(ConfigWindow::kLayout);
  layout.SetAttribute("label") = "Configuration - " + instance.InstanceName();
  for (auto& child : layout.children) {
    if (child->GetAttribute("id") == std::to_string(ConfigWindow::kPageList) && instance.GetPage()) {
      child->AddChild(instance.GetPage()->BuildLayout());
    }
  }
  return layout;
}

}  // namespace

bool IsLive(const Instance& instance) {
  const std::vector<Instance*>& live = Instance::All();
  return std::find(live.begin(), live.end(), &instance) != live.end();
}

ConfigWindow::ConfigWindow(Instance& instance, Plugin& plugin, const Desktop& desktop)
    : WindowBase("ConfigWindow", LayoutWithPage(instance)),
      instance_(instance),
      profiles_(
          plugin.ConfigProfiles(), desktop, [&instance] { return instance.ConfigProfile(); },
          [&instance](const util::xml::Element& profile) {
            instance.ApplyConfigProfile(profile);
            instance.UpdateConfig();
          }) {
  if (!IsBuilt()) return;
  if (instance.GetPage()) instance.GetPage()->AttachView(Root());
  profiles_.Attach(ControlOf<gui::component::ComboBox>(201),
                   instance.ConfigProfile().GetAttribute("name"));
  On(202, [this](std::int32_t) { profiles_.Load(); });
  On(203, [this](std::int32_t) { profiles_.Save(); });
  On(204, [this](std::int32_t) {
    if (profiles_.SaveAs(Plugin::kStartProfile)) ShowMessageBox("Start Profile saved", "Quoll Rigworks", 0);
  });
  On(205, [this](std::int32_t) { profiles_.Rename(); });
  On(206, [this](std::int32_t) { profiles_.Delete(); });
  On(207, [this](std::int32_t) { profiles_.Import(); });
  On(208, [this](std::int32_t) { profiles_.Export(); });
  On(211, [this](std::int32_t) { Close(); });
}

ConfigWindow::~ConfigWindow() {
  // A tool freed while its window was open took its page with it.
  if (IsBuilt() && IsLive(instance_) && instance_.GetPage()) instance_.GetPage()->DetachView(Root());
}

}  // namespace vuk::rgw::core
