# cmake -P script behind the consumer test; see CMakeLists.txt.
#
# Installs the build tree (and, when given, a second build tree of the other
# Qt) into one fresh prefix outside the build tree, then does what a user
# does with the README: builds the applications with find_package and with
# pkg-config, runs them and the installed tools with a clean environment (no
# library path, no catalogue directory), and compares what they print.
cmake_minimum_required(VERSION 3.16)

foreach(var BUILD_TREE PROJECT_SOURCE EXPECTED_DIR NAMES LIBDIR BINDIR GENERATOR PACKAGE TOOL CXX_COMPILER VERSION)
  if("${${var}}" STREQUAL "")
    message(FATAL_ERROR "RunConsumer.cmake: ${var} not given")
  endif()
endforeach()
find_program(PKG_CONFIG_EXECUTABLE pkg-config REQUIRED)

# A directory of its own for every run, outside the build tree, removed after
# a successful run and kept after a failure.
set(work_root /tmp)
if(IS_DIRECTORY "$ENV{TMPDIR}")
  set(work_root "$ENV{TMPDIR}")
endif()
string(RANDOM LENGTH 10 ALPHABET "0123456789abcdefghijklmnopqrstuvwxyz" suffix)
set(run_dir "${work_root}/torvixml-consumer-${suffix}")
set(prefix "${run_dir}/prefix")

function(run_step what)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE out)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "${what} failed (${rc}); files kept in ${run_dir}\n${out}")
  endif()
endfunction()

# Runs a program as a user would start it: none of the variables that could
# lead it to the libraries or the catalogue, and the C locale, so that only
# SetLanguage decides the language.
function(run_clean what expected)
  execute_process(COMMAND ${CMAKE_COMMAND} -E env
      --unset=LD_LIBRARY_PATH --unset=TORVI_TRANSLATIONS_DIR --unset=LANGUAGE --unset=QT_QPA_PLATFORM
      LC_ALL=C.UTF-8 LANG=C.UTF-8 ${ARGN}
    RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0 OR NOT out STREQUAL expected)
    message(FATAL_ERROR "${what} printed (exit code ${rc}):\n[${out}]\nexpected:\n[${expected}]\n"
                        "stderr:\n${err}\nfiles kept in ${run_dir}")
  endif()
endfunction()

# Runs program <name> of the consumer project as built with CMake into
# <build>, then builds it from <source> with pkg-config (<module> and the
# start-up library's module, plain paths, a run path to the prefix's library
# directory, as the README shows it) and runs that; both must print the
# expected file.
function(build_and_run name source module expected_file)
  file(READ "${EXPECTED_DIR}/${expected_file}" expected)
  run_clean("${name} built with CMake" "${expected}" "${build}/${name}" ${ARGN})
  set(pc ${CMAKE_COMMAND} -E env "PKG_CONFIG_PATH=${prefix}/${LIBDIR}/pkgconfig" ${PKG_CONFIG_EXECUTABLE})
  execute_process(COMMAND ${pc} --cflags --libs ${module} TorviXMLAppStartup${suffix}
    RESULT_VARIABLE rc OUTPUT_VARIABLE flags ERROR_VARIABLE err OUTPUT_STRIP_TRAILING_WHITESPACE)
  execute_process(COMMAND ${pc} --variable=libdir ${module} OUTPUT_VARIABLE libdir OUTPUT_STRIP_TRAILING_WHITESPACE)
  if(NOT rc EQUAL 0 OR NOT libdir STREQUAL "${prefix}/${LIBDIR}" OR flags MATCHES "\\.\\./|-fPIC|-Wl")
    message(FATAL_ERROR "pkg-config gives libdir [${libdir}] and flags [${flags}] for ${module}: ${err}")
  endif()
  separate_arguments(flags UNIX_COMMAND "${flags}")
  run_step("Building ${name} with pkg-config" ${CXX_COMPILER} -std=c++17 -fPIC "${PROJECT_SOURCE}/${source}"
    -o "${build}/${name}-pc" ${flags} "-Wl,-rpath,${libdir}")
  run_clean("${name} built with pkg-config" "${expected}" "${build}/${name}-pc" ${ARGN})
