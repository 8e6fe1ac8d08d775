# base_plugin(NAME DIRECTORY SOURCES...): a library that a program loads while it runs: NAME with the platform's suffix
# in DIRECTORY. It links the shared library, as every plug-in does, and knows the suffix as LIBRARY_SUFFIX.
function(base_plugin name directory)
  add_library(${name} MODULE ${ARGN})
  set_target_properties(${name} PROPERTIES PREFIX "" LIBRARY_OUTPUT_DIRECTORY ${directory})
  target_link_libraries(${name} PRIVATE BaseFlags Base)
  target_compile_definitions(${name} PRIVATE LIBRARY_SUFFIX="${CMAKE_SHARED_MODULE_SUFFIX}")
endfunction()
