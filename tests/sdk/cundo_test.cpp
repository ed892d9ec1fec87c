#include "sdk/cundo.h"

#include <gtest/gtest.h>

#include "sdk/cvariablemodundo.h"

namespace vuk::rgw {
namespace {

class Recorder : public CInterface::Callback {
 public:
  void Changed(std::string label) override { labels.push_back(label); }
  std::vector<std::string> labels;
};

TEST(CREEventUndo, ReplaysTheMarkedLabels) {
  Recorder recorder;
  CREEventUndo record(&recorder, "REALUNDOWireframe Mode", "REALREDOWireframe Mode");
  record.Undo(false);
  record.Redo();
  record.Undo(true);
  EXPECT_EQ(recorder.labels, (std::vector<std::string>{"REALUNDOWireframe Mode", "REALREDOWireframe Mode",
                                                       "REALUNDOWireframe Mode"}));
}

TEST(CUndo, MarkerTest) {
  EXPECT_TRUE(HasUndoMarker("REALUNDOHide", kRealUndoMarker));
  EXPECT_TRUE(HasUndoMarker("REALREDO", kRealRedoMarker));
  EXPECT_FALSE(HasUndoMarker("REALUNDOHide", kRealRedoMarker));
  EXPECT_FALSE(HasUndoMarker("REAL", kRealUndoMarker));
  EXPECT_FALSE(HasUndoMarker("", kRealUndoMarker));
}

// Sequences of calls and the value and swapped flag after each.
struct Step {
  enum Call { kUndoReal, kUndoTemporary, kRedo } call;
  double value;
  bool swapped;
};

class CVariableModUndoSequence : public testing::TestWithParam<std::vector<Step>> {};

TEST_P(CVariableModUndoSequence, FollowsTheSwapRules) {
  double variable = 1.0;
  CVariableModUndo<double> record(&variable);
  variable = 2.0;  // the change the record protects
  for (const Step& step : GetParam()) {
    if (step.call == Step::kUndoReal) record.Undo(true);
    if (step.call == Step::kUndoTemporary) record.Undo(false);
    if (step.call == Step::kRedo) record.Redo();
    EXPECT_EQ(variable, step.value);
    EXPECT_EQ(record.swapped, step.swapped);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Sequences, CVariableModUndoSequence,
    testing::Values(
        // Two real undos exchange once.
        std::vector<Step>{{Step::kUndoReal, 1.0, true}, {Step::kUndoReal, 1.0, true}, {Step::kRedo, 2.0, false}},
        // Redo without undo does nothing.
        std::vector<Step>{{Step::kRedo, 2.0, false}},
        // A temporary restore leaves the flag alone.
        std::vector<Step>{{Step::kUndoTemporary, 1.0, false}, {Step::kRedo, 1.0, false}},
        std::vector<Step>{{Step::kUndoReal, 1.0, true}, {Step::kUndoTemporary, 2.0, true}, {Step::kRedo, 2.0, false}}));

TEST(CVariableModUndo, TakesAWholeHistoryBack) {
  util::AVar_Linear<double> history;
  history.Set(0.0, 1.0);
  auto* record = new CVariableModUndo<util::AVar_Linear<double>>(&history);
  history.Set(1.0, 5.0);
  record->Undo(true);
  EXPECT_EQ(history.records.size(), 1u);
  record->Redo();
  EXPECT_EQ(history.records.size(), 2u);
  EXPECT_EQ(history.Get(0.5), 3.0);
  CUndo::Release(record);
  CUndo::Release(nullptr);
}

}  // namespace
}  // namespace vuk::rgw
