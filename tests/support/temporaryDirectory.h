// Files for the time of a test.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace test {

inline std::string readFile(const std::filesystem::path& path)
{
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

inline void writeFile(const std::filesystem::path& path, const std::string& text)
{
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << text;
}

// A directory of its own that is gone after the test.
class TemporaryDirectory
{
public:
    TemporaryDirectory()
    {
        std::string pattern = std::filesystem::temp_directory_path() / "ravikXXXXXX";
        if (!mkdtemp(pattern.data()))
            abort();
        m_path = pattern;
    }
    ~TemporaryDirectory() { std::filesystem::remove_all(m_path); }
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    const std::filesystem::path& path() const { return m_path; }
    std::string string() const { return m_path.string(); }
    std::string file(const std::string& name) const { return m_path / name; }

private:
    std::filesystem::path m_path;
};

} // namespace test
