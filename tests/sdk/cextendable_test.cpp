#include "sdk/cextendable.h"

#include <gtest/gtest.h>

namespace vuk::rgw {
namespace {

class Plain : public CExtendable {};

class Listing : public CExtendable {
 public:
  std::vector<std::int32_t> ExtensionIds() override { return {40, 42}; }
};

TEST(CExtendable, HasExtensionAnswersFromTheList) {
  Plain plain;
  for (std::int32_t id : {0, 16, 40, 41, 42, 61}) EXPECT_FALSE(plain.HasExtension(id)) << id;
  EXPECT_EQ(plain.Extension(40, nullptr), 0);
  Listing listing;
  EXPECT_TRUE(listing.HasExtension(40));
  EXPECT_TRUE(listing.HasExtension(42));
  EXPECT_FALSE(listing.HasExtension(41));
}

}  // namespace
}  // namespace vuk::rgw
