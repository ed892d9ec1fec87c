#include "tests/support/allocationcount.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::size_t> allocations{0};

void* Allocate(std::size_t size) {
  ++allocations;
  if (void* block = std::malloc(size ? size : 1)) return block;
  throw std::bad_alloc();
}

}  // namespace

std::size_t vuk::test::AllocationsSoFar() { return allocations.load(); }

void* operator new(std::size_t size) { return Allocate(size); }
void* operator new[](std::size_t size) { return Allocate(size); }
void operator delete(void* block) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t) noexcept { std::free(block); }
