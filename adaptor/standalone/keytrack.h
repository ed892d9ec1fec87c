#pragma once
// A value of a node as a function of time: keys at ticks, interpolated
// between them by the key type's own rule, held before the first and after
// the last. Without keys the static value holds at all times. Beside the
// keys stands the live value: the last one set or evaluated, with its tick.
// A value set outside a recording moves the node there without a key; past
// the last key it stays until the track is evaluated before that key again.
//
// A key type has a `tick` and `static Key Between(const Key& a, const Key& b,
// double f)`, the value a fraction f of the way from a to b.

#include <algorithm>
#include <optional>
#include <vector>

#include "adaptor/standalone/ticks.h"

namespace vuk::rgw::adaptor::standalone {

template <typename Key>
class KeyTrack {
 public:
  KeyTrack() = default;
  explicit KeyTrack(const Key& staticKey) : static_(staticKey) {}

  // The live value at its own tick, and past the last key while it lies
  // past it too; otherwise the keys' value, which becomes the live one.
  const Key& At(Tick tick) const {
    if (keys_.empty()) return static_;
    const Tick last = keys_.back().tick;
    const bool liveStands = live_ && (live_->tick == tick || (tick > last && live_->tick > last));
    if (!liveStands) {
      live_ = Interpolate(tick);
      live_->tick = tick;
    }
    return *live_;
  }
  // Sets the key at that tick, replacing one there, and makes it the live
  // value. Appending after the last key is the per-frame case and costs
  // amortised constant time.
  void SetKey(const Key& key) {
    live_ = key;
    if (keys_.empty() || key.tick > keys_.back().tick) {
      keys_.push_back(key);
      return;
    }
    const auto at = keys_.begin() + (LowerBound(key.tick) - keys_.cbegin());
    if (at != keys_.end() && at->tick == key.tick) {
      *at = key;
    } else {
      keys_.insert(at, key);
    }
  }
  // Without keys: the static value (at tick 0). With keys: the live value
  // at the key's tick; no key is written.
  void SetLive(const Key& key) {
    if (keys_.empty()) {
      static_ = key;
      static_.tick = 0;
    } else {
      live_ = key;
    }
  }
  // Removes every key at or after the tick.
  void RemoveFrom(Tick tick) {
    keys_.erase(keys_.begin() + (LowerBound(tick) - keys_.cbegin()), keys_.end());
    live_.reset();
  }
  // Removes the key at exactly that tick, if any.
  void RemoveKey(Tick tick) {
    const auto at = LowerBound(tick);
    if (at != keys_.end() && at->tick == tick) keys_.erase(keys_.begin() + (at - keys_.cbegin()));
    live_.reset();
  }
  // Null when there is no key at exactly that tick.
  const Key* FindKey(Tick tick) const {
    const auto at = LowerBound(tick);
    return at != keys_.end() && at->tick == tick ? &*at : nullptr;
  }

  const std::vector<Key>& Keys() const { return keys_; }
  void SetKeys(std::vector<Key> keys) {
    keys_ = std::move(keys);
    live_.reset();
  }
  const Key& StaticKey() const { return static_; }
  void SetStaticKey(const Key& key) { static_ = key; }
  void Reserve(std::size_t keys) { keys_.reserve(keys); }

 private:
  typename std::vector<Key>::const_iterator LowerBound(Tick tick) const {
    return std::lower_bound(keys_.begin(), keys_.end(), tick, [](const Key& key, Tick t) { return key.tick < t; });
  }
  // The keys' value at the tick.
  Key Interpolate(Tick tick) const {
    const auto after = LowerBound(tick);
    if (after == keys_.end()) return keys_.back();
    if (after->tick == tick || after == keys_.begin()) return *after;
    const Key& a = *std::prev(after);
    const Key& b = *after;
    return Key::Between(a, b, static_cast<double>(tick - a.tick) / static_cast<double>(b.tick - a.tick));
  }

  std::vector<Key> keys_;
  Key static_{};
  // An evaluation cache as much as a state: none after the keys changed.
  mutable std::optional<Key> live_;
};

// One number over time: linear between keys.
struct ScalarKey {
  Tick tick = 0;
  double value = 0;

  static ScalarKey Between(const ScalarKey& a, const ScalarKey& b, double f) { return {0, a.value + (b.value - a.value) * f}; }
  bool operator==(const ScalarKey& o) const { return tick == o.tick && value == o.value; }
};
using ScalarTrack = KeyTrack<ScalarKey>;

}  // namespace vuk::rgw::adaptor::standalone
