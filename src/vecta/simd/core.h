// A vector of as many elements as one register of the instruction set holds, and everything on it that the compilers'
// vector extensions express directly. What needs an instruction of its own stands in x86.h and neon.h.
//
// Everything of this layer lies in an anonymous namespace, although these are headers: a unit is compiled for several
// instruction sets, and a function that the linker could share between units would carry AVX-512 code into a program
// that runs on a plain CPU.
#pragma once

// Operations stand in columns here, a line each.
// clang-format off

#include <cstddef>
#include <cstdint>

#ifndef RVK_ISA
#error "compile the vector units with RVK_ISA set to an instruction set"
#endif

#if defined(__x86_64__)
#if !defined(__clang__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wuninitialized" // GCC's own 512-bit intrinsics start from undefined registers
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
#include <immintrin.h>
#if !defined(__clang__)
#pragma GCC diagnostic pop
#endif
#elif defined(__ARM_NEON)
#include <arm_neon.h>
#endif

#define RVK_INLINE inline __attribute__((always_inline))
#define RVK_INLINE_LAMBDA __attribute__((always_inline))
#define RVK_NOINLINE __attribute__((noinline)) // for what is large and has several callers: it stands once for all

namespace rvk::vecta::RVK_ISA {
namespace {

#if defined(__AVX512BW__)
constexpr size_t kBytes = 64;
#elif defined(__AVX2__)
constexpr size_t kBytes = 32;
#else
constexpr size_t kBytes = 16;
#endif

template <class T>
struct Vec {
    using Element = T;
    using Raw __attribute__((vector_size(kBytes))) = T;
    static constexpr size_t lanes = kBytes / sizeof(T);
    Raw raw;
};

// Two, three or four vectors that belong together: a wider copy of one vector, or the channels of pixels.
template <class T, size_t count>
struct Vecs {
    using Element = T;
    Vec<T> v[count];
    RVK_INLINE Vec<T>& operator[](size_t i) { return v[i]; }
    RVK_INLINE const Vec<T>& operator[](size_t i) const { return v[i]; }
};

// The element types twice and half as wide.
template <class T> struct WiderOf;
template <> struct WiderOf<uint8_t> { using Type = uint16_t; };
template <> struct WiderOf<int8_t> { using Type = int16_t; };
template <> struct WiderOf<uint16_t> { using Type = uint32_t; };
template <> struct WiderOf<int16_t> { using Type = int32_t; };
template <> struct WiderOf<uint32_t> { using Type = uint64_t; };
template <> struct WiderOf<int32_t> { using Type = int64_t; };
template <class T> using Wider = typename WiderOf<T>::Type;

template <class T> struct NarrowerOf;
template <> struct NarrowerOf<uint16_t> { using Type = uint8_t; };
template <> struct NarrowerOf<int16_t> { using Type = int8_t; };
template <> struct NarrowerOf<uint32_t> { using Type = uint16_t; };
template <> struct NarrowerOf<int32_t> { using Type = int16_t; };
template <class T> using Narrower = typename NarrowerOf<T>::Type;

template <class T> struct UnsignedOf { using Type = T; };
template <> struct UnsignedOf<int8_t> { using Type = uint8_t; };
template <> struct UnsignedOf<int16_t> { using Type = uint16_t; };
template <> struct UnsignedOf<int32_t> { using Type = uint32_t; };
template <> struct UnsignedOf<int64_t> { using Type = uint64_t; };
template <> struct UnsignedOf<float> { using Type = uint32_t; };
template <class T> using Unsigned = typename UnsignedOf<T>::Type;

template <class T> struct SignedOf { using Type = T; };
template <> struct SignedOf<uint8_t> { using Type = int8_t; };
template <> struct SignedOf<uint16_t> { using Type = int16_t; };
template <> struct SignedOf<uint32_t> { using Type = int32_t; };
template <> struct SignedOf<uint64_t> { using Type = int64_t; };
template <class T> using Signed = typename SignedOf<T>::Type;

template <class A, class B> constexpr bool isSame = false;
template <class A> constexpr bool isSame<A, A> = true;
template <class T> constexpr bool isSigned = T(-1) < T(0);

// ---- lists of numbers -----------------------------------------------------------------------------------------------

template <size_t... i>
struct Indices {
};
template <class List, size_t next> struct AppendIndex;
template <size_t... i, size_t next> struct AppendIndex<Indices<i...>, next> { using Type = Indices<i..., next>; };
template <size_t count> struct CountTo {
    using Type = typename AppendIndex<typename CountTo<count - 1>::Type, count - 1>::Type;
};
template <> struct CountTo<0> { using Type = Indices<>; };

// f(0), f(1), ... f(count - 1), each with its number as a constant. (g++ keeps an array that a loop walks in memory,
// and moves it there word by word.)
template <size_t i>
struct Constant {
    constexpr operator size_t() const { return i; }
};

template <class F, size_t... i>
RVK_INLINE void unrolledOver([[maybe_unused]] F f, Indices<i...>)
{
    (f(Constant<i>{}), ...);
}

template <size_t count, class F>
RVK_INLINE void unrolled(F f)
{
    unrolledOver(f, typename CountTo<count>::Type{});
}

// ---- bits -----------------------------------------------------------------------------------------------------------

template <class To, class From>
RVK_INLINE Vec<To> bitCast(Vec<From> v)
{
    return {(typename Vec<To>::Raw)v.raw};
}

template <class To, class From, size_t count>
RVK_INLINE Vecs<To, count> bitCast(const Vecs<From, count>& v)
{
    Vecs<To, count> r;
    unrolled<count>([&](auto i) RVK_INLINE_LAMBDA { r.v[i] = bitCast<To>(v.v[i]); });
    return r;
}

// f on both halves of widened vectors.
template <class T, class F>
RVK_INLINE auto both(const Vecs<T, 2>& v, F f)
{
    return Vecs<typename decltype(f(v[0]))::Element, 2>{f(v[0]), f(v[1])};
}

template <class A, class B, class F>
RVK_INLINE auto both(const Vecs<A, 2>& a, const Vecs<B, 2>& b, F f)
{
    return Vecs<typename decltype(f(a[0], b[0]))::Element, 2>{f(a[0], b[0]), f(a[1], b[1])};
}

// The compilers can no longer tell where the pointers come from. Otherwise some replace those that a loop moves by one
// for each address that occurs in it, which takes registers and more instructions.
template <class... P>
RVK_INLINE void pin(P*&... p)
{
    const auto hide = [](auto*& one) RVK_INLINE_LAMBDA { __asm__("" : "+r"(one)); };
    (hide(p), ...);
}

// The same number, but the compilers cannot tell: for loops over rows, which clang would otherwise have once for each
// kind of width that their body treats in a way of its own.
RVK_INLINE size_t anyNumber(size_t n)
{
    __asm__ volatile("" : "+r"(n));
    return n;
}

// The same vector, but the compilers cannot tell: g++ loads again what it knows to be in memory, and clang replaces
// operations with constants by others.
template <class T>
RVK_INLINE Vec<T> anyVector(Vec<T> v)
{
#if defined(__x86_64__)
    __asm__("" : "+v"(v.raw));
#else
    __asm__("" : "+w"(v.raw));
#endif
    return v;
}

// ---- memory ---------------------------------------------------------------------------------------------------------

// A register's worth of elements anywhere in memory. (Loads and stores go through this type: a memcpy of 32 or 64 bytes
// would have g++ move it in pieces through the stack.)
template <class T>
struct InMemory {
    using Raw __attribute__((vector_size(kBytes), aligned(1), may_alias)) = T;
};

template <class T>
RVK_INLINE Vec<T> load(const T* p)
{
    return {*reinterpret_cast<const typename InMemory<T>::Raw*>(p)};
}

template <class T>
RVK_INLINE void store(T* p, Vec<T> v)
{
    *reinterpret_cast<typename InMemory<T>::Raw*>(p) = v.raw;
}

template <class T, size_t... i>
RVK_INLINE Vecs<T, sizeof...(i)> loadVecsAt(const T* p, Indices<i...>)
{
    return {{load(p + i * Vec<T>::lanes)...}};
}

template <size_t count, class T>
RVK_INLINE Vecs<T, count> loadVecs(const T* p)
{
    return loadVecsAt(p, typename CountTo<count>::Type{});
}

template <class T, size_t count>
RVK_INLINE void store(T* p, const Vecs<T, count>& v)
{
    unrolled<count>([&](auto i) RVK_INLINE_LAMBDA { store(p + i * Vec<T>::lanes, v.v[i]); });
}

// loadPartial: the first n elements, n <= lanes, and zero in the other lanes; reads n elements only. storePartial
// writes the first n. The same for several vectors in a row, n <= count * lanes.
#if !defined(__AVX512BW__) // x86.h has them with masks
template <class T>
RVK_INLINE Vec<T> loadPartial(const T* p, size_t n)
{
    if (__builtin_constant_p(n) && n * sizeof(T) == sizeof(uint32_t)) { // not through memory
        uint32_t word;
        __builtin_memcpy(&word, p, sizeof word);
        Vec<uint32_t> v = {};
        v.raw[0] = word;
        return bitCast<T>(v);
    }
    Vec<T> v = {};
    __builtin_memcpy(&v, p, n * sizeof(T));
    return v;
}

template <class T>
RVK_INLINE void storePartial(T* p, Vec<T> v, size_t n)
{
    __builtin_memcpy(p, &v, n * sizeof(T));
}

template <size_t count, class T>
RVK_INLINE Vecs<T, count> loadVecsPartial(const T* p, size_t n)
{
    Vecs<T, count> r = {};
    __builtin_memcpy(&r, p, n * sizeof(T));
    return r;
}

template <class T, size_t count>
RVK_INLINE void storePartial(T* p, const Vecs<T, count>& v, size_t n)
{
    __builtin_memcpy(p, &v, n * sizeof(T));
}
#endif

// ---- constants ------------------------------------------------------------------------------------------------------

template <class T>
RVK_INLINE Vec<T> splat(T x)
{
    return {x - typename Vec<T>::Raw{}};
}

template <>
RVK_INLINE Vec<float> splat(float x)
{
    uint32_t bits; // no arithmetic, which could change a signalling not-a-number
    __builtin_memcpy(&bits, &x, sizeof bits);
    return bitCast<float>(splat(bits));
}

template <class T>
RVK_INLINE Vec<T> zero()
{
    return {typename Vec<T>::Raw{}};
}

// 0, 1, 2, ... in lane order.
template <class T>
RVK_INLINE Vec<T> iota()
{
    Vec<T> v;
    for (size_t i = 0; i < Vec<T>::lanes; ++i)
        v.raw[i] = static_cast<T>(i);
    return v;
}

// ---- arithmetic: integers wrap --------------------------------------------------------------------------------------

// The raw operators of signed vectors would be undefined on overflow, so sums and products are formed unsigned. On
// 32-bit Arm the compilers refuse NEON for float operators, because it flushes subnormals; intrinsics insist.
#if defined(__ARM_NEON) && !defined(__aarch64__)
#define RVK_GENERIC_FLOAT 0
#else
#define RVK_GENERIC_FLOAT 1
#endif

template <class T>
RVK_INLINE typename Vec<Unsigned<T>>::Raw rawBits(Vec<T> v)
{
    return bitCast<Unsigned<T>>(v).raw;
}

template <class T>
RVK_INLINE Vec<T> fromBits(typename Vec<Unsigned<T>>::Raw raw)
{
    return {(typename Vec<T>::Raw)raw};
}

template <class T> RVK_INLINE Vec<T> operator+(Vec<T> a, Vec<T> b) { return fromBits<T>(rawBits(a) + rawBits(b)); }
template <class T> RVK_INLINE Vec<T> operator-(Vec<T> a, Vec<T> b) { return fromBits<T>(rawBits(a) - rawBits(b)); }
template <class T> RVK_INLINE Vec<T> operator*(Vec<T> a, Vec<T> b) { return fromBits<T>(rawBits(a) * rawBits(b)); }
template <class T> RVK_INLINE Vec<T> operator&(Vec<T> a, Vec<T> b) { return fromBits<T>(rawBits(a) & rawBits(b)); }
template <class T> RVK_INLINE Vec<T> operator|(Vec<T> a, Vec<T> b) { return fromBits<T>(rawBits(a) | rawBits(b)); }
template <class T> RVK_INLINE Vec<T> operator^(Vec<T> a, Vec<T> b) { return fromBits<T>(rawBits(a) ^ rawBits(b)); }
template <class T> RVK_INLINE Vec<T> operator~(Vec<T> a) { return fromBits<T>(~rawBits(a)); }

#if RVK_GENERIC_FLOAT
template <> RVK_INLINE Vec<float> operator+(Vec<float> a, Vec<float> b) { return {a.raw + b.raw}; }
template <> RVK_INLINE Vec<float> operator-(Vec<float> a, Vec<float> b) { return {a.raw - b.raw}; }
template <> RVK_INLINE Vec<float> operator*(Vec<float> a, Vec<float> b) { return {a.raw * b.raw}; }
#else
template <> RVK_INLINE Vec<float> operator+(Vec<float> a, Vec<float> b) { return {vaddq_f32(a.raw, b.raw)}; }
template <> RVK_INLINE Vec<float> operator-(Vec<float> a, Vec<float> b) { return {vsubq_f32(a.raw, b.raw)}; }
template <> RVK_INLINE Vec<float> operator*(Vec<float> a, Vec<float> b) { return {vmulq_f32(a.raw, b.raw)}; }
#endif

// Shifts by one count for all lanes, below the width of an element; right shifts keep the sign of signed elements.
template <class T>
RVK_INLINE Vec<T> shiftLeft(Vec<T> a, unsigned count)
{
    return fromBits<T>(rawBits(a) << static_cast<Unsigned<T>>(count));
}

template <class T>
RVK_INLINE Vec<T> shiftRight(Vec<T> a, unsigned count)
{
    return {a.raw >> static_cast<T>(count)};
}

// ---- lanes ----------------------------------------------------------------------------------------------------------

template <class T, class F, size_t... i>
RVK_INLINE Vec<T> shuffleLanes(Vec<T> a, Vec<T> b, F, Indices<i...>)
{
    return {__builtin_shufflevector(a.raw, b.raw, F{}(i)...)};
}

// Lane i of the result is lane f(i) of a followed by b. f is a lambda without captures: its values are constants.
template <class T, class F>
RVK_INLINE Vec<T> shuffle(Vec<T> a, Vec<T> b, F f)
{
    return shuffleLanes(a, b, f, typename CountTo<Vec<T>::lanes>::Type{});
}

// The lanes from last to first.
template <class T>
RVK_INLINE Vec<T> reverse(Vec<T> v)
{
    return shuffle(v, v, [](size_t i) { return Vec<T>::lanes - 1 - i; });
}

// Lanes n, n + 1, ... of a followed by b; n is at most the number of lanes.
template <size_t n, class T>
RVK_INLINE Vec<T> extract(Vec<T> a, Vec<T> b)
{
    static_assert(n <= Vec<T>::lanes);
    if constexpr (n == Vec<T>::lanes)
        return b;
    else
        return shuffle(a, b, [](size_t i) { return i + n; });
}

// a0 b0 a1 b1 ...: the first and the second half of it.
template <class T>
RVK_INLINE Vec<T> zipLow(Vec<T> a, Vec<T> b)
{
    return shuffle(a, b, [](size_t i) { return i / 2 + i % 2 * Vec<T>::lanes; });
}

template <class T>
RVK_INLINE Vec<T> zipHigh(Vec<T> a, Vec<T> b)
{
    return shuffle(a, b, [](size_t i) { return i / 2 + (1 + i % 2 * 2) * (Vec<T>::lanes / 2); });
}

// The lanes with an even or odd number of a followed by b.
template <class T>
RVK_INLINE Vec<T> unzipEven(Vec<T> a, Vec<T> b)
{
    return shuffle(a, b, [](size_t i) { return 2 * i; });
}

template <class T>
RVK_INLINE Vec<T> unzipOdd(Vec<T> a, Vec<T> b)
{
    return shuffle(a, b, [](size_t i) { return 2 * i + 1; });
}

// "InLanes": the same within each 16-byte block of the registers, which is what x86 does in one instruction. Registers
// of 16 bytes are one block. What an ...InLanes function takes apart, its counterpart puts together again; element-wise
// work in between does not see the order.
template <class T> constexpr size_t kBlock = 16 / sizeof(T);

template <class T>
RVK_INLINE Vecs<T, 2> zipInLanes(Vec<T> a, Vec<T> b)
{
    constexpr size_t n = kBlock<T>;
    return {shuffle(a, b, [](size_t i) { return i / n * n + i % n / 2 + i % 2 * Vec<T>::lanes; }),
            shuffle(a, b, [](size_t i) { return i / n * n + n / 2 + i % n / 2 + i % 2 * Vec<T>::lanes; })};
}

// What an ...InLanes function made twice as wide, in the order of memory.
template <class T>
RVK_INLINE Vecs<T, 2> orderWidened(const Vecs<T, 2>& v)
{
    if constexpr (kBytes > 16) {
        const Vecs<uint64_t, 2> z = bitCast<uint64_t>(v); // halves of blocks
        return bitCast<T>(Vecs<uint64_t, 2>{
            shuffle(z[0], z[1], [](size_t i) { return i % 2 + i / 4 * 2 + i / 2 % 2 * Vec<uint64_t>::lanes; }),
            shuffle(z[0], z[1], [](size_t i) {
                return i % 2 + i / 4 * 2 + i / 2 % 2 * Vec<uint64_t>::lanes + Vec<uint64_t>::lanes / 2; })});
    } else {
        return v;
    }
}

// zipLow and zipHigh. Where there are more blocks than one, both halves are made of the same two vectors.
template <class T>
RVK_INLINE Vecs<T, 2> zip(Vec<T> a, Vec<T> b)
{
    constexpr size_t n = Vec<T>::lanes;
    if constexpr (kBytes == 64 && sizeof(T) >= 4) // whose elements an instruction takes from two vectors
        return {shuffle(a, b, [](size_t i) { return i / 2 + i % 2 * n; }),
                shuffle(a, b, [](size_t i) { return n / 2 + i / 2 + i % 2 * n; })};
    else if constexpr (kBytes > 16)
        return orderWidened(zipInLanes(a, b));
    else
        return {zipLow(a, b), zipHigh(a, b)};
}

// ---- comparison and selection ---------------------------------------------------------------------------------------

template <class T> struct Mask;

// Masks that belong together, as those of a wider copy of one vector do.
template <class T, size_t count>
struct Masks {
    Mask<T> m[count];
    RVK_INLINE const Mask<T>& operator[](size_t i) const { return m[i]; }
};

#if !defined(__AVX512BW__)
// The result of a comparison: a truth value per lane. Masks combine with & | ^ ~.
template <class T>
struct Mask {
    Vec<Unsigned<T>> bits; // all bits of a true lane are set
};

template <class T> RVK_INLINE Mask<T> operator&(Mask<T> a, Mask<T> b) { return {a.bits & b.bits}; }
template <class T> RVK_INLINE Mask<T> operator|(Mask<T> a, Mask<T> b) { return {a.bits | b.bits}; }
template <class T> RVK_INLINE Mask<T> operator^(Mask<T> a, Mask<T> b) { return {a.bits ^ b.bits}; }
template <class T> RVK_INLINE Mask<T> operator~(Mask<T> a) { return {~a.bits}; }

// All bits of the true lanes set, the others zero.
template <class T>
RVK_INLINE Vec<T> toVec(Mask<T> m)
{
    return bitCast<T>(m.bits);
}
#endif

} // namespace
} // namespace rvk::vecta::RVK_ISA
