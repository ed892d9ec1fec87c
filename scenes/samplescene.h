#pragma once
// A small scene with every kind the host knows, keys on two nodes, a parent
// and child, strings and a hidden node: for file round trips and the validator.

#include "adaptor/standalone/scene.h"

namespace vuk::scenes {

void BuildSampleScene(rgw::adaptor::standalone::Scene& scene);

}  // namespace vuk::scenes
