// Reads arbitrary markup as an input profile: channel numbers and control
// bindings, emulated two-key axes included, against a small set of devices.
#include <cstdint>
#include <memory>
#include <string>

#include "unidevice/control.h"
#include "unidevice/driverlist.h"
#include "unidevice/dummydriver.h"
#include "unidevice/emulatedtrinarydevice.h"
#include "unidevice/propertyhandler.h"
#include "util/xml/element.h"

namespace {

using namespace vuk::unidevice;

class Keys : public Device {
 public:
  Keys() {
    name = "Keyboard";
    for (int i = 0; i < 8; ++i) {
      auto control = std::make_unique<Control>();
      control->device = this;
      control->index = control->saveIndex = i;
      control->type = "Key";
      controls_.push_back(std::move(control));
    }
  }
  std::int32_t GetControlCount() override { return static_cast<std::int32_t>(controls_.size()); }
  Control* GetControl(std::int32_t i) override {
    return i >= 0 && i < GetControlCount() ? controls_[static_cast<std::size_t>(i)].get() : nullptr;
  }
  bool Poll(DeviceContext) override { return true; }
  bool Open(DeviceContext) override { return true; }

 private:
  std::vector<std::unique_ptr<Control>> controls_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  vuk::util::xml::Element profile;
  if (profile.ParseText(std::string(reinterpret_cast<const char*>(data), size)) != vuk::util::xml::kParsed) return 0;
  DummyDriver dummy;
  dummy.AddDevice(new Keys());
  auto* emulator = new EmulatedTrinaryDevice();
  PropertyHandler handler;
  for (const char* channel : {"Steering", "Gas", "Brake"}) handler.Add(channel);
  handler.LoadProfile(profile.name == "unidevice" ? profile.GetChild("profile") : profile);
  for (std::size_t i = 0; i < handler.Count(); ++i) handler.Get(i)->Evaluate();
  handler.SaveProfile("again");
  emulator->FindControl(profile.GetChild("control"));
  return 0;
}
