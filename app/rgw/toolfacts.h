#pragma once
// What a user needs to know of a tool type, gathered once from a tool made
// as `rgw create` would make it: for `rgw tools NAME` and the help pages.

#include <cstdint>
#include <string>
#include <vector>

#include "app/rgw/session.h"
#include "core/plugin.h"
#include "unidevice/property.h"

namespace vuk::app {

struct ChannelFacts {
  std::string name;
  std::string controls;  // the kinds of control that fit: "hat, axis or gauge"
  std::string binding;   // in the user's words, "unbound" for none
};

// One item of the configuration page, in page order. A group's items follow
// it one level deeper.
struct SettingFacts {
  int depth;
  bool group;
  std::string label;
  std::string help;
  std::string value;  // as the page shows it: "2.5", "on", a choice's name
  std::string range;  // what it takes: "from 0 to 10, step 0.5", "1 on or 0 off"
};

struct ToolFacts {
  std::string name;
  std::string title;
  std::string categories;
  std::string description;
  std::string credits;
  std::string helpFileName;
  std::vector<std::string> nodes;
  std::vector<ChannelFacts> channels;
  std::vector<SettingFacts> settings;
  std::vector<std::string> configProfiles;
  std::vector<std::string> inputProfiles;
};

// Makes the tool in the session and gathers its facts; false with the
// reason in `error` when the tool can't be made.
bool GatherTool(Session& session, rgw::core::Plugin& tool, ToolFacts& facts, std::string& error);

// The kinds of control in a channel's type mask: "button, axis or gauge".
std::string ControlKinds(std::int32_t typeMask);
// A channel's binding in words, "unbound" for none.
std::string BindingOf(const unidevice::Property& channel);

}  // namespace vuk::app
