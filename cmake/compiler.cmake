# What every target of ours is compiled with.
add_library(tav_compiler INTERFACE)
target_compile_options(tav_compiler INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wcast-align -Wformat=2
    -Wimplicit-fallthrough -fno-strict-aliasing
    -Wno-restrict) # GCC 12 at -O3 sees overlaps in "text" + std::string where none are

option(TAV_WERROR "Warnings are errors" ON)
if(TAV_WERROR)
    target_compile_options(tav_compiler INTERFACE -Werror)
endif()

set(TAV_SANITIZE "" CACHE STRING "Sanitizers, as -fsanitize takes them")
if(TAV_SANITIZE)
    target_compile_options(tav_compiler INTERFACE
        -fsanitize=${TAV_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=undefined
        )
    target_link_options(tav_compiler INTERFACE -fsanitize=${TAV_SANITIZE})
    target_compile_definitions(tav_compiler INTERFACE TAV_SANITIZED)
endif()

find_program(CCACHE ccache)
if(CCACHE)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
endif()

# Linked again and again by every test program: LLVM's linker takes a sixth of the time.
find_program(LLD ld.lld)
if(LLD)
    target_link_options(tav_compiler INTERFACE -fuse-ld=lld)
endif()
