# Helpers shared by the layer folders.
#
# korvex_layer(<name> SOURCES ... [DEPENDS <layer>...])
#   An OBJECT library holding one layer of libkorvex-ades. Its public headers
#   live in <folder>/include/korvex/<layer>/ and are installed as they stand.
#   The layer is linked into the shared library and, directly, into the test
#   binaries of that layer, so a test can reach internal functions too.
#   Linking an OBJECT library adds its objects only to the direct linker;
#   korvex_test/korvex_bench/korvex_fuzz therefore expand each layer they are
#   given into the layer and every layer it depends on (korvex_link_layers).
set(KORVEX_ADES_LAYERS "" CACHE INTERNAL "")
set(KORVEX_PUBLIC_INCLUDE_DIRS "" CACHE INTERNAL "")

function(korvex_public_headers dir)
  set(dirs ${KORVEX_PUBLIC_INCLUDE_DIRS})
  list(APPEND dirs ${dir})
  list(REMOVE_DUPLICATES dirs)
  set(KORVEX_PUBLIC_INCLUDE_DIRS "${dirs}" CACHE INTERNAL "")
endfunction()

function(korvex_layer name)
  cmake_parse_arguments(L "" "" "SOURCES;DEPENDS" ${ARGN})
  if(NOT L_SOURCES)
    # A layer with headers only so far: nothing to link, usage requirements only.
    add_library(${name} INTERFACE)
    target_include_directories(${name} INTERFACE
      $<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}/include>)
    target_link_libraries(${name} INTERFACE korvex-capi korvex-support ${L_DEPENDS})
    set_property(TARGET ${name} PROPERTY KORVEX_LAYER_DEPS "${L_DEPENDS}")
    if(EXISTS ${CMAKE_CURRENT_SOURCE_DIR}/include)
      korvex_public_headers(${CMAKE_CURRENT_SOURCE_DIR}/include)
    endif()
    return()
  endif()
  add_library(${name} OBJECT ${L_SOURCES})
  target_include_directories(${name} PUBLIC
    $<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}/include>
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>
    PRIVATE ${CMAKE_CURRENT_SOURCE_DIR}/src)
  target_link_libraries(${name} PUBLIC korvex-capi korvex-support ${L_DEPENDS})
  set_property(TARGET ${name} PROPERTY KORVEX_LAYER_DEPS "${L_DEPENDS}")
  target_compile_definitions(${name} PRIVATE KORVEX_BUILDING_ADES=1)
  if(EXISTS ${CMAKE_CURRENT_SOURCE_DIR}/include)
    korvex_public_headers(${CMAKE_CURRENT_SOURCE_DIR}/include)
  endif()
  set(layers ${KORVEX_ADES_LAYERS})
  list(APPEND layers ${name})
  set(KORVEX_ADES_LAYERS "${layers}" CACHE INTERNAL "")
endfunction()

# korvex_link_layers(<target> <item>...)
#   Links the items into target; a layer brings the layers it depends on with
#   it, so a binary that names korvex_cades gets every object it needs.
function(korvex_link_layers target)
  set(queue ${ARGN})
  set(items)
  while(queue)
    list(POP_FRONT queue item)
    if(item IN_LIST items)
      continue()
    endif()
    list(APPEND items ${item})
    if(TARGET ${item})
      get_property(deps TARGET ${item} PROPERTY KORVEX_LAYER_DEPS)
      list(APPEND queue ${deps})
    endif()
  endwhile()
  target_link_libraries(${target} PRIVATE ${items})
endfunction()

# korvex_test(<name> SOURCES ... LINK ... [LABELS ...])
#   One GoogleTest binary; every test in it is registered with CTest.
function(korvex_test name)
  cmake_parse_arguments(T "" "" "SOURCES;LINK;LABELS" ${ARGN})
  add_executable(${name} ${T_SOURCES})
  korvex_link_layers(${name} ${T_LINK})
  target_link_libraries(${name} PRIVATE GTest::gtest GTest::gtest_main)
  target_compile_definitions(${name} PRIVATE
    KORVEX_SOURCE_DIR="${PROJECT_SOURCE_DIR}"
    KORVEX_TEST_DATA_DIR="${PROJECT_SOURCE_DIR}/tests/data"
    KORVEX_CORPUS_DIR="${PROJECT_SOURCE_DIR}/../shared/corpus")
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60
    PROPERTIES LABELS "${T_LABELS}")
endfunction()
