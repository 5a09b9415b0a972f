// A file that is read, closed when its pointer ends.
#pragma once

#include "testLog.h"

#include <cstdio>
#include <memory>
#include <string>

struct FileCloser
{
    void operator()(FILE* file) const { fclose(file); }
};
using InputFile = std::unique_ptr<FILE, FileCloser>;

inline InputFile openFile(const std::string& path)
{
    return InputFile(fopen(path.c_str(), "rb"));
}

inline void logCannotOpen(const std::string& path)
{
    testLog("Could not open %s...\n", path.c_str());
}
