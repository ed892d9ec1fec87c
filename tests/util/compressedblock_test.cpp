#include "util/compressedblock.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "tests/util/hex.h"

namespace vuk::util {
namespace {

using testing_support::Hex;

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
      {"", kPlain}, {"CA3153", kPlain}, {"3C5247542F3E", kPlain},           // empty, short, text
      {"CB315300 64000000 01000000 01000000 4101000000", kPlain},           // wrong magic
      {"CA315300 65000000 01000000 01000000 4101000000", kPlain},           // wrong version
      {"CA315300 64000000 01010000 01000000", kPlain},                      // 257 symbols
      {kHeader + "02000000 03000000 6101000000 62", kDamaged},              // table cut short
      {kHeader + "02000000 09000000 6101000000 6202000000 06", kDamaged},   // stream cut short
      {kHeader + "02000000 03000000 6101000000 6202000000", kDamaged},      // no stream at all
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

}  // namespace
}  // namespace vuk::util
