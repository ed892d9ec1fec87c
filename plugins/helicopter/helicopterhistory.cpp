#include "plugins/helicopter/helicopterhistory.h"

#include <cmath>
#include <limits>
#include <string>
#include <type_traits>

#include "sdk/cvariablemodundo.h"

namespace vuk::rgw::addon {

namespace {

const util::DataChunk* Entry(const util::DataChunk& chunk, const char* key, int channel) {
  const util::DataChunk* found = chunk.FindChild(key);
  return found && channel >= 0 ? found->FindChild(std::to_string(channel)) : found;
}

}  // namespace

template <typename Self, typename Visit>
void HelicopterHistory::ForEach(Self& self, Visit visit) {
  for (int i = 0; i < HelicopterPlant::kChannelCount; ++i) visit("inpStore", self.values_[i], i);
  for (int i = 0; i < HelicopterPlant::kChannelCount; ++i) visit("inpFilterMemStore", self.memories_[i], i);
  visit("ancHeliCamfWantedY", self.heightReference_, -1);
  visit("ancHeliCamfWantedAngY", self.yawReference_, -1);
  visit("ancHeliCamppHelicopterRTfAbsZAng", self.yaw_, -1);
  visit("ancFollowCamNodeqTransFilterMem", self.followCam_, -1);
}

void HelicopterHistory::Record(double t, const HelicopterPlant& plant, const util::QTransform<double>& followCam) {
  for (int i = 0; i < HelicopterPlant::kChannelCount; ++i) {
    values_[i].Set(t, plant.channels[i].value);
    memories_[i].Set(t, plant.channels[i].memory);
  }
  heightReference_.Set(t, plant.heightReference());
  yawReference_.Set(t, plant.yawReference());
  yaw_.Set(t, plant.regulator.yaw());
  followCam_.Set(t, followCam);
}

PlantInputRecord HelicopterHistory::InputRecordAt(double t) const {
  PlantInputRecord record;
  for (int i = 0; i < HelicopterPlant::kChannelCount; ++i) {
    record.channels[i] = {values_[i].Get(t), memories_[i].Get(t)};
  }
  record.heightReference = heightReference_.Get(t);
  record.yawReference = yawReference_.Get(t);
  record.yaw = yaw_.Get(t);
  return record;
}

void HelicopterHistory::CutAfter(double t, CInterface& tool) {
  const double after = std::nextafter(t, std::numeric_limits<double>::infinity());
  ForEach(*this, [after, &tool](const char*, auto& history, int) {
    tool.PushUndo(new CVariableModUndo<std::decay_t<decltype(history)>>(&history));
    history.RemoveFrom(after);
  });
}

void HelicopterHistory::SaveTo(util::DataChunk& chunk) const {
  ForEach(*this, [&chunk](const char* key, const auto& history, int channel) {
    util::Bytes block(history.GetSaveSize());
    history.Save(block.data(), static_cast<std::uint32_t>(block.size()));
    // A set of channels is one entry with a child per channel.
    if (channel == 0) chunk.AddChild(key);
    util::DataChunk& parent = channel >= 0 ? chunk.children.back() : chunk;
    parent.AddChild(channel >= 0 ? std::to_string(channel) : key, std::move(block));
  });
}

bool HelicopterHistory::LoadFrom(const util::DataChunk& chunk) {
  HelicopterHistory loaded;
  bool complete = true;
  ForEach(loaded, [&](const char* key, auto& history, int channel) {
    const util::DataChunk* entry = Entry(chunk, key, channel);
    complete = complete && entry && history.Load(entry->data.data(), entry->data.size());
  });
  // All agree frame by frame; a partial history would restart wrongly.
  const std::size_t frames = loaded.yaw_.records.size();
  ForEach(loaded,
          [&](const char*, const auto& history, int) { complete = complete && history.records.size() == frames; });
  if (complete) *this = std::move(loaded);
  return complete;
}

}  // namespace vuk::rgw::addon
