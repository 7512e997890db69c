# What every target of the project shares, and the functions that make one.
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
# Only what is said to be exported leaves the plug-in, so hidden is the default everywhere.
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_C_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)

set(SAN_SANITIZE "" CACHE STRING "Sanitizers, as for -fsanitize=")
option(SAN_LIBFUZZER "Build the fuzz targets for libFuzzer (needs clang)" OFF)
set(SAN_GENERATED_DIR "${PROJECT_BINARY_DIR}/generated")

add_library(san_options INTERFACE)
target_compile_features(san_options INTERFACE cxx_std_20)
target_include_directories(san_options INTERFACE "${PROJECT_SOURCE_DIR}")
target_compile_definitions(san_options INTERFACE $<$<CONFIG:RelWithDebInfo>:_FORTIFY_SOURCE=2>)

if(SAN_SANITIZE)
  # Without optimisation: it would double the time of the build, and the tests hardly run longer.
  add_compile_options(-fsanitize=${SAN_SANITIZE} -fno-omit-frame-pointer -O0)
  add_link_options(-fsanitize=${SAN_SANITIZE})
  if(SAN_SANITIZE MATCHES "undefined")
    add_compile_options(-fno-sanitize-recover=undefined)
  endif()
  if(SAN_SANITIZE MATCHES "thread")
    # ThreadSanitizer knows no fences; Asio's are beside locks, which it sees.
    add_compile_definitions(ASIO_DISABLE_FENCED_BLOCK)
  endif()
endif()

if(SAN_LIBFUZZER)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

# For our own code only; generated code is compiled without them. Clang's look at casts objects to
# the rings of the web server's library.
add_library(san_warnings INTERFACE)
target_compile_options(san_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wformat=2 -Wundef
  $<$<OR:$<COMPILE_LANG_AND_ID:C,GNU>,$<COMPILE_LANG_AND_ID:CXX,GNU>>:-Wcast-align> -Werror
  $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor -Woverloaded-virtual>
  $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-Wno-restrict>)

# san_library(NAME SOURCES... DEPENDS...): one subsystem. Links only what it builds on.
function(san_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPENDS;PRIVATE_DEPENDS" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_link_libraries(${name} PUBLIC san_options ${ARG_DEPENDS}
                        PRIVATE san_warnings ${ARG_PRIVATE_DEPENDS})
endfunction()

# san_program(NAME SOURCES... DEPENDS...)
function(san_program name)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPENDS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE san_options san_warnings ${ARG_DEPENDS})
endfunction()

# san_command(NAME SOURCES... DEPENDS...): a program for people, which knows its --version line.
function(san_command name)
  san_program(${name} ${ARGN})
  target_compile_definitions(${name} PRIVATE PROGRAM_VERSION="${name} ${PROJECT_VERSION}")
endfunction()

# For the environment of tests that run the simulator under ThreadSanitizer: its HTTP library is
# not instrumented, and what that reads from its own constants looks like a race.
set(SAN_TEST_TSAN "TSAN_OPTIONS=ignore_noninstrumented_modules=1")

# A GoogleTest program, one ctest entry. THREADED marks it for the run under ThreadSanitizer,
# whose build makes the target threaded_tests and nothing else.
add_custom_target(threaded_tests)
function(san_test name)
  cmake_parse_arguments(ARG "THREADED" "" "SOURCES;DEPENDS" ${ARGN})
  san_program(${name} SOURCES ${ARG_SOURCES} DEPENDS ${ARG_DEPENDS} GTest::gmock GTest::gtest_main)
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES TIMEOUT 300)
  if(ARG_THREADED)
    set_tests_properties(${name} PROPERTIES LABELS threaded)
    add_dependencies(threaded_tests ${name})
  endif()
endfunction()

# A fuzz target: fuzz/NAME.cpp defines LLVMFuzzerTestOneInput. In every build it is a program
# that replays files and then runs a fixed number of mutated inputs, which is also its test;
# with clang and SAN_LIBFUZZER it is a libFuzzer program.
function(san_fuzz name)
  cmake_parse_arguments(ARG "" "" "DEPENDS" ${ARGN})
  if(SAN_LIBFUZZER)
    san_program(${name} SOURCES ${name}.cpp DEPENDS ${ARG_DEPENDS})
    target_link_options(${name} PRIVATE -fsanitize=fuzzer)
    return()
  endif()
  san_program(${name} SOURCES ${name}.cpp DEPENDS fuzzReplay ${ARG_DEPENDS})
  if(NOT BUILD_TESTING)
    return()
  endif()
  add_test(NAME ${name} COMMAND ${name} --runs 2000 "${CMAKE_CURRENT_SOURCE_DIR}/corpus/${name}")
  set_tests_properties(${name} PROPERTIES TIMEOUT 300 LABELS fuzz)
endfunction()
