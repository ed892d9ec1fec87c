#include "plugins/common/filterresponse.h"

#include <cmath>

namespace vuk::rgw::addon {

namespace {

// n slices of s x 0.04 s each: n = 1 + trunc(dt / 0.04), s = (dt / 0.04) / n.
// A step of -0.04 s or less has no slice.
struct Slices {
  explicit Slices(double dt) : count(1 + std::trunc(dt / kResponseInterval)) {
    share = count < 1 ? 0.0 : (dt / kResponseInterval) / count;
  }
  void Run(double& memory, double wanted, double k) const {
    for (double i = 0; i < count; ++i) memory += (wanted - memory) * share * k;
  }
  double count;
  double share;
};

}  // namespace

void filterResponse(double& memory, double wanted, double k, double dt) {
  if (k == 1.0 || k == 0.0) {
    memory = wanted;
    return;
  }
  Slices(dt).Run(memory, wanted, k);
}

void filterResponseClamped(double& memory, double wanted, double k, double dt) {
  const Slices slices(dt);
  if (slices.count < 1) return;
  if (k == 0.0 || slices.share * k >= 1.0) {
    memory = wanted;
    return;
  }
  slices.Run(memory, wanted, k);
}

}  // namespace vuk::rgw::addon
