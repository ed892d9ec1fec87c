#include "util/avar.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <iterator>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

namespace vuk::util {
namespace {

using Bytes = std::vector<std::uint8_t>;

// Values are built and compared through their members only.
Vector3<double> V(double x, double y, double z) {
  Vector3<double> v;
  v.x = x;
  v.y = y;
  v.z = z;
  return v;
}
Quat<double> Q(double x, double y, double z, double w) {
  Quat<double> q;
  q.x = x;
  q.y = y;
  q.z = z;
  q.w = w;
  return q;
}
QTransform<double> P(const Vector3<double>& t, const Quat<double>& r) {
  QTransform<double> p;
  p.translation = t;
  p.rotation = r;
  return p;
}

bool Same(double a, double b) { return a == b; }
bool Same(int a, int b) { return a == b; }
bool Same(bool a, bool b) { return a == b; }
bool Same(unsigned char a, unsigned char b) { return a == b; }
bool Same(const Vector3<double>& a, const Vector3<double>& b) { return a.x == b.x && a.y == b.y && a.z == b.z; }
bool Same(const Quat<double>& a, const Quat<double>& b) {
  return a.x == b.x && a.y == b.y && a.z == b.z && a.w == b.w;
}
bool Same(const QTransform<double>& a, const QTransform<double>& b) {
  return Same(a.translation, b.translation) && Same(a.rotation, b.rotation);
}

std::string Show(double v) {
  std::ostringstream out;
  out.precision(17);
  out << v;
  return out.str();
}
std::string Show(int v) { return std::to_string(v); }
std::string Show(bool v) { return v ? "true" : "false"; }
std::string Show(unsigned char v) { return std::to_string(static_cast<int>(v)); }
std::string Show(const Vector3<double>& v) { return "(" + Show(v.x) + ", " + Show(v.y) + ", " + Show(v.z) + ")"; }
std::string Show(const Quat<double>& q) {
  return "(" + Show(q.x) + ", " + Show(q.y) + ", " + Show(q.z) + ", " + Show(q.w) + ")";
}
std::string Show(const QTransform<double>& p) { return Show(p.translation) + " " + Show(p.rotation); }

#define EXPECT_SAME(a, b) EXPECT_TRUE(Same((a), (b))) << Show(a) << " vs " << Show(b)
#define ASSERT_SAME(a, b) ASSERT_TRUE(Same((a), (b))) << Show(a) << " vs " << Show(b)

template <typename Var>
using ValueOf = typename Var::Value;

// ---------------------------------------------------------------------------
// An independent model: a std::map from time to value, with the documented
// rules for the value between records written out again from scratch.

enum class Kind { kNearest, kLinear, kLatest };

template <typename Var>
struct KindOf;
template <typename T>
struct KindOf<AVar_Nearest<T>> : std::integral_constant<Kind, Kind::kNearest> {};
template <typename T>
struct KindOf<AVar_Linear<T>> : std::integral_constant<Kind, Kind::kLinear> {};
template <typename T>
struct KindOf<AVar_Latest<T>> : std::integral_constant<Kind, Kind::kLatest> {};

double ModelLine(double a, double b, double t1, double t2, double t) { return (b - a) * (t - t1) / (t2 - t1) + a; }

template <typename T>
T ModelLinear(const T& a, const T& b, double t1, double t2, double t) {
  if constexpr (std::is_same_v<T, double>) {
    return ModelLine(a, b, t1, t2, t);
  } else if constexpr (std::is_same_v<T, int>) {
    return static_cast<int>(std::trunc(ModelLine(a, b, t1, t2, t)));
  } else if constexpr (std::is_same_v<T, bool>) {
    return ModelLine(a ? 1 : 0, b ? 1 : 0, t1, t2, t) != 0;
  } else if constexpr (std::is_same_v<T, Vector3<double>>) {
    return V(ModelLine(a.x, b.x, t1, t2, t), ModelLine(a.y, b.y, t1, t2, t), ModelLine(a.z, b.z, t1, t2, t));
  } else {
    static_assert(!std::is_same_v<T, T>, "no linear history of this type");
  }
}

template <typename T>
T ZeroOrIdentity() {
  if constexpr (std::is_same_v<T, Quat<double>>) {
    return Q(0, 0, 0, 1);
  } else if constexpr (std::is_same_v<T, QTransform<double>>) {
    return P(V(0, 0, 0), Q(0, 0, 0, 1));
  } else if constexpr (std::is_same_v<T, Vector3<double>>) {
    return V(0, 0, 0);
  } else {
    return T(0);
  }
}

template <typename Var>
struct Model {
  using T = ValueOf<Var>;
  static constexpr Kind kKind = KindOf<Var>::value;
  std::map<double, T> records;

  void Set(double t, const T& v) { records[t] = v; }
  void RemoveFrom(double t) { records.erase(records.lower_bound(t), records.end()); }

