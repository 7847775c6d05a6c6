# What CPack packs, which scripts/package.sh calls: packages for Debian 12, one a component.
find_package(Qt6 6.4 REQUIRED COMPONENTS Core)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME torvane)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL desktop cli development)
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
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Each description begins with a summary of its own.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")

set(CPACK_DEBIAN_DESKTOP_PACKAGE_NAME torvane)
# It has a torvane-cli of its own, which draws pictures too.
set(CPACK_DEBIAN_DESKTOP_PACKAGE_PROVIDES torvane-cli)
set(CPACK_DEBIAN_DESKTOP_PACKAGE_CONFLICTS torvane-cli)
set(CPACK_DEBIAN_DESKTOP_PACKAGE_REPLACES torvane-cli)
set(CPACK_DEBIAN_DESKTOP_DESCRIPTION
"${PROJECT_DESCRIPTION}
Torvane simulates feedback control loops and lets you watch them at work: press
Run and the signals of a loop appear on an oscilloscope; change a gain while it
runs and see what becomes of the response. Analysers measure frequency
responses and stability margins, meters read single numbers.

The loops are those that motion control is taught with: PI and PID controllers,
filters, aliasing and limit cycles, resonance, cascaded position loops. The
package has the desktop program, torvane, and torvane-cli for scripts.")

set(CPACK_DEBIAN_CLI_PACKAGE_NAME torvane-cli)
# For the diagrams of own loops, and for studies that are shared out.
set(CPACK_DEBIAN_CLI_PACKAGE_SUGGESTS "graphviz, parallel")
set(CPACK_DEBIAN_CLI_DESCRIPTION
"${PROJECT_DESCRIPTION}, for scripts
torvane-cli simulates the feedback control loops that motion control is taught
with, and loops of one's own. It runs them, measures step and frequency
responses, studies many tunings and finds the best, and writes what it finds as
CSV.

This program needs no graphical libraries and draws no pictures; the one in the
package torvane draws them.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libtorvane-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SHLIBDEPS OFF)
# What the static libraries need is needed to link them.
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libeigen3-dev (>= 3.4), libnlopt-dev")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION
"${PROJECT_DESCRIPTION}, for programs in C++
Torvane's engines as static libraries with their headers, for programs that
simulate feedback control loops: the loops and what they are built with, the
solver, scope, analysers and meters, linear models, and studies of many runs.")

if(TORVANE_PYTHON)
  find_package(Python3 REQUIRED COMPONENTS Interpreter)
  list(APPEND CPACK_COMPONENTS_ALL python)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-torvane)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
  # An extension is for the Python that it was built with.
  math(EXPR next_minor "${Python3_VERSION_MINOR} + 1")
  set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS "python3-numpy, python3 (>= 3.${Python3_VERSION_MINOR}), \
python3 (<< 3.${next_minor})")
  # What draws its pictures, and what it hands its results to.
  set(CPACK_DEBIAN_PYTHON_PACKAGE_SUGGESTS "torvane-cli, python3-matplotlib, python3-pandas")
  # They compile its modules for that, and remove what comes of it.
  set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA
    ${PROJECT_SOURCE_DIR}/cmake/package/python/postinst ${PROJECT_SOURCE_DIR}/cmake/package/python/prerm)
  set(CPACK_DEBIAN_PYTHON_DESCRIPTION
"${PROJECT_DESCRIPTION}, for Python
The module torvane simulates feedback control loops from Python: it runs the
built-in loops and loops of one's own, measures step and frequency responses,
studies many tunings, and gives what it finds as arrays of NumPy.")
endif()

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
