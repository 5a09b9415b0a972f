// The vector layer beside its scalar definitions.
#include "simd/kernels.h"

#include "vecta/simd/bits.h"
#include "vecta/simd/blocks.h"
#include "vecta/simd/chroma.h"
#include "vecta/simd/doubles.h"
#include "vecta/simd/runningSums.h"
#include "vecta/simd/scaling.h"
#include "vecta/simd/tables.h"
#include "vecta/simd/tiles.h"

namespace rvk::vecta::RVK_ISA {
namespace {

using test::SimdGroup;
using test::SimdOperation;
using test::SimdPartial;
using Draw = SimdOperation::Draw;

template <class T>
constexpr const char* kName = "";
template <>
constexpr const char* kName<uint8_t> = "u8";
template <>
constexpr const char* kName<int8_t> = "s8";
template <>
constexpr const char* kName<uint16_t> = "u16";
template <>
constexpr const char* kName<int16_t> = "s16";
template <>
constexpr const char* kName<uint32_t> = "u32";
template <>
constexpr const char* kName<int32_t> = "s32";
template <>
constexpr const char* kName<float> = "f32";

template <class T>
constexpr size_t kLanes = Vec<T>::lanes;

// NEON of 32-bit Arm flushes subnormals; every other arithmetic keeps them.
#if RVK_GENERIC_FLOAT
constexpr Draw kFloats = Draw::floats;
#else
constexpr Draw kFloats = Draw::normalFloats;
#endif

// ---- ways to write an operation down --------------------------------------------------------------------------------

// vector(in, out) does what out[i] = scalar(in, i) does for all i.
template <class In, class Out, size_t inputs, size_t outputs, class Vector, class Scalar>
constexpr SimdOperation mapping(const char* name, Vector, Scalar)
{
    return {name,
            kName<In>,
            inputs * sizeof(In),
            outputs * sizeof(Out),
            sizeof(In),
            isSame<In, float> ? kFloats : Draw::any,
            true,
            [](const void* in, void* out) { Vector{}(static_cast<const In*>(in), static_cast<Out*>(out)); },
            [](const void* in, void* out) {
                for (size_t i = 0; i < outputs; ++i)
                    static_cast<Out*>(out)[i] = static_cast<Out>(Scalar{}(static_cast<const In*>(in), i));
            }};
}

template <class T, class Vector, class Scalar>
constexpr SimdOperation unary(const char* name, Vector, Scalar)
{
    return mapping<T, T, kLanes<T>, kLanes<T>>(
        name, [](const T* in, T* out) { store(out, Vector{}(load(in))); },
        [](const T* in, size_t i) { return Scalar{}(in[i]); });
}

template <class T, class Vector, class Scalar>
constexpr SimdOperation binary(const char* name, Vector, Scalar)
{
    return mapping<T, T, 2 * kLanes<T>, kLanes<T>>(
        name, [](const T* in, T* out) { store(out, Vector{}(load(in), load(in + kLanes<T>))); },
        [](const T* in, size_t i) { return Scalar{}(in[i], in[i + kLanes<T>]); });
}

// A formula on vectors and the same on elements; its text is its name.
#define UNARY(T, vector, scalar) \
    unary<T>(                    \
        #vector, [](Vec<T> a) { return vector; }, [](T a) { return scalar; })
#define BINARY(T, vector, scalar) \
    binary<T>(                    \
        #vector, [](Vec<T> a, Vec<T> b) { return vector; }, [](T a, T b) { return scalar; })

// Which not-a-number a calculation gives is not said.
constexpr SimdOperation calculation(SimdOperation o)
{
    o.sameNan = false;
    return o;
}

constexpr SimdOperation drawing(Draw draw, SimdOperation o)
{
    o.draw = draw;
    return o;
}

template <size_t count>
constexpr SimdGroup group(const SimdOperation (&operations)[count])
{
    return {operations, count};
}

// ---- scalar helpers -------------------------------------------------------------------------------------------------

template <class T>
constexpr T saturate(int64_t x)
{
    constexpr int64_t top = isSigned<T> ? (int64_t(1) << (sizeof(T) * 8 - 1)) - 1 : (int64_t(1) << (sizeof(T) * 8)) - 1;
    constexpr int64_t bottom = isSigned<T> ? -top - 1 : 0;
    return static_cast<T>(x < bottom ? bottom : x > top ? top : x);
}

// Modulo the width of whatever it is assigned to.
template <class T>
constexpr uint64_t wrapping(T x)
{
    return static_cast<uint64_t>(static_cast<int64_t>(x));
}

uint32_t bitsOf(float x)
{
    uint32_t bits;
    __builtin_memcpy(&bits, &x, sizeof bits);
    return bits;
}

float floatOf(uint32_t bits)
{
    float x;
    __builtin_memcpy(&x, &bits, sizeof x);
    return x;
}

// ---- operations on any element --------------------------------------------------------------------------------------

template <class T>
SimdGroup moves()
{
    constexpr size_t n = kLanes<T>;
    constexpr size_t block = kBlock<T>;
    static constexpr SimdOperation list[] = {
        mapping<T, T, n, n>(
            "reverse", [](const T* in, T* out) { store(out, reverse(load(in))); },
            [](const T* in, size_t i) { return in[n - 1 - i]; }),
        mapping<T, T, 1, n>(
            "splat", [](const T* in, T* out) { store(out, splat(*in)); }, [](const T* in, size_t) { return *in; }),
        mapping<T, T, 2 * n, n>(
            "extract 0", [](const T* in, T* out) { store(out, extract<0>(load(in), load(in + n))); },
            [](const T* in, size_t i) { return in[i]; }),
        mapping<T, T, 2 * n, n>(
            "extract 1", [](const T* in, T* out) { store(out, extract<1>(load(in), load(in + n))); },
            [](const T* in, size_t i) { return in[i + 1]; }),
        mapping<T, T, 2 * n, n>(
            "extract n / 2", [](const T* in, T* out) { store(out, extract<n / 2>(load(in), load(in + n))); },
            [](const T* in, size_t i) { return in[i + n / 2]; }),
        mapping<T, T, 2 * n, n>(
            "extract n - 1", [](const T* in, T* out) { store(out, extract<n - 1>(load(in), load(in + n))); },
            [](const T* in, size_t i) { return in[i + n - 1]; }),
        mapping<T, T, 2 * n, n>(
            "extract n", [](const T* in, T* out) { store(out, extract<n>(load(in), load(in + n))); },
            [](const T* in, size_t i) { return in[i + n]; }),
        mapping<T, T, 2 * n, 2 * n>(
            "zip", [](const T* in, T* out) { store(out, zip(load(in), load(in + n))); },
            [](const T* in, size_t i) { return in[i / 2 + i % 2 * n]; }),
        mapping<T, T, 2 * n, n>(
            "unzipEven", [](const T* in, T* out) { store(out, unzipEven(load(in), load(in + n))); },
            [](const T* in, size_t i) { return in[2 * i]; }),
        mapping<T, T, 2 * n, n>(
            "unzipOdd", [](const T* in, T* out) { store(out, unzipOdd(load(in), load(in + n))); },
            [](const T* in, size_t i) { return in[2 * i + 1]; }),
        mapping<T, T, 2 * n, 2 * n>(
            "zipInLanes", [](const T* in, T* out) { store(out, zipInLanes(load(in), load(in + n))); },
            [](const T* in, size_t i) {
                const size_t half = i / n * (block / 2);
                return in[i % n / block * block + half + i % block / 2 + i % 2 * n];
            }),
        mapping<T, T, 2 * n, 2 * n>(
            "load2", [](const T* in, T* out) { store(out, load2(in)); },
            [](const T* in, size_t i) { return in[i % n * 2 + i / n]; }),
        mapping<T, T, 3 * n, 3 * n>(
            "load3", [](const T* in, T* out) { store(out, load3(in)); },
            [](const T* in, size_t i) { return in[i % n * 3 + i / n]; }),
        mapping<T, T, 4 * n, 4 * n>(
            "load4", [](const T* in, T* out) { store(out, load4(in)); },
            [](const T* in, size_t i) { return in[i % n * 4 + i / n]; }),
        mapping<T, T, 2 * n, 2 * n>(
            "store2", [](const T* in, T* out) { store2(out, loadVecs<2>(in)); },
            [](const T* in, size_t i) { return in[i % 2 * n + i / 2]; }),
        mapping<T, T, 3 * n, 3 * n>(
            "store3", [](const T* in, T* out) { store3(out, loadVecs<3>(in)); },
            [](const T* in, size_t i) { return in[i % 3 * n + i / 3]; }),
        mapping<T, T, 4 * n, 4 * n>(
            "store4", [](const T* in, T* out) { store4(out, loadVecs<4>(in)); },
            [](const T* in, size_t i) { return in[i % 4 * n + i / 4]; }),
    };
    return group(list);
}

// The lane where the two halves of the input first agree, n when they never do.
template <class T>
size_t firstEqual(const T* in)
{
    size_t i = 0;
    while (i < kLanes<T> && !(in[i] == in[i + kLanes<T>]))
        ++i;
    return i;
}

template <class T>
bool allEqual(const T* in)
{
    for (size_t i = 0; i < kLanes<T>; ++i)
        if (!(in[i] == in[i + kLanes<T>]))
            return false;
    return true;
}

template <class T>
SimdGroup comparisons()
{
    constexpr size_t n = kLanes<T>;
    static constexpr SimdOperation list[] = {
        BINARY(T, select(equal(a, b), splat(T(1)), b), a == b ? T(1) : b),
        BINARY(T, select(greater(a, b), a, splat(T(2))), a > b ? a : T(2)),
        BINARY(T, select(less(a, b), a, splat(T(2))), a < b ? a : T(2)),
        BINARY(T, select(greater(a, b) | equal(a, splat(T(1))), a, b), a > b || a == T(1) ? a : b),
        BINARY(T, select(~less(a, b) & ~equal(a, splat(T(1))), a, b), !(a < b) && !(a == T(1)) ? a : b),
        BINARY(T, select(less(a, b) ^ less(b, splat(T(1))), a, b), (a < b) != (b < T(1)) ? a : b),
        BINARY(T, toVec(less(a, b)) & b, a < b ? b : T(0)),
        mapping<T, uint32_t, 2 * n, 3>(
            "any, all, firstTrue",
            [](const T* in, uint32_t* out) {
                const Mask<T> m = equal(load(in), load(in + n));
                out[0] = any(m);
                out[1] = all(m);
                out[2] = static_cast<uint32_t>(any(m) ? firstTrue(m) : n);
            },
            [](const T* in, size_t i) { return i == 0   ? firstEqual(in) < n
                                               : i == 1 ? allEqual(in)
                                                        : firstEqual(in); }),
    };
    return group(list);
}

template <class T>
T leastOrMost(const T* in, bool least)
{
    T r = in[0];
    for (size_t i = 1; i < kLanes<T>; ++i)
        if (least ? in[i] < r : r < in[i])
            r = in[i];
    return r;
}

template <class T>
SimdGroup integers()
{
    constexpr size_t n = kLanes<T>;
    constexpr size_t width = sizeof(T) * 8;
    static constexpr SimdOperation list[] = {
        BINARY(T, a + b, wrapping(a) + wrapping(b)),
        BINARY(T, a - b, wrapping(a) - wrapping(b)),
        BINARY(T, a * b, wrapping(a) * wrapping(b)),
        BINARY(T, (a & ~b) | (b ^ splat(T(5))), (a & ~b) | (b ^ T(5))),
        BINARY(T, min(a, b), a < b ? a : b),
        BINARY(T, max(a, b), a < b ? b : a),
        UNARY(T, shiftLeft(a, 1), wrapping(a) << 1),
        UNARY(T, shiftLeft(a, sizeof(T) * 8 - 1), wrapping(a) << (sizeof(T) * 8 - 1)),
        UNARY(T, shiftRight(a, 1), a >> 1),
        UNARY(T, shiftRight(a, sizeof(T) * 8 - 1), a >> (sizeof(T) * 8 - 1)),
        mapping<T, T, n + 1, 2 * n>( // by a count that is not a constant
            "shifts",
            [](const T* in, T* out) {
                const unsigned count = static_cast<unsigned>(in[n]) % width;
                store(out, shiftLeft(load(in), count));
                store(out + n, shiftRight(load(in), count));
            },
            [](const T* in, size_t i) {
                const unsigned count = static_cast<unsigned>(in[n]) % width;
                return i < n ? static_cast<T>(wrapping(in[i]) << count) : static_cast<T>(in[i - n] >> count);
            }),
        mapping<T, T, 1, n>(
            "iota", [](const T*, T* out) { store(out, iota<T>()); }, [](const T*, size_t i) { return i; }),
        mapping<T, T, n, 2>(
            "reduceMin, reduceMax",
            [](const T* in, T* out) {
                out[0] = reduceMin(load(in));
                out[1] = reduceMax(load(in));
            },
            [](const T* in, size_t i) { return leastOrMost(in, i == 0); }),
    };
    return group(list);
}

// ---- operations on some elements ------------------------------------------------------------------------------------

template <class T>
SimdGroup saturating()
{
    static constexpr SimdOperation list[] = {
        BINARY(T, addSat(a, b), saturate<T>(a + b)),
        BINARY(T, subSat(a, b), saturate<T>(a - b)),
    };
    return group(list);
}

// The mean of the bytes at `first`, `first` + `next`, and of those in `rows` of them.
uint32_t meanOfRows(const uint8_t* in, size_t first, size_t next, size_t rows)
{
    constexpr size_t rowSize = 4 * kBytes;
    uint32_t sum = 0;
    for (size_t row = 0; row < rows; ++row)
        sum += in[row * rowSize + first] + in[row * rowSize + first + next];
    return rows == 1 ? (sum + 1) >> 1 : (sum + 2) >> 2;
}

// Elements of T.
template <class T>
SimdGroup neighbours()
{
    constexpr size_t n = kBytes, size = sizeof(T);
    static constexpr SimdOperation list[] = {
        mapping<uint8_t, uint8_t, 8 * n, 2 * n>(
            "loadMeans",
            [](const uint8_t* in, uint8_t* out) {
                store(out, loadMeans<T>(in));
                store(out + n, loadMeans<T>(in, in + 4 * n));
            },
            [](const uint8_t* in, size_t i) {
                return meanOfRows(in, i % n / size * 2 * size + i % size, size, 1 + i / n);
            }),
        mapping<uint8_t, uint8_t, n, 2 * n>(
            "storeTwice", [](const uint8_t* in, uint8_t* out) { storeTwice<T>(out, load(in)); },
            [](const uint8_t* in, size_t i) { return in[i / (2 * size) * size + i % size]; }),
    };
    return group(list);
}

template <size_t channels>
constexpr SimdOperation interleavingPastCaches(const char* name)
{
    constexpr size_t n = kBytes;
    return mapping<uint8_t, uint8_t, channels * n, channels * n>(
        name,
        [](const uint8_t* in, uint8_t* out) {
            alignas(64) uint8_t pixels[channels * n];
            storeInterleavedPastCaches(pixels, loadVecs<channels>(in));
            finishWritesPastCaches();
            __builtin_memcpy(out, pixels, sizeof pixels);
        },
        [](const uint8_t* in, size_t i) { return in[i % channels * n + i / channels]; });
}

SimdGroup pairsAndCopies()
{
    constexpr size_t n = kBytes;
    static constexpr SimdOperation list[] = {
        mapping<uint8_t, uint8_t, 8 * n, 4 * n>(
            "load2Means",
            [](const uint8_t* in, uint8_t* out) {
                store(out, load2Means(in));
                store(out + 2 * n, load2Means(in, in + 4 * n));
            },
            [](const uint8_t* in, size_t i) { return meanOfRows(in, i % n * 4 + i / n % 2, 2, 1 + i / (2 * n)); }),
        mapping<uint8_t, uint8_t, 2 * n, 4 * n>(
            "store2Twice", [](const uint8_t* in, uint8_t* out) { store2Twice(out, loadVecs<2>(in)); },
            [](const uint8_t* in, size_t i) { return in[i / 4 + i % 2 * n]; }),
        mapping<uint8_t, uint8_t, 300, 300>(
            "copyPastCaches",
            [](const uint8_t* in, uint8_t* out) {
                copyPastCaches(in, out, 31);
                copyPastCaches(in + 31, out + 31, 269);
                finishWritesPastCaches();
            },
            [](const uint8_t* in, size_t i) { return in[i]; }),
        interleavingPastCaches<2>("storeInterleavedPastCaches of 2"),
        interleavingPastCaches<3>("storeInterleavedPastCaches of 3"),
        interleavingPastCaches<4>("storeInterleavedPastCaches of 4"),
    };
    return group(list);
}

// Windows of a row of three of them begin where bytes say, indices follow.
template <size_t n>
constexpr SimdOperation lookingUpWindows(const char* name)
{
    constexpr size_t windows = kBytes / kWindow, row = 3 * kWindow;
    return mapping<uint8_t, uint8_t, row + windows + kBytes, kBytes>(
        name,
        [](const uint8_t* in, uint8_t* out) {
            uint32_t offsets[windows];
            for (size_t i = 0; i < windows; ++i)
                offsets[i] = in[row + i] % kWindow;
            store(out, lookupWindows<n>(in, offsets, load(in + row + windows) & splat<uint8_t>(n * kWindow - 1)));
        },
        [](const uint8_t* in, size_t i) {
            return in[in[row + i / kWindow] % kWindow + in[row + windows + i] % (n * kWindow)];
        });
}

// Windows of so many bytes, of which the next one overwrites what is too much.
constexpr SimdOperation storingWindows()
{
    constexpr size_t apart = kWindow - 4, windows = kBytes / kWindow;
    return mapping<uint8_t, uint8_t, kBytes, kBytes>(
        "storeWindows",
        [](const uint8_t* in, uint8_t* out) {
            uint8_t stored[2 * kBytes] = {};
            storeWindows(stored, apart, load(in));
            store(out, load(stored));
        },
        [](const uint8_t* in, size_t i) {
            const size_t window = least(i / apart, windows - 1), lane = i - window * apart;
            return lane < kWindow ? in[window * kWindow + lane] : uint8_t{0};
        });
}

// Blocks of 16 bytes, each from one behind where a byte says on.
constexpr SimdOperation loadingBlocks()
{
    constexpr size_t blocks = kBytes / 16;
    return mapping<uint8_t, uint8_t, blocks + 1 + 255 + 16, kBytes>(
        "loadEach16",
        [](const uint8_t* in, uint8_t* out) {
            const uint8_t* addresses[blocks];
            for (size_t i = 0; i < blocks; ++i)
                addresses[i] = in + blocks + in[i];
            store(out, loadEach16(addresses, 1));
        },
        [](const uint8_t* in, size_t i) { return in[blocks + in[i / 16] + 1 + i % 16]; });
}

// Vectors of four dot products, one after the other.
template <class T>
constexpr SimdOperation fourDots()
{
    using Sum = Wider<Wider<T>>;
    return mapping<T, Sum, 8 * kLanes<T>, 4>(
        "addDot, storeSums",
        [](const T* in, Sum* out) {
            const auto pair = loadVecs<8>(in);
            const auto dot = [&](size_t i) { return addDot(zero<Sum>(), pair[2 * i], pair[2 * i + 1]); };
            storeSums(out, Vecs<Sum, 4>{dot(0), dot(1), dot(2), dot(3)});
        },
        [](const T* in, size_t i) {
            const T *a = in + 2 * i * kLanes<T>, *b = a + kLanes<T>;
            Sum sum = 0;
            for (size_t k = 0; k < kLanes<T>; ++k)
                sum += static_cast<Sum>(a[k] * b[k]);
            return sum;
        });
}

SimdGroup single()
{
    static constexpr SimdOperation list[] = {
        BINARY(uint8_t, absDiff(a, b), a < b ? b - a : a - b),
        BINARY(int8_t, absDiff(a, b), a < b ? b - a : a - b),
        BINARY(uint16_t, absDiff(a, b), a < b ? b - a : a - b),
        BINARY(int16_t, absDiff(a, b), a < b ? b - a : a - b),
        BINARY(uint32_t, absDiff(a, b), a < b ? b - a : a - b),
        BINARY(int32_t, absDiff(a, b),
               int32_t(uint32_t(a) - uint32_t(b)) < 0 ? uint32_t(b) - uint32_t(a) : uint32_t(a) - uint32_t(b)),
        UNARY(int8_t, abs(a), a < 0 ? -a : a),
        UNARY(int16_t, abs(a), a < 0 ? -a : a),
        UNARY(int32_t, abs(a), a < 0 ? 0 - uint32_t(a) : uint32_t(a)),
        BINARY(uint8_t, average(a, b), (a + b + 1) >> 1),
        BINARY(uint8_t, bitCast<uint8_t>(halfDifference(a, b)), (a - b) >> 1),
        BINARY(uint8_t, multiplyRounded(a, b), (a * b + 128) >> 8),
        BINARY(uint8_t, narrowSatInLanes<uint8_t>(subtractWideInLanes(a, b)), a > b ? a - b : 0),
        BINARY(uint8_t, narrowSatInLanes<uint8_t>(subtractWideInLanes(b, a)), a < b ? b - a : 0),
        BINARY(uint8_t, selectBits(splat<uint8_t>(0x1e), a, b), (a & 0x1e) | (b & 0xe1)),
        BINARY(int8_t, withBits(a & splat<int8_t>(15), greater(a, b), splat<int8_t>(48)), (a & 15) | (a > b ? 48 : 0)),
#if defined(__AVX512BW__)
        mapping<uint8_t, uint8_t, 2 * kBytes, kBytes>(
            "gatherBits",
            [](const uint8_t* in, uint8_t* out) {
                constexpr uint64_t first[8] = {1, 0, 0, 1, 0, 63, 1, 0};
                uint64_t masks[2][8];
                __builtin_memcpy(masks, in, sizeof masks);
                store(out, gatherBits<0x96>(masks[0], masks[1], first));
            },
            [](const uint8_t* in, size_t i) {
                unsigned bits = 0;
                for (size_t k = 0; k < 8; ++k) {
                    const size_t bit = i + (k == 5 ? 63 : 0x49 >> k & 1);
                    bits |= (in[bit / 64 * kBytes + 8 * k + bit % 64 / 8] >> bit % 8 & 1u) << k;
                }
                return bits ^ 0x69;
            }),
#endif
#if defined(__x86_64__)
        mapping<int16_t, uint8_t, 2 * kLanes<int16_t>, 2 * kLanes<int16_t>>(
            "joinUpperHalves",
            [](const int16_t* in, uint8_t* out) { store(out, joinUpperHalves(load(in), load(in + kLanes<int16_t>))); },
            [](const int16_t* in, size_t i) { return in[i % 2 * kLanes<int16_t> + i / 2] >> 8; }),
        mapping<int32_t, int16_t, 2 * kLanes<int32_t>, 2 * kLanes<int32_t>>(
            "joinUpperHalves",
            [](const int32_t* in, int16_t* out) { store(out, joinUpperHalves(load(in), load(in + kLanes<int32_t>))); },
            [](const int32_t* in, size_t i) { return in[i % 2 * kLanes<int32_t> + i / 2] >> 16; }),
#endif
        BINARY(uint8_t, joinBits<3>(a, b), (a & 0xe0) | b >> 3),
        BINARY(uint8_t, joinBits<6>(a, b), (a & 0xfc) | b >> 6),
        BINARY(uint16_t, average(a, b), (a + b + 1) >> 1),
        BINARY(int16_t, halfSum(a, b), (a + b) >> 1),
        BINARY(int16_t, distance(shiftRight(a, 1), shiftRight(b, 1)),
               (a >> 1) < (b >> 1) ? (b >> 1) - (a >> 1) : (a >> 1) - (b >> 1)),
        BINARY(int16_t, multiplyHigh(a, b), (int32_t(a) * b) >> 16),
        BINARY(uint16_t, multiplyHigh(a, b), (uint32_t(a) * b) >> 16),
        mapping<int16_t, int32_t, 2 * kLanes<int16_t>, kLanes<int32_t>>(
            "dotPairs",
            [](const int16_t* in, int32_t* out) { store(out, dotPairs(load(in), load(in + kLanes<int16_t>))); },
            [](const int16_t* in, size_t i) {
                const int16_t *a = in + 2 * i, *b = a + kLanes<int16_t>;
                return static_cast<uint32_t>(a[0] * b[0]) + static_cast<uint32_t>(a[1] * b[1]);
            }),
        mapping<int16_t, int32_t, 2 * kLanes<int16_t>, kLanes<int32_t>>(
            "addNeighboursTo",
            [](const int16_t* in, int32_t* out) {
                store(out, addNeighboursTo(bitCast<int32_t>(load(in + kLanes<int16_t>)), load(in)));
            },
            [](const int16_t* in, size_t i) {
                const uint16_t* acc = reinterpret_cast<const uint16_t*>(in) + kLanes<int16_t> + 2 * i;
                return (acc[0] | static_cast<uint32_t>(acc[1]) << 16) +
                       static_cast<uint32_t>(in[2 * i] + in[2 * i + 1]);
            }),
        mapping<uint16_t, int32_t, kLanes<uint16_t>, kLanes<int32_t>>(
            "addWeightedHalves",
            [](const uint16_t* in, int32_t* out) {
                const Vec<uint32_t> halves = shiftRight(bitCast<uint32_t>(load(in)), 2) & splat(0x3fff3fffu);
                store(out, addWeightedHalves(addWeightedHalves(splat<int32_t>(5), halves, HalfWeights(65535, -65535)),
                                             halves, HalfWeights(-65536, 32767)));
            },
            [](const uint16_t* in, size_t i) {
                return 5 + (65535 - 65536) * ((in[2 * i] | in[2 * i + 1] << 16) >> 2 & 0x3fff) +
                       (32767 - 65535) * (in[2 * i + 1] >> 2);
            }),
        mapping<int32_t, int32_t, kLanes<int32_t>, kLanes<int32_t>>(
            "storeChosen", // of others, 0, none may be left
            [](const int32_t* in, int32_t* out) {
                const Vec<int32_t> v = load(in);
                int32_t chosen[kLanes<int32_t>];
                const size_t count = storeChosen(chosen, v, less(v, zero<int32_t>()), zero<int32_t>());
                size_t n = 0;
                for (size_t i = 0; i < count; ++i)
                    if (chosen[i] != 0)
                        out[n++] = chosen[i];
                while (n < kLanes<int32_t>)
                    out[n++] = 0;
            },
            [](const int32_t* in, size_t i) {
                for (size_t k = 0; k < kLanes<int32_t>; ++k)
                    if (in[k] < 0 && i-- == 0)
                        return in[k];
                return 0;
            }),
        mapping<int8_t, int32_t, 2 * kLanes<int16_t>, kLanes<int32_t>>(
            "addDotOfPairs",
            [](const int8_t* in, int32_t* out) {
                store(out, addDotOfPairs(splat<int32_t>(7), in, in + kLanes<int16_t>));
            },
            [](const int8_t* in, size_t i) {
                const int8_t *a = in + 2 * i, *b = a + kLanes<int16_t>;
                return 7 + a[0] * b[0] + a[1] * b[1];
            }),
        mapping<int16_t, int32_t, kLanes<int16_t>, kLanes<int16_t>>(
            "orderWidened", [](const int16_t* in, int32_t* out) { store(out, orderWidened(widenInLanes(load(in)))); },
            [](const int16_t* in, size_t i) { return in[i]; }),
        mapping<int16_t, int32_t, 4 * kLanes<int16_t>, kLanes<int16_t>>(
            "dot",
            [](const int16_t* in, int32_t* out) {
                constexpr size_t n = kLanes<int16_t>;
                store(out, dot({load(in), load(in + 2 * n)}, {load(in + n), load(in + 3 * n)}));
            },
            [](const int16_t* in, size_t i) {
                constexpr size_t n = kLanes<int16_t>;
                return static_cast<uint32_t>(in[i] * in[n + i]) + static_cast<uint32_t>(in[2 * n + i] * in[3 * n + i]);
            }),
        fourDots<uint8_t>(),
        fourDots<int8_t>(),
        UNARY(int16_t, multiplyQ15<13573>(a), a * 13573 >> 15),
        UNARY(int16_t, multiplyQ15<-16383>(a), a * -16383 >> 15),
        BINARY(uint16_t, multiplyQ8(a, b), saturate<uint16_t>((int64_t{a} * b + 128) >> 8)),

        UNARY(uint8_t, countBits(a), __builtin_popcount(a)),
        mapping<uint32_t, uint32_t, 2, 1>(
            "countBits of a word",
            [](const uint32_t* in, uint32_t* out) { *out = countBits(uint64_t{in[1]} << 32 | in[0]); },
            [](const uint32_t* in, size_t) { return __builtin_popcount(in[0]) + __builtin_popcount(in[1]); }),
        mapping<uint8_t, uint64_t, 2 * kLanes<uint8_t>, 1>(
            "laneBits",
            [](const uint8_t* in, uint64_t* out) { *out = laneBits(less(load(in), load(in + kLanes<uint8_t>))); },
            [](const uint8_t* in, size_t) {
                uint64_t bits = 0;
                for (size_t i = 0; i < kLanes<uint8_t>; ++i)
                    bits |= uint64_t{in[i] < in[kLanes<uint8_t> + i]} << i;
                return bits;
            }),
        mapping<uint8_t, uint8_t, 16 + kLanes<uint8_t>, kLanes<uint8_t>>(
            "lookup16",
            [](const uint8_t* in, uint8_t* out) {
                store(out, lookup16(loadTable16(in), load(in + 16) & splat<uint8_t>(15)));
            },
            [](const uint8_t* in, size_t i) { return in[in[16 + i] % 16]; }),
        mapping<uint8_t, uint8_t, 32 + kLanes<uint8_t>, kLanes<uint8_t>>(
            "lookup32",
            [](const uint8_t* in, uint8_t* out) {
                store(out, lookup32(loadTable32(in), load(in + 32) & splat<uint8_t>(31)));
            },
            [](const uint8_t* in, size_t i) { return in[in[32 + i] % 32]; }),
        loadingBlocks(),
        lookingUpWindows<1>("lookupWindows<1>"),
        lookingUpWindows<2>("lookupWindows<2>"),
        storingWindows(),
        mapping<uint8_t, uint8_t, 256 + kLanes<uint8_t>, kLanes<uint8_t>>(
            "lookup",
            [](const uint8_t* in, uint8_t* out) {
                const Table256 table = prepare(in);
                store(out, lookup(table, load(in + 256)));
            },
            [](const uint8_t* in, size_t i) { return in[in[256 + i]]; }),
        mapping<uint8_t, uint8_t, 256 + 3 * kLanes<uint8_t>, 3 * kLanes<uint8_t>>(
            "lookup of several vectors",
            [](const uint8_t* in, uint8_t* out) {
                const SharedTable table = prepareShared(*reinterpret_cast<const uint8_t(*)[256]>(in));
                store(out, lookup(table, loadVecs<3>(in + 256)));
            },
            [](const uint8_t* in, size_t i) { return in[in[256 + i]]; }),
    };
    return group(list);
}

// ---- sums along rows ------------------------------------------------------------------------------------------------

// In the order of pairs and back.
SimdGroup pairs()
{
    constexpr size_t n = kLanes<uint8_t>, words = kLanes<int16_t>;
    static constexpr SimdOperation list[] = {
        mapping<uint8_t, int16_t, 2 * n, n>(
            "subtractPairs",
            [](const uint8_t* in, int16_t* out) { store(out, orderPairs(subtractPairs(load(in), load(in + n)))); },
            [](const uint8_t* in, size_t i) { return in[i] - in[n + i]; }),
        mapping<uint8_t, int16_t, n, n>(
            "widenToPairs", [](const uint8_t* in, int16_t* out) { store(out, orderPairs(widenToPairs(load(in)))); },
            [](const uint8_t* in, size_t i) { return in[i]; }),
        mapping<uint8_t, int8_t, 2 * n, n>(
            "narrowPairs of masks",
            [](const uint8_t* in, int8_t* out) {
                const Pairs<int16_t> d = subtractPairs(load(in), load(in + n));
                store(out, toVec(narrowPairs({greater(d[0], zero<int16_t>()), greater(d[1], zero<int16_t>())})));
            },
            [](const uint8_t* in, size_t i) { return in[i] > in[n + i] ? -1 : 0; }),
        mapping<uint8_t, int8_t, 2 * n, n>(
            "lowHalves",
            [](const uint8_t* in, int8_t* out) { store(out, lowHalves(subtractPairs(load(in), load(in + n)))); },
            [](const uint8_t* in, size_t i) { return in[i] - in[n + i]; }),
        mapping<uint8_t, uint8_t, 2 * n, n>(
            "narrowPairsSat of 16 bits",
            [](const uint8_t* in, uint8_t* out) {
                const Pairs<int16_t> d = subtractPairs(load(in), load(in + n)), twice = d + d;
                store(out, narrowPairsSat(Pairs<int16_t>{abs(twice[0]), abs(twice[1])}));
            },
            [](const uint8_t* in, size_t i) { return saturate<uint8_t>(2 * __builtin_abs(in[i] - in[n + i])); }),
        mapping<int16_t, int16_t, words + 2, words>(
            "narrowPairsSat of 32 bits",
            [](const int16_t* in, int16_t* out) { store(out, narrowPairsSat(rowSum<Weights<-1, 3, 2>>(in))); },
            [](const int16_t* in, size_t i) { return saturate<int16_t>(3 * in[i + 1] + 2 * in[i + 2] - in[i]); }),
    };
    return group(list);
}

// ---- rows that become shorter or longer -----------------------------------------------------------------------------

Vec<uint16_t> lowBytes(Vec<uint16_t> v)
{
    return v & splat<uint16_t>(255);
}

// Byte i from p of a row that begins at `in` and has `size` bytes, and 0 outside.
constexpr int beside(const uint8_t* in, size_t i, size_t before, size_t size)
{
    return i >= before && i - before < size ? in[i - before] : 0;
}

template <At at>
SimdGroup everySecond()
{
    // The windows begin so many elements ahead of the input, or end so many behind it.
    constexpr size_t n = kLanes<uint8_t>, lanes = kLanes<float>;
    constexpr size_t before3 = at == At::left, before5 = 2 * before3, behind = at == At::right;
    static constexpr size_t size3 = 2 * n + 1 - before3 - behind, size5 = 2 * n + 3 - before5 - behind;
    static constexpr SimdOperation list[] = {
        mapping<uint8_t, uint16_t, size3, n>(
            "everySecondSum of 3",
            [](const uint8_t* in, uint16_t* out) {
                store(out, everySecondSum<Weights<1, 2, 1>, at>(in - (at == At::left)));
            },
            [](const uint8_t* in, size_t i) {
                const auto tap = [&](size_t k) { return beside(in, 2 * i + k, at == At::left, size3); };
                return tap(0) + 2 * tap(1) + tap(2);
            }),
        mapping<uint8_t, uint16_t, size5, n>(
            "everySecondSum of 5",
            [](const uint8_t* in, uint16_t* out) {
                store(out, everySecondSum<Weights<1, 4, 6, 4, 1>, at>(in - 2 * (at == At::left)));
            },
            [](const uint8_t* in, size_t i) {
                const auto tap = [&](size_t k) { return beside(in, 2 * i + k, 2 * (at == At::left), size5); };
                return tap(0) + 4 * tap(1) + 6 * tap(2) + 4 * tap(3) + tap(4);
            }),
        mapping<float, float, 2 * lanes + 3 - before5 - behind, 5 * lanes>(
            "loadEverySecond5",
            [](const float* in, float* out) { store(out, loadEverySecond5<at>(in - 2 * (at == At::left))); },
            [](const float* in, size_t i) {
                constexpr size_t before = 2 * (at == At::left), size = 2 * lanes + 3 - before - (at == At::right);
                const size_t from = i % lanes * 2 + i / lanes;
                return from >= before && from - before < size ? in[from - before] : 0.0f;
            }),
        mapping<uint8_t, uint8_t, n + 2 - (at != At::middle), 4 * n>(
            "doubledSums",
            [](const uint8_t* in, uint8_t* out) {
                const EvenAndOdd sums = doubledSums<at>(in - (at == At::left));
                storeRoundedByTurns<6, 4>(out, sums);
                storeByTurns(out + 2 * n, EvenAndOdd{both(sums.even, lowBytes), both(sums.odd, lowBytes)});
            },
            [](const uint8_t* in, size_t i) {
                const auto tap = [&](size_t k) {
                    return beside(in, i % (2 * n) / 2 + k, at == At::left, n + 2 - (at != At::middle));
                };
                const int even = tap(0) + 6 * tap(1) + tap(2), odd = tap(1) + tap(2);
                return i >= 2 * n ? (i % 2 ? odd : even) & 255 : i % 2 ? (odd + 8) >> 4 : (even + 32) >> 6;
            }),
    };
    return group(list);
}

SimdGroup blocksOfBytes()
{
    constexpr size_t n = kLanes<uint8_t>;
    static constexpr SimdOperation list[] = {
        mapping<uint8_t, uint16_t, 2 * n, n / 2>(
            "addNeighboursTo",
            [](const uint8_t* in, uint16_t* out) {
                store(out, addNeighboursTo(addNeighbours(load(in)), load(in + n)));
            },
            [](const uint8_t* in, size_t i) { return in[2 * i] + in[2 * i + 1] + in[2 * i + n] + in[2 * i + n + 1]; }),
        mapping<uint8_t, int16_t, n, n / 2>(
            "subtractNeighbours", [](const uint8_t* in, int16_t* out) { store(out, subtractNeighbours(load(in))); },
            [](const uint8_t* in, size_t i) { return in[2 * i] - in[2 * i + 1]; }),
        mapping<uint8_t, uint8_t, 4 * n, n>(
            "addNeighboursInLanes",
            [](const uint8_t* in, uint8_t* out) {
                const auto fours = [=](size_t at) {
                    return addNeighboursInLanes(addNeighbours(load(in + at)), addNeighbours(load(in + at + n)));
                };
                store(out, orderPackedTwice(narrowShiftedInLanes<2>(Vecs<uint16_t, 2>{fours(0), fours(2 * n)})));
            },
            [](const uint8_t* in, size_t i) {
                const uint8_t* p = in + 4 * i;
                return (p[0] + p[1] + p[2] + p[3]) >> 2;
            }),
        mapping<uint16_t, uint8_t, n, n>(
            "narrowShifted", [](const uint16_t* in, uint8_t* out) { store(out, narrowShifted<8>(loadVecs<2>(in))); },
            [](const uint16_t* in, size_t i) { return in[i] >> 8; }),
        mapping<uint8_t, uint8_t, 6 * n, 4 * n>(
            "thirds",
            [](const uint8_t* in, uint8_t* out) {
                const Vecs<uint16_t, 4> sums = addThirdSums<9, 3>(thirdSums<3, 1>(in), in + 3 * n);
                storeThirds<4, false>(out, sums);
                storeThirds<4, true>(out + 2 * n, sums);
            },
            [](const uint8_t* in, size_t i) {
                const uint8_t *p = in + i % (2 * n) / 2 * 3, *q = p + 3 * n;
                return (3 * p[i % 2 * 2] + p[1] + 9 * q[i % 2 * 2] + 3 * q[1] + (i < 2 * n ? 0 : 8)) >> 4;
            }),
    };
    return group(list);
}

// ---- wider and narrower elements ------------------------------------------------------------------------------------

template <class T>
Vecs<T, 2> twicePlus77Halved(Vecs<T, 2> v)
{
    return {shiftRight(v[0] + v[0] + splat<T>(77), 1), shiftRight(v[1] + v[1] + splat<T>(77), 1)};
}

template <class T>
Vecs<T, 2> shiftedBy5(Vecs<T, 2> v)
{
    return {shiftRight(v[0], 5), shiftRight(v[1], 5)};
}

template <class T>
SimdGroup widening()
{
    constexpr size_t n = kLanes<T>;
    using W = Wider<T>;
    static constexpr SimdOperation list[] = {
        mapping<T, W, n, n>(
            "widen", [](const T* in, W* out) { store(out, widen(load(in))); },
            [](const T* in, size_t i) { return in[i]; }),
        mapping<T, W, n / 2, n / 2>(
            "loadWiden", [](const T* in, W* out) { store(out, loadWiden<W>(in)); },
            [](const T* in, size_t i) { return in[i]; }),
    };
    return group(list);
}

// Through the wide elements in their own order and back.
template <class T>
SimdGroup widerInLanes()
{
    using W = Wider<T>;
    static constexpr SimdOperation list[] = {
        UNARY(T, narrowInLanes(twicePlus77Halved(widenInLanes(a))), (W(a) * 2 + 77) >> 1),
    };
    return group(list);
}

// Exact results that need the wider type.
template <class T>
SimdGroup wideSums()
{
    constexpr size_t n = kLanes<T>;
    using W = Wider<T>;
    static constexpr SimdOperation list[] = {
        mapping<T, W, 2 * n, n>(
            "addWide", [](const T* in, W* out) { store(out, addWide(load(in), load(in + n))); },
            [](const T* in, size_t i) { return int32_t(in[i]) + in[n + i]; }),
        mapping<T, Signed<W>, 2 * n, n>(
            "subtractWide", [](const T* in, Signed<W>* out) { store(out, subtractWide(load(in), load(in + n))); },
            [](const T* in, size_t i) { return int32_t(in[i]) - in[n + i]; }),
    };
    return group(list);
}

template <class T>
SimdGroup wideProducts()
{
    constexpr size_t n = kLanes<T>;
    using W = Wider<T>;
    static constexpr SimdOperation list[] = {
        mapping<T, W, 2 * n, n>(
            "multiplyWide", [](const T* in, W* out) { store(out, multiplyWide(load(in), load(in + n))); },
            [](const T* in, size_t i) { return wrapping(in[i]) * wrapping(in[n + i]); }),
        BINARY(T, narrowInLanes(shiftedBy5(multiplyWideInLanes(a, b))), static_cast<W>(wrapping(a) * wrapping(b)) >> 5),
    };
    return group(list);
}

// Masks twice and half as wide.
template <class T>
SimdGroup wideAndNarrowMasks()
{
    constexpr size_t n = kLanes<T>;
    using W = Wider<T>;
    static constexpr SimdOperation list[] = {
        mapping<T, W, 2 * n, n>(
            "widen mask",
            [](const T* in, W* out) {
                const Masks<W, 2> wide = widen(less(load(in), load(in + n)));
                store(out, Vecs<W, 2>{toVec(wide[0]), toVec(wide[1])});
            },
            [](const T* in, size_t i) { return in[i] < in[n + i] ? -1 : 0; }),
        mapping<W, T, 2 * n, n>(
            "narrow masks",
            [](const W* in, T* out) {
                const auto isLess = [in](size_t i) { return less(load(in + i), load(in + n + i)); };
                store(out, toVec(narrow(isLess(0), isLess(kLanes<W>))));
            },
            [](const W* in, size_t i) { return in[i] < in[n + i] ? -1 : 0; }),
    };
    return group(list);
}

template <class T>
SimdGroup narrowing()
{
    constexpr size_t n = 2 * kLanes<T>;
    using N = Narrower<T>;
    static constexpr SimdOperation list[] = {
        mapping<T, N, n, n>(
            "narrow", [](const T* in, N* out) { store(out, narrow(loadVecs<2>(in))); },
            [](const T* in, size_t i) { return in[i]; }),
    };
    return group(list);
}

// Two vectors in the order of ...InLanes: zipInLanes of the lower and upper halves of the elements.
template <class T>
Vecs<T, 2> loadInLanes(const T* in)
{
    using U = Unsigned<T>;
    constexpr unsigned half = sizeof(T) * 4;
    const Vecs<U, 2> v = bitCast<U>(loadVecs<2>(in));
    const auto z = zipInLanes(narrow(v), narrow(Vecs<U, 2>{shiftRight(v[0], half), shiftRight(v[1], half)}));
    return {bitCast<T>(z[0]), bitCast<T>(z[1])};
}

template <class T, class To>
SimdGroup narrowingWithSaturation()
{
    constexpr size_t n = 2 * kLanes<T>;
    static constexpr SimdOperation list[] = {
        mapping<T, To, n, n>(
            "narrowSat", [](const T* in, To* out) { store(out, narrowSat<To>(loadVecs<2>(in))); },
            [](const T* in, size_t i) { return saturate<To>(in[i]); }),
        mapping<T, To, n, n>(
            "narrowSatInLanes", [](const T* in, To* out) { store(out, narrowSatInLanes<To>(loadInLanes(in))); },
            [](const T* in, size_t i) { return saturate<To>(in[i]); }),
    };
    return group(list);
}

template <class T, class To>
SimdGroup narrowingWithRounding()
{
    constexpr size_t n = 2 * kLanes<T>;
    constexpr unsigned spare = sizeof(T) == 4; // 32 bits leave room for the rounding term
    static constexpr SimdOperation list[] = {
        mapping<T, To, n, n>(
            "narrowRoundedInLanes by 1",
            [](const T* in, To* out) {
                const Vecs<T, 2> v = loadInLanes(in);
                store(out, narrowRoundedInLanes<To, 1>(Vecs<T, 2>{shiftRight(v[0], spare), shiftRight(v[1], spare)}));
            },
            [](const T* in, size_t i) { return saturate<To>((int64_t{in[i] >> spare} + 1) >> 1); }),
        mapping<T, To, n, n>(
            "narrowRounded by half",
            [](const T* in, To* out) {
                const Vecs<T, 2> v = loadVecs<2>(in);
                store(out,
                      narrowRounded<To, sizeof(To) * 8>(Vecs<T, 2>{shiftRight(v[0], spare), shiftRight(v[1], spare)}));
            },
            [](const T* in, size_t i) {
                constexpr int half = 1 << (sizeof(To) * 8 - 1);
                return saturate<To>((int64_t{in[i] >> spare} + half) >> (sizeof(To) * 8));
            }),
    };
    return group(list);
}

// ---- luma and chroma ------------------------------------------------------------------------------------------------

// Pixel i of vectors of red, green and blue, one behind the other.
struct Pixel
{
    int32_t red, green, blue;
};

Pixel pixelOf(const uint8_t* in, size_t i)
{
    return {in[i], in[i + kBytes], in[i + 2 * kBytes]};
}

Rgb loadPlanes(const uint8_t* in)
{
    return {load(in), load(in + kBytes), load(in + 2 * kBytes)};
}

int64_t cbOf(Pixel p)
{
    return saturate<uint8_t>(128 + ((128 * p.blue - 85 * p.green - 43 * p.red + 128) >> 8));
}
int64_t crOf(Pixel p)
{
    return saturate<uint8_t>(128 + ((128 * p.red - 107 * p.green - 21 * p.blue + 128) >> 8));
}

SimdGroup sumsOfColour()
{
    constexpr size_t n = kBytes, shared = kSharing * kBytes;
    static constexpr SimdOperation list[] = {
        mapping<uint8_t, uint8_t, 3 * n, n>(
            "lumaOf", [](const uint8_t* in, uint8_t* out) { store(out, lumaOf(loadPlanes(in))); },
            [](const uint8_t* in, size_t i) {
                const Pixel p = pixelOf(in, i);
                return (29 * p.blue + 150 * p.green + 77 * p.red + 128) >> 8;
            }),
        mapping<uint8_t, uint8_t, 3 * n, n>(
            "greyOf", [](const uint8_t* in, uint8_t* out) { store(out, greyOf(loadPlanes(in))); },
            [](const uint8_t* in, size_t i) {
                const Pixel p = pixelOf(in, i);
                return (19595 * p.red + 38469 * p.green + 7471 * p.blue + 32768) >> 16;
            }),
        mapping<uint8_t, uint8_t, 3 * n, 2 * n>(
            "chromaOf",
            [](const uint8_t* in, uint8_t* out) {
                const Chroma c = chromaOf(loadPlanes(in));
                store(out, c.cb);
                store(out + n, c.cr);
            },
            [](const uint8_t* in, size_t i) { return i < n ? cbOf(pixelOf(in, i)) : crOf(pixelOf(in, i - n)); }),
        mapping<uint8_t, uint8_t, 3 * shared, 2 * shared>(
            "storeEvenChroma",
            [](const uint8_t* in, uint8_t* out) {
                Rgb p[kSharing];
                for (size_t k = 0; k < kSharing; ++k)
                    p[k] = loadPlanes(in + k * 3 * n);
                storeEvenChroma(p, out);
                storeEvenChroma(p, out + shared, out + shared + shared / 2);
            },
            [](const uint8_t* in, size_t i) {
                const bool planar = i >= shared;
                const size_t sample = planar ? i % (shared / 2) : i / 2;
                const Pixel p = pixelOf(in + 2 * sample / n * 3 * n, 2 * sample % n);
                return (planar ? i < shared + shared / 2 : i % 2 == 0) ? cbOf(p) : crOf(p);
            }),
    };
    return group(list);
}

// Channel 0, 1 or 2 of a pixel.
int64_t channelOf(size_t channel, int32_t luma, int32_t cb, int32_t cr)
{
    const int32_t d = cb - 128, e = cr - 128;
    const int32_t sums[] = {359 * e, -88 * d - 183 * e, 454 * d};
    return saturate<uint8_t>((256 * luma + sums[channel] + 128) >> 8);
}

void storePlanes(uint8_t* out, const Rgb& rgb)
{
    store(out, Vecs<uint8_t, 3>{rgb.red, rgb.green, rgb.blue});
}

// Luma, then chroma: pairs, Cr first, or a vector of each; the channels one behind the other.
SimdGroup offsetsOfChroma()
{
    constexpr size_t n = kBytes, shared = kSharing * kBytes;
    static constexpr SimdOperation list[] = {
        mapping<uint8_t, uint8_t, 3 * n, 3 * n>(
            "loadOwnOffsets of pairs",
            [](const uint8_t* in, uint8_t* out) { storePlanes(out, loadOwnOffsets<true>(in + n).of(load(in))); },
            [](const uint8_t* in, size_t i) {
                const size_t k = i % n;
                return channelOf(i / n, in[k], in[n + 2 * k + 1], in[n + 2 * k]);
            }),
        mapping<uint8_t, uint8_t, 3 * n, 3 * n>(
            "loadOwnOffsets of planes",
            [](const uint8_t* in, uint8_t* out) { storePlanes(out, loadOwnOffsets(in + n, in + 2 * n).of(load(in))); },
            [](const uint8_t* in, size_t i) { return channelOf(i / n, in[i % n], in[n + i % n], in[2 * n + i % n]); }),
        mapping<uint8_t, uint8_t, 2 * shared, 3 * shared>(
            "loadSharedOffsets of pairs",
            [](const uint8_t* in, uint8_t* out) {
                Offsets offsets[kSharing];
                loadSharedOffsets<true>(in + shared, offsets);
                for (size_t k = 0; k < kSharing; ++k)
                    storePlanes(out + 3 * n * k, offsets[k].of(load(in + n * k)));
            },
            [](const uint8_t* in, size_t i) {
                const size_t k = i / (3 * n) * n + i % n, pair = shared + k / 2 * 2;
                return channelOf(i / n % 3, in[k], in[pair + 1], in[pair]);
            }),
        mapping<uint8_t, uint8_t, 2 * shared, 3 * shared>(
            "loadSharedOffsets of planes",
            [](const uint8_t* in, uint8_t* out) {
                Offsets offsets[kSharing];
                loadSharedOffsets(in + shared, in + shared + shared / 2, offsets);
                for (size_t k = 0; k < kSharing; ++k)
                    storePlanes(out + 3 * n * k, offsets[k].of(load(in + n * k)));
            },
            [](const uint8_t* in, size_t i) {
                const size_t k = i / (3 * n) * n + i % n, cb = shared + k / 2;
                return channelOf(i / n % 3, in[k], in[cb], in[cb + shared / 2]);
            }),
        mapping<uint16_t, uint8_t, kLanes<uint16_t>, kLanes<uint16_t>>(
            "storeLowBytes", [](const uint16_t* in, uint8_t* out) { storeLowBytes(out, load(in)); },
            [](const uint16_t* in, size_t i) { return in[i] & 255; }),
    };
    return group(list);
}

// ---- products and rounding ------------------------------------------------------------------------------------------

// In lane order from the order of ...InLanes: the lower halves of the elements, then the upper ones.
void storeHalves(int16_t* out, const Vecs<int32_t, 2>& v)
{
    store(out, narrowInLanes(v));
    store(out + kLanes<int16_t>, narrowInLanes(Vecs<int32_t, 2>{shiftRight(v[0], 16), shiftRight(v[1], 16)}));
}

int32_t halfOf(int64_t wide, size_t i)
{
    return static_cast<int32_t>(i < kLanes<int16_t> ? wide : static_cast<int32_t>(wrapping(wide)) >> 16);
}

int64_t dotOf(const int16_t* in, size_t i)
{
    constexpr size_t n = kLanes<int16_t>;
    i %= n;
    return int64_t{in[i]} * in[2 * n + i] + int64_t{in[n + i]} * in[3 * n + i];
}

int64_t roundedShift(int64_t v, unsigned count)
{
    return (v + (int64_t{1} << (count - 1))) >> count;
}

SimdGroup shortProducts()
{
    constexpr size_t n = kLanes<int16_t>;
    static constexpr SimdOperation list[] = {
        mapping<int16_t, int16_t, 4 * n, 2 * n>(
            "dotInLanes",
            [](const int16_t* in, int16_t* out) {
                storeHalves(out, dotInLanes(loadVecs<2>(in), loadVecs<2>(in + 2 * n)));
            },
            [](const int16_t* in, size_t i) { return halfOf(dotOf(in, i), i); }),
        mapping<int16_t, int16_t, 5 * n, 2 * n>(
            "addDotInLanes",
            [](const int16_t* in, int16_t* out) {
                storeHalves(out,
                            addDotInLanes(widenInLanes(load(in + 4 * n)), loadVecs<2>(in), loadVecs<2>(in + 2 * n)));
            },
            [](const int16_t* in, size_t i) { return halfOf(dotOf(in, i) + in[4 * n + i % n], i); }),
        mapping<int16_t, int16_t, 3 * n, 2 * n>(
            "addBothInLanes",
            [](const int16_t* in, int16_t* out) {
                const Vec<int16_t> positive = splat<int16_t>(INT16_MAX);
                storeHalves(out, addBothInLanes(widenInLanes(load(in + 2 * n)),
                                                {load(in) & positive, load(in + n) & positive}));
            },
            [](const int16_t* in, size_t i) {
                return halfOf((in[i % n] & INT16_MAX) + (in[n + i % n] & INT16_MAX) + in[2 * n + i % n], i);
            }),
        mapping<int16_t, int16_t, n + 2, 2 * n>(
            "multiplyAndShiftInLanes",
            [](const int16_t* in, int16_t* out) {
                storeHalves(out, multiplyAndShiftInLanes(load(in), in[n], 1 + static_cast<uint16_t>(in[n + 1]) % 29));
            },
            [](const int16_t* in, size_t i) {
                return halfOf(roundedShift(int64_t{in[i % n]} * in[n], 1 + static_cast<uint16_t>(in[n + 1]) % 29), i);
            }),
        BINARY(uint16_t, multiplyHighRounded(a, shiftRight(b, 1)), (uint32_t(a) * (b >> 1) + 32768) >> 16),
        BINARY(int16_t, multiplyRounded(a, max(b, splat<int16_t>(-INT16_MAX))),
               roundedShift(int64_t{a} * (b < -INT16_MAX ? -INT16_MAX : b), 15)),
    };
    return group(list);
}

// Shifts by a count from 1 on that is not a constant.
template <class T>
SimdGroup roundedShifts()
{
    constexpr size_t n = kLanes<T>;
    constexpr unsigned counts = sizeof(T) * 8 - 1;
    constexpr unsigned spare = sizeof(T) == 4; // 32 bits leave room for the rounding term
    static constexpr SimdOperation list[] = {
        mapping<T, T, n + 1, n>(
            "shiftRightRounded",
            [](const T* in, T* out) {
                store(out, shiftRightRounded(shiftRight(load(in), spare), 1 + Unsigned<T>(in[n]) % (counts - spare)));
            },
            [](const T* in, size_t i) {
                return roundedShift(in[i] >> spare, 1 + Unsigned<T>(in[n]) % (counts - spare));
            }),
    };
    return group(list);
}

template <class T>
SimdGroup saturatedShifts()
{
    constexpr size_t n = kLanes<T>;
    static constexpr SimdOperation list[] = {
        mapping<T, T, n + 1, n>(
            "shiftLeftSat", [](const T* in, T* out) { store(out, shiftLeftSat(load(in), Unsigned<T>(in[n]) % 16u)); },
            [](const T* in, size_t i) { return saturate<T>(int64_t{in[i]} * (1 << Unsigned<T>(in[n]) % 16u)); }),
    };
    return group(list);
}

// From two weights that follow the pixels.
struct PairOfWeights
{
    int32_t first, second;
};

PairOfWeights meanWeights(const uint8_t* in)
{
    return {in[0], in[1] * (256 - in[0]) >> 8};
}

PairOfWeights sumWeights(const uint8_t* in)
{
    const auto weight = [](int low, int high) {
        const int32_t w = static_cast<int16_t>(low | high << 8) >> 1;
        return w > 16319 ? 16319 : w;
    };
    return {weight(in[0], in[1]), weight(in[2], in[3])};
}

int32_t weighted(const uint8_t* in, size_t i, PairOfWeights w)
{
    return (in[i] * w.first + in[kLanes<uint8_t> + i] * w.second + 128) >> 8;
}

SimdGroup weightedBytes()
{
    constexpr size_t n = kLanes<uint8_t>;
    static constexpr SimdOperation list[] = {
        mapping<uint8_t, uint8_t, 2 * n + 2, n>(
            "weightedMean",
            [](const uint8_t* in, uint8_t* out) {
                const PairOfWeights w = meanWeights(in + 2 * n);
                store(out, weightedMean(load(in), load(in + n), w.first, w.second));
            },
            [](const uint8_t* in, size_t i) { return weighted(in, i, meanWeights(in + 2 * n)); }),
        mapping<uint8_t, uint8_t, 2 * n + 4, n>(
            "weightedSum",
            [](const uint8_t* in, uint8_t* out) {
                const PairOfWeights w = sumWeights(in + 2 * n);
                if (isWeightOfSums(w.first) && isWeightOfSums(w.second))
                    store(out, weightedSum(load(in), load(in + n), w.first, w.second));
            },
            [](const uint8_t* in, size_t i) { return saturate<uint8_t>(weighted(in, i, sumWeights(in + 2 * n))); }),
    };
    return group(list);
}

template <class T>
uint64_t sumOf(const T* in, size_t count)
{
    uint64_t sum = 0;
    for (size_t i = 0; i < count; ++i)
        sum += wrapping(in[i]);
    return sum;
}

template <class T>
SimdGroup sums()
{
    constexpr size_t n = kLanes<T>;
    using W = Wider<T>;
    static constexpr SimdOperation list[] = {
        mapping<T, W, 2 * n, 1>(
            "addTo, reduceAdd",
            [](const T* in, W* out) { *out = reduceAdd(addTo(addTo(zero<W>(), load(in)), load(in + n))); },
            [](const T* in, size_t) { return sumOf(in, 2 * n); }),
        mapping<T, W, n, 1>(
            "reduceAdd", [](const T* in, W* out) { *out = static_cast<W>(reduceAdd(load(in))); },
            [](const T* in, size_t) {
                return sizeof(T) == 2 ? static_cast<W>(sumOf(in, n)) : static_cast<W>(static_cast<T>(sumOf(in, n)));
            }),
    };
    return group(list);
}

SimdGroup totals()
{
    constexpr size_t bytes = kLanes<uint8_t>, words = kLanes<int32_t>;
    static constexpr SimdOperation list[] = {
        mapping<uint8_t, uint32_t, 2 * bytes, 1>(
            "Total",
            [](const uint8_t* in, uint32_t* out) {
                Total<uint8_t> total;
                total.add(load(in));
                total.add(load(in + bytes));
                *out = total.value();
            },
            [](const uint8_t* in, size_t) { return sumOf(in, 2 * bytes); }),
        mapping<int32_t, int64_t, 2 * words, 1>(
            "Total",
            [](const int32_t* in, int64_t* out) {
                Total<int32_t> total;
                total.add(load(in));
                total.add(load(in + words));
                *out = total.value();
            },
            [](const int32_t* in, size_t) { return sumOf(in, 2 * words); }),
    };
    return group(list);
}

SimdGroup byteSums()
{
    static constexpr SimdOperation list[] = {
        mapping<uint8_t, uint32_t, 2 * kLanes<uint8_t>, 1>(
            "addBytesTo",
            [](const uint8_t* in, uint32_t* out) {
                *out = reduceAdd(addBytesTo(addBytesTo(zero<uint32_t>(), load(in)), load(in + kLanes<uint8_t>)));
            },
            [](const uint8_t* in, size_t) { return sumOf(in, 2 * kLanes<uint8_t>); }),
        mapping<uint8_t, uint32_t, kLanes<uint8_t>, 1>(
            "reduceAdd", [](const uint8_t* in, uint32_t* out) { *out = reduceAdd(load(in)); },
            [](const uint8_t* in, size_t) { return sumOf(in, kLanes<uint8_t>); }),
    };
    return group(list);
}

uint64_t sumOfSquares(const uint8_t* in, size_t count)
{
    uint64_t sum = 0;
    for (size_t i = 0; i < count; ++i)
        sum += uint64_t{in[i]} * in[i];
    return sum;
}

SimdGroup runningSumsOfBytes()
{
    constexpr size_t n = kLanes<uint8_t>;
    static constexpr SimdOperation list[] = {
        mapping<uint8_t, uint32_t, n, n>(
            "sumsUpToEach", [](const uint8_t* in, uint32_t* out) { store(out, sumsUpToEach(load(in))); },
            [](const uint8_t* in, size_t i) { return sumOf(in, i + 1); }),
        mapping<uint8_t, uint32_t, n, n>(
            "squaresUpToEach", [](const uint8_t* in, uint32_t* out) { store(out, squaresUpToEach(load(in))); },
            [](const uint8_t* in, size_t i) { return sumOfSquares(in, i + 1); }),
        mapping<uint8_t, uint64_t, 2 * n, 2>(
            "ByteMoments",
            [](const uint8_t* in, uint64_t* out) {
                ByteMoments moments;
                for (size_t k = 0; k < ByteMoments::most; ++k)
                    moments.add(load(in + k % 2 * n));
                out[0] = moments.sum();
                out[1] = moments.squares();
            },
            [](const uint8_t* in, size_t i) {
                const uint64_t times = ByteMoments::most / 2;
                return times * (i ? sumOfSquares(in, 2 * n) : sumOf(in, 2 * n));
            }),
    };
    return group(list);
}

// ---- floats ---------------------------------------------------------------------------------------------------------

SimdGroup floats()
{
    static constexpr SimdOperation list[] = {
        BINARY(float, min(a, b), b < a ? b : a),
        BINARY(float, max(a, b), a < b ? b : a),
        UNARY(float, abs(a), floatOf(bitsOf(a) & 0x7fffffff)),
        calculation(BINARY(float, a + b, a + b)),
        calculation(BINARY(float, a - b, a - b)),
        calculation(BINARY(float, a* b, a* b)),
        calculation(BINARY(float, a* b + a, a * b + a)), // rounded twice
        calculation(BINARY(float, absDiff(a, b), floatOf(bitsOf(a - b) & 0x7fffffff))),
        drawing(Draw::floats, calculation(BINARY(float, divide(a, b), a / b))),
        drawing(Draw::floats, calculation(UNARY(float, squareRoot(a), __builtin_sqrtf(a)))),
        mapping<int32_t, float, kLanes<float>, kLanes<float>>(
            "toFloat", [](const int32_t* in, float* out) { store(out, toFloat(load(in))); },
            [](const int32_t* in, size_t i) { return in[i]; }),
        mapping<uint32_t, float, kLanes<float>, kLanes<float>>(
            "toFloat below 2^31", [](const uint32_t* in, float* out) { store(out, toFloat(shiftRight(load(in), 1))); },
            [](const uint32_t* in, size_t i) { return in[i] >> 1; }),
        drawing(Draw::intRangeFloats,
                mapping<float, int32_t, kLanes<float>, kLanes<float>>(
                    "truncateToInt", [](const float* in, int32_t* out) { store(out, truncateToInt(load(in))); },
                    [](const float* in, size_t i) { return in[i]; })),
        drawing(Draw::intRangeFloats,
                mapping<float, int32_t, kLanes<float>, kLanes<float>>(
                    "toFixed",
                    [](const float* in, int32_t* out) { store(out, toFixed<15>(load(in) * splat(0x1p-16f))); },
                    [](const float* in, size_t i) { return in[i] * 0.5f; })),
        drawing(Draw::intRangeFloats,
                mapping<float, int32_t, kLanes<float>, kLanes<float>>(
                    "roundToInt", [](const float* in, int32_t* out) { store(out, roundToInt(load(in))); },
                    [](const float* in, size_t i) { return __builtin_nearbyintf(in[i]); })),
    };
    return group(list);
}

// Points x, y, or x, y, z, in doubles.
SimdGroup doubles()
{
    constexpr size_t n = Doubles::lanes;
    static constexpr SimdOperation list[] = {
        calculation(mapping<float, float, 2 * n, 2 * n>(
            "doubles: + - * /",
            [](const float* in, float* out) {
                const DoublePoints<2> p = loadPoints<2>(in);
                storePoints(out, {p[0] * p[1] + p[0], p[0] / p[1] - p[1]});
            },
            [](const float* in, size_t i) {
                const double x = in[i / 2 * 2], y = in[i / 2 * 2 + 1];
                return i % 2 ? x / y - y : x * y + x;
            })),
        calculation(mapping<float, float, 2 * n, 2 * n>(
            "doubles: squareRoot",
            [](const float* in, float* out) {
                const DoublePoints<2> p = loadPoints<2>(in);
                storePoints(out, {squareRoot(abs(p[0])), squareRoot(p[1] * p[1])});
            },
            [](const float* in, size_t i) {
                const double v = in[i];
                return __builtin_sqrt(i % 2 ? v * v : __builtin_fabs(v));
            })),
        calculation(mapping<float, float, 2 * n, 2 * n>(
            "doubles: comparisons, select, abs",
            [](const float* in, float* out) {
                const DoublePoints<2> p = loadPoints<2>(in);
                const DoubleMask isGreater = greater(p[0], p[1]), isNot = notGreater(p[0], splatDouble(1));
                storePoints(out, {select(isGreater | isNot, abs(p[0]), p[1]), select(isGreater & ~isNot, p[0], p[1])});
            },
            [](const float* in, size_t i) {
                const double x = in[i / 2 * 2], y = in[i / 2 * 2 + 1];
                const bool isGreater = x > y, isNot = x <= 1;
                return i % 2 ? (isGreater && !isNot ? x : y) : isGreater || isNot ? __builtin_fabs(x) : y;
            })),
        mapping<float, uint32_t, 2 * n, 2>(
            "doubles: any, all",
            [](const float* in, uint32_t* out) {
                const DoublePoints<2> p = loadPoints<2>(in);
                out[0] = any(greater(p[0], p[1]));
                out[1] = all(greater(p[0], p[1]));
            },
            [](const float* in, size_t i) {
                size_t count = 0;
                for (size_t k = 0; k < n; ++k)
                    count += in[2 * k] > in[2 * k + 1];
                return i ? count == n : count > 0;
            }),
        calculation(mapping<float, float, 3 * n, 2 * n>(
            "doubles: loadPoints<3>",
            [](const float* in, float* out) {
                const DoublePoints<3> p = loadPoints<3>(in);
                storePoints(out, {p[0] - p[2], p[1] - p[2]});
            },
            [](const float* in, size_t i) { return double{in[i / 2 * 3 + i % 2]} - in[i / 2 * 3 + 2]; })),
        calculation(mapping<float, float, 3 * n, 3 * n>(
            "doubles: lists", // of n points at a time, and of one
            [](const float* in, float* out) {
                for (size_t i = 2; i < 3 * n; i += 3)
                    out[i] = 0;
                const DoublePoints<2> all = loadPoints<2>(in, 3, n), first = loadPoints<2>(in, 3, 1);
                storePoints(out, {all[0] - first[0], all[1] - first[1]}, 3, n);
                storePoints(out, all, 3, 1);
            },
            [](const float* in, size_t i) { return i % 3 == 2 ? 0
                                                   : i < 3    ? in[i]
                                                              : double{in[i]} - in[i % 3]; })),
    };
    return group(list);
}

// Numbers in the order of floats, around 0 for the finite ones.
int32_t orderKey(float x)
{
    const int32_t magnitude = static_cast<int32_t>(bitsOf(x) & 0x7fffffff);
    return bitsOf(x) >> 31 ? -magnitude : magnitude;
}

// Positive numbers to guess from.
Vec<float> positive(const uint32_t* in)
{
    return toFloat(shiftRight(load(in), 1) | splat<uint32_t>(1));
}

SimdGroup floatBits()
{
    constexpr size_t n = kLanes<float>;
    static constexpr SimdOperation list[] = {
        drawing(Draw::floats, mapping<float, int32_t, n, n>(
                                  "orderKeys", [](const float* in, int32_t* out) { store(out, orderKeys(load(in))); },
                                  [](const float* in, size_t i) { return orderKey(in[i]); })),
        mapping<uint32_t, uint32_t, n, 1>(
            "guessReciprocal",
            [](const uint32_t* in, uint32_t* out) {
                const Vec<float> v = positive(in);
                *out = all(less(absDiff(guessReciprocal(v) * v, splat(1.0f)), splat(0x1p-7f)));
            },
            [](const uint32_t*, size_t) { return 1; }),
        mapping<uint32_t, float, 3 * n, n>(
            "multiplyAdd", // of numbers small enough that nothing is rounded
            [](const uint32_t* in, float* out) {
                const auto number = [&](size_t i) { return toFloat(shiftRight(load(in + i * n), 21)); };
                store(out, multiplyAdd(number(0), number(1), number(2)));
            },
            [](const uint32_t* in, size_t i) { return (in[i] >> 21) * (in[n + i] >> 21) + (in[2 * n + i] >> 21); }),
        mapping<uint32_t, uint32_t, n, 1>(
            "closeReciprocal",
            [](const uint32_t* in, uint32_t* out) {
                const Vec<float> v = positive(in);
                *out = all(less(absDiff(closeReciprocal(v) * v, splat(1.0f)), splat(0x1p-20f)));
            },
            [](const uint32_t*, size_t) { return 1; }),
        mapping<uint32_t, uint32_t, n, 1>(
            "guessSquareRoot",
            [](const uint32_t* in, uint32_t* out) {
                const Vec<float> v = positive(in), root = squareRoot(v);
                *out = all(less(absDiff(guessSquareRoot(v), root), root * splat(0x1p-19f)));
            },
            [](const uint32_t*, size_t) { return 1; }),
    };
    return group(list);
}

// ---- scattered memory -----------------------------------------------------------------------------------------------

// What follows n words is the memory, of which offsets below `places` have all that may be read.
SimdGroup scattered()
{
    static constexpr size_t n = kLanes<uint16_t>, places = 256;
    static constexpr auto bytes = [](const auto* in) { return reinterpret_cast<const uint8_t*>(in + n); };
    static constexpr auto offsets = [](const uint32_t* in) {
        return both(loadSplit(in), [](auto v) { return v & splat<uint32_t>(places - 1); });
    };
    static constexpr SimdOperation list[] = {
        mapping<uint32_t, uint16_t, n, n>(
            "joinSplit", [](const uint32_t* in, uint16_t* out) { store(out, joinSplit(loadSplit(in))); },
            [](const uint32_t* in, size_t i) { return in[i]; }),
        mapping<uint32_t, uint32_t, n, n>(
            "orderSplit", [](const uint32_t* in, uint32_t* out) { store(out, orderSplit(loadSplit(in))); },
            [](const uint32_t* in, size_t i) { return in[i]; }),
        mapping<uint16_t, uint16_t, 1, n>(
            "iotaSplit", [](const uint16_t*, uint16_t* out) { store(out, joinSplit(iotaSplit<uint32_t>())); },
            [](const uint16_t*, size_t i) { return i; }),
        mapping<uint32_t, uint16_t, n + (places + kGatherReach + 3) / 4, n>(
            "gatherBytes", [](const uint32_t* in, uint16_t* out) { store(out, gatherBytes(bytes(in), offsets(in))); },
            [](const uint32_t* in, size_t i) { return bytes(in)[in[i] % places]; }),
        mapping<uint32_t, uint16_t, n + (places + kGatherReach + 3) / 4, n>(
            "gatherPairs", [](const uint32_t* in, uint16_t* out) { store(out, gatherPairs(bytes(in), offsets(in))); },
            [](const uint32_t* in, size_t i) {
                const uint8_t* const pair = bytes(in) + in[i] % places;
                return pair[0] | pair[1] << 8;
            }),
        mapping<uint32_t, uint32_t, n + places / 4 + 1, n / 2>(
            "gatherWords",
            [](const uint32_t* in, uint32_t* out) {
                store(out, gatherWords(bytes(in), load(in) & splat<uint32_t>(places - 1)));
            },
            [](const uint32_t* in, size_t i) {
                uint32_t word;
                __builtin_memcpy(&word, bytes(in) + in[i] % places, sizeof word);
                return word;
            }),
#if defined(__x86_64__)
        mapping<uint32_t, uint32_t, n + places / 4 + 1, n>(
            "loadEach4",
            [](const uint32_t* in, uint32_t* out) {
                uint32_t inMemory[n];
                store(inMemory, offsets(in));
                store(out, loadEach4(bytes(in), inMemory));
            },
            [](const uint32_t* in, size_t i) {
                uint32_t word;
                __builtin_memcpy(&word, bytes(in) + in[i] % places, sizeof word);
                return word;
            }),
        mapping<uint32_t, uint64_t, n + places / 4 + 2, n>(
            "loadEach8InLanes",
            [](const uint32_t* in, uint64_t* out) {
                uint32_t inMemory[n];
                store(inMemory, offsets(in));
                unrolled<4>(
                    [&](auto i) { store(out + i * kLanes<uint64_t>, loadEach8InLanes<i>(bytes(in), inMemory)); });
            },
            [](const uint32_t* in, size_t i) {
                const size_t vector = i / kLanes<uint64_t>, block = i % kLanes<uint64_t> / 2;
                uint64_t eight;
                __builtin_memcpy(&eight, bytes(in) + in[8 * block + 2 * vector + i % 2] % places, sizeof eight);
                return eight;
            }),
#endif
    };
    return group(list);
}

// ---- tiles ----------------------------------------------------------------------------------------------------------

template <size_t pixel>
SimdGroup transposes()
{
    using Tile = typename Tiles<pixel>::Large;
    static constexpr size_t rowBytes = Tile::columns * pixel + Tile::excess, columnBytes = Tile::rows * pixel;
    static constexpr SimdOperation list[] = {
        mapping<uint8_t, uint8_t, Tile::rows * rowBytes, Tile::columns * columnBytes>(
            "transpose",
            [](const uint8_t* in, uint8_t* out) { Tile::template transpose<0>(in, rowBytes, out, columnBytes); },
            [](const uint8_t* in, size_t i) {
                return in[i % columnBytes / pixel * rowBytes + i / columnBytes * pixel + i % pixel];
            }),
    };
    return group(list);
}

template <size_t pixel>
SimdGroup mirrored()
{
    using Run = typename Runs<pixel>::Long;
    static constexpr SimdOperation list[] = {
        mapping<uint8_t, uint8_t, Run::size, Run::size>(
            "storeReversed", [](const uint8_t* in, uint8_t* out) { Run::load(in).storeReversed(out); },
            [](const uint8_t* in, size_t i) { return in[(Run::size / pixel - 1 - i / pixel) * pixel + i % pixel]; }),
    };
    return group(list);
}

// ---- partial memory -------------------------------------------------------------------------------------------------

template <class T>
constexpr SimdPartial partial()
{
    return {sizeof(T), kLanes<T>,
            [](const void* in, size_t n, void* out) {
                store(static_cast<T*>(out), loadPartial(static_cast<const T*>(in), n));
            },
            [](const void* in, void* out, size_t n) {
                storePartial(static_cast<T*>(out), load(static_cast<const T*>(in)), n);
            }};
}

template <class T, size_t count>
constexpr SimdPartial partialVecs()
{
    return {sizeof(T), count * kLanes<T>,
            [](const void* in, size_t n, void* out) {
                store(static_cast<T*>(out), loadVecsPartial<count>(static_cast<const T*>(in), n));
            },
            [](const void* in, void* out, size_t n) {
                storePartial(static_cast<T*>(out), loadVecs<count>(static_cast<const T*>(in)), n);
            }};
}

const SimdPartial kPartials[] = {
    partial<uint8_t>(),        partial<int16_t>(),         partial<uint32_t>(),     partial<float>(),
    partialVecs<uint8_t, 3>(), partialVecs<uint16_t, 2>(), partialVecs<float, 4>(),
};

// Functions, so that nothing of this unit runs before it is known that the processor can.
SimdGroup (*const kGroups[])() = {
    moves<uint8_t>,
    moves<int8_t>,
    moves<uint16_t>,
    moves<int16_t>,
    moves<uint32_t>,
    moves<int32_t>,
    moves<float>,
    comparisons<uint8_t>,
    comparisons<int8_t>,
    comparisons<uint16_t>,
    comparisons<int16_t>,
    comparisons<uint32_t>,
    comparisons<int32_t>,
    comparisons<float>,
    integers<uint8_t>,
    integers<int8_t>,
    integers<uint16_t>,
    integers<int16_t>,
    integers<uint32_t>,
    integers<int32_t>,
    saturating<uint8_t>,
    saturating<int8_t>,
    saturating<uint16_t>,
    saturating<int16_t>,
    single,
    neighbours<uint8_t>,
    neighbours<uint16_t>,
    pairsAndCopies,
    widening<uint8_t>,
    widening<int8_t>,
    widening<uint16_t>,
    widening<int16_t>,
    widening<uint32_t>,
    widening<int32_t>,
    widerInLanes<uint8_t>,
    widerInLanes<int8_t>,
    widerInLanes<uint16_t>,
    widerInLanes<int16_t>,
    wideSums<uint8_t>,
    wideSums<int8_t>,
    wideSums<uint16_t>,
    wideSums<int16_t>,
    wideProducts<uint8_t>,
    wideProducts<int8_t>,
    wideProducts<uint16_t>,
    wideProducts<int16_t>,
    pairs,
    everySecond<At::left>,
    everySecond<At::middle>,
    everySecond<At::right>,
    blocksOfBytes,
    wideAndNarrowMasks<int8_t>,
    wideAndNarrowMasks<int16_t>,
    narrowing<uint16_t>,
    narrowing<int16_t>,
    narrowing<uint32_t>,
    narrowing<int32_t>,
    narrowingWithSaturation<int16_t, uint8_t>,
    narrowingWithSaturation<int16_t, int8_t>,
    narrowingWithSaturation<uint16_t, uint8_t>,
    narrowingWithSaturation<int32_t, int16_t>,
    narrowingWithSaturation<int32_t, uint16_t>,
    narrowingWithSaturation<uint32_t, uint16_t>,
    narrowingWithRounding<uint16_t, uint8_t>,
    narrowingWithRounding<int16_t, uint8_t>,
    narrowingWithRounding<int32_t, int16_t>,
    narrowingWithRounding<int32_t, uint16_t>,
    sumsOfColour,
    offsetsOfChroma,
    shortProducts,
    roundedShifts<uint16_t>,
    roundedShifts<int16_t>,
    roundedShifts<int32_t>,
    saturatedShifts<uint16_t>,
    saturatedShifts<int16_t>,
    weightedBytes,
    sums<uint16_t>,
    sums<int16_t>,
    sums<uint32_t>,
    sums<int32_t>,
    byteSums,
    runningSumsOfBytes,
    totals,
    floats,
    floatBits,
    doubles,
    scattered,
    transposes<1>,
    transposes<2>,
    transposes<3>,
    transposes<4>,
    mirrored<1>,
    mirrored<2>,
    mirrored<3>,
};

} // namespace

extern const test::SimdKernels simdKernels;
const test::SimdKernels simdKernels = {kGroups, sizeof kGroups / sizeof *kGroups, kPartials,
                                       sizeof kPartials / sizeof *kPartials};

} // namespace rvk::vecta::RVK_ISA
