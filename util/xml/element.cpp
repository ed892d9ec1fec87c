#include "util/xml/element.h"

#include <algorithm>
#include <fstream>

#include <QFile>

#include "util/xml/entities.h"

namespace vuk::util::xml {
namespace {

// Copies one element without its children.
std::unique_ptr<Element> ShallowCopy(const Element& from) {
  auto copy = std::make_unique<Element>();
  copy->attributes = from.attributes;
  copy->name = from.name;
  copy->kind = from.kind;
  return copy;
}

// Deep copies of "from"'s children appended to "to", without recursion, so
// that the depth of a tree read from a file cannot exhaust the stack.
void CopyChildren(const Element& from, Element& to) {
  std::vector<std::pair<const Element*, Element*>> pending{{&from, &to}};
  while (!pending.empty()) {
    const auto [source, target] = pending.back();
    pending.pop_back();
    target->children.reserve(source->children.size());
    for (const auto& child : source->children) {
      target->children.push_back(ShallowCopy(*child));
      if (!child->children.empty()) pending.emplace_back(child.get(), target->children.back().get());
    }
  }
}

bool ReadResource(const std::string& path, std::string& out) {
  QFile file(QString::fromStdString(path));
  if (!file.open(QIODevice::ReadOnly)) return false;
  const QByteArray bytes = file.readAll();
  out.assign(bytes.constData(), static_cast<std::size_t>(bytes.size()));
  return true;
}

// Files are read line by line and joined with the line ends dropped: markup
// was always written so that this loses nothing.
bool ReadLines(const std::string& path, std::string& out) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return false;
  std::string line;
  while (std::getline(in, line)) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    out += line;
  }
  return true;
}

void WriteAttributes(std::string& out, const std::vector<Element::Attribute>& attributes) {
  for (const auto& [attributeName, value] : attributes) {
    out += ' ';
    out += attributeName;  // names are written as they stand; only values are encoded
    std::string encoded = Encode(value);
    const bool hasDouble = encoded.find('"') != std::string::npos;
    const bool hasSingle = encoded.find('\'') != std::string::npos;
    char quote = '"';
    if (hasDouble && !hasSingle) {
      quote = '\'';
    } else if (hasDouble) {
      std::string escaped;
      for (const char c : encoded) {
        if (c == '"') {
          escaped += "&#34;";
        } else {
          escaped += c;
        }
      }
      encoded.swap(escaped);
    }
    out += '=';
    out += quote;
    out += encoded;
    out += quote;
  }
}

// About the length of the written text without line ends and indents: room
// made for it at once keeps a long text from being copied as it grows, and
// from keeping twice its length when it is done.
std::size_t WrittenLength(const Element& root) {
  std::size_t length = 0;
  std::vector<const Element*> pending{&root};
  while (!pending.empty()) {
    const Element& element = *pending.back();
    pending.pop_back();
    length += element.kind == Element::kTag ? 2 * element.name.size() + 5 : element.name.size() + 1;
    for (const auto& [key, value] : element.attributes) length += key.size() + value.size() + 4;
    for (const auto& child : element.children) pending.push_back(child.get());
  }
  return length;
}

// Writes without recursion; one frame per open element.
class Writer {
 public:
  Writer(std::string& out, const std::string& lineEnd, const std::string& indentUnit)
      : out_(out), lineEnd_(lineEnd), indentUnit_(indentUnit) {}

  void Run(const Element& root, const std::string& indent) {
    Open(root, indent);
    while (!frames_.empty()) {
      Frame& frame = frames_.back();
      const auto& children = frame.element->children;
      if (frame.next == children.size()) {
        Close(frame);
        frames_.pop_back();
        if (!frames_.empty()) AfterChild(frames_.back());
        continue;
      }
      const Element& child = *children[frame.next];
      if (frame.next > 0 && child.kind == Element::kText && children[frame.next - 1]->kind == Element::kText) {
        out_ += ' ';
      }
      // Open may push a frame and invalidate the reference; copy what we need.
      const std::string childIndent = frame.indent + indentUnit_;
      if (!Open(child, childIndent)) AfterChild(frames_.back());
    }
  }

 private:
  struct Frame {
    const Element* element;
    std::string indent;
    bool textFirst;
    std::size_t next;
  };

  // Writes an element, or the opening of a tag with children; true when a
  // frame was pushed for the children.
  bool Open(const Element& element, const std::string& indent) {
    switch (element.kind) {
      case Element::kText:
        EncodeTo(out_, element.name);
        return false;
      case Element::kComment:
        out_ += indent;
        out_ += "<!-- ";
        EncodeTo(out_, element.name);
        out_ += "-- >";
        return false;
      case Element::kTag:
        break;
      default:
        return false;
    }
    out_ += indent;
    out_ += '<';
    EncodeTo(out_, element.name);
    WriteAttributes(out_, element.attributes);
    if (element.children.empty()) {
      out_ += "/>";
      return false;
    }
    out_ += '>';
    const bool textFirst = element.children.front()->kind == Element::kText;
    if (!textFirst) out_ += lineEnd_;
    frames_.push_back({&element, indent, textFirst, 0});
    return true;
  }

