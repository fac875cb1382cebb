#include "ZELKProgram.h"

int main(int argc, char **argv)
{
    return ZELKProgram::run(argc, argv);
}
