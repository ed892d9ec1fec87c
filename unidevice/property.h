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

  explicit Property(std::string propertyName = std::string());
  Property(const Property&) = delete;
  Property& operator=(const Property&) = delete;

  // The source went away: the property reads its offset until bound again,
  // and waits for the control to come back.
  void ControlRemoved(Control* control) override;
  // pow(max(0, |x| - deadzone) / (1 - deadzone), exponent) x sign(x) x
  // multiplier + offset, with x the source value or 0.
  virtual double Evaluate();
  // The same for a given source value: the channel's response curve.
  double Response(double x) const;
  virtual ~Property();

  // Wires the property to a control, or to none.
  void Bind(Control* control);
  // "property" with "name" and the numbers and binding as children.
  util::xml::Element Save() const;
  // Takes the numbers and binds the named control. A control that isn't
  // there yet is kept in `config` and bound when its device comes in.
  void Load(const util::xml::Element& element);

  std::vector<ControlTarget*> targets;
  Control* source = nullptr;
  std::string name;
  std::string displayName;
  PropertyHandler* owner = nullptr;
  double multiplier = 1.0;
  double exponent = 1.0;
  double deadzone = 0.1;
  double offset = 0.0;
  // The saved "control" element of the binding, empty without one.
  util::xml::Element config;
};

}  // namespace vuk::unidevice
