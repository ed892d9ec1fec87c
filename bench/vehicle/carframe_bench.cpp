// One 4-Wheeler frame with key writing, on the rolling terrain of 131,072
// triangles at 30 fps, through each ground caster with 1 and with 10 rays
// per wheel; and the two floors under it: Bullet's ray casts alone, as many
// a frame as the tool's Bullet run casts, and the key writing alone, as many
// node writes a frame as the tool makes, through the embedded host.
//
// Each run drives a 10 s take over the terrain and starts again, so that
// the keys are written over, not grown; the restarts are not timed.
#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>
#include <vector>

#include "adaptor/standalone/standaloneadaptorinterface.h"
#include "adaptor/standalone/standalonenode.h"
#include "core/corelibrary.h"
#include "core/instance.h"
#include "core/timebase.h"
#include "plugins/carextended/carextendedobject.h"
#include "plugins/common/vehicle/ground/bulletground.h"
#include "plugins/tools.h"
#include "scenes/drivingscene.h"
#include "scenes/terrain.h"

namespace {

using namespace vuk;
using namespace vuk::rgw;
using addon::CCarCamObject;

constexpr int kTakeFrames = 300;

enum class Caster { kHost, kTree, kBullet };

// Gas and a slow weave, which keeps the car well inside the terrain.
double TakeValue(addon::CarInput channel, int k) {
  if (channel == addon::pcInput_GAS_PEDAL) return 0.5;
  if (channel == addon::pcInput_STEERING_WHEEL) return 0.4 * std::sin(k * 0.05);
  return 0.0;
}

// A 4-Wheeler on the driving terrain, as the command line holds one.
class CarSession {
 public:
  CarSession(Caster caster, int rayMultiplier) : library_(addon::BuiltInTools()) {
    host_.GetScene().animate = true;
    instance_ = library_.FindTool("4WheelerExt")->CreateInstance("", &host_);
    terrainMesh_ = scenes::RollingTerrain(scenes::kDrivingTerrainCells, scenes::kDrivingTerrainSize);
    auto* terrain = host_.GetScene().CreateNode(adaptor::standalone::ObjectKind::kMesh, "Terrain");
    terrain->SetMesh(terrainMesh_);
    adaptor::standalone::StandaloneNode wrapper(&host_, terrain);
    static_cast<core::CoreNode*>(Car().gravity.handle)->SetParent(&wrapper);
    CCarCamObject& car = Car();
    car.settings.bUseFastRayCast = caster == Caster::kBullet;
    car.Changed(addon::carpage::kUseFastRayCast);
    car.settings.bStoreGroundMeshData = caster == Caster::kTree;
    car.Changed(addon::carpage::kStoreGroundMeshData);
    car.settings.iRayMultiplier = rayMultiplier;
    unidevice::PropertyHandler& inputs = instance_->Inputs();
    for (std::size_t i = 0; i < inputs.Count(); ++i) {
      controls_.push_back(std::make_unique<unidevice::Control>());
      inputs.Get(i)->source = controls_.back().get();
    }
    host_.BeginRecording();
    Restart();
  }
  ~CarSession() {
    instance_->Stop(TimeOf(frame_));
    host_.EndRecording();
  }

  CCarCamObject& Car() { return *static_cast<CCarCamObject*>(instance_->GetTool()); }
  core::Instance& Instance() { return *instance_; }
  double TimeOf(int frame) const { return core::TimeBase(30).TimeOf(frame); }
  int Frame() const { return frame_; }
  bool AtEnd() const { return frame_ == kTakeFrames; }

  void Restart() {
    if (frame_ > 0) instance_->Stop(TimeOf(frame_));
    frame_ = 0;
    instance_->Start(TimeOf(0), core::Instance::Run::kRecording);
  }
  // The next frame's time, with nothing stepped.
  void Advance() { ++frame_; }
  void Step() {
    Advance();
    for (std::size_t i = 0; i < controls_.size(); ++i) {
      controls_[i]->Update(TakeValue(static_cast<addon::CarInput>(i), frame_));
    }
    instance_->Step(TimeOf(frame_));
  }
  std::vector<core::CoreNode*> ToolNodes() {
    core::NodeVector list;
    host_.GetInstanceNodes(instance_.get(), list);
    return list.nodes;
  }
  // The keys the tool's nodes hold over one take: its node writes.
  std::size_t KeysWritten() {
    std::size_t keys = 0;
    for (core::CoreNode* node : ToolNodes()) {
      keys += static_cast<adaptor::standalone::StandaloneNode*>(node)->GetHostNode()->track.Keys().size();
    }
    return keys;
  }

  const util::CMesh& TerrainMesh() const { return terrainMesh_; }

