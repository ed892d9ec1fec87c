// Live takes without a window: recorded from SDL's virtual joystick and from
// key events put into the device layer, on a clock of the test's that moves
// one frame of the wall clock per tick; the keyboard profiles the tools ship;
// and the journal that a recording killed at random moments leaves behind.
#include "app/rgw/liverecording.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>

#include <QCoreApplication>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <random>
#include <thread>

#include "adaptor/standalone/gltffile.h"
#include "core/takejournal.h"
#include "scenes/samplescene.h"
#include "tests/app/rgwprogram.h"
#include "unidevice/driver/joystickvalues.h"
#include "unidevice/driver/linuxdriver.h"
#include "unidevice/driver/sdljoystickdevice.h"

namespace vuk::app {
namespace {

using rgw::adaptor::standalone::Scene;
using rgw::adaptor::standalone::TransformKey;

constexpr double kFps = 25;
constexpr const char* kTool = "1DPositioner_01";

QCoreApplication& Application() {
  static int argc = 1;
  static char name[] = "tests_app_live";
  static char* argv[] = {name, nullptr};
  static QCoreApplication application(argc, argv);
  return application;
}

// The keys of the tool's nodes, by node.
using ToolKeys = std::map<std::string, std::vector<TransformKey>>;

ToolKeys KeysOf(Scene& scene) {
  ToolKeys keys;
  scene.Walk([&](rgw::adaptor::standalone::SceneNode& node) {
    if (node.hostName.rfind(kTool, 0) == 0 && !node.track.Keys().empty()) keys[node.hostName] = node.track.Keys();
  });
  return keys;
}

ToolKeys KeysOf(const std::string& path) {
  Scene scene;
  rgw::adaptor::standalone::GltfFile file;
  std::string error;
  EXPECT_TRUE(file.Load(path, scene, &error)) << error;
  return KeysOf(scene);
}

void ExpectSameKeys(const ToolKeys& expected, const ToolKeys& actual) {
  ASSERT_EQ(expected.size(), actual.size());
  ASSERT_FALSE(expected.empty());
  for (const auto& [node, keys] : expected) {
    const auto& other = actual.at(node);
    ASSERT_EQ(keys.size(), other.size()) << node;
    for (std::size_t i = 0; i < keys.size(); ++i) {
      EXPECT_EQ(keys[i].tick, other[i].tick) << node << " key " << i;
      EXPECT_NEAR((keys[i].position - other[i].position).Length(), 0, 1e-6) << node << " key " << i;
    }
  }
}

// The demo scene at 25 frames a second with a 1DPositioner, whose recorder
// runs on the test's clock: each tick moves it on by `tickMs`, and then lets
// the test set the devices for the next.
class LiveTake : public testing::Test {
 protected:
  void SetUp() override {
    folder = testing::TempDir() + "/livetake/" + testing::UnitTest::GetInstance()->current_test_info()->name();
    std::filesystem::create_directories(folder);
    scenes::BuildSampleScene(session.host.GetScene());
    session.host.GetScene().clock.SetFrameRate(static_cast<std::int32_t>(kFps));
    ASSERT_NE(session.tools.Create("1DPositioner"), nullptr);
    position = session.tools.Find(kTool)->instance->Inputs().Find("Position");
    Recorder().clock = [this] { return nowMs; };
    Recorder().processEvents = [this] {
      nowMs += tickMs;
      ++ticks;
      if (nextTick) nextTick();
    };
  }

  rgw::core::RecordManager& Recorder() { return *session.core.GetRecorder(); }
  unidevice::driver::LinuxDriver& Platform() { return session.core.GetDevices()->GetPlatformDriver(); }
  const std::vector<util::AVarRecord<double>>& Take() {
    return session.tools.Find(kTool)->instance->RecordedTracks().at(0).records;
  }
  // The time of the frame the next tick steps.
  double NextFrameTime() {
    return rgw::core::TimeBase(session.host.GetFrameRate()).TimeOf(Recorder().frameIndex + 1);
  }
  std::string Path(const std::string& name) const { return folder + "/" + name; }

