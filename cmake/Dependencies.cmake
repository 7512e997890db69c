# Finds what the chosen parts need. Everything that is missing is named in one message, with the
# Debian package that brings it, instead of one failed run for each.
set(_missing "")

macro(san_need found package)
  if(NOT ${found})
    string(APPEND _missing "\n  ${package}")
  endif()
endmacro()

# The API stub.
find_package(Threads QUIET)
find_package(Protobuf QUIET)
san_need(Protobuf_FOUND "libprotobuf-dev")
san_need(Protobuf_PROTOC_EXECUTABLE "protobuf-compiler")
find_package(EXPAT QUIET)
san_need(EXPAT_FOUND "libexpat1-dev")

if(SAN_BUILD_SERVICE OR SAN_BUILD_CLIENT OR SAN_BUILD_SIMULATOR OR BUILD_TESTING)
  find_package(PkgConfig QUIET)
  san_need(PkgConfig_FOUND "pkg-config")
  find_package(OpenSSL QUIET)
  san_need(OpenSSL_FOUND "libssl-dev")
  # Debian's own interpreter, which sees what Debian's packages bring.
  find_program(Python3_EXECUTABLE python3 PATHS /usr/bin NO_DEFAULT_PATH)
  find_package(Python3 QUIET COMPONENTS Interpreter)
  san_need(Python3_FOUND "python3")
endif()

if(SAN_BUILD_SERVICE OR SAN_BUILD_CLIENT)
  find_program(SOAPCPP2 soapcpp2)
  san_need(SOAPCPP2 "gsoap")
  find_package(ZLIB QUIET)
  san_need(ZLIB_FOUND "zlib1g-dev")
  # The engine with secure transport, as C++: the plug-in and the module must agree on it,
  # since a context crosses the boundary between them.
  find_library(GSOAP_ARCHIVE libgsoapssl++.a)
  if(PkgConfig_FOUND)
    pkg_check_modules(GSOAP QUIET gsoapssl++)
  endif()
  if(NOT GSOAP_FOUND OR NOT GSOAP_ARCHIVE)
    string(APPEND _missing "\n  libgsoap-dev")
  endif()
endif()

if(SAN_BUILD_SERVICE)
  find_program(APXS apxs)
  san_need(APXS "apache2-dev")
endif()

if(SAN_BUILD_SIMULATOR OR SAN_BUILD_CLIENT)
  find_package(nlohmann_json QUIET)
  san_need(nlohmann_json_FOUND "nlohmann-json3-dev")
endif()

if(SAN_BUILD_SIMULATOR OR SAN_BUILD_CLIENT OR SAN_BUILD_FUZZERS)
  find_package(CLI11 QUIET)
  san_need(CLI11_FOUND "libcli11-dev")
endif()

if(SAN_BUILD_SIMULATOR)
  find_package(SQLite3 QUIET)
  san_need(SQLite3_FOUND "libsqlite3-dev")
  find_path(ASIO_INCLUDE_DIR asio.hpp)
  san_need(ASIO_INCLUDE_DIR "libasio-dev")
  if(PkgConfig_FOUND)
    pkg_check_modules(HTTPLIB QUIET IMPORTED_TARGET cpp-httplib)
    san_need(HTTPLIB_FOUND "libcpp-httplib-dev")
  endif()
endif()

if(BUILD_TESTING)
  find_package(GTest QUIET)
  san_need(GTest_FOUND "libgtest-dev libgmock-dev")
  find_program(APACHE2 NAMES apache2 httpd PATHS /usr/sbin)
  san_need(APACHE2 "apache2-bin")
endif()

if(SAN_BUILD_BENCHES)
  find_package(benchmark QUIET)
  san_need(benchmark_FOUND "libbenchmark-dev")
endif()

if(_missing)
  message(FATAL_ERROR "Missing Debian packages (scripts/test.sh and scripts/run.sh install "
                      "them):${_missing}")
endif()
