#include "adaptor/standalone/gltfclips.h"

#include <tiny_gltf.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <iterator>
#include <limits>
#include <set>

#include "adaptor/standalone/gltfdata.h"
#include "util/parallel.h"

namespace vuk::rgw::adaptor::standalone {

namespace {

using util::Matrix;
using util::Quat;

// Where we keep what glTF can't say: the frame rate in the asset's extras,
// and in a sampler's extras the accessor of its exact ticks.
constexpr const char* kFrameRate = "rgw_frame_rate";
constexpr const char* kTicks = "rgw_ticks";
constexpr std::int32_t kDefaultFrameRate = 30;
constexpr std::int32_t kCommonFrameRates[] = {24, 25, 30, 48, 50, 60};

bool IsTransformPath(const std::string& path) { return path == "translation" || path == "rotation" || path == "scale"; }

Matrix<double> NodePose(const tinygltf::Node& node) {
  Matrix<double> pose;
  if (node.matrix.size() == 16) {
    // Both are column-major with the translation in 12 to 14.
    for (int i = 0; i < 16; ++i) pose.m[i] = node.matrix[static_cast<std::size_t>(i)];
    return pose;
  }
  TransformKey key;
  if (node.translation.size() == 3) key.position = {node.translation[0], node.translation[1], node.translation[2]};
  if (node.rotation.size() == 4) key.rotation = {node.rotation[0], node.rotation[1], node.rotation[2], node.rotation[3]};
  if (node.scale.size() == 3) key.scale = {node.scale[0], node.scale[1], node.scale[2]};
  return key.ToMatrix();
}

// One animated property of a node: its key ticks and values.
struct Curve {
  std::vector<Tick> ticks;
  std::vector<double> values;  // components per key: 3 or 4
  std::size_t components = 3;
  bool step = false;