  QCoreApplication& application = Application();
  Session session;
  unidevice::Property* position = nullptr;
  std::int64_t nowMs = 0;
  // A frame at real time.
  std::int64_t tickMs = 40;
  int ticks = 0;
  std::function<void()> nextTick;
  std::string folder;
};

// SDL's virtual joystick bound to the tool's channel.
class JoystickTake : public LiveTake {
 protected:
  void SetUp() override {
    LiveTake::SetUp();
    sdlIndex = SDL_JoystickAttachVirtual(SDL_JOYSTICK_TYPE_GAMECONTROLLER, 2, 0, 0);
    if (sdlIndex < 0) GTEST_SKIP() << "this SDL build has no virtual joysticks: " << SDL_GetError();
    session.core.GetDevices()->PollAll();
    handle = SDL_JoystickFromInstanceID(SDL_JoystickGetDeviceInstanceID(sdlIndex));
    ASSERT_NE(handle, nullptr) << SDL_GetError();
    for (unidevice::Device* device : Platform().devices) {
      if (!dynamic_cast<unidevice::driver::SdlJoystickDevice*>(device)) continue;
      for (std::int32_t i = 0; i < device->GetControlCount(); ++i) {
        if (device->GetControl(i)->description == "Axis 1 (X)") position->Bind(device->GetControl(i));
      }
    }
    ASSERT_NE(position->source, nullptr);
  }
  void TearDown() override {
    if (sdlIndex >= 0 && SDL_JoystickIsVirtual(sdlIndex)) SDL_JoystickDetachVirtual(sdlIndex);
  }

  // A take with the stick at a new place at each tick; answers the seconds of
  // scene time recorded and keeps what each frame should read.
  double Record(double seconds, int slowMotion) {
    std::int16_t raw = -30000;
    nextTick = [&] {
      raw = static_cast<std::int16_t>(raw + 4321);
      SDL_JoystickSetVirtualAxis(handle, 0, raw);
      injected.emplace_back(NextFrameTime(), unidevice::driver::AxisValue(raw));
    };
    return RecordLive(session, {seconds, slowMotion, 0});
  }