  void AfterChild(Frame& frame) {
    if (!frame.textFirst) out_ += lineEnd_;
    ++frame.next;
  }

  void Close(const Frame& frame) {
    if (!frame.textFirst) out_ += frame.indent;
    out_ += "</";
    EncodeTo(out_, frame.element->name);
    out_ += '>';
  }

  std::string& out_;
  const std::string& lineEnd_;
  const std::string& indentUnit_;
  std::vector<Frame> frames_;
};

}  // namespace

Element::Element(const std::string& path) { Parse(path); }

Element::Element(const Element& other) { Assign(other); }

Element& Element::operator=(const Element& other) {
  if (this != &other) Assign(other);
  return *this;
}

Element& Element::operator=(Element&& other) noexcept {
  if (this != &other) {
    Clear();
    attributes = std::move(other.attributes);
    children = std::move(other.children);
    name = std::move(other.name);
    kind = other.kind;
  }
  return *this;
}

Element::~Element() { Clear(); }

void Element::Clear() {
  // Children are taken apart level by level so that destroying a deep tree
  // does not recurse once per level.
  std::vector<std::unique_ptr<Element>> pending = std::move(children);
  children.clear();
  while (!pending.empty()) {
    std::unique_ptr<Element> element = std::move(pending.back());
    pending.pop_back();
    for (auto& child : element->children) pending.push_back(std::move(child));
    element->children.clear();
  }
  attributes.clear();
  name.clear();
  kind = kEmpty;
}

void Element::Assign(const Element& other) {
  if (this == &other) return;
  Element copy;  // other may be inside this tree
  copy.attributes = other.attributes;
  copy.name = other.name;
  copy.kind = other.kind;
  CopyChildren(other, copy);
  *this = std::move(copy);
}

void Element::SetName(const std::string& newName) { name = newName; }

std::size_t Element::Depth(const std::string& childName) const {
  std::size_t deepest = 0;
  std::vector<std::pair<const Element*, std::size_t>> pending{{this, 1}};
  while (!pending.empty()) {
    const auto [element, level] = pending.back();
    pending.pop_back();
    deepest = std::max(deepest, level);
    for (const auto& child : element->children) {
      if (childName.empty() || child->name == childName) pending.emplace_back(child.get(), level + 1);
    }
  }
  return deepest;
}

Element* Element::AddChild(const Element& child) {
  if (child.kind <= kEmpty && child.children.empty()) return nullptr;
  children.push_back(std::make_unique<Element>(child));
  return children.back().get();
}

Element* Element::AddChild(Element&& child) {
  if (child.kind <= kEmpty && child.children.empty()) return nullptr;
  children.push_back(std::make_unique<Element>(std::move(child)));
  return children.back().get();
}

ParseResult Element::Parse(const std::string& path) {
  std::string markup;
  const bool read = !path.empty() && path[0] == ':' ? ReadResource(path, markup) : ReadLines(path, markup);
  if (!read) {
    Clear();
    return kUnreadable;
  }
  return ParseText(markup);
}

std::string Element::Write(const std::string& lineEnd, const std::string& indentUnit,
                           const std::string& indent) const {
  std::string out;
  out.reserve(WrittenLength(*this) + indent.size());
  WriteTo(out, lineEnd, indentUnit, indent);
  return out;
}

void Element::WriteTo(std::string& out, const std::string& lineEnd, const std::string& indentUnit,
                      const std::string& indent) const {
  Writer(out, lineEnd, indentUnit).Run(*this, indent);
}

const Element& Element::GetChild(std::size_t index) const {
  return index < children.size() ? *children[index] : Empty();
}

const Element& Element::GetChild(const std::string& childName, std::size_t n) const {
  for (const auto& child : children) {
    if (child->name == childName && n-- == 0) return *child;
  }
  return Empty();
}

std::size_t Element::CountChildren(const std::string& childName) const {
  std::size_t count = 0;
  for (const auto& child : children) {
    if (child->name == childName) ++count;
  }
  return count;
}

std::string Element::GetAttribute(const std::string& attributeName) const {
  for (const auto& [key, value] : attributes) {
    if (key == attributeName) return value;
  }
  return std::string();
}

std::string& Element::SetAttribute(const std::string& attributeName) {
  for (auto& [key, value] : attributes) {
    if (key == attributeName) return value;
  }
  attributes.emplace_back(attributeName, std::string());
  return attributes.back().second;
}

const std::string& Element::GetText() const {
  static const std::string none;
  if (children.empty() || children.front()->kind != kText) return none;
  return children.front()->name;
}

const Element& Element::Empty() {
  static const Element empty;
  return empty;
}

}  // namespace vuk::util::xml
