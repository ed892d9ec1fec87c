#pragma once
// A configuration page shaped like a vehicle tool's, for looking at pages
// without a tool: groups of spinners, check boxes, a choice and a button.

#include <memory>

#include "core/configadaptor/elements.h"

namespace vuk::app {

namespace core = rgw::core;

struct SamplePage {
  SamplePage();

  core::configadaptor::element::Root root;
  double stiffness = 35000, damping = 4200, travel = 0.22, mass = 1450, grip = 1.1;
  std::int32_t gears = 6;
  bool hideHelpers = true, wireframe = false;
  std::int32_t drive = 1;
};

}  // namespace vuk::app
