# Big-endian Linux (s390x) by Debian's cross compiler; programs run under qemu's user emulation.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR s390x)
set(CMAKE_C_COMPILER s390x-linux-gnu-gcc) # for GoogleTest
set(CMAKE_CXX_COMPILER s390x-linux-gnu-g++)
list(APPEND CMAKE_FIND_ROOT_PATH /usr/s390x-linux-gnu)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# A locale's files have the machine's byte order, so this machine's own do not serve.
cmake_path(ABSOLUTE_PATH CMAKE_CURRENT_LIST_DIR NORMALIZE OUTPUT_VARIABLE here)
cmake_path(APPEND here .. .. build locale.bigendian OUTPUT_VARIABLE locales)
cmake_path(NORMAL_PATH locales)
if(NOT EXISTS ${locales}/C.UTF-8)
  file(MAKE_DIRECTORY ${locales})
  execute_process(COMMAND localedef --big-endian -i C -f UTF-8 ${locales}/C.UTF-8 COMMAND_ERROR_IS_FATAL ANY)
endif()
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-s390x -L /usr/s390x-linux-gnu -E LOCPATH=${locales})
