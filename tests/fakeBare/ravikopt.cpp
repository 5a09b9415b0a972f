// A companion library that reports a DSP and a GPU through the older query and exports nothing else.
extern "C" unsigned rvkAvailableHardware()
{
    return 8 | 32;
}
