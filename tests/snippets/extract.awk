# Turns the examples of a header or a page into sources, so that a test compiles them.
#
#   awk -v header=base/objPtr.h -v prefix=OUT/objPtr -f extract.awk FILE
#
# In a header every `@code` block counts: its statements are put into a function, and `@code{.cpp}`
# marks a block that stands at namespace scope. In a page every ```cpp block that begins with an
# #include counts, as it is. Writes PREFIX_<n>.cpp and prints each name.

function open_block(scope) {
    close_block()
    file = prefix "_" ++count ".cpp"
    print file
    printf "" > file
    if (header != "") {
        print "#include <" header ">\n#include \"prelude.h\"\n" >> file
        if (scope == "function")
            print "[[maybe_unused]] static void example()\n{" >> file
    }
    in_block = scope
}

function close_block() {
    if (in_block == "function")
        print "}" >> file
    if (in_block != "")
        close(file)
    in_block = ""
}

header != "" && /^[ \t]*(\/\/\/|\*).*@code\{\.cpp\}/ { open_block("namespace"); next }
header != "" && /^[ \t]*(\/\/\/|\*).*@code[ \t]*$/ { open_block("function"); next }
header != "" && /@endcode/ { close_block(); next }
header != "" && in_block != "" { sub(/^[ \t]*(\/\/\/|\*) ?/, ""); print >> file; next }

header == "" && /^```cpp/ { starting = 1; next }
header == "" && starting && /^#include/ { open_block("page") }
header == "" { starting = 0 }
header == "" && /^```/ { close_block(); next }
header == "" && in_block != "" { print >> file }

END { close_block() }
