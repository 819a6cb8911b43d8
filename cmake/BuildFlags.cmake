# Flags of our own targets; consumers of installed targets never see them.
#   quoril_warnings  warnings, all of them errors
#   quoril_flags     sanitizers and coverage, as the presets ask
#   Hardening.cmake  what makes faults hard to use
include(Hardening)

add_library(quoril_warnings INTERFACE)
target_compile_options(quoril_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_GREATER_EQUAL 12
    AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # This version takes "a" + std::string(...) for overlapping copies when it optimises fully.
  target_compile_options(quoril_warnings INTERFACE -Wno-restrict)
endif()
if(CMAKE_CXX_COMPILER_ID MATCHES Clang)
  # This compiler counts changes of signedness as conversions.
  target_compile_options(quoril_warnings INTERFACE -Wno-sign-conversion)
endif()

add_library(quoril_flags INTERFACE)
if(QUORIL_SANITIZE)
  target_compile_options(quoril_flags INTERFACE
    -fsanitize=${QUORIL_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(quoril_flags INTERFACE -fsanitize=${QUORIL_SANITIZE})
  if(QUORIL_SANITIZE STREQUAL thread AND CMAKE_CXX_COMPILER_ID MATCHES Clang)
    # This one's operator new gives way to that of the tests that count allocations.
    target_link_options(quoril_flags INTERFACE -Wl,-z,muldefs)
  endif()
endif()
if(QUORIL_COVERAGE)
  target_compile_options(quoril_flags INTERFACE --coverage -fprofile-update=atomic)
  target_link_options(quoril_flags INTERFACE --coverage)
endif()
if(QUORIL_BUILD_FUZZ)
  # What the fuzzer learns by: which places of our code an input reached. Those of the harnesses
  # themselves would lead it astray, and slow it down.
  target_compile_options(quoril_flags INTERFACE -fsanitize=fuzzer-no-link
    -fsanitize-coverage-ignorelist=${PROJECT_SOURCE_DIR}/fuzz/uncounted.txt ${QUORIL_FUZZ_OPTIONS})
endif()
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
  # x87 registers keep more digits than a double has: results would differ between builds.
  target_compile_options(quoril_flags INTERFACE -msse2 -mfpmath=sse -D_FILE_OFFSET_BITS=64)
endif()

# quoril_own(TARGET): includes from the project's root, our warnings and flags.
function(quoril_own target)
  target_include_directories(${target} PUBLIC "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>")
  target_link_libraries(${target} PRIVATE
    $<BUILD_INTERFACE:quoril_warnings> $<BUILD_INTERFACE:quoril_flags>)
  quoril_harden(${target})
endfunction()
