#include "plugins/common/filterresponse.h"

#include <gtest/gtest.h>

#include <cmath>
#include <ostream>
#include <random>
#include <variant>

namespace vuk::rgw::addon {
namespace {

using Vector3 = util::Vector3<double>;
using Quat = util::Quat<double>;
constexpr double kPi = 3.141592653589793;

using ScalarFilter = void (*)(double&, double, double, double);
using VectorFilter = void (*)(Vector3&, const Vector3&, double, double);
using QuatFilter = void (*)(Quat&, const Quat&, double, double);

// Slices worked out by hand: n = 1 + trunc(dt / 0.04) slices of
// s = dt / 0.04 / n, each closing the fraction s x k of the error, cover the
// fraction 1 - (1 - s k)^n of the way.
struct FilterCase {
  const char* what;
  bool clamped;
  double k;
  double dt;
  double covered;  // the fraction of the way from the memory to the wanted value
};
void PrintTo(const FilterCase& c, std::ostream* out) { *out << c.what; }

// The angle reached from the identity towards a turn by `angle` when the four
// components cover the fraction f of the way and are then normalised:
// (0, f sin(a/2), 0, 1 - f + f cos(a/2)) about a fixed axis.
double ChordAngle(double f, double angle) {
  return 2 * std::atan2(f * std::sin(angle / 2), 1 - f + f * std::cos(angle / 2));
}

// q and -q are the same rotation.
void ExpectSameRotation(const Quat& a, const Quat& b, double tolerance = 1e-15) {
  EXPECT_NEAR(std::abs(a.Dot(b)), 1.0, tolerance) << a.x << " " << a.y << " " << a.z << " " << a.w;
}

class OneStep : public testing::TestWithParam<FilterCase> {};

TEST_P(OneStep, ScalarFromZeroTowardsOne) {
  const FilterCase& c = GetParam();
  double memory = 0;
  (c.clamped ? filterResponseClamped : filterResponse)(memory, 1.0, c.k, c.dt);
  EXPECT_NEAR(memory, c.covered, 1e-15);
}

TEST_P(OneStep, VectorCoversTheSameFractionOfTheLine) {
  const FilterCase& c = GetParam();
  const Vector3 start{1, 1, 1}, wanted{3, -3, 7};
  Vector3 memory = start;
  (c.clamped ? filterResponseVectorClamped : filterResponseVector)(memory, wanted, c.k, c.dt);
  EXPECT_LT((memory - (start + (wanted - start) * c.covered)).Length(), 1e-14);
}

// The wanted turn comes with w < 0, so the filter has to flip it first.
TEST_P(OneStep, QuatCoversTheSameFractionOfTheChord) {
  const FilterCase& c = GetParam();
  const double angle = 100 * kPi / 180;
  const Vector3 axis{0, 1, 0};
  Quat memory;
  (c.clamped ? filterResponseQuatClamped : filterResponseQuat)(memory, -Quat::FromAxisAngle(axis, angle), c.k,
                                                               c.dt);
  ExpectSameRotation(memory, Quat::FromAxisAngle(axis, ChordAngle(c.covered, angle)));
}

INSTANTIATE_TEST_SUITE_P(
    FilterResponse, OneStep,
    testing::Values(FilterCase{"half a slice", false, 0.5, 0.02, 0.25},
                    FilterCase{"a whole interval is two half slices", false, 0.5, 0.04, 1 - 0.75 * 0.75},
                    // s = 2.5 / 3, s k = 1 / 6: (5/6)^3 = 125/216 of the error is left.
                    FilterCase{"2.5 intervals are three slices", false, 0.2, 0.1, 91.0 / 216},
                    FilterCase{"three slices of s k = 1/2", false, 0.6, 0.1, 0.875},
                    FilterCase{"a step of 0 keeps the memory", false, 0.5, 0.0, 0.0},
                    FilterCase{"factor 1 passes through", false, 1.0, 0.001, 1.0},
                    FilterCase{"factor 0 passes through, it does not freeze", false, 0.0, 0.02, 1.0},
                    FilterCase{"a large factor overshoots", false, 3.0, 0.02, 1.5},
                    FilterCase{"no slice in a step of -0.05 s", false, 0.5, -0.05, 0.0},
                    FilterCase{"factor 0 passes through even without a slice", false, 0.0, -0.05, 1.0},
                    FilterCase{"clamped: a large factor sets the value", true, 3.0, 0.02, 1.0},
                    FilterCase{"clamped: s k of exactly 1 sets it", true, 2.0, 0.02, 1.0},
                    FilterCase{"clamped: s = 2.5 / 3 with k = 1.2 is s k = 1", true, 1.2, 0.1, 1.0},
                    // s k = 11/12: (1/12)^3 of the error is left.
                    FilterCase{"clamped: three slices just below 1", true, 1.1, 0.1, 1727.0 / 1728},
                    FilterCase{"clamped: factor 1 is filtered", true, 1.0, 0.02, 0.5},
                    FilterCase{"clamped: factor 0 passes through", true, 0.0, 0.02, 1.0},
                    FilterCase{"clamped: a step of 0 keeps the memory", true, 0.5, 0.0, 0.0},
                    FilterCase{"clamped: no slice in -0.05 s either", true, 0.5, -0.05, 0.0}));

// The rate-limited forms, from 0 towards 1 and from the identity towards a
// quarter turn: the wanted value is first brought within rate x dt.
struct LimitedCase {
  const char* what;
  double k;
  double rate;
  double dt;
  double scalar;  // the memory after one call
  double angle;   // the angle turned in one call
};
void PrintTo(const LimitedCase& c, std::ostream* out) { *out << c.what; }

class LimitedStep : public testing::TestWithParam<LimitedCase> {};

TEST_P(LimitedStep, Scalar) {
  const LimitedCase& c = GetParam();
  double memory = 0;
  filterResponseLimited(memory, 1.0, c.k, c.rate, c.dt);
  EXPECT_NEAR(memory, c.scalar, 1e-15);
}

TEST_P(LimitedStep, Quat) {
  const LimitedCase& c = GetParam();
  const Vector3 axis{1, -2, 2};
  Quat memory;
  filterResponseQuatLimited(memory, Quat::FromAxisAngle(axis, kPi / 2), c.k, c.rate, c.dt);
  ExpectSameRotation(memory, Quat::FromAxisAngle(axis, c.angle));
}

INSTANTIATE_TEST_SUITE_P(
    FilterResponse, LimitedStep,
    testing::Values(
        LimitedCase{"no limit filters as usual", 0.5, 0.0, 0.02, 0.25, ChordAngle(0.25, kPi / 2)},
        LimitedCase{"a limit out of reach filters as usual", 0.5, 100.0, 0.02, 0.25, ChordAngle(0.25, kPi / 2)},
        LimitedCase{"the wanted value is brought within 1 x 0.02", 0.5, 1.0, 0.02, 0.005, 0.004999968749804687},
        LimitedCase{"a negative rate limits as well", 0.5, -1.0, 0.02, 0.005, 0.004999968749804687},
        LimitedCase{"three slices towards 2 x 0.1", 0.6, 2.0, 0.1, 0.175, ChordAngle(0.875, 0.2)},
        LimitedCase{"factor 0 without a limit copies", 0.0, 0.0, 0.02, 1.0, kPi / 2},
        LimitedCase{"factor 0 with a limit stays", 0.0, 1.0, 0.02, 0.0, 0.0},
        LimitedCase{"an overshooting slice without a limit copies", 3.0, 0.0, 0.02, 1.0, kPi / 2},
        LimitedCase{"an overshooting slice with a limit stays", 3.0, 1.0, 0.02, 0.0, 0.0},
        LimitedCase{"a step of 0 keeps the memory", 0.5, 1.0, 0.0, 0.0, 0.0},
        LimitedCase{"no slice in a step of -0.05 s", 0.5, 1.0, -0.05, 0.0, 0.0},
        LimitedCase{"no slice in a step of -0.04 s", 0.5, 0.0, -0.04, 0.0, 0.0}));

// A limit never reached in the runs below, so that the limited forms show
// their loop alone.
constexpr double kUnreachedRate = 1000;
void LimitedUnreached(double& memory, double wanted, double k, double dt) {
  filterResponseLimited(memory, wanted, k, kUnreachedRate, dt);
}
void QuatLimitedUnreached(Quat& memory, const Quat& wanted, double k, double dt) {
  filterResponseQuatLimited(memory, wanted, k, kUnreachedRate, dt);
}

// A slow factor, so that one second ends half way and a frame-rate dependence
// would show: with k per frame instead of per 0.04 s, 100 fps would end near 0.87.
constexpr double kSlowFactor = 0.02;

// The fraction of the way covered after one second at fps frames per second.
double CoveredInOneSecond(ScalarFilter filter, int fps) {
  double memory = 0;
  for (int frame = 0; frame < fps; ++frame) filter(memory, 1.0, kSlowFactor, 1.0 / fps);
  return memory;
}
double CoveredInOneSecond(VectorFilter filter, int fps) {
  const Vector3 wanted{2, -4, 6};
  Vector3 memory;
  for (int frame = 0; frame < fps; ++frame) filter(memory, wanted, kSlowFactor, 1.0 / fps);
  return memory.Dot(wanted) / wanted.Dot(wanted);
}
double CoveredInOneSecond(QuatFilter filter, int fps) {
  const double angle = 2.0;
  const Quat wanted = Quat::FromAxisAngle({1, 2, 3}, angle);
  Quat memory;
  for (int frame = 0; frame < fps; ++frame) filter(memory, wanted, kSlowFactor, 1.0 / fps);
  return 1 - Quat::AngleBetween(memory, wanted) / angle;
}

// A filter, with the name its tests go by.
template <typename Filter>
struct Named {
  const char* name;
  Filter filter;
};
template <typename Filter>
void PrintTo(const Named<Filter>& f, std::ostream* out) { *out << f.name; }
template <typename Param>
std::string NameOf(const testing::TestParamInfo<Param>& info) { return info.param.name; }

using NamedFilter = Named<std::variant<ScalarFilter, VectorFilter, QuatFilter>>;
class EveryForm : public testing::TestWithParam<NamedFilter> {};

TEST_P(EveryForm, OneSecondHardlyDependsOnTheFrameRate) {
  const auto covered = [](int fps) {
    return std::visit([fps](auto filter) { return CoveredInOneSecond(filter, fps); }, GetParam().filter);
  };
  const double at100 = covered(100);
  // (1 - 0.02 / 4)^100 of the way is left after one second at 100 fps; the
  // quaternion forms, measured by angle along a bent chord, cover a few
  // hundredths less.
  EXPECT_NEAR(at100, 1 - std::pow(0.995, 100), 0.05);
  EXPECT_NEAR(covered(25), at100, 0.01 * at100);
  EXPECT_NEAR(covered(50), at100, 0.01 * at100);
}

INSTANTIATE_TEST_SUITE_P(FilterResponse, EveryForm,
                         testing::Values(NamedFilter{"filterResponse", &filterResponse},
                                         NamedFilter{"filterResponseVector", &filterResponseVector},
                                         NamedFilter{"filterResponseQuat", &filterResponseQuat},
                                         NamedFilter{"filterResponseClamped", &filterResponseClamped},
                                         NamedFilter{"filterResponseVectorClamped", &filterResponseVectorClamped},
                                         NamedFilter{"filterResponseQuatClamped", &filterResponseQuatClamped},
                                         NamedFilter{"filterResponseLimited", &LimitedUnreached},
                                         NamedFilter{"filterResponseQuatLimited", &QuatLimitedUnreached}),
                         NameOf<NamedFilter>);

Quat RandomRotation(std::mt19937& random) {
  std::normal_distribution<double> normal;
  return Quat{normal(random), normal(random), normal(random), normal(random)}.Normalize();
}

// A limit that binds often in the runs below.
void QuatLimitedTwoRadiansPerSecond(Quat& memory, const Quat& wanted, double k, double dt) {
  filterResponseQuatLimited(memory, wanted, k, 2.0, dt);
}

using NamedQuatFilter = Named<QuatFilter>;

class EveryQuatForm : public testing::TestWithParam<NamedQuatFilter> {};

// Each sign of memory and wanted value gives the same rotation, of unit
// length, never further from the wanted value than before.
TEST_P(EveryQuatForm, StaysUnitAndTreatsQAndMinusQAlike) {
  std::mt19937 random(3);
  std::uniform_real_distribution<double> factor(0.01, 1.5);
  const double steps[] = {1.0 / 25, 1.0 / 60, 0.1, 0.013};
  for (int round = 0; round < 200; ++round) {
    const Quat start = RandomRotation(random), wanted = RandomRotation(random);
    const double k = factor(random), dt = steps[round % 4];
    Quat first = start;
    GetParam().filter(first, wanted, k, dt);
    EXPECT_NEAR(first.Norm(), 1.0, 1e-15);
    EXPECT_LE(Quat::AngleBetween(first, wanted), Quat::AngleBetween(start, wanted) + 1e-12);
    for (const auto& [m, g] : {std::pair{-start, wanted}, std::pair{start, -wanted}, std::pair{-start, -wanted}}) {
      Quat memory = m;
      GetParam().filter(memory, g, k, dt);
      EXPECT_NEAR(memory.Norm(), 1.0, 1e-15);
      ExpectSameRotation(memory, first, 1e-14);
    }
  }
}

// A memory with w = 0 is a half turn either way round: it must be taken on
// the side of the wanted value, which is 20 degrees away, not 340. The result
// then lies on that short arc.
TEST_P(EveryQuatForm, TakesTheShortArcFromAHalfTurn) {
  const Vector3 axis{1, 0, 0};
  const double arc = 20 * kPi / 180;
  const Quat start = Quat::FromAxisAngle(axis, kPi), wanted = Quat::FromAxisAngle(axis, kPi + arc);
  Quat memory = start;
  GetParam().filter(memory, wanted, 0.5, 0.02);
  const double turned = Quat::AngleBetween(start, memory);
  EXPECT_GT(turned, 0.005);
  EXPECT_NEAR(turned + Quat::AngleBetween(memory, wanted), arc, 1e-14);
  EXPECT_NEAR(Vector3(memory.x, memory.y, memory.z).Cross(axis).Length(), 0.0, 1e-15);
}

INSTANTIATE_TEST_SUITE_P(FilterResponse, EveryQuatForm,
                         testing::Values(NamedQuatFilter{"filterResponseQuat", &filterResponseQuat},
                                         NamedQuatFilter{"filterResponseQuatClamped", &filterResponseQuatClamped},
                                         NamedQuatFilter{"filterResponseQuatLimited", &QuatLimitedTwoRadiansPerSecond}),
                         NameOf<NamedQuatFilter>);

// At any frame rate, a limited filter chasing a jumping target never moves
// more than rate x dt in a frame. It covers the fraction 1 - (1 - s k)^n of
// the reachable way: 0.225 of it at 100 fps, 0.9 at 25 fps.
class RateLimit : public testing::TestWithParam<int> {};

TEST_P(RateLimit, IsNeverExceeded) {
  const double dt = 1.0 / GetParam(), rate = 3.0, k = 0.9;
  std::mt19937 random(GetParam());
  std::uniform_real_distribution<double> jump(-2, 2);
  double scalar = 0, largestScalarMove = 0, largestTurn = 0;
  Quat rotation;
  for (int frame = 0; frame < 200; ++frame) {
    const double wanted = jump(random);
    const Quat wantedRotation = RandomRotation(random);
    const double before = scalar;
    const Quat rotationBefore = rotation;
    filterResponseLimited(scalar, wanted, k, rate, dt);
    filterResponseQuatLimited(rotation, wantedRotation, k, rate, dt);
    largestScalarMove = std::max(largestScalarMove, std::abs(scalar - before));
    largestTurn = std::max(largestTurn, Quat::AngleBetween(rotationBefore, rotation));
  }
  EXPECT_LE(largestScalarMove, rate * dt * (1 + 1e-12));
  EXPECT_LE(largestTurn, rate * dt * (1 + 1e-9));
  EXPECT_GT(largestScalarMove, 0.2 * rate * dt);
  EXPECT_GT(largestTurn, 0.2 * rate * dt);
}

INSTANTIATE_TEST_SUITE_P(FilterResponse, RateLimit, testing::Values(7, 25, 30, 60, 100));

}  // namespace
}  // namespace vuk::rgw::addon
