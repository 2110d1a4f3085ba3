# Compares orders-gen's event listing with the listing a parser gives for the generated text.
# Usage: cmake -DFIINTEROP=wrapper -DGENERATOR=orders-gen -DSIZE=n -DINPUT=doc.xml -DWORK=prefix
#              -P EventsMatch.cmake
execute_process(COMMAND ${GENERATOR} --events ${SIZE} ${WORK}-generated.txt RESULT_VARIABLE rc)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "orders-gen --events failed: ${rc}")
endif()
execute_process(COMMAND ${FIINTEROP} events ${INPUT} ${WORK}-parsed.txt RESULT_VARIABLE rc)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "FiInterop events failed: ${rc}")
endif()
execute_process(COMMAND ${CMAKE_COMMAND} -E compare_files ${WORK}-generated.txt ${WORK}-parsed.txt
                RESULT_VARIABLE rc)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "event listings differ: ${WORK}-generated.txt ${WORK}-parsed.txt")
endif()
