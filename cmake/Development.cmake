# What programs that embed the engines need: the static libraries and headers of the rooms, and what
# find_package(Torvane) reads. It is installed by `cmake --install FOLDER --component development` only.
include(CMakePackageConfigHelpers)

set(development COMPONENT development EXCLUDE_FROM_ALL)
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Torvane)
set(rooms core library instruments kit models loops drawing linear study workbench)

# Of these rooms what their users call, with what that includes; of the others all headers.
set(loops_headers block.h block_type.h blocks/wiring.h instruction.h loop_file.h loop_machine.h
  loop_plan.h loop_solver.h operations.h own_loop.h own_loops.h problems.h)
set(drawing_headers arrangement.h block_graph.h loop_drawing.h nets.h placing.h shape.h)

add_library(torvane_engine INTERFACE)
set_target_properties(torvane_engine PROPERTIES EXPORT_NAME engine)
install(TARGETS torvane_engine EXPORT Torvane)
# Whoever writes a model of their own gets the bits that the general solver gives.
target_compile_options(torvane_core INTERFACE $<INSTALL_INTERFACE:-ffp-contract=off>)
target_compile_features(torvane_core INTERFACE cxx_std_20)

foreach(room IN LISTS rooms)
  if(NOT DEFINED ${room}_headers)
    file(GLOB_RECURSE ${room}_headers CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR}/src/${room}
      ${PROJECT_SOURCE_DIR}/src/${room}/*.h)
  endif()
  list(FILTER ${room}_headers EXCLUDE REGEX "^factories.h$")  # the catalogue has them
  list(TRANSFORM ${room}_headers PREPEND ${room}/)
  list(APPEND headers ${${room}_headers})
  set_target_properties(torvane_${room} PROPERTIES EXPORT_NAME ${room})
  install(TARGETS torvane_${room} EXPORT Torvane ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ${development} INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
  target_link_libraries(torvane_engine INTERFACE torvane_${room})
endforeach()

set(made ${PROJECT_BINARY_DIR}/development)
configure_file(${PROJECT_SOURCE_DIR}/cmake/development/headers.cmake.in ${made}/headers.cmake @ONLY)
install(SCRIPT ${made}/headers.cmake ${development})

configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/development/TorvaneConfig.cmake.in
  ${made}/TorvaneConfig.cmake INSTALL_DESTINATION ${package_dir}
  NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${made}/TorvaneConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${made}/TorvaneConfig.cmake ${made}/TorvaneConfigVersion.cmake
  DESTINATION ${package_dir} ${development})
install(EXPORT Torvane NAMESPACE Torvane:: FILE TorvaneTargets.cmake DESTINATION ${package_dir}
  ${development})
