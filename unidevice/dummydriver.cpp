#include "unidevice/dummydriver.h"

#include "unidevice/driverlist.h"

namespace vuk::unidevice {

DummyDriver::DummyDriver() : Driver(kName) { DriverList::Instance().Register(this); }

DummyDriver::~DummyDriver() { DriverList::Instance().Unregister(this); }

DummyDriver* DummyDriver::Find() { return static_cast<DummyDriver*>(DriverList::Instance().Find(kName)); }

}  // namespace vuk::unidevice
