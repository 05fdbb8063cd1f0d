# Settings that every target of this tree shares.

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
if(PROJECT_IS_TOP_LEVEL)
    set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
    set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
    set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)
endif()
find_package(Threads REQUIRED)

# Flags of everything built here; a user of the library gets the arithmetic ones alone.
add_library(kr_build_flags INTERFACE)
# Nothing replaces the library's own functions, so its calls of them may be inlined and direct.
target_compile_options(kr_build_flags INTERFACE
    -ffp-contract=off
    -fno-semantic-interposition
    -ffile-prefix-map=${PROJECT_SOURCE_DIR}/=)
# SSE arithmetic, so that numeric output is the same bits as on the other targets. 32-bit Windows calls
# back with a 4-byte aligned stack, hence the realignment.
set(KR_ARITHMETIC_FLAGS)
if(WIN32 AND CMAKE_SIZEOF_VOID_P EQUAL 4)
    set(KR_ARITHMETIC_FLAGS -msse2 -mfpmath=sse)
    target_compile_options(kr_build_flags INTERFACE -march=pentium4 ${KR_ARITHMETIC_FLAGS} -mstackrealign)
endif()
add_library(kr_warnings INTERFACE)
target_compile_options(kr_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion
    $<$<BOOL:${KR_WARNINGS_AS_ERRORS}>:-Werror>)
if(KR_SANITIZE)
    target_compile_options(kr_build_flags INTERFACE
        -fsanitize=${KR_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(kr_build_flags INTERFACE -fsanitize=${KR_SANITIZE})
endif()

# On Windows programs need the compiler's shared runtime beside them: an exception crosses the DLL
# boundary only when both sides share one runtime.
if(WIN32)
    set(KR_RUNTIME_DLLS)
    foreach(dll libgcc_s_dw2-1.dll libstdc++-6.dll libwinpthread-1.dll)
        execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${dll}
            OUTPUT_VARIABLE path OUTPUT_STRIP_TRAILING_WHITESPACE)
        if(NOT IS_ABSOLUTE "${path}" OR NOT EXISTS "${path}")
            unset(path)
            find_file(path ${dll} PATHS /usr/i686-w64-mingw32/lib NO_DEFAULT_PATH NO_CACHE REQUIRED)
        endif()
        get_filename_component(path ${path} REALPATH)
        list(APPEND KR_RUNTIME_DLLS ${path})
    endforeach()
    if(PROJECT_IS_TOP_LEVEL)
        file(COPY ${KR_RUNTIME_DLLS} DESTINATION ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
    endif()
endif()

# kr_family(<name> [USES <families>...] SOURCES <files>...): adds one family's files (paths below src) to the library.
function(kr_family name)
    cmake_parse_arguments(arg "" "" "USES;SOURCES" ${ARGN})
    list(TRANSFORM arg_SOURCES PREPEND ${PROJECT_SOURCE_DIR}/src/)
    target_sources(kr_base_objects PRIVATE ${arg_SOURCES})
endfunction()

# kr_program(<name> <sources>...): a program of this tree that uses the library.
function(kr_program name)
    add_executable(${name} ${ARGN})
    target_link_libraries(${name} PRIVATE Kr::base kr_build_flags kr_warnings Threads::Threads)
endfunction()

# kr_internal_program(<name> <sources>...): the same, linked with the archive of the library's objects
# instead of the shared library, so that it reaches what is internal.
function(kr_internal_program name)
    add_executable(${name} ${ARGN})
    target_link_libraries(${name} PRIVATE kr_base_whole kr_build_flags kr_warnings)
endfunction()
