#include "util/parallel.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <mutex>
#include <thread>
#include <vector>

namespace vuk::util {
namespace {

class ForEachInParallelTest : public ::testing::TestWithParam<std::size_t> {};

TEST_P(ForEachInParallelTest, WorksEachIndexExactlyOnce) {
  const std::size_t count = GetParam();
  std::vector<std::atomic<int>> calls(count);
  ForEachInParallel(count, [&](std::size_t i) { ++calls[i]; });
  for (std::size_t i = 0; i < count; ++i) EXPECT_EQ(calls[i].load(), 1) << "index " << i;
}

INSTANTIATE_TEST_SUITE_P(Counts, ForEachInParallelTest, ::testing::Values(0, 1, 2, 7, 1000));

TEST(ForEachInParallel, UsesMoreThanOneThreadWhereTheMachineHasThem) {
  if (std::thread::hardware_concurrency() < 2) GTEST_SKIP() << "one core";
  std::mutex lock;
  std::vector<std::thread::id> seen;
  // Each item waits a while for the other to start, which only another
  // thread can do; one thread alone would run them one after the other.
  std::atomic<int> started{0};
  ForEachInParallel(2, [&](std::size_t) {
    ++started;
    const auto giveUp = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (started.load() < 2 && std::chrono::steady_clock::now() < giveUp) std::this_thread::yield();
    std::lock_guard<std::mutex> guard(lock);
    seen.push_back(std::this_thread::get_id());
  });
  ASSERT_EQ(seen.size(), 2u);
  EXPECT_NE(seen[0], seen[1]);
}

}  // namespace
}  // namespace vuk::util
