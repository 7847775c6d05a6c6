# Run by CPack between installing into its staging folders, one a component, and packing them: adds
# what Debian wants of a package's documents, and gives all files one time.

# The licence in the form of Debian's copyright files: an empty line is a dot.
file(READ ${CPACK_TORVANE_SOURCES}/LICENSE license)
string(REGEX MATCH "Copyright \\(c\\) ([^\n]*)" copyright "${license}")
set(holders ${CMAKE_MATCH_1})
string(REGEX REPLACE "^.*Copyright[^\n]*\n+" "" license "${license}")
string(STRIP "${license}" license)
string(REPLACE "\n\n" "\n.\n" license "${license}")
string(REPLACE "\n" "\n " license "${license}")
string(CONCAT copyright
  "Format: https://www.debian.org/doc/packaging-manuals/copyright-format/1.0/\n"
  "Upstream-Name: Torvane\n\n"
  "Files: *\nCopyright: ${holders}\nLicense: Expat\n ${license}\n")

# SOURCE_DATE_EPOCH decides the date.
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
execute_process(
  COMMAND awk -v "version=${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}" -v "date=${date}"
    -v "maintainer=${CPACK_PACKAGE_CONTACT}" -f ${CMAKE_CURRENT_LIST_DIR}/changelog.awk
    ${CPACK_TORVANE_SOURCES}/CHANGELOG.md
  OUTPUT_VARIABLE changelog COMMAND_ERROR_IS_FATAL ANY)

foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER ${component} name)
  set(root ${CPACK_TEMPORARY_DIRECTORY}/${component}/usr)
  set(doc ${root}/share/doc/${CPACK_DEBIAN_${name}_PACKAGE_NAME})
  file(WRITE ${doc}/copyright "${copyright}")
  file(WRITE ${doc}/changelog.Debian "${changelog}")
  file(GLOB compressed ${root}/share/man/man1/*.1 ${doc}/changelog*)
  execute_process(COMMAND gzip -9 --no-name ${compressed} COMMAND_ERROR_IS_FATAL ANY)
endforeach()

string(TIMESTAMP time "%s" UTC)
execute_process(COMMAND find ${CPACK_TEMPORARY_DIRECTORY} -exec touch --no-dereference --date=@${time} {} +
  COMMAND_ERROR_IS_FATAL ANY)
