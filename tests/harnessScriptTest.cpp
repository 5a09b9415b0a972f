// The test table, control scripts and data files, good and hostile.
#include "controlScript.h"
#include "settings.h"
#include "support/harnessRun.h"
#include "support/logCapture.h"
#include "testTable.h"

#include <cstring>
#include <memory>

using namespace test;

namespace {

bool logMentions(const std::string& text)
{
    return std::any_of(logLines.begin(), logLines.end(),
                       [&](const std::string& line) { return line.find(text) != std::string::npos; });
}

// ---- the test table ----

const std::string kTableTypes = "char*,bool,bool,bool,bool,int,float,float,float,float,float,float,float,float\n";

class TestTable : public testing::Test
{
protected:
    int read(const std::string& text)
    {
        writeFile(m_directory.path() / "RavikTestTable.csv", text);
        memset(testTable, 0, sizeof testTable);
        clearLog();
        return RAVIK_TEST_ReadTestTable(m_directory.string().c_str());
    }
    std::string in(const char* text) const { return text + m_directory.string() + "/RavikTestTable.csv.\n"; }

    const TemporaryDirectory m_directory;
};

TEST(TestTableNames, AreFoundExactly)
{
    EXPECT_EQ(parseFunctionName("rvkNCCPatchOnCircle8x8u8"), 1u);
    EXPECT_EQ(parseFunctionName("rvkAbsDiffu8"), 318u);
    EXPECT_EQ(parseFunctionName("rvkConvertDepthImageToPointCloudf32"), 485u);
    for (const char* unknown : {"", "rvkAbsDiffu8 ", "rvkabsdiffu8", "rvkAbsDiff"})
        EXPECT_EQ(parseFunctionName(unknown), 0u) << unknown;
    EXPECT_EQ(parseFunctionName(nullptr), 0u);
}

TEST_F(TestTable, GivesTolerancesByTarget)
{
    ASSERT_EQ(read("name, C, V, Q, G, rows, tolerances\n" + kTableTypes +
                   "rvkAbsDiffu8,1,1,0,0,2,0.5,1,2,3,4,5,6,7.25\r\n"
                   "rvkAbsDiffs32,1,1,1,1,0,1,1,1,1,1,1,1,1\n"
                   "rvkAbsDifff32,0,0,0,0,1,1,9,1,1,0,0,0,0\n"),
              0);
    float tolerances[2] = {-1, -1};
    EXPECT_TRUE(isFunctionImpl(318, kTargetVecta, tolerances));
    EXPECT_EQ(tolerances[0], 1);
    EXPECT_EQ(tolerances[1], 5);
    EXPECT_FALSE(isFunctionImpl(318, kTargetNdsp, tolerances));
    EXPECT_TRUE(isFunctionImpl(318, kTargetLowPower, tolerances));
    EXPECT_EQ(tolerances[0], 3);
    EXPECT_EQ(tolerances[1], 7.25f);

    for (unsigned target = 0; target < kTargetIndices; target++) {
        EXPECT_FALSE(isFunctionImpl(319, target, tolerances)) << "no row in use";
        EXPECT_FALSE(isFunctionImpl(321, target, tolerances)) << "no line";
        EXPECT_FALSE(isFunctionImpl(0, target, tolerances));
        EXPECT_FALSE(isFunctionImpl(486, target, tolerances));
        EXPECT_EQ(isFunctionImpl(320, target, tolerances), target >= 4) << "modes ask no flag";
    }
    EXPECT_EQ(tolerances[0], 9);
    EXPECT_TRUE(logHas("3 ravik_test: " + in("WARNING - Function 321 not found in ")));
    EXPECT_FALSE(logHas("3 ravik_test: " + in("WARNING - Function 318 not found in ")));
}

TEST_F(TestTable, SkipsWhatItCannotUse)
{
    const std::string rest = ",1,1,1,1,1,2,2,2,2,0,0,0,0\n";
    ASSERT_EQ(read(kTableTypes + "rvkNobody" + rest + "rvkAbsDiffu8,1,1,1,1,3,2,2,2,2,0,0,0,0\n" + // three rows
                   "rvkAbsDiffs32,1,1,1,1,2147483648,2,2,2,2,0,0,0,0\n" + std::string(100, 'x') + rest +
                   "rvkAbsDifff32," + std::string(3000, ' ') + "1,1,1,1,1,2,2,2,2,0,0,0,0\n" + // too long
                   "rvkAbsDiffVu8,1,1\n" + "rvkAbsDiffVs32,1,1,1,1,1,nan,2,2,2,0,0,0,0\n" +
                   "rvkAbsDiffVf32,1,1,1,1,1,1,1,1,1,0,0,0,0\n" + "rvkAbsDiffVf32" + rest),
              0);
    EXPECT_TRUE(logHas("3 ravik_test: " + in("WARNING - Unknown function rvkNobody in ")));
    EXPECT_TRUE(logMentions("WARNING - 3 tolerance rows of function rvkAbsDiffu8"));
    EXPECT_TRUE(logMentions("longer than 2048 characters"));
    for (RAVIK_FUNC index = 1; index <= kLastFunction; index++)
        EXPECT_EQ(testTable[index].name[0] != '\0', index == parseFunctionName("rvkAbsDiffVf32")) << index;
    EXPECT_EQ(testTable[parseFunctionName("rvkAbsDiffVf32")].tolerances[0][0], 2) << "a later line wins";
}

// ---- control scripts ----

class Script : public testing::Test
{
protected:
    ~Script() override { close(); }

