# Fast Infoset written by the reference Java library is read by our reader into
# the same document: Java encodes INPUT, koxml decodes it to XML text, and the
# reference listing of that text must equal the listing of INPUT.
file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "${ARGN}: exit ${rc}\n${out}${err}")
  endif()
endfunction()

run(${FIINTEROP} xml2fi ${INPUT} ${WORK}/java.fi)
run(${KOXML} convert ${WORK}/java.fi ${WORK}/ours.xml)
run(${FIINTEROP} compare ${INPUT} ${WORK}/ours.xml)
# And the same through our own Fast Infoset writer and back through Java.
run(${KOXML} convert ${INPUT} ${WORK}/ours.fi)
run(${FIINTEROP} compare ${INPUT} ${WORK}/ours.fi)
