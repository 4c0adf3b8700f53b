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
    -Werror)
