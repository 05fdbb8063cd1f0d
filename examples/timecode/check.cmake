# Runs the program as its users would, and checks status and output:
# cmake -DPROGRAM=<timecode> -DFOLDER=<scratch folder> [-DEMULATOR=<wrapper>] -P check.cmake

# check(<status> <output> <regular expression for the errors> <arguments>...)
function(check expected_status expected_output error_expression)
    execute_process(COMMAND ${EMULATOR} ${PROGRAM} ${ARGN} INPUT_FILE ${FOLDER}/timecode.txt
        RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE errors)
    string(REPLACE "\r" "" output "${output}")
    if(NOT status EQUAL expected_status OR NOT output STREQUAL expected_output
            OR NOT errors MATCHES "${error_expression}")
        message(SEND_ERROR "timecode ${ARGN}: status ${status}\n${output}${errors}")
    endif()
endfunction()

set(ENV{KR_WINE_INPUT} ${FOLDER}/timecode.txt)

set(heading "\
        rate                ticks             seconds               time code  conversion\n")

file(WRITE ${FOLDER}/timecode.txt "not read when the command line names times")
check(0 "${heading}\
  30000/1001                17982          599.999400             00:10:00;00  exact
          24                14399          599.958333             00:09:59:23  truncated
          25                14999          599.960000             00:09:59:24  truncated
  60000/1001                35964          599.999400             00:10:00;00  exact
       48000             28799971          599.999396          00:09:59:47971  truncated

" "^$" 30000/1001 "00:10:00\;00")

file(WRITE ${FOLDER}/timecode.txt "\n  -00:00:01:23 \r\nnoon")
check(1 "${heading}\
          25                  -48           -1.920000            -00:00:01:23  exact
          24                  -46           -1.916667            -00:00:01:22  truncated
  30000/1001                  -57           -1.901900            -00:00:01;27  truncated
  60000/1001                 -115           -1.918583            -00:00:01;55  truncated
       48000               -92160           -1.920000         -00:00:01:44160  exact

" "^timecode: 'noon' is neither a tick count nor a time code\r?\n$" 25)

file(WRITE ${FOLDER}/timecode.txt "")
check(0 "" "^$" 25)
check(1 "" "Time code '00:01:00;00': this frame number is dropped" 30000/1001 "00:01:00\;00")
check(2 "" "rate '25/0': Illegal zero denominator" 25/0)
check(2 "" "rate 'x': .*Rate numerator malformed" x 1)
check(2 "" "usage: timecode RATE" --help)
