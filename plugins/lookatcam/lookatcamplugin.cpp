#include "plugins/lookatcam/lookatcamplugin.h"

#include "plugins/lookatcam/lookatcamobject.h"

namespace vuk::rgw::addon {

CCamera* CLookAtCamPlugin::CreateObject(CCamera::CreateParam& param) { return new CLookAtCamObject(param); }

CCameraPlugin* CreateLookAtCamPlugin() { return new CLookAtCamPlugin(); }

}  // namespace vuk::rgw::addon
