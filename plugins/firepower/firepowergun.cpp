#include "plugins/firepower/firepowergun.h"

#include <algorithm>
#include <cmath>

#include "util/bytes.h"

namespace vuk::rgw::addon {

namespace {

constexpr char kPositionsKey[] = "positions";
constexpr char kVelocitiesKey[] = "velocities";
constexpr double kTwoPi = 6.283185307179586;

template <typename History>
void AddHistory(util::DataChunk& chunk, const char* key, const History& history) {
  util::Bytes block(history.GetSaveSize());
  history.Save(block.data(), static_cast<std::uint32_t>(block.size()));
  chunk.AddChild(key, std::move(block));
}

template <typename History>
bool ReadHistory(const util::DataChunk& chunk, const char* key, History& history) {
  const util::DataChunk* entry = chunk.FindChild(key);
  return entry && history.Load(entry->data.data(), entry->data.size());
}

}  // namespace

util::DataChunk Bullet::Save() const {
  util::Bytes bytes;
  util::ByteWriter out(bytes);
  out.Put(birth);
  out.Put(static_cast<std::uint8_t>(collided));
  for (double value : {spinAxis.x, spinAxis.y, spinAxis.z, spin, rotation.x, rotation.y, rotation.z, rotation.w}) {
    out.Put(value);
  }
  util::DataChunk chunk(name, std::move(bytes));
  AddHistory(chunk, kPositionsKey, positions);
  AddHistory(chunk, kVelocitiesKey, velocities);
  return chunk;
}

bool Bullet::Load(const util::DataChunk& chunk) {
  Bullet read;
  read.name = chunk.name;
  util::ByteReader in(chunk.data);
  std::uint8_t hit = 0;
  double values[8] = {};
  bool complete = in.Get(read.birth) && in.Get(hit) && hit <= 1;
  for (double& value : values) complete = complete && in.Get(value);
  if (!complete || in.Remaining() != 0 || read.name.empty() || !ReadHistory(chunk, kPositionsKey, read.positions) ||
      !ReadHistory(chunk, kVelocitiesKey, read.velocities)) {
    return false;
  }
  read.collided = hit != 0;
  read.spinAxis = {values[0], values[1], values[2]};
  read.spin = values[3];
  read.rotation = {values[4], values[5], values[6], values[7]};
  *this = std::move(read);
  return true;
}

void FlyFreely(Vector3& position, Vector3& velocity, double dt, double gravity, double airResistance) {
  const Vector3 acceleration = Vector3(0, -gravity, 0) - velocity * (airResistance * velocity.Length());
  position += velocity * dt + acceleration * (0.5 * dt * dt);
  velocity += acceleration * dt;
}

Vector3 SpreadDirection(double halfAngle, double u, double v) {
  // Even over the cap: the cosine of the angle off the axis is uniform.
  const double cosine = 1 - u * (1 - std::cos(halfAngle));
  const double sine = std::sqrt(std::max(0.0, 1 - cosine * cosine));
  const double around = kTwoPi * v;
  return {sine * std::cos(around), sine * std::sin(around), -cosine};
}

}  // namespace vuk::rgw::addon
