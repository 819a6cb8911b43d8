# Flags that make faults in our programs and libraries hard to use: each one only where the compiler
# and the linker know it. Windows has its own ways, which its linker switches on by itself; the stack
# protector would add a library to the module there.
#   quoril_hardening          flags of compilation
#   quoril_harden(TARGET)     the same, and the linker's, for what is linked; consumers see neither
include(CheckCXXCompilerFlag)
include(CheckCXXSourceCompiles)
include(CheckLinkerFlag)
include(CheckPIESupported)

add_library(quoril_hardening INTERFACE)
set(QUORIL_HARDENING_LINK_OPTIONS)

function(quoril_harden target)
  target_link_libraries(${target} PRIVATE $<BUILD_INTERFACE:quoril_hardening>)
  # Not an option of quoril_hardening: a static library would hand it to what it is linked into.
  target_link_options(${target} PRIVATE ${QUORIL_HARDENING_LINK_OPTIONS})
endfunction()

if(WIN32)
  return()
endif()

check_pie_supported(LANGUAGES CXX)  # has CMAKE_POSITION_INDEPENDENT_CODE link programs with -pie too

foreach(option relro now noexecstack)
  check_linker_flag(CXX "LINKER:-z,${option}" QUORIL_LINKER_HAS_${option})
  if(QUORIL_LINKER_HAS_${option})
    list(APPEND QUORIL_HARDENING_LINK_OPTIONS "LINKER:-z,${option}")
  endif()
endforeach()

if(QUORIL_SANITIZE OR QUORIL_COVERAGE)
  # Sanitizers look for the same faults, and better where nothing comes between them and the calls.
  return()
endif()

# What the compiler does is for the builds that users run: quoril_hardening_option(FLAG ...).
function(quoril_hardening_option)
  target_compile_options(quoril_hardening INTERFACE
    "$<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:${ARGN}>")
endfunction()

foreach(option stack-protector-strong stack-clash-protection cf-protection)
  check_cxx_compiler_flag("-f${option}" QUORIL_COMPILER_HAS_${option})
  if(QUORIL_COMPILER_HAS_${option})
    quoril_hardening_option("-f${option}")
  endif()
endforeach()

# Checked calls of the C library; with level 3 also of sizes that are known when the program runs.
foreach(level 3 2)
  set(CMAKE_REQUIRED_FLAGS "-O2 -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=${level}")
  check_cxx_source_compiles("
    #include <cstring>
    #if __USE_FORTIFY_LEVEL < ${level}
    #error
    #endif
    int main() {}" QUORIL_FORTIFY_LEVEL_${level})
  unset(CMAKE_REQUIRED_FLAGS)
  if(QUORIL_FORTIFY_LEVEL_${level})
    quoril_hardening_option(-U_FORTIFY_SOURCE "-D_FORTIFY_SOURCE=${level}")
    break()
  endif()
endforeach()