  T Get(double t) const {
    if (records.empty()) return ZeroOrIdentity<T>();
    const auto after = records.lower_bound(t);
    if (after == records.end()) return std::prev(after)->second;  // no extrapolation
    if (after->first == t || after == records.begin()) return after->second;
    const auto before = std::prev(after);
    switch (kKind) {
      case Kind::kLatest:
        return before->second;
      case Kind::kNearest:
        return after->first - t > t - before->first ? before->second : after->second;
      case Kind::kLinear:
        if constexpr (std::is_same_v<T, double> || std::is_same_v<T, int> || std::is_same_v<T, bool> ||
                      std::is_same_v<T, Vector3<double>>) {
          return ModelLinear(before->second, after->second, before->first, after->first, t);
        }
    }
    return T{};
  }

  std::int64_t FindNearest(double t) const {
    if (records.empty()) return -1;
    const auto after = records.lower_bound(t);
    const auto index = static_cast<std::int64_t>(std::distance(records.begin(), after));
    if (after == records.end()) return index - 1;
    if (after->first == t || after == records.begin()) return index;
    const auto before = std::prev(after);
    return after->first - t <= t - before->first ? index : index - 1;
  }
};

template <typename T>
T RandomValue(std::mt19937& rng) {
  auto small = [&rng] { return static_cast<double>(static_cast<int>(rng() % 2001) - 1000) / 8; };
  if constexpr (std::is_same_v<T, double>) {
    return small();
  } else if constexpr (std::is_same_v<T, int>) {
    return static_cast<int>(rng() % 2001) - 1000;
  } else if constexpr (std::is_same_v<T, bool>) {
    return rng() % 2 == 0;
  } else if constexpr (std::is_same_v<T, unsigned char>) {
    return static_cast<unsigned char>(rng() % 256);
  } else if constexpr (std::is_same_v<T, Vector3<double>>) {
    return V(small(), small(), small());
  } else if constexpr (std::is_same_v<T, Quat<double>>) {
    return Q(small(), small(), small(), small());
  } else {
    return P(V(small(), small(), small()), Q(small(), small(), small(), small()));
  }
}

using AllHistories = testing::Types<AVar_Nearest<double>, AVar_Nearest<bool>, AVar_Nearest<Vector3<double>>,
                                    AVar_Nearest<Quat<double>>, AVar_Nearest<QTransform<double>>,
                                    AVar_Linear<double>, AVar_Linear<int>, AVar_Linear<bool>,
                                    AVar_Linear<Vector3<double>>, AVar_Latest<int>, AVar_Latest<bool>,
                                    AVar_Latest<unsigned char>>;

template <typename Var>
class AVarModel : public testing::Test {};
TYPED_TEST_SUITE(AVarModel, AllHistories);

template <typename Var>
void ExpectSameRecords(const Var& history, const Model<Var>& model) {
  ASSERT_EQ(history.records.size(), model.records.size());
  std::size_t i = 0;
  for (const auto& [time, value] : model.records) {
    ASSERT_EQ(history.records[i].time, time) << "record " << i;
    ASSERT_SAME(history.records[i].value, value);
    ++i;
  }
}

// Random operation sequences with a fixed seed: appends at the end (the
// per-frame case), sets inside and on existing times, rewinds, and reads at,
// between, before and after the records. Times are mostly on a 1/64 s grid
// so that exact midpoints occur, with some arbitrary times and neighbours of
// record times that differ in the last bit.
TYPED_TEST(AVarModel, RandomOperationsMatchTheModel) {
  using T = ValueOf<TypeParam>;
  std::mt19937 rng(20240611);
  TypeParam history;
  Model<TypeParam> model;
  double end = 0;
  auto existingTime = [&] {
    auto it = model.records.begin();
    std::advance(it, static_cast<std::ptrdiff_t>(rng() % model.records.size()));
    return it->first;
  };
  auto anyTime = [&] {
    switch (rng() % 4) {
      case 0: return static_cast<double>(rng() % 1000000) / 1000000 * (end + 2) - 1;
      case 1: return model.records.empty() ? 0.0 : std::nextafter(existingTime(), rng() % 2 ? 1e300 : -1e300);
      default: return static_cast<double>(static_cast<int>(rng() % static_cast<unsigned>(end * 64 + 65)) - 32) / 64;
    }
  };
  for (int step = 0; step < 6000; ++step) {
    const unsigned op = rng() % 100;
    if (op < 35) {
      end += static_cast<double>(1 + rng() % 3) / 32;
      const T value = RandomValue<T>(rng);
      T* stored = history.Set(end, value);
      ASSERT_SAME(*stored, value);
      ASSERT_EQ(stored, &history.records.back().value);
      model.Set(end, value);
    } else if (op < 50) {
      const double t = anyTime();
      const T value = RandomValue<T>(rng);
      ASSERT_SAME(*history.Set(t, value), value);
      model.Set(t, value);
      end = std::max(end, t);
    } else if (op < 58 && !model.records.empty()) {
      const double t = existingTime();
      const T value = RandomValue<T>(rng);
      const std::size_t before = history.records.size();
      ASSERT_SAME(*history.Set(t, value), value);
      ASSERT_EQ(history.records.size(), before);
      model.Set(t, value);
    } else if (op < 60) {
      const double t = !model.records.empty() && rng() % 2 ? existingTime() : anyTime();
      history.RemoveFrom(t);
      model.RemoveFrom(t);
      end = model.records.empty() ? 0 : model.records.rbegin()->first;
    } else {
      double t = anyTime();
      if (op < 70 && model.records.size() >= 2) {  // exactly between two neighbours
        const auto first = model.records.lower_bound(existingTime());
        const auto second = std::next(first);
        if (second != model.records.end()) t = (first->first + second->first) / 2;
      } else if (op < 75 && !model.records.empty()) {
        t = existingTime();
      }
      ASSERT_EQ(history.FindNearest(t), model.FindNearest(t)) << "step " << step << " t " << Show(t);
      ASSERT_SAME(history.Get(t), model.Get(t)) << " step " << step << " t " << Show(t);
    }
    ASSERT_EQ(history.records.size(), model.records.size()) << "step " << step;
    if (step % 500 == 0) ExpectSameRecords(history, model);
  }
  ExpectSameRecords(history, model);
  for (const auto& [time, value] : model.records) ASSERT_SAME(history.Get(time), value);
}

// The way a tool goes back in time: read the state at t, drop the future
// after t, simulate on with appends.
TYPED_TEST(AVarModel, RewindAndResimulate) {
  using T = ValueOf<TypeParam>;
  std::mt19937 rng(7);
  constexpr double kFrame = 1.0 / 30;
  TypeParam history;
  Model<TypeParam> model;
  for (int frame = 0; frame < 300; ++frame) {
    const T value = RandomValue<T>(rng);
    history.Set(frame * kFrame, value);
    model.Set(frame * kFrame, value);
  }
  for (int jump : {250, 100, 130, 0, 20}) {
    const double t = jump * kFrame;
    ASSERT_SAME(history.Get(t), model.Get(t));
    history.RemoveFrom(t + kFrame);
    model.RemoveFrom(t + kFrame);
    ASSERT_EQ(history.records.size(), static_cast<std::size_t>(jump + 1));
    ASSERT_EQ(history.records.back().time, t);  // t itself stays
    for (int frame = jump + 1; frame < jump + 60; ++frame) {
      const T value = RandomValue<T>(rng);
      history.Set(frame * kFrame, value);
      model.Set(frame * kFrame, value);
    }
    ExpectSameRecords(history, model);
  }
}

TYPED_TEST(AVarModel, EmptyAnswersTheDefault) {
  using T = ValueOf<TypeParam>;
  TypeParam history;
  EXPECT_SAME(history.defaultValue, ZeroOrIdentity<T>());
  EXPECT_EQ(history.FindNearest(3.0), -1);
  EXPECT_SAME(history.Get(3.0), ZeroOrIdentity<T>());
  history.RemoveFrom(0.0);
  EXPECT_TRUE(history.records.empty());
  // A tool's start value is whatever it put in defaultValue.
  std::mt19937 rng(1);
  history.defaultValue = RandomValue<T>(rng);
  EXPECT_SAME(history.Get(-1.0), history.defaultValue);
}

// ---------------------------------------------------------------------------
// Edge cases.

TEST(AVar, NeverExtrapolates) {
  AVar_Linear<double> line;
  line.Set(1.0, 10.0);
  line.Set(2.0, 20.0);
  EXPECT_EQ(line.Get(0.0), 10.0);
  EXPECT_EQ(line.Get(-1e300), 10.0);
  EXPECT_EQ(line.Get(5.0), 20.0);
  EXPECT_EQ(line.Get(1e300), 20.0);
  EXPECT_EQ(line.Get(1.5), 15.0);
  EXPECT_EQ(line.FindNearest(0.0), 0);
  EXPECT_EQ(line.FindNearest(5.0), 1);
}

TEST(AVar, SetOnAnExistingTimeReplaces) {
  AVar_Latest<int> history;
  history.Set(1.0, 1);
  history.Set(2.0, 2);
  history.Set(3.0, 3);
  EXPECT_EQ(*history.Set(2.0, 20), 20);
  EXPECT_EQ(*history.Set(3.0, 30), 30);
  EXPECT_EQ(history.records.size(), 3u);
  EXPECT_EQ(history.Get(2.0), 20);
  EXPECT_EQ(history.Get(3.0), 30);
}

TEST(AVar, SetInsertsInOrderAndAnswersTheStoredValue) {
  AVar_Nearest<double> history;
  history.Set(2.0, 2.0);
  history.Set(4.0, 4.0);
  *history.Set(3.0, 3.0) = 33.0;  // the pointer is into the record
  history.Set(1.0, 1.0);
  history.Set(-1.0, -1.0);
  ASSERT_EQ(history.records.size(), 5u);
  const double times[] = {-1, 1, 2, 3, 4};
  for (std::size_t i = 0; i < 5; ++i) EXPECT_EQ(history.records[i].time, times[i]);
  EXPECT_EQ(history.Get(3.0), 33.0);
}

TEST(AVar, TimesCompareExactly) {
  AVar_Nearest<double> history;
  const double t = 0.1;
  const double next = std::nextafter(t, 1.0);
  history.Set(t, 1.0);
  history.Set(next, 2.0);
  EXPECT_EQ(history.records.size(), 2u);
  history.Set(std::nextafter(t, 0.0), 0.5);  // inserted before, not merged
  EXPECT_EQ(history.records.size(), 3u);
  history.Set(t, 3.0);
  EXPECT_EQ(history.records.size(), 3u);
  EXPECT_EQ(history.Get(t), 3.0);
  EXPECT_EQ(history.Get(next), 2.0);
  EXPECT_EQ(history.FindNearest(next), 2);
}

TEST(AVar, RemoveFromAnExactTimeRemovesThatRecord) {
  AVar_Nearest<double> history;
  for (int frame = 0; frame < 5; ++frame) history.Set(frame, frame);
  history.RemoveFrom(3.0);
  EXPECT_EQ(history.records.size(), 3u);
  history.RemoveFrom(std::nextafter(2.0, 3.0));  // just after a record keeps it
  EXPECT_EQ(history.records.size(), 3u);
  history.RemoveFrom(1.2);
  EXPECT_EQ(history.records.size(), 2u);
  history.RemoveFrom(100.0);
  EXPECT_EQ(history.records.size(), 2u);
  history.RemoveFrom(-1.0);
  EXPECT_TRUE(history.records.empty());
  history.RemoveFrom(-1.0);
  EXPECT_TRUE(history.records.empty());
}

TEST(AVar, NearestTieGoesToTheLaterRecord) {
  AVar_Nearest<double> history;
  history.Set(0.0, 1.0);
  history.Set(1.0, 2.0);
  EXPECT_EQ(history.Get(0.5), 2.0);
  EXPECT_EQ(history.FindNearest(0.5), 1);
  EXPECT_EQ(history.Get(std::nextafter(0.5, 0.0)), 1.0);
  EXPECT_EQ(history.FindNearest(std::nextafter(0.5, 0.0)), 0);
  AVar_Nearest<Quat<double>> rotations;
  rotations.Set(1.0, Q(1, 0, 0, 0));
  rotations.Set(2.0, Q(0, 1, 0, 0));
  EXPECT_SAME(rotations.Get(1.5), Q(0, 1, 0, 0));
  EXPECT_SAME(rotations.Get(1.25), Q(1, 0, 0, 0));
}

TEST(AVar, LatestHoldsTheEarlierRecord) {
  AVar_Latest<unsigned char> history;
  history.Set(0.0, 1);
  history.Set(1.0, 2);
  EXPECT_EQ(history.Get(std::nextafter(1.0, 0.0)), 1);
  EXPECT_EQ(history.Get(0.5), 1);
  EXPECT_EQ(history.Get(1.0), 2);
  AVar_Latest<bool> flags;
  flags.Set(0.0, true);
  flags.Set(1.0, false);
  EXPECT_TRUE(flags.Get(0.999));
  EXPECT_FALSE(flags.Get(1.0));
}

TEST(AVar, LinearIntTruncatesTowardZero) {
  AVar_Linear<int> history;
  history.Set(0.0, 0);
  history.Set(1.0, -10);
  EXPECT_EQ(history.Get(0.25), -2);  // -2.5
  EXPECT_EQ(history.Get(0.99), -9);  // -9.9
  history.Set(2.0, 10);
  EXPECT_EQ(history.Get(1.96), 9);  // 9.2
  EXPECT_EQ(history.Get(1.5), 0);
  AVar_Linear<int> large;
  large.Set(0.0, 2147483647);
  large.Set(1.0, -2147483647 - 1);
  EXPECT_EQ(large.Get(0.5), 0);  // -0.5: the difference is taken in doubles, not ints
}

TEST(AVar, LinearBoolIsFalseOnlyAtTheFalseRecord) {
  AVar_Linear<bool> history;
  history.Set(0.0, false);
  history.Set(1.0, true);
  history.Set(2.0, false);
  history.Set(3.0, false);
  EXPECT_FALSE(history.Get(0.0));
  EXPECT_TRUE(history.Get(1e-300));
  EXPECT_TRUE(history.Get(0.5));
  EXPECT_TRUE(history.Get(std::nextafter(2.0, 0.0)));
  EXPECT_FALSE(history.Get(2.0));
  EXPECT_FALSE(history.Get(2.5));
}

TEST(AVar, LinearVectorPerComponent) {
  AVar_Linear<Vector3<double>> history;
  history.Set(0.0, V(0, 10, -4));
  history.Set(2.0, V(2, 20, 4));
  EXPECT_SAME(history.Get(0.5), V(0.5, 12.5, -2));
  EXPECT_SAME(history.Get(2.0), V(2, 20, 4));
}

TEST(AVar, LinearRecordTakesTheAskedTime) {
  AVar_Linear<double> line;
  AVarRecord<double> a{1.0, 0.0}, b{3.0, 4.0};
  const auto r = line.Interpolate(a, b, 2.5);
  EXPECT_EQ(r.time, 2.5);
  EXPECT_EQ(r.value, 3.0);
  AVar_Nearest<double> nearest;
  EXPECT_EQ(nearest.Interpolate(a, b, 2.0).time, 3.0);
  AVar_Latest<int> latest;
  EXPECT_EQ(latest.Interpolate({1.0, 5}, {3.0, 6}, 2.9).value, 5);
}

// A damaged block may leave two records of one time; the line through them
// must still be defined.
TEST(AVar, LinearIntOnADamagedHistoryStaysDefined) {
  AVar_Linear<int> history;
  history.records = {{1.0, 5}, {1.0, 7}, {0.5, 9}};
  (void)history.Get(1.25);
  (void)history.Get(0.75);
  (void)history.Get(0.0);
}

TEST(AVar, CopiesAreIndependent) {
  AVar_Nearest<QTransform<double>> a;
  a.Set(1.0, P(V(1, 2, 3), Q(0, 0, 0, 1)));
  AVar_Nearest<QTransform<double>> b = a;
  b.Set(2.0, P(V(4, 5, 6), Q(0, 0, 0, 1)));
  EXPECT_EQ(a.records.size(), 1u);
  EXPECT_EQ(b.records.size(), 2u);
  // Through the base, as an undo record holds it.
  AVar<QTransform<double>>& base = b;
  EXPECT_SAME(base.Get(2.0).translation, V(4, 5, 6));
}

// ---------------------------------------------------------------------------
// Save blocks, byte for byte.

template <typename Var>
Bytes Saved(const Var& history) {
  const std::uint32_t size = history.GetSaveSize();
  Bytes block(size + 8, 0xEE);  // eight bytes of guard after the block
  EXPECT_EQ(history.Save(block.data(), size), size);
  for (std::size_t i = size; i < block.size(); ++i) EXPECT_EQ(block[i], 0xEE) << "written past the block";
  block.resize(size);
  return block;
}

TEST(AVarSave, EmptyIsAHeader) {
  AVar_Nearest<double> history;
  const Bytes expected = {0x10, 0, 0, 0, 0, 0, 0, 0, 0x64, 0, 0, 0, 0, 0, 0, 0};
  EXPECT_EQ(history.GetSaveSize(), 16u);
  EXPECT_EQ(Saved(history), expected);
}

TEST(AVarSave, Double) {
  AVar_Linear<double> history;
  history.Set(0.5, 2.0);
  history.Set(1.0, -1.0);
  const Bytes expected = {
      0x10, 0x00, 0x00, 0x00,  // header size 16
      0x20, 0x00, 0x00, 0x00,  // payload 32
      0x64, 0x00, 0x00, 0x00,  // version 100
      0x02, 0x00, 0x00, 0x00,  // count 2
      0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xE0, 0x3F,  // time 0.5
      0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x40,  // 2.0
      0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xF0, 0x3F,  // time 1.0
      0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xF0, 0xBF,  // -1.0
  };
  EXPECT_EQ(history.GetSaveSize(), 48u);
  EXPECT_EQ(Saved(history), expected);
}

TEST(AVarSave, IntIsPaddedWithZeros) {
  AVar_Latest<int> history;
  history.Set(1.0, -2);
  history.Set(2.0, 0x01020304);
  const Bytes expected = {
      0x10, 0x00, 0x00, 0x00, 0x20, 0x00, 0x00, 0x00, 0x64, 0x00, 0x00, 0x00, 0x02, 0x00, 0x00, 0x00,
      0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xF0, 0x3F,  // time 1.0
      0xFE, 0xFF, 0xFF, 0xFF, 0x00, 0x00, 0x00, 0x00,  // -2, padding
      0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x40,  // time 2.0
      0x04, 0x03, 0x02, 0x01, 0x00, 0x00, 0x00, 0x00,  // 0x01020304, padding
  };
  EXPECT_EQ(Saved(history), expected);
  AVar_Linear<int> linear;
  linear.Set(1.0, -2);
  linear.Set(2.0, 0x01020304);
  EXPECT_EQ(Saved(linear), expected);
}

TEST(AVarSave, BoolAndByteArePaddedWithZeros) {
  AVar_Nearest<bool> flags;
  flags.Set(2.0, true);
  flags.Set(3.0, false);
  const Bytes expectedFlags = {
      0x10, 0x00, 0x00, 0x00, 0x20, 0x00, 0x00, 0x00, 0x64, 0x00, 0x00, 0x00, 0x02, 0x00, 0x00, 0x00,
      0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x40,  // time 2.0
      0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,  // true
      0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x08, 0x40,  // time 3.0
      0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,  // false
  };
  EXPECT_EQ(Saved(flags), expectedFlags);
  AVar_Latest<unsigned char> bytes;
  bytes.Set(0.0, 200);
  const Bytes expectedBytes = {
      0x10, 0x00, 0x00, 0x00, 0x10, 0x00, 0x00, 0x00, 0x64, 0x00, 0x00, 0x00, 0x01, 0x00, 0x00, 0x00,
      0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,  // time 0.0
      0xC8, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,  // 200
  };
  EXPECT_EQ(Saved(bytes), expectedBytes);
}

TEST(AVarSave, Vector3) {
  AVar_Nearest<Vector3<double>> points;
  points.Set(1.0, V(2, 3, 4));
  const Bytes expected = {
      0x10, 0x00, 0x00, 0x00, 0x20, 0x00, 0x00, 0x00, 0x64, 0x00, 0x00, 0x00, 0x01, 0x00, 0x00, 0x00,
      0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xF0, 0x3F,  // time 1.0
      0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x40,  // x 2.0
      0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x08, 0x40,  // y 3.0
      0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x10, 0x40,  // z 4.0
  };
  EXPECT_EQ(Saved(points), expected);
  AVar_Linear<Vector3<double>> linear;
  linear.Set(1.0, V(2, 3, 4));
  EXPECT_EQ(Saved(linear), expected);
}

TEST(AVarSave, Quat) {
  AVar_Nearest<Quat<double>> rotations;
  rotations.Set(0.5, Q(-1, 0.25, 0.75, 1.5));
  const Bytes expected = {
      0x10, 0x00, 0x00, 0x00, 0x28, 0x00, 0x00, 0x00, 0x64, 0x00, 0x00, 0x00, 0x01, 0x00, 0x00, 0x00,
      0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xE0, 0x3F,  // time 0.5
      0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xF0, 0xBF,  // x -1.0
      0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xD0, 0x3F,  // y 0.25
      0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xE8, 0x3F,  // z 0.75
      0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xF8, 0x3F,  // w 1.5, last
  };
  EXPECT_EQ(rotations.GetSaveSize(), 56u);
  EXPECT_EQ(Saved(rotations), expected);
}

TEST(AVarSave, QTransform) {
  AVar_Nearest<QTransform<double>> poses;
  poses.Set(3.0, P(V(1, 2, 3), Q(-1, 0.25, 0.75, 1.5)));
  const Bytes expected = {
      0x10, 0x00, 0x00, 0x00, 0x40, 0x00, 0x00, 0x00, 0x64, 0x00, 0x00, 0x00, 0x01, 0x00, 0x00, 0x00,
      0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x08, 0x40,  // time 3.0
      0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xF0, 0x3F,  // translation x 1.0
      0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x40,  // translation y 2.0
      0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x08, 0x40,  // translation z 3.0
      0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xF0, 0xBF,  // rotation x -1.0
      0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xD0, 0x3F,  // rotation y 0.25
      0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xE8, 0x3F,  // rotation z 0.75
      0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xF8, 0x3F,  // rotation w 1.5
  };
  EXPECT_EQ(poses.GetSaveSize(), 80u);
  EXPECT_EQ(Saved(poses), expected);
}

TEST(AVarSave, TooLittleRoomWritesTheFirstTwelveBytesAndAnswersTheSize) {
  AVar_Nearest<double> history;
  history.Set(0, 1);
  history.Set(1, 2);
  for (std::uint32_t capacity : {12u, 16u, 20u, 47u}) {
    Bytes block(64, 0xEE);
    EXPECT_EQ(history.Save(block.data(), capacity), 48u);
    const Bytes start = {0x10, 0, 0, 0, 0x20, 0, 0, 0, 0x64, 0, 0, 0};
    EXPECT_TRUE(std::equal(start.begin(), start.end(), block.begin())) << capacity;
    for (std::size_t i = 12; i < block.size(); ++i) ASSERT_EQ(block[i], 0xEE) << capacity << " at " << i;
  }
  // Below twelve bytes even the header start has no room: nothing is written.
  Bytes block(16, 0xEE);
  EXPECT_EQ(history.Save(block.data(), 11), 48u);
  EXPECT_EQ(block, Bytes(16, 0xEE));
  EXPECT_EQ(history.Save(nullptr, 0), 48u);
}

// ---------------------------------------------------------------------------
// Loading, including damaged and hostile blocks.

Bytes Header(std::uint32_t headerSize, std::uint32_t payload, std::uint32_t version, std::uint32_t count) {
  Bytes out;
  for (std::uint32_t v : {headerSize, payload, version, count}) {
    for (int i = 0; i < 4; ++i) out.push_back(static_cast<std::uint8_t>(v >> (8 * i)));
  }
  return out;
}

Bytes Cat(const Bytes& a, const Bytes& b) {
  Bytes out = a;
  out.insert(out.end(), b.begin(), b.end());
  return out;
}

const Bytes kTwoDoubleRecords = {
    0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xF0, 0x3F, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x40,  // 1 -> 2
    0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x08, 0x40, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x10, 0x40,  // 3 -> 4
};

AVar_Nearest<double> Preloaded() {
  AVar_Nearest<double> history;
  history.Set(5, 5);
  return history;
}

void ExpectUntouched(const AVar_Nearest<double>& history) {
  ASSERT_EQ(history.records.size(), 1u);
  EXPECT_EQ(history.records[0].time, 5.0);
  EXPECT_EQ(history.records[0].value, 5.0);
}

TEST(AVarLoad, ReadsAValidBlock) {
  const Bytes block = Cat(Header(16, 32, 100, 2), kTwoDoubleRecords);
  for (bool sized : {true, false}) {
    AVar_Nearest<double> history = Preloaded();
    ASSERT_TRUE(sized ? history.Load(block.data(), block.size()) : history.Load(block.data()));
    ASSERT_EQ(history.records.size(), 2u);
    EXPECT_EQ(history.Get(1.0), 2.0);
    EXPECT_EQ(history.Get(3.0), 4.0);
  }
  // Bytes after the block are not its business.
  AVar_Nearest<double> history;
  const Bytes longer = Cat(block, Bytes(7, 0xAB));
  ASSERT_TRUE(history.Load(longer.data(), longer.size()));
  EXPECT_EQ(history.records.size(), 2u);
}

TEST(AVarLoad, AnEmptyBlockEmpties) {
  AVar_Nearest<double> history = Preloaded();
  const Bytes block = Header(16, 0, 100, 0);
  ASSERT_TRUE(history.Load(block.data(), block.size()));
  EXPECT_TRUE(history.records.empty());
}

TEST(AVarLoad, WrongHeaderSizeOrVersionIsIgnored) {
  for (const Bytes& header : {Header(12, 32, 100, 2), Header(17, 32, 100, 2), Header(16, 32, 101, 2),
                              Header(16, 32, 99, 2), Header(0, 0, 0, 0)}) {
    const Bytes block = Cat(header, kTwoDoubleRecords);
    AVar_Nearest<double> history = Preloaded();
    EXPECT_FALSE(history.Load(block.data(), block.size()));
    ExpectUntouched(history);
    EXPECT_FALSE(history.Load(block.data()));
    ExpectUntouched(history);
  }
}

TEST(AVarLoad, WrongPayloadSizeGivesCountDefaultRecords) {
  for (std::uint32_t payload : {0u, 16u, 17u, 33u, 0xFFFFFFFFu}) {
    const Bytes block = Cat(Header(16, payload, 100, 2), kTwoDoubleRecords);
    AVar_Nearest<double> history = Preloaded();
    ASSERT_TRUE(history.Load(block.data(), block.size())) << payload;
    ASSERT_EQ(history.records.size(), 2u);
    for (const auto& record : history.records) {
      EXPECT_EQ(record.time, 0.0);
      EXPECT_EQ(record.value, 0.0);
    }
  }
  // Default records of a rotation are identities.
  AVar_Nearest<Quat<double>> rotations;
  const Bytes block = Cat(Header(16, 0, 100, 1), Bytes(40, 0x11));
  ASSERT_TRUE(rotations.Load(block.data(), block.size()));
  ASSERT_EQ(rotations.records.size(), 1u);
  EXPECT_EQ(rotations.records[0].time, 0.0);
  EXPECT_SAME(rotations.records[0].value, Q(0, 0, 0, 1));
}

// Without a length, the block's payload field says how far it may be read:
// default records only as many as fit in that.
TEST(AVarLoad, UnsizedWrongPayloadSizeGivesDefaultRecordsWithinThePayload) {
  const Bytes roomy = Cat(Header(16, 40, 100, 2), Cat(kTwoDoubleRecords, Bytes(8, 0)));
  AVar_Nearest<double> history = Preloaded();
  ASSERT_TRUE(history.Load(roomy.data()));
  ASSERT_EQ(history.records.size(), 2u);
  EXPECT_EQ(history.records[1].time, 0.0);
  const Bytes tight = Cat(Header(16, 17, 100, 2), kTwoDoubleRecords);
  history = Preloaded();
  EXPECT_FALSE(history.Load(tight.data()));
  ExpectUntouched(history);
}

TEST(AVarLoad, CutShortBlocksAreRefused) {
  const Bytes full = Cat(Header(16, 32, 100, 2), kTwoDoubleRecords);
  for (std::size_t size = 0; size < full.size(); ++size) {
    AVar_Nearest<double> history = Preloaded();
    // A copy of exactly that length, so a read past it is caught by the sanitizer.
    const Bytes cut(full.begin(), full.begin() + static_cast<std::ptrdiff_t>(size));
    EXPECT_FALSE(history.Load(cut.data(), cut.size())) << size;
    ExpectUntouched(history);
  }
  AVar_Nearest<double> history = Preloaded();
  EXPECT_FALSE(history.Load(nullptr, 0));
  ExpectUntouched(history);
}

TEST(AVarLoad, HostileCountsAreRefused) {
  struct Case {
    std::uint32_t payload, count;
  };
  // The last one: 0x10000002 records of 16 bytes wrap around to a payload of
  // 32 in 32 bits and so look consistent there.
  for (const Case c : {Case{0xFFFFFFF0u, 0xFFFFFFFFu}, Case{0, 0xFFFFFFFFu}, Case{32, 3}, Case{32, 0x10000002u}}) {
    const Bytes block = Cat(Header(16, c.payload, 100, c.count), kTwoDoubleRecords);
    AVar_Nearest<double> history = Preloaded();
    EXPECT_FALSE(history.Load(block.data(), block.size())) << c.count;
    ExpectUntouched(history);
    if (c.payload <= kTwoDoubleRecords.size()) {  // the unsized form may read that far
      EXPECT_FALSE(history.Load(block.data())) << c.count;
      ExpectUntouched(history);
    }
  }
  AVar_Nearest<QTransform<double>> poses;
  const Bytes block = Cat(Header(16, 0xFFFFFFC0u, 100, 0x3FFFFFFFu), Bytes(64, 0));
  EXPECT_FALSE(poses.Load(block.data(), block.size()));
  EXPECT_TRUE(poses.records.empty());
}

TEST(AVarLoad, RecordsAreNotCheckedForOrder) {
  const Bytes swapped = Cat(Header(16, 32, 100, 2),
                            Cat(Bytes(kTwoDoubleRecords.begin() + 16, kTwoDoubleRecords.end()),
                                Bytes(kTwoDoubleRecords.begin(), kTwoDoubleRecords.begin() + 16)));
  AVar_Nearest<double> history;
  ASSERT_TRUE(history.Load(swapped.data(), swapped.size()));
  ASSERT_EQ(history.records.size(), 2u);
  EXPECT_EQ(history.records[0].time, 3.0);
  EXPECT_EQ(history.records[1].time, 1.0);
  EXPECT_EQ(Saved(history), swapped);
}

TEST(AVarLoad, SmallValuesIgnoreTheirPadding) {
  const Bytes block = Cat(Header(16, 16, 100, 1), {0, 0, 0, 0, 0, 0, 0xF0, 0x3F, 0x02, 0xAA, 0xBB, 0xCC, 1, 2, 3, 4});
  AVar_Latest<unsigned char> bytes;
  ASSERT_TRUE(bytes.Load(block.data(), block.size()));
  EXPECT_EQ(bytes.Get(1.0), 2);
  AVar_Latest<bool> flags;
  ASSERT_TRUE(flags.Load(block.data(), block.size()));
  EXPECT_TRUE(flags.Get(1.0));
  AVar_Latest<int> ints;
  ASSERT_TRUE(ints.Load(block.data(), block.size()));
  EXPECT_EQ(ints.Get(1.0), static_cast<int>(0xCCBBAA02u));
  // Saved again, the padding is zeros.
  const Bytes resaved = Saved(ints);
  EXPECT_EQ(Bytes(resaved.begin() + 28, resaved.end()), Bytes(4, 0));
}

// ---------------------------------------------------------------------------
// Save then Load, for every kind.

template <typename Var>
class AVarRoundTrip : public testing::Test {};
TYPED_TEST_SUITE(AVarRoundTrip, AllHistories);

TYPED_TEST(AVarRoundTrip, SaveThenLoadGivesTheSameRecords) {
  using T = ValueOf<TypeParam>;
  std::mt19937 rng(99);
  TypeParam history;
  for (int i = 0; i < 50; ++i) history.Set(i / 30.0 + (rng() % 2 ? 1e-9 : 0), RandomValue<T>(rng));
  const Bytes block = Saved(history);
  ASSERT_EQ(block.size(), 16 + 50 * TypeParam::kRecordSize);
  for (bool sized : {true, false}) {
    TypeParam back;
    back.Set(-5.0, RandomValue<T>(rng));
    ASSERT_TRUE(sized ? back.Load(block.data(), block.size()) : back.Load(block.data()));
    ASSERT_EQ(back.records.size(), history.records.size());
    for (std::size_t i = 0; i < back.records.size(); ++i) {
      EXPECT_EQ(back.records[i].time, history.records[i].time);
      EXPECT_SAME(back.records[i].value, history.records[i].value);
    }
    EXPECT_EQ(Saved(back), block);
  }
}

TEST(AVarRoundTrip, RecordSizes) {
  EXPECT_EQ(AVar_Nearest<double>::kRecordSize, 16u);
  EXPECT_EQ(AVar_Linear<int>::kRecordSize, 16u);
  EXPECT_EQ(AVar_Latest<bool>::kRecordSize, 16u);
  EXPECT_EQ(AVar_Latest<unsigned char>::kRecordSize, 16u);
  EXPECT_EQ(AVar_Linear<Vector3<double>>::kRecordSize, 32u);
  EXPECT_EQ(AVar_Nearest<Quat<double>>::kRecordSize, 40u);
  EXPECT_EQ(AVar_Nearest<QTransform<double>>::kRecordSize, 64u);
}

}  // namespace
}  // namespace vuk::util