endfunction()

# The checks for one installed build: its CMake package and pkg-config
# modules (named with the Qt suffix) and its tools.
function(check_package package suffix tool with_gui)
  set(build "${run_dir}/build-${package}")
  run_step("Configuring the consumer project"
    ${CMAKE_COMMAND} -S "${PROJECT_SOURCE}" -B "${build}" -G "${GENERATOR}"
      "-DCMAKE_CXX_COMPILER=${CXX_COMPILER}" "-DCMAKE_PREFIX_PATH=${prefix}"
      -DCMAKE_FIND_PACKAGE_NO_PACKAGE_REGISTRY=ON "-DTORVIXML_PACKAGE=${package}")
  # The package must come from the fresh prefix, not from anywhere else.
  file(STRINGS "${build}/CMakeCache.txt" found_dir REGEX "^${package}_DIR:")
  if(NOT found_dir MATCHES "=${prefix}/")
    message(FATAL_ERROR "${package} was found as ${found_dir}, not in ${prefix}")
  endif()
  run_step("Building the consumer project" ${CMAKE_COMMAND} --build "${build}")
  build_and_run(torvixml_consumer main.cpp ${package} expected.txt)
  # The installed tool finds the installed catalogue on its own.
  run_clean("${tool} names --lang de" "${names}" "${prefix}/${BINDIR}/${tool}" names --lang de)
  if(with_gui MATCHES "ON$")
    build_and_run(torvixml_consumer_model model.cpp TorviXMLModel${suffix} expected-model.txt "${run_dir}/readme.xml")
    # The preview needs no display; the editor is asked for its version on
    # the offscreen platform.
    set(png "${run_dir}/preview-${package}.png")
    run_clean("${tool} preview" "" "${prefix}/${BINDIR}/${tool}" preview "${run_dir}/readme.xml" Standard -o "${png}")
    file(READ "${png}" png_signature LIMIT 4 HEX)
    if(NOT png_signature STREQUAL "89504e47")
      message(FATAL_ERROR "${tool} preview wrote no PNG image (${png_signature}); files kept in ${run_dir}")
    endif()
    string(REPLACE "torvixml" "torvixml-editor" editor "${tool}")
    run_clean("${editor} --version" "torvixml-editor ${VERSION}\n"
      ${CMAKE_COMMAND} -E env QT_QPA_PLATFORM=offscreen "${prefix}/${BINDIR}/${editor}" --version)
  endif()
  message(STATUS "Consumer check of ${package} passed (find_package, pkg-config, ${tool})")
endfunction()

if(CONFIG)
  set(config_args --config ${CONFIG})
endif()
foreach(tree IN ITEMS "${BUILD_TREE}" ${ALSO_INSTALL})
  run_step("Installing ${tree}" ${CMAKE_COMMAND} --install "${tree}" --prefix "${prefix}" ${config_args})
endforeach()
file(READ "${NAMES}" names)
# The README's example document is the first line the consumer prints.
file(STRINGS "${EXPECTED_DIR}/expected.txt" readme_example LIMIT_COUNT 1)
file(WRITE "${run_dir}/readme.xml" "${readme_example}")

check_package(${PACKAGE} "${SUFFIX}" ${TOOL} "${WITH_GUI}")
# The other Qt's build, installed into the same prefix, still works too.
foreach(tree IN LISTS ALSO_INSTALL)
  file(STRINGS "${tree}/CMakeCache.txt" qt_major REGEX "^TORVIXML_QT_MAJOR:")
  file(STRINGS "${tree}/CMakeCache.txt" with_gui REGEX "^TORVIXML_BUILD_GUI:[A-Z]*=ON$")
  if(qt_major MATCHES "=6$")
    check_package(TorviXMLQt6 Qt6 torvixml-qt6 "${with_gui}")
  else()
    check_package(TorviXML "" torvixml "${with_gui}")
  endif()
endforeach()

file(REMOVE_RECURSE "${run_dir}")
