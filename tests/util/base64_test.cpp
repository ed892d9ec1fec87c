#include "util/base64.h"

#include <gtest/gtest.h>

#include <cstring>
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

// The published test vectors of the encoding.
INSTANTIATE_TEST_SUITE_P(Standard, Base64Vectors,
                         testing::Values(Vector{"", ""}, Vector{"f", "Zg=="}, Vector{"fo", "Zm8="},
                                         Vector{"foo", "Zm9v"}, Vector{"foob", "Zm9vYg=="}, Vector{"fooba", "Zm9vYmE="},
                                         Vector{"foobar", "Zm9vYmFy"}));

TEST(Base64, DoubleKeepsEveryBit) {
  // 0.1 as its little-endian bytes, the way double values travel in profiles.
  const double value = 0.1;
  std::uint8_t raw[8];
  std::memcpy(raw, &value, 8);
  const std::string text = Base64::Encode(raw, 8);
  EXPECT_EQ(text, "mpmZmZmZuT8=");
  Bytes back;
  ASSERT_TRUE(Base64::Decode(text, back));
  double again = 0;
  std::memcpy(&again, back.data(), 8);
  EXPECT_EQ(again, value);
}

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

INSTANTIATE_TEST_SUITE_P(Samples, Base64Bad,
                         testing::Values(BadText{"Zm9v!", "character 4: '!'"},
                                         BadText{"Zg==Zg==", "character 4: data after the padding"},
                                         BadText{"Zm9vY", "lone character"}));

}  // namespace
}  // namespace vuk::util
