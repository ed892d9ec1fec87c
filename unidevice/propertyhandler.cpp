#include "unidevice/propertyhandler.h"

#include "util/xml/tag.h"

namespace vuk::unidevice {

PropertyHandler::~PropertyHandler() {
  for (Entry& entry : entries_) delete entry.property;
}

Property* PropertyHandler::Add(const std::string& name, Property::Factory* factory) {
  if (Property* existing = Find(name)) return existing;
  Property* property = factory ? factory->Create(name) : new Property(name);
  if (!property) return nullptr;
  property->owner = this;
  entries_.push_back(Entry{name, factory, property});
  return property;
}

Property* PropertyHandler::Find(const std::string& name) const {
  for (const Entry& entry : entries_) {
    if (entry.name == name) return entry.property;
  }
  return nullptr;
}

util::xml::Element PropertyHandler::SaveProfile(const std::string& profileName) const {
  util::xml::Tag profile("profile");
  profile.SetAttribute("name") = profileName;
  for (const Entry& entry : entries_) profile.AddChild(entry.property->Save());
  return std::move(profile);
}

void PropertyHandler::LoadProfile(const util::xml::Element& profile) {
  for (std::size_t i = 0, count = profile.CountChildren("property"); i < count; ++i) {
    const util::xml::Element& element = profile.GetChild("property", i);
    if (Property* property = Find(element.GetAttribute("name"))) property->Load(element);
  }
}

}  // namespace vuk::unidevice