    void open(const std::string& text)
    {
        close();
        writeFile(m_directory.path() / "script.csv", text);
        m_file = fopen((m_directory.string() + "/script.csv").c_str(), "rb");
        clearLog();
    }
    void close()
    {
        if (m_file)
            fclose(m_file);
        m_file = nullptr;
    }
    ScriptResult read(std::initializer_list<ScriptColumn> columns)
    {
        return RAVIK_TEST_ReadControlScript(m_directory.string().c_str(), m_file, {columns.begin(), columns.size()});
    }
    // Reads one file through a column of the type.
    bool load(const char* type, const std::string& name, ScriptColumn column)
    {
        open(std::string(type) + "\n" + name + "\n");
        return read({column}) == ScriptResult::line;
    }
    bool loadContents(const char* type, const std::string& name, const std::string& contents, ScriptColumn column)
    {
        writeFile(m_directory.path() / name, contents);
        return load(type, name, column);
    }

    const TemporaryDirectory m_directory;
    FILE* m_file = nullptr;
};

TEST_F(Script, ConvertsEveryScalarTypeWithinItsRange)
{
    const char* const cases[][4] = {
        // type, least, largest, none
        {"char", "-128", "127", "128"},
        {"unsignedchar", "0", "255", "256"},
        {"unsigned_char", "0", "255", "-1"},
        {"short", "-32768", "32767", "32768"},
        {"unsignedshort", "0", "65535", "65536"},
        {"unsigned_short", "0", "65535", "-1"},
        {"int", "-2147483648", "2147483647", "2147483648"},
        {"long", "-2147483648", "2147483647", "x"},
        {"unsignedint", "0", "4294967295", "4294967296"},
        {"unsigned_int", "0", "4294967295", "1.5"},
        {"unsignedlong", "0", "4294967295", "-1"},
        {"bool", "0", "1", "2"},
    };
    for (const auto& [type, low, high, outside] : cases) {
        open(std::string(type) + "\n" + low + "\n" + high + "\n" + outside + "\n");
        double number = 0;
        for (const char* inside : {low, high})
            EXPECT_TRUE(read({number}) == ScriptResult::line && number == atof(inside)) << type << " " << inside;
        EXPECT_EQ(read({number}), ScriptResult::badLine) << type;
        EXPECT_EQ(read({number}), ScriptResult::end) << type;
    }
    open("float\n-0.25\n1e39\nnan\n0x\n");
    float number = 0;
    EXPECT_EQ(read({number}), ScriptResult::line);
    EXPECT_EQ(number, -0.25f);
    for (int i = 0; i < 3; i++)
        EXPECT_EQ(read({number}), ScriptResult::badLine);
}

TEST_F(Script, KeepsNumbersThatDoNotFitOutOfTheirDestinations)
{
    uint8_t byte = 9;
    int32_t whole = 9;
    open("int,float\n300,1\n1,2.5\n-1,1\n7,3\n");
    for (int i = 0; i < 3; i++)
        EXPECT_EQ(read({byte, whole}), ScriptResult::badLine) << i;
    EXPECT_EQ(read({byte, whole}), ScriptResult::line);
    EXPECT_EQ(byte, 7);
    EXPECT_EQ(whole, 3);
}

TEST_F(Script, SplitsTrimsAndUnquotesLines)
{
    char name[8];
    int32_t number = 0;
    open("a name, its number\r\n\r\nchar* , unsigned int\n \t\n  \"a,b\" , 5 \r\n\"\"\"c\",6");
    ASSERT_EQ(read({ScriptColumn::text(name, sizeof name), number}), ScriptResult::line);
    EXPECT_STREQ(name, "a,b");
    EXPECT_EQ(number, 5);
    ASSERT_EQ(read({ScriptColumn::text(name, sizeof name), number}), ScriptResult::line) << "no line feed at the end";
    EXPECT_STREQ(name, "c");
    EXPECT_EQ(number, 6);
    EXPECT_EQ(read({ScriptColumn::text(name, sizeof name), number}), ScriptResult::end);
    EXPECT_EQ(read({ScriptColumn::text(name, sizeof name), number}), ScriptResult::end);
}

TEST_F(Script, RefusesBadLinesAndReadsOn)
{
    char name[4] = "old";
    int32_t number = 0;
    const auto next = [&] { return read({ScriptColumn::text(name, sizeof name), number}); };
    open(std::string("char*,int\n") + "long,1\n" + "a\n" + "a,1,2\n" + std::string(2049, 'a') + "\n" +
         std::string("a\0b,1\n", 6) + "abc,4\n");
    for (int i = 0; i < 5; i++)
        EXPECT_EQ(next(), ScriptResult::badLine) << i;
    EXPECT_EQ(next(), ScriptResult::line);
    EXPECT_STREQ(name, "abc");

    open("char*,int\nx,1\nmissing.pgm,2\ny,3\n");
    EXPECT_EQ(RAVIK_TEST_SkipScriptLine(m_file), ScriptResult::line);
    EXPECT_EQ(RAVIK_TEST_SkipScriptLine(m_file), ScriptResult::line) << "what it names is not loaded";
    EXPECT_EQ(next(), ScriptResult::line);
    EXPECT_STREQ(name, "y");
}

TEST_F(Script, NeedsAHeaderThatFits)
{
    int32_t number = 0;
    for (const std::string& text :
         {std::string(), std::string("1\n2\n3\n4\n5\n6\n7\n8\nint\n1\n"), std::string("int,int\n1,2\n"),
          std::string("integer\n1\n"), std::string(200000, ',')}) {
        open(text);
        EXPECT_EQ(read({number}), ScriptResult::noScript) << text.substr(0, 20);
    }
    open("char*\n5\n");
    EXPECT_EQ(read({number}), ScriptResult::badLine) << "text for a number";
    RAVIK_TEST_Buffer buffer;
    open("int\n5\n");
    EXPECT_EQ(read({ScriptColumn::array(buffer, RAVIK_MEM_SYSTEM)}), ScriptResult::badLine) << "a number for an image";
}

// ---- data files ----

class DataFile : public Script
{
protected:
    ScriptColumn array() { return ScriptColumn::array(m_buffer, RAVIK_MEM_SHARED); }
    bool loadImage(const char* type, const std::string& name, const std::string& contents)
    {
        return loadContents(type, name, contents, array());
    }
    void expectImage(int width, int height, const std::string& bytes) const
    {
        EXPECT_EQ(m_buffer.shape(), MemShape_::packed(width, height, m_buffer.elementSize));
        EXPECT_EQ(std::string(reinterpret_cast<const char*>(m_buffer.block()), m_buffer.blockBytes()), bytes);
    }

