#pragma once
// A fingerprint of a node's keys for the determinism tests: FNV-1a over the
// bytes of every key, so that any change to the numbers shows.

#include <cstdint>
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

}  // namespace vuk::rgw::testing_support
