#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "util/abstractfactory.h"
#include "util/compositedynamic.h"
#include "util/dynamiccreator.h"
#include "util/factorymanager.h"
#include "util/returnvalue.h"
#include "util/xml/tag.h"

namespace vuk::util {
namespace {

struct Product {
  explicit Product(std::string madeBy) : madeBy(std::move(madeBy)) {}
  virtual ~Product() = default;
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

// Each test has its own product kind, since factories are process-wide.
struct ButtonProduct : Product {
  using Product::Product;
};
struct LabelProduct : Product {
  using Product::Product;
};
struct ScriptProduct : Product {
  using Product::Product;
};

TEST(AbstractFactoryTest, AnElementNoFactoryAcceptsGivesNull) {
  auto& factories = AbstractFactory<ButtonProduct>::Instance();
  factories.Add(new TagFactory<ButtonProduct>("button", "button"));
  EXPECT_EQ(factories.Create(xml::Tag("label")), nullptr);
  std::unique_ptr<ButtonProduct> made(factories.Create(xml::Tag("button")));
  ASSERT_NE(made, nullptr);
  EXPECT_EQ(made->madeBy, "button");
}

TEST(AbstractFactoryTest, TheFirstFactoryAddedWins) {
  auto& factories = AbstractFactory<LabelProduct>::Instance();
  factories.Add(new TagFactory<LabelProduct>("label", "first"));
  factories.Add(new TagFactory<LabelProduct>("label", "second"));
  factories.Add(nullptr);
  EXPECT_EQ(factories.Count(), 2u);
  std::unique_ptr<LabelProduct> made(factories.Create(xml::Tag("label")));
  ASSERT_NE(made, nullptr);
  EXPECT_EQ(made->madeBy, "first");
  EXPECT_EQ(&factories, &AbstractFactory<LabelProduct>::Instance());
}

TEST(FactoryManagerTest, FindsByTagInRegistrationOrder) {
  auto& manager = FactoryManager<ScriptProduct>::Instance();
  manager.Add(new TagFactory<ScriptProduct>("sum", "sum"));
  manager.Add(new TagFactory<ScriptProduct>("product", "product"));
  const FactoryManager<ScriptProduct>::Factory* found = manager.Find("product");
  ASSERT_NE(found, nullptr);
  std::unique_ptr<ScriptProduct> made(found->Create(xml::Tag("product")));
  EXPECT_EQ(made->madeBy, "product");
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

TEST(CompositeDynamicTest, FreeingACompositeFreesItsSubtreeLastToFirst) {
  std::vector<int> freed;
  {
    Branch root(0, freed);
    auto* a = new Branch(1, freed);
    a->AddChild(new Branch(11, freed));
    a->AddChild(new Branch(12, freed));
    root.AddChild(a);
    root.AddChild(new Branch(2, freed));
    EXPECT_EQ(root.GetChildCount(), 2u);
    EXPECT_EQ(root.GetChild(0), a);
    EXPECT_EQ(root.GetChild(2), nullptr);
  }
  // Counted's destructor runs after the children's, as a base's does.
  EXPECT_EQ(freed, (std::vector<int>{2, 12, 11, 1, 0}));
}

TEST(CompositeDynamicTest, RemoveChildFreesOnlyOwnChildren) {
  std::vector<int> freed;
  Branch root(0, freed);
  Branch stranger(9, freed);
  auto* child = new Branch(1, freed);
  root.AddChild(child);
  EXPECT_FALSE(root.RemoveChild(&stranger));
  EXPECT_TRUE(root.RemoveChild(child));
  EXPECT_EQ(freed, std::vector<int>{1});
  EXPECT_EQ(root.GetChildCount(), 0u);
}

class Widget : public DynamicObject, public DynamicCreator<Widget> {
 public:
  std::string GetTypeName() const override { return "Widget"; }
};

TEST(DynamicCreatorTest, MakesRegisteredKindsByName) {
  EXPECT_TRUE(Widget::RegisterAs("Widget"));
  EXPECT_FALSE(Widget::RegisterAs("Widget"));
  std::unique_ptr<DynamicObject> made(DynamicRegistry::Instance().Create("Widget"));
  ASSERT_NE(made, nullptr);
  EXPECT_EQ(made->GetTypeName(), "Widget");
  EXPECT_EQ(DynamicRegistry::Instance().Create("Gadget"), nullptr);
  DynamicObject::Destroy(Widget::Create());
  DynamicObject::Destroy(nullptr);
}

TEST(ReturnValueTest, StoresAtTheCallersPlace) {
  std::string target;
  ReturnInto<std::string> into(target);
  ReturnValue<std::string>& value = into;
  value.Set("answer");
  EXPECT_EQ(target, "answer");
}

}  // namespace
}  // namespace vuk::util
