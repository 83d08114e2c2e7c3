# The warnings that every target of the project is built with; the scripts make them errors.
add_library(vor_warnings INTERFACE)
target_compile_options(vor_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wformat=2 -Wold-style-cast
    -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align -Wunused
    # g++ 12 sees an overlap in every prepending of a literal to a temporary text.
    $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
    # Source names in log records are told relative to the project.
    -fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=)
