# What every installed library of the project has in common: its installed
# name (with the Qt 6 suffix), version and SOVERSION, run path, ALIAS target,
# export set, install rules and pkg-config module.
#
#   torvixml_install_library(TARGET EXPORT_NAME NAME
#     DESCRIPTION "..." REQUIRES pkg... [REQUIRES_PRIVATE pkg...])
#
# EXPORT_NAME is the name inside the CMake package (TorviXML::NAME, for Qt 6
# TorviXMLQt6::NAME) and of the ALIAS target in the build (TorviXML::NAME).
# The pkg-config module is named after the installed library
# (TorviXML.pc, TorviRGBase.pc, ...; TorviXMLQt6.pc ... for Qt 6).

# pkg-config names the Qt module of the Qt the build uses.
set(TORVIXML_PC_QT_CORE ${TORVIXML_QT}Core)

function(torvixml_install_library target)
  cmake_parse_arguments(arg "" "EXPORT_NAME;DESCRIPTION" "REQUIRES;REQUIRES_PRIVATE" ${ARGN})
  set(output_name ${target}${TORVIXML_SUFFIX})
  set_target_properties(${target} PROPERTIES
    OUTPUT_NAME ${output_name}
    EXPORT_NAME ${arg_EXPORT_NAME}
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR}
    INSTALL_RPATH "${TORVIXML_LIBRARY_INSTALL_RPATH}")
  add_library(TorviXML::${arg_EXPORT_NAME} ALIAS ${target})
  target_include_directories(${target} INTERFACE
    $<INSTALL_INTERFACE:${TORVIXML_INSTALL_INCLUDEROOT}>
    $<INSTALL_INTERFACE:${TORVIXML_INSTALL_INCLUDEDIR}>)
  install(TARGETS ${target} EXPORT TorviXMLTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

  # The module names the real install prefix, which is known only when
  # installing (cmake --install --prefix may differ from the configured one):
  # the body is written now, the prefix line added at install time.
  string(JOIN " " requires ${arg_REQUIRES})
  string(JOIN " " requires_private ${arg_REQUIRES_PRIVATE})
  set(body "libdir=\${prefix}/${CMAKE_INSTALL_LIBDIR}\n")
  string(APPEND body "includedir=\${prefix}/${TORVIXML_INSTALL_INCLUDEROOT}\n\n")
  string(APPEND body "Name: ${output_name}\n")
  string(APPEND body "Description: ${arg_DESCRIPTION}\n")
  string(APPEND body "Version: ${PROJECT_VERSION}\n")
  string(APPEND body "Requires: ${requires}\n")
  if(requires_private)
    string(APPEND body "Requires.private: ${requires_private}\n")
  endif()
  string(APPEND body "Libs: -L\${libdir} -l${output_name}\n")
  string(APPEND body "Cflags: -I\${includedir} -I\${includedir}/TorviXML\n")
  set(body_file ${PROJECT_BINARY_DIR}/pkgconfig/${output_name}.pc.body)
  set(pc_file ${PROJECT_BINARY_DIR}/pkgconfig/${output_name}.pc)
  file(WRITE ${body_file} "${body}")
  install(CODE "
    file(READ \"${body_file}\" body)
    file(WRITE \"${pc_file}\" \"prefix=\${CMAKE_INSTALL_PREFIX}\\n\${body}\")")
  install(FILES ${pc_file} DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endfunction()

# Programs installed to bin/ find the libraries through their run path.
function(torvixml_install_program target)
  set_target_properties(${target} PROPERTIES INSTALL_RPATH "${TORVIXML_PROGRAM_INSTALL_RPATH}")
  install(TARGETS ${target} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endfunction()
