# One folder, one library, one include directory.

# What every target of ours is compiled with.
add_library(zelk_options INTERFACE)
# Where many sources are compiled at a time, what is one file's own seems to be shadowed by others.
set(zelk_alone -Wshadow)
if(LULLWATCH_BATCHES)
  set(zelk_alone $<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>)
endif()
target_compile_options(zelk_options INTERFACE -Wall -Wextra -Wpedantic ${zelk_alone} -Wnon-virtual-dtor
                                              -Woverloaded-virtual -Wconversion -Wno-sign-conversion)
target_compile_definitions(zelk_options INTERFACE QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII
                                                  QT_NO_KEYWORDS QT_NO_FOREACH)

# zelk_batch(NAME SOURCES...)
# The sources of a library are compiled many at a time where LULLWATCH_BATCHES says so. That is for presets that look at
# what runs: whether each source includes what it needs, and keeps its names to itself, is seen in the others.
function(zelk_batch name)
  set(sources ${ARGN})
  list(FILTER sources INCLUDE REGEX "^[^/]*\\.cpp$")
  find_package(Python3 REQUIRED COMPONENTS Interpreter)
  execute_process(COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tools/batches ${sources}
    WORKING_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR} OUTPUT_VARIABLE answer OUTPUT_STRIP_TRAILING_WHITESPACE
    COMMAND_ERROR_IS_FATAL ANY)
  while(answer)
    list(POP_FRONT answer source batch)
    set_source_files_properties(${source} PROPERTIES UNITY_GROUP ${batch})
  endwhile()
  # A source that is given another name of its own may belong elsewhere.
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${sources} ${PROJECT_SOURCE_DIR}/tools/batches)
  set_target_properties(${name} PROPERTIES UNITY_BUILD ON UNITY_BUILD_MODE GROUP)
endfunction()

# zelk_library(NAME SOURCES... [LINKS targets...])
# A library of the current folder. It sees the headers of what it links and no others.
function(zelk_library name)
  cmake_parse_arguments(arg "" "" "SOURCES;LINKS" ${ARGN})
  add_library(${name} STATIC ${arg_SOURCES})
  target_include_directories(${name} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
  target_link_libraries(${name} PUBLIC ${arg_LINKS} PRIVATE zelk_options)
  if(LULLWATCH_BATCHES)
    zelk_batch(${name} ${arg_SOURCES})
  endif()
endfunction()

# Headers outside the project, read once for all tests; a test that includes too little harms nobody. It must be
# compiled with no definition that one of the tests lacks, so that D-Bus is known by its folder alone.
function(zelk_read_test_headers)
  file(GENERATE OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/test_headers.cpp CONTENT "")
  add_library(zelk_test_headers OBJECT ${CMAKE_CURRENT_BINARY_DIR}/test_headers.cpp)
  set_target_properties(zelk_test_headers PROPERTIES AUTOMOC OFF)
  target_link_libraries(zelk_test_headers PRIVATE Qt6::Core zelk_options)
  target_include_directories(zelk_test_headers SYSTEM PRIVATE
    $<TARGET_PROPERTY:Qt6::DBus,INTERFACE_INCLUDE_DIRECTORIES>)
  target_precompile_headers(zelk_test_headers PRIVATE
    <algorithm> <array> <chrono> <cmath> <cstdint> <cstring> <functional> <limits> <map> <memory> <optional> <string>
    <string_view> <utility> <vector> <QtCore> <QtDBus>)
endfunction()

# zelk_test(NAME SOURCES... [LINKS targets...] [BUS])
# One Qt Test program under CTest. BUS runs it inside a private session and system bus.
function(zelk_test name)
  cmake_parse_arguments(arg "BUS" "" "SOURCES;LINKS" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE ${arg_LINKS} Qt6::Test zelk_options zelk_test_support)
  target_compile_definitions(${name} PRIVATE ZELK_TEST_DATA="${PROJECT_SOURCE_DIR}/tests/data")
  target_precompile_headers(${name} REUSE_FROM zelk_test_headers)
  add_dependencies(${name} main_bundle)
  set(runner ${PROJECT_SOURCE_DIR}/tests/say-skips)
  if(arg_BUS)
    list(APPEND runner ${PROJECT_SOURCE_DIR}/tests/with-private-buses)
  endif()
  add_test(NAME ${name} COMMAND ${runner} $<TARGET_FILE:${name}>)
  set_tests_properties(${name} PROPERTIES TIMEOUT 120 SKIP_RETURN_CODE 77
    ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LC_ALL=C.UTF-8;ZELK_MAIN_BUNDLE=${ZELK_MAIN_BUNDLE}")
endfunction()
