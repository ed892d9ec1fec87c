// The per-frame costs of a history: Set at the end, and Get at random times,
// on histories of 1k, 100k and 1M records at 30 frames per second (an hour
// is 108k records).
#include <benchmark/benchmark.h>

#include <random>
#include <vector>

#include "util/avar.h"

namespace {

using namespace vuk::util;

constexpr double kFrame = 1.0 / 30;

template <typename T>
T SampleValue(int i) {
  if constexpr (std::is_same_v<T, Vector3<double>>) {
    return {i * 0.01, 1.0, -i * 0.02};
  } else if constexpr (std::is_same_v<T, QTransform<double>>) {
    return {{i * 0.01, 0, 0}, Quat<double>{0, 0.001 * i, 0, 1}.Normalize()};
  } else {
    return static_cast<T>(i);
  }
}

template <typename Var>
Var MakeHistory(int records) {
  using T = decltype(Var().defaultValue);
  Var history;
  history.records.reserve(static_cast<std::size_t>(records));
  for (int i = 0; i < records; ++i) history.Set(i * kFrame, SampleValue<T>(i));
  return history;
}

// Appends one frame after the history's end each call; the history is
// rebuilt outside the timing when it has doubled.
template <typename Var>
void BM_AVarSetAtEnd(benchmark::State& state) {
  using T = decltype(Var().defaultValue);
  const int records = static_cast<int>(state.range(0));
  Var history = MakeHistory<Var>(records);
  int next = records;
  for (auto _ : state) {
    benchmark::DoNotOptimize(history.Set(next * kFrame, SampleValue<T>(next)));
    if (++next == 2 * records) {
      state.PauseTiming();
      history.RemoveFrom(records * kFrame);
      next = records;
      state.ResumeTiming();
    }
  }
}

template <typename Var>
void BM_AVarGetRandom(benchmark::State& state) {
  const int records = static_cast<int>(state.range(0));
  const Var history = MakeHistory<Var>(records);
  std::mt19937 random(1);
  std::uniform_real_distribution<double> time(0, records * kFrame);
  std::vector<double> times(4096);
  for (double& t : times) t = time(random);
  std::size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(history.Get(times[i++ & 4095]));
  }
}

#define AVAR_BENCHMARKS(Var)                                                          \
  BENCHMARK_TEMPLATE(BM_AVarSetAtEnd, Var)->Arg(1000)->Arg(100000)->Arg(1000000);   \
  BENCHMARK_TEMPLATE(BM_AVarGetRandom, Var)->Arg(1000)->Arg(100000)->Arg(1000000)

AVAR_BENCHMARKS(AVar_Nearest<QTransform<double>>);
AVAR_BENCHMARKS(AVar_Linear<Vector3<double>>);
AVAR_BENCHMARKS(AVar_Latest<int>);

}  // namespace
