# cmake -P script behind the consumer_find_package test; see CMakeLists.txt.
cmake_minimum_required(VERSION 3.16)

foreach(var BUILD_TREE WORK_ROOT PROJECT_SOURCE LIBDIR GENERATOR)
  if(NOT DEFINED ${var} OR "${${var}}" STREQUAL "")
    message(FATAL_ERROR "RunConsumer.cmake: ${var} not given")
  endif()
endforeach()

# A directory of its own for every run, so that runs never see each other's
# leftovers. It is removed after a successful run and kept after a failure.
string(TIMESTAMP stamp "%Y%m%d%H%M%S")
string(RANDOM LENGTH 8 ALPHABET "0123456789abcdefghijklmnopqrstuvwxyz" suffix)
set(run_dir "${WORK_ROOT}/run-${stamp}-${suffix}")
set(prefix "${run_dir}/prefix")
set(consumer_build "${run_dir}/build")
file(MAKE_DIRECTORY "${run_dir}")

function(run_step what)
  execute_process(COMMAND ${ARGN}
    RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE out)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "${what} failed (${rc}); files kept in ${run_dir}\n${out}")
  endif()
endfunction()

set(config_args)
if(CONFIG)
  set(config_args --config ${CONFIG})
endif()
run_step("Installing ${BUILD_TREE}"
  ${CMAKE_COMMAND} --install "${BUILD_TREE}" --prefix "${prefix}" ${config_args})

set(configure_args -S "${PROJECT_SOURCE}" -B "${consumer_build}" -G "${GENERATOR}"
  "-DCMAKE_PREFIX_PATH=${prefix}" -DCMAKE_FIND_PACKAGE_NO_PACKAGE_REGISTRY=ON)
if(CXX_COMPILER)
  list(APPEND configure_args "-DCMAKE_CXX_COMPILER=${CXX_COMPILER}")
endif()
if(CONFIG)
  list(APPEND configure_args "-DCMAKE_BUILD_TYPE=${CONFIG}")
endif()
if(QT_PACKAGE AND QT_PACKAGE_DIR)
  list(APPEND configure_args "-D${QT_PACKAGE}_DIR=${QT_PACKAGE_DIR}")
endif()
run_step("Configuring the consumer project" ${CMAKE_COMMAND} ${configure_args})

# The package must come from the fresh prefix, not from anywhere else.
file(STRINGS "${consumer_build}/CMakeCache.txt" found_dir REGEX "^TorviXML_DIR:")
string(REGEX REPLACE "^TorviXML_DIR:[A-Z]*=" "" found_dir "${found_dir}")
file(REAL_PATH "${prefix}" real_prefix)
file(REAL_PATH "${found_dir}" real_found_dir)
string(FIND "${real_found_dir}/" "${real_prefix}/" at)
if(NOT at EQUAL 0)
  message(FATAL_ERROR "TorviXML was found in ${found_dir}, not in ${prefix}")
endif()

run_step("Building the consumer project" ${CMAKE_COMMAND} --build "${consumer_build}" ${config_args})

set(program "${consumer_build}/torvixml_consumer")
if(NOT EXISTS "${program}")
  file(GLOB_RECURSE program "${consumer_build}/torvixml_consumer" "${consumer_build}/torvixml_consumer.exe")
endif()
if(NOT program)
  message(FATAL_ERROR "The consumer program was not built; files kept in ${run_dir}")
endif()

# The installed libraries carry no run path of their own.
set(library_path "${prefix}/${LIBDIR}")
if(DEFINED ENV{LD_LIBRARY_PATH} AND NOT "$ENV{LD_LIBRARY_PATH}" STREQUAL "")
  string(APPEND library_path ":$ENV{LD_LIBRARY_PATH}")
endif()
execute_process(COMMAND ${CMAKE_COMMAND} -E env "LD_LIBRARY_PATH=${library_path}" ${program}
  RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
set(expected
  "GuiComponentSettings -1436546027\n"
  "Navigator|DEFAULT_DISPLAY|FloatingDockWidgetArea |complete\n"
  "refused: enum is not valid (classname=GuiComponentSettings,membername=m_dockWidgetLocation)\n")
string(CONCAT expected ${expected})
if(NOT rc EQUAL 0 OR NOT out STREQUAL expected)
  message(FATAL_ERROR "The consumer program printed (exit code ${rc}):\n[${out}]\nexpected:\n[${expected}]\n"
                      "stderr:\n${err}\nfiles kept in ${run_dir}")
endif()

# The same program built through pkg-config instead of CMake.
find_program(PKG_CONFIG_EXECUTABLE pkg-config)
if(PKG_CONFIG_EXECUTABLE AND CXX_COMPILER)
  set(pc_path "${prefix}/${LIBDIR}/pkgconfig")
  if(DEFINED ENV{PKG_CONFIG_PATH} AND NOT "$ENV{PKG_CONFIG_PATH}" STREQUAL "")
    string(APPEND pc_path ":$ENV{PKG_CONFIG_PATH}")
  endif()
  execute_process(COMMAND ${CMAKE_COMMAND} -E env "PKG_CONFIG_PATH=${pc_path}"
      ${PKG_CONFIG_EXECUTABLE} --cflags --libs TorviXML
    RESULT_VARIABLE rc OUTPUT_VARIABLE pc_flags ERROR_VARIABLE pc_err OUTPUT_STRIP_TRAILING_WHITESPACE)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "pkg-config does not know TorviXML: ${pc_err}; files kept in ${run_dir}")
  endif()
  separate_arguments(pc_flags UNIX_COMMAND "${pc_flags}")
  set(pc_program "${run_dir}/torvixml_consumer_pc")
  run_step("Building the consumer through pkg-config"
    ${CXX_COMPILER} -std=c++17 "${PROJECT_SOURCE}/main.cpp" -o "${pc_program}" ${pc_flags})
  execute_process(COMMAND ${CMAKE_COMMAND} -E env "LD_LIBRARY_PATH=${library_path}" ${pc_program}
    RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0 OR NOT out STREQUAL expected)
    message(FATAL_ERROR "The pkg-config build printed (exit code ${rc}):\n[${out}]\nexpected:\n[${expected}]\n"
                        "stderr:\n${err}\nfiles kept in ${run_dir}")
  endif()
else()
  message(FATAL_ERROR "pkg-config or the compiler is missing; the package is checked through both")
endif()

file(REMOVE_RECURSE "${run_dir}")
message(STATUS "Consumer check passed (find_package and pkg-config)")
