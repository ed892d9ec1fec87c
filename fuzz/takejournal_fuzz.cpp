// Reads arbitrary bytes as a take journal: no crash, and what is read holds
// together: frames in rising time, each with a value for every channel.
#include <cstdint>
#include <cstdlib>

#include "core/takejournal.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using vuk::rgw::core::JournalReading;
  const JournalReading reading = vuk::rgw::core::ParseTakeJournal(data, size);
  const auto& take = reading.take;
  if ((reading.state == JournalReading::State::kWhole) != reading.problem.empty()) std::abort();
  if (reading.state == JournalReading::State::kRefused && !(take.tools.empty() && take.times.empty())) std::abort();
  if (take.values.size() != take.times.size() * take.ChannelCount()) std::abort();
  for (std::size_t i = 1; i < take.times.size(); ++i) {
    if (!(take.times[i - 1] < take.times[i])) std::abort();
  }
  return 0;
}
