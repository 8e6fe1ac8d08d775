# The flags that every piece of the project is compiled with.
add_library(BaseFlags INTERFACE)
target_compile_options(BaseFlags INTERFACE
  -Wall -Wextra -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-qual -Wformat=2
  -Wno-format-nonliteral -Werror -fvisibility=hidden -fvisibility-inlines-hidden -pthread)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # Calls inside the library go straight to its own functions; nobody replaces one of them.
  target_compile_options(BaseFlags INTERFACE -fno-gnu-unique -fno-semantic-interposition)
endif()
target_link_options(BaseFlags INTERFACE -pthread)
target_include_directories(BaseFlags INTERFACE $<BUILD_INTERFACE:${CMAKE_SOURCE_DIR}/src/Components>)

if(BASE_SANITIZE)
  target_compile_options(BaseFlags INTERFACE -fsanitize=${BASE_SANITIZE} -fno-sanitize-recover=all
    -fno-omit-frame-pointer)
  # The instrumentation hides from the compiler what it could see before.
  target_compile_options(BaseFlags INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  target_link_options(BaseFlags INTERFACE -fsanitize=${BASE_SANITIZE})
endif()
