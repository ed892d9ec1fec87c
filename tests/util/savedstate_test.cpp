// The binary blocks that saved state travels in: histories, chunk trees,
// compressed blocks, and base64 text for blocks kept in scene properties.

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <iterator>
#include <map>
#include <random>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "util/avar.h"
#include "util/base64.h"
#include "util/compressedblock.h"
#include "util/datachunk.h"

namespace vuk::util {
namespace {

using V = Vector3<double>;
using Q = Quat<double>;
using P = QTransform<double>;

// Golden bytes written as hex text: pairs of digits, blanks between groups
// only for the reader.
Bytes Hex(std::string text) {
  text.erase(std::remove_if(text.begin(), text.end(), [](unsigned char c) { return std::isspace(c); }), text.end());
  Bytes out;
  for (std::size_t i = 0; i + 1 < text.size(); i += 2) {
    out.push_back(static_cast<std::uint8_t>(std::stoul(text.substr(i, 2), nullptr, 16)));
  }
  return out;
}

// An independent model: a std::map from time to value, with the rules for the
// value between records written out again from scratch.

template <typename Var>
struct Model;

double Line(double a, double b, double t1, double t2, double t) { return (b - a) * (t - t1) / (t2 - t1) + a; }

template <typename T>
T ModelLinear(const T& a, const T& b, double t1, double t2, double t) {
  if constexpr (std::is_same_v<T, int>) {
    return static_cast<int>(std::trunc(Line(a, b, t1, t2, t)));
  } else if constexpr (std::is_same_v<T, bool>) {
    return Line(a ? 1 : 0, b ? 1 : 0, t1, t2, t) != 0;
  } else if constexpr (std::is_same_v<T, V>) {
    return V(Line(a.x, b.x, t1, t2, t), Line(a.y, b.y, t1, t2, t), Line(a.z, b.z, t1, t2, t));
  } else {
    return Line(a, b, t1, t2, t);
  }
}

template <typename T, template <typename> class Kind>
struct Model<Kind<T>> {
  std::map<double, T> records;
  T defaultValue;

  T Get(double t) const {
    if (records.empty()) return defaultValue;
    const auto after = records.lower_bound(t);
    if (after == records.end()) return std::prev(after)->second;  // no extrapolation
    if (after->first == t || after == records.begin()) return after->second;
    const auto before = std::prev(after);
    if constexpr (std::is_same_v<Kind<T>, AVar_Latest<T>>) {
      return before->second;
    } else if constexpr (std::is_same_v<Kind<T>, AVar_Nearest<T>>) {
      return after->first - t > t - before->first ? before->second : after->second;
    } else {
      return ModelLinear(before->second, after->second, before->first, after->first, t);
    }
  }

