# Runs the command line with a fresh user folder, as a user's first run: the
# core's log is written there with its start, and the adaptor's settings are made.
# -DRGW=<rgw> -DFOLDER=<scratch folder>
file(REMOVE_RECURSE ${FOLDER})
execute_process(COMMAND ${CMAKE_COMMAND} -E env XDG_DATA_HOME=${FOLDER} ${RGW} scene demo ${FOLDER}/demo.gltf
  RESULT_VARIABLE code)
if(NOT code EQUAL 0)
  message(FATAL_ERROR "rgw scene demo ended with ${code}")
endif()
set(log ${FOLDER}/rigworks/data/core/core.log)
if(NOT EXISTS ${log})
  message(FATAL_ERROR "no log at ${log}")
endif()
file(READ ${log} text)
if(NOT text MATCHES "^[0-9-]+T[0-9:.]+Z INFO core started with \"Standalone Adaptor\"\n")
  message(FATAL_ERROR "the log doesn't start with the core's start:\n${text}")
endif()
if(NOT EXISTS ${FOLDER}/rigworks/data/adaptor_standalone/settings.xml)
  message(FATAL_ERROR "no settings.xml in ${FOLDER}/rigworks/data/adaptor_standalone")
endif()
