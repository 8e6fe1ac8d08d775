# base_component(NAME
#   HEADERS       installed headers
#   SOURCES       sources and private headers
#   TESTS         white-box tests: they link the component's objects statically and see hidden symbols
#   PUBLIC_TESTS  tests of the exported interface: they link the shared library
#   THREADED      the tests run threads, and so are run under the thread sanitizer too)
#
# Makes the OBJECT library Base<NAME>, adds it to the shared library, and registers the tests as
# <NAME>Tests and <NAME>PublicTests.
function(base_component name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "THREADED" "" "HEADERS;SOURCES;TESTS;PUBLIC_TESTS")
  if(arg_SOURCES)
    add_library(Base${name} OBJECT ${arg_HEADERS} ${arg_SOURCES})
    target_link_libraries(Base${name} PRIVATE BaseFlags)
    target_compile_definitions(Base${name} PRIVATE QV_BASE_BUILD)
    set_property(GLOBAL APPEND PROPERTY BASE_COMPONENTS Base${name})
  endif()
  foreach(header IN LISTS arg_HEADERS)
    cmake_path(ABSOLUTE_PATH header BASE_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR} NORMALIZE)
    set_property(GLOBAL APPEND PROPERTY BASE_HEADERS ${header})
  endforeach()
  foreach(source IN LISTS arg_HEADERS arg_SOURCES)
    cmake_path(ABSOLUTE_PATH source BASE_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR})
    set_property(GLOBAL APPEND PROPERTY BASE_INPUTS ${source})
  endforeach()
  set(labels)
  if(arg_THREADED)
    set(labels LABELS threads)
  endif()
  base_test(${name}Tests BaseStatic ${arg_TESTS})
  base_test(${name}PublicTests Base ${arg_PUBLIC_TESTS})
endfunction()

add_custom_target(threaded-tests)

# base_test(NAME LIBRARY SOURCES...): one test program; nothing where there are no sources.
function(base_test name library)
  if(NOT BASE_TESTS OR NOT ARGN)
    return()
  endif()
  add_executable(${name} ${ARGN})
  target_link_libraries(${name} PRIVATE BaseFlags ${library} BaseTesting)
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 120 TEST_PREFIX ${name}. PROPERTIES TIMEOUT 600 ${labels})
  if(labels)
    add_dependencies(threaded-tests ${name})
  endif()
endfunction()
