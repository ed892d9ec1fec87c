# rgw_tool(<slot> <Name> <folder> [DATA <data path>] [SOURCES <more sources>...] [LIBS <libraries>...]):
# one built-in tool. The line is tied to the code by names alone:
#   plugins/<folder>/<folder>object.h and .cpp hold the class C<Name>Object,
#   with its record `static const ToolInfo kInfo` (plugins/common/toolplugin.h);
#   the tool table's slot <slot> makes its plugin, CToolPlugin<C<Name>Object>;
#   plugins/<folder>/data, its factory profiles, is installed as
#   rigworks/data/<data path>, the record's path;
#   tests/plugins/<folder>/*_test.cpp and tests/plugins/<folder>/tests.cmake
#   join the tool tests, and tests/plugins/<folder>/savedata*.bin are its
#   saved-data fixtures.
#   LIBS are what the tool links beyond the SDK and the tool kit.
# The tool becomes the library vuk::tool_<folder>; vuk::tools links them all.
function(rgw_tool slot name folder)
  cmake_parse_arguments(ARG "" "DATA" "SOURCES;LIBS" ${ARGN})
  set(dir ${CMAKE_CURRENT_SOURCE_DIR}/${folder})
  list(TRANSFORM ARG_SOURCES PREPEND ${dir}/)
  rgw_library(tool_${folder} SOURCES ${dir}/${folder}object.cpp ${ARG_SOURCES})
  target_link_libraries(rgw_tool_${folder} PUBLIC vuk::sdk vuk::plugin_common ${ARG_LIBS})
  get_property(slots GLOBAL PROPERTY RGW_TOOL_SLOTS)
  if(${slot} IN_LIST slots OR slot LESS 0 OR slot GREATER 40)
    message(FATAL_ERROR "rgw_tool(${name}): slot ${slot} is taken or outside 0 to 40")
  endif()
  if(EXISTS ${dir}/data AND NOT ARG_DATA)
    message(FATAL_ERROR "rgw_tool(${name}): plugins/${folder}/data needs DATA <data path>")
  endif()
  if(ARG_DATA)
    install(DIRECTORY ${dir}/data/ DESTINATION rigworks/data/${ARG_DATA})
    set_property(GLOBAL APPEND PROPERTY RGW_TOOL_DATA "${ARG_DATA}=${dir}/data")
  endif()
  set_property(GLOBAL APPEND PROPERTY RGW_TOOL_SLOTS ${slot})
  set_property(GLOBAL APPEND PROPERTY RGW_TOOL_NAMES ${name})
  set_property(GLOBAL APPEND PROPERTY RGW_TOOL_FOLDERS ${folder})
endfunction()

# Writes the tool table of every rgw_tool so far and builds vuk::tools from it.
function(rgw_tool_table)
  get_property(slots GLOBAL PROPERTY RGW_TOOL_SLOTS)
  get_property(names GLOBAL PROPERTY RGW_TOOL_NAMES)
  get_property(folders GLOBAL PROPERTY RGW_TOOL_FOLDERS)
  set(includes "")
  set(entries "")
  set(libraries "")
  foreach(slot name folder IN ZIP_LISTS slots names folders)
    string(APPEND includes "#include \"plugins/${folder}/${folder}object.h\"\n")
    string(APPEND entries "    entries[${slot}] = &MakeToolPlugin<C${name}Object>;\n")
    list(APPEND libraries vuk::tool_${folder})
  endforeach()
  file(CONFIGURE OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/tooltable.cpp @ONLY CONTENT
"// Made by rgw_tool_table() from the rgw_tool lines of plugins/CMakeLists.txt.
#include \"plugins/tools.h\"

@includes@
namespace vuk::rgw::addon {

const ToolTable& BuiltInTools() {
  static const ToolTable table = [] {
    ToolTable entries{};
@entries@    return entries;
  }();
  return table;
}

}  // namespace vuk::rgw::addon
")
  rgw_library(tools SOURCES ${CMAKE_CURRENT_BINARY_DIR}/tooltable.cpp)
  target_link_libraries(rgw_tools PUBLIC vuk::sdk PRIVATE ${libraries})
  set_property(GLOBAL PROPERTY RGW_TOOL_LIBRARIES ${libraries})
endfunction()
