#include "plugins/common/actuatorchannel.h"

#include <cmath>
#include <limits>
#include <type_traits>

#include "plugins/common/filterresponse.h"
#include "sdk/cvariablemodundo.h"

namespace vuk::rgw::addon {

void ActuatorChannel::Feed(double dt) {
  double input = raw;
  if (keepState) {
    // A press from rest toggles: it latches its direction, or clears a latch.
    const int snapped = std::fabs(input) > 0.5 ? (input > 0 ? 1 : -1) : 0;
    if (lastState == 0 && snapped != 0) storedState = storedState != 0 ? 0 : snapped;
    lastState = snapped;
    input = storedState;
  }
  if (changeLimit != 0) {
    const double most = changeLimit * dt;
    const double change = input - lastOutput;
    if (std::fabs(change) > most) input = lastOutput + (change > 0 ? most : -most);
  }
  lastOutput = input;
  value = integrate ? value + dt * input : input;
  filterResponse(stage, maximum * value, responseFactor, dt);
  filterResponse(output, stage, responseFactor, dt);
}

void ActuatorChannel::Reset() {
  output = stage = lastOutput = value = 0;
  lastState = storedState = 0;
}

template <typename Self, typename Visit>
void ActuatorHistory::ForEach(Self& self, Visit visit) {
  visit("ancOutput", self.output_);
  visit("ancStageMemory", self.stage_);
  visit("ancLastOutput", self.lastOutput_);
  visit("ancValue", self.value_);
  visit("ancLastState", self.lastState_);
  visit("ancStoredState", self.storedState_);
}

void ActuatorHistory::Record(double t, const ActuatorChannel& channel) {
  output_.Set(t, channel.output);
  stage_.Set(t, channel.stage);
  lastOutput_.Set(t, channel.lastOutput);
  value_.Set(t, channel.value);
  lastState_.Set(t, channel.lastState);
  storedState_.Set(t, channel.storedState);
}

void ActuatorHistory::RewindTo(double t, ActuatorChannel& channel, CInterface& tool) {
  const double after = std::nextafter(t, std::numeric_limits<double>::infinity());
  ForEach(*this, [after, &tool](const char*, auto& history) {
    tool.PushUndo(new CVariableModUndo<std::decay_t<decltype(history)>>(&history));
    history.RemoveFrom(after);
  });
  channel.Reset();
  if (IsEmpty()) return;
  channel.output = output_.records.back().value;
  channel.stage = stage_.records.back().value;
  channel.lastOutput = lastOutput_.records.back().value;
  channel.value = value_.records.back().value;
  channel.lastState = lastState_.records.back().value;
  channel.storedState = storedState_.records.back().value;
}

void ActuatorHistory::SaveTo(util::DataChunk& chunk) const {
  ForEach(*this, [&chunk](const char* key, const auto& history) {
    util::Bytes block(history.GetSaveSize());
    history.Save(block.data(), static_cast<std::uint32_t>(block.size()));
    chunk.AddChild(key, std::move(block));
  });
}

bool ActuatorHistory::LoadFrom(const util::DataChunk& chunk) {
  bool complete = true;
  ForEach(*this, [&](const char* key, auto& history) {
    const util::DataChunk* entry = chunk.FindChild(key);
    if (!entry || !history.Load(entry->data.data(), entry->data.size())) complete = false;
  });
  // The six must agree frame by frame; a partial history would rewind wrongly.
  const std::size_t frames = output_.records.size();
  ForEach(*this, [&](const char*, auto& history) { complete = complete && history.records.size() == frames; });
  if (!complete) ForEach(*this, [](const char*, auto& history) { history.records.clear(); });
  return complete;
}

}  // namespace vuk::rgw::addon
