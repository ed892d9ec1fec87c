# A whole job on a tool with a channel, one process per step as the main job
# goes: made, set, bound, a take imported, simulated, read back; then
# simulated again from its own result, which changes nothing.
set(job ${CMAKE_CURRENT_BINARY_DIR}/job.gltf)
set(job_steps
  "create\;${rgw_demo_scene}\;--tool\;1DPositioner\;--link\;RelativeCage=Car\;--out\;${job}"
  "set\;${job}\;--instance\;1DPositioner_01\;--value\;Position Maximum=2\;--out\;${job}"
  "bind\;${job}\;--instance\;1DPositioner_01\;--profile\;Keyboard\;--out\;${job}"
  "take\;${job}\;--instance\;1DPositioner_01\;--csv\;${PROJECT_SOURCE_DIR}/data/demo/1dpositioner_take.csv\;--out\;${job}"
  "run\;${job}\;--out\;${CMAKE_CURRENT_BINARY_DIR}/job_result.gltf"
  "run\;${CMAKE_CURRENT_BINARY_DIR}/job_result.gltf\;--out\;${CMAKE_CURRENT_BINARY_DIR}/job_again.gltf")
rgw_steps(rgw_job AFTER rgw_demo STEPS job_steps)
add_test(NAME rgw_job_result COMMAND rgw scene show ${CMAKE_CURRENT_BINARY_DIR}/job_result.gltf)
set_tests_properties(rgw_job_result PROPERTIES FIXTURES_REQUIRED ${rgw_job_last} PASS_REGULAR_EXPRESSION
  "RelativeCage \\(helper\\)  60 keys, 0.033 s to 2.000 s, local \\(0.000, 0.000, 0.000\\) to \\(0.000, 0.000, -0.299\\).*channel Position: bound to Up and Down keys, take of 61 samples")
add_test(NAME rgw_job_again_is_the_same COMMAND ${CMAKE_COMMAND} -E compare_files
  ${CMAKE_CURRENT_BINARY_DIR}/job_result.gltf ${CMAKE_CURRENT_BINARY_DIR}/job_again.gltf)
set_tests_properties(rgw_job_again_is_the_same PROPERTIES FIXTURES_REQUIRED ${rgw_job_last})
add_test(NAME rgw_bind_unknown_profile COMMAND rgw bind ${job} --instance 1DPositioner_01 --profile Nope
  --out ${CMAKE_CURRENT_BINARY_DIR}/unused.gltf)
set_tests_properties(rgw_bind_unknown_profile PROPERTIES FIXTURES_REQUIRED rgw_job_1
  PASS_REGULAR_EXPRESSION "\"Nope\" is neither a file nor an input profile of 1DPositioner")
# A file opened and saved many times still passes the glTF validator.
add_test(NAME gltf_validator_resaved COMMAND node ${PROJECT_SOURCE_DIR}/tests/tools/validate_gltf.js
  ${CMAKE_CURRENT_BINARY_DIR}/job_again.gltf)
set_tests_properties(gltf_validator_resaved PROPERTIES FIXTURES_REQUIRED ${rgw_job_last}
  ENVIRONMENT NODE_PATH=${PROJECT_SOURCE_DIR}/build-tools/node/node_modules)

# A take longer than the scene's keys is simulated to its end when no range is given.
set(long_take ${CMAKE_CURRENT_BINARY_DIR}/long_take.csv)
file(WRITE ${long_take} "time,Position\n0,0\n1,1\n3.5,0\n")
add_test(NAME rgw_take_longer_than_the_keys COMMAND rgw take ${job} --instance 1DPositioner_01 --csv ${long_take}
  --out ${CMAKE_CURRENT_BINARY_DIR}/long.gltf)
set_tests_properties(rgw_take_longer_than_the_keys PROPERTIES FIXTURES_REQUIRED rgw_job_4 FIXTURES_SETUP rgw_long_take)
add_test(NAME rgw_run_to_the_end_of_the_take COMMAND rgw run ${CMAKE_CURRENT_BINARY_DIR}/long.gltf
  --out ${CMAKE_CURRENT_BINARY_DIR}/long_result.gltf)
set_tests_properties(rgw_run_to_the_end_of_the_take PROPERTIES FIXTURES_REQUIRED rgw_long_take
  PASS_REGULAR_EXPRESSION "simulated over 0.000 s to 3.500 s")
