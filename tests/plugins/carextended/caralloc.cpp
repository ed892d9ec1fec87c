// A 4-Wheeler frame allocates nothing once warm, whichever caster serves its
// ground: a program of its own, as it replaces the global operator new.

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "tests/plugins/carextended/cartesting.h"
#include "tests/support/allocationcount.h"

namespace vuk::rgw::addon {
namespace {

constexpr int kFrames = 60;

struct Ground {
  const char* name;
  bool terrain;
  Caster caster;
};

class CarFrames : public Car, public testing::WithParamInterface<Ground> {
 public:
  // One run of the driving take from frame 0, counting the allocations of
  // the frames after the first half.
  std::size_t AllocationsOfTheSecondHalf() {
    core::Instance& instance = harness.Instance();
    unidevice::PropertyHandler& inputs = instance.Inputs();
    std::vector<std::unique_ptr<unidevice::Control>> controls;
    for (std::size_t i = 0; i < inputs.Count(); ++i) {
      controls.push_back(std::make_unique<unidevice::Control>());
      inputs.Get(i)->source = controls.back().get();
    }
    harness.host.BeginRecording();
    instance.Start(harness.TimeOf(0), core::Instance::Run::kRecording);
    std::size_t made = 0;
    for (int k = 1; k <= kFrames; ++k) {
      for (std::size_t i = 0; i < inputs.Count(); ++i) controls[i]->Update(DrivingTake(static_cast<CarInput>(i), k));
      const test::AllocationCount count;
      instance.Step(harness.TimeOf(k));
      if (k > kFrames / 2) made += count.Made();
    }
    instance.Stop(harness.TimeOf(kFrames));
    harness.host.EndRecording();
    for (std::size_t i = 0; i < inputs.Count(); ++i) inputs.Get(i)->source = nullptr;
    return made;
  }
};

// The first run grows the keys and histories; the second writes over them.
TEST_P(CarFrames, AllocateNothingOnceWarm) {
  if (GetParam().terrain) LinkGround(TestTerrain(), TerrainPose());
  Use(GetParam().caster);
  AllocationsOfTheSecondHalf();
  EXPECT_EQ(AllocationsOfTheSecondHalf(), 0u);
}

INSTANTIATE_TEST_SUITE_P(Grounds, CarFrames,
                         testing::Values(Ground{"BuiltInPlane", false, Caster::kBullet},
                                         Ground{"TerrainBullet", true, Caster::kBullet},
                                         Ground{"TerrainTree", true, Caster::kTree},
                                         Ground{"TerrainHost", true, Caster::kHost}),
                         [](const testing::TestParamInfo<Ground>& info) { return info.param.name; });

}  // namespace
}  // namespace vuk::rgw::addon
