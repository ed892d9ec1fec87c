#include "tests/adaptor/standalone/testtool.h"

#include "sdk/cvariablemodundo.h"
#include "util/bytes.h"
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
  lift = iface->AddInput("Lift", input::kContinuous);
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

std::int32_t TestTool::Save() {
  util::Bytes block(path.GetSaveSize());
  path.Save(block.data(), static_cast<std::uint32_t>(block.size()));
  iface->SetSaveData(block.data(), static_cast<std::int32_t>(block.size()));
  return 0;
}

std::int32_t TestTool::Load() {
  std::int32_t length = 0;
  const std::uint8_t* bytes = iface->GetSaveData(&length);
  target = iface->FindNode("Target");
  camera = iface->FindNode("Camera");
  return bytes && path.Load(bytes, static_cast<std::size_t>(length)) && target && camera ? 0 : 1;
}

void TestTool::Start(double time) {
  // The path beyond this frame is about to be simulated anew.
  iface->PushUndo(new CVariableModUndo<util::AVar_Nearest<util::Vector3<double>>>(&path));
  path.RemoveFrom(time + iface->GetFrameDuration());
}

void TestTool::Step(double time) {
  const util::Vector3<double> position{speed * time, lift ? lift->Evaluate() : 0, 0};
  if (CSnapshot* snapshot = iface->GetTransformSnapshot(target, time)) {
    snapshot->SetWorldTransform(At(position));
    iface->ReleaseTransformSnapshot(snapshot);
  }
  if (CSnapshot* snapshot = iface->GetTransformSnapshot(camera, time)) {
    snapshot->SetWorldTransform(At(position + util::Vector3<double>{0, 2, 5}));
    iface->ReleaseTransformSnapshot(snapshot);
  }
  path.Set(time, position);
}

}  // namespace vuk::rgw::testing_support
