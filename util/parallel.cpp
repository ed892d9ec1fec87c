#include "util/parallel.h"

#include <algorithm>
#include <atomic>
#include <future>
#include <thread>
#include <vector>

namespace vuk::util {

void ForEachInParallel(std::size_t count, const std::function<void(std::size_t)>& work) {
  std::atomic<std::size_t> next{0};
  const auto take = [&] {
    for (std::size_t i = next++; i < count; i = next++) work(i);
  };
  const std::size_t threads = std::min<std::size_t>(std::max(1u, std::thread::hardware_concurrency()), count);
  std::vector<std::future<void>> helpers;
  for (std::size_t t = 1; t < threads; ++t) helpers.push_back(std::async(std::launch::async, take));
  take();
  for (std::future<void>& helper : helpers) helper.get();
}

}  // namespace vuk::util
