#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vuk::util::xml {

// Results of parsing.
enum ParseResult : int {
  kParsed = 0,
  kUnreadable = 1,     // the file or resource could not be read
  kNoRoot = 2,         // no root element, a stray close tag, or a malformed tag
  kMissingClose = 3,   // the markup ended inside an element
  kCloseMismatch = 4,  // a close tag names another element
  kBadPosition = 5,    // nothing left to build the root from
};

// The system's own small XML model. It reads and writes exactly the markup
// that layouts, profiles and saved tool state have always used, oddities
// included, and is not a conforming XML processor.
class Element {
 public:
  enum Kind : std::int32_t { kEmpty = 0, kTag = 1, kText = 2, kComment = 4 };
  using Attribute = std::pair<std::string, std::string>;

  Element() = default;
  // Parses a file, or a resource when the path begins with ":". A caller that
  // needs the result calls Parse instead; on failure the element is empty.
  explicit Element(const std::string& path);
  Element(const Element& other);
  Element(Element&& other) noexcept = default;
  Element& operator=(const Element& other);
  Element& operator=(Element&& other) noexcept;
  virtual ~Element();

  // Deep copy.
  virtual void Assign(const Element& other);
  virtual void SetName(const std::string& newName);
  // Appends a deep copy; an empty element without children is not added.
  // Answers the copy, or null when nothing was added.
  virtual Element* AddChild(const Element& child);
  // The same for a child that is given away: it is moved, not copied.
  Element* AddChild(Element&& child);

  ParseResult Parse(const std::string& path);
  ParseResult ParseText(std::string_view markup);

  std::string Write(const std::string& lineEnd = "\n", const std::string& indentUnit = "\t",
                    const std::string& indent = std::string()) const;
  void WriteTo(std::string& out, const std::string& lineEnd = "\n", const std::string& indentUnit = "\t",
               const std::string& indent = std::string()) const;

  // Lookups never fail: what isn't there is the shared empty element or "".
  const Element& GetChild(std::size_t index) const;
  const Element& GetChild(const std::string& childName, std::size_t n = 0) const;
  std::size_t CountChildren(const std::string& childName) const;
  std::string GetAttribute(const std::string& attributeName) const;
  // The value slot of an attribute, made when missing.
  std::string& SetAttribute(const std::string& attributeName);
  // The text of the first child, or "" when it isn't text.
  const std::string& GetText() const;

  // The value this element's text holds, read as a standard stream reads it:
  // its own text for a text element, else the text of its first child. The
  // template tools' MathScript constants and parameters are read this way.
  template <typename T>
  T GetValue() const {
    std::istringstream in(kind == kText ? name : GetText());
    T value{};
    in >> value;
    return value;
  }

  bool IsEmpty() const { return kind == kEmpty && children.empty(); }

  // Levels of elements from this one down, itself counted: 1 without
  // children. With a name, only children of that name are followed. Readers
  // that recurse through a tree ask this first and refuse what nests deeper
  // than they go.
  std::size_t Depth(const std::string& childName = std::string()) const;

  static const Element& Empty();

  std::vector<Attribute> attributes;
  std::vector<std::unique_ptr<Element>> children;
  // The tag name, or for text and comments the text.
  std::string name;
  std::int32_t kind = kEmpty;

 private:
  void Clear();
};

}  // namespace vuk::util::xml
