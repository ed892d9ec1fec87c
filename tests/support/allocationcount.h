#pragma once
// Counts the heap allocations of a stretch of code, for the tests that hold
// a per-frame path to allocating nothing once warm. A test program links
// rgw_test_allocation_count, which replaces the global operator new.

#include <cstddef>

namespace vuk::test {

// Allocations made by any thread since the program started.
std::size_t AllocationsSoFar();

// The allocations made since this object was made.
class AllocationCount {
 public:
  AllocationCount() : start_(AllocationsSoFar()) {}
  std::size_t Made() const { return AllocationsSoFar() - start_; }

 private:
  std::size_t start_;
};

}  // namespace vuk::test
