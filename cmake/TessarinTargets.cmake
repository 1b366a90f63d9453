# Helpers that keep the folder rules in one place.
#
# A subsystem folder under src/ becomes the static library tessarin_<folder> from its logic
# files (src/core becomes tessarin_base, since tessarin_core is the name of the whole); the files
# that hold windows (names ending in dialog, frame, panel, widget or ui) go to tessarin_ui instead.
# tessarin_core gathers every logic library, so a front end links one name.

set(TESSARIN_UI_PATTERN "(dialog|frame|panel|widget|ui)\\.cpp$")

function(tessarin_subsystem name)
  cmake_parse_arguments(ARG "" "" "DEPENDS;LIBS;PRIVATE_LIBS" ${ARGN})
  file(GLOB all_sources CONFIGURE_DEPENDS
    ${PROJECT_SOURCE_DIR}/src/${name}/*.cpp ${PROJECT_SOURCE_DIR}/src/${name}/*.h)
  set(logic_sources "")
  foreach(src IN LISTS all_sources)
    if(NOT src MATCHES "${TESSARIN_UI_PATTERN}")
      list(APPEND logic_sources ${src})
    endif()
  endforeach()
  list(FILTER logic_sources EXCLUDE REGEX "\\.h$")
  if(NOT logic_sources)
    return()
  endif()
  if(name STREQUAL "core")
    set(target tessarin_base)
  else()
    set(target tessarin_${name})
  endif()
  add_library(${target} STATIC ${logic_sources})
  # LIBS are seen by the folder's users (a public header needs them); PRIVATE_LIBS only by the
  # folder's own sources.
  target_link_libraries(${target} PUBLIC tessarin_common ${ARG_DEPENDS} ${ARG_LIBS}
    PRIVATE ${ARG_PRIVATE_LIBS})
  set_property(GLOBAL APPEND PROPERTY TESSARIN_CORE_LIBS ${target})
endfunction()

# tessarin_add_test(<name> SOURCES ... [LIBS ...] [UI])
# One GoogleTest binary, registered with CTest test by test, labelled ui or logic. UI tests run
# offscreen.
function(tessarin_add_test name)
  cmake_parse_arguments(ARG "UI" "" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE tessarin_common ${ARG_LIBS} GTest::gtest GTest::gmock
    GTest::gtest_main)
  # Shared test helpers live in tests/support.
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_compile_definitions(${name} PRIVATE
    TESSARIN_TEST_DATA="${PROJECT_SOURCE_DIR}/tests/data"
    TESSARIN_BINARY_DIR="${PROJECT_BINARY_DIR}")
  # An empty ENVIRONMENT value would drop out of the property list and shift every pair behind
  # it, so it is given only when there is one.
  set(properties TIMEOUT 300 LABELS logic)
  if(ARG_UI)
    set(properties ENVIRONMENT "QT_QPA_PLATFORM=offscreen" TIMEOUT 300 LABELS ui)
  endif()
  gtest_discover_tests(${name}
    DISCOVERY_MODE PRE_TEST
    DISCOVERY_TIMEOUT 60
    PROPERTIES ${properties}
      # A GTEST_SKIP shows as skipped in CTest's summary, not as passed.
      SKIP_REGULAR_EXPRESSION "\\[  SKIPPED \\]")
endfunction()

# tessarin_add_fuzzer(<name> SOURCES ... [LIBS ...] [CORPUS dir] [SECONDS n])
# A libFuzzer target (clang only, configured with TESSARIN_BUILD_FUZZ), registered with CTest as
# a short run from its seed corpus so that CI exercises it on every change.
function(tessarin_add_fuzzer name)
  cmake_parse_arguments(ARG "" "CORPUS;SECONDS" "SOURCES;LIBS" ${ARGN})
  if(NOT ARG_SECONDS)
    set(ARG_SECONDS 20)
  endif()
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE tessarin_common ${ARG_LIBS})
  target_link_options(${name} PRIVATE -fsanitize=fuzzer,address,undefined)
  add_dependencies(tessarin_fuzzers ${name})
  set(corpus_args "")
  if(ARG_CORPUS)
    set(work ${CMAKE_CURRENT_BINARY_DIR}/${name}_corpus)
    add_test(NAME fuzz_${name}
      COMMAND ${CMAKE_COMMAND} -E env ASAN_OPTIONS=detect_leaks=1
              $<TARGET_FILE:${name}> -max_total_time=${ARG_SECONDS} -rss_limit_mb=2048
              -timeout=10 ${work} ${ARG_CORPUS})
    file(MAKE_DIRECTORY ${work})
  else()
    add_test(NAME fuzz_${name}
      COMMAND $<TARGET_FILE:${name}> -max_total_time=${ARG_SECONDS} -rss_limit_mb=2048 -timeout=10)
  endif()
  set_tests_properties(fuzz_${name} PROPERTIES TIMEOUT 600 LABELS fuzz)
endfunction()
