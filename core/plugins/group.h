#pragma once
// The group: a tool with no nodes, inputs or behaviour, made by "Create New
// Group" so that the user can gather other tools below it in the tool tree.
// It has no nodes, so the scene keeps it on its root, and the tools below it
// find it again by name after a load.

#include <cstdint>
#include <string>
#include <vector>

#include "sdk/ccameraplugin.h"

namespace vuk::rgw::core::plugins {

class Group : public CCameraPlugin {
 public:
  static constexpr const char* kName = "Group";

  class Code : public CCamera {
   public:
    explicit Code(const CreateParam& param) : CCamera(param) {}
  };

  CCamera* CreateObject(CCamera::CreateParam& param) override { return new Code(param); }
  std::string GetName() override { return kName; }
  std::string GetPath() override { return "core/group"; }
  std::string GetTitle() override { return kName; }
  // In no category: the main window makes it from its own button.
  std::string GetCategory() override { return {}; }
  std::string GetDescription() override { return "Empty Plugin"; }
  std::string GetSubtitle() override { return "Empty Plugin"; }
  // Not offered in the tool menus.
  std::vector<std::int32_t> ExtensionIds() override { return {extension::kHiddenPlugin}; }
};

}  // namespace vuk::rgw::core::plugins
