# What CPack packs, which scripts/package.sh calls: a package for Debian 12.
find_package(Qt6 6.4 REQUIRED COMPONENTS Core)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME torvane)
set(CPACK_PACKAGE_CONTACT "Torvane developers <torvane@example.org>" CACHE STRING
  "Who is to be asked about the package")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
# As the installed folders are, whatever the packer's umask.
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE
  GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1deb12)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"Torvane simulates feedback control loops and lets you watch them at work: press
Run and the signals of a loop appear on an oscilloscope; change a gain while it
runs and see what becomes of the response. Analysers measure frequency
responses and stability margins, meters read single numbers.

The loops are those that motion control is taught with: PI and PID controllers,
filters, aliasing and limit cycles, resonance, cascaded position loops. The
package has the desktop program, torvane, and torvane-cli for scripts.")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)

# What linking does not show; the packages that bring these files are looked up when the package is made.
set(plugins ${QT6_INSTALL_PREFIX}/${QT6_INSTALL_PLUGINS})
set(CPACK_TORVANE_NEEDED_FILES
  ${plugins}/platforms/libqxcb.so
  ${plugins}/iconengines/libqsvgicon.so
  ${plugins}/imageformats/libqsvg.so
  /usr/share/fonts/truetype/dejavu/DejaVuSans.ttf)
set(CPACK_TORVANE_WANTED_FILES ${plugins}/platforms/libqwayland-generic.so /usr/bin/dot)
set(CPACK_TORVANE_SOURCES ${PROJECT_SOURCE_DIR})
set(CPACK_PROJECT_CONFIG_FILE ${PROJECT_SOURCE_DIR}/cmake/package/dependencies.cmake)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/package/documents.cmake)
include(CPack)
