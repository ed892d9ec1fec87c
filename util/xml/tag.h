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
  explicit Text(std::string text) {
    name = std::move(text);
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
  // A string prints as itself: it is taken over as it stands.
  explicit Data(std::string text) {
    name = std::move(text);
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
  TagWithData(const std::string& tagName, std::string text) : Tag(tagName) { AddChild(Data(std::move(text))); }
};

}  // namespace vuk::util::xml
