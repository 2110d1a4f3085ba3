# koxmllib10_generate(TARGET name SCHEMAS a.xsd ...
#                     [NAMESPACE_MAP uri=cxx::ns ...] [LOCATION_MAP uri=file ...]
#                     [ROOTS element ...] [INCLUDE_PREFIX prefix] [EXPORT_MACRO macro]
#                     [SHARDS n])
#
# Runs `koxml generate` at build time and builds the classes into the static
# library `name`, which links KoXmlLib10::koxmllib10. Users include the
# umbrella header <Schema>Binding.h (or "<prefix>/<Schema>Binding.h" with
# INCLUDE_PREFIX). The classes are compiled through SHARDS sources (default 4)
# whose names are known before the generator runs; the generated file per
# class sits beside them. The report of constructs mapped with a loss is
# written to <binary dir>/<name>.report.txt.
function(koxmllib10_generate)
  cmake_parse_arguments(GEN "" "TARGET;INCLUDE_PREFIX;EXPORT_MACRO;SHARDS"
                        "SCHEMAS;NAMESPACE_MAP;LOCATION_MAP;ROOTS" ${ARGN})
  if(NOT GEN_TARGET OR NOT GEN_SCHEMAS)
    message(FATAL_ERROR "koxmllib10_generate needs TARGET and SCHEMAS")
  endif()
  if(NOT GEN_SHARDS)
    set(GEN_SHARDS 4)
  endif()
  if(TARGET koxml)
    set(_koxml $<TARGET_FILE:koxml>)
    set(_koxml_dep koxml)
  elseif(TARGET KoXmlLib10::koxml)
    set(_koxml $<TARGET_FILE:KoXmlLib10::koxml>)
    set(_koxml_dep KoXmlLib10::koxml)
  else()
    message(FATAL_ERROR "koxmllib10_generate: the koxml tool is not available")
  endif()
  set(_root ${CMAKE_CURRENT_BINARY_DIR}/${GEN_TARGET}_generated)
  set(_dir ${_root})
  if(GEN_INCLUDE_PREFIX)
    set(_dir ${_root}/${GEN_INCLUDE_PREFIX})
  endif()
  set(_args)
  set(_schemas)
  foreach(_schema IN LISTS GEN_SCHEMAS)
    get_filename_component(_abs ${_schema} ABSOLUTE)
    list(APPEND _schemas ${_abs})
  endforeach()
  foreach(_map IN LISTS GEN_NAMESPACE_MAP)
    list(APPEND _args --namespace-map ${_map})
  endforeach()
  foreach(_map IN LISTS GEN_LOCATION_MAP)
    list(APPEND _args --location-map ${_map})
  endforeach()
  foreach(_element IN LISTS GEN_ROOTS)
    list(APPEND _args --root ${_element})
  endforeach()
  if(GEN_INCLUDE_PREFIX)
    list(APPEND _args --include-prefix ${GEN_INCLUDE_PREFIX})
  endif()
  if(GEN_EXPORT_MACRO)
    list(APPEND _args --export-macro ${GEN_EXPORT_MACRO})
  endif()
  set(_sources)
  foreach(_i RANGE 1 ${GEN_SHARDS})
    list(APPEND _sources ${_dir}/shard_${_i}.cpp)
  endforeach()
  set(_report ${CMAKE_CURRENT_BINARY_DIR}/${GEN_TARGET}.report.txt)
  # Schemas reached through include, import and redefine are listed by the
  # generator in a dependency file, so that editing one regenerates.
  set(_depfile ${CMAKE_CURRENT_BINARY_DIR}/${GEN_TARGET}.d)
  list(GET _sources 0 _first)
  # Unchanged files keep their time stamps (so their classes are not
  # recompiled); the shards are touched so the rule does not run again.
  add_custom_command(
    OUTPUT ${_sources} ${_report}
    COMMAND ${_koxml} generate ${_schemas} --out ${_dir} --shards ${GEN_SHARDS} --report ${_report}
            --depfile ${_depfile} ${_first} ${_args}
    COMMAND ${CMAKE_COMMAND} -E touch ${_sources} ${_report}
    DEPENDS ${_schemas} ${_koxml_dep}
    DEPFILE ${_depfile}
    COMMENT "Generating C++ classes for ${GEN_TARGET}"
    VERBATIM)
  add_library(${GEN_TARGET} STATIC ${_sources})
  target_include_directories(${GEN_TARGET} PUBLIC $<BUILD_INTERFACE:${_root}>)
  if(TARGET KoXmlLib10::koxmllib10)
    target_link_libraries(${GEN_TARGET} PUBLIC KoXmlLib10::koxmllib10)
  else()
    target_link_libraries(${GEN_TARGET} PUBLIC koxmllib10)
  endif()
endfunction()
