# Script behind the consumer.installed_package test (see CMakeLists.txt).
file(REMOVE_RECURSE ${WORK_DIR})
set(prefix ${WORK_DIR}/prefix)

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "failed (${rc}): ${ARGN}\n${out}\n${err}")
  endif()
  set(last_output "${out}" PARENT_SCOPE)
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})

# 1. CMake package: find_package(KorvexAdes CONFIG REQUIRED) + Korvex::ades.
run(${CMAKE_COMMAND} -S ${SOURCE_DIR} -B ${WORK_DIR}/cmake-build -G ${GENERATOR}
    -DCMAKE_CXX_COMPILER=${CXX} -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_BUILD_TYPE=Release)
run(${CMAKE_COMMAND} --build ${WORK_DIR}/cmake-build)
run(${WORK_DIR}/cmake-build/quickstart)
string(FIND "${last_output}" "quickstart: ok" found)
if(found EQUAL -1)
  message(FATAL_ERROR "find_package build printed:\n${last_output}")
endif()

# 2. pkg-config: compile the same source with the flags the .pc file gives.
if(PKG_CONFIG)
  set(ENV{PKG_CONFIG_PATH} ${prefix}/lib/pkgconfig:${prefix}/lib64/pkgconfig)
  run(${PKG_CONFIG} --cflags --libs korvex-ades)
  string(STRIP "${last_output}" flags)
  separate_arguments(flags UNIX_COMMAND "${flags}")
  run(${CXX} ${SOURCE_DIR}/quickstart.cpp ${flags} -o ${WORK_DIR}/quickstart-pc)
  set(ENV{LD_LIBRARY_PATH} ${prefix}/lib)
  run(${WORK_DIR}/quickstart-pc)
  string(FIND "${last_output}" "quickstart: ok" found)
  if(found EQUAL -1)
    message(FATAL_ERROR "pkg-config build printed:\n${last_output}")
  endif()
endif()
message("consumer: find_package and pkg-config builds ran")
