#pragma once
// A small tool for tests, not a product tool: a target box that slides along
// X at a configured speed, lifted by its one channel, and a camera that
// follows it from above and behind, with the target's path kept in a history.

#include "sdk/ccamera.h"
#include "sdk/ccameraplugin.h"
#include "sdk/cinterface.h"
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
  void Stop(double time) override;
  void Changed(std::string label) override { changes.push_back(label); }

  // Where the target is at a time, and where the camera stands then.
  util::Vector3<double> TargetAt(double time) const { return {speed * time, lift ? lift->Evaluate() : 0, 0}; }
  util::Vector3<double> CameraAt(double time) const { return TargetAt(time) + util::Vector3<double>{0, 2, 5}; }

  CInterface::Property* lift = nullptr;
  double speed = 3.0;
  bool hideHelpers = false;
  CNode* target = nullptr;
  CNode* camera = nullptr;
  util::AVar_Nearest<util::Vector3<double>> path;
  std::vector<std::string> changes;
};

class TestToolPlugin : public CCameraPlugin {
 public:
  CCamera* CreateObject(CCamera::CreateParam& param) override { return new TestTool(param); }
  std::string GetName() override { return "TestTool"; }
  std::string GetTitle() override { return "Test Tool"; }
  std::string GetCategory() override { return "Camera"; }
};

}  // namespace vuk::rgw::testing_support
