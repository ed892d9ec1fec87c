#pragma once
// What the tools' determinism tests share: keys compared bit for bit, and a
// fingerprint of them, FNV-1a over the bytes of every key, so that any change
// to the numbers shows.

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <vector>

#include "adaptor/standalone/transformtrack.h"

namespace vuk::rgw::testing_support {

inline std::uint64_t HashOf(const std::vector<adaptor::standalone::TransformKey>& keys) {
  std::uint64_t hash = 14695981039346656037ull;
  for (const auto& key : keys) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(&key);
    for (std::size_t i = 0; i < sizeof key; ++i) hash = (hash ^ bytes[i]) * 1099511628211ull;
  }
  return hash;
}

inline void ExpectSameKeys(const std::vector<adaptor::standalone::TransformKey>& first,
                           const std::vector<adaptor::standalone::TransformKey>& second) {
  ASSERT_EQ(first.size(), second.size());
  for (std::size_t i = 0; i < first.size(); ++i) {
    EXPECT_EQ(std::memcmp(&first[i], &second[i], sizeof first[i]), 0) << "key " << i;
  }
}

}  // namespace vuk::rgw::testing_support
