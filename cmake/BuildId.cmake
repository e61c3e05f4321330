# Writes OUTPUT, the header that names the commit a build came from ("+changes"
# when the tree differs from it) and the build type; rewritten only when its
# words change, so that a build with nothing new compiles nothing again.
execute_process(COMMAND git -C "${SOURCE_DIR}" describe --always --dirty=+changes --abbrev=12
                OUTPUT_VARIABLE id ERROR_QUIET OUTPUT_STRIP_TRAILING_WHITESPACE RESULT_VARIABLE failed)
if(failed OR id STREQUAL "")
  set(id "of a source tree without its history")
endif()
if(NOT BUILD_TYPE STREQUAL "")
  string(APPEND id ", ${BUILD_TYPE}")
endif()
set(text "// Made by the build: the commit the program was built from.\n#pragma once\n\ninline constexpr const char* kBuildId = \"${id}\";\n")
set(old "")
if(EXISTS "${OUTPUT}")
  file(READ "${OUTPUT}" old)
endif()
if(NOT old STREQUAL text)
  file(WRITE "${OUTPUT}" "${text}")
endif()
