# Flags that every target of the project shares. Results are fixed bit for bit, so floating point is never contracted
# or reordered, and 32-bit x86 computes in SSE2 registers.
add_library(zr32_flags INTERFACE)
target_compile_options(
    zr32_flags INTERFACE -Wall -Wextra -Wconversion -Wshadow -Werror -ffp-contract=off -fno-strict-aliasing
)
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
    target_compile_options(zr32_flags INTERFACE -msse2 -mfpmath=sse)
endif()
if(ZR32PATH_SANITIZE)
    target_compile_options(
        zr32_flags INTERFACE -fsanitize=${ZR32PATH_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer
    )
    target_link_options(zr32_flags INTERFACE -fsanitize=${ZR32PATH_SANITIZE})
endif()
