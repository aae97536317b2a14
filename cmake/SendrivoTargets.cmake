# SPDX-FileCopyrightText: 2026 The Sendrivo authors
# SPDX-License-Identifier: GPL-3.0-or-later
#
# What every target of the project has in common. Settings are carried by the targets, so that a
# project that takes this one in with add_subdirectory keeps its own.

add_library(sendrivo_settings INTERFACE)
target_compile_features(sendrivo_settings INTERFACE cxx_std_17)
target_compile_options(sendrivo_settings INTERFACE -Wall -Wextra -Wpedantic -Wshadow
                       $<$<BOOL:${SENDRIVO_WERROR}>:-Werror>)
if(SENDRIVO_FUZZ)
  set(SENDRIVO_SANITIZE ON)
  target_compile_options(sendrivo_settings INTERFACE -fsanitize=fuzzer-no-link)
endif()
if(SENDRIVO_SANITIZE)
  target_compile_options(sendrivo_settings INTERFACE -fsanitize=address,undefined
                         -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
  target_link_options(sendrivo_settings INTERFACE -fsanitize=address,undefined)
endif()

# Includes are written from the repository root: #include "split/subtext.h".
add_library(sendrivo_includes INTERFACE)
target_include_directories(sendrivo_includes INTERFACE "${PROJECT_SOURCE_DIR}")

# Definitions for targets that use Qt.
add_library(sendrivo_qt_settings INTERFACE)
target_compile_definitions(sendrivo_qt_settings INTERFACE
                           QT_NO_CAST_TO_ASCII QT_DISABLE_DEPRECATED_BEFORE=0x060400)

# sendrivo_project_setup(): Qt's usual settings for a project, but programs look for shared libraries
# where they were linked, or where CMAKE_INSTALL_RPATH says. Qt's own choice for installed programs
# is longer than what a built one needs; CMake fills up the rest with empty entries, and the loader
# takes those for the working directory, which is a folder of the user's data.
macro(sendrivo_project_setup)
  set(sendrivo_chosen_rpath "${CMAKE_INSTALL_RPATH}")
  qt_standard_project_setup()
  set(CMAKE_INSTALL_RPATH "${sendrivo_chosen_rpath}")
  if(CMAKE_INSTALL_RPATH)
    set(CMAKE_BUILD_WITH_INSTALL_RPATH ON)
  else()
    set(CMAKE_INSTALL_RPATH_USE_LINK_PATH ON)
  endif()
endmacro()

# sendrivo_program(TARGET): the program goes to bin/ in the build tree, where the window looks for
# its tools, and is installed to bin/.
function(sendrivo_program target)
  set_target_properties(${target} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
  install(TARGETS ${target} RUNTIME DESTINATION bin)
  set_property(DIRECTORY "${PROJECT_SOURCE_DIR}" APPEND PROPERTY sendrivo_programs ${target})
endfunction()
