// ravikTestData OUTDIR [--resolutions N]: writes the test-data directory of ravikTest.
// ravikTestData --functions: prints docs/functions.md; --python: python/package/pictures.txt.
#include "functionsPage.h"
#include "pythonTable.h"
#include "testDataWriter.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>

namespace {

int usage()
{
    fprintf(stderr,
            "USAGE: ravikTestData OUTDIR [--resolutions N], N = 0..%zu\n       ravikTestData --functions | --python\n",
            kProfilingResolutions);
    return 2;
}

} // namespace

int main(int argc, char** argv)
{
    size_t resolutions = kProfilingResolutions;
    if (argc == 2 && strcmp(argv[1], "--functions") == 0)
        return fputs(functionsPage().c_str(), stdout) < 0;
    if (argc == 2 && strcmp(argv[1], "--python") == 0)
        return fputs(pythonTable().c_str(), stdout) < 0;
    if (argc == 4 && strcmp(argv[2], "--resolutions") == 0) {
        char* end;
        resolutions = strtoul(argv[3], &end, 10);
        if (end == argv[3] || *end != '\0')
            return usage();
    } else if (argc != 2) {
        return usage();
    }
    if (resolutions > kProfilingResolutions)
        return usage();

    try {
        writeTestData(argv[1], resolutions);
    } catch (const std::exception& error) {
        fprintf(stderr, "ravikTestData: %s\n", error.what());
        return 1;
    }
    return 0;
}
