// The masks of the corner detectors.
#pragma once

#include <cstddef>
#include <cstdint>

namespace rvk {

// A packed picture of bits, the leftmost pixel in the most significant one, a row after the other from whole bytes on.
// A 1 excludes a pixel. Its size is that of the picture, or 2, 4 or 8 times or a 2nd, 4th or 8th of it, in both
// directions alike: a larger mask says of each pixel what its block's top left bit does, a smaller one has a bit for a
// block of pixels. Test it before use: no other size is a mask of the picture. (Always inline, because vector
// implementations may not leave shared definitions behind.)
#define RVK_ALWAYS_INLINE inline __attribute__((always_inline))
class BitMask
{
public:
    RVK_ALWAYS_INLINE BitMask(const uint8_t* bits, uint32_t maskWidth, uint32_t maskHeight, uint32_t srcWidth,
                              uint32_t srcHeight)
        : m_bits(bits), m_rowBytes(size_t{maskWidth / 8} + (maskWidth % 8 != 0))
    {
        for (uint32_t shift = 0; shift <= 3 && !m_fits; ++shift) {
            if (isTimes(maskWidth, srcWidth, shift) && isTimes(maskHeight, srcHeight, shift)) {
                m_fits = true;
                m_enlarging = shift;
            } else if (isTimes(srcWidth, maskWidth, shift) && isTimes(srcHeight, maskHeight, shift)) {
                m_fits = true;
                m_reducing = shift;
            }
        }
    }

    RVK_ALWAYS_INLINE explicit operator bool() const { return m_fits; }

    // Whether the mask takes this pixel of the picture out.
    RVK_ALWAYS_INLINE bool excludes(uint32_t x, uint32_t y) const
    {
        const uint32_t column = x << m_enlarging >> m_reducing, row = y << m_enlarging >> m_reducing;
        return m_bits[row * m_rowBytes + column / 8] >> (7 - column % 8) & 1;
    }

private:
    static RVK_ALWAYS_INLINE bool isTimes(uint32_t larger, uint32_t smaller, uint32_t shift)
    {
        return larger == uint64_t{smaller} << shift;
    }

    const uint8_t* m_bits;
    size_t m_rowBytes;
    uint32_t m_enlarging = 0, m_reducing = 0; // shifts that make coordinates of the mask from those of the picture
    bool m_fits = false;
};
#undef RVK_ALWAYS_INLINE

} // namespace rvk
