#pragma once
// A named input channel of a tool: the value of one control, shaped by
// dead zone, exponent, multiplier and offset.

#include <string>
#include <vector>

#include "unidevice/controltarget.h"
#include "util/xml/element.h"

namespace vuk::unidevice {

class Control;
class PropertyHandler;

class Property : public ControlTarget {
 public:
  // Makes a property for a channel name; a tool may bring its own kind.
  class Factory {
   public:
    virtual Property* Create(const std::string& propertyName) = 0;
    virtual ~Factory() = default;
  };

  void ControlRemoved(Control* control) override;
  virtual double Evaluate();
  virtual ~Property();

  std::vector<ControlTarget*> targets;
  Control* source = nullptr;
  std::string name;
  std::string displayName;
  PropertyHandler* owner = nullptr;
  double multiplier = 1.0;
  double exponent = 1.0;
  double deadzone = 0.1;
  double offset = 0.0;
  util::xml::Element config;
};

}  // namespace vuk::unidevice
