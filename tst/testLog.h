// Where the harness writes: the system log for people, standard output for machines.
#pragma once

// One log line under "ravik_test" at debug priority.
void testLog(const char* format, ...) __attribute__((format(printf, 1, 2)));
// The same at error priority.
void testLogError(const char* format, ...) __attribute__((format(printf, 1, 2)));

// Text on standard output, flushed at once: what was printed stays printed when a test dies.
void profilePrint(const char* format, ...) __attribute__((format(printf, 1, 2)));
