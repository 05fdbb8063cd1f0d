# Runs the program as its users would: cmake -DPROGRAM=<samples> -DDIGEST=<picture_digest> -DEMULATOR=<what runs them>
# -DFOLDER=<scratch folder> -P check.cmake

# check(<status> <regular expression for output and errors> <arguments>...)
function(check expected_status expression)
    execute_process(COMMAND ${EMULATOR} ${PROGRAM} ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE output
        ERROR_VARIABLE errors)
    if(NOT status EQUAL expected_status OR NOT "${output}${errors}" MATCHES "${expression}")
        message(SEND_ERROR "samples ${ARGN}: status ${status}\n${output}${errors}")
    endif()
endfunction()

# check_circles(<file> <count>): an SVG picture has so many.
function(check_circles file expected)
    file(STRINGS ${file} circles REGEX "<circle")
    list(LENGTH circles count)
    if(NOT count EQUAL expected)
        message(SEND_ERROR "${file}: ${count} circles")
    endif()
endfunction()

# A point set's discrepancy is far below chance, at 2^16 points.
check(0 "Lecuyer  [^\n]*e-0+[34]\n.*Hammersley [^\n]*e-0+[56]\n")

# The runtime's generator differs between systems; all else is the same pixels everywhere. Points, a histogram in two
# dimensions, directions and values stand for the others.
set(folder ${FOLDER}/samples-check)
file(REMOVE_RECURSE ${folder})
file(MAKE_DIRECTORY ${folder})
set(pictures)
foreach(number 7 14 16 22)
    check(0 "^$" --draw ${number} ${folder}/${number}.png)
    list(APPEND pictures ${folder}/${number}.png)
endforeach()
check(0 "^$" --sheet ${folder}/sheet.png)
execute_process(COMMAND ${EMULATOR} ${DIGEST} ${pictures} ${folder}/sheet.png OUTPUT_VARIABLE digests ERROR_VARIABLE errors)
set(expected "680x680 7fafe260\n680x680 644f3a6e\n680x680 692709d3\n680x680 3b82dcc8\n1820x2260 [0-9a-f]+\n")
if(NOT digests MATCHES "^${expected}$")
    message(SEND_ERROR "the pictures are\n${digests}${errors}instead of\n${expected}")
endif()

check(0 "^$" --sheet ${folder}/sheet.svg)
check_circles(${folder}/sheet.svg 10248)
check(0 "^$" --draw 3 ${folder}/halton.svg 100)
check_circles(${folder}/halton.svg 100)

check(1 "'99' is not a number below" --draw 99 ${folder}/x.png)
check(1 "ends with .svg or .png" --sheet ${folder}/x.gif)
check(1 "cannot write" --sheet ${folder}/missing/x.svg)
check(1 "cannot write" --sheet ${folder}/missing/x.png)
check(2 "usage: samples" --help)
