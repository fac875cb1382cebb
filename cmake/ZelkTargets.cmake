# One folder, one library, one include directory.

# What every target of ours is compiled with.
add_library(zelk_options INTERFACE)
target_compile_options(zelk_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor
                                              -Woverloaded-virtual -Wconversion -Wno-sign-conversion)
target_compile_definitions(zelk_options INTERFACE QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII
                                                  QT_NO_KEYWORDS QT_NO_FOREACH)

# zelk_library(NAME SOURCES... [LINKS targets...])
# A library of the current folder. It sees the headers of what it links and no others.
function(zelk_library name)
  cmake_parse_arguments(arg "" "" "SOURCES;LINKS" ${ARGN})
  add_library(${name} STATIC ${arg_SOURCES})
  target_include_directories(${name} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
  target_link_libraries(${name} PUBLIC ${arg_LINKS} PRIVATE zelk_options)
endfunction()

# zelk_test(NAME SOURCES... [LINKS targets...] [BUS])
# One Qt Test program under CTest. BUS runs it inside a private session and system bus.
function(zelk_test name)
  cmake_parse_arguments(arg "BUS" "" "SOURCES;LINKS" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE ${arg_LINKS} Qt6::Test zelk_options zelk_test_support)
  target_compile_definitions(${name} PRIVATE ZELK_TEST_DATA="${PROJECT_SOURCE_DIR}/tests/data")
  add_dependencies(${name} main_bundle)
  set(runner ${PROJECT_SOURCE_DIR}/tests/say-skips)
  if(arg_BUS)
    list(APPEND runner ${PROJECT_SOURCE_DIR}/tests/with-private-buses)
  endif()
  add_test(NAME ${name} COMMAND ${runner} $<TARGET_FILE:${name}>)
  set_tests_properties(${name} PROPERTIES TIMEOUT 120 SKIP_RETURN_CODE 77
    ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LC_ALL=C.UTF-8;ZELK_MAIN_BUNDLE=${ZELK_MAIN_BUNDLE}")
endfunction()
