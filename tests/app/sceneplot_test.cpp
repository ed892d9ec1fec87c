// Pictures of where scene nodes go: the mapping of world to panel, the paths
// sampled from a scene, a mesh ground's height below a point, the drawing,
// and `rgw scene plot` on the demo scene.
#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QImage>
#include <filesystem>
#include <string>

#include "adaptor/standalone/scene.h"
#include "app/rgw/picture.h"
#include "app/rgw/sceneplot.h"
#include "scenes/terrain.h"
#include "tests/app/rgwprogram.h"

namespace vuk::app {
namespace {

using rgw::adaptor::standalone::ObjectKind;
using rgw::adaptor::standalone::Scene;
using rgw::adaptor::standalone::SceneNode;
using rgw::adaptor::standalone::TransformKey;
using Point = util::Vector3<double>;

// Drawing text needs an application; the tests draw offscreen as rgw does
// without a display.
void StartApplication() {
  static int argc = 1;
  static char name[] = "tests_app_plot";
  static char* argv[] = {name, nullptr};
  DrawOffscreenWithoutDisplay();
  static QGuiApplication application(argc, argv);
}

// The pixels of exactly one colour within a region: how many, and the box
// around them.
struct Pixels {
  int count = 0;
  QRect box;
  QPoint lowest, highest;  // the first found farthest down and up the page
};

Pixels PixelsOf(const QImage& image, const QColor& colour, const QRectF& region) {
  Pixels found;
  const QRect area = region.toAlignedRect().intersected(image.rect());
  for (int y = area.top(); y <= area.bottom(); ++y) {
    for (int x = area.left(); x <= area.right(); ++x) {
      if (image.pixelColor(x, y).rgb() != colour.rgb()) continue;
      const QPoint at(x, y);
      if (found.count == 0 || y < found.highest.y()) found.highest = at;
      if (found.count == 0 || y > found.lowest.y()) found.lowest = at;
      found.box = found.count == 0 ? QRect(at, at) : found.box.united(QRect(at, at));
      ++found.count;
    }
  }
  return found;
}

TEST(PanelMap, EqualScaleMakesAMetreAsLongAcrossAsUp) {
  const PanelMap map(QRectF(0, 0, 600, 300), {0, 10}, {0, 10}, true, true);
  const QPointF origin = map.ToPixel(0, 0);
  EXPECT_NEAR(map.ToPixel(1, 0).x() - origin.x(), map.ToPixel(0, 1).y() - origin.y(), 1e-9);
  EXPECT_NEAR(map.Up().Length(), 10, 1e-9);  // the longer way fills the pixels as it was
  EXPECT_NEAR(map.Across().Length(), 20, 1e-9);
  EXPECT_NEAR(map.Across().from, -5, 1e-9);  // widened about its middle
}

TEST(PanelMap, TheSecondCoordinateGrowsDownOrUpThePage) {
  const QRectF pixels(10, 20, 200, 100);
  const PanelMap down(pixels, {0, 4}, {0, 2}, true, false);
  const PanelMap up(pixels, {0, 4}, {0, 2}, false, false);
  EXPECT_EQ(down.ToPixel(0, 0), pixels.topLeft());
  EXPECT_EQ(up.ToPixel(0, 0), pixels.bottomLeft());
  EXPECT_EQ(up.ToPixel(4, 2), pixels.topRight());
  for (const PanelMap* map : {&down, &up}) {
    double across = 0, along = 0;
    map->ToWorld(map->ToPixel(3, 0.5), across, along);
    EXPECT_NEAR(across, 3, 1e-9);
    EXPECT_NEAR(along, 0.5, 1e-9);
  }
}

// A car driving along +X over two seconds with a body a metre above it, and a
// post that never moves.
struct DrivingScene {
  DrivingScene() {
    car = scene.CreateNode(ObjectKind::kEmpty, "Car");
    body = scene.CreateNode(ObjectKind::kHelper, "Body", car);
    post = scene.CreateNode(ObjectKind::kEmpty, "Post");
    scene.WriteLocal(body, 0, TransformKey{0, {0, 1, 0}, {}, {1, 1, 1}}.ToMatrix());
    scene.WriteLocal(post, 0, TransformKey{0, {3, 0, 2}, {}, {1, 1, 1}}.ToMatrix());
    scene.animate = true;
    // On the frames of 30 fps (160 ticks each), and once between two of them.
    for (const rgw::adaptor::standalone::Tick tick : {0, 100, 160, 9600}) {
      scene.WriteWorld(car, tick, TransformKey{tick, {tick / 960.0, 0, 0}, {}, {1, 1, 1}}.ToMatrix());
    }
    scene.animate = false;
  }
  Scene scene;
  SceneNode* car;
  SceneNode* body;
  SceneNode* post;
};

TEST(ScenePaths, APathCoversTheKeysOfTheNodeAndOfTheNodesAboveIt) {
  DrivingScene driving;
  Tick first = -1, last = -1;
  ASSERT_TRUE(KeySpan(*driving.body, first, last));
  EXPECT_EQ(first, 0);
  EXPECT_EQ(last, 9600);
  const std::vector<Tick> ticks = PathTicks(*driving.body, driving.scene.clock, first, last);
  ASSERT_EQ(ticks.size(), 62u);  // 61 frames and the key between two of them
  EXPECT_EQ(ticks[1], 100);
  EXPECT_EQ(ticks[2], 160);
  EXPECT_EQ(ticks.back(), 9600);
  const NodePath path = TracePath(*driving.body, ticks);
  EXPECT_EQ(path.name, "Body");
  EXPECT_EQ(path.points.front(), Point(0, 1, 0));
  EXPECT_EQ(path.points.back(), Point(10, 1, 0));
}

TEST(ScenePaths, ANodeWithoutKeysHasOnePoint) {
  DrivingScene driving;
  Tick first = 0, last = 0;
  EXPECT_FALSE(KeySpan(*driving.post, first, last));
  const NodePath path = TracePath(*driving.post, PathTicks(*driving.post, driving.scene.clock, 0, 0));
  ASSERT_EQ(path.points.size(), 1u);
  EXPECT_EQ(path.points[0], Point(3, 0, 2));
}

TEST(MeshGround, TheHeightIsWhereARayDownMeetsTheMeshWhereItStands) {
  Scene scene;
  SceneNode* terrain = scene.CreateNode(ObjectKind::kMesh, "Terrain");
  terrain->SetMesh(scenes::RollingTerrain(20, 20));
  // Raised by 2 m and stretched three times in height.
  scene.WriteLocal(terrain, 0, TransformKey{0, {0, 2, 0}, {}, {1, 3, 1}}.ToMatrix());
  const MeshGround ground(*terrain, 0);
  double height = 0;
  ASSERT_TRUE(ground.HeightAt(3, -4, height));  // a vertex of the grid
  EXPECT_NEAR(height, 2 + 3 * scenes::RollingHeight(3, -4), 1e-9);
  EXPECT_FALSE(ground.HeightAt(30, 0, height));
}

// A sloping ground that lies only where z < 0.
class HalfSlope : public Ground {
 public:
  bool HeightAt(double x, double z, double& height) const override {
    height = 0.1 * x;
    return z < 0;
  }
};

QImage Drawn(std::vector<NodePath> paths, const Ground* ground = nullptr) {
  StartApplication();
  Plot plot;
  plot.title = "test";
  plot.paths = std::move(paths);
  plot.ground = ground;
  plot.groundName = "Slope";
  return DrawPlot(plot);
}

TEST(DrawPlot, APathAlongXIsAHorizontalLineFromAbove) {
  const QImage image = Drawn({{"Runner", {{0, 0, 1}, {5, 0, 1}, {10, 0, 1}}}});
  ASSERT_EQ(image.size(), QSize(PlotLayout::kWidth, PlotLayout::kHeight));
  const Pixels top = PixelsOf(image, PathColour(0), PlotLayout::TopPanel());
  EXPECT_GT(top.box.width(), 400);
  EXPECT_LE(top.box.height(), 14);  // the start and end marks
  // From the side, it keeps its height over the 10 m it travels.
  const Pixels side = PixelsOf(image, PathColour(0), PlotLayout::SidePanel());
  EXPECT_GT(side.box.width(), 300);
  EXPECT_LE(side.box.height(), 14);
}

TEST(DrawPlot, ANodeThatDoesNotMoveIsADot) {
  const QImage image = Drawn({{"Runner", {{0, 0, 0}, {4, 0, 3}}}, {"Post", {{1, 2, 1}, {1, 2, 1}}}});
  for (const QRectF& panel : {PlotLayout::TopPanel(), PlotLayout::SidePanel()}) {
    const Pixels dot = PixelsOf(image, PathColour(1), panel);
    EXPECT_GT(dot.count, 50);
    EXPECT_LE(dot.box.width(), 16);
    EXPECT_LE(dot.box.height(), 16);
  }
}

TEST(DrawPlot, TheGroundShadesTheViewFromAboveByItsHeight) {
  const std::vector<NodePath> paths{{"Runner", {{-2, 0, 0}, {2, 0, 0}}}};
  const HalfSlope slope;
  const QImage bare = Drawn(paths);
  const QImage shaded = Drawn(paths, &slope);
  const QRectF panel = PlotLayout::TopPanel();
  // Near the top corners (z < 0) and the bottom left corner (no ground).
  const QPoint left = (panel.topLeft() + QPointF(6, 6)).toPoint(), right = (panel.topRight() + QPointF(-6, 6)).toPoint();
  const QPoint below = (panel.bottomLeft() + QPointF(6, -6)).toPoint();
  EXPECT_EQ(bare.pixelColor(left), QColor(Qt::white));
  EXPECT_EQ(shaded.pixelColor(below), QColor(Qt::white));
  const QColor low = shaded.pixelColor(left), high = shaded.pixelColor(right);
  EXPECT_GT(low.blue(), low.red());  // low ground is blue, high ground brown
  EXPECT_GT(high.red(), high.blue());
}

class PlotCommand : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    std::filesystem::create_directories(Folder());
    ASSERT_EQ(Rgw("scene demo " + Demo()).code, 0);
  }
  static std::string Folder() { return (std::filesystem::temp_directory_path() / "rgw_plot_test").string(); }
  static std::string Demo() { return Folder() + "/demo.gltf"; }
  // Plots the demo scene into `png`; the picture, empty when none was written.
  static QImage Plotted(const std::string& options, const std::string& png, Ran& ran) {
    std::filesystem::remove(Folder() + "/" + png);
    ran = Rgw("scene plot " + Demo() + " " + options + " --png " + Folder() + "/" + png);
    StartApplication();
    return QImage(QString::fromStdString(Folder() + "/" + png));
  }
};

