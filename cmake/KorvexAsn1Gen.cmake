# korvex_asn1_compile(SOURCES_VAR <var> OUTPUT_DIR <dir> MODULES <file.asn>...
#                     [SEARCH <dir>...])
#   Runs our ASN.1 compiler (tools/asn1gen) on each module: one custom command
#   per module writes <dir>/include/korvex/asn1gen/<Module>.h and
#   <dir>/src/<Module>.cpp, and sets <var> to the generated sources. A module is
#   regenerated when its text, its directives file (<Module>.dir beside it), a
#   module it imports (found through the depfile the compiler writes) or the
#   compiler's own .py files change; the compiler rewrites an output only when
#   its text changes. Imports are looked up beside each module and in SEARCH.
set(KORVEX_ASN1GEN_DIR ${CMAKE_CURRENT_LIST_DIR}/../tools/asn1gen CACHE INTERNAL "")

function(korvex_asn1_compile)
  cmake_parse_arguments(A "" "SOURCES_VAR;OUTPUT_DIR" "MODULES;SEARCH" ${ARGN})
  file(GLOB compiler CONFIGURE_DEPENDS
    ${KORVEX_ASN1GEN_DIR}/asn1gen.py ${KORVEX_ASN1GEN_DIR}/asn1gen/*.py)
  set(search_args)
  foreach(dir IN LISTS A_SEARCH)
    list(APPEND search_args -I ${dir})
  endforeach()
  set(sources)
  file(MAKE_DIRECTORY ${A_OUTPUT_DIR}/include/korvex/asn1gen ${A_OUTPUT_DIR}/src
    ${A_OUTPUT_DIR}/deps)
  foreach(asn IN LISTS A_MODULES)
    get_filename_component(base ${asn} NAME_WE)
    get_filename_component(dir ${asn} DIRECTORY)
    set(header ${A_OUTPUT_DIR}/include/korvex/asn1gen/${base}.h)
    set(source ${A_OUTPUT_DIR}/src/${base}.cpp)
    set(depfile ${A_OUTPUT_DIR}/deps/${base}.d)
    set(inputs ${asn})
    if(EXISTS ${dir}/${base}.dir)
      list(APPEND inputs ${dir}/${base}.dir)
    endif()
    add_custom_command(
      OUTPUT ${source} ${header}
      COMMAND ${Python3_EXECUTABLE} ${KORVEX_ASN1GEN_DIR}/asn1gen.py ${asn}
        --header-dir ${A_OUTPUT_DIR}/include/korvex/asn1gen
        --source-dir ${A_OUTPUT_DIR}/src ${search_args} --depfile ${depfile}
      DEPENDS ${inputs} ${compiler}
      DEPFILE ${depfile}
      COMMENT "asn1gen ${base}"
      VERBATIM)
    list(APPEND sources ${source})
  endforeach()
  set(${A_SOURCES_VAR} ${sources} PARENT_SCOPE)
endfunction()
