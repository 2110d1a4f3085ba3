# End-to-end checks of the koxml command line: conversions in every direction
# give the same document, failures leave no output behind.
file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})

function(koxml expected_rc)
  execute_process(COMMAND ${KOXML} ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out
                  ERROR_VARIABLE err WORKING_DIRECTORY ${WORK})
  if(NOT rc EQUAL expected_rc)
    message(FATAL_ERROR "koxml ${ARGN}: exit ${rc}, expected ${expected_rc}\n${out}${err}")
  endif()
  set(KOXML_OUT "${out}" PARENT_SCOPE)
  set(KOXML_ERR "${err}" PARENT_SCOPE)
endfunction()

function(expect_same a b)
  file(SHA256 ${WORK}/${a} ha)
  file(SHA256 ${WORK}/${b} hb)
  if(NOT ha STREQUAL hb)
    message(FATAL_ERROR "${a} and ${b} differ")
  endif()
endfunction()

function(expect_magic file hex)
  file(READ ${WORK}/${file} head LIMIT 4 HEX)
  string(FIND "${head}" "${hex}" at)
  if(NOT at EQUAL 0)
    message(FATAL_ERROR "${file} starts with ${head}, expected ${hex}")
  endif()
endfunction()

execute_process(COMMAND ${GENERATOR} 60000 ${WORK}/orders.xml RESULT_VARIABLE rc)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "orders-gen failed")
endif()

# XML -> Fast Infoset -> gzip -> XML gives what XML -> XML gives.
koxml(0 convert orders.xml direct.xml --strip-whitespace)
koxml(0 convert orders.xml orders.fi --strip-whitespace)
expect_magic(orders.fi "e0000001")
koxml(0 convert orders.fi orders.xml.gz)
expect_magic(orders.xml.gz "1f8b")
koxml(0 convert orders.xml.gz roundtrip.xml)
expect_same(direct.xml roundtrip.xml)

# Declarations, zlib, UTF-16 and indentation read back to the same document.
koxml(0 convert orders.xml decl.finf --decl 1.0-standalone-yes --compress zlib --strip-whitespace)
expect_magic(decl.finf "78")
koxml(0 convert decl.finf from-decl.xml)
expect_same(direct.xml from-decl.xml)
koxml(0 convert orders.xml wide.xml --encoding utf-16 --indent --crlf --strip-whitespace)
expect_magic(wide.xml "fffe3c00")
koxml(0 convert wide.xml from-wide.xml --strip-whitespace)
expect_same(direct.xml from-wide.xml)

# Standard input and output.
execute_process(COMMAND ${KOXML} convert - - --to fi --strip-whitespace
                INPUT_FILE ${WORK}/orders.xml OUTPUT_FILE ${WORK}/stdout.fi RESULT_VARIABLE rc)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "convert - - failed")
endif()
expect_same(orders.fi stdout.fi)

koxml(0 info orders.xml.gz)
foreach(line "format:        XML text" "compression:   gzip" "namespaces:    1")
  string(FIND "${KOXML_OUT}" "${line}" at)
  if(at EQUAL -1)
    message(FATAL_ERROR "info lacks '${line}':\n${KOXML_OUT}")
  endif()
endforeach()
koxml(0 info decl.finf)
string(FIND "${KOXML_OUT}" "Fast Infoset (with XML declaration)" at)
if(at EQUAL -1)
  message(FATAL_ERROR "info did not detect Fast Infoset:\n${KOXML_OUT}")
endif()

# Every figure info reports, on a document small enough to count by hand.
file(WRITE ${WORK}/small.xml "<?xml version=\"1.0\"?>\n<!-- c -->\n<r xmlns=\"urn:a\" xmlns:p=\"urn:b\" a=\"1\">\n  <p:x p:k=\"v\" k2=\"w\">t</p:x>\n  <y><z/></y>\n  <y/>\n</r>\n")
koxml(0 info small.xml)
foreach(line "size:          129 bytes" "uncompressed:  129 bytes" "elements:      5"
             "attributes:    3" "distinct names: 7" "namespaces:    2" "max depth:     3")
  string(FIND "${KOXML_OUT}" "${line}" at)
  if(at EQUAL -1)
    message(FATAL_ERROR "info lacks '${line}':\n${KOXML_OUT}")
  endif()
endforeach()

# --indent, --crlf and --strip-whitespace shape the text exactly.
file(WRITE ${WORK}/layout.xml "<r a=\"1\">\n  <y>\n    <z/>\n  </y>\n  <y>t</y>\n</r>\n")
koxml(0 convert layout.xml layout-out.xml --indent --crlf --strip-whitespace)
# (Compared in hex: file(READ) as text drops carriage returns.)
file(READ ${WORK}/layout-out.xml text HEX)
string(HEX "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n<r a=\"1\">\r\n\t<y>\r\n\t\t<z/>\r\n\t</y>\r\n\t<y>t</y>\r\n</r>\r\n" expected)
if(NOT text STREQUAL expected)
  message(FATAL_ERROR "--indent --crlf --strip-whitespace gave (hex):\n${text}")
endif()

# The output file gets the permissions the umask allows, not the temporary file's private ones.
execute_process(COMMAND sh -c "umask 027 && exec '${KOXML}' convert layout.xml shared.xml"
                WORKING_DIRECTORY ${WORK} RESULT_VARIABLE rc)
execute_process(COMMAND stat -c %a ${WORK}/shared.xml OUTPUT_VARIABLE mode OUTPUT_STRIP_TRAILING_WHITESPACE)
if(NOT rc EQUAL 0 OR NOT mode STREQUAL "640")
  message(FATAL_ERROR "convert under umask 027: exit ${rc}, mode ${mode}, expected 640")
endif()

# Failures: one line with the library's message, non-zero exit, no output file.
file(WRITE ${WORK}/broken.xml "<a><b></a>")
koxml(1 convert broken.xml out.xml)
string(FIND "${KOXML_ERR}" " at line 1" at)
if(at EQUAL -1)
  message(FATAL_ERROR "expected the parser's message, got: ${KOXML_ERR}")
endif()
koxml(1 convert missing.xml out.xml)
string(FIND "${KOXML_ERR}" "koxml: Failed to open the file [missing.xml]" at)
if(at EQUAL -1)
  message(FATAL_ERROR "unexpected message: ${KOXML_ERR}")
endif()
# A failed conversion leaves an existing OUT as it was; a failed rename (OUT is a
# directory) removes the temporary file it wrote.
file(WRITE ${WORK}/existing.xml "keep")
koxml(1 convert broken.xml existing.xml)
file(READ ${WORK}/existing.xml kept)
if(NOT kept STREQUAL "keep")
  message(FATAL_ERROR "a failed conversion changed the existing output: ${kept}")
endif()
file(MAKE_DIRECTORY ${WORK}/adir)
koxml(1 convert layout.xml adir)
file(GLOB leftovers ${WORK}/out.xml* ${WORK}/existing.xml.* ${WORK}/adir.*)
if(leftovers)
  message(FATAL_ERROR "failed conversion left files behind: ${leftovers}")
endif()
koxml(2 convert orders.xml)
koxml(2 convert orders.xml x.xml --to yaml)
koxml(0 --help)
koxml(0 --version)
