#include "util/base64.h"

#include <gtest/gtest.h>

#include <random>

namespace vuk::util {
namespace {

// The published test vectors of the encoding, and 0.1 as the little-endian
// bytes in which doubles travel in profiles.
TEST(Base64, EncodesAndDecodesTheStandardVectors) {
  const std::pair<std::string, const char*> vectors[] = {
      {"", ""},         {"f", "Zg=="},         {"fo", "Zm8="},         {"foo", "Zm9v"},
      {"foob", "Zm9vYg=="}, {"fooba", "Zm9vYmE="}, {"foobar", "Zm9vYmFy"}, {"\x9A\x99\x99\x99\x99\x99\xB9?", "mpmZmZmZuT8="}};
  for (const auto& [plain, encoded] : vectors) {
    const Bytes bytes(plain.begin(), plain.end());
    EXPECT_EQ(Base64::Encode(bytes), encoded);
    Bytes back;
    ASSERT_TRUE(Base64::Decode(encoded, back));
    EXPECT_EQ(back, bytes);
  }
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

TEST(Base64, BadTextFailsAndSaysWhere) {
  const std::pair<const char*, const char*> cases[] = {{"Zm9v!", "character 4: '!'"},
                                                       {"Zg==Zg==", "character 4: data after the padding"},
                                                       {"Zm9vY", "lone character"}};
  for (const auto& [text, message] : cases) {
    Bytes back = {1};
    std::string error;
    EXPECT_FALSE(Base64::Decode(text, back, &error));
    EXPECT_TRUE(back.empty());
    EXPECT_NE(error.find(message), std::string::npos) << error;
  }
}

}  // namespace
}  // namespace vuk::util
