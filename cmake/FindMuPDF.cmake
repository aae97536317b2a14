# SPDX-FileCopyrightText: 2026 The Sendrivo authors
# SPDX-License-Identifier: GPL-3.0-or-later
#
# Finds MuPDF, which comes without a CMake package. Sets MuPDF_VERSION and the imported target
# MuPDF::MuPDF. A static build (libmupdf.a and libmupdf-third.a, as Debian ships it) brings the
# libraries along that it was built on; a shared one stands alone.

find_path(MuPDF_INCLUDE_DIR mupdf/fitz.h)
find_library(MuPDF_LIBRARY mupdf)
find_library(MuPDF_THIRD_LIBRARY mupdf-third)
mark_as_advanced(MuPDF_INCLUDE_DIR MuPDF_LIBRARY MuPDF_THIRD_LIBRARY)

if(MuPDF_INCLUDE_DIR)
  file(STRINGS "${MuPDF_INCLUDE_DIR}/mupdf/fitz/version.h" mupdf_version_line
       REGEX "#define FZ_VERSION \"")
  string(REGEX REPLACE ".*\"([0-9.]+).*" "\\1" MuPDF_VERSION "${mupdf_version_line}")
endif()

set(mupdf_missing "")
set(mupdf_dependencies "")
if(MuPDF_LIBRARY MATCHES "\\.a$")
  # Library and the Debian package that holds its development file.
  foreach(pair freetype:libfreetype-dev harfbuzz:libharfbuzz-dev openjp2:libopenjp2-7-dev
               jbig2dec:libjbig2dec0-dev jpeg:libjpeg-dev z:zlib1g-dev gumbo:libgumbo-dev
               mujs:libmujs-dev crypto:libssl-dev)
    string(REGEX REPLACE ":.*" "" name "${pair}")
    string(REGEX REPLACE ".*:" "" package "${pair}")
    find_library(MuPDF_${name}_LIBRARY ${name})
    mark_as_advanced(MuPDF_${name}_LIBRARY)
    if(MuPDF_${name}_LIBRARY)
      list(APPEND mupdf_dependencies "${MuPDF_${name}_LIBRARY}")
    else()
      list(APPEND mupdf_missing ${package})
    endif()
  endforeach()
  if(MuPDF_THIRD_LIBRARY)
    list(PREPEND mupdf_dependencies "${MuPDF_THIRD_LIBRARY}")
  endif()
  list(APPEND mupdf_dependencies m)
endif()

include(FindPackageHandleStandardArgs)
if(mupdf_missing)
  list(JOIN mupdf_missing " " mupdf_missing)
  set(MuPDF_NOT_FOUND_MESSAGE "Libraries that MuPDF needs are missing. Debian: apt install ${mupdf_missing}")
  set(mupdf_complete OFF)
else()
  set(MuPDF_NOT_FOUND_MESSAGE "Debian: apt install libmupdf-dev")
  set(mupdf_complete ON)
endif()
find_package_handle_standard_args(MuPDF
  REQUIRED_VARS MuPDF_LIBRARY MuPDF_INCLUDE_DIR mupdf_complete
  VERSION_VAR MuPDF_VERSION
  REASON_FAILURE_MESSAGE "${MuPDF_NOT_FOUND_MESSAGE}")

if(MuPDF_FOUND AND NOT TARGET MuPDF::MuPDF)
  add_library(MuPDF::MuPDF UNKNOWN IMPORTED)
  set_target_properties(MuPDF::MuPDF PROPERTIES
    IMPORTED_LOCATION "${MuPDF_LIBRARY}"
    INTERFACE_INCLUDE_DIRECTORIES "${MuPDF_INCLUDE_DIR}"
    INTERFACE_LINK_LIBRARIES "${mupdf_dependencies}")
endif()
