# SPDX-License-Identifier: Apache-2.0
# Where things are installed, and how what is installed finds its libraries again wherever its folder is moved to.
if(BMCFRU_MULTIARCH AND CMAKE_LIBRARY_ARCHITECTURE AND NOT DEFINED CACHE{CMAKE_INSTALL_LIBDIR})
  set(CMAKE_INSTALL_LIBDIR lib/${CMAKE_LIBRARY_ARCHITECTURE} CACHE PATH "object code libraries")
endif()
include(GNUInstallDirs)

# From folder strFrom to folder strTo, both below the prefix.
function(bmcfru_relative strOut strFrom strTo)
  cmake_path(ABSOLUTE_PATH strFrom BASE_DIRECTORY /prefix)
  cmake_path(ABSOLUTE_PATH strTo BASE_DIRECTORY /prefix)
  file(RELATIVE_PATH strPath ${strFrom} ${strTo})
  string(REGEX REPLACE "/$" "" strPath "${strPath}")
  set(${strOut} ${strPath} PARENT_SCOPE)
endfunction()

# Run paths of what is installed: a library looks beside itself, a program in the folder of libraries.
bmcfru_relative(strToLibraries ${CMAKE_INSTALL_BINDIR} ${CMAKE_INSTALL_LIBDIR})
set(BMCFRU_LIBRARY_RPATH "$ORIGIN")
set(BMCFRU_PROGRAM_RPATH "$ORIGIN/${strToLibraries}")
