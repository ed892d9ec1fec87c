#pragma once
// Scene files of the tests: where they go, and their bytes.

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

namespace vuk::rgw::adaptor::standalone {

inline std::string Temp(const std::string& name) { return testing::TempDir() + "/" + name; }

inline std::string Read(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

}  // namespace vuk::rgw::adaptor::standalone
