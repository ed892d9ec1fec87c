#pragma once
// A tool's input channels by name, each with the factory that made it.

#include <cstddef>
#include <string>
#include <vector>

#include "unidevice/property.h"
#include "util/dynamicobject.h"

namespace vuk::unidevice {

class PropertyHandler : public util::DynamicObject {
 public:
  struct Entry {
    std::string name;
    Property::Factory* factory;
    Property* property;
  };

  PropertyHandler() = default;
  PropertyHandler(const PropertyHandler&) = delete;
  PropertyHandler& operator=(const PropertyHandler&) = delete;
  // Releases every property.
  ~PropertyHandler() override;

  // The channel of that name; made with the factory (the standard one when
  // null) when it doesn't exist yet.
  Property* Add(const std::string& name, Property::Factory* factory = nullptr);
  Property* Find(const std::string& name) const;
  std::size_t Count() const { return entries_.size(); }
  Property* Get(std::size_t index) const { return index < entries_.size() ? entries_[index].property : nullptr; }

  // A "profile" element with the given name and one "property" per channel.
  util::xml::Element SaveProfile(const std::string& profileName) const;
  // Applies each "property" child to the channel of its name; channels the
  // profile doesn't name stay as they are.
  void LoadProfile(const util::xml::Element& profile);

 private:
  std::vector<Entry> entries_;
};

}  // namespace vuk::unidevice
