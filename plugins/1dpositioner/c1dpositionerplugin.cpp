#include "plugins/1dpositioner/c1dpositionerplugin.h"

#include "plugins/1dpositioner/c1dpositionerobject.h"

namespace vuk::rgw::addon {

CCamera* C1DPositionerPlugin::CreateObject(CCamera::CreateParam& param) { return new C1DPositionerObject(param); }

CCameraPlugin* Create1DPositionerPlugin() { return new C1DPositionerPlugin(); }

}  // namespace vuk::rgw::addon