    RAVIK_TEST_Buffer m_buffer;
};

TEST_F(DataFile, PgmImages)
{
    EXPECT_TRUE(loadImage("unsignedchar[]", "a.pgm", "P5\n# made by hand\n3 2 255\nabcdef"));
    expectImage(3, 2, "abcdef");
    EXPECT_TRUE(loadImage("unsignedchar[]", "a.pgm", "P2 2 1 #wide\n9 8 9"));
    expectImage(2, 1, "\x8\x9");
    EXPECT_TRUE(loadImage("unsignedshort[]", "a.pgm", "P5 1 2 65535\nABCD"));
    expectImage(1, 2, "BADC");

    for (const char* bad : {"", "P", "P5", "P6 1 1 255 a", "P5 0 1 255 a", "P5 1 0 255 ", "P5 3 2 255\nabcde",
                            "P5 1 1 0\na", "P5 1 1 70000\nabcd", "P5 99999 99999 255\na", "P5 4294967297 1 255\na",
                            "P5 -1 -1 255\na", "P2 2 1 255\n1", "P2 1 1 9 10", "P5 1 1 65535\nab", "P5 1 1 255"})
        EXPECT_FALSE(loadImage("unsignedchar[]", "a.pgm", bad)) << bad;
}

TEST_F(DataFile, RawElementsShapedByTheirName)
{
    EXPECT_TRUE(loadImage("unsignedchar[]", "a_3x2.data", "abcdef"));
    expectImage(3, 2, "abcdef");
    EXPECT_TRUE(loadImage("short[]", "a_1_1x3.data", "abcdef"));
    expectImage(1, 3, "abcdef");
    EXPECT_TRUE(loadImage("unsignedlonglong[]", "plain.data", "abcdefgh"));
    expectImage(1, 1, "abcdefgh");
    EXPECT_TRUE(loadImage("float[]", "a_x2.data", "abcdefgh"));
    expectImage(2, 1, "abcdefgh");

    for (const auto& [name, bad] : {std::pair{"a_3x2.data", "abcde"}, {"a_3x2.data", "abcdefg"}, {"plain.data", ""}})
        EXPECT_FALSE(loadImage("unsignedchar[]", name, bad)) << name << " " << bad;
    EXPECT_FALSE(loadImage("short[]", "plain.data", "abc"));
    EXPECT_FALSE(loadImage("unsignedchar[]", "a_0x0.data", ""));
    EXPECT_FALSE(loadImage("int[]", "a_65536x65536.data", "")) << "the size overflows to 0";
    EXPECT_FALSE(load("int[]", "missing.data", array()));
    std::filesystem::create_directory(m_directory.path() / "directory.data");
    EXPECT_FALSE(load("int[]", "directory.data", array()));
    for (const char* name : {"a.bin", "a", "..", ".pgmx"}) {
        EXPECT_FALSE(load("int[]", name, array()));
        EXPECT_TRUE(logHas("3 ravik_test: Error:Invalid File Extension"));
    }
}

TEST_F(DataFile, CsvNumbers)
{
    EXPECT_TRUE(loadImage("signedchar[]", "a.csv", "65, 66\n\n 67,68\r\n"));
    expectImage(2, 2, "ABCD");
    EXPECT_TRUE(loadImage("float[]", "a.csv", "1.5,-2e3"));
    EXPECT_EQ(m_buffer.window<float>()[1], -2000);
    for (const char* bad : {"", "\n\n", "1,2\n3\n", "1,x", "1,,2", "300", "1.5", "1\n2,3"})
        EXPECT_FALSE(loadImage("unsignedchar[]", "a.csv", bad)) << bad;
}

TEST_F(DataFile, RectsCorrespondencesAndContours)
{
    std::vector<TestRect> rects;
    ASSERT_TRUE(loadContents("rvkaRect", "r.csv", "1,2,3,4\n5,6,7,8\n", rects));
    ASSERT_EQ(rects.size(), 2u);
    EXPECT_EQ(rects[1].height, 8);
    EXPECT_FALSE(loadContents("rvkaRect", "r.csv", "1,2,3\n", rects));

    TestCorrespondences pairs;
    ASSERT_TRUE(loadContents("rvkaCorrespondences", "c.csv", "1,2,3,4,5\n6,7,8,9,10\n", pairs));
    EXPECT_EQ(pairs.fromDimensions, 3u);
    EXPECT_EQ(pairs.count, 2u);
    EXPECT_EQ(pairs.from, (std::vector<float>{1, 2, 3, 6, 7, 8}));
    EXPECT_EQ(pairs.to, (std::vector<float>{4, 5, 9, 10}));
    EXPECT_TRUE(pairs.mask.empty());
    pairs.fromDimensions = 2;
    ASSERT_TRUE(loadContents("rvkaCorrespondences", "c.csv", "1,2,4,5,0\n6,7,9,10,255\n", pairs));
    EXPECT_EQ(pairs.to, (std::vector<float>{4, 5, 9, 10}));
    EXPECT_EQ(pairs.mask, (std::vector<uint8_t>{0, 255}));
    for (const char* bad : {"1,2,3\n", "1,2,3,4,256\n", "1,2,3,4,-1\n", "1,2,3,4,5,6\n"}) {
        pairs.fromDimensions = 2;
        EXPECT_FALSE(loadContents("rvkaCorrespondences", "c.csv", bad, pairs)) << bad;
    }

    TestContours contours;
    ASSERT_TRUE(loadContents("rvkaContours", "k.csv", "0,1,2\n0,3,4\n1,5,6\n", contours));
    ASSERT_EQ(contours.size(), 2u);
    EXPECT_EQ(contours[0].size(), 2u);
    EXPECT_EQ(contours[1][0].y, 6);
    for (const char* bad : {"1,1,1\n", "0,1,1\n2,1,1\n", "-1,1,1\n", "0,1,1\n1,1,1\n0,1,1\n", "2000000000,1,1\n"})
        EXPECT_FALSE(loadContents("rvkaContours", "k.csv", bad, contours)) << bad;
}

TEST_F(DataFile, StructuresAndPyramids)
{
    struct
    {
        int32_t a, b;
    } structure = {};
    EXPECT_TRUE(loadContents("struct", "s.bin", std::string("\1\0\0\0\2\0\0\0", 8),
                             ScriptColumn::structure(&structure, sizeof structure)));
    EXPECT_EQ(structure.b, 2);
    for (const char* bad : {"1234567", "123456789", ""})
        EXPECT_FALSE(loadContents("struct", "s.bin", bad, ScriptColumn::structure(&structure, sizeof structure)));

    writeFile(m_directory.path() / "l0_2x2.data", "abcd");
    writeFile(m_directory.path() / "l1_1x1.data", "e");
    TestPyramid pyramid;
    ASSERT_TRUE(loadContents("rvkPyramidLevel", "p.csv", "l0_2x2.data\nl1_1x1.data\n", pyramid));
    ASSERT_EQ(pyramid.images.size(), 2u);
    EXPECT_EQ(*pyramid.images[1]->window<char>(), 'e');
    EXPECT_TRUE(loadContents("pyr3", "p.csv", "l0_2x2.data,l0_2x2.data,l0_2x2.data\n", pyramid));
    EXPECT_EQ(pyramid.planes, 3u);
    std::string many;
    for (int i = 0; i < 100; i++)
        many += "l1_1x1.data\n";
    for (const std::string& bad : {std::string("l0_2x2.data,l0_2x2.data\n"), std::string("missing_1x1.data\n"), many})
        EXPECT_FALSE(loadContents("rvkPyramidLevel_v2", "p.csv", bad, pyramid));
}

TEST_F(DataFile, MemoryThatCannotBeHadIsAFailure)
{
    // A sparse file of the largest size that is not absurd: twice that is asked of the shared memory.
    const auto file = m_directory.path() / "a_1073741824x1.data";
    writeFile(file, "");
    std::filesystem::resize_file(file, 1u << 30);
    EXPECT_FALSE(load("unsignedchar[]", "a_1073741824x1.data", array()));
    EXPECT_TRUE(logMentions("cannot be loaded"));
}

} // namespace
