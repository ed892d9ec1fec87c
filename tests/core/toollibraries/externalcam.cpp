// A tool library as a third party would build one: the two exports and a plugin.
#include "sdk/ccameraplugin.h"

namespace {

class ExternalCamPlugin : public vuk::rgw::CCameraPlugin {
 public:
  vuk::rgw::CCamera* CreateObject(vuk::rgw::CCamera::CreateParam& param) override { return new vuk::rgw::CCamera(param); }
  std::string GetName() override { return "ExternalCam"; }
  std::string GetTitle() override { return "External Camera"; }
  std::string GetCategory() override { return "Camera"; }
};

}  // namespace

extern "C" int getVersion() { return vuk::rgw::kSdkVersion; }
extern "C" vuk::rgw::CCameraPlugin* getPlugin() { return new ExternalCamPlugin(); }