  int sdlIndex = -1;
  SDL_Joystick* handle = nullptr;
  std::vector<std::pair<double, double>> injected;
};

class JoystickSpeed : public JoystickTake, public testing::WithParamInterface<int> {};

// Slowed 2^s times, a frame of scene time takes 2^s frames of the wall
// clock: ticks that far apart step one frame each. 0.42 s of scene time end
// in the tick at 0.44 s: eleven frames, each of the stick where the tick
// before left it.
TEST_P(JoystickSpeed, RecordsTheStickFrameByFrameAtItsSpeed) {
  const int slowMotion = GetParam();
  const double slowed = std::pow(2.0, slowMotion);
  tickMs = 40 << slowMotion;
  const double seconds = Record(0.42 * slowed, slowMotion);
  EXPECT_EQ(ticks, 12);  // the first tick only takes the clock
  const double wallSeconds = static_cast<double>(nowMs - tickMs) / 1000.0;  // at the last tick
  EXPECT_NEAR(seconds, 0.44, 1e-9);
  EXPECT_NEAR(seconds, wallSeconds / slowed, 1e-9);
  const auto& take = Take();
  ASSERT_EQ(take.size(), 11u);
  for (std::size_t i = 0; i < take.size(); ++i) {
    EXPECT_DOUBLE_EQ(take[i].time, injected[i].first) << i;
    EXPECT_EQ(take[i].value, injected[i].second) << i;
  }
  EXPECT_NEAR(take.back().time, 0.48, 1e-9);
  EXPECT_FALSE(Recorder().IsRecording());
  EXPECT_EQ(session.host.GetFrameRate(), kFps);  // the speed is back to real time
}

INSTANTIATE_TEST_SUITE_P(SlowMotion, JoystickSpeed, testing::Values(0, 1, 2, 3));

// The same values as a CSV take, simulated by rgw run from the frame before
// the first recorded one, give the keys the live take gave.
TEST_F(JoystickTake, KeysEqualThoseOfTakeAndRunWithTheSameValues) {
  std::string error;
  ASSERT_TRUE(session.Save(Path("before.gltf"), error)) << error;
  Record(1.0, 0);
  ASSERT_TRUE(session.Save(Path("live.gltf"), error)) << error;
  std::ofstream csv(Path("take.csv"));
  csv << "time,Position\n";
  char row[64];
  for (const auto& sample : Take()) {
    std::snprintf(row, sizeof row, "%.17g,%.17g\n", sample.time, sample.value);
    csv << row;
  }
  csv.close();
  const Ran took = Rgw("take " + Path("before.gltf") + " --instance " + kTool + " --csv " + Path("take.csv") +
                       " --out " + Path("taken.gltf"));
  ASSERT_EQ(took.code, 0) << took.output;
  char range[64];
  std::snprintf(range, sizeof range, " --from %.17g --to %.17g", Take().front().time - 1 / kFps, Take().back().time);
  const Ran ran = Rgw("run " + Path("taken.gltf") + range + " --out " + Path("run.gltf"));
  ASSERT_EQ(ran.code, 0) << ran.output;
  ExpectSameKeys(KeysOf(Path("live.gltf")), KeysOf(Path("run.gltf")));
}

// The shipped "Keyboard" profile makes Up and Down a two-key axis: held keys
// move the tool, and the take it records replays the same motion.
TEST_F(LiveTake, AKeyboardTakeReplaysTheMotionItRecorded) {
  rgw::core::Plugin* tool = session.library.FindTool("1DPositioner");
  const util::xml::Element* profile = tool->InputProfiles().Find("Keyboard");
  ASSERT_NE(profile, nullptr);
  session.tools.Find(kTool)->instance->ApplyInputProfile(*profile);
  unidevice::driver::KeyboardDevice& keyboard = *Platform().GetKeyboard();
  constexpr int kUp = 38, kDown = 40;
  nextTick = [&] {
    if (ticks == 3) keyboard.KeyDown(kUp);
    if (ticks == 12) keyboard.KeyUp(kUp);
    if (ticks == 18) keyboard.KeyDown(kDown);
    if (ticks == 26) keyboard.KeyUp(kDown);
  };
  RecordLive(session, {1.2, 0, 0});
  double highest = 0, lowest = 0;
  for (const auto& sample : Take()) {
    highest = std::max(highest, sample.value);
    lowest = std::min(lowest, sample.value);
  }
  EXPECT_GT(highest, 0.5);
  EXPECT_LT(lowest, -0.5);
  const ToolKeys recorded = KeysOf(session.host.GetScene());
  // The replay has to write every key again.
  Scene& scene = session.host.GetScene();
  scene.Walk([&](rgw::adaptor::standalone::SceneNode& node) {
    if (node.hostName.rfind(kTool, 0) == 0) node.track.RemoveFrom(scene.clock.TickOf(Take().front().time));
  });
  session.Resimulate(Take().front().time - 1 / kFps, Take().back().time);
  ExpectSameKeys(recorded, KeysOf(session.host.GetScene()));
}

// The "Keyboard" input profiles the tools ship: each binds the channels it
// names, and only those, to keys; a two-key channel goes the way its name
// says first ("Forw" of "Forw/Backw") with the key a user would press for
// that way.
constexpr int kShift = 0x10, kSpace = 0x20, kLeft = 0x25, kUp = 0x26, kRight = 0x27, kDown = 0x28;
constexpr int kA = 'A', kD = 'D', kS = 'S', kW = 'W';

struct KeyBinding {
  const char* channel;
  int positive;
  int negative;  // 0 for a channel on one key
};

struct ShippedProfile {
  const char* tool;
  std::vector<KeyBinding> keys;  // in the tool's channel order
};

const ShippedProfile kProfiles[] = {
    {"1DPositioner", {{"Position", kUp, kDown}}},
    {"4WheelerExt",
     {{"Gas Pedal (Forw/Backw)", kUp, kDown},
      {"Steering Wheel (Right/Left)", kRight, kLeft},
      {"Booster", kShift, 0},
      {"ABS Brake", kSpace, 0}}},
    {"Helicopter",
     {{"Forw/Backw Speed", kW, kS},
      {"Right/Left Speed", kD, kA},
      {"Up/Down Speed", kUp, kDown},
      {"Yaw Speed (Right/Left)", kRight, kLeft},
      {"Brake All", kSpace, 0}}},
    // The stick pulled back, Down, lifts the nose.
    {"AirplaneExt",
     {{"Forw/Backw Speed", kW, kS},
      {"Rudder (Yaw Right/Left)", kD, kA},
      {"Elevator (Pitch Up/Down)", kDown, kUp},
      {"Aileron (Roll Right/Left)", kRight, kLeft},
      {"Brake All", kSpace, 0},
      {"AfterBurner", kShift, 0}}},
    {"Missile", {{"Fire Missile", kSpace, 0}}},
    {"Firepower", {{"Fire", kSpace, 0}}},
    {"AutoZoomCam", {{"Forw/Backw Transl", kUp, kDown}}},
    {"HumanizerCam", {{"Shaker Amplitude", kSpace, 0}}},
};

class KeyboardProfile : public testing::TestWithParam<ShippedProfile> {
 protected:
  QCoreApplication& application = Application();
  Session session;
  unidevice::driver::KeyboardDevice& keyboard = *session.core.GetDevices()->GetPlatformDriver().GetKeyboard();
};

TEST_P(KeyboardProfile, BindsItsChannelsToTheKeysForTheWaysTheirNamesSay) {
  const ShippedProfile& shipped = GetParam();
  rgw::core::InstanceReference* item = session.tools.Create(shipped.tool);
  ASSERT_NE(item, nullptr);
  // Asked after the tool is made, which adds its start profile to the list.
  const util::xml::Element* profile = session.library.FindTool(shipped.tool)->InputProfiles().Find("Keyboard");
  ASSERT_NE(profile, nullptr);
  rgw::core::Instance& tool = *item->instance;
  tool.ApplyInputProfile(*profile);

  std::vector<std::string> bound, expected;
  for (std::size_t i = 0; i < tool.Inputs().Count(); ++i) {
    if (tool.Inputs().Get(i)->source) bound.push_back(tool.Inputs().Get(i)->name);
  }
  for (const KeyBinding& binding : shipped.keys) expected.push_back(binding.channel);
  EXPECT_EQ(bound, expected);

  for (const KeyBinding& binding : shipped.keys) {
    unidevice::Property* channel = tool.Inputs().Find(binding.channel);
    ASSERT_NE(channel, nullptr) << binding.channel;
    EXPECT_EQ(channel->Evaluate(), 0.0) << binding.channel;
    keyboard.KeyDown(binding.positive);
    EXPECT_GT(channel->Evaluate(), 0.5) << binding.channel;
    keyboard.KeyUp(binding.positive);
    if (!binding.negative) continue;
    keyboard.KeyDown(binding.negative);
    EXPECT_LT(channel->Evaluate(), -0.5) << binding.channel;
    keyboard.KeyUp(binding.negative);
  }
}

INSTANTIATE_TEST_SUITE_P(Shipped, KeyboardProfile, testing::ValuesIn(kProfiles),
                         [](const auto& info) { return std::string(info.param.tool); });

}  // namespace
}  // namespace vuk::app
