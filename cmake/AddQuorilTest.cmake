find_package(GTest REQUIRED)
find_package(rapidcheck QUIET)
include(GoogleTest)

# quoril_add_test(NAME SOURCES a.cpp ... LIBS target ... [LABELS fast] [TIMEOUT seconds])
# One program for a folder of tests; every TEST in it is a ctest of its own.
function(quoril_add_test name)
  cmake_parse_arguments(ARG "" "TIMEOUT" "SOURCES;LIBS;LABELS" ${ARGN})
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 120)
  endif()
  if(NOT ARG_LABELS)
    set(ARG_LABELS fast)
  endif()
  add_executable(${name} ${ARG_SOURCES})
  quoril_own(${name})
  target_link_libraries(${name} PRIVATE ${ARG_LIBS} GTest::gmock GTest::gtest_main)
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
    PROPERTIES TIMEOUT ${ARG_TIMEOUT} LABELS "${ARG_LABELS}")
endfunction()

# quoril_add_soak_test(NAME name TIMEOUT seconds COMMAND ...)
# The long form of a test: it runs by itself, and only when `./check --soak` asks for it.
function(quoril_add_soak_test)
  cmake_parse_arguments(ARG "" "NAME;TIMEOUT" "COMMAND" ${ARGN})
  add_test(NAME soak.${ARG_NAME} CONFIGURATIONS Soak COMMAND ${ARG_COMMAND})
  set_tests_properties(soak.${ARG_NAME} PROPERTIES TIMEOUT ${ARG_TIMEOUT} LABELS soak RUN_SERIAL TRUE)
endfunction()
