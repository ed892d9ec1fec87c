#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "util/abstractfactory.h"
#include "util/compositedynamic.h"
#include "util/factorymanager.h"

namespace vuk::util {
namespace {

// Each test has its own product kind, since factories are process-wide.
template <int kKind>
struct Product {
  explicit Product(std::string madeBy) : madeBy(std::move(madeBy)) {}
  std::string madeBy;
};

// Accepts elements with one tag and stamps what it makes with its own label.
template <typename T>
class TagFactory : public Factory<T> {
 public:
  TagFactory(std::string tag, std::string label) : tag_(std::move(tag)), label_(std::move(label)) {}
  bool CanCreate(const xml::Element& element) const override { return element.name == tag_; }
  T* Create(const xml::Element&) const override { return new T(label_); }

 private:
  std::string tag_;
  std::string label_;
};

TEST(AbstractFactory, TheFirstFactoryThatAcceptsWinsAndNoneGivesNull) {
  using Made = Product<1>;
  auto& factories = AbstractFactory<Made>::Instance();
  factories.Add(new TagFactory<Made>("label", "first"));
  factories.Add(nullptr);
  factories.Add(new TagFactory<Made>("label", "second"));
  factories.Add(new TagFactory<Made>("button", "button"));
  EXPECT_EQ(factories.Count(), 3u);
  EXPECT_EQ(std::unique_ptr<Made>(factories.Create(xml::Tag("label")))->madeBy, "first");
  EXPECT_EQ(std::unique_ptr<Made>(factories.Create(xml::Tag("button")))->madeBy, "button");
  EXPECT_EQ(factories.Create(xml::Tag("slider")), nullptr);
}

TEST(FactoryManager, FindsByTagInRegistrationOrder) {
  using Made = Product<2>;
  auto& manager = FactoryManager<Made>::Instance();
  manager.Add(new TagFactory<Made>("sum", "sum"));
  manager.Add(new TagFactory<Made>("product", "product"));
  const FactoryManager<Made>::Factory* found = manager.Find("product");
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(std::unique_ptr<Made>(found->Create(xml::Tag("product")))->madeBy, "product");
  EXPECT_EQ(manager.Find("quotient"), nullptr);
}

class Counted {
 public:
  Counted(int id, std::vector<int>& freed) : id_(id), freed_(freed) {}
  virtual ~Counted() { freed_.push_back(id_); }

 private:
  int id_;
  std::vector<int>& freed_;
};

class Branch : public Counted, public Composite_Dynamic<Branch> {
 public:
  using Counted::Counted;
};

TEST(CompositeDynamic, OwnsItsSubtreeAndFreesItLastToFirst) {
  std::vector<int> freed;
  {
    Branch root(0, freed);
    auto* a = new Branch(1, freed);
    a->AddChild(new Branch(11, freed));
    a->AddChild(new Branch(12, freed));
    root.AddChild(a);
    root.AddChild(new Branch(2, freed));
    auto* taken = new Branch(3, freed);
    root.InsertChild(99, taken);  // clamped to the end
    EXPECT_TRUE(root.TakeChild(taken));
    root.InsertChild(0, taken);
    EXPECT_EQ(root.GetChild(0), taken);
    EXPECT_EQ(root.GetChild(3), nullptr);
    Branch stranger(9, freed);
    EXPECT_FALSE(root.RemoveChild(&stranger));
    EXPECT_FALSE(root.TakeChild(&stranger));
    EXPECT_TRUE(root.RemoveChild(taken));
    EXPECT_EQ(freed, std::vector<int>{3});
  }
  // Counted's destructor runs after the children's, as a base's does.
  EXPECT_EQ(freed, (std::vector<int>{3, 9, 2, 12, 11, 1, 0}));
}

}  // namespace
}  // namespace vuk::util
