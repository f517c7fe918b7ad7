# cmake -P script behind the consumer test; see CMakeLists.txt.
#
# Installs the build tree (and, when given, a second build tree of the other
# Qt) into one fresh prefix outside the build tree, then does what a user
# does with the README: builds an application with find_package and with
# pkg-config, runs it and the installed tool with a clean environment (no
# library path, no catalogue directory), and compares what they print.
cmake_minimum_required(VERSION 3.16)

foreach(var BUILD_TREE PROJECT_SOURCE EXPECTED EXPECTED_NAMES LIBDIR BINDIR GENERATOR PACKAGE TOOL CXX_COMPILER)
  if(NOT DEFINED ${var} OR "${${var}}" STREQUAL "")
    message(FATAL_ERROR "RunConsumer.cmake: ${var} not given")
  endif()
endforeach()

# A directory of its own for every run, outside the build tree, removed after
# a successful run and kept after a failure.
if(DEFINED ENV{TMPDIR} AND IS_DIRECTORY "$ENV{TMPDIR}")
  set(work_root "$ENV{TMPDIR}")
else()
  set(work_root "/tmp")
endif()
string(RANDOM LENGTH 10 ALPHABET "0123456789abcdefghijklmnopqrstuvwxyz" suffix)
set(run_dir "${work_root}/torvixml-consumer-${suffix}")
set(prefix "${run_dir}/prefix")
file(MAKE_DIRECTORY "${run_dir}")

function(run_step what)
  execute_process(COMMAND ${ARGN}
    RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE out)
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

set(config_args)
if(CONFIG)
  set(config_args --config ${CONFIG})
endif()
foreach(tree IN ITEMS "${BUILD_TREE}" ${ALSO_INSTALL})
  run_step("Installing ${tree}" ${CMAKE_COMMAND} --install "${tree}" --prefix "${prefix}" ${config_args})
endforeach()

file(READ "${EXPECTED}" expected)
file(READ "${EXPECTED_NAMES}" EXPECTED_NAMES)
# The GUI parts: the item model's library and module, the preview command
# and torvixml-editor.
if(WITH_GUI)
  file(READ "${EXPECTED_MODEL}" EXPECTED_MODEL)
  # The README's example document is the first line the consumer prints.
  string(REGEX MATCH "^[^\n]*" readme_example "${expected}")
  file(WRITE "${run_dir}/readme.xml" "${readme_example}")
endif()