  bool Empty() const { return ticks.empty(); }
  // The value of key k; up to four components, as many as the curve has.
  std::array<double, 4> Key(std::size_t k) const {
    std::array<double, 4> out{};
    std::copy_n(values.begin() + static_cast<std::ptrdiff_t>(k * components), components, out.begin());
    return out;
  }
  // The value at t: held outside the keys, stepped or linear between them.
  std::array<double, 4> At(Tick t) const {
    const std::size_t n = components;
    const std::size_t i = static_cast<std::size_t>(std::lower_bound(ticks.begin(), ticks.end(), t) - ticks.begin());
    auto value = [&](std::size_t k) { return Key(k); };
    if (i == 0) return value(0);
    if (i == ticks.size()) return value(i - 1);
    if (ticks[i] == t || step) return value(ticks[i] == t ? i : i - 1);
    const double f = static_cast<double>(t - ticks[i - 1]) / static_cast<double>(ticks[i] - ticks[i - 1]);
    const std::array<double, 4> a = value(i - 1), b = value(i);
    if (n == 4) {
      const Quat<double> q = Quat<double>::Slerp({a[0], a[1], a[2], a[3]}, {b[0], b[1], b[2], b[3]}, f);
      return {q.x, q.y, q.z, q.w};
    }
    std::array<double, 4> out{};
    for (std::size_t c = 0; c < n; ++c) out[c] = a[c] + (b[c] - a[c]) * f;
    return out;
  }
};

struct NodeCurves {
  Curve translation, rotation, scale;
};

// Key times beyond 2^53 ticks (some 59,000 years) are refused: below it
// every tick is exact in a double, and the difference of two ticks, which
// interpolation takes, can't overflow.
constexpr double kMaxKeyTicks = 9007199254740992.0;

// The ticks of a sampler: exact when we wrote them beside the times, else
// the nearest tick of each float time.
bool ReadTicks(AccessorReader& reader, const tinygltf::AnimationSampler& sampler, std::vector<Tick>& ticks,
               std::string& problem) {
  std::vector<double> times;
  if (!reader.Floats(sampler.input, 1, times)) return false;
  std::vector<std::uint32_t> exact;
  const int exactIndex = IndexIn(sampler.extras, kTicks);
  if (exactIndex >= 0 && reader.Unsigned(exactIndex, exact) && exact.size() == times.size()) {
    ticks.assign(exact.begin(), exact.end());
    return true;
  }
  ticks.resize(times.size());
  for (std::size_t i = 0; i < times.size(); ++i) {
    const double tick = std::round(times[i] * kTicksPerSecond);
    if (!(std::fabs(tick) <= kMaxKeyTicks)) {
      problem = "accessor " + std::to_string(sampler.input) + " holds a key time that is no number of seconds within the tick range";
      return false;
    }
    ticks[i] = static_cast<Tick>(tick);
  }
  return true;
}

bool ReadCurve(AccessorReader& reader, const tinygltf::AnimationSampler& sampler, Curve& curve, std::string& problem) {
  std::vector<double> values;
  if (!ReadTicks(reader, sampler, curve.ticks, problem) ||
      !reader.Floats(sampler.output, static_cast<int>(curve.components), values)) {
    return false;
  }
  if (!std::all_of(values.begin(), values.end(), [](double v) { return std::isfinite(v); })) {
    problem = "accessor " + std::to_string(sampler.output) + " holds a value that is not a finite number";
    return false;
  }
  curve.step = sampler.interpolation == "STEP";
  const std::size_t n = curve.components;
  if (sampler.interpolation == "CUBICSPLINE") {
    // Taken at the keys: the value stands between the two tangents.
    std::vector<double> middle;
    for (std::size_t k = 0; k * 3 * n + 2 * n <= values.size() && k < curve.ticks.size(); ++k) {
      middle.insert(middle.end(), values.begin() + static_cast<std::ptrdiff_t>(k * 3 * n + n),
                    values.begin() + static_cast<std::ptrdiff_t>(k * 3 * n + 2 * n));
    }
    values = std::move(middle);
  }
  curve.values = std::move(values);
  if (curve.values.size() < curve.ticks.size() * n || !std::is_sorted(curve.ticks.begin(), curve.ticks.end())) {
    problem = "its keys are out of order or lack values";
    return false;
  }
  return true;
}

// The ticks of all three curves, each once, in order.
std::vector<Tick> UnitedTicks(const NodeCurves& curves) {
  const Curve* curvesOf[] = {&curves.translation, &curves.rotation, &curves.scale};
  // Curves keyed on the same ticks, as exporters and we write them, share them.
  const Curve* first = nullptr;
  bool same = true;
  for (const Curve* curve : curvesOf) {
    if (curve->Empty()) continue;
    if (!first) first = curve;
    same = same && curve->ticks == first->ticks;
  }
  const bool rising = first && std::adjacent_find(first->ticks.begin(), first->ticks.end(), std::greater_equal<Tick>()) ==
                                   first->ticks.end();
  if (same && rising) return first->ticks;
  std::vector<Tick> ticks;
  for (const Curve* curve : curvesOf) ticks.insert(ticks.end(), curve->ticks.begin(), curve->ticks.end());
  std::sort(ticks.begin(), ticks.end());
  ticks.erase(std::unique(ticks.begin(), ticks.end()), ticks.end());
  return ticks;
}

void MergeKeys(const NodeCurves& curves, TransformTrack& track) {
  const std::vector<Tick> ticks = UnitedTicks(curves);
  // Curves keyed on every tick, as exporters and we write them, are read
  // key by key rather than searched.
  const bool translationAligned = curves.translation.ticks == ticks;
  const bool rotationAligned = curves.rotation.ticks == ticks;
  const bool scaleAligned = curves.scale.ticks == ticks;
  std::vector<TransformKey> keys;
  keys.reserve(ticks.size());
  for (std::size_t k = 0; k < ticks.size(); ++k) {
    const Tick tick = ticks[k];
    TransformKey key = track.StaticPose();
    key.tick = tick;
    if (!curves.translation.Empty()) {
      const auto v = translationAligned ? curves.translation.Key(k) : curves.translation.At(tick);
      key.position = {v[0], v[1], v[2]};
    }
    if (!curves.rotation.Empty()) {
      const auto v = rotationAligned ? curves.rotation.Key(k) : curves.rotation.At(tick);
      key.rotation = Quat<double>{v[0], v[1], v[2], v[3]}.Normalized();
    }
    if (!curves.scale.Empty()) {
      const auto v = scaleAligned ? curves.scale.Key(k) : curves.scale.At(tick);
      key.scale = {v[0], v[1], v[2]};
    }
    keys.push_back(key);
  }
  track.SetKeys(std::move(keys));
}

// The tick of every key when each fits in 32 bits, else nothing.
std::vector<std::uint32_t> ExactTicks(const std::vector<Tick>& ticks) {
  std::vector<std::uint32_t> exact;
  exact.reserve(ticks.size());
  for (const Tick tick : ticks) {
    if (tick < 0 || tick > std::numeric_limits<std::uint32_t>::max()) return {};
    exact.push_back(static_cast<std::uint32_t>(tick));
  }
  return exact;
}

void AppendTrack(tinygltf::Model& model, int buffer, tinygltf::Animation& clip, int node, const TransformTrack& track) {
  const std::vector<TransformKey>& keys = track.Keys();
  std::vector<float> positions, rotations, scales;
  for (const TransformKey& key : keys) {
    positions.insert(positions.end(), {float(key.position.x), float(key.position.y), float(key.position.z)});
    rotations.insert(rotations.end(), {float(key.rotation.x), float(key.rotation.y), float(key.rotation.z), float(key.rotation.w)});
    scales.insert(scales.end(), {float(key.scale.x), float(key.scale.y), float(key.scale.z)});
  }
  std::vector<Tick> ticks;
  ticks.reserve(keys.size());
  for (const TransformKey& key : keys) ticks.push_back(key.tick);
  const int input = AppendFloats(model, buffer, RisingTimes(ticks), TINYGLTF_TYPE_SCALAR, true);
  const tinygltf::Value extras = TickExtras(model, buffer, ticks);
  const std::pair<const char*, std::pair<const std::vector<float>*, int>> paths[] = {
      {"translation", {&positions, TINYGLTF_TYPE_VEC3}}, {"rotation", {&rotations, TINYGLTF_TYPE_VEC4}}, {"scale", {&scales, TINYGLTF_TYPE_VEC3}}};
  for (const auto& [path, data] : paths) {
    tinygltf::AnimationSampler sampler;
    sampler.input = input;
    sampler.output = AppendFloats(model, buffer, *data.first, data.second, false);
    sampler.interpolation = "LINEAR";
    sampler.extras = extras;
    clip.samplers.push_back(sampler);
    tinygltf::AnimationChannel channel;
    channel.sampler = static_cast<int>(clip.samplers.size() - 1);
    channel.target_node = node;
    channel.target_path = path;
    clip.channels.push_back(channel);
  }
}

}  // namespace

bool ReadTransformTracks(const tinygltf::Model& model, std::vector<TransformTrack>& tracks, std::string& problem) {
  const std::size_t count = model.nodes.size();
  std::vector<NodeCurves> curves(count);
  struct CurveSource {
    const tinygltf::AnimationChannel* channel;
    const tinygltf::AnimationSampler* sampler;
    Curve* curve;
  };
  std::vector<CurveSource> sources;
  for (const tinygltf::Animation& animation : model.animations) {
    for (const tinygltf::AnimationChannel& channel : animation.channels) {
      if (channel.target_node < 0 || static_cast<std::size_t>(channel.target_node) >= count) continue;
      if (!IsTransformPath(channel.target_path)) continue;
      if (channel.sampler < 0 || static_cast<std::size_t>(channel.sampler) >= animation.samplers.size()) {
        problem = "an animation channel names a missing sampler";
        return false;
      }
      NodeCurves& node = curves[static_cast<std::size_t>(channel.target_node)];
      Curve& curve = channel.target_path == "translation" ? node.translation
                     : channel.target_path == "rotation"  ? node.rotation
                                                          : node.scale;
      curve.components = &curve == &node.rotation ? 4 : 3;
      sources.push_back({&channel, &animation.samplers[static_cast<std::size_t>(channel.sampler)], &curve});
    }
  }
  // Long takes give each curve hundreds of thousands of keys: the curves, and
  // then the nodes, are read side by side. A curve that two channels name is
  // read by both, and the later stands, as when read one by one.
  std::vector<Curve> read(sources.size());
  std::vector<std::string> problems(sources.size());
  std::vector<char> readWell(sources.size());
  util::ForEachInParallel(sources.size(), [&](std::size_t i) {
    AccessorReader reader(model, problems[i]);
    read[i].components = sources[i].curve->components;
    readWell[i] = ReadCurve(reader, *sources[i].sampler, read[i], problems[i]);
    if (!readWell[i]) {
      const tinygltf::AnimationChannel& channel = *sources[i].channel;
      problems[i] = NodePlace(model, static_cast<std::size_t>(channel.target_node)) + ", " + channel.target_path +
                    " keys: " + problems[i];
    }
  });
  for (std::size_t i = 0; i < sources.size(); ++i) {
    if (!readWell[i]) {
      problem = problems[i];
      return false;
    }
    *sources[i].curve = std::move(read[i]);
  }
  tracks.assign(count, TransformTrack());
  util::ForEachInParallel(count, [&](std::size_t i) {
    tracks[i].SetStaticPose(TransformKey::FromMatrix(0, NodePose(model.nodes[i])));
    MergeKeys(curves[i], tracks[i]);
  });
  return true;
}

// The first clip with a channel on the node; -1 for none.
int ClipAnimating(const tinygltf::Model& model, int node) {
  for (std::size_t a = 0; a < model.animations.size(); ++a) {
    for (const tinygltf::AnimationChannel& channel : model.animations[a].channels) {
      if (channel.target_node == node) return static_cast<int>(a);
    }
  }
  return -1;
}

std::vector<float> RisingTimes(const std::vector<Tick>& ticks) {
  std::vector<float> times;
  times.reserve(ticks.size());
  for (const Tick tick : ticks) {
    float time = static_cast<float>(SecondsFromTicks(tick));
    if (!times.empty() && time <= times.back()) time = std::nextafter(times.back(), std::numeric_limits<float>::infinity());
    times.push_back(time);
  }
  return times;
}

tinygltf::Value TickExtras(tinygltf::Model& model, int buffer, const std::vector<Tick>& ticks) {
  const std::vector<std::uint32_t> exact = ExactTicks(ticks);
  if (exact.empty()) return tinygltf::Value();
  return tinygltf::Value(tinygltf::Value::Object{{kTicks, tinygltf::Value(AppendUnsigned(model, buffer, exact))}});
}

bool ReadScalarKeys(AccessorReader& reader, const tinygltf::AnimationSampler& sampler, std::vector<Tick>& ticks,
                    std::vector<double>& values, std::string& problem) {
  Curve curve;
  curve.components = 1;
  if (!ReadCurve(reader, sampler, curve, problem)) return false;
  ticks = std::move(curve.ticks);
  values = std::move(curve.values);
  values.resize(ticks.size());
  return true;
}

std::int32_t FrameRateOf(const tinygltf::Model& model) {
  const tinygltf::Value& extras = model.asset.extras;
  if (extras.IsObject() && extras.Has(kFrameRate) && extras.Get(kFrameRate).IsNumber()) {
    const double stored = extras.Get(kFrameRate).GetNumberAsDouble();
    if (stored >= 1 && stored <= kTicksPerSecond) return static_cast<std::int32_t>(stored);
  }
  std::string ignored;
  AccessorReader reader(model, ignored);
  std::set<double> times;
  for (const tinygltf::Animation& animation : model.animations) {
    for (const tinygltf::AnimationSampler& sampler : animation.samplers) {
      std::vector<double> input;
      if (!reader.Floats(sampler.input, 1, input)) continue;
      std::copy_if(input.begin(), input.end(), std::inserter(times, times.end()), [](double t) { return std::isfinite(t); });
    }
  }
  if (times.empty()) return kDefaultFrameRate;
  for (std::int32_t rate : kCommonFrameRates) {
    const bool onFrames = std::all_of(times.begin(), times.end(), [&](double time) {
      // A float time is a frame when the frame's time, as a float, is it;
      // within a few float steps for exporters that sum their times.
      const double frame = std::round(time * rate) / rate;
      const double step = std::nextafter(static_cast<float>(std::fabs(time)), std::numeric_limits<float>::infinity()) - std::fabs(time);
      return std::fabs(frame - time) <= 4 * step + 1e-9;
    });
    if (onFrames) return rate;
  }
  return kDefaultFrameRate;
}

void StoreFrameRate(tinygltf::Model& model, std::int32_t framesPerSecond) {
  tinygltf::Value::Object extras;
  if (model.asset.extras.IsObject()) extras = model.asset.extras.Get<tinygltf::Value::Object>();
  extras[kFrameRate] = tinygltf::Value(framesPerSecond);
  model.asset.extras = tinygltf::Value(std::move(extras));
}

void WriteTransformTracks(tinygltf::Model& model, int buffer,
                          const std::vector<std::pair<int, const TransformTrack*>>& nodes) {
  std::vector<int> clipOf;
  std::set<int> written;
  for (const auto& [node, track] : nodes) {
    clipOf.push_back(std::max(0, ClipAnimating(model, node)));
    written.insert(node);
  }
  for (tinygltf::Animation& clip : model.animations) {
    clip.channels.erase(std::remove_if(clip.channels.begin(), clip.channels.end(),
                                       [&](const tinygltf::AnimationChannel& c) {
                                         return written.count(c.target_node) && IsTransformPath(c.target_path);
                                       }),
                        clip.channels.end());
  }
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    const auto& [node, track] = nodes[i];
    if (track->Keys().empty()) continue;
    if (model.animations.empty()) {
      model.animations.emplace_back();
      model.animations.back().name = "Rigworks";
    }
    AppendTrack(model, buffer, model.animations[static_cast<std::size_t>(clipOf[i])], node, *track);
  }
}

}  // namespace vuk::rgw::adaptor::standalone
