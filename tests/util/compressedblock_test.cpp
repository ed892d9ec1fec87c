#include "util/compressedblock.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace vuk::util {
namespace {

const Bytes kHeaderPrefix = {0xCA, 0x31, 0x53, 0x00, 0x64, 0x00, 0x00, 0x00};

Bytes Block(std::uint32_t symbols, std::uint32_t length, const Bytes& rest) {
  Bytes block = kHeaderPrefix;
  ByteWriter writer(block);
  writer.Put(symbols);
  writer.Put(length);
  block.insert(block.end(), rest.begin(), rest.end());
  return block;
}

Bytes Unpacked(const Bytes& block) {
  Bytes out;
  std::string error;
  EXPECT_EQ(CompressedBlock::Unpack(block, out, &error), CompressedBlock::Unpacked::kUnpacked) << error;
  return out;
}

// Blocks worked out by hand from the counting, ordering and tree-building rules.
struct HandWorked {
  const char* input;
  Bytes block;
};

class CompressedBlockByHand : public testing::TestWithParam<HandWorked> {};

TEST_P(CompressedBlockByHand, PacksToExactBytesAndBack) {
  const HandWorked& sample = GetParam();
  const std::string input = sample.input;
  EXPECT_EQ(CompressedBlock::Pack(input), sample.block);
  const Bytes back = Unpacked(sample.block);
  EXPECT_EQ(std::string(back.begin(), back.end()), input);
}

INSTANTIATE_TEST_SUITE_P(Samples, CompressedBlockByHand,
                         testing::Values(
                             // Nothing to code: an empty table and no stream.
                             HandWorked{"", Block(0, 0, {})},
                             // One symbol: the root is a leaf and no bits are written.
                             HandWorked{"aaaa", Block(1, 4, {0x61, 4, 0, 0, 0})},
                             // a(1) b(2): a is the first child (0), b the second (1); bits 0 1 1.
                             HandWorked{"abb", Block(2, 3, {0x61, 1, 0, 0, 0, 0x62, 2, 0, 0, 0, 0x06})},
                             // Equal counts keep the 255-to-0 order: c b a. (c,b) pair first, the
                             // parent goes after a; a = 0, c = 10, b = 11; bits 0 11 10.
                             HandWorked{"abc",
                                        Block(3, 3, {0x63, 1, 0, 0, 0, 0x62, 1, 0, 0, 0, 0x61, 1, 0, 0, 0, 0x0E})},
                             // b(1) a(1) c(2) d(5): the parent (2) goes after c, the next (4)
                             // before d. d = 1, c = 00, b = 010, a = 011: fifteen bits over two bytes.
                             HandWorked{"abccddddd", Block(4, 9, {0x62, 1, 0, 0, 0,    0x61, 1, 0, 0, 0,    0x63,
                                                                  2,    0, 0, 0, 0x64, 5,    0, 0, 0, 0x16, 0x7C})}));

TEST(CompressedBlock, RandomAndDeepTreesRoundTripAndTextShrinks) {
  std::mt19937 random(7);
  for (int round = 0; round < 200; ++round) {
    const std::size_t size = random() % 3000;
    // Narrow alphabets and skewed counts make deep, lopsided trees.
    const unsigned alphabet = 1 + random() % 256;
    Bytes input(size);
    for (auto& byte : input) {
      const unsigned r = random() % alphabet;
      byte = static_cast<std::uint8_t>(random() % 4 == 0 ? r : r / 7);
    }
    EXPECT_EQ(Unpacked(CompressedBlock::Pack(input)), input) << "round " << round;
  }
  // Fibonacci counts make the deepest tree for their total.
  Bytes input;
  std::uint32_t a = 1, b = 1;
  for (int symbol = 0; symbol < 20; ++symbol) {
    input.insert(input.end(), a, static_cast<std::uint8_t>(symbol));
    const std::uint32_t next = a + b;
    a = b;
    b = next;
  }
  EXPECT_EQ(Unpacked(CompressedBlock::Pack(input)), input);
  std::string text;
  for (int i = 0; i < 200; ++i) text += "<item id=\"" + std::to_string(i) + "\" label=\"Stiffness\">0.5</item>\n";
  EXPECT_LT(CompressedBlock::Pack(text).size(), text.size() * 7 / 10);
}

struct NotABlock {
  const char* why;
  Bytes bytes;
};

class CompressedBlockPlain : public testing::TestWithParam<NotABlock> {};

TEST_P(CompressedBlockPlain, IsReturnedUnchanged) {
  Bytes out;
  EXPECT_EQ(CompressedBlock::Unpack(GetParam().bytes, out), CompressedBlock::Unpacked::kPlain);
  EXPECT_EQ(out, GetParam().bytes);
}

INSTANTIATE_TEST_SUITE_P(Samples, CompressedBlockPlain,
                         testing::Values(NotABlock{"empty", {}}, NotABlock{"short", {0xCA, 0x31, 0x53}},
                                         NotABlock{"wrong magic", {0xCB, 0x31, 0x53, 0, 0x64, 0,    0, 0, 1, 0, 0,
                                                                   0,    1,    0,    0, 0,    0x41, 1, 0, 0, 0}},
                                         NotABlock{"wrong version", {0xCA, 0x31, 0x53, 0, 0x65, 0,    0, 0, 1, 0, 0,
                                                                     0,    1,    0,    0, 0,    0x41, 1, 0, 0, 0}},
                                         NotABlock{"257 symbols",
                                                   {0xCA, 0x31, 0x53, 0, 0x64, 0, 0, 0, 1, 1, 0, 0, 1, 0, 0, 0}},
                                         NotABlock{"text", {'<', 'R', 'G', 'T', '/', '>'}}));

struct Damaged {
  const char* why;
  Bytes block;
};

class CompressedBlockDamaged : public testing::TestWithParam<Damaged> {};

TEST_P(CompressedBlockDamaged, FailsWithAMessage) {
  Bytes out = {1, 2, 3};
  std::string error;
  EXPECT_EQ(CompressedBlock::Unpack(GetParam().block, out, &error), CompressedBlock::Unpacked::kDamaged);
  EXPECT_TRUE(out.empty());
  EXPECT_NE(error.find("compressed block"), std::string::npos) << error;
}

INSTANTIATE_TEST_SUITE_P(Samples, CompressedBlockDamaged,
                         testing::Values(Damaged{"table cut short", Block(2, 3, {0x61, 1, 0, 0, 0, 0x62})},
                                         Damaged{"stream cut short",
                                                 Block(2, 9, {0x61, 1, 0, 0, 0, 0x62, 2, 0, 0, 0, 0x06})},
                                         Damaged{"no stream at all", Block(2, 3, {0x61, 1, 0, 0, 0, 0x62, 2, 0, 0, 0})},
                                         Damaged{"bytes but no symbol", Block(0, 5, {})},
                                         // A one-symbol block may claim any length in 21 bytes.
                                         Damaged{"four gigabytes claimed", Block(1, 0xFFFFFFFFu, {0x61, 1, 0, 0, 0})}));

TEST(CompressedBlock, TrailingBytesAreIgnoredAndTheLimitIsTheCallersChoice) {
  Bytes trailing = CompressedBlock::Pack(std::string("abb"));
  trailing.push_back(0xFF);
  EXPECT_EQ(Unpacked(trailing), (Bytes{'a', 'b', 'b'}));
  const Bytes block = CompressedBlock::Pack(std::string(1000, 'x'));
  Bytes out;
  EXPECT_EQ(CompressedBlock::Unpack(block.data(), block.size(), out, nullptr, 999),
            CompressedBlock::Unpacked::kDamaged);
  EXPECT_EQ(CompressedBlock::Unpack(block.data(), block.size(), out, nullptr, 1000),
            CompressedBlock::Unpacked::kUnpacked);
  EXPECT_EQ(out.size(), 1000u);
}

}  // namespace
}  // namespace vuk::util
