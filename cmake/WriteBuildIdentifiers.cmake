# Writes the source of the four build identifiers. SOURCE_DATE_EPOCH, where set, is the moment of the build.
cmake_host_system_information(RESULT host QUERY HOSTNAME)
string(TIMESTAMP seconds "%s" UTC)
string(TIMESTAMP date "%Y %m %d %H %M")
set(change 0)
execute_process(COMMAND git -C ${SOURCE_DIR} rev-list --count HEAD OUTPUT_VARIABLE count RESULT_VARIABLE failed
  OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
if(NOT failed AND count MATCHES "^[0-9]+$")
  set(change ${count})
endif()
string(REGEX MATCH "......$" change "000000${change}")
set(directory "${host}:${BUILD_DIR}")
if(DEFINED ENV{SOURCE_DATE_EPOCH})
  set(directory "reproducible:build")
endif()
string(REPLACE "\\" "\\\\" directory "${directory}")
string(REPLACE "\"" "\\\"" directory "${directory}")
file(WRITE ${OUTPUT} "// Written by the build.
#include \"Base/Utility/qvUtilBuild.h\"

const char* const gBuildDirectory = \"${directory}\";
const char* const gBuildDate = \"${date}\";
const char* const gBuildChangeSet = \"${change}\";
const std::int64_t gBuildTime = ${seconds};
")
