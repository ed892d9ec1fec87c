#pragma once
// The response filter every tool uses for a "Response Factor": a first-order
// lag that moves the fraction k of the remaining error per 0.04 s, run in as
// many 0.04 s slices as the frame holds, so that the result hardly depends on
// the frame rate. The memory lives in the owner, where histories can keep it.

namespace vuk::rgw::addon {

// The reference interval of the whole system (25 Hz).
constexpr double kResponseInterval = 0.04;

// Moves the memory towards the wanted value. A factor of exactly 1 or 0 sets
// it at once: 0 means unfiltered, not frozen, and profiles rely on that.
void filterResponse(double& memory, double wanted, double k, double dt);
// As filterResponse, but a slice that would overshoot (s x k >= 1) sets the
// value at once instead of ringing about it.
void filterResponseClamped(double& memory, double wanted, double k, double dt);

}  // namespace vuk::rgw::addon
