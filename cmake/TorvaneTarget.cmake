# One library target a folder of src/. A target sees the headers of its own folder and of those that
# it links, and no others: every folder has an include root of its own in the build tree, holding
# nothing but a link to that folder. A wrong include does not compile. EXCLUDE names sources of the
# folder that do not belong into the library.
function(torvane_library folder)
  cmake_parse_arguments(ARG "" "" "LINKS;EXCLUDE" ${ARGN})
  set(target torvane_${folder})
  set(root ${PROJECT_BINARY_DIR}/include/${folder})
  file(MAKE_DIRECTORY ${root})
  file(CREATE_LINK ${PROJECT_SOURCE_DIR}/src/${folder} ${root}/${folder} SYMBOLIC)
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS *.cpp *.h *.ui *.qrc)
  foreach(file IN LISTS ARG_EXCLUDE)
    list(REMOVE_ITEM sources ${CMAKE_CURRENT_SOURCE_DIR}/${file})
  endforeach()
  add_library(${target} STATIC ${sources})
  if(NOT folder MATCHES "^(plot|ui|app|cli)$")
    # The engines become part of shared libraries too. Hidden names keep the code as it is otherwise.
    set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE ON
      CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
  endif()
  target_include_directories(${target} PUBLIC $<BUILD_INTERFACE:${root}>)
  target_link_libraries(${target} PUBLIC ${ARG_LINKS} PRIVATE $<BUILD_INTERFACE:torvane_warnings>)
endfunction()

# One GoogleTest program a folder of tests/. Each case runs in a process of its own, so the memory
# that a model class keeps between models of one run cannot leak from one case into the next. Tests
# are optimised little: what they call decides how long they take, and building them is a third shorter.
function(torvane_test folder)
  cmake_parse_arguments(ARG "" "" "LINKS;PROPERTIES" ${ARGN})
  set(target test_${folder})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*.cpp)
  if(NOT sources)
    return()
  endif()
  add_executable(${target} ${sources})
  target_link_libraries(${target} PRIVATE torvane_test_support ${ARG_LINKS} torvane_warnings)
  target_compile_options(${target} PRIVATE $<$<CONFIG:Release>:-O1>)
  gtest_discover_tests(${target} TEST_PREFIX ${folder}/ DISCOVERY_TIMEOUT 60
    PROPERTIES TIMEOUT 300 ${ARG_PROPERTIES})
endfunction()
