#include "unidevice/driver/sdljoystickdevice.h"

#include "unidevice/driver/joystickvalues.h"
#include "unidevice/driver/sdlhapticeffect.h"

namespace vuk::unidevice::driver {

namespace {

// An axis can carry force feedback when its device has a haptic side.
class AxisControl : public Control {
 public:
  explicit AxisControl(SdlJoystickDevice* owner) : owner_(owner) {}
  bool SupportsForceFeedback() override { return owner_->GetHaptic() != nullptr; }
  FFEffect* CreateForceFeedbackEffect(std::int32_t kind) override {
    return SdlHapticEffect::Create(owner_->GetHaptic(), kind);
  }

 private:
  SdlJoystickDevice* owner_;
};

// Hat positions as an angle in hundredths of a degree, clockwise from up.
bool HatAngle(Uint8 hat, std::int32_t& angle) {
  switch (hat) {
    case SDL_HAT_UP: angle = 0; return true;
    case SDL_HAT_RIGHTUP: angle = 4500; return true;
    case SDL_HAT_RIGHT: angle = 9000; return true;
    case SDL_HAT_RIGHTDOWN: angle = 13500; return true;
    case SDL_HAT_DOWN: angle = 18000; return true;
    case SDL_HAT_LEFTDOWN: angle = 22500; return true;
    case SDL_HAT_LEFT: angle = 27000; return true;
    case SDL_HAT_LEFTUP: angle = 31500; return true;
    default: return false;
  }
}

constexpr int kSettlingPolls = 1001;

}  // namespace

SdlJoystickDevice::SdlJoystickDevice(int deviceIndex) {
  joystick_ = SDL_JoystickOpen(deviceIndex);
  if (!joystick_) return;
  instanceId_ = SDL_JoystickInstanceID(joystick_);
  const char* joystickName = SDL_JoystickName(joystick_);
  name = joystickName ? joystickName : "Joystick";
  if (SDL_JoystickIsHaptic(joystick_) == SDL_TRUE) haptic_ = SDL_HapticOpenFromJoystick(joystick_);

  const int axes = SDL_JoystickNumAxes(joystick_);
  for (int i = 0; i < axes && i < kMaxAxes; ++i) {
    AddControl("Axis", AxisDescription(i), i, 0.1, {Kind::kAxis, i, false});
  }
  for (int i = kMaxAxes; i < axes; ++i) {
    const int slider = i - kMaxAxes;
    AddControl("Slider", "Slider " + std::to_string(slider + 1), slider, 0.1, {Kind::kSlider, i, false});
  }
  for (int hat = 0; hat < SDL_JoystickNumHats(joystick_); ++hat) {
    AddControl("Hat", HatDescription(hat, false), 2 * hat, 0.5, {Kind::kHat, hat, false});
    AddControl("Hat", HatDescription(hat, true), 2 * hat + 1, 0.5, {Kind::kHat, hat, true});
  }
  for (int button = 0; button < SDL_JoystickNumButtons(joystick_); ++button) {
    AddControl("Button", "Button " + std::to_string(button + 1), button, 0.5, {Kind::kButton, button, false});
  }
}

SdlJoystickDevice::~SdlJoystickDevice() {
  // Controls go first, telling the channels bound to them.
  controls_.clear();
  if (haptic_) SDL_HapticClose(haptic_);
  if (joystick_) SDL_JoystickClose(joystick_);
}

void SdlJoystickDevice::AddControl(const std::string& type, const std::string& description, int saveIndex,
                                   double threshold, Source source) {
  std::unique_ptr<Control> control;
  if (source.kind == Kind::kAxis) {
    control = std::make_unique<AxisControl>(this);
  } else {
    control = std::make_unique<Control>();
  }
  control->device = this;
  control->index = static_cast<std::int32_t>(controls_.size());
  control->saveIndex = saveIndex;
  control->type = type;
  control->description = description;
  control->changeThreshold = threshold;
  controls_.push_back(std::move(control));
  sources_.push_back(source);
}

Control* SdlJoystickDevice::GetControl(std::int32_t index) {
  return index >= 0 && index < GetControlCount() ? controls_[static_cast<std::size_t>(index)].get() : nullptr;
}

double SdlJoystickDevice::Read(const Source& source) const {
  switch (source.kind) {
    case Kind::kAxis:
    case Kind::kSlider: return AxisValue(SDL_JoystickGetAxis(joystick_, source.sdlIndex));
    case Kind::kHat: {
      std::int32_t angle = 0;
      const bool held = HatAngle(SDL_JoystickGetHat(joystick_, source.sdlIndex), angle);
      return HatValue(held, angle, source.yControl);
    }
    case Kind::kButton: return SDL_JoystickGetButton(joystick_, source.sdlIndex) ? 1.0 : 0.0;
  }
  return 0.0;
}

bool SdlJoystickDevice::Poll(DeviceContext) {
  if (!IsAttached()) return false;
  for (std::size_t i = 0; i < controls_.size(); ++i) controls_[i]->Update(Read(sources_[i]));
  return true;
}

bool SdlJoystickDevice::Open(DeviceContext context) {
  if (!Activate(context) || !IsAttached()) return false;
  for (int i = 0; i < kSettlingPolls; ++i) Poll(context);
  return true;
}

}  // namespace vuk::unidevice::driver
