#pragma once
// The driver of devices with no hardware behind them: emulated devices and
// the gauges of tool instances.

#include "unidevice/driver.h"

namespace vuk::unidevice {

class DummyDriver : public Driver {
 public:
  static constexpr const char* kName = "dummydriver";

  DummyDriver();
  ~DummyDriver() override;

  // The registered one, or null before it is made.
  static DummyDriver* Find();
};

}  // namespace vuk::unidevice
