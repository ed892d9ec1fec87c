#include "app/rgw/commandoptions.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace vuk::app {

int Fail(const std::string& message) {
  std::fprintf(stderr, "rgw: %s\n", message.c_str());
  return 1;
}

std::string Seconds(double seconds) {
  char text[32];
  std::snprintf(text, sizeof text, "%g s", seconds);
  return text;
}

bool ReadNumber(const std::string& text, double& value, std::string& error) {
  char* end = nullptr;
  value = std::strtod(text.c_str(), &end);
  if (!text.empty() && *end == '\0' && std::isfinite(value)) return true;
  error = "\"" + text + "\" is not a number";
  return false;
}

std::optional<int> OpenScene(const Options& options, Session& session) {
  std::string error;
  if (!session.Open(options.file, error)) return Fail(error);
  if (!options.values.count("fps")) return std::nullopt;
  double fps = 0;
  if (!ReadNumber(options.Get("fps"), fps, error)) return Fail("--fps: " + error);
  if (fps < 1 || fps > 4800 || fps != std::floor(fps)) return Fail("--fps " + options.Get("fps") + ": a whole number of frames per second from 1 to 4800");
  session.host.GetScene().clock.SetFrameRate(static_cast<std::int32_t>(fps));
  return std::nullopt;
}

int SaveAndSay(Session& session, const std::string& out, const std::string& done) {
  std::string error;
  if (!session.Save(out, error)) return Fail(error);
  std::printf("%s, written to %s\n", done.c_str(), out.c_str());
  return 0;
}

}  // namespace vuk::app