TEST_F(PlotCommand, TheCarsPathFromAboveSpansItsXAndZAsTheyLie) {
  Ran ran;
  const QImage image = Plotted("--node Car", "car.png", ran);
  ASSERT_EQ(ran.code, 0) << ran.output;
  EXPECT_NE(ran.output.find("drew 1 path (Car), 1200 by 800 pixels, written to "), std::string::npos) << ran.output;
  ASSERT_EQ(image.size(), QSize(1200, 800));
  // The car drives 6 m along X while it weaves 1 m to either side in Z.
  const Pixels car = PixelsOf(image, PathColour(0), PlotLayout::TopPanel());
  ASSERT_GT(car.count, 0);
  const double across = car.box.width(), up = car.box.height();
  EXPECT_NEAR(across / up, 3, 0.3);
  // It reaches +Z (toward the bottom of the page) first, near X = 1.6, and
  // -Z near X = 4.7.
  EXPECT_LT(car.lowest.x(), car.highest.x());
  EXPECT_LT(car.lowest.x(), car.box.left() + across / 2);
  // In its first second it drives 3 m and weaves to +Z only, from where it
  // started at the top left.
  const Pixels half = PixelsOf(Plotted("--node Car --from 0 --to 1", "half.png", ran), PathColour(0),
                               PlotLayout::TopPanel());
  ASSERT_EQ(ran.code, 0) << ran.output;
  EXPECT_NEAR(static_cast<double>(half.box.width()) / half.box.height(), 3, 0.3);
  EXPECT_LT(half.highest.x(), half.box.left() + 12);
}

