#pragma once
// The host's undo: a hold that gathers records while it is open, accepted
// as one labelled step or cancelled, and stacks of steps to undo and redo.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace vuk::rgw::adaptor::standalone {

class UndoRecord {
 public:
  virtual ~UndoRecord() = default;
  virtual void Restore() = 0;
  virtual void Redo() = 0;
};

class UndoBuffer {
 public:
  void Begin();
  bool IsHolding() const { return holding_; }
  // Counts the holds begun, so that a change can be recorded once per hold.
  std::uint64_t HoldNumber() const { return holdNumber_; }
  // True while a step is being undone or redone: nothing may be recorded.
  bool IsRestoring() const { return restoring_; }
  // Kept while a hold is open; otherwise dropped at once. Answers whether it was kept.
  bool Put(std::unique_ptr<UndoRecord> record);
  // Closes the hold as one step; a step with no record is not kept. A new
  // step ends what could be redone.
  void Accept(const std::string& label);
  // Closes the hold and takes back what it gathered.
  void Cancel();
  bool Undo();
  bool Redo();

  std::size_t UndoCount() const { return undo_.size(); }
  std::size_t RedoCount() const { return redo_.size(); }
  // The label of the step an undo would take back; empty when none.
  std::string NextUndoLabel() const { return undo_.empty() ? std::string() : undo_.back().label; }

 private:
  struct Step {
    std::string label;
    std::vector<std::unique_ptr<UndoRecord>> records;
  };
  static void RestoreAll(Step& step);
  static void RedoAll(Step& step);

  bool holding_ = false;
  bool restoring_ = false;
  std::uint64_t holdNumber_ = 0;
  Step open_;
  std::vector<Step> undo_;
  std::vector<Step> redo_;
};

}  // namespace vuk::rgw::adaptor::standalone
