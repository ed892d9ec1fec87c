#pragma once
// What every tool does with its histories: cut them back when a run starts,
// with undo, and keep each as one entry of the tool's saved chunk.

#include <cmath>
#include <cstdint>
#include <limits>

#include "sdk/cinterface.h"
#include "sdk/cvariablemodundo.h"
#include "util/datachunk.h"

namespace vuk::rgw::addon {

// Forgets the records after t; they go to the undo of `tool` first, so
// undoing the run brings them back. Runs step the times a recording stepped,
// so a run from t finds that frame's record at exactly t.
template <typename History>
void CutHistoryAfter(double t, History& history, CInterface& tool) {
  tool.PushUndo(new CVariableModUndo<History>(&history));
  history.RemoveFrom(std::nextafter(t, std::numeric_limits<double>::infinity()));
}

template <typename History>
void SaveHistoryEntry(util::DataChunk& chunk, const char* key, const History& history) {
  util::Bytes block(history.GetSaveSize());
  history.Save(block.data(), static_cast<std::uint32_t>(block.size()));
  chunk.AddChild(key, std::move(block));
}

// False when the entry is missing or its block is damaged.
template <typename History>
bool LoadHistoryEntry(const util::DataChunk& chunk, const char* key, History& history) {
  const util::DataChunk* entry = chunk.FindChild(key);
  return entry && history.Load(entry->data.data(), entry->data.size());
}

}  // namespace vuk::rgw::addon
