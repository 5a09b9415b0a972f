#include "driver.h"

int main(int argc, char** argv)
{
    return runRavikTest(argc, argv);
}
