# Tests that drive the plug-in in a real web server: Python programs on tests/service/harness.py.

# What is preloaded into the server, which is not instrumented itself: the sanitizer's library,
# and the C++ library, whose functions the sanitizer looks for before a plug-in brings them.
function(san_sanitizer_runtime result)
  set(libraries "")
  if(SAN_SANITIZE MATCHES "address")
    set(libraries libasan.so libstdc++.so.6)
  elseif(SAN_SANITIZE MATCHES "thread")
    set(libraries libtsan.so libstdc++.so.6)
  endif()
  set(paths "")
  foreach(library IN LISTS libraries)
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${library}
                    OUTPUT_VARIABLE path OUTPUT_STRIP_TRAILING_WHITESPACE)
    file(REAL_PATH "${path}" path)
    list(APPEND paths "${path}")
  endforeach()
  list(JOIN paths ":" paths)
  set(${result} "${paths}" PARENT_SCOPE)
endfunction()

# san_service_test(NAME FILE [THREADED]): one ctest entry that runs a Python test file. It may run
# beside others. THREADED marks it for the run under ThreadSanitizer.
function(san_service_test name file)
  cmake_parse_arguments(ARG "THREADED" "" "" ${ARGN})
  add_test(NAME ${name} COMMAND ${Python3_EXECUTABLE} -B -W error::ResourceWarning
           "${CMAKE_CURRENT_SOURCE_DIR}/${file}" --verbose)
  san_sanitizer_runtime(runtime)
  set(environment "SAN_BUILD_DIR=${CMAKE_BINARY_DIR}" "SAN_APACHE=${APACHE2}"
      "SAN_RUNTIME=${runtime}" "${SAN_TEST_TSAN}" "PYTHONPATH=${CMAKE_SOURCE_DIR}/tests/service")
  set_tests_properties(${name} PROPERTIES TIMEOUT 600 ENVIRONMENT "${environment}")
  if(ARG_THREADED)
    set_tests_properties(${name} PROPERTIES LABELS threaded)
  endif()
  foreach(target IN ITEMS mod_gsoap sanService sanSim serviceShim barePlugin oddPlugin)
    if(ARG_THREADED AND TARGET ${target})
      add_dependencies(threaded_tests ${target})
    endif()
  endforeach()
endfunction()
