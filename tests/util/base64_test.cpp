#include "util/base64.h"

#include <gtest/gtest.h>

#include <random>

namespace vuk::util {
namespace {

struct Vector {
  const char* plain;
  const char* encoded;
};

class Base64Vectors : public testing::TestWithParam<Vector> {};

TEST_P(Base64Vectors, EncodeAndDecode) {
  const std::string plain = GetParam().plain;
  const Bytes bytes(plain.begin(), plain.end());
  EXPECT_EQ(Base64::Encode(bytes), GetParam().encoded);
  Bytes back;
  ASSERT_TRUE(Base64::Decode(GetParam().encoded, back));
  EXPECT_EQ(back, bytes);
}

// The published test vectors of the encoding, and 0.1 as the little-endian
// bytes in which doubles travel in profiles.
INSTANTIATE_TEST_SUITE_P(Standard, Base64Vectors, testing::ValuesIn(std::vector<Vector>{
    {"", ""}, {"f", "Zg=="}, {"fo", "Zm8="}, {"foo", "Zm9v"}, {"foob", "Zm9vYg=="}, {"fooba", "Zm9vYmE="},
    {"foobar", "Zm9vYmFy"}, {"\x9A\x99\x99\x99\x99\x99\xB9?", "mpmZmZmZuT8="}}));

TEST(Base64, RandomBytesRoundTripAndBlanksAndMissingPaddingAreAccepted) {
  std::mt19937 random(3);
  for (int round = 0; round < 300; ++round) {
    Bytes bytes(random() % 100);
    for (auto& byte : bytes) byte = static_cast<std::uint8_t>(random());
    Bytes back;
    ASSERT_TRUE(Base64::Decode(Base64::Encode(bytes), back));
    EXPECT_EQ(back, bytes);
  }
  Bytes back;
  ASSERT_TRUE(Base64::Decode("\n\tZm9v\r\n YmE\n", back));
  EXPECT_EQ(std::string(back.begin(), back.end()), "fooba");
}

struct BadText {
  const char* text;
  const char* message;
};

class Base64Bad : public testing::TestWithParam<BadText> {};

TEST_P(Base64Bad, FailsAndSaysWhere) {
  Bytes back = {1};
  std::string error;
  EXPECT_FALSE(Base64::Decode(GetParam().text, back, &error));
  EXPECT_TRUE(back.empty());
  EXPECT_NE(error.find(GetParam().message), std::string::npos) << error;
}

INSTANTIATE_TEST_SUITE_P(Samples, Base64Bad, testing::ValuesIn(std::vector<BadText>{
    {"Zm9v!", "character 4: '!'"}, {"Zg==Zg==", "character 4: data after the padding"},
    {"Zm9vY", "lone character"}}));

}  // namespace
}  // namespace vuk::util
