# SPDX-License-Identifier: Apache-2.0
# Makes a C++ source of text files, each a constant named after its file (page.css: REPORT_PAGE_CSS):
#   cmake -DOUTPUT=FILE -DPREFIX=REPORT_ -DFILES=A,B -P EmbedText.cmake
string(REPLACE "," ";" asFiles "${FILES}")
set(strOut "// Made by cmake/EmbedText.cmake.\n")
foreach(strFile IN LISTS asFiles)
  file(READ "${strFile}" strText)
  get_filename_component(strName "${strFile}" NAME)
  string(MAKE_C_IDENTIFIER "${strName}" strName)
  string(TOUPPER "${strName}" strName)
  string(APPEND strOut "extern const char ${PREFIX}${strName}[];\nconst char ${PREFIX}${strName}[] = R\"embedded(${strText})embedded\";\n")
endforeach()
file(WRITE "${OUTPUT}" "${strOut}")
