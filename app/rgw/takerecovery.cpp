#include "app/rgw/takerecovery.h"

#include <cstdio>
#include <filesystem>

#include "app/rgw/liverecording.h"
#include "app/rgw/wording.h"
#include "core/punchin.h"
#include "core/resimulator.h"

namespace vuk::app {

namespace {

using State = rgw::core::JournalReading::State;

using Track = util::AVar_Linear<double>;

// The tracks of the journal's channels, in its order; false with the reason
// when a tool or a channel is missing.
bool FindTracks(const rgw::core::JournalTake& take, Session& session, const std::string& file,
                std::vector<Track*>& tracks, std::string& error) {
  for (const rgw::core::JournalTake::Tool& tool : take.tools) {
    rgw::core::InstanceReference* item = session.tools.Find(tool.name);
    if (!item) {
      error = file + ": no tool \"" + tool.name + "\" to take the journal's frames; its tools are " +
              Listed(session.tools.InstanceNames());
      return false;
    }
    for (const std::string& channel : tool.channels) {
      Track* track = item->instance->TrackOf(channel);
      if (!track) {
        error = tool.name + " has no channel \"" + channel + "\" to take the journal's frames";
        return false;
      }
      tracks.push_back(track);
    }
  }
  return true;
}

// The journal's frames into the tools' recorded tracks, replacing what they
// held from the take's start on, or for a punch-in over the frames' range
// only.
void RestoreTake(const rgw::core::JournalTake& take, const std::vector<Track*>& tracks) {
  const std::size_t stride = tracks.size();
  for (std::size_t column = 0; column < stride; ++column) {
    Track& track = *tracks[column];
    const Track before = track;
    track.RemoveFrom(take.startTime);
    for (std::size_t frame = 0; frame < take.times.size(); ++frame) {
      track.Set(take.times[frame], take.values[frame * stride + column]);
    }
    if (take.punchIn) rgw::core::KeepAroundPunch(track, before, take.startTime);
  }
}

}  // namespace

bool UnfinishedTake::Recoverable() const { return reading.state != State::kRefused && !reading.take.times.empty(); }

std::string UnfinishedTake::Problem() const {
  if (reading.state != State::kRefused && reading.take.times.empty()) {
    return path + ": the take ends before its first frame; nothing to recover";
  }
  return reading.problem;
}

std::string UnfinishedTake::Description() const {
  const rgw::core::JournalTake& take = reading.take;
  return Span(take.Seconds(), take.startTime) + " with " + Listed(ToolsOf(take)) +
         (reading.state == State::kCut ? ", damaged at its end" : "");
}

UnfinishedTake FindUnfinishedTake(const std::string& scenePath) {
  UnfinishedTake unfinished;
  unfinished.path = rgw::core::JournalPathOf(scenePath);
  std::error_code ignored;
  unfinished.found = std::filesystem::exists(unfinished.path, ignored);
  if (unfinished.found) unfinished.reading = rgw::core::ReadTakeJournal(unfinished.path);
  return unfinished;
}

bool RecoverTake(const rgw::core::JournalTake& take, Session& session, const std::string& file, std::string& error) {
  // Nothing changes unless the whole take can be put back.
  std::vector<Track*> tracks;
  if (!FindTracks(take, session, file, tracks, error)) return false;
  const double from = take.startTime, to = take.times.back();
  const std::string tooLong =
      rgw::core::Resimulator::RangeProblem(from, to, rgw::core::TimeBase(session.host.GetFrameRate()));
  if (!tooLong.empty()) {
    error = rgw::core::JournalPathOf(file) + ": " + tooLong;
    return false;
  }
  RestoreTake(take, tracks);
  OnlyTheseTools only(session.tools, ToolsOf(take));
  session.Resimulate(from, to);
  return true;
}

std::string Span(double seconds, double from) {
  char text[64];
  std::snprintf(text, sizeof text, "%.3f s from %.3f s", seconds, from);
  return text;
}

std::vector<std::string> ToolsOf(const rgw::core::JournalTake& take) {
  std::vector<std::string> names;
  for (const auto& tool : take.tools) names.push_back(tool.name);
  return names;
}

}  // namespace vuk::app
