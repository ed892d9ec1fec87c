#include "core/devicemanager.h"

#include <QCoreApplication>

#include "unidevice/driver/linuxdriver.h"

namespace vuk::rgw::core {

DeviceManager::DeviceManager(WindowHandle mainWindow)
    : dummy_(std::make_unique<unidevice::DummyDriver>()),
      platform_(std::make_unique<unidevice::driver::LinuxDriver>()),
      emulator_(new unidevice::EmulatedTrinaryDevice()) {
  platform_->context = mainWindow;
  dummy_->OpenAll();
  platform_->OpenAll();
  platform_->InstallEventFilter(QCoreApplication::instance());
}

DeviceManager::~DeviceManager() {
  // Emulated controls watch platform controls: the platform goes first so
  // that they hear of it while they still exist.
  platform_.reset();
  dummy_.reset();
}

void DeviceManager::PollAll() {
  dummy_->PollAll();
  platform_->PollAll();
}

bool DeviceManager::Acquire() { return platform_->ActivateAll() && dummy_->ActivateAll(); }

bool DeviceManager::Unacquire() { return platform_->DeactivateAll() && dummy_->DeactivateAll(); }

}  // namespace vuk::rgw::core
