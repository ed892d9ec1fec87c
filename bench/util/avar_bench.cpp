// The per-frame costs of a history: Set at the end, and Get at random times,
// on histories of 1k, 100k and 1M records at 30 frames per second (an hour
// is 108k records). Time per iteration is the cost of one call.
#include <benchmark/benchmark.h>

#include <random>
#include <type_traits>
#include <vector>

#include "util/avar.h"

namespace {

using namespace vuk::util;

constexpr double kFrame = 1.0 / 30;

template <typename T>
T SampleValue(int i) {
  if constexpr (std::is_same_v<T, Vector3<double>>) {
    Vector3<double> v;
    v.x = i * 0.01;
    v.y = 1.0;
    v.z = -i * 0.02;
    return v;
  } else if constexpr (std::is_same_v<T, QTransform<double>>) {
    QTransform<double> pose;
    pose.translation.x = i * 0.01;
    pose.rotation.y = 0.001 * i;
    return pose;
  } else {
    return static_cast<T>(i);
  }
}

template <typename Var>
Var MakeHistory(int records) {
  using T = typename Var::Value;
  Var history;
  history.records.reserve(static_cast<std::size_t>(records));
  for (int i = 0; i < records; ++i) history.Set(i * kFrame, SampleValue<T>(i));
  return history;
}

// Appends one frame after the history's end each call; when the history has
// doubled it is cut back to its starting length outside the timing, so the
// length stays between N and 2N.
template <typename Var>
void BM_AVarSetAtEnd(benchmark::State& state) {
  using T = typename Var::Value;
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

// Reads at random times over the whole history, mostly between records, so
// each call searches and interpolates.
template <typename Var>
void BM_AVarGetRandom(benchmark::State& state) {
  const int records = static_cast<int>(state.range(0));
  const Var history = MakeHistory<Var>(records);
  std::mt19937 random(1);
  std::uniform_real_distribution<double> time(0, records * kFrame);
  constexpr std::size_t kTimes = 1 << 16;
  std::vector<double> times(kTimes);
  for (double& t : times) t = time(random);
  std::size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(history.Get(times[i++ & (kTimes - 1)]));
  }
}

#define AVAR_BENCHMARKS(Var)                                                        \
  BENCHMARK_TEMPLATE(BM_AVarSetAtEnd, Var)->Arg(1000)->Arg(100000)->Arg(1000000); \
  BENCHMARK_TEMPLATE(BM_AVarGetRandom, Var)->Arg(1000)->Arg(100000)->Arg(1000000)

AVAR_BENCHMARKS(AVar_Nearest<QTransform<double>>);
AVAR_BENCHMARKS(AVar_Linear<Vector3<double>>);
AVAR_BENCHMARKS(AVar_Linear<double>);
AVAR_BENCHMARKS(AVar_Latest<int>);

}  // namespace
