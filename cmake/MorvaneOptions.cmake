# How every target of the project is compiled: the language level, the warnings, the sanitizers, ccache.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")

option(MORVANE_WERROR "Treat compiler warnings as errors" OFF)
option(MORVANE_BENCHMARKS "Build the benchmarks" ON)
option(MORVANE_EDS "Build the libraries for the calendars and address books of evolution-data-server, with their tests" ON)
option(MORVANE_SEALING "Build the library that seals what devices exchange (libsodium), with its tests" ON)
option(MORVANE_TIDY "Run clang-tidy on every source file" OFF)
set(MORVANE_SANITIZE "" CACHE STRING "Sanitizers to build with, as -fsanitize= takes them")
option(MORVANE_COVERAGE "Instrument for coverage with gcov" OFF)
option(MORVANE_FUZZ "Build the fuzzers; needs Clang" OFF)

# Precompiled headers make the cached object depend on them; ccache needs the sloppiness to reuse it. With paths relative
# to the checkout, and without its place in the key, one checkout finds what another has compiled.
find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER
    "${CMAKE_COMMAND};-E;env;CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime"
    "CCACHE_BASEDIR=${PROJECT_SOURCE_DIR};CCACHE_NOHASHDIR=1;${CCACHE_PROGRAM}")
endif()

add_library(morvane_options INTERFACE)
target_compile_definitions(morvane_options INTERFACE
  QT_NO_CAST_FROM_ASCII
  QT_NO_CAST_TO_ASCII
  QT_NO_KEYWORDS
  QT_NO_FOREACH
  QT_DISABLE_DEPRECATED_BEFORE=0x060400
  U_USING_ICU_NAMESPACE=0
  SQLITE_ENABLE_SESSION
  SQLITE_ENABLE_PREUPDATE_HOOK)
target_compile_options(morvane_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wold-style-cast -Woverloaded-virtual
  -Wimplicit-fallthrough
  $<$<CXX_COMPILER_ID:GNU>:-fpch-preprocess>
  $<$<BOOL:${MORVANE_WERROR}>:-Werror>)

# In a unity build each source is included, and GCC then takes an anonymous namespace for one of a header.
if(CMAKE_UNITY_BUILD)
  target_compile_options(morvane_options INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>)
endif()

if(MORVANE_SANITIZE)
  target_compile_options(morvane_options INTERFACE
    -fsanitize=${MORVANE_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(morvane_options INTERFACE -fsanitize=${MORVANE_SANITIZE})
endif()
if(MORVANE_COVERAGE)
  target_compile_options(morvane_options INTERFACE --coverage -O0)
  target_link_options(morvane_options INTERFACE --coverage)
endif()
if(MORVANE_FUZZ)
  target_compile_options(morvane_options INTERFACE -fsanitize=fuzzer-no-link)
  target_link_options(morvane_options INTERFACE -fsanitize=fuzzer-no-link)
endif()
if(MORVANE_TIDY)
  find_program(CLANG_TIDY_PROGRAM clang-tidy REQUIRED)
  set(CMAKE_CXX_CLANG_TIDY "${CLANG_TIDY_PROGRAM};--warnings-as-errors=*;--quiet")
endif()

# Joins the sources of a target for unity builds by their folder, so that a new file meets no others than its
# neighbours. Without CMAKE_UNITY_BUILD it has no effect.
function(morvane_unity_by_folder target)
  get_target_property(sources ${target} SOURCES)
  foreach(source IN LISTS sources)
    if(NOT source MATCHES "\\.cpp$")
      continue()
    endif()
    get_filename_component(folder "${source}" DIRECTORY)
    file(RELATIVE_PATH folder "${PROJECT_SOURCE_DIR}" "${folder}")
    string(MAKE_C_IDENTIFIER "${folder}" folder)
    math(EXPR count_${folder} "${count_${folder}} + 0")
    math(EXPR group "${count_${folder}} / 12")
    math(EXPR count_${folder} "${count_${folder}} + 1")
    set_source_files_properties("${source}" PROPERTIES UNITY_GROUP "${folder}_${group}")
  endforeach()
  set_target_properties(${target} PROPERTIES UNITY_BUILD_MODE GROUP)
endfunction()
