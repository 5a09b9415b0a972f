// A companion library that exports nothing that the library knows.
extern "C" void nothing() {}
