# Supervises a program, its limit from the command line at first and then from the store, in a folder of its own.
set(folder ${FOLDER}/supervise-check)
file(REMOVE_RECURSE ${folder})
set(ENV{XDG_CONFIG_HOME} ${folder})
function(supervise expected)
    execute_process(COMMAND ${EMULATOR} ${PROGRAM} ${ARGN}
        OUTPUT_VARIABLE output ERROR_VARIABLE errors RESULT_VARIABLE status)
    if(NOT "${output}${errors}" MATCHES "${expected}")
        message(FATAL_ERROR "status ${status}, no '${expected}' in: ${output}${errors}")
    endif()
endfunction()
set(ended "metronome[.exe]*: (signal 15|interrupted|ended by force)")
supervise("  [|] .*us  Kr::Sleeper.*metronome[.exe]*: exit status 0" --input=${CMAKE_CURRENT_LIST_FILE} -- ${METRONOME} 0.02 0.2)
supervise("processor .*${ended}" --seconds=0.5 --remember -- ${METRONOME} 0.02 100)
supervise("0[.]5[0-9]* s: processor .*${ended}" ${METRONOME} 0.02 100)
supervise("metronome[.exe]*: exit status 0" --seconds=60 --remember ${METRONOME} 0.02 0.2) # the default again
supervise("metronome[.exe]*: exit status 0" ${METRONOME} 0.02 0.7)
supervise("supervise: .*--second': did you mean '--seconds'" --second=1 -- ${METRONOME})
supervise("supervise: .*no-such-program" -- no-such-program)
