// Vector implementations of local binary patterns.
#include "cpu/ravikLbpC.h"
#include "vecta/simd/bits.h"
#include "vecta/simd/rows.h"
#include "vecta/vecta.h"

#include <ravik/lbp.h>

namespace rvk::vecta::RVK_ISA {
namespace {

using Bytes = Vec<uint8_t>;

// ---- eight points around a pixel ------------------------------------------------------------------------------------
//
// At a radius of 1, the points beside, above and below a pixel are not darker when the neighbour there is not: the pixel
// itself has the other part of the weights.
//
// A point on a diagonal lies between four pixels that make a square
//
//     a b
//     c d
//
// and each of them is the centre of one such point. With A = 3474775 and B = 8388264, that of a is not darker when
//
//     A * (b + c - 2a) + B * (d - a) >= 2a - 1020.
//
// The right side lies between -1020 and -510. The left side is never between that and 0, as its values for all bytes show;
// nor does its sign change when A / B is any other number between 99 / 239 and 29 / 70. So with x = b + c - a - d and
// r = A / (A + B), between 99 / 338 and 29 / 99,
//
//     d - a >= -r * x,  and alike  a - d >= -r * x  for d,  c - b >= r * x  for b,  b - c >= r * x  for c:
//
// the four have one product in common, whose fraction does not count once it is rounded down. Clamping both sides to
// signed bytes changes no answer, since differences of 128 and products of 128 leave no room for the other one.

// Pixels as signed bytes: their order is the same, and their differences saturate in one operation.
RVK_INLINE Vec<int8_t> toSigned(Bytes v)
{
    return bitCast<int8_t>(v ^ splat<uint8_t>(128));
}

// How far pixels are above those to the right of them, and what is made of two such rows: the products r * x and r * -x.
using Falls = Vecs<int16_t, 2>;

#if defined(__AVX512BW__)

// Pixels in even columns and in odd ones, 75 times as large. Then x saturates where a product would leave a signed byte,
// and each product is an upper byte: of multiplyRounded, or of its negative, which is a plain difference. On Intel's
// processors comparisons have the only port for shuffles, on AMD's the two for products and for sums that saturate, so
// there is little of either.
RVK_INLINE Falls fallsOf(Bytes left, Bytes right)
{
    const Vec<int8_t> weights = bitCast<int8_t>(splatPair(75, -75));
    return {dotPairs(left, weights), dotPairs(right, weights)};
}

RVK_INLINE Vecs<int8_t, 2> productsOf(const Falls& above, const Falls& below)
{
    const Vec<int16_t> even = subSat(below[0], above[0]), odd = subSat(below[1], above[1]);
    const Vec<int16_t> ratio = splat<int16_t>(32761), none = zero<int16_t>();
    const Vec<int16_t> ofEven = multiplyRounded(even, ratio), ofOdd = multiplyRounded(odd, ratio);
    return {bitCast<int8_t>(joinUpperHalves(ofEven, ofOdd)),
            bitCast<int8_t>(joinUpperHalves(none - ofEven, none - ofOdd))};
}

#else

RVK_INLINE Falls fallsOf(Bytes left, Bytes right)
{
    return subtractWideInLanes(left, right);
}

RVK_INLINE Vecs<int8_t, 2> productsOf(const Falls& above, const Falls& below)
{
    const Falls x = {below[0] - above[0], below[1] - above[1]};
    constexpr int ratio = 19196 / 2; // of 2^15
    return {narrowSatInLanes<int8_t>(Vecs<int16_t, 2>{multiplyQ15<ratio>(x[0]), multiplyQ15<ratio>(x[1])}),
            narrowSatInLanes<int8_t>(Vecs<int16_t, 2>{multiplyQ15<-ratio>(x[0]), multiplyQ15<-ratio>(x[1])})};
}

#endif

// A row of pixels and those to the right of them.
struct Row
{
    Vec<int8_t> left, right;
    Falls falls;

