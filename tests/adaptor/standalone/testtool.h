#pragma once
// A small tool for tests, not a product tool: a target box that slides along
// X at a configured speed, lifted by its one channel, and a camera that
// follows it from above and behind, with the target's path kept in a history.

#include "sdk/ccamera.h"
#include "sdk/ccameraplugin.h"
#include "sdk/cinterface.h"
#include "tests/sdk/testplugin.h"
#include "util/avar.h"

namespace vuk::rgw::testing_support {

class TestTool : public CCamera, public CInterface::Callback {
 public:
  using CCamera::CCamera;

  std::int32_t BuildConfig() override;
  std::int32_t Create() override;
  // The saved state is the target's path; the nodes are found by name.
  std::int32_t Save() override;
  std::int32_t Load() override;
  void Start(double time) override;
  void Step(double time) override;
  void Changed(std::string) override {}

  CInterface::Property* lift = nullptr;
  double speed = 3.0;
  bool hideHelpers = false;
  CNode* target = nullptr;
  CNode* camera = nullptr;
  util::AVar_Nearest<util::Vector3<double>> path;
};

class TestToolPlugin : public TestPlugin<TestTool> {
 public:
  TestToolPlugin() : TestPlugin("TestTool", "Camera", "Test Tool") {}
};

}  // namespace vuk::rgw::testing_support