  std::int64_t FindNearest(double t) const {
    if (records.empty()) return -1;
    const auto after = records.lower_bound(t);
    const auto index = static_cast<std::int64_t>(std::distance(records.begin(), after));
    if (after == records.end()) return index - 1;
    if (after->first == t || after == records.begin()) return index;
    return after->first - t <= t - std::prev(after)->first ? index : index - 1;
  }
};

template <typename T>
T RandomValue(std::mt19937& rng) {
  auto small = [&rng] { return static_cast<double>(static_cast<int>(rng() % 2001) - 1000) / 8; };
  if constexpr (std::is_same_v<T, bool>) {
    return rng() % 2 == 0;
  } else if constexpr (std::is_same_v<T, int> || std::is_same_v<T, unsigned char>) {
    return static_cast<T>(static_cast<int>(rng() % 2001) - 1000);
  } else if constexpr (std::is_same_v<T, V>) {
    return V(small(), small(), small());
  } else if constexpr (std::is_same_v<T, Q>) {
    return Q(small(), small(), small(), small());
  } else if constexpr (std::is_same_v<T, P>) {
    return P(V(small(), small(), small()), Q(small(), small(), small(), small()));
  } else {
    return small();
  }
}

using AllHistories = testing::Types<AVar_Nearest<double>, AVar_Nearest<bool>, AVar_Nearest<V>, AVar_Nearest<Q>,
                                    AVar_Nearest<P>, AVar_Linear<double>, AVar_Linear<int>, AVar_Linear<bool>,
                                    AVar_Linear<V>, AVar_Latest<int>, AVar_Latest<bool>, AVar_Latest<unsigned char>>;

template <typename Var>
class AVarKinds : public testing::Test {};
TYPED_TEST_SUITE(AVarKinds, AllHistories);

template <typename Var, typename Records>
void ExpectSameRecords(const Var& history, const Records& records) {
  ASSERT_EQ(history.records.size(), records.size());
  std::size_t i = 0;
  for (const auto& [time, value] : records) {
    ASSERT_EQ(history.records[i].time, time) << "record " << i;
    ASSERT_TRUE(history.records[i].value == value) << "record " << i;
    ++i;
  }
}

// Random operation sequences with a fixed seed: appends at the end (the
// per-frame case), sets inside and on existing times, rewinds, and reads at,
// between, before and after the records. Times are mostly on a 1/64 s grid
// so that exact midpoints occur, with some arbitrary times and neighbours of
// record times that differ in the last bit.
TYPED_TEST(AVarKinds, RandomOperationsMatchTheModel) {
  using T = typename TypeParam::Value;
  std::mt19937 rng(20240611);
  TypeParam history;
  EXPECT_TRUE(history.defaultValue == T{});  // zero, or the identity rotation
  Model<TypeParam> model;
  history.defaultValue = model.defaultValue = RandomValue<T>(rng);  // a tool's start value
  double end = 0;
  auto existingTime = [&] { return std::next(model.records.begin(), rng() % model.records.size())->first; };
  auto anyTime = [&] {
    switch (rng() % 4) {
      case 0:
        return static_cast<double>(rng() % 1000000) / 1000000 * (end + 2) - 1;
      case 1:
        return model.records.empty() ? 0.0 : std::nextafter(existingTime(), rng() % 2 ? 1e300 : -1e300);
      default:
        return static_cast<double>(static_cast<int>(rng() % static_cast<unsigned>(end * 64 + 65)) - 32) / 64;
    }
  };
  for (int step = 0; step < 6000; ++step) {
    const unsigned op = rng() % 100;
    const T value = RandomValue<T>(rng);
    if (op < 35) {
      end += static_cast<double>(1 + rng() % 3) / 32;
      T* stored = history.Set(end, value);
      ASSERT_EQ(stored, &history.records.back().value);
      ASSERT_TRUE(*stored == value);
      model.records[end] = value;
    } else if (op < 58) {
      const double t = op < 50 || model.records.empty() ? anyTime() : existingTime();
      ASSERT_TRUE(*history.Set(t, value) == value);
      model.records[t] = value;
      end = std::max(end, t);
    } else if (op < 60) {
      const double t = !model.records.empty() && rng() % 2 ? existingTime() : anyTime();
      history.RemoveFrom(t);
      model.records.erase(model.records.lower_bound(t), model.records.end());
      end = model.records.empty() ? 0 : model.records.rbegin()->first;
    } else {
      double t = anyTime();
      if (op < 70 && model.records.size() >= 2) {  // exactly between two neighbours
        const auto first = model.records.lower_bound(existingTime());
        if (std::next(first) != model.records.end()) t = (first->first + std::next(first)->first) / 2;
      } else if (op < 75 && !model.records.empty()) {
        t = existingTime();
      }
      ASSERT_EQ(history.FindNearest(t), model.FindNearest(t)) << "step " << step << " t " << t;
      ASSERT_TRUE(history.Get(t) == model.Get(t)) << "step " << step << " t " << t;
    }
    ASSERT_EQ(history.records.size(), model.records.size()) << "step " << step;
  }
  ExpectSameRecords(history, model.records);
}

// What the random sequences reach only by chance: lines in doubles between
// extreme ints, the smallest time after a false record, and a damaged
// history whose records share a time or run backward, where the line must
// stay defined for the sanitizer.
TEST(AVar, LinesAtTheExtremes) {
  AVar_Linear<int> ints;
  ints.records = {{0.0, 2147483647}, {1.0, -2147483647 - 1}};
  EXPECT_EQ(ints.Get(0.5), 0);  // -0.5 truncated toward zero
  AVar_Linear<bool> flags;
  flags.records = {{0.0, false}, {1.0, true}};
  EXPECT_FALSE(flags.Get(0.0));
  EXPECT_TRUE(flags.Get(1e-300));
  AVar_Linear<int> damaged;
  damaged.records = {{1.0, 5}, {1.0, 7}, {0.5, 9}};
  for (const double t : {1.25, 0.75, 0.0}) (void)damaged.Get(t);
}

// During a take a history has room for the take from where it is cut back,
// and when it must grow it grows by the take: appending never moves it.
TEST(AVar, ATakeHorizonMakesRoomWhereTheTakeBeginsAndWhereItGrows) {
  struct Case {
    std::size_t before;  // records before the cut
    double cutAt;
    std::size_t kept;
  };
  for (const Case& c : {Case{0, 0.0, 0}, Case{40, 1.0, 30}, Case{40, 9.0, 40}}) {
    AVar_Nearest<Vector3<double>> history;
    for (std::size_t i = 0; i < c.before; ++i) history.Set(static_cast<double>(i) / 30, {});
    SetHistoryHorizon(1000);
    history.RemoveFrom(c.cutAt);
    ASSERT_EQ(history.records.size(), c.kept);
    EXPECT_GE(history.records.capacity(), c.kept + 1000);
    history.Set(100.0, {});
    const auto* records = history.records.data();
    for (int i = 1; i < 1000; ++i) history.Set(100.0 + i, {});
    EXPECT_EQ(history.records.data(), records) << c.before;
    SetHistoryHorizon(0);
  }
  AVar_Latest<int> full;
  full.records.resize(10);
  full.records.shrink_to_fit();
  full.records.back().time = 1;
  SetHistoryHorizon(500);
  full.Set(2.0, 1);
  EXPECT_GE(full.records.capacity(), 510u);
  SetHistoryHorizon(0);
  AVar_Latest<int> idle;  // outside a take nothing is reserved
  idle.RemoveFrom(0.0);
  EXPECT_EQ(idle.records.capacity(), 0u);
}

template <typename Var>
Bytes Saved(const Var& history) {
  const std::uint32_t size = history.GetSaveSize();
  Bytes block(size + 8, 0xEE);  // eight bytes of guard after the block
  EXPECT_EQ(history.Save(block.data(), size), size);
  EXPECT_EQ(Bytes(block.begin() + size, block.end()), Bytes(8, 0xEE)) << "written past the block";
  block.resize(size);
  return block;
}

template <typename Var>
Bytes SavedOf(std::initializer_list<AVarRecord<typename Var::Value>> records) {
  Var history;
  for (const auto& record : records) history.Set(record.time, record.value);
  return Saved(history);
}

// Header size, payload, version and count; then the records, small values
// first in eight bytes padded with zeros, a rotation x, y, z, then w, a pose
// its translation, then its rotation.
TEST(AVarSave, WritesTheExactBlock) {
  const std::pair<Bytes, const char*> cases[] = {
      {SavedOf<AVar_Nearest<double>>({}), "10000000 00000000 64000000 00000000"},
      {SavedOf<AVar_Linear<double>>({{0.5, 2.0}, {1.0, -1.0}}),
       "10000000 20000000 64000000 02000000 000000000000E03F 0000000000000040 000000000000F03F 000000000000F0BF"},
      {SavedOf<AVar_Latest<int>>({{1.0, -2}, {2.0, 0x01020304}}),
       "10000000 20000000 64000000 02000000 000000000000F03F FEFFFFFF00000000 0000000000000040 0403020100000000"},
      {SavedOf<AVar_Nearest<bool>>({{2.0, true}, {3.0, false}}),
       "10000000 20000000 64000000 02000000 0000000000000040 0100000000000000 0000000000000840 0000000000000000"},
      {SavedOf<AVar_Latest<unsigned char>>({{0.0, 200}}),
       "10000000 10000000 64000000 01000000 0000000000000000 C800000000000000"},
      {SavedOf<AVar_Linear<V>>({{1.0, V(2, 3, 4)}}),
       "10000000 20000000 64000000 01000000 000000000000F03F 0000000000000040 0000000000000840 0000000000001040"},
      {SavedOf<AVar_Nearest<Q>>({{0.5, Q(-1, 0.25, 0.75, 1.5)}}),
       "10000000 28000000 64000000 01000000 000000000000E03F "
       "000000000000F0BF 000000000000D03F 000000000000E83F 000000000000F83F"},
      {SavedOf<AVar_Nearest<P>>({{3.0, P(V(1, 2, 3), Q(-1, 0.25, 0.75, 1.5))}}),
       "10000000 40000000 64000000 01000000 0000000000000840 000000000000F03F 0000000000000040 "
       "0000000000000840 000000000000F0BF 000000000000D03F 000000000000E83F 000000000000F83F"}};
  for (const auto& [saved, hex] : cases) EXPECT_EQ(saved, Hex(hex)) << hex;
}

// Below twelve bytes even the header start has no room: nothing is written.
TEST(AVarSave, TooLittleRoomWritesTheFirstTwelveBytesAndAnswersTheSize) {
  AVar_Nearest<double> history;
  history.Set(0, 1);
  history.Set(1, 2);
  for (std::uint32_t capacity : {0u, 11u, 12u, 47u}) {
    Bytes block(64, 0xEE);
    EXPECT_EQ(history.Save(capacity ? block.data() : nullptr, capacity), 48u);
    const std::string header = capacity < 12 ? "" : "100000002000000064000000";
    EXPECT_EQ(block, Hex(header + std::string(128 - header.size(), 'E'))) << capacity;
  }
}

// Two double records, 1 -> 2 and 3 -> 4; then the same the other way round.
const std::string kTwoRecords = "000000000000F03F 0000000000000040 0000000000000840 0000000000001040";
const std::string kTwoRecordsSwapped = "0000000000000840 0000000000001040 000000000000F03F 0000000000000040";

enum Loaded { kRefused, kRead, kSwapped, kDefaults, kNothing, kNotTried };

// Both forms, into a history holding 5 -> 5. Refused leaves it as it was. A
// payload field that disagrees with the count gives count default records,
// unsized only when they fit in the payload. The unsized form is not tried
// where the payload claims more than the block holds.
TEST(AVarLoad, ValidDamagedAndHostileHeaders) {
  struct Case {
    std::string block;
    Loaded sized, unsized;
  };
  std::vector<Case> cases = {
      {"10000000 20000000 64000000 02000000" + kTwoRecords + "ABABAB", kRead, kRead},
      {"10000000 20000000 64000000 02000000" + kTwoRecordsSwapped, kSwapped, kSwapped},  // order isn't checked
      {"10000000 00000000 64000000 00000000", kNothing, kNothing},
      {"0C000000 20000000 64000000 02000000" + kTwoRecords, kRefused, kRefused},  // header size 12
      {"10000000 20000000 65000000 02000000" + kTwoRecords, kRefused, kRefused},  // version 101
      // Counts that can't fit: the first wraps to a payload of 32 in 32 bits.
      {"10000000 F0FFFFFF 64000000 FFFFFFFF" + kTwoRecords, kRefused, kNotTried},
      {"10000000 00000000 64000000 FFFFFFFF" + kTwoRecords, kRefused, kRefused},
      {"10000000 20000000 64000000 02000010" + kTwoRecords, kRefused, kRefused},
      {"10000000 11000000 64000000 02000000" + kTwoRecords, kDefaults, kRefused},
      {"10000000 21000000 64000000 02000000" + kTwoRecords, kDefaults, kNotTried},
      {"10000000 28000000 64000000 02000000" + kTwoRecords + "0000000000000000", kDefaults, kDefaults}};
  // Cut short anywhere. Each block is a copy of exactly its length, so a read past it is caught by the sanitizer.
  std::string full = "10000000200000006400000002000000" + kTwoRecords;
  full.erase(std::remove(full.begin(), full.end(), ' '), full.end());
  for (std::size_t digits = 0; digits < full.size(); digits += 2) {
    cases.push_back({full.substr(0, digits), kRefused, kNotTried});
  }
  const std::map<Loaded, std::vector<std::pair<double, double>>> records = {
      {kRefused, {{5, 5}}}, {kRead, {{1, 2}, {3, 4}}}, {kSwapped, {{3, 4}, {1, 2}}}, {kDefaults, {{0, 0}, {0, 0}}},
      {kNothing, {}}};
  for (const auto& c : cases) {
    const Bytes block = Hex(c.block);
    for (const bool sized : {true, false}) {
      const Loaded expected = sized ? c.sized : c.unsized;
      if (expected == kNotTried) continue;
      SCOPED_TRACE(c.block + (sized ? " sized" : " unsized"));
      AVar_Nearest<double> history;
      history.Set(5, 5);
      EXPECT_EQ(sized ? history.Load(block.data(), block.size()) : history.Load(block.data()), expected != kRefused);
      ExpectSameRecords(history, records.at(expected));
    }
  }
  // Default records of a rotation are identities.
  AVar_Nearest<Q> rotations;
  const Bytes block = Hex("10000000 00000000 64000000 01000000" + std::string(80, '1'));
  ASSERT_TRUE(rotations.Load(block.data(), block.size()));
  ExpectSameRecords(rotations, std::map<double, Q>{{0.0, Q()}});
}

TEST(AVarLoad, PaddingIsIgnored) {
  const Bytes padded = Hex("10000000 10000000 64000000 01000000 000000000000F03F 02AABBCC01020304");
  AVar_Latest<int> ints;
  ASSERT_TRUE(ints.Load(padded.data(), padded.size()));
  EXPECT_EQ(ints.Get(1.0), static_cast<int>(0xCCBBAA02u));
  EXPECT_EQ(Saved(ints), Hex("10000000 10000000 64000000 01000000 000000000000F03F 02AABBCC00000000"));
}

TYPED_TEST(AVarKinds, SaveThenLoadGivesTheSameRecords) {
  using T = typename TypeParam::Value;
  std::mt19937 rng(99);
  TypeParam history;
  std::map<double, T> expected;
  for (int i = 0; i < 50; ++i) {
    const double t = i / 30.0 + (rng() % 2 ? 1e-9 : 0);
    expected[t] = *history.Set(t, RandomValue<T>(rng));
  }
  const Bytes block = Saved(history);
  for (bool sized : {true, false}) {
    TypeParam back;
    back.Set(-5.0, RandomValue<T>(rng));
    ASSERT_TRUE(sized ? back.Load(block.data(), block.size()) : back.Load(block.data()));
    ExpectSameRecords(back, expected);
    EXPECT_EQ(Saved(back), block);
  }
}

Bytes Header(std::int32_t dataSize, std::int32_t childCount, std::int32_t nameLength) {
  Bytes out;
  ByteWriter writer(out);
  for (const std::int32_t field : {dataSize, childCount, nameLength}) writer.Put(field);
  return out;
}

Bytes Cat(const std::vector<Bytes>& parts) {
  Bytes out;
  for (const Bytes& part : parts) out.insert(out.end(), part.begin(), part.end());
  return out;
}

TEST(DataChunk, FlatFormIsExact) {
  DataChunk root("Car", {});
  root.AddChild("v", Bytes{0x01, 0x02});
  root.AddChild("k").AddChild("x", Bytes{0xFF});
  // Data size, child count, name length, name, data; then the children.
  const Bytes expected = Hex("00000000 02000000 03000000 436172"
                             "02000000 00000000 01000000 76 0102"
                             "00000000 01000000 01000000 6B"
                             "01000000 00000000 01000000 78 FF");
  EXPECT_EQ(root.Flatten(), expected);
  EXPECT_EQ(root.FlatSize(), expected.size());
}

DataChunk RandomTree(std::mt19937& random, int depth) {
  DataChunk chunk;
  chunk.name.resize(random() % 20);
  for (char& c : chunk.name) c = static_cast<char>(random());
  chunk.data.resize(random() % 40);
  for (auto& byte : chunk.data) byte = static_cast<std::uint8_t>(random());
  const int children = depth > 0 ? static_cast<int>(random() % 4) : 0;
  for (int i = 0; i < children; ++i) chunk.children.push_back(RandomTree(random, depth - 1));
  return chunk;
}

// The flat form gives every size, so a tree that flattens to the same bytes is the same tree.
TEST(DataChunk, RandomTreesRoundTrip) {
  std::mt19937 random(11);
  for (int round = 0; round < 100; ++round) {
    const Bytes flat = RandomTree(random, 4).Flatten();
    DataChunk back;
    ASSERT_TRUE(back.Read(flat));
    EXPECT_EQ(back.Flatten(), flat);
    EXPECT_EQ(back.packed, flat);
  }
}

TEST(DataChunk, TrailingBytesAreNotPartOfTheChunkAndANameMayHave256Bytes) {
  DataChunk chunk;
  ASSERT_TRUE(chunk.Read(Cat({Header(1, 0, 1), {'a', 7, 9, 9, 9}})));
  EXPECT_EQ(chunk.packed.size(), 14u);
  const std::string name(256, 'n');
  EXPECT_TRUE(chunk.Read(Cat({Header(0, 0, 256), Bytes(name.begin(), name.end())})));
  EXPECT_EQ(chunk.name, name);
}

TEST(DataChunk, BadBlocksAreRefusedWithWhereAndWhat) {
  const std::pair<Bytes, const char*> cases[] = {
      {{}, "byte 0: header cut short"},
      {Cat({Header(0, 0, 257), Bytes(257, 'n')}), "name length 257"},
      {Header(-4, 0, 0), "negative data size"},
      {Header(0, -1, 0), "negative child count"},
      {Cat({Header(100, 0, 1), {'a', 1, 2}}), "run past the end"},
      {Cat({Header(0, 0x7FFFFFFF, 0), Bytes(100, 0)}), "can't fit"},
      {Cat({Header(0, 1, 1), {'a'}, Header(0, 0, 300)}), "byte 13: name length 300"},
      // Deep nesting is refused rather than overflowing the stack.
      {Cat(std::vector<Bytes>(100000, Header(0, 1, 0))), "nested deeper"}};
  for (const auto& [block, message] : cases) {
    DataChunk chunk("old", {1});
    std::string error;
    EXPECT_FALSE(chunk.Read(block, &error));
    EXPECT_NE(error.find(message), std::string::npos) << error;
    EXPECT_TRUE(chunk.name.empty() && chunk.data.empty() && chunk.children.empty() && chunk.packed.empty());
  }
}

// Magic, version, symbol count and length; then per symbol its byte and its count.
const std::string kHeader = "CA315300 64000000 ";

constexpr auto kUnpacked = CompressedBlock::Unpacked::kUnpacked;
constexpr auto kPlain = CompressedBlock::Unpacked::kPlain;
constexpr auto kDamaged = CompressedBlock::Unpacked::kDamaged;

Bytes Unpacked(const Bytes& block) {
  Bytes out;
  std::string error;
  EXPECT_EQ(CompressedBlock::Unpack(block, out, &error), kUnpacked) << error;
  return out;
}

// Blocks worked out by hand from the counting, ordering and tree-building rules.
TEST(CompressedBlock, PacksToExactBytesAndBack) {
  const std::pair<std::string, const char*> cases[] = {
      // Nothing to code: an empty table and no stream.
      {"", "00000000 00000000"},
      // One symbol: the root is a leaf and no bits are written.
      {"aaaa", "01000000 04000000 6104000000"},
      // a(1) b(2): a is the first child (0), b the second (1); bits 0 1 1.
      {"abb", "02000000 03000000 6101000000 6202000000 06"},
      // Equal counts keep the 255-to-0 order: c b a. (c,b) pair first, the
      // parent goes after a; a = 0, c = 10, b = 11; bits 0 11 10.
      {"abc", "03000000 03000000 6301000000 6201000000 6101000000 0E"},
      // b(1) a(1) c(2) d(5): the parent (2) goes after c, the next (4) before
      // d. d = 1, c = 00, b = 010, a = 011: fifteen bits over two bytes.
      {"abccddddd", "04000000 09000000 6201000000 6101000000 6302000000 6405000000 167C"}};
  for (const auto& [input, hex] : cases) {
    const Bytes block = Hex(kHeader + hex);
    EXPECT_EQ(CompressedBlock::Pack(input), block);
    EXPECT_EQ(Unpacked(block), Bytes(input.begin(), input.end()));
  }
}

TEST(CompressedBlock, RandomAndDeepTreesRoundTrip) {
  std::mt19937 random(7);
  for (int round = 0; round < 200; ++round) {
    // Narrow alphabets and skewed counts make deep, lopsided trees.
    const unsigned alphabet = 1 + random() % 256;
    Bytes input(random() % 3000);
    for (auto& byte : input) {
      const unsigned r = random() % alphabet;
      byte = static_cast<std::uint8_t>(random() % 4 == 0 ? r : r / 7);
    }
    EXPECT_EQ(Unpacked(CompressedBlock::Pack(input)), input) << "round " << round;
  }
  // Fibonacci counts make the deepest tree for their total.
  Bytes input;
  for (std::uint32_t symbol = 0, a = 1, b = 1; symbol < 20; ++symbol, b += a, a = b - a) {
    input.insert(input.end(), a, static_cast<std::uint8_t>(symbol));
  }
  EXPECT_EQ(Unpacked(CompressedBlock::Pack(input)), input);
}

// Not a compressed block: passed on unchanged. Damaged: nothing, and a message.
TEST(CompressedBlock, RefusedAsPlainOrDamaged) {
  const std::pair<std::string, CompressedBlock::Unpacked> cases[] = {
      {"", kPlain}, {"3C5247542F3E", kPlain},                               // empty, text
      {"CA315300 65000000 01000000 01000000 4101000000", kPlain},           // wrong version
      {"CA315300 64000000 01010000 01000000", kPlain},                      // 257 symbols
      {kHeader + "02000000 03000000 6101000000 62", kDamaged},              // table cut short
      {kHeader + "02000000 09000000 6101000000 6202000000 06", kDamaged},   // stream cut short
      {kHeader + "00000000 05000000", kDamaged},                            // bytes but no symbol
      {kHeader + "01000000 FFFFFFFF 6101000000", kDamaged},                 // four gigabytes in 21 bytes
      {kHeader + "02000000 10000000 6101000000 6202000000 06FF", kDamaged}, // counts of 3 for 16 claimed
      {kHeader + "02000000 10000000 6108000000 6208000000 06", kDamaged}};  // 16 bits of code in 8
  for (const auto& [hex, kind] : cases) {
    const Bytes bytes = Hex(hex);
    Bytes out = {1, 2, 3};
    std::string error;
    EXPECT_EQ(CompressedBlock::Unpack(bytes, out, &error), kind) << hex;
    EXPECT_EQ(out, kind == kPlain ? bytes : Bytes()) << hex;
    EXPECT_TRUE(kind == kPlain || error.find("compressed block") != std::string::npos) << error;
  }
}

// Long streams are decoded several codes at a time; a stream cut short is
// still found out, however little is missing.
TEST(CompressedBlock, ALongStreamCutShortIsDamaged) {
  std::mt19937 random(11);
  Bytes input(20000);
  for (auto& byte : input) byte = static_cast<std::uint8_t>("ABCDEFGHabcdefgh0123+/="[random() % 23]);
  const Bytes block = CompressedBlock::Pack(input);
  for (std::size_t cut : {std::size_t{1}, std::size_t{2}, std::size_t{9}, block.size() / 2}) {
    Bytes out;
    std::string error;
    EXPECT_EQ(CompressedBlock::Unpack(block.data(), block.size() - cut, out, &error), kDamaged) << cut;
    EXPECT_TRUE(out.empty()) << cut;
    EXPECT_NE(error.find("code stream ends"), std::string::npos) << error;
  }
  EXPECT_EQ(Unpacked(block), input);
}

// A claim is weighed against the block before anything is allocated: with
// two or more symbols the code holds at most eight bytes a byte, and a caller
// whose content is never a run of one byte holds a one-symbol block to that.
TEST(CompressedBlock, ClaimsBeyondTheCodeAreRefused) {
  // A one-symbol block is 21 bytes long, whatever it claims.
  const std::pair<std::string, CompressedBlock::Unpacked> cases[] = {
      {std::string(168, 'a'), kUnpacked}, {std::string(169, 'a'), kDamaged},
      {std::string(std::size_t{1} << 24, 'a'), kDamaged}, {"<a b=\"c\"/>", kUnpacked}};
  for (const auto& [input, kind] : cases) {
    const Bytes block = CompressedBlock::Pack(input);
    Bytes out;
    std::string error;
    EXPECT_EQ(CompressedBlock::Unpack(block.data(), block.size(), out, &error,
                                      CompressedBlock::MostUnpackedFromCode(block.size())),
              kind)
        << input.size();
    EXPECT_EQ(out, kind == kDamaged ? Bytes() : Bytes(input.begin(), input.end()));
  }
}

TEST(CompressedBlock, TrailingBytesAreIgnoredAndTheLimitIsTheCallersChoice) {
  EXPECT_EQ(Unpacked(Hex(kHeader + "02000000 03000000 6101000000 6202000000 06 FF")), (Bytes{'a', 'b', 'b'}));
  const Bytes block = CompressedBlock::Pack(std::string(1000, 'x'));
  Bytes out;
  EXPECT_EQ(CompressedBlock::Unpack(block.data(), block.size(), out, nullptr, 999), kDamaged);
  EXPECT_EQ(CompressedBlock::Unpack(block.data(), block.size(), out, nullptr, 1000), kUnpacked);
}

// The published test vectors of the encoding, and 0.1 as the little-endian
// bytes in which doubles travel in profiles. Decoding them is decoding what
// Encode wrote, which random bytes cover.
TEST(Base64, EncodesTheStandardVectorsAndRandomBytesRoundTrip) {
  const std::pair<std::string, const char*> vectors[] = {
      {"", ""},         {"f", "Zg=="},         {"fo", "Zm8="},         {"foo", "Zm9v"},
      {"foob", "Zm9vYg=="}, {"fooba", "Zm9vYmE="}, {"foobar", "Zm9vYmFy"}, {"\x9A\x99\x99\x99\x99\x99\xB9?", "mpmZmZmZuT8="}};
  for (const auto& [plain, encoded] : vectors) EXPECT_EQ(Base64::Encode(Bytes(plain.begin(), plain.end())), encoded);
  std::mt19937 random(3);
  for (int round = 0; round < 300; ++round) {
    Bytes bytes(random() % 100);
    for (auto& byte : bytes) byte = static_cast<std::uint8_t>(random());
    Bytes back;
    ASSERT_TRUE(Base64::Decode(Base64::Encode(bytes), back));
    EXPECT_EQ(back, bytes);
  }
}

TEST(Base64, BlanksAndMissingPaddingAreAcceptedAndBadTextSaysWhere) {
  Bytes back;
  ASSERT_TRUE(Base64::Decode("\n\tZm9v\r\n YmE\n", back));
  EXPECT_EQ(std::string(back.begin(), back.end()), "fooba");
  // A bad character in any place of a group of four, where whole groups are
  // decoded two characters at a time.
  const std::pair<const char*, const char*> cases[] = {{"Zm9v!", "character 4: '!'"},
                                                       {"Zm9vY!Fy", "character 5: '!'"},
                                                       {"Zm9vYmF\x80", "character 7: '\x80'"},
                                                       {"Zg==Zg==", "character 4: data after the padding"},
                                                       {"Zm9vY", "lone character"}};
  for (const auto& [text, message] : cases) {
    std::string error;
    EXPECT_FALSE(Base64::Decode(text, back, &error));
    EXPECT_TRUE(back.empty());
    EXPECT_NE(error.find(message), std::string::npos) << error;
  }
}

}  // namespace
}  // namespace vuk::util
