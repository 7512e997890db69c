# Finds what the build needs. Everything that is missing is named in one message, with the
# Debian package that brings it, instead of one failed run for each.
set(_missing "")

macro(san_need found package)
  if(NOT ${found})
    string(APPEND _missing "\n  ${package}")
  endif()
endmacro()

find_package(PkgConfig QUIET)
san_need(PkgConfig_FOUND "pkg-config")
find_package(Threads QUIET)
find_package(Protobuf QUIET)
san_need(Protobuf_FOUND "libprotobuf-dev")
san_need(Protobuf_PROTOC_EXECUTABLE "protobuf-compiler")
find_package(EXPAT QUIET)
san_need(EXPAT_FOUND "libexpat1-dev")
find_package(OpenSSL QUIET)
san_need(OpenSSL_FOUND "libssl-dev")
find_package(GTest QUIET)
san_need(GTest_FOUND "libgtest-dev libgmock-dev")
find_package(benchmark QUIET)
san_need(benchmark_FOUND "libbenchmark-dev")
find_package(nlohmann_json QUIET)
san_need(nlohmann_json_FOUND "nlohmann-json3-dev")
find_package(CLI11 QUIET)
san_need(CLI11_FOUND "libcli11-dev")
find_package(SQLite3 QUIET)
san_need(SQLite3_FOUND "libsqlite3-dev")
# Debian's own interpreter, which sees what Debian's packages bring.
find_program(Python3_EXECUTABLE python3 PATHS /usr/bin NO_DEFAULT_PATH)
find_package(Python3 QUIET COMPONENTS Interpreter)
san_need(Python3_FOUND "python3")
find_program(SOAPCPP2 soapcpp2)
san_need(SOAPCPP2 "gsoap")
find_program(APXS apxs)
san_need(APXS "apache2-dev")
find_program(APACHE2 NAMES apache2 httpd PATHS /usr/sbin)
san_need(APACHE2 "apache2-bin")

if(PkgConfig_FOUND)
  # The engine with secure transport, as C++: the plug-in and the module must agree on it,
  # since a context crosses the boundary between them.
  pkg_check_modules(GSOAP QUIET IMPORTED_TARGET gsoapssl++)
  san_need(GSOAP_FOUND "libgsoap-dev")
  pkg_check_modules(HTTPLIB QUIET IMPORTED_TARGET cpp-httplib)
  san_need(HTTPLIB_FOUND "libcpp-httplib-dev")
endif()

if(_missing)
  message(FATAL_ERROR "Missing Debian packages (scripts/test.sh and scripts/run.sh install "
                      "them):${_missing}")
endif()
