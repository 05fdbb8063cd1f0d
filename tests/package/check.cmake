# Installs the build to a scratch prefix, then builds and runs the consumer three ways: by
# find_package, by pkg-config and by plain compiler flags.
# In: BUILD, SOURCE, SCRATCH, COMPILER, LIBDIR, PKG_CONFIG, TOOLCHAIN and EMULATOR (both may be empty).

function(run what)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE output)
    if(NOT status EQUAL 0)
        message(FATAL_ERROR "${what} failed (${status}):\n${output}")
    endif()
    message(STATUS "${what}: ok")
endfunction()

set(prefix ${SCRATCH}/prefix)
set(ENV{LD_LIBRARY_PATH} ${prefix}/${LIBDIR})
file(REMOVE_RECURSE ${SCRATCH})
run("install" ${CMAKE_COMMAND} --install ${BUILD} --prefix ${prefix})

# A moved prefix must work too.
file(RENAME ${prefix} ${SCRATCH}/moved)
set(prefix ${SCRATCH}/moved)
set(ENV{LD_LIBRARY_PATH} ${prefix}/${LIBDIR})

# Windows finds a DLL beside the program, so the programs go where the DLLs are.
set(bin ${prefix}/bin)
file(MAKE_DIRECTORY ${bin})
set(suffix "")
if(TOOLCHAIN)
    set(suffix .exe)
    set(toolchain -DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN})
endif()

run("find_package: configure" ${CMAKE_COMMAND} -S ${SOURCE} -B ${SCRATCH}/consumer -G Ninja
    -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_CXX_COMPILER=${COMPILER} ${toolchain}
    -DCMAKE_RUNTIME_OUTPUT_DIRECTORY=${bin})
run("find_package: build" ${CMAKE_COMMAND} --build ${SCRATCH}/consumer)
run("find_package: run" ${EMULATOR} ${bin}/consumer${suffix})

set(ENV{PKG_CONFIG_LIBDIR} ${prefix}/${LIBDIR}/pkgconfig)
execute_process(COMMAND ${PKG_CONFIG} --cflags --libs KRbase
    OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
separate_arguments(flags UNIX_COMMAND "${flags}")
run("pkg-config: build" ${COMPILER} -std=c++17 ${SOURCE}/consumer.cpp -o ${bin}/consumer2${suffix} ${flags})
run("pkg-config: run" ${EMULATOR} ${bin}/consumer2${suffix})

run("plain flags: build" ${COMPILER} -std=c++17 -I${prefix}/include/libKRbase ${SOURCE}/consumer.cpp
    -o ${bin}/consumer3${suffix} -L${prefix}/${LIBDIR} -lKRbase)
run("plain flags: run" ${EMULATOR} ${bin}/consumer3${suffix})
