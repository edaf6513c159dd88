# Included by scripts/coverage.sh through CMAKE_PROJECT_INCLUDE: instruments
# only the ASN.1 runtime (asn1rt/, the descriptor engine included) for clang's
# source-based coverage, unoptimised so that lines map one to one. Every other
# object keeps the flags of the usual sanitizer build, so ccache serves them.
function(korvex_coverage_instrument)
  if(NOT TARGET korvex_asn1rt)
    message(FATAL_ERROR "coverage: no korvex_asn1rt target")
  endif()
  target_compile_options(korvex_asn1rt PRIVATE -O0 -fprofile-instr-generate -fcoverage-mapping)
endfunction()
cmake_language(DEFER DIRECTORY ${CMAKE_SOURCE_DIR} CALL korvex_coverage_instrument)
