# What the two libraries have in common.
include(GNUInstallDirs)

# A shared library exports the names of the two namespaces and nothing else: not what it instantiates
# of the standard library and of others.
function(arbor_library target)
  set_target_properties(${target} PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
  target_compile_features(${target} PUBLIC cxx_std_17)
  target_link_libraries(${target} PRIVATE $<BUILD_INTERFACE:arbor_numerics>)
  # A call within a library needs no table to look the function up: no other library replaces it.
  target_compile_options(${target} PRIVATE -fno-semantic-interposition)
  set(exports ${PROJECT_SOURCE_DIR}/cmake/exports.map)
  target_link_options(${target} PRIVATE LINKER:--version-script=${exports})
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${exports})
endfunction()
