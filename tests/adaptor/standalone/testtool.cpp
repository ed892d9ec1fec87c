#include "tests/adaptor/standalone/testtool.h"

#include "sdk/cvariablemodundo.h"
#include "util/mesh.h"

namespace vuk::rgw::testing_support {

namespace {

util::Matrix<double> At(const util::Vector3<double>& position) {
  util::Matrix<double> pose;
  pose.SetTranslation(position);
  return pose;
}

}  // namespace

std::int32_t TestTool::BuildConfig() {
  iface->BeginConfig();
  iface->BeginGroup("Motion", "How the target moves");
  iface->AddSpinner("Speed", "Metres per second along X", &speed, -10, 10, 0.1, 0, true, 0, this);
  iface->EndGroup();
  iface->AddCheckBox("Hide Helpers During Recording", "Hides the target box while recording", &hideHelpers, this);
  iface->EndConfig();
  return 0;
}

std::int32_t TestTool::Create() {
  target = iface->CreateMeshNode("Target", nullptr, util::CMesh_Box(0.5, 0.5, 0.5), this);
  camera = iface->CreateCameraNode("Camera", nullptr, this);
  return target && camera ? 0 : 1;
}

void TestTool::Start(double time) {
  // The path beyond this frame is about to be simulated anew.
  iface->PushUndo(new CVariableModUndo<util::AVar_Nearest<util::Vector3<double>>>(&path));
  path.RemoveFrom(time + iface->GetFrameDuration());
}

void TestTool::Step(double time) {
  const util::Vector3<double> position = TargetAt(time);
  if (CSnapshot* snapshot = iface->GetTransformSnapshot(target, time)) {
    snapshot->SetWorldTransform(At(position));
    iface->ReleaseTransformSnapshot(snapshot);
  }
  if (CSnapshot* snapshot = iface->GetTransformSnapshot(camera, time)) {
    snapshot->SetWorldTransform(At(CameraAt(time)));
    iface->ReleaseTransformSnapshot(snapshot);
  }
  path.Set(time, position);
}

void TestTool::Stop(double) {}

}  // namespace vuk::rgw::testing_support
