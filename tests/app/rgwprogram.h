#pragma once
// Runs the rgw program of the build (RGW_EXE) as a user would, for the tests
// of the command line.

#include <sys/wait.h>

#include <cstdio>
#include <string>

namespace vuk::app {

struct Ran {
  int code;
  std::string output;  // standard output and error
};

inline Ran Rgw(const std::string& arguments) {
  FILE* pipe = popen((std::string(RGW_EXE) + " " + arguments + " 2>&1").c_str(), "r");
  std::string output;
  char line[4096];
  while (pipe && std::fgets(line, sizeof line, pipe)) output += line;
  const int status = pipe ? pclose(pipe) : -1;
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, output};
}

}  // namespace vuk::app
