#pragma once

// What the examples in the headers take for granted.

#include <cstdio>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

struct Shape
{
    virtual ~Shape() = default;
};
struct Circle : Shape
{
};
