// Reads arbitrary bytes as a take CSV file into a tool with one channel:
// no crash, and a take that is taken holds its samples in rising time.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "adaptor/standalone/standaloneadaptorinterface.h"
#include "core/instancemanager.h"
#include "core/librarymanager.h"
#include "core/takefile.h"
#include "fuzz/inputfile.h"
#include "plugins/tools.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace vuk::rgw;
  const std::string path = WriteInputFile("take.csv", data, size);
  adaptor::standalone::StandaloneAdaptorInterface host;
  static const core::LibraryManager library(addon::BuiltInTools());
  core::InstanceManager tools(&host, &library);
  core::InstanceReference* item = tools.Create("1DPositioner");
  if (!item) std::abort();
  std::string error;
  if (core::ImportTakeCsv(path, *item->instance, &error)) {
    for (const auto& track : item->instance->RecordedTracks()) {
      for (std::size_t i = 1; i < track.records.size(); ++i) {
        if (!(track.records[i - 1].time < track.records[i].time)) std::abort();
      }
    }
  } else if (error.empty()) {
    std::abort();
  }
  std::remove(path.c_str());
  return 0;
}
