# SPDX-License-Identifier: MIT
# What every target of the tree shares: warnings, sanitizers, include root, export headers, resources.
include(GenerateExportHeader)

# Protections of what ships; the sanitizers bring their own. The compiler takes _FORTIFY_SOURCE where it optimizes.
if(WIN32)
  add_link_options(-Wl,--dynamicbase,--high-entropy-va,--nxcompat)
  # For libcurl and OpenSSL, which have the stack protector: its part of the runtime.
  string(APPEND CMAKE_CXX_STANDARD_LIBRARIES " -l:libssp.a")
elseif(NOT TAVO_SANITIZE)
  include(CheckPIESupported)
  check_pie_supported()
  add_compile_options(-fstack-protector-strong -fstack-clash-protection)
  if(CMAKE_SYSTEM_PROCESSOR STREQUAL "x86_64")
    add_compile_options(-fcf-protection=full)
  endif()
  if(NOT CMAKE_BUILD_TYPE STREQUAL "Debug")
    add_compile_options(-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3)
  endif()
  add_link_options(-Wl,-z,relro,-z,now,-z,noexecstack)
endif()

# A compiler that is newer than those we build with warns of what nobody has read yet; it makes the program all the same.
set(tavo_warnings -Wall -Wextra -Wpedantic -Wshadow -Wconversion)
if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "GNU" OR CMAKE_CXX_COMPILER_VERSION VERSION_LESS 17)
  list(APPEND tavo_warnings -Werror)
endif()

function(tavo_common target)
  target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR})
  target_compile_options(${target} PRIVATE ${tavo_warnings})
  if(TAVO_PACKAGE)
    # The same commit gives the same bytes wherever it is built.
    target_compile_options(${target} PRIVATE
      -ffile-prefix-map=${PROJECT_SOURCE_DIR}=. -ffile-prefix-map=${CMAKE_BINARY_DIR}=build)
  endif()
  if(WIN32)
    target_compile_definitions(${target} PRIVATE
      UNICODE _UNICODE WINVER=0x0A00 _WIN32_WINNT=0x0A00 WIN32_LEAN_AND_MEAN NOMINMAX)
    target_link_options(${target} PRIVATE -Wl,--no-insert-timestamp)
  endif()
  if(TAVO_SANITIZE)
    target_compile_options(${target} PRIVATE -fsanitize=${TAVO_SANITIZE} -fno-omit-frame-pointer
      -fno-sanitize-recover=all)
    target_link_options(${target} PRIVATE -fsanitize=${TAVO_SANITIZE})
  endif()
  if(TAVO_FUZZ)
    target_compile_options(${target} PRIVATE -fsanitize=fuzzer-no-link)
  endif()
endfunction()

# MinGW's runtime is shared, since strings and exceptions cross our libraries; its files lie in the program
# folder, so that the folder is complete.
function(tavo_copy_runtime)
  foreach(file libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${file} OUTPUT_VARIABLE path
      OUTPUT_STRIP_TRAILING_WHITESPACE)
    if(NOT EXISTS ${path})
      set(path /usr/x86_64-w64-mingw32/lib/${file})
    endif()
    file(COPY ${path} DESTINATION ${CMAKE_BINARY_DIR}/bin)
  endforeach()
endfunction()

# A part of the program that is linked into it.
function(tavo_static name)
  cmake_parse_arguments(arg "" "" "SOURCES;LIBS" ${ARGN})
  add_library(${name} STATIC ${arg_SOURCES})
  tavo_common(${name})
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR})
  target_link_libraries(${name} PUBLIC ${arg_LIBS})
endfunction()