 private:
  adaptor::standalone::StandaloneAdaptorInterface host_;
  core::CoreLibrary library_;
  // Before the instance: its inputs let go of them as it goes.
  std::vector<std::unique_ptr<unidevice::Control>> controls_;
  std::unique_ptr<core::Instance> instance_;
  util::CMesh terrainMesh_;
  int frame_ = 0;
};

// Steps through whole takes while the benchmark runs; restarts untimed.
template <typename Frame>
void RunTakes(benchmark::State& state, CarSession& session, Frame frame) {
  for (auto _ : state) {
    if (session.AtEnd()) {
      state.PauseTiming();
      session.Restart();
      state.ResumeTiming();
    }
    frame();
  }
  state.counters["x realtime"] =
      benchmark::Counter(static_cast<double>(state.iterations()) / 30.0, benchmark::Counter::kIsRate);
}

void CarFrame(benchmark::State& state) {
  CarSession session(static_cast<Caster>(state.range(0)), static_cast<int>(state.range(1)));
  RunTakes(state, session, [&session] { session.Step(); });
  state.counters["rays/frame"] =
      static_cast<double>(session.Car().ground.RaysCast()) / std::max(1, session.Frame());
}
BENCHMARK(CarFrame)
    ->ArgNames({"caster", "rays"})
    ->ArgsProduct({{static_cast<int>(Caster::kHost), static_cast<int>(Caster::kTree),
                    static_cast<int>(Caster::kBullet)},
                   {1, 10}})
    ->Unit(benchmark::kMicrosecond);

// The rays a Bullet run of the tool casts, frame by frame, as many a frame
// as the tool cast then: first a long ray down onto each wheel's ground, the
// rest as short as a rim ray, fanned below the wheels' centres.
std::vector<std::vector<addon::GroundRay>> ToolRays(int rayMultiplier) {
  CarSession session(Caster::kBullet, rayMultiplier);
  std::vector<std::vector<addon::GroundRay>> frames;
  const double radius = 0.26 * session.Car().cCarCam.params.dWheelRadiusMult;
  const double length = addon::GroundRayLength(0.5, radius);
  while (!session.AtEnd()) {
    const std::size_t before = session.Car().ground.RaysCast();
    session.Step();
    const std::size_t count = session.Car().ground.RaysCast() - before;
    std::vector<addon::GroundRay> rays;
    for (std::size_t i = 0; i < count; ++i) {
      const addon::Vector3 centre = session.Car().wheels[i % CCarCamObject::kWheels].position;
      if (i < CCarCamObject::kWheels) {
        rays.push_back({centre + addon::Vector3(0, 1, 0), {0, -1, 0}, length});
      } else {
        const double angle = 0.03 * static_cast<double>(i / CCarCamObject::kWheels % 19) - 0.27;
        rays.push_back({centre, {0, -std::cos(angle), std::sin(angle)}, radius});
      }
    }
    frames.push_back(std::move(rays));
  }
  return frames;
}

void BulletRaysFloor(benchmark::State& state) {
  const auto frames = ToolRays(static_cast<int>(state.range(0)));
  const util::CMesh terrain = scenes::RollingTerrain(scenes::kDrivingTerrainCells, scenes::kDrivingTerrainSize);
  addon::BulletGround bullet({{"Terrain", &terrain, util::Matrix<double>(), false}}, 1.0, 3.522);
  addon::GroundHit hit;
  std::size_t frame = 0, rays = 0, hits = 0;
  for (auto _ : state) {
    for (const addon::GroundRay& ray : frames[frame]) hits += bullet.Cast(ray, hit);
    rays += frames[frame].size();
    frame = (frame + 1) % frames.size();
  }
  benchmark::DoNotOptimize(hits);
  state.counters["rays/frame"] = static_cast<double>(rays) / static_cast<double>(state.iterations());
  state.counters["x realtime"] =
      benchmark::Counter(static_cast<double>(state.iterations()) / 30.0, benchmark::Counter::kIsRate);
}
BENCHMARK(BulletRaysFloor)->ArgName("rays")->Arg(1)->Arg(10)->Unit(benchmark::kMicrosecond);

// As many world writes a frame as the tool's run makes, spread over its own
// nodes, through the instance's snapshots and the embedded host.
void KeyWritingFloor(benchmark::State& state) {
  CarSession session(Caster::kBullet, 1);
  while (!session.AtEnd()) session.Step();
  const std::size_t writes = session.KeysWritten() / kTakeFrames;
  session.Restart();
  const std::vector<core::CoreNode*> nodes = session.ToolNodes();
  CInterface& iface = session.Instance();
  util::Matrix<double> pose;
  RunTakes(state, session, [&] {
    session.Advance();
    const double time = session.TimeOf(session.Frame());
    for (std::size_t w = 0; w < writes; ++w) {
      pose.SetTranslation({0.001 * static_cast<double>(w), 0, 0.01 * session.Frame()});
      CSnapshot* snapshot = iface.GetTransformSnapshot(nodes[w % nodes.size()], time);
      snapshot->SetWorldTransform(pose);
      iface.ReleaseTransformSnapshot(snapshot);
    }
  });
  state.counters["writes/frame"] = static_cast<double>(writes);
}
BENCHMARK(KeyWritingFloor)->Unit(benchmark::kMicrosecond);

}  // namespace
