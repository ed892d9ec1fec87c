#pragma once
// Independent pieces of work spread over the machine's cores, for loading
// big scenes: each index is worked once, by whichever thread is free.

#include <cstddef>
#include <functional>

namespace vuk::util {

// Calls work(i) for every i below count, on up to one thread per core, and
// returns when all are done. Work items must not touch each other's data.
void ForEachInParallel(std::size_t count, const std::function<void(std::size_t)>& work);

}  // namespace vuk::util
