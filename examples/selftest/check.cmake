# Runs the tests with their faults, isolated, and checks that a crash leaves the others' report whole.
file(MAKE_DIRECTORY ${FOLDER}/selftest-files)
set(ENV{KR_LOG_DIR} ${FOLDER}/selftest-files)
set(ENV{KR_TEST_DIR} ${FOLDER}/selftest-files)
set(ENV{SELFTEST_FAULTS} 1)
execute_process(COMMAND ${EMULATOR} ${PROGRAM} --isolate --junit=selftest.xml
    OUTPUT_VARIABLE output ERROR_VARIABLE errors RESULT_VARIABLE status)
if(NOT status EQUAL 1)
    message(FATAL_ERROR "status ${status}: ${output}${errors}")
endif()
file(READ ${FOLDER}/selftest-files/selftest.xml junit)
foreach(found
        "ok      colours.mix"
        "FAILED  faults.fails[^\n]*\n    [^\n]*faultTests.cpp:[0-9]+: KR_CHECK\\(grey == [^\n]*\n        left:  #808080\n        right: #7f7f7f"
        "log: Warning Colours: about to look at grey"
        "colour.cpp:[0-9]+: Kr::ExInternalError: A colour is written as #rrggbb.\n[^\n]*\n        note: looking at a colour by name"
        "ok      faults.leaks[^\n]*leaves [^\n]*1 block of 100 bytes"
        "The test's process has ended: illegal instruction \\(0xC000001D\\)"
        "ok      faults.comesBehind"
        "6 passed, 3 failed")
    if(NOT output MATCHES "${found}")
        message(FATAL_ERROR "no '${found}' in: ${output}${errors}")
    endif()
endforeach()
if(NOT junit MATCHES "name=\"faults\"[^>]* tests=\"5\" failures=\"1\" errors=\"2\" skipped=\"0\"")
    message(FATAL_ERROR "the file tells something else: ${junit}")
endif()
