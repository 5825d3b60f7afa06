# SPDX-License-Identifier: Apache-2.0

# The package that a host links: the library, its testing kit and its Qt shell, their public headers, what
# find_package and pkg-config read; and the programs. As shared libraries they have the symbols of their
# public headers only. Everything inside this project links the floors themselves. Each library is two
# components: what a program needs to run, and "-dev", what building one needs.

include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(package_files ${CMAKE_CURRENT_LIST_DIR}/package)

# Relative relocations take a twentieth of the space when they are packed. The linker of binutils also
# writes into the library that its loader has to know them, so that an older one refuses it.
include(CheckLinkerFlag)
set(packed_relocations -fuse-ld=bfd -Wl,-z,pack-relative-relocs)
check_linker_flag(CXX "${packed_relocations}" ORLIX_PACKS_RELOCATIONS)
if(NOT ORLIX_PACKS_RELOCATIONS)
  set(packed_relocations "")
endif()

# orlix_package(<name> <alias> <map> <component> OBJECTS <targets>... PUBLIC <targets>... PRIVATE <targets>...
#               PC_REQUIRES <packages> PC_PRIVATE <packages> PC_LIBS_PRIVATE <flags>)
# A library of these targets' objects; a shared one with the symbols that the map names. PC_...: what its
# pkg-config file asks of others; those that are private, only of a program that links a static library.
function(orlix_package name alias map component)
  cmake_parse_arguments(PACKAGE "" "PC_REQUIRES;PC_PRIVATE;PC_LIBS_PRIVATE" "OBJECTS;PUBLIC;PRIVATE" ${ARGN})
  set(objects "")
  foreach(target IN LISTS PACKAGE_OBJECTS)
    list(APPEND objects $<TARGET_OBJECTS:${target}>)
  endforeach()
  if(ORLIXKIT_SHARED)
    add_library(${name} SHARED ${objects})
    target_link_options(${name} PRIVATE
      -Wl,--version-script=${package_files}/${map} -Wl,--no-undefined -Wl,--gc-sections ${packed_relocations})
  else()
    add_library(${name} STATIC ${objects})
  endif()
  set_target_properties(${name} PROPERTIES
    LINKER_LANGUAGE CXX
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR}
    EXPORT_NAME ${alias}
    LINK_DEPENDS ${package_files}/${map})
  target_compile_features(${name} INTERFACE cxx_std_20)
  target_include_directories(${name} INTERFACE $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
  target_link_libraries(${name} PUBLIC ${PACKAGE_PUBLIC} PRIVATE ${PACKAGE_PRIVATE})
  install(TARGETS ${name} EXPORT OrlixKit${alias}Targets COMPONENT ${component}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT ${component}-dev
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} NAMELINK_COMPONENT ${component}-dev)
  install(EXPORT OrlixKit${alias}Targets NAMESPACE OrlixKit:: COMPONENT ${component}-dev
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/OrlixKit)
  if(ORLIXKIT_SHARED)
    set(PACKAGE_PC_PRIVATE "")
    set(PACKAGE_PC_LIBS_PRIVATE "")
  endif()
  configure_file(${package_files}/component.pc.in ${name}.pc @ONLY)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${name}.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT ${component}-dev)
endfunction()

# Public headers, with their folders, below this one.
function(orlix_public_headers component below)
  foreach(header IN LISTS ARGN)
    cmake_path(GET header PARENT_PATH folder)
    install(FILES ${PROJECT_SOURCE_DIR}/${header} COMPONENT ${component}
      DESTINATION ${below}/${folder})
  endforeach()
endfunction()

# orlix_compressed(<name> COMMAND <command> <arguments>... DEPENDS <files>...)
# In the build folder, compressed, what the command prints.
add_custom_target(orlix_documents ALL)
function(orlix_compressed name)
  cmake_parse_arguments(PRINTED "" "" "COMMAND;DEPENDS" ${ARGN})
  set(file ${CMAKE_CURRENT_BINARY_DIR}/${name})
  add_custom_command(OUTPUT ${file}
    COMMAND bash -o pipefail -c "\"$@\" | gzip -9n >\"$0\"" ${file} ${PRINTED_COMMAND}
    DEPENDS ${PRINTED_DEPENDS} COMMENT "Making ${name}" VERBATIM)
  set_property(TARGET orlix_documents APPEND PROPERTY SOURCES ${file})
endfunction()

file(RELATIVE_PATH ORLIX_PREFIX_FROM_PC
  ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})

orlix_package(orlixkit Core core.map core
  OBJECTS orlix_ports orlix_ui orlix_host orlix_security orlix_records orlix_protocol orlix_widgets
          orlix_checkout orlix_securecode orlix_onboarding orlix_posix orlix_resources orlix_core
  PRIVATE Threads::Threads CURL::libcurl OpenSSL::SSL OpenSSL::Crypto SQLite::SQLite3 Boost::json fmt::fmt
  PC_PRIVATE "libcurl, libssl, libcrypto, sqlite3, fmt"
  PC_LIBS_PRIVATE "-lboost_json -lboost_container -pthread")

