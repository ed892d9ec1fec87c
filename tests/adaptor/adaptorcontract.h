#pragma once
// What every host adaptor must do, written against the interface alone.
// A host's tests instantiate the suite with a factory of fresh adaptors.

#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "core/adaptorinterface.h"

namespace vuk::rgw::testing_support {

using AdaptorFactory = std::function<std::unique_ptr<core::AdaptorInterface>()>;

class AdaptorContract : public testing::TestWithParam<AdaptorFactory> {
 protected:
  void SetUp() override { adaptor = GetParam()(); }
  std::unique_ptr<core::AdaptorInterface> adaptor;
};

}  // namespace vuk::rgw::testing_support
