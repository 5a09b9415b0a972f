// Rows made of other rows, a step at a time. A step is what is made of whole vectors: `units` units, each of `in` bytes
// of every source row and `out` bytes of every destination row:
//
//     struct Interleave : WholeUnits {
//         static constexpr size_t units = Vec<uint8_t>::lanes, in = 1, out = 2;
//
//         RVK_INLINE static Vecs<uint8_t, 2> take(const Rows<const uint8_t, 2>& src) { ... }
//         RVK_INLINE static void put(const Vecs<uint8_t, 2>& v, size_t target, uint8_t* dst) { ... } // to each target
//     };
//
// A unit may be two pixels, which are halved or doubled across; the last unit of a row may then be one pixel alone.
#pragma once

#include "vecta/simd/rows.h"

namespace rvk::vecta::RVK_ISA {
namespace {

// Each pixel is a unit.
struct WholeUnits
{
    static constexpr bool halvesX = false, doublesX = false;
    static constexpr size_t pixels = 1;
};

template <class Byte, size_t count>
struct Rows
{
    Byte* row[count];

    RVK_INLINE void move(size_t bytes)
    {
        unrolled<count>([&](auto i) RVK_INLINE_LAMBDA { row[i] += bytes; });
    }
    RVK_INLINE void moveBack(size_t bytes)
    {
        unrolled<count>([&](auto i) RVK_INLINE_LAMBDA { row[i] -= bytes; });
    }
};

// The bytes of a row of `width` pixels.
template <class Step>
RVK_INLINE size_t sourceBytes(size_t width)
{
    return Step::halvesX ? width * (Step::in / 2) : (width + Step::pixels - 1) / Step::pixels * Step::in;
}
template <class Step>
RVK_INLINE size_t targetBytes(size_t width)
{
    return Step::doublesX ? width * (Step::out / 2) : (width + Step::pixels - 1) / Step::pixels * Step::out;
}

template <class Step, size_t sources, size_t targets>
RVK_INLINE void applyStep(const Rows<const uint8_t, sources>& src, const Rows<uint8_t, targets>& dst)
{
    const auto v = Step::take(src);
    unrolled<targets>([&](auto i) RVK_INLINE_LAMBDA { Step::put(v, i, dst.row[i]); });
}

// Two steps, one destination after the other: lines that follow each other go to the cache faster than by turns.
template <class Step, size_t sources, size_t targets>
RVK_INLINE void applyTwice(const Rows<const uint8_t, sources>& src, const Rows<uint8_t, targets>& dst)
{
    Rows<const uint8_t, sources> next = src;
    next.move(Step::units * Step::in);
    const auto v = Step::take(src), w = Step::take(next);
    unrolled<targets>([&](auto i) RVK_INLINE_LAMBDA {
        Step::put(v, i, dst.row[i]);
        Step::put(w, i, dst.row[i] + Step::units * Step::out);
    });
}

// Fewer pixels than a step takes, through memory that a whole one fits. A pixel alone is its own neighbour.
template <class Step, size_t sources, size_t targets>
RVK_NOINLINE void mapFew(size_t width, Rows<const uint8_t, sources> src, Rows<uint8_t, targets> dst)
{
    uint8_t in[sources][Step::units * Step::in] = {}, out[targets][Step::units * Step::out];
    const size_t inSize = sourceBytes<Step>(width), outSize = targetBytes<Step>(width);
    for (size_t i = 0; i < sources; ++i) {
        __builtin_memcpy(in[i], src.row[i], inSize);
        if (Step::halvesX && width % 2)
            __builtin_memcpy(in[i] + inSize, in[i] + inSize - Step::in / 2, Step::in / 2);
    }
    Rows<const uint8_t, sources> from;
    Rows<uint8_t, targets> to;
    unrolled<sources>([&](auto i) RVK_INLINE_LAMBDA { from.row[i] = in[i]; });
    unrolled<targets>([&](auto i) RVK_INLINE_LAMBDA { to.row[i] = out[i]; });
    applyStep<Step>(from, to);
    for (size_t i = 0; i < targets; ++i)
        __builtin_memcpy(dst.row[i], out[i], outSize);
}

// The last step overlaps the one before it: no source is a destination.
template <class Step, size_t sources, size_t targets>
RVK_INLINE void mapRows(size_t width, Rows<const uint8_t, sources> src, Rows<uint8_t, targets> dst)
{
    constexpr size_t in = Step::units * Step::in, out = Step::units * Step::out;
    const size_t units = width / Step::pixels;
    size_t steps = units / Step::units;
    if (steps == 0) {
        mapFew<Step>(width, src, dst);
        return;
    }
    if constexpr (targets > 1 && Step::units * Step::out == kBytes) { // others write several vectors to each anyway
        for (; steps >= 2; steps -= 2) {
            applyTwice<Step>(src, dst);
            src.move(2 * in);
            dst.move(2 * out);
        }
    }
    for (; steps; --steps) {
        applyStep<Step>(src, dst);
        src.move(in);
        dst.move(out);
    }
    if (const size_t rest = units % Step::units) {
        src.moveBack(in - rest * Step::in);
        dst.moveBack(out - rest * Step::out);
        applyStep<Step>(src, dst);
        src.move(in);
        dst.move(out);
    }
    if (width % Step::pixels)
        mapFew<Step>(1, src, dst);
}

} // namespace
} // namespace rvk::vecta::RVK_ISA
