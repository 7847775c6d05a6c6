# Run by CPack at its start: the packages that bring the files which no library's list names.
function(torvane_packages_of result)
  set(packages)
  foreach(file IN LISTS ARGN)
    execute_process(COMMAND dpkg-query --search ${file}
      OUTPUT_VARIABLE owner COMMAND_ERROR_IS_FATAL ANY)
    string(REGEX REPLACE ":.*" "" owner "${owner}")
    list(APPEND packages ${owner})
  endforeach()
  list(REMOVE_DUPLICATES packages)
  list(JOIN packages ", " packages)
  set(${result} ${packages} PARENT_SCOPE)
endfunction()

torvane_packages_of(CPACK_DEBIAN_DESKTOP_PACKAGE_DEPENDS ${CPACK_TORVANE_NEEDED_FILES})
torvane_packages_of(CPACK_DEBIAN_DESKTOP_PACKAGE_RECOMMENDS ${CPACK_TORVANE_WANTED_FILES})
