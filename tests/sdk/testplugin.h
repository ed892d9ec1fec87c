#pragma once
// A plugin for a tool class written for a test, answering the names it is given.

#include <string>
#include <utility>

#include "sdk/ccameraplugin.h"

namespace vuk::rgw::testing_support {

template <typename Tool>
class TestPlugin : public CCameraPlugin {
 public:
  // The title is the name unless given.
  TestPlugin(std::string name, std::string category, std::string title = "")
      : name_(std::move(name)), title_(title.empty() ? name_ : std::move(title)), category_(std::move(category)) {}
  CCamera* CreateObject(CCamera::CreateParam& param) override { return new Tool(param); }
  std::string GetName() override { return name_; }
  std::string GetTitle() override { return title_; }
  std::string GetCategory() override { return category_; }

 private:
  std::string name_, title_, category_;
};

}  // namespace vuk::rgw::testing_support
