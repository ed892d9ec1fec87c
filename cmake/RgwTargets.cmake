# Settings every target of the project shares.
function(rgw_target_defaults target)
  target_compile_options(${target} PRIVATE -Wall -Wextra)
  if(RGW_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()

# rgw_library(<subsystem> SOURCES ...): the library of one subsystem, as vuk::<subsystem>.
function(rgw_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES" ${ARGN})
  add_library(rgw_${name} STATIC ${ARG_SOURCES})
  add_library(vuk::${name} ALIAS rgw_${name})
  target_include_directories(rgw_${name} PUBLIC ${PROJECT_SOURCE_DIR})
  rgw_target_defaults(rgw_${name})
endfunction()
