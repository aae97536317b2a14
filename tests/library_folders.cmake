# SPDX-FileCopyrightText: 2026 The Sendrivo authors
# SPDX-License-Identifier: GPL-3.0-or-later
#
# cmake -D READELF=... -P library_folders.cmake PROGRAM...: fails unless each program looks for its
# libraries only in folders that do not depend on the working directory.

math(EXPR last "${CMAKE_ARGC} - 1")
foreach(i RANGE 5 ${last})
  set(program "${CMAKE_ARGV${i}}")
  execute_process(COMMAND "${READELF}" -d "${program}" OUTPUT_VARIABLE dynamic
                  COMMAND_ERROR_IS_FATAL ANY)
  if(NOT dynamic MATCHES "\\(NEEDED\\)")
    message(FATAL_ERROR "${program}: its libraries are not known")
  endif()
  if(dynamic MATCHES "\\(R(UN)?PATH\\)[^\n]*\\[([^\n]*)\\]")
    set(folders "${CMAKE_MATCH_2}")
    if(NOT folders MATCHES "^(/|\\$ORIGIN)[^:]*(:(/|\\$ORIGIN)[^:]*)*$")
      message(SEND_ERROR "${program} looks for libraries in \"${folders}\"")
    endif()
  endif()
endforeach()
