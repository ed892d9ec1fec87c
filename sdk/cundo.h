#pragma once
// Undo records handed to the host's undo stack. A record belongs to the
// receiver once pushed.

#include <string>

#include "sdk/cinterface.h"

namespace vuk::rgw {

class CUndo {
 public:
  // isRealUndo is false when the host only restores the state for a moment.
  virtual void Undo(bool isRealUndo) = 0;
  virtual void Redo() = 0;
  virtual void Release() { delete this; }
  virtual ~CUndo() = default;

  // Release through a pointer that may be null.
  static void Release(CUndo* record) {
    if (record) record->Release();
  }
};

// Replays an immediate configuration change through the tool's callback, with
// the label behind the "REALUNDO" or "REALREDO" marker.
class CREEventUndo : public CUndo {
 public:
  CREEventUndo(CInterface::Callback* callback, std::string undoText, std::string redoText)
      : callback_(callback), undoText_(std::move(undoText)), redoText_(std::move(redoText)) {}

  void Undo(bool) override {
    if (callback_) callback_->Changed(undoText_);
  }
  void Redo() override {
    if (callback_) callback_->Changed(redoText_);
  }

 private:
  CInterface::Callback* callback_;
  std::string undoText_;
  std::string redoText_;
};

}  // namespace vuk::rgw
