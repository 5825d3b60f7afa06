# SPDX-License-Identifier: Apache-2.0

# Debian packages, by cpack: the libraries named after the version of their interface, what building with
# them needs, and the programs.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME orlixkit)
set(CPACK_PACKAGE_VENDOR "OrlixKit")
set(CPACK_PACKAGE_CONTACT "The OrlixKit developers <developers@orlixkit.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # Each package has one of its own.
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SOURCE orlixkit)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_CURRENT_BINARY_DIR})
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_POST_BUILD_SCRIPTS ${package_files}/ldconfig-by-trigger.cmake)

set(changes ${PROJECT_SOURCE_DIR}/CHANGELOG.md)
set(as_debian ${CMAKE_CURRENT_LIST_DIR}/debian-changelog)
orlix_compressed(changelog.gz
  COMMAND ${as_debian} ${changes} ${PROJECT_VERSION} ${CPACK_PACKAGE_CONTACT}
  DEPENDS ${changes} ${as_debian})

# orlix_debian(<component> <package> <section> <summary> <description>
#              WITH <components>... DEPENDS <packages>... RECOMMENDS <packages>...)
# The package of a component. WITH: components of the same version that it needs. What its programs and
# libraries link is found by itself.
macro(orlix_debian component package section summary description)
  cmake_parse_arguments(DEBIAN "" "" "WITH;DEPENDS;RECOMMENDS" ${ARGN})
  list(APPEND CPACK_COMPONENTS_ALL ${component})
  string(TOUPPER ${component} key)
  set(CPACK_DEBIAN_${key}_PACKAGE_NAME ${package})
  set(CPACK_DEBIAN_${key}_PACKAGE_SECTION ${section})
  set(CPACK_DEBIAN_${key}_DESCRIPTION "${summary}\n${description}")
  set(CPACK_COMPONENT_${key}_DEPENDS ${DEBIAN_WITH})
  list(JOIN DEBIAN_DEPENDS ", " CPACK_DEBIAN_${key}_PACKAGE_DEPENDS)
  list(JOIN DEBIAN_RECOMMENDS ", " CPACK_DEBIAN_${key}_PACKAGE_RECOMMENDS)
  install(FILES ${package_files}/copyright ${CMAKE_CURRENT_BINARY_DIR}/changelog.gz
    COMPONENT ${component} DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package})
endmacro()

set(CPACK_COMPONENTS_ALL "")
string(CONCAT about "OrlixKit takes payments from a server-side wallet: the application makes one\n"
                    "call and receives one outcome.")
set(so ${PROJECT_VERSION_MAJOR})
# The roots that the wallet server's certificate is checked against.
set(roots ca-certificates)
# Loaded by name when something is drawn, so that no linked library asks for them.
set(drawn qml6-module-qtquick-layouts qml6-module-qtquick-templates qml6-module-qtquick-window
  qml6-module-qtqml-workerscript libqt6svg6 fonts-inter)
# The web engine is nearly all of the size of what is drawn, and only an issuer's page and the terms need it.
set(web orlixkit-shell-webengine)

orlix_debian(core liborlixkit${so} libs "mobile-wallet payment library"
  "${about}\nThis package has the shared library." RECOMMENDS ${roots})
orlix_debian(core-dev liborlixkit-dev libdevel "mobile-wallet payment library - development files"
  "${about}\nThis package has the headers and the files for CMake and pkg-config." WITH core)
orlix_debian(testing liborlixkit-testing${so} libs "testing kit of a mobile-wallet payment library"
  "${about}\nThis package has the shared library of its testing kit: virtual time and a\nwallet server that a test scripts."
  WITH core)
orlix_debian(testing-dev liborlixkit-testing-dev libdevel
  "testing kit of a mobile-wallet payment library - development files"
  "${about}\nThis package has what an application's own tests are built with."
  WITH testing core-dev)
if(TARGET orlixkit-shell)
  orlix_debian(shell liborlixkit-shell${so} libs "mobile-wallet payment screens drawn with Qt Quick"
    "${about}\nThis package has the shared library that draws its screens in an application\nwritten with Qt 6."
    WITH core DEPENDS ${drawn} RECOMMENDS ${web})
  orlix_debian(shell-dev liborlixkit-shell-dev libdevel
    "mobile-wallet payment screens drawn with Qt Quick - development files"
    "${about}\nThis package has what an application written with Qt 6 is built with."
    WITH shell core-dev DEPENDS "qt6-declarative-dev (>= 6.4)")
endif()
if(TARGET orlixkit-webengine)
  orlix_debian(webengine ${web} libs "web pages in mobile-wallet payment screens"
    "${about}\nThis package has the plug-in by which its drawn screens show the pages of card\nissuers, with Qt's web engine."
    WITH shell DEPENDS qml6-module-qtquick-controls qml6-module-qtwebengine)
endif()
if(TARGET orlix-sandbox)
  orlix_debian(sandbox orlixkit-sandbox devel "wallet server for development"
    "${about}\nThis package has a server with documented cards and codes. No money moves.")
endif()
if(TARGET orlix-shop)
  if(NOT TARGET orlix_shop_window)
    set(drawn "")
    set(web "")
  endif()
  orlix_debian(shop orlixkit-shop devel "shop that takes mobile-wallet payments"
    "${about}\nThis package has a complete host application, operated by hand or by a\nscript: for trying the library and for tests."
    DEPENDS ${drawn} RECOMMENDS ${roots} ${web} orlixkit-sandbox)
endif()
include(CPack)
