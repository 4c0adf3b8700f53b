# Warnings for all that is ours; errors, each of them.
set(TORVIK_WARNINGS
    -Wall
    -Wextra
    -Wpedantic
    -Wshadow
    -Wconversion
    -Wno-sign-conversion
    -Wnon-virtual-dtor
    -Wold-style-cast
    -Wcast-qual
    -Wswitch
    # g++ 12 sees overlapping copies in the standard library's own string concatenation.
    $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
    -Werror)
