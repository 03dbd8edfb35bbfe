# Building Kestrune extension modules.
#
# The runtime loads a module only when it carries a valid Authenticode
# signature, so every module is signed as it is built (with osslsigncode).
#
#   kestrune_add_module(<name>
#                       SOURCES <source>...
#                       [EXTENSION .krx|.kra|.dll]      (default .krx)
#                       [OUTPUT_NAME <file name without extension>]
#                       [OUTPUT_DIRECTORY <directory>]
#                       [SIGN_WITH <certificate target> | UNSIGNED]
#                       [OWN_API_VERSION]
#                       [LIBRARIES <library>...]
#                       [DEFINITIONS <definition>...]
#                       [VERSION <major.minor.patch>] [DESCRIPTION <text>]
#                       [COMPANY <text>] [COPYRIGHT <text>])
#     A module: a DLL linked against Kestrune::kr1st, named <name><EXTENSION>
#     (or OUTPUT_NAME), signed after every link with the certificate of
#     SIGN_WITH, by default with the build tree's throwaway certificate
#     (kestrune_throwaway_certificate, made on first use); UNSIGNED leaves it
#     unsigned. When the sources do not define krrxGetApiVersion, the SDK's
#     (KRRX_DEFINE_API_VERSION()) is linked in; OWN_API_VERSION turns that off.
#     The file's sections are page-aligned, and Release and MinSizeRel builds
#     carry no debug sections: both make each load cheaper.
#     The module carries a version resource (see below) from VERSION (0.0.0
#     when not given), DESCRIPTION (the target name when not given), COMPANY
#     and COPYRIGHT.
#
#   kestrune_add_version_resource(<target> VERSION <version> DESCRIPTION <text>
#                                 [COMPANY <text>] [COPYRIGHT <text>] [PRODUCT <text>])
#     Gives the DLL or module of target a version resource, which Windows
#     shows in the file's properties and the runtime's module handle reads:
#     FileVersion and ProductVersion from VERSION (one to four numbers),
#     FileDescription, CompanyName, LegalCopyright and ProductName from the
#     texts given, InternalName and OriginalFilename from the file's name.
#
#   kestrune_add_signing_certificate(<target>)
#     Makes, at build time and once per build tree, a throwaway certificate
#     authority and a code-signing certificate issued by it (with openssl),
#     in <build dir>/<target>/. Meant for development and tests: the keys
#     never leave the build tree, and only a system that trusts that
#     authority (Wine does not check) accepts the signature.
#
#   kestrune_add_publisher_certificate(<target>
#                                      PFX <file.pfx> | CERTIFICATE <cert.pem> KEY <key.pem>
#                                      [CHAIN <certificates.pem>]
#                                      [PASSWORD_FILE <file>]
#                                      [TIMESTAMP_URL <RFC 3161 time-stamp server>])
#     A publisher's existing code-signing certificate and key, as a PKCS#12
#     file or a PEM pair, for SIGN_WITH <target>. CHAIN adds intermediate
#     certificates to the signature; PASSWORD_FILE holds the key's password
#     (its first line), so the password never appears in the build files;
#     TIMESTAMP_URL has each signature timestamped, which keeps it valid after
#     the certificate expires.

find_program(KESTRUNE_OPENSSL openssl)
# Version resources are compiled by the resource compiler of the toolchain.
get_property(kestrune_languages GLOBAL PROPERTY ENABLED_LANGUAGES)
if(NOT RC IN_LIST kestrune_languages)
  enable_language(RC)
endif()
find_program(KESTRUNE_OSSLSIGNCODE osslsigncode)
set_property(GLOBAL PROPERTY KESTRUNE_MODULE_DIR ${CMAKE_CURRENT_LIST_DIR})

function(kestrune_add_signing_certificate target)
  set(dir ${CMAKE_CURRENT_BINARY_DIR}/${target})
  file(MAKE_DIRECTORY ${dir})
  file(WRITE ${dir}/codesign.cnf
    "basicConstraints=CA:FALSE\nkeyUsage=critical,digitalSignature\nextendedKeyUsage=codeSigning\n")
  set(days 3650)
  add_custom_command(
    OUTPUT ${dir}/ca.pem ${dir}/codesign.pem ${dir}/codesign.key
    COMMAND ${KESTRUNE_OPENSSL} req -x509 -newkey rsa:2048 -nodes -days ${days} -keyout ca.key -out ca.pem
            -subj "/CN=${target} throwaway CA"
            -addext "basicConstraints=critical,CA:TRUE" -addext "keyUsage=critical,keyCertSign,cRLSign"
    COMMAND ${KESTRUNE_OPENSSL} req -newkey rsa:2048 -nodes -keyout codesign.key -out codesign.csr
            -subj "/CN=${target} code signing"
    COMMAND ${KESTRUNE_OPENSSL} x509 -req -days ${days} -in codesign.csr -CA ca.pem -CAkey ca.key
            -CAcreateserial -extfile codesign.cnf -out codesign.pem
    WORKING_DIRECTORY ${dir}
    COMMENT "Making the throwaway code-signing certificate ${target}"
    VERBATIM)
  add_custom_target(${target} DEPENDS ${dir}/ca.pem ${dir}/codesign.pem ${dir}/codesign.key)
  set_target_properties(${target} PROPERTIES
    KESTRUNE_CHAIN ${dir}/ca.pem
    KESTRUNE_CERTIFICATE ${dir}/codesign.pem
    KESTRUNE_KEY ${dir}/codesign.key)
