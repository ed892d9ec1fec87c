#include "util/avar.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <random>

#include "util/bytes.h"

namespace vuk::util {
namespace {

// An independent model of a history: a sorted map and the documented rules
// for the value between records.
enum class Kind { kNearest, kLinear, kLatest };

double ModelGet(const std::map<double, double>& model, Kind kind, double t) {
  if (model.empty()) return 0;
  const auto after = model.lower_bound(t);
  if (after != model.end() && after->first == t) return after->second;
  if (after == model.begin()) return after->second;
  if (after == model.end()) return std::prev(after)->second;
  const auto before = std::prev(after);
  switch (kind) {
    case Kind::kLatest: return before->second;
    case Kind::kNearest: return (after->first - t) > (t - before->first) ? before->second : after->second;
    case Kind::kLinear:
      return (after->second - before->second) * (t - before->first) / (after->first - before->first) +
             before->second;
  }
  return 0;
}

template <typename Var>
void RunAgainstModel(Kind kind, unsigned seed) {
  std::mt19937 random(seed);
  Var history;
  std::map<double, double> model;
  double end = 0;
  for (int step = 0; step < 3000; ++step) {
    const int operation = static_cast<int>(random() % 10);
    const double value = static_cast<double>(random() % 1000) / 8;
    if (operation < 5) {  // the per-frame case: set at the end
      end += 1.0 / 30 * (1 + random() % 3);
      history.Set(end, value);
      model[end] = value;
    } else if (operation < 7 && !model.empty()) {  // inside, or on an existing time
      auto existing = model.begin();
      std::advance(existing, random() % model.size());
      const double t = random() % 2 ? existing->first : existing->first - 1.0 / 90;
      EXPECT_EQ(*history.Set(t, value), value);
      model[t] = value;
    } else if (operation == 7 && random() % 8 == 0) {
      const double t = end * static_cast<double>(random() % 1000) / 1000;
      history.RemoveFrom(t);
      model.erase(model.lower_bound(t), model.end());
      end = model.empty() ? 0 : model.rbegin()->first;
    } else {
      const double t = end * static_cast<double>(random() % 1100) / 1000 - 0.05;
      ASSERT_EQ(history.Get(t), ModelGet(model, kind, t)) << "step " << step << " t " << t;
    }
    ASSERT_EQ(history.records.size(), model.size());
  }
  for (const auto& [time, value] : model) EXPECT_EQ(history.Get(time), value);
}

TEST(AVar, NearestMatchesTheModel) { RunAgainstModel<AVar_Nearest<double>>(Kind::kNearest, 1); }
TEST(AVar, LinearMatchesTheModel) { RunAgainstModel<AVar_Linear<double>>(Kind::kLinear, 2); }

TEST(AVar, LatestMatchesTheModel) {
  // Latest has no double kind; an int history with whole values behaves alike.
  std::mt19937 random(3);
  AVar_Latest<int> history;
  std::map<double, double> model;
  for (int step = 0; step < 2000; ++step) {
    const double t = static_cast<double>(random() % 500) / 10;
    if (random() % 2) {
      const int value = static_cast<int>(random() % 100);
      history.Set(t, value);
      model[t] = value;
    } else {
      ASSERT_EQ(history.Get(t), ModelGet(model, Kind::kLatest, t));
    }
  }
}

TEST(AVar, EmptyAnswersTheDefault) {
  AVar_Nearest<Quat<double>> rotation;
  EXPECT_EQ(rotation.Get(3.0), Quat<double>());
  EXPECT_EQ(rotation.FindNearest(3.0), -1);
  rotation.RemoveFrom(0.0);
  EXPECT_TRUE(rotation.records.empty());
  AVar_Nearest<QTransform<double>> pose;
  EXPECT_EQ(pose.defaultValue.rotation.w, 1.0);
}

TEST(AVar, NeverExtrapolates) {
  AVar_Linear<double> line;
  line.Set(1.0, 10.0);
  line.Set(2.0, 20.0);
  EXPECT_EQ(line.Get(0.0), 10.0);
  EXPECT_EQ(line.Get(5.0), 20.0);
  EXPECT_EQ(line.Get(1.5), 15.0);
}

TEST(AVar, TimesCompareExactly) {
  AVar_Nearest<double> history;
  const double t = 0.1;
  history.Set(t, 1.0);
  history.Set(std::nextafter(t, 1.0), 2.0);
  EXPECT_EQ(history.records.size(), 2u);
  history.Set(t, 3.0);
  EXPECT_EQ(history.records.size(), 2u);
  EXPECT_EQ(history.Get(t), 3.0);
}

TEST(AVar, RemoveFromAnExactTimeRemovesThatRecord) {
  AVar_Nearest<double> history;
  for (int frame = 0; frame < 5; ++frame) history.Set(frame, frame);
  history.RemoveFrom(3.0);
  EXPECT_EQ(history.records.size(), 3u);
  history.RemoveFrom(1.2);
  EXPECT_EQ(history.records.size(), 2u);
  history.RemoveFrom(-1.0);
  EXPECT_TRUE(history.records.empty());
}

TEST(AVar, NearestTieGoesToTheLaterRecord) {
  AVar_Nearest<double> history;
  history.Set(0.0, 1.0);
  history.Set(1.0, 2.0);
  EXPECT_EQ(history.Get(0.5), 2.0);
  EXPECT_EQ(history.FindNearest(0.5), 1);
  EXPECT_EQ(history.Get(0.4999), 1.0);
}

TEST(AVar, LatestHoldsTheEarlierRecord) {
  AVar_Latest<unsigned char> history;
  history.Set(0.0, 1);
  history.Set(1.0, 2);
  EXPECT_EQ(history.Get(0.999999), 1);
  EXPECT_EQ(history.Get(1.0), 2);
}

TEST(AVar, LinearIntTruncatesTowardZero) {
  AVar_Linear<int> history;
  history.Set(0.0, 0);
  history.Set(1.0, -10);
  EXPECT_EQ(history.Get(0.25), -2);  // -2.5
  history.Set(2.0, 10);
  EXPECT_EQ(history.Get(1.96), 9);  // 9.2
}

TEST(AVar, LinearBoolIsFalseOnlyAtTheFalseRecord) {
  AVar_Linear<bool> history;
  history.Set(0.0, false);
  history.Set(1.0, true);
  EXPECT_FALSE(history.Get(0.0));
  EXPECT_TRUE(history.Get(1e-9));
  EXPECT_TRUE(history.Get(0.5));
}

TEST(AVar, LinearVectorPerComponent) {
  AVar_Linear<Vector3<double>> history;
  history.Set(0.0, {0, 10, -4});
  history.Set(2.0, {2, 20, 4});
  EXPECT_EQ(history.Get(0.5), Vector3<double>(0.5, 12.5, -2));
}

// Byte-exact save blocks, written out by hand.
Bytes Header(std::uint32_t payload, std::uint32_t count) {
  Bytes out;
  ByteWriter writer(out);
  writer.Put(std::uint32_t{16});
  writer.Put(payload);
  writer.Put(std::uint32_t{100});
  writer.Put(count);
  return out;
}

Bytes Doubles(std::initializer_list<double> values) {
  Bytes out;
  ByteWriter writer(out);
  for (double v : values) writer.Put(v);
  return out;
}

Bytes Cat(std::initializer_list<Bytes> parts) {
  Bytes out;
  for (const Bytes& part : parts) out.insert(out.end(), part.begin(), part.end());
  return out;
}

template <typename Var>
Bytes Saved(const Var& history) {
  Bytes block(history.GetSaveSize(), 0xEE);
  EXPECT_EQ(history.Save(block.data(), static_cast<std::uint32_t>(block.size())), block.size());
  return block;
}

TEST(AVarSave, DoubleRecordsAreSixteenBytes) {
  AVar_Linear<double> history;
  history.Set(0.5, 2.0);
  history.Set(1.0, -1.0);
  EXPECT_EQ(Saved(history), Cat({Header(32, 2), Doubles({0.5, 2.0}), Doubles({1.0, -1.0})}));
}

TEST(AVarSave, SmallValuesArePaddedWithZeros) {
  AVar_Latest<int> ints;
  ints.Set(1.0, -2);
  EXPECT_EQ(Saved(ints), Cat({Header(16, 1), Doubles({1.0}), {0xFE, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0}}));
  AVar_Nearest<bool> flags;
  flags.Set(2.0, true);
  EXPECT_EQ(Saved(flags), Cat({Header(16, 1), Doubles({2.0}), {1, 0, 0, 0, 0, 0, 0, 0}}));
  AVar_Latest<unsigned char> bytes;
  bytes.Set(0.0, 200);
  EXPECT_EQ(Saved(bytes), Cat({Header(16, 1), Doubles({0.0}), {200, 0, 0, 0, 0, 0, 0, 0}}));
}

TEST(AVarSave, GeometricRecords) {
  AVar_Nearest<Vector3<double>> points;
  points.Set(1.0, {2, 3, 4});
  EXPECT_EQ(Saved(points), Cat({Header(32, 1), Doubles({1, 2, 3, 4})}));
  AVar_Nearest<Quat<double>> rotations;
  rotations.Set(1.0, {0.5, 0.5, 0.5, 0.5});
  EXPECT_EQ(Saved(rotations), Cat({Header(40, 1), Doubles({1, 0.5, 0.5, 0.5, 0.5})}));
  AVar_Nearest<QTransform<double>> poses;
  poses.Set(3.0, {{1, 2, 3}, {0, 0, 0, 1}});
  EXPECT_EQ(Saved(poses), Cat({Header(64, 1), Doubles({3, 1, 2, 3, 0, 0, 0, 1})}));
}

TEST(AVarSave, TooLittleRoomWritesTheHeaderStartAndAnswersTheSize) {
  AVar_Nearest<double> history;
  history.Set(0, 1);
  Bytes block(20, 0xEE);
  EXPECT_EQ(history.Save(block.data(), 20), 32u);
  const Bytes start = Header(16, 0);
  EXPECT_TRUE(std::equal(start.begin(), start.begin() + 12, block.begin()));
  EXPECT_EQ(block[12], 0xEE);
}

template <typename Var>
class AVarRoundTrip : public testing::Test {};

using Histories = testing::Types<AVar_Nearest<double>, AVar_Nearest<bool>, AVar_Nearest<Vector3<double>>,
                                 AVar_Nearest<Quat<double>>, AVar_Nearest<QTransform<double>>, AVar_Linear<double>,
                                 AVar_Linear<int>, AVar_Linear<bool>, AVar_Linear<Vector3<double>>,
                                 AVar_Latest<int>, AVar_Latest<bool>, AVar_Latest<unsigned char>>;
TYPED_TEST_SUITE(AVarRoundTrip, Histories);

template <typename T>
T Sample(int i) {
  if constexpr (std::is_same_v<T, Vector3<double>>) return {i * 0.1, -i * 1.5, 3.0};
  if constexpr (std::is_same_v<T, Quat<double>>) return Quat<double>{0.1 * i, 0.2, 0.3, 1}.Normalize();
  if constexpr (std::is_same_v<T, QTransform<double>>) return {{i * 1.0, 2, 3}, Quat<double>{0.1 * i, 0, 0, 1}.Normalize()};
  if constexpr (std::is_same_v<T, bool>) return i % 3 == 0;
  if constexpr (!std::is_same_v<T, Vector3<double>> && !std::is_same_v<T, Quat<double>> &&
                !std::is_same_v<T, QTransform<double>> && !std::is_same_v<T, bool>) {
    return static_cast<T>(i * 7 % 251);
  }
}

TYPED_TEST(AVarRoundTrip, SaveThenLoadGivesTheSameRecords) {
  using T = decltype(TypeParam().defaultValue);
  TypeParam history;
  for (int i = 0; i < 50; ++i) history.Set(i / 30.0, Sample<T>(i));
  const Bytes block = Saved(history);
  TypeParam back;
  ASSERT_TRUE(back.Load(block.data(), block.size()));
  ASSERT_EQ(back.records.size(), history.records.size());
  EXPECT_EQ(Saved(back), block);
}

TEST(AVarLoad, WrongHeaderOrVersionIsIgnored) {
  AVar_Nearest<double> history;
  history.Set(5, 5);
  Bytes block = Cat({Header(16, 1), Doubles({1, 2})});
  block[0] = 12;  // header size
  EXPECT_FALSE(history.Load(block.data(), block.size()));
  block[0] = 16;
  block[8] = 101;  // version
  EXPECT_FALSE(history.Load(block.data(), block.size()));
  EXPECT_EQ(history.records.size(), 1u);
  EXPECT_EQ(history.Get(0), 5.0);
}

TEST(AVarLoad, WrongPayloadSizeGivesDefaultRecords) {
  AVar_Nearest<double> history;
  const Bytes block = Cat({Header(17, 2), Doubles({1, 2, 3, 4})});
  ASSERT_TRUE(history.Load(block.data(), block.size()));
  ASSERT_EQ(history.records.size(), 2u);
  EXPECT_EQ(history.records[1].time, 0.0);
  EXPECT_EQ(history.records[1].value, 0.0);
}

TEST(AVarLoad, CutShortOrHostileBlocksAreRefused) {
  AVar_Nearest<QTransform<double>> history;
  history.Set(1, {});
  const Bytes full = Cat({Header(64, 1), Doubles({3, 1, 2, 3, 0, 0, 0, 1})});
  for (std::size_t size = 0; size < full.size(); ++size) {
    EXPECT_FALSE(history.Load(full.data(), size)) << size;
  }
  const Bytes hostile = Header(0xFFFFFFC0u, 0x3FFFFFFFu);
  EXPECT_FALSE(history.Load(hostile.data(), hostile.size()));
  EXPECT_EQ(history.records.size(), 1u);
  EXPECT_EQ(history.records[0].time, 1.0);
}

}  // namespace
}  // namespace vuk::util
