# cmake -P script behind the schema test; see CMakeLists.txt.
# Every golden document goes through the library (torvixml convert); the
# written document must equal the expected one (the golden document itself,
# or NAME.written.xml beside it) and be valid against the schema. Every
# document in the invalid set must be refused by the schema.
foreach(var TOOL XMLLINT SCHEMA DATA WORK)
  if(NOT ${var})
    message(FATAL_ERROR "CheckSchema.cmake: ${var} not given")
  endif()
endforeach()
file(MAKE_DIRECTORY "${WORK}")
set(failures "")

file(GLOB inputs "${DATA}/xml/*.xml")
list(FILTER inputs EXCLUDE REGEX "\\.written\\.xml$")
foreach(input IN LISTS inputs)
  get_filename_component(name "${input}" NAME_WE)
  set(written "${WORK}/${name}.xml")
  execute_process(COMMAND "${TOOL}" convert "${input}" "${written}"
    RESULT_VARIABLE rc OUTPUT_QUIET ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    string(APPEND failures "${name}: torvixml convert failed (${rc}): ${err}\n")
    continue()
  endif()
  set(expected "${DATA}/xml/${name}.written.xml")
  if(NOT EXISTS "${expected}")
    set(expected "${input}")
  endif()
  file(READ "${written}" actual_text HEX)
  file(READ "${expected}" expected_text HEX)
  if(NOT actual_text STREQUAL expected_text)
    string(APPEND failures "${name}: the written document ${written} differs from ${expected}\n")
  endif()
  execute_process(COMMAND "${XMLLINT}" --noout --schema "${SCHEMA}" "${written}"
    RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE out)
  if(NOT rc EQUAL 0)
    string(APPEND failures "${name}: the written document is not valid:\n${out}\n")
  endif()
endforeach()

file(GLOB invalid "${DATA}/schema-invalid/*.xml")
foreach(input IN LISTS invalid)
  execute_process(COMMAND "${XMLLINT}" --noout --schema "${SCHEMA}" "${input}"
    RESULT_VARIABLE rc OUTPUT_QUIET ERROR_QUIET)
  if(rc EQUAL 0)
    string(APPEND failures "${input}: accepted by the schema\n")
  endif()
endforeach()

list(LENGTH inputs written_count)
list(LENGTH invalid invalid_count)
if(written_count EQUAL 0 OR invalid_count EQUAL 0)
  string(APPEND failures "no documents found under ${DATA}\n")
endif()
if(failures)
  message(FATAL_ERROR "${failures}")
endif()
message(STATUS "${written_count} written documents valid, ${invalid_count} invalid ones refused")
