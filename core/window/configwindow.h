#pragma once
// The configuration window of a tool: its page of values, and its
// configuration profiles.

#include "core/instance.h"
#include "core/plugin.h"
#include "core/window/profilepanel.h"
#include "core/window/windowbase.h"

namespace vuk::rgw::core {

// False once the instance is freed.
bool IsLive(const Instance& instance);

class ConfigWindow : public WindowBase {
 public:
  static constexpr const char* kLayout = "/core/layout/rgw_config.xml";
  // The list the tool's page goes into.
  static constexpr std::int32_t kPageList = 210;

  ConfigWindow(Instance& instance, Plugin& plugin, const Desktop& desktop);
  ~ConfigWindow() override;
  Instance& GetInstance() const { return instance_; }
  ProfilePanel& Profiles() { return profiles_; }

 private:
  Instance& instance_;
  ProfilePanel profiles_;
};

}  // namespace vuk::rgw::core
