// client/app/main.cpp: pavex, the portable client's program.
#include <exception>
#include <iostream>

#include "client/app/command.h"

int main(int argc, char** argv)
{
    std::ios::sync_with_stdio(false);
    try {
        return pavex::RunProgram(argc, argv);
    } catch (const std::exception& error) {
        return pavex::Fail(error.what());
    }
}
