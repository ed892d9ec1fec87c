// The two follow cameras behind a "car" on the embedded host: the lag at
// constant speed and the way they come to rest, worked out from their laws;
// frame-rate independence; a run resumed from the middle of a take; their
// pages, and the saved data of older scenes.
#include "plugins/common/followcam.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "adaptor/standalone/standalonenode.h"
#include "core/configadaptor/elements.h"
#include "plugins/motionfiltercam/motionfiltercamobject.h"
#include "plugins/steadycam/steadycamobject.h"
#include "tests/plugins/toolharness.h"
#include "util/xml/element.h"

namespace vuk::rgw::addon {
namespace {

using adaptor::standalone::SceneNode;
using adaptor::standalone::StandaloneNode;
using testing_support::Bytes;
using testing_support::ToolHarness;
using util::Matrix;
using util::Vector3;

using Path = std::function<Matrix<double>(double time)>;

constexpr double kSpeed = 2;      // m/s along X
constexpr double kStopTime = 24;  // the car then stands at kSpeed x kStopTime
constexpr double kEndTime = 34;

Matrix<double> At(const Vector3<double>& position) {
  Matrix<double> pose;
  pose.SetTranslation(position);
  return pose;
}

Matrix<double> DriveAndStop(double time) { return At({kSpeed * std::min(time, kStopTime), 0, 0}); }

SceneNode* Host(CNode* node) { return static_cast<StandaloneNode*>(node)->GetHostNode(); }

// A follow camera whose AttachedCam rides on a car, at a frame rate, with a
// factory profile when one is named.
class FollowTake {
 public:
  FollowTake(const std::string& toolName, int fps, const std::string& profile = "") : harness(toolName) {
    harness.host.GetScene().clock.SetFrameRate(fps);
    if (!profile.empty()) {
      const std::string folder = harness.Instance().GetToolPlugin()->GetPath();
      util::xml::Element element;
      EXPECT_EQ(
          element.Parse(std::string(RGW_TOOL_SOURCES) + "/" + folder + "/data/configprofiles/" + profile + ".ccp"),
          util::xml::kParsed);
      harness.Instance().ApplyConfigProfile(element);
    }
    harness.Link(tool.attachedNode.handle, car);
    // A take through the core starts with a key where the follower stands;
    // below the moving attached camera, it would stand elsewhere before its
    // first key.
    tool.Follower().Transform(0)->SetWorldTransform(tool.Follower().World(0));
  }

  // Keys the car on every frame up to the last, and records the take.
  void Run(const Path& path, int lastFrame) {
    for (int k = 0; k <= lastFrame; ++k) {
      harness.host.GetScene().WriteWorld(car, harness.host.GetScene().clock.TickOf(harness.TimeOf(k)),
                                         path(harness.TimeOf(k)));
    }
    harness.Record(0, lastFrame, [](std::size_t, int) { return 0.0; });
  }
  int FrameAt(double time) { return static_cast<int>(std::lround(time * harness.host.GetFrameRate())); }
  double FollowerX(int frame) { return tool.Follower().World(harness.TimeOf(frame)).GetTranslation().x; }

