# The TorviXML shared library: framework/, settings/, representation/ and
# validation/ make up one library.
file(GLOB TORVIXML_SOURCES CONFIGURE_DEPENDS
  ${CMAKE_SOURCE_DIR}/framework/*.cpp
  ${CMAKE_SOURCE_DIR}/settings/*.cpp
  ${CMAKE_SOURCE_DIR}/representation/*.cpp
  ${CMAKE_SOURCE_DIR}/validation/*.cpp)
set(TORVIXML_PUBLIC_HEADERS
  ${CMAKE_SOURCE_DIR}/settings/GuiComponentSettings.h
  ${CMAKE_SOURCE_DIR}/settings/DataOperationMode.h
  ${CMAKE_SOURCE_DIR}/settings/TorviGuiModeSettings.h
  ${CMAKE_SOURCE_DIR}/include/TorviXML/TorviXML.h
  ${TORVIXML_GENERATED_INCLUDEDIR}/torvixml_export.h)

add_library(TorviXML SHARED ${TORVIXML_SOURCES})
generate_export_header(TorviXML
  BASE_NAME TorviXML
  EXPORT_FILE_NAME ${TORVIXML_GENERATED_INCLUDEDIR}/torvixml_export.h)
set_target_properties(TorviXML PROPERTIES
  VERSION ${PROJECT_VERSION}
  SOVERSION ${PROJECT_VERSION_MAJOR})
target_include_directories(TorviXML
  PUBLIC
    $<BUILD_INTERFACE:${CMAKE_SOURCE_DIR}/settings>
    $<BUILD_INTERFACE:${CMAKE_SOURCE_DIR}/include>
    $<BUILD_INTERFACE:${CMAKE_SOURCE_DIR}/include/TorviXML>
    $<BUILD_INTERFACE:${TORVIXML_GENERATED_INCLUDEDIR}>
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>
    $<INSTALL_INTERFACE:${TORVIXML_INSTALL_INCLUDEDIR}>
  PRIVATE
    ${CMAKE_SOURCE_DIR}/framework
    ${CMAKE_SOURCE_DIR}/representation
    ${CMAKE_SOURCE_DIR}/validation)
target_link_libraries(TorviXML PUBLIC TorviRGBase ${TORVIXML_QT}::Core)
if(TARGET TorviXMLAppStartup)
  target_link_libraries(TorviXML PRIVATE TorviXMLAppStartup)
endif()

install(TARGETS TorviXML EXPORT TorviXMLTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES ${TORVIXML_PUBLIC_HEADERS} DESTINATION ${TORVIXML_INSTALL_INCLUDEDIR})
