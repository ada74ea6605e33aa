# The room above the others that needs MPI: the same tree from any number of processes.
find_package(MPI REQUIRED COMPONENTS CXX)

add_library(arbor_processes STATIC)
add_library(arbor::processes ALIAS arbor_processes)
target_compile_definitions(arbor_processes PRIVATE OMPI_SKIP_MPICXX MPICH_SKIP_MPICXX)
target_link_libraries(arbor_processes PUBLIC arbor::tree PRIVATE MPI::MPI_CXX fmt::fmt arbor_numerics)
add_subdirectory(arbor/processes)
