# Writes one scenario through both of our writers and has the Java library compare the infosets
# of the XML text and the Fast Infoset forms.
# Usage: cmake -DFIINTEROP=wrapper -DPROGRAM=fi-writer-interop -DSCENARIO=name -DWORK=prefix
#              [-DDECLS=0;1;...] -P FiWriterMatch.cmake
function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "${ARGN} failed (${rc}):\n${out}${err}")
  endif()
endfunction()

if(NOT DEFINED DECLS)
  set(DECLS 0)
endif()
foreach(decl IN LISTS DECLS)
  set(out ${WORK}-${decl})
  run(${PROGRAM} ${SCENARIO} ${out} ${decl})
  run(${FIINTEROP} compare ${out}.xml ${out}.fi)
endforeach()
