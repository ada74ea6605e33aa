# GoogleTest as the target `googletest`, with a main(). It is built from its sources into
# build/googletest-32 or -64, plain and without optimisation: so all presets of one width share it,
# those with sanitizers too (the sources under test are what they watch).
math(EXPR width "8 * ${CMAKE_SIZEOF_VOID_P}")
set(place ${PROJECT_SOURCE_DIR}/build/googletest-${width})
if(NOT EXISTS ${place}/lib/libgmock_main.a)
  execute_process(COMMAND_ERROR_IS_FATAL ANY OUTPUT_QUIET COMMAND ${CMAKE_COMMAND} -G Ninja
    -S /usr/src/googletest -B ${place} -DINSTALL_GTEST=OFF "-DCMAKE_CXX_FLAGS=-m${width} -O0 -w")
  execute_process(COMMAND_ERROR_IS_FATAL ANY OUTPUT_QUIET
    COMMAND ${CMAKE_COMMAND} --build ${place} --target gmock_main)
endif()

find_package(Threads REQUIRED)
add_library(googletest INTERFACE)
target_include_directories(googletest SYSTEM INTERFACE
  /usr/src/googletest/googletest/include /usr/src/googletest/googlemock/include)
target_link_libraries(googletest INTERFACE
  ${place}/lib/libgmock_main.a ${place}/lib/libgmock.a ${place}/lib/libgtest.a Threads::Threads)
