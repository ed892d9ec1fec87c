#include "core/punchin.h"

#include <algorithm>

namespace vuk::rgw::core {

void KeepAroundPunch(util::AVar_Linear<double>& punched, const util::AVar_Linear<double>& before, double from) {
  // The take removed the track from its start, and its first frames may
  // come later than that.
  auto& records = punched.records;
  const auto fresh = std::find_if(records.begin(), records.end(), [from](const auto& r) { return r.time >= from; });
  if (fresh == records.end()) {
    punched = before;
    return;
  }
  const double first = fresh->time, last = records.back().time;
  const auto& old = before.records;
  records.insert(fresh, std::find_if(old.begin(), old.end(), [from](const auto& r) { return r.time >= from; }),
                 std::find_if(old.begin(), old.end(), [first](const auto& r) { return r.time >= first; }));
  for (const auto& record : old) {
    if (record.time > last) records.push_back(record);
  }
}

bool PunchIn::IsPunched(const std::string& channel) const {
  return std::find(channels.begin(), channels.end(), channel) != channels.end();
}

void PunchIn::Begin(const std::vector<Instance*>& instances, double from) {
  kept_.clear();
  from_ = from;
  if (!IsActive()) return;
  for (Instance* instance : instances) {
    const unidevice::PropertyHandler& inputs = instance->Inputs();
    for (std::size_t i = 0; i < inputs.Count(); ++i) {
      unidevice::Property* input = inputs.Get(i);
      Kept kept{instance, i, *instance->TrackOf(input->name), nullptr, input->source};
      if (!IsPunched(input->name)) {
        kept.standIn = std::make_unique<unidevice::Control>();
        input->source = kept.standIn.get();
      }
      kept_.push_back(std::move(kept));
    }
  }
}

void PunchIn::Feed(double time) {
  for (Kept& kept : kept_) {
    if (kept.standIn) kept.standIn->Update(kept.before.Get(time));
  }
}

void PunchIn::End() {
  for (Kept& kept : kept_) {
    unidevice::Property* input = kept.instance->Inputs().Get(kept.channel);
    util::AVar_Linear<double>& track = *kept.instance->TrackOf(input->name);
    if (kept.standIn) {
      input->source = kept.real;
      track = kept.before;
      continue;
    }
    KeepAroundPunch(track, kept.before, from_);
  }
  kept_.clear();
}

}  // namespace vuk::rgw::core
