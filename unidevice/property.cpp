#include "unidevice/property.h"

#include <algorithm>
#include <cmath>
#include <sstream>

#include "unidevice/control.h"
#include "unidevice/driverlist.h"
#include "util/numbertext.h"
#include "util/xml/tag.h"

namespace vuk::unidevice {

namespace {

// A child's number, or the fallback when it is missing or not a number.
double ReadNumber(const util::xml::Element& parent, const char* childName, double fallback) {
  const util::xml::Element& child = parent.GetChild(childName);
  if (child.IsEmpty()) return fallback;
  std::istringstream in(child.GetText());
  in.imbue(std::locale::classic());
  double value = fallback;
  return (in >> value) && std::isfinite(value) ? value : fallback;
}

}  // namespace

Property::Property(std::string propertyName) : name(std::move(propertyName)), displayName(name) {}

Property::~Property() {
  if (source) source->RemoveTarget(this);
  DriverList::Instance().RemoveWaiting(this);
}

void Property::ControlRemoved(Control* control) {
  if (source != control) return;
  source = nullptr;
  if (!config.IsEmpty()) DriverList::Instance().AddWaiting(this);
  const std::vector<ControlTarget*> told = targets;
  for (ControlTarget* target : told) target->ControlRemoved(control);
}

double Property::Evaluate() { return Response(source ? source->GetValue() : 0.0); }

double Property::Response(double x) const {
  const double sign = x < 0 ? -1.0 : 1.0;
  const double y = std::max(0.0, std::fabs(x) - deadzone) / (1.0 - deadzone);
  return std::pow(y, exponent) * sign * multiplier + offset;
}

void Property::Bind(Control* control) {
  if (source) source->RemoveTarget(this);
  source = control;
  DriverList::Instance().RemoveWaiting(this);
  if (source) {
    source->AddTarget(this);
    config = source->Save();
  } else {
    config = util::xml::Element();
  }
}

util::xml::Element Property::Save() const {
  util::xml::Tag element("property");
  element.SetAttribute("name") = name;
  element.AddChild(util::xml::TagWithData("multiplier", util::FormatDouble(multiplier)));
  element.AddChild(util::xml::TagWithData("exponent", util::FormatDouble(exponent)));
  element.AddChild(util::xml::TagWithData("deadzone", util::FormatDouble(deadzone)));
  element.AddChild(util::xml::TagWithData("offset", util::FormatDouble(offset)));
  if (!config.IsEmpty()) element.AddChild(config);
  return std::move(element);
}

void Property::Load(const util::xml::Element& element) {
  multiplier = ReadNumber(element, "multiplier", multiplier);
  exponent = ReadNumber(element, "exponent", exponent);
  deadzone = ReadNumber(element, "deadzone", deadzone);
  offset = ReadNumber(element, "offset", offset);
  const util::xml::Element& binding = element.GetChild("control");
  if (binding.IsEmpty()) {
    Bind(nullptr);
    return;
  }
  if (Control* control = DriverList::Instance().ResolveControl(binding)) {
    Bind(control);
    return;
  }
  // Not attached now: keep the binding and take it up when the device comes.
  Bind(nullptr);
  config = binding;
  DriverList::Instance().AddWaiting(this);
}

}  // namespace vuk::unidevice
