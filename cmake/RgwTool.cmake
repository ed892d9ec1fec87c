# rgw_tool(<slot> <Name> <folder> SOURCES ...): one built-in tool, in the
# folder plugins/<folder>. It becomes the library vuk::tool_<folder>, slot
# <slot> of the tool table that the aggregate target vuk::tools makes, and
# its tests under tests/plugins/<folder> join the tool tests.
function(rgw_tool slot name folder)
  cmake_parse_arguments(ARG "" "" "SOURCES" ${ARGN})
  list(TRANSFORM ARG_SOURCES PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/${folder}/)
  rgw_library(tool_${folder} SOURCES ${ARG_SOURCES})
  target_link_libraries(rgw_tool_${folder} PUBLIC vuk::sdk vuk::plugin_common)
  get_property(slots GLOBAL PROPERTY RGW_TOOL_SLOTS)
  if(${slot} IN_LIST slots OR slot LESS 0 OR slot GREATER 40)
    message(FATAL_ERROR "rgw_tool(${name}): slot ${slot} is taken or outside 0 to 40")
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
  set(declarations "")
  set(entries "")
  set(libraries "")
  foreach(slot name folder IN ZIP_LISTS slots names folders)
    string(APPEND declarations "CCameraPlugin* Create${name}Plugin();\n")
    string(APPEND entries "    entries[${slot}] = &Create${name}Plugin;\n")
    list(APPEND libraries vuk::tool_${folder})
  endforeach()
  file(CONFIGURE OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/tooltable.cpp @ONLY CONTENT
"// Made by rgw_tool_table() from the rgw_tool lines of plugins/CMakeLists.txt.
#include \"plugins/tools.h\"

namespace vuk::rgw::addon {

@declarations@
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
