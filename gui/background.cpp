#include "gui/background.h"

#include "gui/attributes.h"
#include "util/abstractfactory.h"

namespace vuk::gui {

namespace {

template <typename Kind>
class BackgroundFactory : public util::Factory<Background> {
 public:
  explicit BackgroundFactory(const char* type) : type_(type) {}
  bool CanCreate(const util::xml::Element& element) const override { return element.GetAttribute("type") == type_; }
  Background* Create(const util::xml::Element& element) const override { return new Kind(element); }

 private:
  const char* type_;
};

const util::AbstractFactory<Background>& Factories() {
  auto& factories = util::AbstractFactory<Background>::Instance();
  if (factories.Count() == 0) {
    factories.Add(new BackgroundFactory<Color>("color"));
    factories.Add(new BackgroundFactory<Gradient_Linear>("gradient-linear"));
  }
  return factories;
}

}  // namespace

Rgba Rgba::Read(const util::xml::Element& element) {
  return {attribute::Int(element, "r", 0), attribute::Int(element, "g", 0), attribute::Int(element, "b", 0),
          attribute::Int(element, "a", 255)};
}

Background* Background::Create(const util::xml::Element& element) { return Factories().Create(element); }

Gradient_Linear::Gradient_Linear(const util::xml::Element& element)
    : startX(attribute::Double(element, "startx", 0)),
      startY(attribute::Double(element, "starty", 0)),
      endX(attribute::Double(element, "endx", 0)),
      endY(attribute::Double(element, "endy", 1)),
      spread(element.GetAttribute("spread")),
      absolute(element.GetAttribute("coordinates") == "absolute") {
  for (std::size_t i = 0, n = element.CountChildren("color"); i < n; ++i) {
    const util::xml::Element& stop = element.GetChild("color", i);
    stops.push_back({attribute::Double(stop, "pos", 0), Rgba::Read(stop)});
  }
}

}  // namespace vuk::gui
