#pragma once

#include "sdk/ccameraplugin.h"

namespace vuk::rgw::addon {

class C1DPositionerPlugin : public CCameraPlugin {
 public:
  CCamera* CreateObject(CCamera::CreateParam& param) override;
  std::string GetName() override { return "1DPositioner"; }
  std::string GetPath() override { return "utility/1dpositioner"; }
  std::string GetTitle() override { return "Quoll 1DPositioner"; }
  std::string GetCategory() override { return "Accessory"; }
  std::string GetDescription() override {
    return "Quoll 1DPositioner outputs a movement or velocity from all supported input devices directly to a dummy "
           "in real time. Its main use is for controlling and animating objects in the scene in real time by "
           "parenting/linking your object to the dummy";
  }
  std::string GetCredits() override { return "1DPositioner: an input channel that moves a dummy."; }
};

// The tool table's entry.
CCameraPlugin* Create1DPositionerPlugin();

}  // namespace vuk::rgw::addon
