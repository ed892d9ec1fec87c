// The demo seen through its LookAt camera (made by scripts/viewport-demo,
// run by a fixture before these tests): the camera aims at the car, so the
// car fills the middle of the picture; rgw view drew what the viewport
// draws; and rgw view says what it did, or why not.
#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "adaptor/standalone/gltffile.h"
#include "gui/viewport/offscreenview.h"
#include "tests/app/rgwprogram.h"
#include "tests/gui/viewport/pictures.h"

namespace vuk::gui::viewport {
namespace {

using rgw::adaptor::standalone::GltfFile;

const std::string kFolder = RGW_VIEWPORT_DEMO;
const std::string kScene = kFolder + "/viewport_demo.gltf";
constexpr double kSeconds = 3;

class DemoView : public testing::Test {
 protected:
  DemoView() {
    std::string error;
    loaded = file.Load(kScene, scene, &error);
    EXPECT_TRUE(loaded) << error;
    scene.Walk([this](SceneNode& node) {
      if (node.hostName == "LookAtCam_01_LookAtCam") viewPoint.LookThrough(&node);
    });
  }
  QImage Draw(OffscreenView& view) {
    view.Redraw(&scene, scene.clock.TickOf(kSeconds), viewPoint);
    return view.Picture();
  }

  GltfFile file;
  Scene scene;
  bool loaded = false;
  ViewPoint viewPoint;
};

TEST_F(DemoView, TheCarFillsTheMiddleOfTheLookAtCamerasPicture) {
  ASSERT_TRUE(loaded);
  ASSERT_NE(viewPoint.Camera(), nullptr);
  OffscreenView view(640, 360);
  ASSERT_EQ(view.Problem(), "");
  const QImage withCar = Draw(view);
  scene.Walk([](SceneNode& node) {
    if (node.hostName.rfind("Car_", 0) == 0) node.visible = false;
  });
  const QImage withoutCar = Draw(view);
  const QRect middle(640 / 2 - 40, 360 / 2 - 40, 80, 80);
  EXPECT_GT(DifferentPixels(withCar, withoutCar, middle), middle.width() * middle.height() / 3);
  // What isn't the car stays as it was: the corners show the terrain alone.
  EXPECT_EQ(DifferentPixels(withCar, withoutCar, QRect(0, 300, 100, 60)), 0);
}

TEST_F(DemoView, RgwViewDrewWhatTheViewportDraws) {
  ASSERT_TRUE(loaded);
  OffscreenView view(1280, 720);
  const QImage written(QString::fromStdString(kFolder + "/viewport_lookat.png"));
  ASSERT_FALSE(written.isNull());
  EXPECT_EQ(DifferentPixels(written, Draw(view)), 0);
}

struct Saying {
  std::string arguments;
  int code;
  std::string said;
};
void PrintTo(const Saying& saying, std::ostream* out) { *out << "rgw view " << saying.arguments; }

class RgwView : public testing::TestWithParam<Saying> {};

TEST_P(RgwView, SaysWhatItDidOrWhyNot) {
  const Saying& saying = GetParam();
  const app::Ran ran = app::Rgw("view " + saying.arguments);
  EXPECT_EQ(ran.code, saying.code) << ran.output;
  EXPECT_NE(ran.output.find(saying.said), std::string::npos) << ran.output;
}

const std::string kOut = kFolder + "/said.png";

INSTANTIATE_TEST_SUITE_P(
    Command, RgwView,
    testing::Values(
        Saying{kScene + " --png " + kOut + " --width 200 --height 100", 0,
               "drew " + kScene + " at 0 s from above, 200 by 100 pixels, written to " + kOut + "\n"},
        Saying{kScene + " --camera Overview --time 1.5 --png " + kOut, 0,
               "at 1.5 s through Overview, 1280 by 720 pixels"},
        Saying{"--help", 0, "usage: rgw view FILE --png OUT"},
        Saying{kScene, 2, "rgw: --png is missing\nusage: rgw view"},
        Saying{kScene + " --png " + kOut + " --camera Nope", 1, ": no node \"Nope\"; its nodes are Terrain, "},
        Saying{kScene + " --png " + kOut + " --camera Terrain", 1, "rgw: Terrain is not a camera\n"},
        Saying{kScene + " --png " + kOut + " --time abc", 1, "rgw: --time: \"abc\" is not a number\n"},
        Saying{kScene + " --png " + kOut + " --time -1", 1, "rgw: --time -1: a scene's time starts at 0 s\n"},
        Saying{kScene + " --png " + kOut + " --width 8", 1, "rgw: --width 8: a whole number of pixels from 16 to 8192\n"},
        Saying{kScene + " --png " + kOut + " --height 1.5", 1, "rgw: --height 1.5: a whole number of pixels"},
        Saying{kFolder + "/none.gltf --png " + kOut, 1, "none.gltf"}));

}  // namespace
}  // namespace vuk::gui::viewport
