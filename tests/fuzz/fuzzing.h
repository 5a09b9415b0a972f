// What the fuzz targets share: a silent log, and the input as a sequence of numbers or a file. One target is one unit.
#pragma once

#include "../support/temporaryDirectory.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <span>
#include <string>
#include <type_traits>
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

inline void writeFile(const std::string& path, std::span<const uint8_t> bytes)
{
    test::writeFile(path, {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

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
