#pragma once
// A tool's simulation state frame by frame: one history per field of a plain
// state record, saved under a key of its own. Runs step the times a
// recording stepped, so a run from t finds that frame's state at exactly t;
// flags and counts hold until the next frame, numbers are taken as recorded.

#include <cmath>
#include <limits>
#include <memory>
#include <type_traits>
#include <vector>

#include "sdk/cinterface.h"
#include "sdk/cvariablemodundo.h"
#include "util/avar.h"
#include "util/datachunk.h"

namespace vuk::rgw::addon {

template <typename State>
class StateHistory {
 public:
  StateHistory() = default;
  StateHistory(const StateHistory&) = delete;
  StateHistory& operator=(const StateHistory&) = delete;

  // Keeps the field under the key; the order of the calls is the saved order.
  template <typename Value>
  StateHistory& Add(const char* key, Value State::*member) {
    fields_.push_back(std::make_unique<Field<Value>>(key, member));
    return *this;
  }

  // Keeps the state after the frame at t; a record at t is replaced.
  void Record(double t, const State& state) {
    for (auto& field : fields_) field->Record(t, state);
  }
  // Forgets every frame after t, the forgotten frames going to the tool's
  // undo first; then puts the state back as it stood after the frame at t,
  // or leaves it as given when no frame is left.
  void RewindTo(double t, State& state, CInterface& tool) {
    const double after = std::nextafter(t, std::numeric_limits<double>::infinity());
    for (auto& field : fields_) field->CutFrom(after, tool);
    if (IsEmpty()) return;
    for (auto& field : fields_) field->Restore(state);
  }
  bool IsEmpty() const { return fields_.empty() || fields_.front()->Frames() == 0; }

  void SaveTo(util::DataChunk& chunk) const {
    for (const auto& field : fields_) field->SaveTo(chunk);
  }
  // False, and the history left as it was, when an entry is missing or
  // damaged or the fields disagree on their frames.
  bool LoadFrom(const util::DataChunk& chunk) {
    bool complete = true;
    for (auto& field : fields_) complete = complete && field->Read(chunk);
    for (const auto& field : fields_) complete = complete && field->ReadFrames() == fields_.front()->ReadFrames();
    if (complete) {
      for (auto& field : fields_) field->TakeRead();
    }
    return complete;
  }

 private:
  class FieldBase {
   public:
    virtual ~FieldBase() = default;
    virtual void Record(double t, const State& state) = 0;
    virtual void CutFrom(double t, CInterface& tool) = 0;
    // The last record's value.
    virtual void Restore(State& state) const = 0;
    virtual std::size_t Frames() const = 0;
    virtual void SaveTo(util::DataChunk& chunk) const = 0;
    // Reads the field's entry aside; TakeRead makes it the history.
    virtual bool Read(const util::DataChunk& chunk) = 0;
    virtual std::size_t ReadFrames() const = 0;
    virtual void TakeRead() = 0;
  };

  template <typename Value>
  class Field : public FieldBase {
   public:
    using History = std::conditional_t<std::is_integral_v<Value>, util::AVar_Latest<Value>, util::AVar_Nearest<Value>>;

    Field(const char* key, Value State::*member) : key_(key), member_(member) {}
    void Record(double t, const State& state) override { history_.Set(t, state.*member_); }
    void CutFrom(double t, CInterface& tool) override {
      tool.PushUndo(new CVariableModUndo<History>(&history_));
      history_.RemoveFrom(t);
    }
    void Restore(State& state) const override { state.*member_ = history_.records.back().value; }
    std::size_t Frames() const override { return history_.records.size(); }
    void SaveTo(util::DataChunk& chunk) const override {
      util::Bytes block(history_.GetSaveSize());
      history_.Save(block.data(), static_cast<std::uint32_t>(block.size()));
      chunk.AddChild(key_, std::move(block));
    }
    bool Read(const util::DataChunk& chunk) override {
      const util::DataChunk* entry = chunk.FindChild(key_);
      return entry && read_.Load(entry->data.data(), entry->data.size());
    }
    std::size_t ReadFrames() const override { return read_.records.size(); }
    void TakeRead() override {
      history_.records.swap(read_.records);
      read_.records.clear();
    }

   private:
    const char* key_;
    Value State::*member_;
    History history_;
    History read_;
  };

  std::vector<std::unique_ptr<FieldBase>> fields_;
};

}  // namespace vuk::rgw::addon
