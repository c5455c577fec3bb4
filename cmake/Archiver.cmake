# SPDX-License-Identifier: MIT
# The target "archiver" puts the real archiver into the program folder as 7za.exe: the distribution's on
# Linux, the one of scripts/third-party on Windows.
set(archiver ${CMAKE_BINARY_DIR}/bin/7za.exe)
if(WIN32)
  set(TAVO_ARCHIVER ${TAVO_7zip}/7za.exe)
else()
  # Of p7zip-full in Debian 12, of 7zip since; not /usr/bin/7za, which may be a script around it.
  find_program(TAVO_ARCHIVER NAMES 7za PATHS /usr/lib/p7zip /usr/lib/7zip NO_DEFAULT_PATH REQUIRED)
endif()
add_custom_command(OUTPUT ${archiver} COMMAND ${CMAKE_COMMAND} -E copy ${TAVO_ARCHIVER} ${archiver}
  DEPENDS ${TAVO_ARCHIVER} VERBATIM)
add_custom_target(archiver DEPENDS ${archiver})
