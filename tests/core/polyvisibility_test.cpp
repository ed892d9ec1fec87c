// A tool's visibility flags in the tree hide and show its models in the
// scene of the embedded host, by hand and around a recording.
#include "core/polyvisibility.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

#include "adaptor/standalone/standaloneadaptorinterface.h"
#include "adaptor/standalone/standalonenode.h"
#include "core/instancereference.h"
#include "core/recordmanager.h"
#include "tests/sdk/testplugin.h"

namespace vuk::rgw::core {
namespace {

using adaptor::standalone::ObjectKind;
using adaptor::standalone::SceneNode;
using adaptor::standalone::StandaloneAdaptorInterface;
using adaptor::standalone::StandaloneNode;

// A rig of two helpers, the second below the first.
class Rig : public CCamera {
 public:
  using CCamera::CCamera;
  std::int32_t Create() override {
    body = iface->CreateCameraNode("Body", nullptr, nullptr);
    wheel = iface->CreateCameraNode("Wheel", body, nullptr);
    return 0;
  }
  CNode* body = nullptr;
  CNode* wheel = nullptr;
};

SceneNode* HostOf(CNode* node) { return static_cast<StandaloneNode*>(node)->GetHostNode(); }

class Models : public testing::Test, public InstanceList {
 protected:
  Models() {
    CCamera::CreateParam param("Rig_01");
    auto instance = std::make_unique<Instance>(&plugin, plugin.Create(param), "Rig_01", &host);
    EXPECT_EQ(instance->GetTool()->Create(), 0);
    item = std::make_unique<InstanceReference>(std::move(instance));
    Rig& rig = *static_cast<Rig*>(item->instance->GetTool());
    // The user's car below the body helper, a door below the car, and a
    // spare wheel the user hid.
    SceneNode* car = host.GetScene().CreateNode(ObjectKind::kMesh, "Car", HostOf(rig.body));
    objects = {{"Body", HostOf(rig.body)},
               {"Wheel", HostOf(rig.wheel)},
               {"Car", car},
               {"Door", host.GetScene().CreateNode(ObjectKind::kMesh, "Door", car)},
               {"Spare", host.GetScene().CreateNode(ObjectKind::kMesh, "Spare", HostOf(rig.wheel))}};
    objects["Spare"]->visible = false;
  }
  std::vector<Instance*> AllInstances() override { return {item->instance.get()}; }
  std::vector<Instance*> CheckedInstances() override { return AllInstances(); }

  // The objects shown, by name.
  std::string Shown() {
    std::string names;
    for (const auto& [name, node] : objects) names += node->visible ? name + " " : "";
    return names;
  }

  StandaloneAdaptorInterface host;
  testing_support::TestPlugin<Rig> plugin{"Rig", "Vehicle"};
  std::unique_ptr<InstanceReference> item;
  std::map<std::string, SceneNode*> objects;
};

struct SlotCase {
  TreeItem::Slot slot;
  const char* shownWhenOff;
};

class SlotOff : public Models, public testing::WithParamInterface<SlotCase> {};

TEST_P(SlotOff, HidesItsModelsAndShowsThemBackAsTheyWere) {
  const std::string before = Shown();
  ASSERT_EQ(before, "Body Car Door Wheel ");
  item->SetState(GetParam().slot, 0);
  EXPECT_EQ(item->states[GetParam().slot], 0);
  EXPECT_EQ(Shown(), GetParam().shownWhenOff);
  item->SetState(GetParam().slot, 0);
  EXPECT_EQ(Shown(), GetParam().shownWhenOff);
  item->SetState(GetParam().slot, 1);
  EXPECT_EQ(Shown(), before);
}

INSTANTIATE_TEST_SUITE_P(Models, SlotOff,
                         testing::Values(SlotCase{TreeItem::kHighPoly, "Body Wheel "},
                                         SlotCase{TreeItem::kLowPoly, "Car Door "},
                                         SlotCase{TreeItem::kChecked, "Body Car Door Wheel "}));

TEST_F(Models, ALowPolyRecordingShowsOnlyHelpersAndPutsEverythingBack) {
  RecordManager recorder(&host, nullptr, this);
  recorder.processEvents = [] {};
  recorder.countdownSeconds = 0;
  item->SetState(TreeItem::kLowPoly, 0);
  recorder.lowPolyOnRecord = true;
  recorder.StartRecording();
  EXPECT_EQ(Shown(), "Body Wheel ");
  EXPECT_EQ(item->states[TreeItem::kHighPoly], 0);
  EXPECT_EQ(item->states[TreeItem::kLowPoly], 1);
  recorder.StopRecording();
  EXPECT_EQ(Shown(), "Car Door ");
  EXPECT_EQ(item->states[TreeItem::kHighPoly], 1);
  EXPECT_EQ(item->states[TreeItem::kLowPoly], 0);
  recorder.lowPolyOnRecord = false;
  recorder.StartRecording();
  EXPECT_EQ(Shown(), "Car Door ");
  recorder.StopRecording();
}

}  // namespace
}  // namespace vuk::rgw::core