TEST_F(PlotCommand, OverTheGroundTheViewFromAboveIsShaded) {
  Ran ran;
  const QImage image = Plotted("--node Car --node Camera --ground Ground", "ground.png", ran);
  ASSERT_EQ(ran.code, 0) << ran.output;
  EXPECT_NE(ran.output.find("drew 2 paths (Car, Camera) over Ground, 1200 by 800 pixels"), std::string::npos)
      << ran.output;
  const QPoint corner = (PlotLayout::TopPanel().topLeft() + QPointF(6, 6)).toPoint();
  EXPECT_NE(image.pixelColor(corner), QColor(Qt::white));
  EXPECT_GT(PixelsOf(image, PathColour(1), PlotLayout::TopPanel()).count, 0);
}

TEST_F(PlotCommand, ANodeWithoutKeysIsADot) {
  Ran ran;
  const QImage image = Plotted("--node Hidden", "dot.png", ran);
  ASSERT_EQ(ran.code, 0) << ran.output;
  const Pixels dot = PixelsOf(image, PathColour(0), PlotLayout::TopPanel());
  EXPECT_GT(dot.count, 50);
  EXPECT_LE(dot.box.width(), 16);
}

struct Refusal {
  const char* options;
  int code;
  const char* says;
};

const Refusal kRefusals[] = {
    {"--node Nope", 1, "demo.gltf: no node \"Nope\"; its nodes are Ground, Car, Car_Body, Camera, Hidden\n"},
    {"--node Car --ground Car", 1, "rgw: --ground Car: the node has no mesh to stand on\n"},
    {"--node Car --ground Nope", 1, "rgw: --ground: "},
    {"--node Car --from abc", 1, "rgw: --from: \"abc\" is not a number\n"},
    {"--node Car --to -1", 1, "rgw: --to -1: a plot lies within 0 s and 86400 s of scene time (a day)\n"},
    {"--node Car --from 2 --to 1", 1, "rgw: the range ends at 1 s, before it starts at 2 s\n"},
    {"--node A --node B --node C --node D --node E --node F --node G --node H --node I", 1,
     "rgw: a plot draws at most 8 nodes, each in a colour of its own\n"},
    {"--node Car --size 3", 2, "rgw: unknown option --size\nusage: rgw scene plot"},
    {"", 2, "rgw: --node is missing\n"},
};

TEST_F(PlotCommand, RefusesWithoutWritingAPicture) {
  for (const Refusal& refusal : kRefusals) {
    SCOPED_TRACE(refusal.options);
    Ran ran;
    const QImage image = Plotted(refusal.options, "refused.png", ran);
    EXPECT_EQ(ran.code, refusal.code);
    EXPECT_NE(ran.output.find(refusal.says), std::string::npos) << ran.output;
    EXPECT_TRUE(image.isNull());
  }
  const Ran noPicture = Rgw("scene plot " + Demo() + " --node Car");
  EXPECT_EQ(noPicture.code, 2);
  EXPECT_NE(noPicture.output.find("rgw: --png is missing\n"), std::string::npos) << noPicture.output;
}

}  // namespace
}  // namespace vuk::app
