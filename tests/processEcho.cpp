// A child that gives back what it gets, and starts as fast as a program can: it needs no library
// but the language's own, and as a program with windows it needs no console.

#include <cstdio>

int main()
{
    for (int c = std::getchar(); c != EOF; c = std::getchar())
        std::putchar(c);
    return 0;
}
