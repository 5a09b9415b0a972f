// The program from its command line to its exit status.
#pragma once

int runRavikTest(int argc, char** argv);
