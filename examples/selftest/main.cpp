// The tests of a small family, as an application's own test program has them.
//
//   selftest --help
//   SELFTEST_FAULTS=1 selftest --isolate --junit=selftest.xml

#include <base/hmCheckedNew.h> // has the heap checked, and so leaks found
#include <base/testMgr.h>

int main(int argc, char** argv)
{
    return Kr::TestMgr::main(argc, argv);
}
