// Points for functions that refuse those of most random numbers: made of bytes, in and around small pictures.
#pragma once

#include <cstdint>

constexpr uint32_t kTestPoints = 32;

class TestPolygon
{
public:
    explicit TestPolygon(const int8_t* coordinates) : m_isThere(coordinates != nullptr)
    {
        for (uint32_t i = 0; m_isThere && i < 2 * kTestPoints; i++)
            m_points[i] = 2 * coordinates[i] + 100;
    }
    const int32_t* points() const { return m_isThere ? m_points : nullptr; }

private:
    bool m_isThere;
    int32_t m_points[2 * kTestPoints] = {};
};
