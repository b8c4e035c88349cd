#include "app/Program.h"

int main(int argc, char* argv[])
{
    return vinora::runProgram(argc, argv);
}
