# Building Kestrune extension modules.
#
# The runtime loads a module only when it carries a valid Authenticode
# signature, so every module is signed as it is built (with osslsigncode).
#
#   kestrune_add_signing_certificate(<target>)
#     Makes, at build time and once per build tree, a throwaway certificate
#     authority and a code-signing certificate issued by it (with openssl),
#     in <build dir>/<target>/. Meant for development and tests: the keys
#     never leave the build tree. Other targets sign with it through
#     SIGN_WITH <target>.
#
#   kestrune_add_module(<name>
#                       SOURCES <source>...
#                       [EXTENSION .krx|.kra|.dll]      (default .krx)
#                       [OUTPUT_NAME <file name without extension>]
#                       [OUTPUT_DIRECTORY <directory>]
#                       [SIGN_WITH <certificate target>]
#                       [LIBRARIES <library>...]
#                       [DEFINITIONS <definition>...])
#     A module: a DLL linked against Kestrune::kr1st, named <name><EXTENSION>
#     (or OUTPUT_NAME), signed after every link when SIGN_WITH is given.

find_program(KESTRUNE_OPENSSL openssl)
find_program(KESTRUNE_OSSLSIGNCODE osslsigncode)

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
    KESTRUNE_CA ${dir}/ca.pem
    KESTRUNE_CERTIFICATE ${dir}/codesign.pem
    KESTRUNE_KEY ${dir}/codesign.key)
endfunction()

# Signs the file of target after each link with the certificate made by
# kestrune_add_signing_certificate(<certificate>); the CA travels in the signature.
function(kestrune_sign_target target certificate)
  get_target_property(ca ${certificate} KESTRUNE_CA)
  get_target_property(cert ${certificate} KESTRUNE_CERTIFICATE)
  get_target_property(key ${certificate} KESTRUNE_KEY)
  add_dependencies(${target} ${certificate})
  add_custom_command(TARGET ${target} POST_BUILD
    COMMAND ${KESTRUNE_OSSLSIGNCODE} sign -certs ${cert} -ac ${ca} -key ${key} -n ${target}
            -in $<TARGET_FILE:${target}> -out $<TARGET_FILE:${target}>.signed
    COMMAND ${CMAKE_COMMAND} -E rename $<TARGET_FILE:${target}>.signed $<TARGET_FILE:${target}>
    VERBATIM)
endfunction()

function(kestrune_add_module name)
  cmake_parse_arguments(PARSE_ARGV 1 MODULE "" "EXTENSION;OUTPUT_NAME;OUTPUT_DIRECTORY;SIGN_WITH"
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
  if(MODULE_SIGN_WITH)
    kestrune_sign_target(${name} ${MODULE_SIGN_WITH})
  endif()
endfunction()