endfunction()

function(kestrune_add_publisher_certificate target)
  cmake_parse_arguments(PARSE_ARGV 1 CERT "" "PFX;CERTIFICATE;KEY;CHAIN;PASSWORD_FILE;TIMESTAMP_URL" "")
  if(CERT_PFX AND (CERT_CERTIFICATE OR CERT_KEY))
    message(FATAL_ERROR "kestrune_add_publisher_certificate(${target}): give PFX or CERTIFICATE and KEY, not both")
  endif()
  if(NOT CERT_PFX AND NOT (CERT_CERTIFICATE AND CERT_KEY))
    message(FATAL_ERROR "kestrune_add_publisher_certificate(${target}): needs PFX, or CERTIFICATE and KEY")
  endif()
  foreach(file IN ITEMS ${CERT_PFX} ${CERT_CERTIFICATE} ${CERT_KEY} ${CERT_CHAIN} ${CERT_PASSWORD_FILE})
    if(NOT EXISTS ${file})
      message(FATAL_ERROR "kestrune_add_publisher_certificate(${target}): ${file} does not exist")
    endif()
  endforeach()
  add_custom_target(${target})
  set_target_properties(${target} PROPERTIES
    KESTRUNE_PFX "${CERT_PFX}"
    KESTRUNE_CERTIFICATE "${CERT_CERTIFICATE}"
    KESTRUNE_KEY "${CERT_KEY}"
    KESTRUNE_CHAIN "${CERT_CHAIN}"
    KESTRUNE_PASSWORD_FILE "${CERT_PASSWORD_FILE}"
    KESTRUNE_TIMESTAMP_URL "${CERT_TIMESTAMP_URL}")
endfunction()

# Signs the file of target after each link with the certificate target made
# by kestrune_add_signing_certificate or kestrune_add_publisher_certificate.
function(kestrune_sign_target target certificate)
  foreach(property PFX CERTIFICATE KEY CHAIN PASSWORD_FILE TIMESTAMP_URL)
    get_target_property(value ${certificate} KESTRUNE_${property})
    if(NOT value STREQUAL "")
      set(${property} ${value})
    endif()
  endforeach()
  if(PFX)
    set(identity -pkcs12 ${PFX})
  else()
    set(identity -certs ${CERTIFICATE} -key ${KEY})
  endif()
  if(CHAIN)
    list(APPEND identity -ac ${CHAIN})
  endif()
  if(PASSWORD_FILE)
    list(APPEND identity -readpass ${PASSWORD_FILE})
  endif()
  if(TIMESTAMP_URL)
    list(APPEND identity -ts ${TIMESTAMP_URL})
  endif()
  add_dependencies(${target} ${certificate})
  add_custom_command(TARGET ${target} POST_BUILD
    COMMAND ${KESTRUNE_OSSLSIGNCODE} sign ${identity} -n ${target}
            -in $<TARGET_FILE:${target}> -out $<TARGET_FILE:${target}>.signed
    COMMAND ${CMAKE_COMMAND} -E rename $<TARGET_FILE:${target}>.signed $<TARGET_FILE:${target}>
    VERBATIM)
endfunction()

# The archive that holds the SDK's krrxGetApiVersion. The module's link asks
# for the symbol (--undefined), so the archive's copy is taken only when no
# object of the module defines it.
function(kestrune_link_default_api_version target)
  if(NOT TARGET kestrune_api_version)
    get_property(dir GLOBAL PROPERTY KESTRUNE_MODULE_DIR)
    add_library(kestrune_api_version STATIC ${dir}/KestruneApiVersion.cpp)
    target_link_libraries(kestrune_api_version PRIVATE Kestrune::kr1st)
  endif()
  target_link_libraries(${target} PRIVATE kestrune_api_version)
  target_link_options(${target} PRIVATE -Wl,--undefined=krrxGetApiVersion)
endfunction()

# A text as a resource-script string: quotes doubled, backslashes escaped.
function(kestrune_rc_string out text)
  string(REPLACE "\\" "\\\\" text "${text}")
  string(REPLACE "\"" "\"\"" text "${text}")
  set(${out} "\"${text}\"" PARENT_SCOPE)
endfunction()