# A shared library of the program folder: NAME.dll or libNAME.so. Its header finds <NAME>Export.h with
# the macro NAME_EXPORT (upper case).
function(tavo_shared name)
  cmake_parse_arguments(arg "" "OUTPUT" "SOURCES;LIBS;PRIVATE_LIBS" ${ARGN})
  add_library(${name} SHARED ${arg_SOURCES})
  tavo_common(${name})
  string(TOUPPER ${name} upper)
  generate_export_header(${name} BASE_NAME ${upper} EXPORT_FILE_NAME ${CMAKE_BINARY_DIR}/generated/${name}Export.h)
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR} ${CMAKE_BINARY_DIR}/generated)
  target_link_libraries(${name} PUBLIC ${arg_LIBS} PRIVATE ${arg_PRIVATE_LIBS})
  if(arg_OUTPUT)
    set_target_properties(${name} PROPERTIES OUTPUT_NAME ${arg_OUTPUT})
  endif()
  if(WIN32)
    set_target_properties(${name} PROPERTIES PREFIX "" IMPORT_PREFIX "lib"
      ARCHIVE_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
    tavo_windows_resource(${name} ${PROJECT_SOURCE_DIR}/resources/Library.rc -DTAVO_FILE=${arg_OUTPUT})
  endif()
endfunction()

# For resources/Version.rc, on both systems.
set(tavo_version -DTAVO_VERSION_MAJOR=${PROJECT_VERSION_MAJOR} -DTAVO_VERSION_MINOR=${PROJECT_VERSION_MINOR}
  -DTAVO_VERSION_PATCH=${PROJECT_VERSION_PATCH})

# Links an .rc file into a Windows program or library, compiled with the version and what else is given.
function(tavo_windows_resource target rc)
  get_filename_component(dir ${rc} DIRECTORY)
  file(GLOB parts CONFIGURE_DEPENDS ${dir}/*)
  target_sources(${target} PRIVATE ${rc})
  set_source_files_properties(${rc} PROPERTIES OBJECT_DEPENDS "${parts}"
    COMPILE_OPTIONS "-I${dir};-c65001;${tavo_version};${ARGN}")
endfunction()

# Gives a program the resources of an .rc file. For Windows windres links them in. For Linux the same
# windres writes a .res file, which is embedded in the program and found by the layer through the two
# symbols below (see platform/resource/).
function(tavo_resources target rc)
  get_filename_component(rc ${rc} ABSOLUTE)
  if(WIN32)
    tavo_windows_resource(${target} ${rc})
    return()
  endif()
  get_filename_component(dir ${rc} DIRECTORY)
  file(GLOB parts CONFIGURE_DEPENDS ${dir}/*)
  find_program(WINDRES x86_64-w64-mingw32-windres REQUIRED)
  set(res ${CMAKE_CURRENT_BINARY_DIR}/${target}.res)
  # windres hands its paths to a shell as they are: none of the folder that the tree lies in.
  file(RELATIVE_PATH shortDir ${PROJECT_SOURCE_DIR} ${dir})
  get_filename_component(shortRc ${rc} NAME)
  add_custom_command(OUTPUT ${res}
    COMMAND ${WINDRES} --preprocessor=${CMAKE_C_COMPILER} --preprocessor-arg=-E --preprocessor-arg=-xc
            --preprocessor-arg=-DRC_INVOKED -c65001 -O res -I${shortDir} -Iplatform/include
            ${tavo_version} -i ${shortDir}/${shortRc} -o ${res}
    WORKING_DIRECTORY ${PROJECT_SOURCE_DIR} DEPENDS ${parts} VERBATIM)
  set(source ${CMAKE_CURRENT_BINARY_DIR}/${target}Resources.c)
  file(CONFIGURE OUTPUT ${source} CONTENT [=[
__asm__(".section .rodata\n"
        ".balign 16\n"
        ".global tavo_resources_begin\n"
        "tavo_resources_begin:\n"
        ".incbin \"@res@\"\n"
        ".global tavo_resources_end\n"
        "tavo_resources_end:\n"
        ".byte 0\n"
        ".previous\n");
]=] @ONLY)
  set_source_files_properties(${source} PROPERTIES OBJECT_DEPENDS ${res})
  target_sources(${target} PRIVATE ${source})
  set_target_properties(${target} PROPERTIES ENABLE_EXPORTS ON)
endfunction()
