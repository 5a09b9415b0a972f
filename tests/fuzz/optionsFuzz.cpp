// The command line of ravikTest. The input is its words, with zero bytes between them.
#include "fuzzing.h"

#include "options.h"
#include "settings.h"
#include "testTable.h"

namespace {

std::vector<std::string> wordsOf(std::span<const uint8_t> bytes)
{
    std::vector<std::string> words(1);
    for (const uint8_t byte : bytes) {
        if (byte)
            words.back() += static_cast<char>(byte);
        else
            words.emplace_back();
    }
    return words;
}

void checkSettings(const Options& options, const std::vector<std::string>& words)
{
    const auto isWord = [&](const char* text) {
        return std::any_of(words.begin(), words.end(), [=](const std::string& word) { return word.data() == text; });
    };
    fuzz::require(isWord(options.dataDirectory), "the data directory is a word");
    fuzz::require(!options.module || isWord(options.module), "the module is a word");
    fuzz::require(!options.function || isWord(options.function), "the function is a word");
    fuzz::require(options.loops >= 0 && options.loops <= 10000000, "as many loops as the clock can sum up");
    fuzz::require(settings.resolution >= 0 && settings.resolution <= 7, "a resolution that exists");
    fuzz::require(runSwitches.unitTests || runSwitches.profiling, "something runs");
    fuzz::require(parseFunctionName(options.function) <= kLastFunction, "a function of the table");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    std::vector<std::string> words = wordsOf({data, size});
    if (words.size() < 2) // the program's name and the data directory
        return 0;
    std::vector<char*> arguments;
    for (std::string& word : words)
        arguments.push_back(word.data());
    const int count = static_cast<int>(arguments.size());
    arguments.push_back(nullptr);
    settings = {};
    runSwitches = {};
    Options options;
    const char* const error = parseOptions(count, arguments.data(), options);
    fuzz::require(!error || strncmp(error, "ERROR: ", 7) == 0, "errors say so");
    checkSettings(options, words);
    return 0;
}