file(GLOB ports RELATIVE ${PROJECT_SOURCE_DIR} CONFIGURE_DEPENDS
  ${PROJECT_SOURCE_DIR}/orlixkit/ports/*.h ${PROJECT_SOURCE_DIR}/orlixkit/ui/*.h
  ${PROJECT_SOURCE_DIR}/orlixkit/host/*.h)
orlix_public_headers(core-dev ${CMAKE_INSTALL_INCLUDEDIR} ${ports}
  orlixkit/OrlixKit.h
  orlixkit/checkout/OXDelegates.h
  orlixkit/checkout/OXOrlix.h
  orlixkit/checkout/PurchaseStatus.h
  orlixkit/posix/PosixPorts.h
  orlixkit/posix/PosixSystemLog.h
  orlixkit/protocol/OMVelloDelegate.h
  orlixkit/records/Failures.h
  orlixkit/widgets/DropDownPicker.h)

install(FILES ${PROJECT_BINARY_DIR}/include/orlixkit/Version.h COMPONENT core-dev
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/orlixkit)

# What a host's own tests link beside the library.
orlix_package(orlixkit-testing Testing testing.map testing
  OBJECTS orlix_testing
  PUBLIC orlixkit
  PRIVATE CURL::libcurl OpenSSL::Crypto Boost::json fmt::fmt
  PC_REQUIRES orlixkit
  PC_PRIVATE "libcurl, libcrypto, fmt"
  PC_LIBS_PRIVATE "-lboost_json -lboost_container")
file(GLOB kit RELATIVE ${PROJECT_SOURCE_DIR} CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/orlixkit/testing/*.h)
orlix_public_headers(testing-dev ${CMAKE_INSTALL_INCLUDEDIR} ${kit} orlixkit/resources/CompiledBundle.h)

# The drawings register themselves when a program starts, which a linker drops from a static library.
if(TARGET orlix_shell AND ORLIXKIT_SHARED)
  # Qt keeps the compiled-in drawings of a static library in targets of their own.
  set(drawings "")
  foreach(number RANGE 1 9)
    if(TARGET orlix_shell_resources_${number})
      list(APPEND drawings orlix_shell_resources_${number})
    endif()
  endforeach()
  orlix_package(orlixkit-shell QtShell shell.map shell
    OBJECTS orlix_shell ${drawings}
    PUBLIC orlixkit Qt6::Quick
    PRIVATE Qt6::Positioning OpenSSL::SSL OpenSSL::Crypto fmt::fmt ${CMAKE_DL_LIBS}
    PC_REQUIRES "orlixkit, Qt6Quick")
  # "shell" is too common a name to stand in a system's include folder.
  set(below ${CMAKE_INSTALL_INCLUDEDIR}/orlixkit-shell)
  orlix_public_headers(shell-dev ${below} shell/OrlixShell.h)
  target_include_directories(orlixkit-shell INTERFACE $<INSTALL_INTERFACE:${below}>)
endif()
# For the programs as well, which contain the shell.
if(TARGET orlixkit-webengine)
  install(TARGETS orlixkit-webengine COMPONENT webengine
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/${ORLIX_PLUGINS})
endif()

configure_package_config_file(${package_files}/OrlixKitConfig.cmake.in OrlixKitConfig.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/OrlixKit)
write_basic_package_version_file(OrlixKitConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/OrlixKitConfig.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/OrlixKitConfigVersion.cmake
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/OrlixKit COMPONENT core-dev)

# The programs carry the library in themselves: they use more of it than its public part.
foreach(program sandbox shop)
  if(TARGET orlix-${program})
    install(TARGETS orlix-${program} COMPONENT ${program})
    set(page ${PROJECT_SOURCE_DIR}/docs/man/orlix-${program}.1)
    orlix_compressed(orlix-${program}.1.gz COMMAND cat ${page} DEPENDS ${page})
    install(FILES ${CMAKE_CURRENT_BINARY_DIR}/orlix-${program}.1.gz COMPONENT ${program}
      DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  endif()
endforeach()
if(TARGET orlix-shop)
  set(shop_documents ${CMAKE_INSTALL_DATADIR}/doc/orlixkit-shop)
  install(FILES ${PROJECT_SOURCE_DIR}/examples/shop/README.md COMPONENT shop DESTINATION ${shop_documents})
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples/shop/scripts/ COMPONENT shop
    DESTINATION ${shop_documents}/examples FILES_MATCHING PATTERN gallery EXCLUDE PATTERN *.shop)
endif()

if(ORLIXKIT_SHARED AND PROJECT_IS_TOP_LEVEL)
  include(OrlixDebian)
endif()
