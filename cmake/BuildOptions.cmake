# How every target is compiled: the language, the warnings, and the faster tools where they are.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

add_library(skerrow_options INTERFACE)
target_include_directories(skerrow_options INTERFACE ${CMAKE_SOURCE_DIR})
target_compile_options(skerrow_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion)

find_program(CCACHE ccache)
if(CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
endif()

include(CheckLinkerFlag)
check_linker_flag(CXX -fuse-ld=mold SKERROW_HAS_MOLD)
if(SKERROW_HAS_MOLD)
  add_link_options(-fuse-ld=mold)
endif()

# The program counts what it allocates. A sanitizer brings operators of its own, so that every call
# of them is led through ours instead.
option(SKERROW_WRAPS_ALLOCATION "Count allocations beside a sanitizer's operators" OFF)
if(SKERROW_WRAPS_ALLOCATION)
  target_compile_definitions(skerrow_options INTERFACE SKERROW_WRAPS_ALLOCATION)
  foreach(symbol _Znwm _Znam _ZnwmSt11align_val_t _ZdlPv _ZdlPvm _ZdaPv _ZdaPvm
                 _ZdlPvSt11align_val_t _ZdlPvmSt11align_val_t)
    add_link_options(-Wl,--wrap=${symbol})
  endforeach()
endif()
