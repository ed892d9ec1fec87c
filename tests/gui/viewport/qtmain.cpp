// The viewport's tests draw with OpenGL: they run under Xvfb (xvfb-run -a),
// with one application object for the whole program.
#include <gtest/gtest.h>

#include <QApplication>

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
