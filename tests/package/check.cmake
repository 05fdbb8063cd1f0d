# Installs the build to a scratch prefix, moves it, and uses it as programs from outside do.
# In: BUILD, SOURCE, TREE, SCRATCH, COMPILER, LIBDIR, PKG_CONFIG, PYTHON, TOOLCHAIN and EMULATOR (both may be empty).

function(run what)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE output)
    if(NOT status EQUAL 0)
        message(FATAL_ERROR "${what} failed (${status}):\n${output}")
    endif()
    message(STATUS "${what}: ok")
    set(output "${output}" PARENT_SCOPE)
endfunction()

function(expect_same what found wanted)
    list(SORT found)
    list(SORT wanted)
    if(found STREQUAL wanted)
        message(STATUS "${what}: ok")
        return()
    endif()
    set(extra ${found})
    list(REMOVE_ITEM extra ${wanted})
    list(REMOVE_ITEM wanted ${found})
    message(FATAL_ERROR "${what}: not expected: ${extra}; missing: ${wanted}")
endfunction()

# A moved prefix must work too.
file(REMOVE_RECURSE ${SCRATCH})
run("install" ${CMAKE_COMMAND} --install ${BUILD} --prefix ${SCRATCH}/prefix)
set(prefix ${SCRATCH}/moved)
file(RENAME ${SCRATCH}/prefix ${prefix})
set(ENV{LD_LIBRARY_PATH} ${prefix}/${LIBDIR})
set(include ${prefix}/include/libKRbase)

# Windows finds a DLL beside the program, so the programs go where the DLLs are.
set(bin ${prefix}/bin)
file(MAKE_DIRECTORY ${bin})
set(suffix "")
set(library ${prefix}/${LIBDIR}/libKRbase.so)
if(TOOLCHAIN)
    set(suffix .exe)
    set(library ${bin}/libKRbase.dll)
    set(toolchain -DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN})
endif()

# What is installed is what a program that includes every public header reads, and no more.
file(GLOB headers RELATIVE ${include} ${include}/base/*.h ${include}/base/*.imp)
list(TRANSFORM headers REPLACE "(.+)" "#include <\\1>\n" OUTPUT_VARIABLE all)
string(JOIN "" all ${all})
file(WRITE ${SCRATCH}/all.cpp "${all}")
run("every public header" ${COMPILER} -std=c++17 -M -I${include} ${SCRATCH}/all.cpp)
string(REGEX MATCHALL "libKRbase/base/[^ \n\\]+" read "${output}")
list(REMOVE_DUPLICATES read)
list(TRANSFORM read REPLACE "^libKRbase/" "")
file(GLOB_RECURSE installed RELATIVE ${include} ${include}/*)
expect_same("the installed headers" "${installed}" "${read}")

# What the library exports are members of the classes that its headers export, and each of those can
# be linked without help from the optimiser.
run("the exported names" ${PYTHON} ${SOURCE}/exportedNames.py ${include} ${library} ${COMPILER})
run("every public member: write" ${PYTHON} ${SOURCE}/publicApi.py ${include} ${SCRATCH}/everyMember.cpp ${COMPILER})
run("every public member: link" ${COMPILER} -std=c++17 -O0 -w ${SCRATCH}/everyMember.cpp -I${include}
    -o ${bin}/everyMember${suffix} -L${prefix}/${LIBDIR} -lKRbase)
run("every public member: run" ${EMULATOR} ${bin}/everyMember${suffix})

# The tool finds its library where it was moved to.
unset(ENV{LD_LIBRARY_PATH})
run("kr-log" ${EMULATOR} ${bin}/kr-log${suffix} --version)
set(ENV{LD_LIBRARY_PATH} ${prefix}/${LIBDIR})

# Two programs three ways, with default optimisation and with none. One computes a digest of everything that headers
# compile into it: the same bits on every target, whatever the flags.
set(digest 2189b039213945fc)
function(run_both way)
    run("${way}: run" ${EMULATOR} ${ARGV1})
    run("${way}: digest" ${EMULATOR} ${ARGV2})
    string(STRIP "${output}" output)
    if(NOT output STREQUAL digest)
        message(FATAL_ERROR "${way}: the digest is ${output}, not ${digest}")
    endif()
endfunction()

set(ENV{PKG_CONFIG_LIBDIR} ${prefix}/${LIBDIR}/pkgconfig)
execute_process(COMMAND ${PKG_CONFIG} --cflags --libs KRbase
    OUTPUT_VARIABLE pkg_config_flags OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
separate_arguments(pkg_config_flags UNIX_COMMAND "${pkg_config_flags}")
set(plain_flags -I${include} -L${prefix}/${LIBDIR} -lKRbase)
foreach(optimisation -O0 -O2)
    foreach(way pkg_config plain)
        foreach(program consumer digest)
            run("${way} ${optimisation}: build ${program}" ${COMPILER} -std=c++17 ${optimisation} ${SOURCE}/${program}.cpp
                -o ${bin}/${program}${optimisation}${suffix} ${${way}_flags})
        endforeach()
        run_both("${way} ${optimisation}" ${bin}/consumer${optimisation}${suffix} ${bin}/digest${optimisation}${suffix})
    endforeach()

    set(build ${SCRATCH}/consumer${optimisation})
    run("find_package ${optimisation}: configure" ${CMAKE_COMMAND} -S ${SOURCE} -B ${build} -G Ninja
        -DCMAKE_CXX_COMPILER=${COMPILER} ${toolchain} -DCMAKE_CXX_FLAGS=${optimisation}
        -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_RUNTIME_OUTPUT_DIRECTORY=${bin})
    run("find_package ${optimisation}: build" ${CMAKE_COMMAND} --build ${build})
    run_both("find_package ${optimisation}" ${bin}/consumer${suffix} ${bin}/digest${suffix})
endforeach()

# As a part of another project's tree: the same target, a build type of its own.
run("add_subdirectory: configure" ${CMAKE_COMMAND} -S ${SOURCE} -B ${SCRATCH}/subdirectory -G Ninja
    -DCMAKE_CXX_COMPILER=${COMPILER} ${toolchain} -DKR_TREE=${TREE})

# Programs of users, with their warnings on.
run("the examples: configure" ${CMAKE_COMMAND} -S ${SOURCE} -B ${SCRATCH}/examples -G Ninja
    -DCMAKE_CXX_COMPILER=${COMPILER} ${toolchain} -DCMAKE_PREFIX_PATH=${prefix} -DKR_EXAMPLES=${TREE}/examples)
run("the examples: build" ${CMAKE_COMMAND} --build ${SCRATCH}/examples)
