#include "app/rgw/samplepage.h"

namespace vuk::app {

using namespace core::configadaptor::element;

SamplePage::SamplePage() {
  auto* body = root.Add(new Group(-1, "Body", "", nullptr));
  body->Add(new Spinner(0, "Mass (kg)", "The vehicle's mass", nullptr, &mass, 100, 50000, 10, 0));
  body->Add(new ComboBox(1, "Drive", "Which wheels the engine drives", nullptr, &drive, {"Front", "Rear", "All"}));
  body->Add(new Spinner_Int(2, "Gears", "Number of forward gears", nullptr, &gears, 1, 10, 1, 0));
  auto* suspension = root.Add(new Group(-1, "Suspension", "", nullptr));
  suspension->Add(new Spinner(3, "Spring Stiffness", "Spring rate of each wheel", nullptr, &stiffness, 0, 1e6, 100, 0));
  suspension->Add(new Spinner(4, "Damping", "Damper rate of each wheel", nullptr, &damping, 0, 1e5, 10, 0));
  suspension->Add(new Spinner(5, "Travel (m)", "Suspension travel", nullptr, &travel, 0, 2, 0.01, 0));
  suspension->Add(new Spinner(6, "Grip", "Tyre grip multiplier", nullptr, &grip, 0, 5, 0.05, 0));
  auto* display = root.Add(new Group(-1, "General Modes", "", nullptr));
  display->Add(new CheckBox(7, "Hide Helpers During Recording", "Hides the helper nodes while recording", nullptr,
                            &hideHelpers));
  display->Add(new CheckBox(8, "Wireframe Mode", "Draws the helpers as wires", nullptr, &wireframe));
  display->Add(new Button(9, "Initialize", "Take the rig's present pose as its start", nullptr));
}

}  // namespace vuk::app
