#include "adaptor/standalone/undobuffer.h"

namespace vuk::rgw::adaptor::standalone {

void UndoBuffer::Begin() {
  if (holding_) return;
  holding_ = true;
  ++holdNumber_;
  open_ = Step();
}

bool UndoBuffer::Put(std::unique_ptr<UndoRecord> record) {
  if (!holding_ || restoring_ || !record) return false;
  open_.records.push_back(std::move(record));
  return true;
}

void UndoBuffer::Accept(const std::string& label) {
  if (!holding_) return;
  holding_ = false;
  if (open_.records.empty()) return;
  open_.label = label;
  undo_.push_back(std::move(open_));
  open_ = Step();
  redo_.clear();
}

void UndoBuffer::Cancel() {
  if (!holding_) return;
  holding_ = false;
  restoring_ = true;
  RestoreAll(open_);
  restoring_ = false;
  open_ = Step();
}

bool UndoBuffer::Undo() {
  if (undo_.empty() || holding_) return false;
  restoring_ = true;
  RestoreAll(undo_.back());
  restoring_ = false;
  redo_.push_back(std::move(undo_.back()));
  undo_.pop_back();
  return true;
}

bool UndoBuffer::Redo() {
  if (redo_.empty() || holding_) return false;
  restoring_ = true;
  RedoAll(redo_.back());
  restoring_ = false;
  undo_.push_back(std::move(redo_.back()));
  redo_.pop_back();
  return true;
}

void UndoBuffer::RestoreAll(Step& step) {
  for (auto it = step.records.rbegin(); it != step.records.rend(); ++it) (*it)->Restore();
}

void UndoBuffer::RedoAll(Step& step) {
  for (auto& record : step.records) record->Redo();
}

}  // namespace vuk::rgw::adaptor::standalone
