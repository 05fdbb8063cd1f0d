# Runs the program as its users would, and checks status and output:
# cmake -DPROGRAM=<startup> [-DEMULATOR=<wrapper>] -P check.cmake

foreach(name KR_TRACE_OPTIONS KR_DEBUG_INITIALIZE STARTUP_SPHERES STARTUP_SAMPLES STARTUP_VSYNC)
    unset(ENV{${name}})
endforeach()

# check(<status> <regular expression for the output> <for the errors> <arguments>...)
function(check expected_status output_expression error_expression)
    execute_process(COMMAND ${EMULATOR} ${PROGRAM} ${ARGN}
        RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE errors)
    if(NOT status EQUAL expected_status OR NOT output MATCHES "${output_expression}"
            OR NOT errors MATCHES "${error_expression}")
        message(SEND_ERROR "startup ${ARGN}: status ${status}\n${output}${errors}")
    endif()
endfunction()

set(ENV{STARTUP_SHADING} bogus)
set(ENV{STARTUP_SAMPLES} 9)
check(0
    "scene: started with 7 objects
Variable 'viewer.shading': the value 'bogus' of environment variable STARTUP_SHADING is malformed, [^\n]*; skipped.
viewer: started.*initialize .*base .*scene .*viewer .*application .*\
scene.spheres = '5', from option --spheres.*\
viewer.samples = '8', from option --samples
    not environment variable STARTUP_SAMPLES: '9'
    not the default: '4'.*\
viewer.vsync = 'false', from option --no-vsync.*\
left for the application: [^\n]* 'file' '--' '--x'
.*about to be raised: .*examples/startup/scene.cpp, Line=.*caught: No such object: teapot.*\
viewer: stopped.*scene: stopped"
    "<application>::performFinalize.*<viewer>.*<scene>.*<base>.*<initialize>::performFinalize"
    --spheres 5 --no-vsync file --samples=8 -- --x)
check(1
    "'egg' is in a cycle with:\n\t'hen'\n.*viewer: stopped.*scene: stopped"
    "startup: Init dependencies contain cycle\\(s\\)\n$"
    --cycle)
check(1 "scene: stopped" "startup: Variable 'viewer.samples': the value 'many' of option --samples"
    --samples=many)
check(1 "^$" "^startup: Unknown option '--smaples': did you mean '--samples'. See --help.\n$" --smaples=8)
check(0 "^Usage: startup[^\n]*\n.*--help +Show this help\n.*--samples=VALUE +STARTUP_SAMPLES +4 +Samples per pixel .an integer from 1 to 64" "" --help)
