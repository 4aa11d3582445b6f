# Flags of every source of ours, carried by the target plenoviz_flags. What belongs to the machine
# code of the whole program (optimisation, sanitizers) is set for the folder tree instead, so that
# GoogleTest, which is built along, gets it as well.

# Line tables are enough for a readable backtrace and keep links quick. Asserts stay in.
set(CMAKE_CXX_FLAGS_RELEASE "-O3 -g1")

if(PLENOVIZ_SANITIZE)
    set(CMAKE_CXX_FLAGS_RELEASE "-O1 -g -fno-omit-frame-pointer")
    add_compile_options(-fsanitize=${PLENOVIZ_SANITIZE} -fno-sanitize-recover=all)
    add_link_options(-fsanitize=${PLENOVIZ_SANITIZE})
    # Nobody expects the loops of such a build in vectors.
    add_compile_options($<$<CXX_COMPILER_ID:Clang>:-Wno-pass-failed>)
endif()
if(PLENOVIZ_SANITIZE AND NOT DEFINED CMAKE_CROSSCOMPILING_EMULATOR)
    set(CMAKE_CROSSCOMPILING_EMULATOR "${CMAKE_SOURCE_DIR}/cmake/sanitized.sh")
endif()

# Addresses that nobody can foretell, and tables that nobody can write once the program runs.
if(WIN32)
    add_link_options(-Wl,--dynamicbase,--nxcompat,--high-entropy-va)
elseif(NOT PLENOVIZ_SANITIZE)
    add_link_options(-pie -Wl,-z,relro,-z,now,-z,noexecstack)
endif()

if(MINGW)
    # A program is no library to link with, though the task library marks symbols for export.
    string(REPLACE "-Wl,--out-implib,<TARGET_IMPLIB>" ""
        CMAKE_CXX_LINK_EXECUTABLE "${CMAKE_CXX_LINK_EXECUTABLE}")
endif()

add_library(plenoviz_flags INTERFACE)
target_compile_options(plenoviz_flags INTERFACE
    -Wall -Wextra -Werror=return-type -Wshadow -Wundef -Wvla -Wcast-qual -Wformat=2
    -Wmissing-declarations -Wnon-virtual-dtor -Woverloaded-virtual
    $<$<CXX_COMPILER_ID:GNU>:-Wduplicated-cond -Wlogical-op>
    # Every variant of a routine gives the same bits: a multiply and an add stay two roundings.
    -ffp-contract=off)
