# Warnings for every target of the project: on, and clean.
add_library(hnsyb_warnings INTERFACE)
target_compile_options(hnsyb_warnings INTERFACE
  -Wall -Wextra $<$<CXX_COMPILER_ID:GNU>:-Wshadow=local> -Wnon-virtual-dtor -Wformat=2 -Wno-unused-parameter)
