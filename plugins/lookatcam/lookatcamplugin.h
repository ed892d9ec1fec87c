#pragma once

#include "sdk/ccameraplugin.h"

namespace vuk::rgw::addon {

class CLookAtCamPlugin : public CCameraPlugin {
 public:
  CCamera* CreateObject(CCamera::CreateParam& param) override;
  std::string GetName() override { return "LookAtCam"; }
  std::string GetPath() override { return "utility/lookatcam"; }
  std::string GetTitle() override { return "Quoll LookAtCam"; }
  std::string GetCategory() override { return "Camera"; }
  std::string GetDescription() override {
    return "Quoll LookAtCam works exactly as an ordinary camera with a target. It also has its target distance set "
           "to the distance to the target.";
  }
  std::string GetCredits() override { return "LookAtCam: a camera that keeps its target in view."; }
};

// The tool table's entry.
CCameraPlugin* CreateLookAtCamPlugin();

}  // namespace vuk::rgw::addon
