# SPDX-License-Identifier: MIT
# What the Windows program needs of others, built once from Debian's source packages by scripts/third-party:
# the folder of 7za.exe, and libcurl with OpenSSL, static, under the names that their targets have on Linux.
function(tavo_third_party name)
  execute_process(COMMAND ${PROJECT_SOURCE_DIR}/scripts/third-party ${name} OUTPUT_VARIABLE folder
    OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  set(TAVO_${name} ${folder} PARENT_SCOPE)
endfunction()

set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/scripts/third-party
  ${PROJECT_SOURCE_DIR}/packaging/windows/curl-active-tls.patch)
tavo_third_party(7zip)
tavo_third_party(openssl)
tavo_third_party(curl)

function(tavo_imported target archive folder)
  add_library(${target} STATIC IMPORTED GLOBAL)
  set_target_properties(${target} PROPERTIES IMPORTED_LOCATION ${folder}/lib/${archive}
    INTERFACE_INCLUDE_DIRECTORIES ${folder}/include)
  target_link_libraries(${target} INTERFACE ${ARGN})
endfunction()

tavo_imported(OpenSSL::Crypto libcrypto.a ${TAVO_openssl} ws2_32 crypt32 gdi32)
tavo_imported(OpenSSL::SSL libssl.a ${TAVO_openssl} OpenSSL::Crypto)
tavo_imported(CURL::libcurl libcurl.a ${TAVO_curl} OpenSSL::SSL ws2_32 crypt32 bcrypt normaliz)
target_compile_definitions(CURL::libcurl INTERFACE CURL_STATICLIB)
