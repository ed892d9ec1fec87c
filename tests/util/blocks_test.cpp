// The binary blocks that saved state travels in: chunk trees, compressed
// blocks, and base64 text for blocks kept in scene properties.

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "tests/util/hex.h"
#include "util/base64.h"
#include "util/compressedblock.h"
#include "util/datachunk.h"

namespace vuk::util {
namespace {

using testing_support::Hex;

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

Bytes Unpacked(const Bytes& block) {
  Bytes out;
  std::string error;
  EXPECT_EQ(CompressedBlock::Unpack(block, out, &error), CompressedBlock::Unpacked::kUnpacked) << error;
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

TEST(CompressedBlock, RandomAndDeepTreesRoundTripAndTextShrinks) {
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
  std::string text;
  for (int i = 0; i < 200; ++i) text += "<item id=\"" + std::to_string(i) + "\" label=\"Stiffness\">0.5</item>\n";
  EXPECT_LT(CompressedBlock::Pack(text).size(), text.size() * 7 / 10);
}

constexpr auto kPlain = CompressedBlock::Unpacked::kPlain;
constexpr auto kDamaged = CompressedBlock::Unpacked::kDamaged;

// Not a compressed block: passed on unchanged. Damaged: nothing, and a message.
TEST(CompressedBlock, RefusedAsPlainOrDamaged) {
  const std::pair<std::string, CompressedBlock::Unpacked> cases[] = {
      {"", kPlain}, {"3C5247542F3E", kPlain},                               // empty, text
      {"CA315300 65000000 01000000 01000000 4101000000", kPlain},           // wrong version
      {"CA315300 64000000 01010000 01000000", kPlain},                      // 257 symbols
      {kHeader + "02000000 03000000 6101000000 62", kDamaged},              // table cut short
      {kHeader + "02000000 09000000 6101000000 6202000000 06", kDamaged},   // stream cut short
      {kHeader + "00000000 05000000", kDamaged},                            // bytes but no symbol
      {kHeader + "01000000 FFFFFFFF 6101000000", kDamaged}};                // four gigabytes in 21 bytes
  for (const auto& [hex, kind] : cases) {
    const Bytes bytes = Hex(hex);
    Bytes out = {1, 2, 3};
    std::string error;
    EXPECT_EQ(CompressedBlock::Unpack(bytes, out, &error), kind) << hex;
    EXPECT_EQ(out, kind == kPlain ? bytes : Bytes()) << hex;
    EXPECT_TRUE(kind == kPlain || error.find("compressed block") != std::string::npos) << error;
  }
}

TEST(CompressedBlock, TrailingBytesAreIgnoredAndTheLimitIsTheCallersChoice) {
  EXPECT_EQ(Unpacked(Hex(kHeader + "02000000 03000000 6101000000 6202000000 06 FF")), (Bytes{'a', 'b', 'b'}));
  const Bytes block = CompressedBlock::Pack(std::string(1000, 'x'));
  Bytes out;
  EXPECT_EQ(CompressedBlock::Unpack(block.data(), block.size(), out, nullptr, 999), kDamaged);
  EXPECT_EQ(CompressedBlock::Unpack(block.data(), block.size(), out, nullptr, 1000),
            CompressedBlock::Unpacked::kUnpacked);
  EXPECT_EQ(out.size(), 1000u);
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
  const std::pair<const char*, const char*> cases[] = {{"Zm9v!", "character 4: '!'"},
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
