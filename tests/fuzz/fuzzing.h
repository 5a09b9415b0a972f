// What the fuzz targets share: a silent log, a directory for the files that they make of their input, and the input as a
// sequence of numbers. One target is one unit.
#pragma once

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <span>
#include <string>
#include <type_traits>
#include <unistd.h>
#include <vector>

namespace fuzz {

inline unsigned logLines = 0;
inline std::string subject; // what is being tried

// Ends the process, which the fuzzer reports with the input, unless `condition` holds.
inline void require(bool condition, const char* what)
{
    if (condition)
        return;
    fprintf(stderr, "fuzz: %s: not so: %s\n", subject.c_str(), what);
    abort();
}

// A directory that is gone with the process.
class Directory
{
public:
    Directory()
    {
        if (!mkdtemp(m_path))
            abort();
    }
    ~Directory()
    {
        for (const std::string& name : m_files)
            unlink(file(name).c_str());
        rmdir(m_path);
    }
    Directory(const Directory&) = delete;
    Directory& operator=(const Directory&) = delete;

    const char* path() const { return m_path; }
    std::string file(const std::string& name) const { return std::string(m_path) + "/" + name; }
    void write(const std::string& name, std::span<const uint8_t> bytes)
    {
        if (std::find(m_files.begin(), m_files.end(), name) == m_files.end())
            m_files.push_back(name);
        FILE* const stream = fopen(file(name).c_str(), "wb");
        if (!stream || fwrite(bytes.data(), 1, bytes.size(), stream) != bytes.size() || fclose(stream) != 0)
            abort();
    }
    void remove(const std::string& name) const { unlink(file(name).c_str()); }

private:
    char m_path[32] = "/tmp/ravikFuzzXXXXXX";
    std::vector<std::string> m_files;
};

// Takes numbers from the front of the input; behind its end there are zeros.
class Input
{
public:
    explicit Input(std::span<const uint8_t> bytes) : m_bytes(bytes) {}

    template <class T>
    T take()
    {
        static_assert(std::is_arithmetic_v<T>);
        uint8_t bytes[sizeof(T)] = {};
        const size_t count = std::min(sizeof bytes, m_bytes.size());
        std::copy_n(m_bytes.begin(), count, bytes);
        m_bytes = m_bytes.subspan(count);
        T value;
        memcpy(&value, bytes, sizeof value);
        return value;
    }
    // 0 .. bound - 1
    uint32_t below(size_t bound) { return static_cast<uint32_t>(take<uint16_t>() % bound); }
    bool oneIn(uint8_t cases) { return take<uint8_t>() % cases == 1; }
    std::span<const uint8_t> rest() const { return m_bytes; }

private:
    std::span<const uint8_t> m_bytes;
};

} // namespace fuzz

// Takes the place of the platform's log: bad input is logged line by line, and nobody reads it here.
extern "C" int __android_log_print(int, const char*, const char*, ...)
{
    fuzz::logLines++;
    return 0;
}