    RVK_INLINE static Row at(const uint8_t* p)
    {
        const Bytes first = load(p), second = load(p + 1);
        return {toSigned(first), toSigned(second), fallsOf(first, second)};
    }
};

// A row of squares has two answers for the pixels in each of its corners, each a bit of their codes: these ones.
constexpr unsigned kOfUpperLeft = 0xc1, kOfLowerLeft = 0x30, kOfLower = 0x38;

// The answers say where a point is darker, but these where it is not: -v > w is the contrary of w > ~v, where nothing
// saturates.
constexpr uint8_t kNotDarker = 0x82;

// Gives `take` the answers, clockwise from the point below, with the numbers of their bits.
template <class Take>
RVK_INLINE void answer(const Row& above, const Row& below, Take take)
{
    const Vec<int8_t> a = above.left, b = above.right, c = below.left, d = below.right;
    const Vecs<int8_t, 2> products = productsOf(above.falls, below.falls);
    const Vec<int8_t> ofX = products[0], ofMinusX = products[1];
    const Vec<int8_t> falling = subSat(d, a), rising = subSat(c, b);
    take(Constant<0>{}, greater(a, c));
    take(Constant<1>{}, greater(rising, ~ofMinusX));
    take(Constant<2>{}, greater(b, a));
    take(Constant<3>{}, greater(falling, ofX));
    take(Constant<4>{}, greater(c, a));
    take(Constant<5>{}, greater(rising, ofMinusX));
    take(Constant<6>{}, greater(a, b));
    take(Constant<7>{}, greater(falling, ~ofX));
}

// The codes, 1 for what is not darker, come from four squares.
class EightAroundPixel
{
public:
    static constexpr size_t step = Bytes::lanes - 1, columns = 3;

    // The rows above the first output, the upper one first.
    RVK_INLINE void prime(const uint8_t* upper, const uint8_t* lower)
    {
        m_row = Row::at(upper);
        next(lower);
    }

    // The row below an output: its codes, but in the last lane.
    RVK_INLINE Bytes next(const uint8_t* p)
    {
        const Row below = Row::at(p);
        Vec<int8_t> bits = zero<int8_t>();
        answer(m_row, below, [&](auto i, Mask<int8_t> darker) RVK_INLINE_LAMBDA {
            bits = withBits(bits, darker, splat(static_cast<int8_t>(1u << i)));
        });
        const Bytes squares = bitCast<uint8_t>(bits), toTheRight = extract<1>(squares, squares);
        const Bytes inLowerSquares = selectBits(splat(uint8_t{kOfUpperLeft}), toTheRight, squares);
        const Bytes answers = selectBits(splat(uint8_t{kOfLower}), m_fromAbove, inLowerSquares);
        m_fromAbove = selectBits(splat(uint8_t{kOfLowerLeft}), toTheRight, squares);
        m_row = below;
        return answers ^ splat(static_cast<uint8_t>(~kNotDarker));
    }

private:
    Row m_row = {};
    Bytes m_fromAbove = {}; // what the squares above say of the row
};

// Of pictures narrower than a column.
RVK_INLINE void codeNarrow(size_t width, size_t height, Plane<const uint8_t> src, Plane<uint8_t> dst)
{
    using Kernel = EightAroundPixel;
    Kernel kernel;
    uint8_t rows[2][Kernel::step + Kernel::columns - 1] = {};
    const auto copy = [&](size_t y) -> const uint8_t* {
        __builtin_memcpy(rows[y & 1], src.row(y), width + Kernel::columns - 1);
        return rows[y & 1];
    };
    kernel.prime(copy(0), copy(1));
    for (size_t y = 0; y < height; ++y)
        storePartial(dst.row(y), kernel.next(copy(y + 2)), width);
}

#if defined(__AVX512BW__)

constexpr bool isOfLeftCorner(unsigned bit)
{
    return ((kOfUpperLeft | kOfLowerLeft) >> bit & 1) != 0;
}

// The answers of a column of squares. Stores are free here: through memory, codes take a quarter less than by withBits,
// and that of the last lane finds its answers in the next column, so that columns are as wide as vectors.
class AnswersOfColumn
{
public:
    static constexpr size_t mostRows = 24; // that the first-level cache keeps for the next columns

    // Of the squares above and below rows `top` to `bottom` of the outputs.
    RVK_INLINE void take(size_t x, size_t top, size_t bottom, Plane<const uint8_t> src)
    {
        Row above = Row::at(src.row(top) + x);
        for (size_t y = top; y <= bottom; ++y) {
            const uint8_t* const p = src.row(y + 1) + x;
            prefetch(p + 2 * Bytes::lanes, 1);
            const Row below = Row::at(p);
            uint64_t(*const rows)[8] = m_ofRows + (y - top);
            answer(above, below, [=](auto i, Mask<int8_t> darker) RVK_INLINE_LAMBDA {
                rows[kOfLower >> i & 1][i] = laneBits(Mask<uint8_t>{darker.bits});
            });
            above = below;
        }
    }

    // The codes of one of these rows, given the column beside this one.
    RVK_INLINE Bytes codes(size_t row, const AnswersOfColumn& next) const
    {
        return gatherBits<kNotDarker>(m_ofRows[row + 1], next.m_ofRows[row + 1], kFirst);
    }

private:
    static constexpr uint64_t kFirst[8] = {isOfLeftCorner(0), isOfLeftCorner(1), isOfLeftCorner(2), isOfLeftCorner(3),
                                           isOfLeftCorner(4), isOfLeftCorner(5), isOfLeftCorner(6), isOfLeftCorner(7)};

