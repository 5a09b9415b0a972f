// Makes the pictures of the reference, by calling the functions: ravikGallery DIRECTORY. With --show FILE, the one of the
// README.
//
// NAME.png shows what goes into function NAME and what comes out of it. NAME.txt has the number of arguments that the
// example has, and then a line for each of its numbers: the index of the argument and the number.
#include "example.h"
#include "show.h"

#include "groups.h"

#include <ravik/frame.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <set>

int main(int argc, char** argv)
{
    rvkSetOperationMode(RAVIK_OP_CPU_PERFORMANCE);
    if (argc == 3 && strcmp(argv[1], "--show") == 0) {
        writePng(argv[2], drawShow());
        return 0;
    }
    if (argc != 2) {
        fprintf(stderr, "Usage: ravikGallery DIRECTORY | --show FILE\n");
        return 2;
    }
    const std::filesystem::path directory = argv[1];
    std::filesystem::create_directories(directory);
    std::set<std::string> done;
    int failures = 0;
    for (const FunctionTest* function : allFunctions()) {
        if (!Example::isPossible(*function) || !done.insert(function->function).second)
            continue; // the first of its variants
        const Example example(*function);
        if (!example.succeeded()) {
            fprintf(stderr, "%s refuses its example\n", function->function.c_str());
            failures++;
            continue;
        }
        writePng(directory / (function->function + ".png"), example.picture());
        std::ofstream numbers(directory / (function->function + ".txt"));
        numbers << function->arguments.size() << '\n';
        for (const auto& [argument, number] : example.numbers())
            numbers << argument << ' ' << number << '\n';
    }
    return failures ? 1 : 0;
}
