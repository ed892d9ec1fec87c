#include "util/datachunk.h"

#include <gtest/gtest.h>

#include <random>

#include "tests/util/hex.h"

namespace vuk::util {
namespace {

using testing_support::Hex;

Bytes Header(std::int32_t dataSize, std::int32_t childCount, std::int32_t nameLength) {
  Bytes out;
  ByteWriter writer(out);
  writer.Put(dataSize);
  writer.Put(childCount);
  writer.Put(nameLength);
  return out;
}

Bytes Cat(const std::vector<Bytes>& parts) {
  Bytes out;
  for (const Bytes& part : parts) out.insert(out.end(), part.begin(), part.end());
  return out;
}

Bytes Text(const std::string& text) { return Bytes(text.begin(), text.end()); }

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
  EXPECT_EQ(root.FindChild("k")->FindChild("x")->data, Bytes{0xFF});
  EXPECT_EQ(root.FindChild("missing"), nullptr);
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

void ExpectSameTree(const DataChunk& a, const DataChunk& b) {
  EXPECT_EQ(a.name, b.name);
  EXPECT_EQ(a.data, b.data);
  ASSERT_EQ(a.children.size(), b.children.size());
  for (std::size_t i = 0; i < a.children.size(); ++i) ExpectSameTree(a.children[i], b.children[i]);
}

TEST(DataChunk, RandomTreesRoundTrip) {
  std::mt19937 random(11);
  for (int round = 0; round < 100; ++round) {
    const DataChunk tree = RandomTree(random, 4);
    DataChunk back;
    ASSERT_TRUE(back.Read(tree.Flatten()));
    ExpectSameTree(tree, back);
  }
}

TEST(DataChunk, TrailingBytesAreNotPartOfTheChunkAndANameMayHave256Bytes) {
  DataChunk chunk;
  ASSERT_TRUE(chunk.Read(Cat({Header(1, 0, 1), Text("a"), {7}, {9, 9, 9}})));
  EXPECT_EQ(chunk.packed.size(), 14u);
  const std::string name(256, 'n');
  EXPECT_TRUE(chunk.Read(Cat({Header(0, 0, 256), Text(name)})));
  EXPECT_EQ(chunk.name, name);
}

TEST(DataChunk, BadBlocksAreRefusedWithWhereAndWhat) {
  const std::pair<Bytes, const char*> cases[] = {
      {{}, "byte 0: header cut short"},
      {Cat({Header(0, 0, 257), Bytes(257, 'n')}), "name length 257"},
      {Header(0, 0, -1), "name length -1"},
      {Header(-4, 0, 0), "negative data size"},
      {Header(0, -1, 0), "negative child count"},
      {Cat({Header(100, 0, 1), Text("a"), {1, 2}}), "run past the end"},
      {Cat({Header(0, 0x7FFFFFFF, 0), Bytes(100, 0)}), "can't fit"},
      {Cat({Header(0, 1, 1), Text("a"), Header(0, 0, 300)}), "byte 13: name length 300"},
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

}  // namespace
}  // namespace vuk::util