    alignas(kBytes) uint64_t m_ofRows[mostRows + 2][8];
};

// Down columns of squares, in blocks of rows.
RVK_NOINLINE void codeEightAround(size_t width, size_t height, Plane<const uint8_t> src, Plane<uint8_t> dst)
{
    constexpr size_t lanes = Bytes::lanes, most = AnswersOfColumn::mostRows;
    const size_t squares = width + 1;
    if (squares < lanes)
        return codeNarrow(width, height, src, dst);
    AnswersOfColumn columns[2];
    for (size_t top = 0; top < height; top += most) {
        const size_t bottom = least(top + most, height);
        size_t x = 0, number = 0;
        columns[0].take(x, top, bottom, src);
        while (x + lanes < squares) {
            const size_t nextX = least(x + lanes, squares - lanes); // the last column may overlap the one before it
            const AnswersOfColumn& column = columns[number];
            AnswersOfColumn& next = columns[1 - number];
            next.take(nextX, top, bottom, src);
            for (size_t y = top; y < bottom; ++y) {
                uint8_t* const to = dst.row(y) + x;
                prefetch(to + 2 * lanes, 1);            // stores down a column would wait for their lines
                store(to, column.codes(y - top, next)); // the last lane is wrong where the next column overlaps it
            }
            x = nextX;
            number = 1 - number;
        }
        const AnswersOfColumn& last = columns[number];
        for (size_t y = top; y < bottom; ++y)
            storePartial(dst.row(y) + x, last.codes(y - top, last), width - x);
    }
}

#else

constexpr size_t kBlockRows = 32; // that the first-level cache keeps for the next column

// Down columns as wide as the kernel's step, in blocks of rows.
RVK_NOINLINE void codeEightAround(size_t width, size_t height, Plane<const uint8_t> src, Plane<uint8_t> dst)
{
    using Kernel = EightAroundPixel;
    constexpr size_t step = Kernel::step;
    if (width < step)
        return codeNarrow(width, height, src, dst);
    for (size_t top = 0; top < height; top += kBlockRows) {
        const size_t bottom = least(top + kBlockRows, height);
        for (size_t next = 0; next < width; next += step) {
            const size_t x = least(next, width - step);     // the last column may overlap the one before it
            const bool hasRoom = x + Bytes::lanes <= width; // for the last lane, which the next column writes
            Kernel kernel;
            kernel.prime(src.row(top) + x, src.row(top + 1) + x);
            for (size_t y = top; y < bottom; ++y) {
                const uint8_t* const p = src.row(y + 2) + x;
                prefetch(p + 2 * step, 1);
                const Bytes codes = kernel.next(p);
                uint8_t* const to = dst.row(y) + x;
                prefetch(to + 2 * step, 1); // for the next column: stores down a column would wait for their lines
                if (hasRoom)
                    store(to, codes);
                else
                    storePartial(to, codes, step);
            }
        }
    }
}

#endif

// ---- any point ------------------------------------------------------------------------------------------------------

// Where the pixels around a point are, relative to the centre, and their weights.
struct Point
{
    ptrdiff_t offsets[4];
    uint32_t weights[4];
    enum class Kind : uint8_t { pixel, heavy, any } kind;
    size_t pixel, minor; // that of all weight, or of most of it, and the only other one

