# SPDX-License-Identifier: MIT
# The target "archiver" puts the real archiver into the program folder as 7za.exe: the distribution's on
# Linux, the upstream one on Windows. A build without it goes on, and says so.
set(archiver ${CMAKE_BINARY_DIR}/bin/7za.exe)
if(WIN32)
  add_custom_target(archiver
    COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/bin
    COMMAND test -f ${archiver} || ${PROJECT_SOURCE_DIR}/scripts/fetch-7za ${archiver} ${CMAKE_BINARY_DIR}/7za || true
    VERBATIM)
  return()
endif()

# Not /usr/bin/7za, a script around this program.
find_program(TAVO_ARCHIVER NAMES 7za PATHS /usr/lib/p7zip /usr/lib/7zip /usr/libexec/p7zip NO_DEFAULT_PATH)
if(TAVO_ARCHIVER)
  add_custom_command(OUTPUT ${archiver} COMMAND ${CMAKE_COMMAND} -E copy ${TAVO_ARCHIVER} ${archiver}
    DEPENDS ${TAVO_ARCHIVER} VERBATIM)
  add_custom_target(archiver DEPENDS ${archiver})
else()
  message(WARNING "No archiver for the program folder: 7za of the package p7zip-full is not there. "
    "A shipment will say that 7za.exe is missing.")
  add_custom_target(archiver)
endif()
