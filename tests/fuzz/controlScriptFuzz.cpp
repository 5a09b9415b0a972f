// The control-script reader on any bytes: a script whose lines name a data file that is made of the input, too.
//
// The first byte of the input chooses the destinations, the second the extension of the data file; a zero byte ends the
// script, and what follows is the data file.
#include "fuzzing.h"

#include "controlScript.h"

namespace {

constexpr const char* kDataFiles[] = {"input.pgm", "input_3x2.data", "input.csv"};

// One destination of every kind.
struct Destinations
{
    char text[100];
    uint8_t byte;
    int32_t integer;
    float number;
    double wide;
    char structure[8];
    RAVIK_TEST_Buffer buffer;
    std::vector<TestRect> rects;
    TestCorrespondences correspondences;
    TestContours contours;
    TestPyramid pyramid;

    ScriptColumn column(unsigned kind)
    {
        const ScriptColumn all[] = {ScriptColumn::array(buffer, RAVIK_MEM_SYSTEM),
                                    ScriptColumn::text(text, sizeof text),
                                    byte,
                                    integer,
                                    number,
                                    wide,
                                    ScriptColumn::structure(structure, sizeof structure),
                                    rects,
                                    correspondences,
                                    contours,
                                    pyramid};
        return all[kind % std::size(all)];
    }
};

// Every byte of a window can be read.
uint32_t sumOf(const RAVIK_TEST_Buffer& buffer)
{
    uint32_t sum = 0;
    for (int32_t j = 0; j < buffer.height; j++)
        for (int32_t i = 0; i < buffer.width * buffer.elementSize; i++)
            sum += buffer.row(j)[i];
    return sum;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const test::TemporaryDirectory directory;
    static volatile uint32_t sink;
    if (size < 2)
        return 0;
    const unsigned firstKind = data[0];
    const char* const dataFile = kDataFiles[data[1] % std::size(kDataFiles)];
    data += 2;
    size -= 2;
    const auto* const end = static_cast<const uint8_t*>(memchr(data, 0, size));
    const size_t scriptSize = end ? static_cast<size_t>(end - data) : size;
    fuzz::writeFile(directory.file(dataFile),
                    end ? std::span(end + 1, size - scriptSize - 1) : std::span<const uint8_t>());

    FILE* const script = tmpfile();
    if (!script)
        abort();
    fwrite(data, 1, scriptSize, script);
    rewind(script);
    Destinations destinations;
    const ScriptColumn columns[] = {destinations.column(firstKind), destinations.column(firstKind / 11)};
    for (size_t count = 1; count <= std::size(columns); count++) {
        rewind(script);
        for (int lines = 0; lines < 100; lines++) {
            const ScriptResult result =
                RAVIK_TEST_ReadControlScript(directory.string().c_str(), script, std::span(columns).first(count));
            if (result != ScriptResult::line && result != ScriptResult::badLine)
                break;
            if (result == ScriptResult::line)
                sink = sink + sumOf(destinations.buffer);
        }
    }
    fclose(script);
    std::filesystem::remove(directory.file(dataFile));
    return 0;
}
