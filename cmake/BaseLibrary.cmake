# libBase from the objects of all components: once shared, once static for the white-box tests.
get_property(components GLOBAL PROPERTY BASE_COMPONENTS)
get_property(headers GLOBAL PROPERTY BASE_HEADERS)
get_property(inputs GLOBAL PROPERTY BASE_INPUTS)
list(TRANSFORM components REPLACE "(.+)" "$<TARGET_OBJECTS:\\1>" OUTPUT_VARIABLE objects)

# The build identifiers change when something that is built into the library changes, and only then.
set(identifiers ${CMAKE_CURRENT_BINARY_DIR}/qvUtilBuild.cpp)
add_custom_command(OUTPUT ${identifiers}
  COMMAND ${CMAKE_COMMAND} -DOUTPUT=${identifiers} -DSOURCE_DIR=${CMAKE_SOURCE_DIR}
          -DBUILD_DIR=${CMAKE_BINARY_DIR} -P ${CMAKE_SOURCE_DIR}/cmake/WriteBuildIdentifiers.cmake
  DEPENDS ${inputs} ${CMAKE_SOURCE_DIR}/cmake/WriteBuildIdentifiers.cmake
  COMMENT "Writing the build identifiers" VERBATIM)
add_library(BaseBuild OBJECT ${identifiers})
target_link_libraries(BaseBuild PRIVATE BaseFlags)
target_compile_definitions(BaseBuild PRIVATE QV_BASE_BUILD)
list(APPEND objects $<TARGET_OBJECTS:BaseBuild>)

get_property(systemLibraries GLOBAL PROPERTY BASE_SYSTEM_LIBRARIES)
get_property(resource GLOBAL PROPERTY BASE_RESOURCE)
set(resources)
if(resource) # what the system shows of the library's file
  enable_language(RC)
  set(resources ${CMAKE_CURRENT_BINARY_DIR}/qvPlatformVersion.rc)
  configure_file(${resource} ${resources} @ONLY)
endif()

add_library(Base SHARED ${objects} ${resources})
add_library(Base::Base ALIAS Base)
set_target_properties(Base PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR} LINKER_LANGUAGE CXX)
target_compile_features(Base PUBLIC cxx_std_20)
if(NOT WIN32 AND NOT BASE_SANITIZE) # the sanitizers' runtime is left to the program
  target_link_options(Base PRIVATE -Wl,-z,defs -Wl,-Bsymbolic-functions)
endif()
target_link_libraries(Base PRIVATE $<BUILD_INTERFACE:BaseFlags> ${systemLibraries})
target_include_directories(Base PUBLIC
  $<BUILD_INTERFACE:${CMAKE_SOURCE_DIR}/src/Components> $<INSTALL_INTERFACE:include>)

add_library(BaseStatic STATIC EXCLUDE_FROM_ALL ${objects})
set_target_properties(BaseStatic PROPERTIES LINKER_LANGUAGE CXX)
target_include_directories(BaseStatic PUBLIC ${CMAKE_SOURCE_DIR}/src/Components)
target_link_libraries(BaseStatic INTERFACE ${systemLibraries})
target_compile_definitions(BaseStatic INTERFACE QV_BASE_STATIC)

include(BaseInstall)
