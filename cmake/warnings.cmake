# One list of warnings for every target; each of them is an error.
add_library(zyr_warnings INTERFACE)
target_compile_options(zyr_warnings INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
