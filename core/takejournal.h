#pragma once
// The take journal: while a take is recorded, the raw values of its channels
// go frame by frame into a file beside the scene, so that a process that dies
// in the middle of the take leaves it behind. The file is a short header and
// a run of records, each with its length and a checksum: a record cut short
// or damaged ends the take there, and what came before stays readable.
//
// Layout, little-endian: "RGWTAKE\n", u32 version; then records of
// u32 payload length, u8 kind, payload, u32 CRC-32 of kind and payload.
// Kind 1 (first and only once): f64 start time, f64 slow-motion divisor,
// i64 wall clock at the start (ms since 1970), u8 punch-in (since version 2),
// u32 tool count, and per tool its name and u32 channel count with the
// channel names (each string a u32 length and its bytes). Kind 2, one per
// frame: f64 scene time and one f64 per channel of every tool, in order.
// A punch-in lists only the channels recorded anew: the others played back
// their tracks, which the take left as they were.

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "core/instance.h"
#include "util/bytes.h"

namespace vuk::rgw::core {

// A take as a journal holds it.
struct JournalTake {
  struct Tool {
    std::string name;
    std::vector<std::string> channels;
  };

  double startTime = 0;
  double timeScale = 1;
  std::int64_t startedMs = 0;
  // Only the listed channels were recorded, from the first frame to the
  // last; their tracks keep their values around that range.
  bool punchIn = false;
  std::vector<Tool> tools;
  // Frame times in rising order, and for each frame the values of every
  // tool's channels in order: ChannelCount() of them.
  std::vector<double> times;
  std::vector<double> values;

  std::size_t ChannelCount() const;
  // Seconds of scene time from the start to the last frame; 0 without frames.
  double Seconds() const;
};

struct JournalReading {
  enum class State { kWhole, kCut, kRefused };
  State state = State::kRefused;
  JournalTake take;
  // Why it was refused, or where and why the take was cut; empty when whole.
  std::string problem;
};

// The journal of a scene file: beside it, with ".rgwtake" added.
std::string JournalPathOf(const std::string& scenePath);

// Reads journal bytes from outside: never trusts a length or a count.
JournalReading ParseTakeJournal(const std::uint8_t* data, std::size_t size);
// The journal file; a file that can't be read is refused with the reason.
JournalReading ReadTakeJournal(const std::string& path);

class TakeJournal {
 public:
  static constexpr std::uint32_t kVersion = 2;
  // Journals from before punch-ins read as whole takes.
  static constexpr std::uint32_t kOldestVersion = 1;
  // The longest a synced journal lags behind the take.
  static constexpr std::chrono::milliseconds kSyncInterval{1000};

  explicit TakeJournal(std::string path);
  ~TakeJournal();
  TakeJournal(const TakeJournal&) = delete;
  TakeJournal& operator=(const TakeJournal&) = delete;

  const std::string& Path() const { return path_; }
  // Starts the file anew with the take's tools and channels, or with the
  // punched channels only when there are any; false with the reason in
  // Error() when it can't be written.
  bool Begin(const std::vector<Instance*>& tools, double startTime, double timeScale,
             const std::vector<std::string>& punched = {});
  // The frame just recorded at `time`: every journaled channel's recorded value.
  void Append(double time, const std::vector<Instance*>& tools);
  // Syncs and closes the file; it stays until Remove.
  void Close();
  // The take is safe in the scene: the journal goes.
  void Remove();
  // What made the journal stop, naming the file; empty while it works.
  const std::string& Error() const { return error_; }

 private:
  // The record that starts at `at` in `record_` goes out with what is before
  // it; at most once a second to the disk too.
  void WriteRecord(std::uint8_t kind, std::size_t at = 0);
  void Fail(const std::string& what);

  std::string path_;
  int fd_ = -1;
  // The channels journaled, in order: a tool's place in the take and the
  // channel's place in the tool.
  std::vector<std::pair<std::size_t, std::size_t>> journaled_;
  util::Bytes record_;
  std::chrono::steady_clock::time_point lastSync_;
  std::string error_;
};

}  // namespace vuk::rgw::core
