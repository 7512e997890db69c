# Tests in Python, which drive the programs of the build from outside. What they share stands in
# testbed and tests/service.

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

# san_service_test(NAME [AS TEST] [THREADED]): one ctest entry, of the module's name or another, that
# runs NAME.py of this folder. It may run beside others. THREADED marks it for the run under
# ThreadSanitizer. By hand: PYTHONPATH=testbed:tests/service:FOLDER python3 -m unittest NAME
function(san_service_test name)
  cmake_parse_arguments(ARG "THREADED" "AS" "" ${ARGN})
  if(NOT ARG_AS)
    set(ARG_AS ${name})
  endif()
  add_test(NAME ${ARG_AS}
           COMMAND ${Python3_EXECUTABLE} -B -W error::ResourceWarning -m unittest -v ${name})
  san_sanitizer_runtime(runtime)
  set(environment "SAN_BUILD_DIR=${PROJECT_BINARY_DIR}" "SAN_APACHE=${APACHE2}"
      "SAN_RUNTIME=${runtime}" "${SAN_TEST_TSAN}"
      "PYTHONPATH=${CMAKE_CURRENT_SOURCE_DIR}:${PROJECT_SOURCE_DIR}/testbed:${PROJECT_SOURCE_DIR}/tests/service")
  set_tests_properties(${ARG_AS} PROPERTIES TIMEOUT 600 ENVIRONMENT "${environment}")
  if(ARG_THREADED)
    set_tests_properties(${ARG_AS} PROPERTIES LABELS threaded)
  endif()
  foreach(target IN ITEMS mod_gsoap sanService sanSim simctl sanctl serviceShim)
    if(ARG_THREADED AND TARGET ${target})
      add_dependencies(threaded_tests ${target})
    endif()
  endforeach()
endfunction()