    RVK_INLINE Point(const CirclePoint& p, size_t stride)
        : offsets{offset(p.x0, p.y0, stride), offset(p.x1, p.y0, stride), offset(p.x0, p.y1, stride),
                  offset(p.x1, p.y1, stride)},
          weights{p.w00, p.w01, p.w10, p.w11}, kind(Kind::any), pixel(0), minor(0)
    {
        for (size_t i = 1; i < 4; ++i)
            if (weights[i] > weights[pixel])
                pixel = i;
        for (size_t i = 0; i < 4; ++i)
            if (i != pixel && weights[i] >= weights[minor == pixel ? i : minor])
                minor = i;
        if (weights[pixel] == 1u << 24)
            kind = Kind::pixel;
        // Less than 1 of 256 parts: the other pixel decides where the heavy one equals the centre.
        else if (weights[pixel] + weights[minor] == 1u << 24 && weights[minor] < 1u << 16)
            kind = Kind::heavy;
    }

private:
    RVK_INLINE static ptrdiff_t offset(int32_t x, int32_t y, size_t stride)
    {
        return static_cast<ptrdiff_t>(y) * static_cast<ptrdiff_t>(stride) + x;
    }
};

// The sign of the weighted sum less the centre, in 32 bits, of which it needs all: so both are halved, and the centre
// has no last bit to lose.
template <class Take>
RVK_INLINE Vec<int8_t> differenceOf(const Point& point, Bytes centre, Take take)
{
    const Vecs<uint16_t, 2> pixels[4] = {widenInLanes(take(point.offsets[0])), widenInLanes(take(point.offsets[1])),
                                         widenInLanes(take(point.offsets[2])), widenInLanes(take(point.offsets[3]))};
    const Vecs<uint16_t, 2> centres = widenInLanes(centre);
    const auto ofHalf = [&](size_t half) RVK_INLINE_LAMBDA {
        const Vec<uint32_t> bias = splat(kBiasOfCircle);
        Vecs<uint32_t, 2> sums = {bias, bias};
        unrolled<4>([&](auto i) RVK_INLINE_LAMBDA {
            const Vec<uint32_t> weight = splat(point.weights[i]);
            sums = both(sums, widenInLanes(pixels[i][half]),
                        [=](auto sum, auto pixel) RVK_INLINE_LAMBDA { return sum + pixel * weight; });
        });
        return narrowSatInLanes<int16_t>(
            both(sums, widenInLanes(centres[half]), [](auto sum, auto c) RVK_INLINE_LAMBDA {
                return bitCast<int32_t>(shiftRight(sum, 1) - shiftLeft(c, 23));
            }));
    };
    return narrowSatInLanes<int8_t>(Vecs<int16_t, 2>{ofHalf(0), ofHalf(1)});
}

template <class Take>
RVK_INLINE Mask<uint8_t> isNotDarker(const Point& point, Bytes centre, Take take)
{
    switch (point.kind) {
    case Point::Kind::pixel:
        return ~less(take(point.offsets[point.pixel]), centre);
    case Point::Kind::heavy: {
        const Bytes pixel = take(point.offsets[point.pixel]), minor = take(point.offsets[point.minor]);
        return greater(pixel, centre) | (equal(pixel, centre) & ~less(minor, centre));
    }
    default: {
        const Vec<uint8_t> sign = bitCast<uint8_t>(differenceOf(point, centre, take));
        return less(sign, splat<uint8_t>(128));
    }
    }
}

// A vector of codes of the pixels that take(0) gives.
template <class Take>
RVK_INLINE Bytes codesOf(const Point* points, size_t neighbors, Take take)
{
    const Bytes centre = take(0);
    Bytes codes = zero<uint8_t>();
    for (size_t k = 0; k < neighbors; ++k)
        codes = codes | (toVec(isNotDarker(points[k], centre, take)) & splat(static_cast<uint8_t>(1u << k)));
    return codes;
}

RVK_NOINLINE void codeRow(const uint8_t* centres, size_t width, const Point* points, size_t neighbors, uint8_t* dst)
{
    const auto whole = [&](size_t x) RVK_INLINE_LAMBDA {
        return codesOf(points, neighbors,
                       [=](ptrdiff_t offset) RVK_INLINE_LAMBDA { return load(centres + x + offset); });
    };
    if (width < Bytes::lanes) {
        const auto take = [=](ptrdiff_t offset) RVK_INLINE_LAMBDA { return loadPartial(centres + offset, width); };
        storePartial(dst, codesOf(points, neighbors, take), width);
        return;
    }
    for (size_t x = 0; x < width; x += Bytes::lanes) {
        x = least(x, width - Bytes::lanes);
        store(dst + x, whole(x));
    }
}

} // namespace

rvkStatus rvkGLBPu8V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint32_t radius,
                     uint32_t neighbors, uint8_t* dst, uint32_t dstStride)
{
    const Plane from{src, srcStride};
    const Plane to{dst, dstStride};
    const size_t width = srcWidth - 2 * radius, height = srcHeight - 2 * radius;
    if (neighbors == 8 && radius == 1) {
        codeEightAround(width, height, from, to);
        return RAVIK_SUCCESS;
    }
    const auto pointAt = [=](uint32_t k) {
        return Point(circlePoint(neighbors, k < neighbors ? k : 0, radius), srcStride);
    };
    const Point points[8] = {pointAt(0), pointAt(1), pointAt(2), pointAt(3),
                             pointAt(4), pointAt(5), pointAt(6), pointAt(7)};
    for (size_t y = 0; y < height; ++y)
        codeRow(from.row(y + radius) + radius, width, points, neighbors, to.row(y));
    return RAVIK_SUCCESS;
}

} // namespace rvk::vecta::RVK_ISA
