#pragma once
// A ground for the car core without a scene: the plane y = 0, or a step of
// some height in front of a line z = stepZ. Each frame every wheel's hit
// point is its mount dropped onto the ground, with the compression there
// and the distance from last frame's hit. Also the raw inputs a device gives.

#include <cmath>

#include "plugins/common/vehicle/carcam.h"

namespace vuk::rgw::addon::test {

struct TestGround {
  double stepZ = -1e300;  // ground at stepHeight where z < stepZ
  double stepHeight = 0;
  bool inTheAir = false;  // every wheel misses the ground

  void Feed(CCarCam& car, bool first = false) const {
    for (std::size_t i = 0; i < car.wheels.size(); ++i) {
      const CarVector mount = car.WheelMountWorld(i);
      const CarVector hit{mount.x, mount.z < stepZ ? stepHeight : 0.0, mount.z};
      WheelGround& ground = car.wheels[i].ground;
      ground.distanceDriven = first ? 0.0 : (hit - ground.hitPoint).Length();
      ground.hitPoint = hit;
      ground.normal = {0, 1, 0};
      ground.inTheAir = inTheAir;
      ground.compression = car.CompressionAt(i, hit);
      if (first) car.wheels[i].hitPointFormer = hit;
    }
  }

  // One frame of the car on this ground.
  void Frame(CCarCam& car, double dt) const {
    car.StepA(dt);
    Feed(car);
    car.StepB();
  }
};

// Raw inputs as a device would give them, set again before every frame.
struct Drive {
  double gas = 0;
  double steering = 0;
  double booster = 0;
};

inline void Apply(CCarCam& car, const Drive& drive) {
  car.inputs[pcInput_GAS_PEDAL].raw = drive.gas;
  car.inputs[pcInput_STEERING_WHEEL].raw = drive.steering;
  car.inputs[pcInput_BOOSTER].raw = drive.booster;
  for (CarInput held : {pcInput_ABS_BRAKE, pcInput_SKIDDING, pcInput_SKID_BRAKE, pcInput_GRAVEL_SHAKE,
                        pcInput_BURNOUT, pcInput_EXTERNAL_FORCE}) {
    car.inputs[held].raw = 0;
  }
}

// The default rig scaled as a whole, started on the ground.
inline CCarCam StartedCar(const TestGround& ground, double scale = 1.0) {
  CCarCam car;
  car.dLength *= scale;
  car.dRideHeight *= scale;
  for (CarWheel& wheel : car.wheels) {
    wheel.radius *= scale;
    wheel.x *= scale;
    wheel.z *= scale;
  }
  car.Start();
  ground.Feed(car, true);
  return car;
}

}  // namespace vuk::rgw::addon::test
