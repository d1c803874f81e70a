# SPDX-License-Identifier: Apache-2.0
# One place for the flags that every target of the project is built with.
add_library(bmcfru_warnings INTERFACE)
target_compile_options(bmcfru_warnings INTERFACE -Wall -Wextra -Wconversion -Wshadow)
# Not where the compiler is newer than this code: its new warnings are no reason to have no library.
if(BMCFRU_WERROR)
  target_compile_options(bmcfru_warnings INTERFACE -Werror)
endif()
# GCC says by a note that 7.1 once passed some structures differently on ARM; nothing here spans compilers of that age.
target_compile_options(bmcfru_warnings INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-psabi>)

# Controllers of both kinds exist, and nothing here may depend on it.
set(BMCFRU_CHAR "" CACHE STRING "signed or unsigned: what char is, whatever the compiler makes of it; empty: the compiler's own")
if(BMCFRU_CHAR)
  if(NOT BMCFRU_CHAR MATCHES "^(un)?signed$")
    message(FATAL_ERROR "BMCFRU_CHAR is signed, unsigned or empty")
  endif()
  add_compile_options(-f${BMCFRU_CHAR}-char)
endif()

set(BMCFRU_SANITIZE "" CACHE STRING "sanitizers for every target, e.g. address,undefined")
if(BMCFRU_SANITIZE)
  # Line tables are all that the sanitizers' reports need.
  add_compile_options(-fsanitize=${BMCFRU_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer -g1)
  add_link_options(-fsanitize=${BMCFRU_SANITIZE})
endif()

if(BMCFRU_COVERAGE)
  add_compile_options(-fprofile-instr-generate -fcoverage-mapping)
  add_link_options(-fprofile-instr-generate)
endif()