function(kestrune_add_version_resource target)
  cmake_parse_arguments(PARSE_ARGV 1 RES "" "VERSION;DESCRIPTION;COMPANY;COPYRIGHT;PRODUCT" "")
  if(NOT RES_VERSION MATCHES "^[0-9]+(\\.[0-9]+)?(\\.[0-9]+)?(\\.[0-9]+)?$")
    message(FATAL_ERROR "kestrune_add_version_resource(${target}): VERSION \"${RES_VERSION}\" is not 1 to 4 numbers")
  endif()
  string(REPLACE "." ";" numbers ${RES_VERSION})
  list(LENGTH numbers count)
  while(count LESS 4)
    list(APPEND numbers 0)
    math(EXPR count "${count} + 1")
  endwhile()
  list(JOIN numbers "," KR_VERSION_NUMBERS)
  set(KR_VERSION_VALUES "")
  foreach(entry IN ITEMS "CompanyName;${RES_COMPANY}" "FileDescription;${RES_DESCRIPTION}"
                         "FileVersion;${RES_VERSION}" "InternalName;$<TARGET_FILE_BASE_NAME:${target}>"
                         "LegalCopyright;${RES_COPYRIGHT}" "OriginalFilename;$<TARGET_FILE_NAME:${target}>"
                         "ProductName;${RES_PRODUCT}" "ProductVersion;${RES_VERSION}")
    list(GET entry 0 key)
    list(SUBLIST entry 1 -1 value)
    if(NOT value STREQUAL "")
      kestrune_rc_string(value "${value}")
      string(APPEND KR_VERSION_VALUES "      VALUE \"${key}\", ${value}\n")
    endif()
  endforeach()
  get_property(dir GLOBAL PROPERTY KESTRUNE_MODULE_DIR)
  set(script ${CMAKE_CURRENT_BINARY_DIR}/${target}_version.rc)
  # The file names come from the target once it is generated, so OUTPUT_NAME may be set later.
  configure_file(${dir}/KestruneVersion.rc.in ${script}.in @ONLY)
  file(GENERATE OUTPUT ${script} INPUT ${script}.in TARGET ${target})
  set_source_files_properties(${script} PROPERTIES GENERATED TRUE)
  target_sources(${target} PRIVATE ${script})
endfunction()

function(kestrune_add_module name)
  cmake_parse_arguments(PARSE_ARGV 1 MODULE "UNSIGNED;OWN_API_VERSION"
                        "EXTENSION;OUTPUT_NAME;OUTPUT_DIRECTORY;SIGN_WITH;VERSION;DESCRIPTION;COMPANY;COPYRIGHT"
                        "SOURCES;LIBRARIES;DEFINITIONS")
  if(NOT MODULE_EXTENSION)
    set(MODULE_EXTENSION .krx)
  endif()
  add_library(${name} SHARED ${MODULE_SOURCES})
  target_link_libraries(${name} PRIVATE Kestrune::kr1st ${MODULE_LIBRARIES})
  target_compile_definitions(${name} PRIVATE ${MODULE_DEFINITIONS})
  # The import library carries the extension too, so abc.kra and abc.krx do not share one.
  set_target_properties(${name} PROPERTIES PREFIX "" SUFFIX ${MODULE_EXTENSION} IMPORT_SUFFIX ${MODULE_EXTENSION}.a)
  if(MODULE_OUTPUT_NAME)
    set_target_properties(${name} PROPERTIES OUTPUT_NAME ${MODULE_OUTPUT_NAME})
  endif()
  if(MODULE_OUTPUT_DIRECTORY)
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${MODULE_OUTPUT_DIRECTORY})
  endif()
  if(NOT MODULE_OWN_API_VERSION)
    kestrune_link_default_api_version(${name})
  endif()
  kestrune_use_module_layout(${name})
  if(NOT MODULE_VERSION)
    set(MODULE_VERSION 0.0.0)
  endif()
  if(NOT MODULE_DESCRIPTION)
    set(MODULE_DESCRIPTION ${name})
  endif()
  kestrune_add_version_resource(${name} VERSION ${MODULE_VERSION} DESCRIPTION "${MODULE_DESCRIPTION}"
                                COMPANY "${MODULE_COMPANY}" COPYRIGHT "${MODULE_COPYRIGHT}")
  if(MODULE_UNSIGNED)
    return()
  endif()
  if(NOT MODULE_SIGN_WITH)
    set(MODULE_SIGN_WITH kestrune_throwaway_certificate)
    if(NOT TARGET kestrune_throwaway_certificate)
      kestrune_add_signing_certificate(kestrune_throwaway_certificate)
    endif()
  endif()
  kestrune_sign_target(${name} ${MODULE_SIGN_WITH})
endfunction()

# A module's file laid out for fast loading: sections start on page
# boundaries in the file, so the loader maps them straight from it instead of
# reading each one in (the runtime maps every module twice per load: once to
# check it, once for real). Release builds also drop the debug sections that
# the toolchain's start-up code brings, which would be mapped on every load.
function(kestrune_use_module_layout target)
  target_link_options(${target} PRIVATE -Wl,--file-alignment=4096 $<$<CONFIG:Release,MinSizeRel>:-s>)
endfunction()