  ToolHarness harness;
  FollowCamObject& tool = harness.Tool<FollowCamObject>();
  SceneNode* car = harness.AddSceneNode("Car");
};

// The lag behind a target at constant speed V, by each law:
// - soft motion: each of the two stages is the lag y += a (x - y) run in
//   slices of 0.02 s (a = 0.5 x factor); a frame of n slices holds its
//   target, so in the steady state the error e before a frame's slices
//   satisfies e = (1-a)^n (e + V dt), e = V dt (1-a)^n / (1 - (1-a)^n), and
//   the second stage lags the first by as much again;
// - motion filter: the velocity settles at V, so k (x - p) = d V: a lag of
//   d V / k, whatever the frame rate.
struct Steady {
  const char* tool;
  const char* profile;
  int fps;
  double lag;
  double tolerance;  // what is left of the start transient after 24 s
};

double SoftMotionLag(double factor, int fps) {
  const double slices = fps == 25 ? 2 : 1, keep = std::pow(1 - 0.5 * factor, slices);
  return 2 * kSpeed * (1.0 / fps) * keep / (1 - keep);
}

const Steady kSteady[] = {
    {"SoftMotionCam", "", 25, SoftMotionLag(0.1, 25), 1e-9},
    {"SoftMotionCam", "", 50, SoftMotionLag(0.1, 50), 1e-9},
    // "Bouncy": k 60, d 1; the transient fades as exp(-d t / 2), 6e-6 by 24 s.
    {"MotionFilterCam", "Bouncy", 25, 1 * kSpeed / 60, 1e-5},
    {"MotionFilterCam", "Bouncy", 50, 1 * kSpeed / 60, 1e-5},
};

class FollowSteadyLag : public testing::TestWithParam<Steady> {};

TEST_P(FollowSteadyLag, TrailsAConstantSpeedByTheLagOfItsLaw) {
  const Steady& steady = GetParam();
  FollowTake take(steady.tool, steady.fps, steady.profile);
  const int stop = take.FrameAt(kStopTime);
  take.Run(DriveAndStop, stop);
  EXPECT_NEAR(kSpeed * kStopTime - take.FollowerX(stop), steady.lag, steady.tolerance);
}

INSTANTIATE_TEST_SUITE_P(Laws, FollowSteadyLag, testing::ValuesIn(kSteady));

// After the stop. Soft motion: two real lags in a row never overshoot, so the
// follower creeps up to the stop monotonically. "Bouncy": the free damped
// spring u'' + d u' + k u = 0 from u(0) = -d V / k (the steady lag) and
// u'(0) = V, solved in closed form and sampled every 10 microseconds, peaks
// at 0.2323 m past the stop; the frames, a semi-implicit Euler step each, see
// that peak to within 1 %.
double SpringOvershoot(double k, double d) {
  const double sigma = d / 2, omega = std::sqrt(k - sigma * sigma);
  const double a = -d * kSpeed / k, b = (kSpeed + sigma * a) / omega;
  double peak = 0;
  for (double t = 0; t < 2 * M_PI / omega; t += 1e-5) {
    peak = std::max(peak, std::exp(-sigma * t) * (a * std::cos(omega * t) + b * std::sin(omega * t)));
  }
  return peak;
}

class FollowStop : public testing::TestWithParam<int> {};

TEST_P(FollowStop, SoftMotionReachesTheStopWithoutOvershoot) {
  FollowTake take("SoftMotionCam", GetParam());
  const int end = take.FrameAt(kEndTime);
  take.Run(DriveAndStop, end);
  const double stop = kSpeed * kStopTime;
  for (int k = take.FrameAt(kStopTime); k < end; ++k) {
    ASSERT_LE(take.FollowerX(k), take.FollowerX(k + 1)) << "frame " << k;
    ASSERT_LE(take.FollowerX(k + 1), stop) << "frame " << k + 1;
  }
  EXPECT_NEAR(take.FollowerX(end), stop, 1e-6);
}

TEST_P(FollowStop, BouncyOvershootsAsItsSpringAsks) {
  FollowTake take("MotionFilterCam", GetParam(), "Bouncy");
  const int end = take.FrameAt(kEndTime);
  take.Run(DriveAndStop, end);
  double peak = 0;
  for (int k = take.FrameAt(kStopTime); k <= end; ++k) peak = std::max(peak, take.FollowerX(k) - kSpeed * kStopTime);
  const double expected = SpringOvershoot(60, 1);
  EXPECT_NEAR(expected, 0.2323, 1e-4);
  EXPECT_NEAR(peak, expected, 0.01 * expected);
}

INSTANTIATE_TEST_SUITE_P(FrameRates, FollowStop, testing::Values(25, 50));

// The same drive at 25 and 50 fps, compared at the 25 fps frames. The soft
// motion lag differs by 2 x V x (0.38 - 0.3703) = 0.039 m between the two
// (see the lags above). The spring's lag is the same; its Euler step runs
// about half a step behind the motion between, V x (0.04 - 0.02) / 2 = 0.02 m.
struct Rates {
  const char* tool;
  const char* profile;
  double tolerance;
};

class FollowFrameRate : public testing::TestWithParam<Rates> {};

TEST_P(FollowFrameRate, HardlyDependsOnIt) {
  FollowTake slow(GetParam().tool, 25, GetParam().profile), fast(GetParam().tool, 50, GetParam().profile);
  slow.Run(DriveAndStop, slow.FrameAt(kEndTime));
  fast.Run(DriveAndStop, fast.FrameAt(kEndTime));
  double largest = 0;
  for (int k = 0; k <= slow.FrameAt(kEndTime); ++k) {
    largest = std::max(largest, std::abs(slow.FollowerX(k) - fast.FollowerX(2 * k)));
  }
  EXPECT_LT(largest, GetParam().tolerance);
}

INSTANTIATE_TEST_SUITE_P(Laws, FollowFrameRate,
                         testing::Values(Rates{"SoftMotionCam", "", 0.04}, Rates{"MotionFilterCam", "Bouncy", 0.02}));

// A winding, turning drive; the second half of the take run again from its
// middle writes the very keys of the full run, the lenses' included.
class FollowResumed : public testing::TestWithParam<const char*> {};

TEST_P(FollowResumed, FromTheMiddleGivesTheKeysOfTheFullRun) {
  FollowTake take(GetParam(), 30);
  take.Run(
      [](double t) {
        Matrix<double> pose = Matrix<double>::FromQuat(util::Quat<double>::FromAxisAngle({0, 1, 0}, 0.8 * std::sin(t)));
        pose.SetTranslation({3 * std::sin(t), 0.5 * t, 2 * std::cos(0.7 * t)});
        return pose;
      },
      90);
  const auto keys = [&take] {
    std::vector<testing_support::Keys> transforms;
    std::vector<std::vector<adaptor::standalone::ScalarKey>> lens;
    for (CNode* node : take.harness.ToolNodes()) {
      transforms.push_back(Host(node)->track.Keys());
      lens.push_back(Host(node)->camera.fovDegrees.Keys());
      lens.push_back(Host(node)->camera.targetDistance.Keys());
    }
    return std::make_pair(transforms, lens);
  };
  const auto full = keys();
  static_cast<core::CoreNode*>(take.tool.Follower().handle)->InvalidateFrom(take.harness.TimeOf(46));
  // Compared whole: a failure would print thousands of numbers.
  ASSERT_FALSE(keys() == full);
  take.harness.Resimulate(45, 90);
  EXPECT_TRUE(keys() == full);
}

INSTANTIATE_TEST_SUITE_P(Tools, FollowResumed, testing::Values("SoftMotionCam", "MotionFilterCam"));

// Each control of the page as one line: label, tooltip, whether the tool
// hears of a change, and a spinner's limits and step.
void Describe(core::configadaptor::Node& node, std::vector<std::string>& lines) {
  for (std::size_t i = 0; i < node.GetChildCount(); ++i) {
    core::configadaptor::Node* child = node.GetChild(i);
    std::ostringstream line;
    line << child->label << " | " << child->tooltip << (child->callback ? " | heard" : "");
    if (auto* spinner = dynamic_cast<core::configadaptor::element::Spinner*>(child)) {
      line << " | " << spinner->minimum << " " << spinner->maximum << " " << spinner->step;
    }
    lines.push_back(line.str());
    Describe(*child, lines);
  }
}

struct Page {
  const char* tool;
  std::vector<std::string> lines;
};

#define REACT "This factor determines how fast the camera should react to changes in "
#define SMOOTH "This factor determines how much the camera will smooth out rebounces at a stop"
#define MAXIMUM "This factor determines the maximum "

const Page kPages[] = {
    {"SoftMotionCam",
     {"General Modes | ", "Re-Initialize | Re-initializes the camera position and orientation. | heard",
      "Hide AttachedCam | Hide AttachedCam | heard", "Hide FollowCam | Hide FollowCam | heard", "Camera Parameters | ",
      "Translation Response Factor | " REACT "position | 1e-08 100 0.001",
      "Rotation Response Factor | " REACT "rotation | 1e-08 100 0.001"}},
    {"MotionFilterCam",
     {"Motion Filter Parameters | ", "Fixate Translations | Fixates the camera's translations, ie no filtering | heard",
      "Translation Response Factor | " REACT "position | 0 1e+18 0.01",
      "Translation Smoothing Factor | " SMOOTH " | 0 1e+18 0.01",
      "Translation Max Velocity | " MAXIMUM "translation velocity of the camera | 0 1e+18 0.01",
      "Fixate Rotations | Fixates the camera's rotations, ie no filtering | heard",
      "Rotation Response Factor | " REACT "rotation | 0 1e+18 0.01",
      "Rotation Smoothing Factor | " SMOOTH " | 0 1e+18 0.01",
      "Rotation Max Velocity | " MAXIMUM "rotation velocity of the camera | 0 1e+18 0.01"}},
};

class FollowPage : public testing::TestWithParam<Page> {};

TEST_P(FollowPage, ListsItsControlsInOrder) {
  ToolHarness harness(GetParam().tool);
  std::vector<std::string> lines;
  Describe(*harness.Instance().GetPage(), lines);
  EXPECT_EQ(lines, GetParam().lines);
  // The follower is made below the attached camera, which is selected.
  auto& tool = harness.Tool<FollowCamObject>();
  EXPECT_EQ(harness.ToolNodes(), (std::vector<CNode*>{tool.attachedNode.handle, tool.Follower().handle}));
  EXPECT_EQ(Host(tool.Follower().handle)->parent, Host(tool.attachedNode.handle));
  EXPECT_TRUE(Host(tool.attachedNode.handle)->selected);
}

INSTANTIATE_TEST_SUITE_P(Tools, FollowPage, testing::ValuesIn(kPages),
                         [](const testing::TestParamInfo<Page>& info) { return info.param.tool; });

// Saved data of older builds, in the chunk the tool names, with its build in
// front; the entries are the present build's, which older ones held too.
Bytes OlderChunk(ToolHarness& harness, const std::string& build) {
  util::DataChunk chunk;
  const Bytes saved = harness.Save();
  EXPECT_TRUE(chunk.Read(saved));
  chunk.data.assign(build.begin(), build.end());
  chunk.packed.clear();
  return chunk.Flatten();
}

TEST(SoftMotionCamSavedData, OlderFormsStartAfreshWithWhatTheyHold) {
  ToolHarness harness("SoftMotionCam");
  auto& tool = harness.Tool<CSteadyCamObject>();
  tool.followNode.translationResponseFactor = 0.7;
  tool.hideFollow = true;
  const Bytes build101 = OlderChunk(harness, "101 of an old build");
  tool.followNode.translationResponseFactor = 0.1;
  tool.bFirstTime = false;
  // The oldest form: the 24-byte structure alone, hide bytes first.
  Bytes structure(24, 0);
  structure[0] = 1;
  harness.SetSaveData(structure);
  ASSERT_EQ(tool.Load(), 0);
  EXPECT_TRUE(tool.hideAttached);
  EXPECT_FALSE(tool.hideFollow);
  EXPECT_TRUE(tool.bFirstTime);
  // Before build 102 nothing but the chunk's name counts.
  tool.bFirstTime = false;
  harness.SetSaveData(build101);
  ASSERT_EQ(tool.Load(), 0);
  EXPECT_TRUE(tool.bFirstTime);
  EXPECT_TRUE(tool.hideAttached);
  EXPECT_EQ(tool.followNode.translationResponseFactor, 0.1);
}

struct FilterBuild {
  const char* build;
  bool readsSettings, readsLimits;
};

class MotionFilterCamSavedData : public testing::TestWithParam<FilterBuild> {};

TEST_P(MotionFilterCamSavedData, ReadsWhatItsBuildHeld) {
  ToolHarness harness("MotionFilterCam");
  auto& node = harness.Tool<CMotionFilterCamObject>().followNode;
  node.translationSmoothingFactor = 9;
  node.rotationMaxVelocity = 3;
  const Bytes saved = OlderChunk(harness, GetParam().build);
  node.translationSmoothingFactor = 5;
  node.rotationMaxVelocity = 4;
  harness.SetSaveData(saved);
  ASSERT_EQ(harness.Instance().GetTool()->Load(), 0);
  EXPECT_EQ(node.translationSmoothingFactor, GetParam().readsSettings ? 9 : 5);
  EXPECT_EQ(node.rotationMaxVelocity, GetParam().readsLimits ? 3 : 0);
}

INSTANTIATE_TEST_SUITE_P(Builds, MotionFilterCamSavedData,
                         testing::Values(FilterBuild{"8100", false, false}, FilterBuild{"8101", true, false},
                                         FilterBuild{"8102", true, true}, FilterBuild{"9000", true, true}));

// Older scenes hold the follower under the tool's former node name.
class FollowFormerName : public testing::TestWithParam<std::pair<const char*, const char*>> {};

TEST_P(FollowFormerName, IsTheFollower) {
  ToolHarness harness(GetParam().first);
  auto& tool = harness.Tool<FollowCamObject>();
  const Bytes saved = harness.Save();
  CNode* follower = tool.Follower().handle;
  static_cast<StandaloneNode*>(follower)->name = GetParam().second;
  CSnapshot_Lens* lens = harness.Instance().GetLensSnapshot(follower, 0);
  lens->SetFOV(30);
  lens->SetTargetDistance(7);
  harness.Instance().ReleaseLensSnapshot(lens);
  tool.Follower().handle = nullptr;
  harness.SetSaveData(saved);
  ASSERT_EQ(tool.Load(), 0);
  EXPECT_EQ(tool.Follower().handle, follower);
  // The lens at time 0, as current and base values.
  EXPECT_EQ(tool.Follower().fieldOfView, 30);
  EXPECT_EQ(tool.Follower().baseFieldOfView, 30);
  EXPECT_EQ(tool.Follower().targetDistance, 7);
  EXPECT_EQ(tool.Follower().baseTargetDistance, 7);
}

INSTANTIATE_TEST_SUITE_P(Tools, FollowFormerName,
                         testing::Values(std::make_pair("SoftMotionCam", "SteadyCam"),
                                         std::make_pair("MotionFilterCam", "MotionFilterCam")));

// "Re-Initialize" makes the next run start from the follower's own pose.
TEST(SoftMotionCam, ReInitializeAndTheHideSwitches) {
  ToolHarness harness("SoftMotionCam");
  auto& tool = harness.Tool<CSteadyCamObject>();
  harness.Record(0, 3, [](std::size_t, int) { return 0.0; });
  EXPECT_FALSE(tool.bFirstTime);
  tool.Changed("Re-Initialize");
  EXPECT_TRUE(tool.bFirstTime);
  harness.ExpectUndoableHide(tool, "Hide AttachedCam", tool.hideAttached, tool.attachedNode.handle);
  harness.ExpectUndoableHide(tool, "Hide FollowCam", tool.hideFollow, tool.followNode.handle);
}

}  // namespace
}  // namespace vuk::rgw::addon
