/* What the Python module needs besides the library. */
#ifndef RAVIK_PYTHON_MODULE_SUPPORT_H
#define RAVIK_PYTHON_MODULE_SUPPORT_H

#include <stddef.h>
#include <stdint.h>

/* Whether the library has logged an error in this thread since ravikTakeLog, which gives the last one and forgets
 * it. */
int ravikHasLogged(void);
void ravikTakeLog(char* text, size_t size);

/* How two pieces of memory lie. */
enum { RAVIK_APART, RAVIK_SAME_MEMORY, RAVIK_OVERLAPPING };
int ravikOverlap(const void* a, size_t sizeOfA, const void* b, size_t sizeOfB);

/* Whether the first one shares memory with one of the others, of which those of size 0 are nowhere: a call from Python
 * takes longer than all of this. */
int ravikOverlapsAny(const void* a, size_t sizeOfA, const void* b, size_t sizeOfB, const void* c, size_t sizeOfC,
                     const void* d, size_t sizeOfD);

#endif