# The checks for one installed build: its CMake package and pkg-config
# modules (named with the Qt suffix) and its tool.
function(check_package package suffix tool)
  # 1. With CMake.
  set(consumer_build "${run_dir}/build-${package}")
  run_step("Configuring the consumer project"
    ${CMAKE_COMMAND} -S "${PROJECT_SOURCE}" -B "${consumer_build}" -G "${GENERATOR}"
      "-DCMAKE_CXX_COMPILER=${CXX_COMPILER}" "-DCMAKE_PREFIX_PATH=${prefix}"
      -DCMAKE_FIND_PACKAGE_NO_PACKAGE_REGISTRY=ON "-DTORVIXML_PACKAGE=${package}")
  # The package must come from the fresh prefix, not from anywhere else.
  file(STRINGS "${consumer_build}/CMakeCache.txt" found_dir REGEX "^${package}_DIR:")
  string(REGEX REPLACE "^${package}_DIR:[A-Z]*=" "" found_dir "${found_dir}")
  string(FIND "${found_dir}/" "${prefix}/" at)
  if(NOT at EQUAL 0)
    message(FATAL_ERROR "${package} was found in ${found_dir}, not in ${prefix}")
  endif()
  run_step("Building the consumer project" ${CMAKE_COMMAND} --build "${consumer_build}")
  run_clean("The consumer built with CMake" "${expected}" "${consumer_build}/torvixml_consumer")
  if(WITH_GUI)
    run_clean("The model consumer built with CMake" "${EXPECTED_MODEL}" "${consumer_build}/torvixml_consumer_model")
  endif()

  # 2. With pkg-config, as the README shows it: the library's module and the
  # start-up library's, and a run path to the prefix's library directory.
  find_program(PKG_CONFIG_EXECUTABLE pkg-config REQUIRED)
  set(pc_env ${CMAKE_COMMAND} -E env "PKG_CONFIG_PATH=${prefix}/${LIBDIR}/pkgconfig")
  execute_process(COMMAND ${pc_env} ${PKG_CONFIG_EXECUTABLE} --cflags --libs ${package} TorviXMLAppStartup${suffix}
    RESULT_VARIABLE rc OUTPUT_VARIABLE pc_flags ERROR_VARIABLE pc_err OUTPUT_STRIP_TRAILING_WHITESPACE)
  execute_process(COMMAND ${pc_env} ${PKG_CONFIG_EXECUTABLE} --variable=libdir ${package}
    OUTPUT_VARIABLE pc_libdir OUTPUT_STRIP_TRAILING_WHITESPACE)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "pkg-config does not know ${package}: ${pc_err}; files kept in ${run_dir}")
  endif()
  # Plain paths, nothing beyond include and library flags.
  if(NOT pc_libdir STREQUAL "${prefix}/${LIBDIR}" OR pc_flags MATCHES "\\.\\./|-fPIC|-Wl")
    message(FATAL_ERROR "pkg-config gives libdir [${pc_libdir}] and flags [${pc_flags}]")
  endif()
  separate_arguments(pc_flags UNIX_COMMAND "${pc_flags}")
  set(pc_program "${run_dir}/torvixml_consumer_pc-${package}")
  run_step("Building the consumer through pkg-config"
    ${CXX_COMPILER} -std=c++17 -fPIC "${PROJECT_SOURCE}/main.cpp" -o "${pc_program}" ${pc_flags}
      "-Wl,-rpath,${pc_libdir}")
  run_clean("The consumer built with pkg-config" "${expected}" "${pc_program}")
  if(WITH_GUI)
    execute_process(COMMAND ${pc_env} ${PKG_CONFIG_EXECUTABLE} --cflags --libs TorviXMLModel${suffix}
        TorviXMLAppStartup${suffix}
      RESULT_VARIABLE rc OUTPUT_VARIABLE pc_model_flags ERROR_VARIABLE pc_err OUTPUT_STRIP_TRAILING_WHITESPACE)
    if(NOT rc EQUAL 0)
      message(FATAL_ERROR "pkg-config does not know TorviXMLModel${suffix}: ${pc_err}; files kept in ${run_dir}")
    endif()
    separate_arguments(pc_model_flags UNIX_COMMAND "${pc_model_flags}")
    run_step("Building the model consumer through pkg-config"
      ${CXX_COMPILER} -std=c++17 -fPIC "${PROJECT_SOURCE}/model.cpp" -o "${pc_program}-model" ${pc_model_flags}
        "-Wl,-rpath,${pc_libdir}")
    run_clean("The model consumer built with pkg-config" "${EXPECTED_MODEL}" "${pc_program}-model")
  endif()

  # 3. The installed tool finds the installed catalogue on its own.
  run_clean("${tool} names --lang de" "${EXPECTED_NAMES}" "${prefix}/${BINDIR}/${tool}" names --lang de)
  if(WITH_GUI)
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

check_package(${PACKAGE} "${SUFFIX}" ${TOOL})
# The other Qt's build, installed into the same prefix, still works too.
foreach(tree IN LISTS ALSO_INSTALL)
  file(STRINGS "${tree}/CMakeCache.txt" qt_major REGEX "^TORVIXML_QT_MAJOR:")
  file(STRINGS "${tree}/CMakeCache.txt" with_gui REGEX "^TORVIXML_BUILD_GUI:")
  set(WITH_GUI OFF)
  if(with_gui MATCHES "=ON$")
    set(WITH_GUI ON)
  endif()
  if(qt_major MATCHES "=6$")
    check_package(TorviXMLQt6 Qt6 torvixml-qt6)
  else()
    check_package(TorviXML "" torvixml)
  endif()
endforeach()

file(REMOVE_RECURSE "${run_dir}")
