# Through the command line: a LookAt camera made and simulated
# in the demo scene, and the result read back.
add_test(NAME rgw_run_lookat COMMAND rgw run ${rgw_demo_scene} --tool LookAtCam
  --link TargetMesh=Car --out ${CMAKE_CURRENT_BINARY_DIR}/demo_lookat.gltf)
set_tests_properties(rgw_run_lookat PROPERTIES FIXTURES_REQUIRED rgw_demo FIXTURES_SETUP rgw_demo_result)
# A tool saved in the scene by one process is found and simulated by the next.
add_test(NAME rgw_create_lookat COMMAND rgw create ${rgw_demo_scene} --tool LookAtCam
  --link TargetMesh=Car --out ${CMAKE_CURRENT_BINARY_DIR}/demo_with_tool.gltf)
set_tests_properties(rgw_create_lookat PROPERTIES FIXTURES_REQUIRED rgw_demo FIXTURES_SETUP rgw_demo_tool)
add_test(NAME rgw_run_saved_tool COMMAND rgw run ${CMAKE_CURRENT_BINARY_DIR}/demo_with_tool.gltf
  --out ${CMAKE_CURRENT_BINARY_DIR}/demo_saved_tool.gltf)
set_tests_properties(rgw_run_saved_tool PROPERTIES FIXTURES_REQUIRED rgw_demo_tool FIXTURES_SETUP rgw_demo_saved)
add_test(NAME rgw_show_saved_tool COMMAND rgw scene show ${CMAKE_CURRENT_BINARY_DIR}/demo_saved_tool.gltf)
set_tests_properties(rgw_show_saved_tool PROPERTIES FIXTURES_REQUIRED rgw_demo_saved
  PASS_REGULAR_EXPRESSION "LookAtCam_01_LookAtCam \\(camera\\)  61 keys.*tool LookAtCam_01 \\(LookAtCam\\)")
add_test(NAME rgw_scene_show_result COMMAND rgw scene show ${CMAKE_CURRENT_BINARY_DIR}/demo_lookat.gltf)
set_tests_properties(rgw_scene_show_result PROPERTIES FIXTURES_REQUIRED rgw_demo_result
  PASS_REGULAR_EXPRESSION "LookAtCam_01_LookAtCam \\(camera\\)  61 keys, 0.000 s to 2.000 s")
# The same take simulated by two processes writes the same file, byte for byte.
add_test(NAME rgw_run_lookat_again COMMAND rgw run ${rgw_demo_scene} --tool LookAtCam
  --link TargetMesh=Car --out ${CMAKE_CURRENT_BINARY_DIR}/demo_lookat_again.gltf)
set_tests_properties(rgw_run_lookat_again PROPERTIES FIXTURES_REQUIRED rgw_demo FIXTURES_SETUP rgw_demo_again)
add_test(NAME rgw_run_is_deterministic COMMAND ${CMAKE_COMMAND} -E compare_files
  ${CMAKE_CURRENT_BINARY_DIR}/demo_lookat.gltf ${CMAKE_CURRENT_BINARY_DIR}/demo_lookat_again.gltf)
set_tests_properties(rgw_run_is_deterministic PROPERTIES FIXTURES_REQUIRED "rgw_demo_result;rgw_demo_again")

# A tool saved as a pre-rigged model comes into another scene with new nodes.
add_test(NAME rgw_model_save COMMAND rgw model ${CMAKE_CURRENT_BINARY_DIR}/demo_with_tool.gltf --instance LookAtCam_01
  --out ${CMAKE_CURRENT_BINARY_DIR}/lookat.prm)
set_tests_properties(rgw_model_save PROPERTIES FIXTURES_REQUIRED rgw_demo_tool FIXTURES_SETUP rgw_model)
add_test(NAME rgw_model_load COMMAND rgw create ${rgw_demo_scene} --prm ${CMAKE_CURRENT_BINARY_DIR}/lookat.prm
  --out ${CMAKE_CURRENT_BINARY_DIR}/demo_from_model.gltf)
set_tests_properties(rgw_model_load PROPERTIES FIXTURES_REQUIRED "rgw_demo;rgw_model" PASS_REGULAR_EXPRESSION "made 1 tool from")
