# Sourced by the demos' steps: the scene every vehicle and camera demo starts
# from.

# Solids of a 4-Wheeler's body and wheels, so that any glTF viewer draws it.
car_solids=()
for node in CarBodyMesh WheelMesh_FL WheelMesh_FR WheelMesh_BL WheelMesh_BR; do car_solids+=(--solid "$node"); done

# car_scene RGW OUTPUT_FOLDER SCENE_FILE: the rolling terrain with its jump
# ramp, and a 4-Wheeler, "Car", whose ground is the terrain (its
# GravityDirectionMesh linked onto it) and the ramp (hung below that node),
# given the shipped take (data/demo/4wheeler_take.csv, made by
# scripts/make-demo-take), with wheels that let go of the ground past the
# ramp's lip, so that it flies.
car_scene() {
  local rgw="$1" out="$2" scene="$3"
  local data
  data="$(cd "$(dirname "${BASH_SOURCE[0]}")/../data/demo" && pwd)"
  "$rgw" scene demo "$out/terrain.gltf" --terrain
  "$rgw" create "$out/terrain.gltf" --tool 4WheelerExt --name Car "${car_solids[@]}" \
    --link GravityDirectionMesh=Terrain --child GravityDirectionMesh=Ramp --out "$scene"
  "$rgw" take "$scene" --instance Car --csv "$data/4wheeler_take.csv" --out "$scene"
  "$rgw" set "$scene" --instance Car --value "Enable Wheel Ground Release=1" --out "$scene"
}
