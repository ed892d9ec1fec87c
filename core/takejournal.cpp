#include "core/takejournal.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>

namespace vuk::rgw::core {

namespace {

constexpr char kMagic[8] = {'R', 'G', 'W', 'T', 'A', 'K', 'E', '\n'};
constexpr std::size_t kHeaderSize = sizeof kMagic + 4;
// Length and kind before the payload, checksum after it.
constexpr std::size_t kFraming = 4 + 1 + 4;
constexpr std::uint8_t kTakeRecord = 1;
constexpr std::uint8_t kFrameRecord = 2;
// Far beyond any real take's list of tools, far below a length gone wrong.
constexpr std::uint32_t kLongestPayload = 1 << 24;

constexpr std::array<std::uint32_t, 256> MakeCrcTable() {
  std::array<std::uint32_t, 256> table{};
  for (std::uint32_t n = 0; n < 256; ++n) {
    std::uint32_t c = n;
    for (int bit = 0; bit < 8; ++bit) c = (c & 1) ? 0xEDB88320u ^ (c >> 1) : c >> 1;
    table[n] = c;
  }
  return table;
}

// CRC-32 as zip and PNG have it.
std::uint32_t Crc32(const std::uint8_t* data, std::size_t size) {
  static constexpr std::array<std::uint32_t, 256> kTable = MakeCrcTable();
  std::uint32_t c = 0xFFFFFFFFu;
  for (std::size_t i = 0; i < size; ++i) c = kTable[(c ^ data[i]) & 0xFF] ^ (c >> 8);
  return c ^ 0xFFFFFFFFu;
}

void PutLittle32(std::uint8_t* at, std::uint32_t value) {
  for (int i = 0; i < 4; ++i) at[i] = static_cast<std::uint8_t>(value >> (8 * i));
}

void PutString(util::ByteWriter& out, const std::string& text) {
  out.Put(static_cast<std::uint32_t>(text.size()));
  out.PutBytes(text.data(), text.size());
}

bool GetString(util::ByteReader& in, std::string& text) {
  std::uint32_t length = 0;
  if (!in.Get(length) || length > in.Remaining()) return false;
  text.assign(reinterpret_cast<const char*>(in.Current()), length);
  return in.Skip(length);
}

// A count of items of at least `least` bytes each that the rest can hold.
bool GetCount(util::ByteReader& in, std::size_t least, std::uint32_t& count) {
  return in.Get(count) && count <= in.Remaining() / least;
}

bool ParseTake(util::ByteReader in, std::uint32_t version, JournalTake& take) {
  std::uint32_t tools = 0;
  std::uint8_t punchIn = 0;
  if (!in.Get(take.startTime) || !in.Get(take.timeScale) || !in.Get(take.startedMs) ||
      (version >= 2 && !in.Get(punchIn)) || punchIn > 1 || !GetCount(in, 8, tools)) {
    return false;
  }
  take.punchIn = punchIn != 0;
  if (!std::isfinite(take.startTime) || !(take.timeScale > 0)) return false;
  take.tools.resize(tools);
  for (JournalTake::Tool& tool : take.tools) {
    std::uint32_t channels = 0;
    if (!GetString(in, tool.name) || !GetCount(in, 4, channels)) return false;
    tool.channels.resize(channels);
    for (std::string& channel : tool.channels) {
      if (!GetString(in, channel)) return false;
    }
  }
  return in.Remaining() == 0;
}

bool ParseFrame(util::ByteReader in, JournalTake& take) {
  const std::size_t channels = take.ChannelCount();
  double time = 0;
  if (in.Remaining() != 8 * (channels + 1) || !in.Get(time) || !std::isfinite(time)) return false;
  if (!take.times.empty() && !(time > take.times.back())) return false;
  take.times.push_back(time);
  for (std::size_t i = 0; i < channels; ++i) {
    double value = 0;
    in.Get(value);
    take.values.push_back(value);
  }
  return true;
}

std::string AtByte(std::size_t offset, const char* what) {
  return "cut at byte " + std::to_string(offset) + ", where " + what;
}

}  // namespace

std::size_t JournalTake::ChannelCount() const {
  std::size_t count = 0;
  for (const Tool& tool : tools) count += tool.channels.size();
  return count;
}

double JournalTake::Seconds() const { return times.empty() ? 0 : times.back() - startTime; }

std::string JournalPathOf(const std::string& scenePath) { return scenePath + ".rgwtake"; }

JournalReading ParseTakeJournal(const std::uint8_t* data, std::size_t size) {
  JournalReading reading;
  util::ByteReader in(data, size);
  char magic[sizeof kMagic] = {};
  std::uint32_t version = 0;
  if (!in.GetBytes(magic, sizeof magic) || std::memcmp(magic, kMagic, sizeof kMagic) != 0) {
    reading.problem = "not a take journal";
    return reading;
  }
  if (!in.Get(version)) {
    reading.problem = "the file ends too early";
    return reading;
  }
  if (version < TakeJournal::kOldestVersion || version > TakeJournal::kVersion) {
    reading.problem = "a take journal of version " + std::to_string(version) + ", this program reads versions " +
                      std::to_string(TakeJournal::kOldestVersion) + " to " + std::to_string(TakeJournal::kVersion);
    return reading;
  }
  bool started = false;
  while (in.Remaining() > 0) {
    const std::size_t offset = in.Position();
    std::uint32_t length = 0;
    std::uint8_t kind = 0;
    std::uint32_t checksum = 0;
    const std::uint8_t* body = in.Current() + 4;  // kind and payload, as the checksum covers them
    if (!in.Get(length) || length > kLongestPayload || !in.Get(kind) || !in.Skip(length) || !in.Get(checksum)) {
      reading.problem = AtByte(offset, length > kLongestPayload ? "a record is damaged" : "the file ends too early");
      break;
    }
    const bool intact = Crc32(body, length + 1) == checksum;
    const util::ByteReader payload(body + 1, length);
    const bool read = intact && (started ? kind == kFrameRecord && ParseFrame(payload, reading.take)
                                         : kind == kTakeRecord && ParseTake(payload, version, reading.take));
    if (!read) {
      reading.problem = AtByte(offset, intact ? "a record makes no sense" : "a record is damaged");
      break;
    }
    started = true;
  }
  if (!started) {
    // Without its start the frames can't be told apart.
    reading.problem = reading.problem.empty() ? "the file holds no take" : "no take: " + reading.problem;
    reading.take = JournalTake();
    return reading;
  }
  reading.state = reading.problem.empty() ? JournalReading::State::kWhole : JournalReading::State::kCut;
  return reading;
}

JournalReading ReadTakeJournal(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  const util::Bytes bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  JournalReading reading;
  if (!file.good() && !file.eof()) {
    reading.problem = path + ": can't be read";
    return reading;
  }
  reading = ParseTakeJournal(bytes.data(), bytes.size());
  if (!reading.problem.empty()) reading.problem = path + ": " + reading.problem;
  return reading;
}

TakeJournal::TakeJournal(std::string path) : path_(std::move(path)) {}

TakeJournal::~TakeJournal() { Close(); }

void TakeJournal::Fail(const std::string& what) {
  error_ = path_ + ": " + what + " (" + std::strerror(errno) + ")";
  if (fd_ >= 0) ::close(fd_);
  fd_ = -1;
}

bool TakeJournal::Begin(const std::vector<Instance*>& tools, double startTime, double timeScale,
                        const std::vector<std::string>& punched) {
  Close();
  error_.clear();
  fd_ = ::open(path_.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
  if (fd_ < 0) {
    Fail("can't be written");
    return false;
  }
  // The header and the take's start go in one write: a file that has any
  // bytes has its take.
  record_.clear();
  util::ByteWriter out(record_);
  out.PutBytes(kMagic, sizeof kMagic);
  out.Put(kVersion);
  const auto startedMs =
      std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::system_clock::now().time_since_epoch());
  out.PutZeros(5);  // length and kind, filled in by WriteRecord
  out.Put(startTime);
  out.Put(timeScale);
  out.Put(static_cast<std::int64_t>(startedMs.count()));
  out.Put(static_cast<std::uint8_t>(punched.empty() ? 0 : 1));
  out.Put(static_cast<std::uint32_t>(tools.size()));
  journaled_.clear();
  for (std::size_t t = 0; t < tools.size(); ++t) {
    const unidevice::PropertyHandler& inputs = tools[t]->Inputs();
    const std::size_t before = journaled_.size();
    for (std::size_t i = 0; i < inputs.Count(); ++i) {
      const std::string& name = inputs.Get(i)->name;
      if (punched.empty() || std::find(punched.begin(), punched.end(), name) != punched.end()) {
        journaled_.emplace_back(t, i);
      }
    }
    PutString(out, tools[t]->InstanceName());
    out.Put(static_cast<std::uint32_t>(journaled_.size() - before));
    for (std::size_t j = before; j < journaled_.size(); ++j) PutString(out, inputs.Get(journaled_[j].second)->name);
  }
  // The start is on the disk before the first frame, which the sync interval
  // then counts from.
  lastSync_ = std::chrono::steady_clock::now() - kSyncInterval;
  WriteRecord(kTakeRecord, kHeaderSize);
  record_.reserve(kFraming + 8 * (journaled_.size() + 1));
  return fd_ >= 0;
}

void TakeJournal::Append(double time, const std::vector<Instance*>& tools) {
  if (fd_ < 0) return;
  record_.clear();
  util::ByteWriter out(record_);
  out.PutZeros(5);
  out.Put(time);
  for (const auto& [tool, channel] : journaled_) {
    const bool recorded = tool < tools.size() && channel < tools[tool]->RecordedTracks().size();
    out.Put(recorded ? tools[tool]->RecordedTracks()[channel].Get(time) : 0.0);
  }
  WriteRecord(kFrameRecord);
}

void TakeJournal::WriteRecord(std::uint8_t kind, std::size_t at) {
  record_[at + 4] = kind;
  PutLittle32(record_.data() + at, static_cast<std::uint32_t>(record_.size() - at - 5));
  const std::uint32_t checksum = Crc32(record_.data() + at + 4, record_.size() - at - 4);
  util::ByteWriter(record_).Put(checksum);
  // One write per record: a process killed between two leaves whole records;
  // the kernel keeps them for the file even then.
  if (::write(fd_, record_.data(), record_.size()) != static_cast<ssize_t>(record_.size())) {
    Fail("can't be written");
    return;
  }
  const auto now = std::chrono::steady_clock::now();
  if (now - lastSync_ < kSyncInterval) return;
  lastSync_ = now;
  if (::fdatasync(fd_) != 0) Fail("can't be put on the disk");
}

void TakeJournal::Close() {
  if (fd_ < 0) return;
  if (::fdatasync(fd_) != 0) error_ = path_ + ": can't be put on the disk (" + std::strerror(errno) + ")";
  ::close(fd_);
  fd_ = -1;
}

void TakeJournal::Remove() {
  Close();
  std::remove(path_.c_str());
}

}  // namespace vuk::rgw::core
