# XML -> Fast Infoset -> XML through the Java library; the infoset must survive both steps.
# Usage: cmake -DFIINTEROP=wrapper -DINPUT=doc.xml -DWORK=prefix -P JavaRoundTrip.cmake
function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "${ARGN} failed (${rc}):\n${out}${err}")
  endif()
endfunction()

run(${FIINTEROP} xml2fi ${INPUT} ${WORK}.fi)
file(READ ${WORK}.fi magic LIMIT 4 HEX)
if(NOT magic STREQUAL "e0000001")
  message(FATAL_ERROR "${WORK}.fi does not start with the Fast Infoset identification: ${magic}")
endif()
run(${FIINTEROP} fi2xml ${WORK}.fi ${WORK}.xml)
run(${FIINTEROP} compare ${INPUT} ${WORK}.fi)
run(${FIINTEROP} compare ${INPUT} ${WORK}.xml)
