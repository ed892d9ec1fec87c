#include "sdk/cundo.h"

#include <gtest/gtest.h>

#include "sdk/cvariablemodundo.h"

namespace vuk::rgw {
namespace {

TEST(CUndo, MarkerTest) {
  EXPECT_TRUE(HasUndoMarker("REALREDO", kRealRedoMarker));
  EXPECT_FALSE(HasUndoMarker("REALUNDOHide", kRealRedoMarker));
  EXPECT_FALSE(HasUndoMarker("REAL", kRealUndoMarker));
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

}  // namespace
}  // namespace vuk::rgw
