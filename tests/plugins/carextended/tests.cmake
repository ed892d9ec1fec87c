# The 4-Wheeler through the command line: made in the demo scene, given a
# take of full gas, simulated from the saved scene, and read back: the body
# drives forward along its minus Z on the built-in plane.
set(car ${CMAKE_CURRENT_BINARY_DIR}/car)
file(WRITE ${car}_take.csv "time,Gas Pedal (Forw/Backw)\n0,1\n3,1\n")
set(car_steps
  "create\;${rgw_demo_scene}\;--tool\;4WheelerExt\;--out\;${car}.gltf"
  "take\;${car}.gltf\;--instance\;4WheelerExt_01\;--csv\;${car}_take.csv\;--out\;${car}.gltf"
  "run\;${car}.gltf\;--out\;${car}_result.gltf")
rgw_steps(rgw_car AFTER rgw_demo STEPS car_steps)
add_test(NAME rgw_car_result COMMAND rgw scene show ${car}_result.gltf)
set_tests_properties(rgw_car_result PROPERTIES FIXTURES_REQUIRED ${rgw_car_last} PASS_REGULAR_EXPRESSION
  "4WheelerExt_01_CarBodyMesh \\(helper\\)  90 keys, 0.033 s to 3.000 s, local \\(0.000, 0.150, -0.000\\) to \\(-?0.000, 0.150, -5.902\\).*tool 4WheelerExt_01 \\(4WheelerExt\\): 9 channels, 9 recorded tracks")

# A frame's allocations, counted through a replaced operator new: a program
# of its own.
rgw_test_suite(plugins_caralloc
  SOURCES ${CMAKE_CURRENT_SOURCE_DIR}/carextended/caralloc.cpp ${CMAKE_CURRENT_SOURCE_DIR}/toolharness.cpp
  LIBS vuk::core vuk::tools vuk::adaptor_standalone vuk::scenes rgw_test_allocation_count)
