# Generates about 200 KB of orders and validates them against orders.xsd.
# Usage: cmake -DGENERATOR=... -DXMLLINT=... -DSCHEMA=... -DWORK=dir -P CheckSchema.cmake
file(MAKE_DIRECTORY ${WORK})
foreach(layout indented compact)
  set(doc ${WORK}/orders-${layout}.xml)
  set(flags)
  if(layout STREQUAL compact)
    set(flags --compact)
  endif()
  execute_process(COMMAND ${GENERATOR} ${flags} 200000 ${doc} RESULT_VARIABLE rc)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "orders-gen failed: ${rc}")
  endif()
  execute_process(COMMAND ${XMLLINT} --noout --schema ${SCHEMA} ${doc}
                  RESULT_VARIABLE rc ERROR_VARIABLE log)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "${doc} does not validate against ${SCHEMA}:\n${log}")
  endif()
endforeach()
