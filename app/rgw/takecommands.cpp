// The commands of live takes: recording one from the devices, and recovering
// one that a recording cut short left in its journal.
#include <QCoreApplication>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <memory>

#include "app/rgw/commandoptions.h"
#include "app/rgw/liverecording.h"
#include "app/rgw/takerecovery.h"
#include "app/rgw/wording.h"
#include "core/resimulator.h"
#include "core/takejournal.h"
#include "util/atomicfile.h"

namespace vuk::app {

namespace {

// The whole number an option holds, from `least` to `most`; false with the reason.
bool ReadWhole(const Options& options, const std::string& name, int least, int most, int& value,
               std::string& error) {
  double number = 0;
  if (!ReadNumber(options.Get(name, "0"), number, error) || number != std::floor(number) || number < least ||
      number > most) {
    error = "--" + name + " " + options.Get(name) + ": a whole number from " + std::to_string(least) + " to " +
            std::to_string(most);
    return false;
  }
  value = static_cast<int>(number);
  return true;
}

// The tools named by --instance, each in the scene; false with the names it has.
bool NamedTools(const Options& options, Session& session, std::vector<std::string>& names, std::string& error) {
  const auto given = options.values.equal_range("instance");
  for (auto it = given.first; it != given.second; ++it) {
    if (!session.tools.Find(it->second)) {
      error = options.file + ": no tool \"" + it->second + "\"; its tools are " + Listed(session.tools.InstanceNames());
      return false;
    }
    names.push_back(it->second);
  }
  return true;
}

// The channels named by --channel, each one of some checked tool; false with
// the channels they have.
bool PunchedChannels(const Options& options, Session& session, std::vector<std::string>& channels,
                     std::string& error) {
  const std::vector<std::string> known = session.CheckedChannels();
  const auto given = options.values.equal_range("channel");
  for (auto it = given.first; it != given.second; ++it) {
    if (std::find(known.begin(), known.end(), it->second) == known.end()) {
      error = "no tool recorded has a channel \"" + it->second + "\"; their channels are " + Listed(known);
      return false;
    }
    channels.push_back(it->second);
  }
  return true;
}

std::vector<std::string> CheckedNames(Session& session) {
  std::vector<std::string> names;
  for (const rgw::core::Instance* instance : session.tools.CheckedInstances()) names.push_back(instance->InstanceName());
  return names;
}

}  // namespace

int RecordCommand(const Arguments& args) {
  const char* usage =
      "usage: rgw record FILE --seconds N --out OUT [--speed S] [--countdown C] [--instance NAME]...\n"
      "                  [--channel NAME]...\n"
      "  Records a take live, without a window, from the devices the tools' channels are bound to:\n"
      "  the checked tools, or those named, from the scene's current time, for N seconds of the\n"
      "  wall clock after a countdown of C seconds (none by default). Scene time runs at 1/2^S of\n"
      "  the wall clock (S from 0, real time, to 3). Joysticks and gamepads are read through SDL,\n"
      "  also when plugged in during the take; the keyboard is not read here, as its keys come\n"
      "  only as events of a window. While the take runs, its raw values go to FILE.rgwtake,\n"
      "  which 'rgw recover' reads when the take is cut short; it goes once OUT is written.\n"
      "  With --channel, only the channels named are recorded anew over the scene's take (a punch-in):\n"
      "  the others play back from it and keep it, and the named ones keep their old values after\n"
      "  the new ones.\n";
  Options options{"seconds", "out", "speed", "countdown", "instance", "channel", "fps"};
  if (const auto code = options.Read(args, usage, {"seconds", "out"})) return *code;
  std::string error;
  LiveTake take;
  if (!ReadNumber(options.Get("seconds"), take.seconds, error)) return Fail("--seconds: " + error);
  if (!(take.seconds > 0 && take.seconds <= rgw::core::Resimulator::kMaxSceneSeconds)) {
    return Fail("--seconds " + options.Get("seconds") + ": a take lasts more than 0 s and at most " +
                Seconds(rgw::core::Resimulator::kMaxSceneSeconds) + " (a day)");
  }
  if (!ReadWhole(options, "speed", 0, 3, take.slowMotion, error)) return Fail(error);
  if (!ReadWhole(options, "countdown", 0, 9, take.countdownSeconds, error)) return Fail(error);
  // The recorder's timer and the devices' hot-plug run on the event loop.
  int argc = 1;
  char program[] = "rgw";
  char* argv[] = {program, nullptr};
  QCoreApplication application(argc, argv);
  Session session;
  if (const auto code = OpenScene(options, session)) return *code;
  std::vector<std::string> named;
  if (!NamedTools(options, session, named, error)) return Fail(error);
  // A long take must not end in a write error.
  if (!vuk::util::AtomicFile::CanReplace(options.Get("out"), &error)) return Fail(error);
  rgw::core::TakeJournal journal(rgw::core::JournalPathOf(options.file));
  std::vector<std::string> recorded, punched;
  double seconds = 0;
  {
    std::unique_ptr<OnlyTheseTools> only;
    if (!named.empty()) only = std::make_unique<OnlyTheseTools>(session.tools, named);
    recorded = CheckedNames(session);
    if (recorded.empty()) return Fail(options.file + ": no tool to record");
    if (!PunchedChannels(options, session, punched, error)) return Fail(error);
    rgw::core::RecordManager& recorder = *session.core.GetRecorder();
    recorder.journal = &journal;
    recorder.punchIn.channels = punched;
    seconds = RecordLive(session, take);
    recorder.punchIn.channels.clear();
    recorder.journal = nullptr;
  }
  if (!journal.Error().empty()) std::fprintf(stderr, "rgw: %s; the take went on without it\n", journal.Error().c_str());
  const std::string slowed = take.slowMotion ? ", slowed to 1/" + std::to_string(1 << take.slowMotion) : "";
  const std::string punching = punched.empty() ? "" : ", punching in " + Listed(punched);
  const int code = SaveAndSay(session, options.Get("out"),
                              "recorded " + Span(seconds, session.core.GetRecorder()->startTime) + " with " +
                                  Listed(recorded) + slowed + punching + ": " + Counted(session.ToolKeyCount(), "key") +
                                  " on their nodes");
  if (code == 0) journal.Remove();
  return code;
}

int RecoverCommand(const Arguments& args) {
  const char* usage =
      "usage: rgw recover FILE --out OUT\n"
      "  Recovers the take of a recording cut short from FILE.rgwtake: its raw values go into the\n"
      "  tools' recorded tracks from where the take began, the tools are simulated over it as\n"
      "  'rgw run' does, and the scene is written with the keys. A journal cut off or damaged gives\n"
      "  the take up to the damage.\n";
  Options options{"out", "fps"};
  if (const auto code = options.Read(args, usage, {"out"})) return *code;
  const UnfinishedTake unfinished = FindUnfinishedTake(options.file);
  if (!unfinished.found) return Fail(options.file + " has no take to recover: no " + unfinished.path);
  if (!unfinished.Recoverable()) return Fail(unfinished.Problem());
  if (unfinished.reading.state == rgw::core::JournalReading::State::kCut) {
    std::fprintf(stderr, "rgw: %s; the take is recovered up to there\n", unfinished.reading.problem.c_str());
  }
  const rgw::core::JournalTake& take = unfinished.reading.take;
  Session session;
  if (const auto code = OpenScene(options, session)) return *code;
  std::string error;
  if (!RecoverTake(take, session, options.file, error)) return Fail(error);
  const double from = take.startTime;
  return SaveAndSay(session, options.Get("out"),
                    "recovered " + Span(take.Seconds(), from) + " of the take of " + Listed(ToolsOf(take)) + " (" +
                        Counted(take.times.size(), "frame") + "): " + Counted(session.ToolKeyCount(), "key") +
                        " on their nodes");
}

void SayUnfinishedTake(const std::string& scenePath) {
  const UnfinishedTake unfinished = FindUnfinishedTake(scenePath);
  if (!unfinished.found) return;
  if (unfinished.reading.state == rgw::core::JournalReading::State::kRefused) {
    std::printf("%s; no take to recover from it\n", unfinished.reading.problem.c_str());
    return;
  }
  std::printf("%s holds an unfinished take of %s: 'rgw recover %s --out OUT' recovers it\n", unfinished.path.c_str(),
              unfinished.Description().c_str(), scenePath.c_str());
}

}  // namespace vuk::app
