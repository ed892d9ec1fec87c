#include "unidevice/driver/linuxdriver.h"

#include <QCoreApplication>
#include <vector>

#include "unidevice/driver/qtinputfilter.h"
#include "unidevice/driver/sdljoystickdevice.h"
#include "unidevice/driverlist.h"

namespace vuk::unidevice::driver {

namespace {

// Values are read by polling; only arrivals and departures come as events.
constexpr Uint32 kPolledEvents[] = {SDL_JOYAXISMOTION, SDL_JOYBALLMOTION, SDL_JOYHATMOTION,
                                    SDL_JOYBUTTONDOWN, SDL_JOYBUTTONUP,   SDL_JOYBATTERYUPDATED};

}  // namespace

LinuxDriver::LinuxDriver() : Driver(kName) {
  DriverList::Instance().Register(this);
  keyboard_ = new KeyboardDevice();
  AddDevice(keyboard_);
  sdlReady_ = SDL_InitSubSystem(SDL_INIT_JOYSTICK) == 0;
  if (!sdlReady_) return;
  // Force feedback is a bonus: without it joysticks still work.
  SDL_InitSubSystem(SDL_INIT_HAPTIC);
  for (Uint32 type : kPolledEvents) SDL_EventState(type, SDL_IGNORE);
  for (int i = 0; i < SDL_NumJoysticks(); ++i) AddJoystick(i);
}

LinuxDriver::~LinuxDriver() {
  if (QCoreApplication* application = QCoreApplication::instance()) {
    if (filter_) application->removeEventFilter(filter_.get());
  }
  // Devices go before SDL does.
  for (auto it = devices.rbegin(); it != devices.rend(); ++it) delete *it;
  devices.clear();
  DriverList::Instance().Unregister(this);
  if (sdlReady_) {
    SDL_QuitSubSystem(SDL_INIT_HAPTIC);
    SDL_QuitSubSystem(SDL_INIT_JOYSTICK);
  }
}

bool LinuxDriver::PollAll() {
  if (sdlReady_) {
    TakeHotPlugEvents();
    SDL_JoystickUpdate();
  }
  return Driver::PollAll();
}

void LinuxDriver::InstallEventFilter(QCoreApplication* application) {
  if (!application || filter_) return;
  filter_ = std::make_unique<QtInputFilter>(keyboard_, [this] { return TabletOnDemand(); });
  application->installEventFilter(filter_.get());
}

void LinuxDriver::TakeHotPlugEvents() {
  SDL_PumpEvents();
  SDL_Event events[16];
  int count = 0;
  while ((count = SDL_PeepEvents(events, 16, SDL_GETEVENT, SDL_JOYDEVICEADDED, SDL_JOYDEVICEREMOVED)) > 0) {
    for (int i = 0; i < count; ++i) {
      if (events[i].type == SDL_JOYDEVICEADDED) {
        AddJoystick(events[i].jdevice.which);
      } else {
        RemoveJoystick(events[i].jdevice.which);
      }
    }
  }
}

void LinuxDriver::AddJoystick(int sdlDeviceIndex) {
  // SDL also announces the joysticks that were there at start.
  if (FindJoystick(SDL_JoystickGetDeviceInstanceID(sdlDeviceIndex))) return;
  auto* joystick = new SdlJoystickDevice(sdlDeviceIndex);
  if (!joystick->IsAttached()) {
    delete joystick;
    return;
  }
  joystick->deviceIndex = NextDeviceIndex(joystick->name);
  AddDevice(joystick);
  joystick->Open(context);
  DriverList::Instance().DeviceAdded(joystick);
}

void LinuxDriver::RemoveJoystick(SDL_JoystickID instanceId) {
  if (SdlJoystickDevice* joystick = FindJoystick(instanceId)) {
    RemoveDevice(joystick);
    delete joystick;  // its controls tell the channels, which wait for it to return
  }
}

SdlJoystickDevice* LinuxDriver::FindJoystick(SDL_JoystickID instanceId) {
  if (instanceId < 0) return nullptr;
  for (Device* device : devices) {
    auto* joystick = dynamic_cast<SdlJoystickDevice*>(device);
    if (joystick && joystick->GetInstanceId() == instanceId) return joystick;
  }
  return nullptr;
}

TabletDevice* LinuxDriver::TabletOnDemand() {
  if (!tablet_) {
    tablet_ = new TabletDevice();
    AddDevice(tablet_);
    DriverList::Instance().DeviceAdded(tablet_);
  }
  return tablet_;
}

}  // namespace vuk::unidevice::driver
