#pragma once

#include <sstream>
#include <string>

#include "util/xml/element.h"

namespace vuk::util::xml {

class Tag : public Element {
 public:
  explicit Tag(const std::string& tagName) {
    name = tagName;
    kind = kTag;
  }
};

class Text : public Element {
 public:
  explicit Text(const std::string& text) {
    name = text;
    kind = kText;
  }
};

// Text holding a value as a standard stream prints it.
class Data : public Element {
 public:
  template <typename T>
  explicit Data(const T& value) {
    std::ostringstream out;
    out << value;
    name = out.str();
    kind = kText;
  }
};

// A tag with one value as its text: <name>value</name>.
class TagWithData : public Tag {
 public:
  template <typename T>
  TagWithData(const std::string& tagName, const T& value) : Tag(tagName) {
    AddChild(Data(value));
  }
};

}  // namespace vuk::util::xml
