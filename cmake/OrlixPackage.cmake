# The package that a host links: the library, its testing kit and its Qt shell, their public headers, what
# find_package and pkg-config read, and Debian packages by CPack. As shared libraries they have the symbols
# of their public headers only. Everything inside this project links the floors themselves.

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
# pkg-config file asks of others.
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
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} NAMELINK_COMPONENT ${component})
  install(EXPORT OrlixKit${alias}Targets NAMESPACE OrlixKit:: COMPONENT ${component}
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/OrlixKit)
  configure_file(${package_files}/component.pc.in ${name}.pc @ONLY)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${name}.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT ${component})
endfunction()

# Public headers, with their folders, below this one.
function(orlix_public_headers component below)
  foreach(header IN LISTS ARGN)
    cmake_path(GET header PARENT_PATH folder)
    install(FILES ${PROJECT_SOURCE_DIR}/${header} COMPONENT ${component}
      DESTINATION ${below}/${folder})
  endforeach()
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
orlix_public_headers(core ${CMAKE_INSTALL_INCLUDEDIR} ${ports}
  orlixkit/OrlixKit.h
  orlixkit/checkout/OXDelegates.h
  orlixkit/checkout/OXOrlix.h
  orlixkit/checkout/PurchaseStatus.h
  orlixkit/posix/PosixPorts.h
  orlixkit/posix/PosixSystemLog.h
  orlixkit/protocol/OMVelloDelegate.h
  orlixkit/records/Failures.h
  orlixkit/widgets/DropDownPicker.h)

install(FILES ${PROJECT_BINARY_DIR}/include/orlixkit/Version.h COMPONENT core
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
orlix_public_headers(testing ${CMAKE_INSTALL_INCLUDEDIR} ${kit} orlixkit/resources/CompiledBundle.h)

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
    PRIVATE Qt6::Positioning Qt6::WebEngineQuick Qt6::WebEngineCore Qt6::Network
            CURL::libcurl OpenSSL::SSL OpenSSL::Crypto fmt::fmt
    PC_REQUIRES "orlixkit, Qt6Quick")
  # "shell" is too common a name to stand in a system's include folder.
  set(below ${CMAKE_INSTALL_INCLUDEDIR}/orlixkit-shell)
  orlix_public_headers(shell ${below} shell/OrlixShell.h)
  target_include_directories(orlixkit-shell INTERFACE $<INSTALL_INTERFACE:${below}>)
endif()

configure_package_config_file(${package_files}/OrlixKitConfig.cmake.in OrlixKitConfig.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/OrlixKit)
write_basic_package_version_file(OrlixKitConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/OrlixKitConfig.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/OrlixKitConfigVersion.cmake
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/OrlixKit COMPONENT core)

# cpack: one Debian package for hosts without Qt, one for those with it.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME orlixkit)
set(CPACK_PACKAGE_VENDOR "OrlixKit")
set(CPACK_PACKAGE_CONTACT "The OrlixKit developers <developers@orlixkit.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_CURRENT_BINARY_DIR})
set(CPACK_COMPONENTS_ALL core testing)
set(CPACK_DEBIAN_CORE_PACKAGE_NAME liborlixkit-dev)
set(CPACK_DEBIAN_TESTING_PACKAGE_NAME liborlixkit-testing-dev)
set(CPACK_DEBIAN_TESTING_PACKAGE_DEPENDS "liborlixkit-dev (= ${PROJECT_VERSION})")
if(TARGET orlixkit-shell)
  list(APPEND CPACK_COMPONENTS_ALL shell)
  set(CPACK_DEBIAN_SHELL_PACKAGE_NAME liborlixkit-shell-dev)
  set(CPACK_DEBIAN_SHELL_PACKAGE_DEPENDS "liborlixkit-dev (= ${PROJECT_VERSION})")
endif()
include(CPack)
