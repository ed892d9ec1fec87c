#pragma once
// The fuzzer's input as a file, for readers that take a path: one per
// process, so that parallel fuzzing jobs don't share it.
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <string>

inline std::string WriteInputFile(const std::string& name, const std::uint8_t* data, std::size_t size) {
  const std::string path = "/tmp/rgw_fuzz_" + std::to_string(getpid()) + "_" + name;
  if (FILE* file = std::fopen(path.c_str(), "wb")) {
    std::fwrite(data, 1, size, file);
    std::fclose(file);
  }
  return path;
}
