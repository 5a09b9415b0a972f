// C references of Lucas-Kanade tracking, and what the vector implementations share: the search.
#include "cpu/ravikLucasKanadeC.h"

#include "cpu/image.h"
#include "functions.h"
#include "kernels.h"
#include "scratch.h"

#include <cmath>
#include <cstring>

namespace rvk {

// ---- the search ---------------------------------------------------------------------------------

namespace {

constexpr uint32_t kMostIterations = 1000;

struct Vector
{
    double x, y;

    Vector operator+(Vector v) const { return {x + v.x, y + v.y}; }
    Vector operator-(Vector v) const { return {x - v.x, y - v.y}; }
    Vector operator*(double factor) const { return {x * factor, y * factor}; }
    bool isFinite() const { return std::isfinite(x) && std::isfinite(y); }
};

template <class T>
struct Picture
{
    const T* pixels = nullptr;
    uint32_t width = 0, height = 0, stride = 0;

    Picture() = default;
    Picture(const rvkPyramidLevel& level)
        : pixels(static_cast<const T*>(level.ptr)), width(level.width), height(level.height),
          stride(static_cast<uint32_t>(width * sizeof(T)))
    {
    }
    Picture(const rvkPyramidLevel_v2& level)
        : pixels(static_cast<const T*>(level.ptr)), width(level.width), height(level.height),
          stride(level.stride ? level.stride : static_cast<uint32_t>(width * sizeof(T)))
    {
    }
    bool has(Vector point) const
    {
        return point.x >= 0 && point.x <= width - 1.0 && point.y >= 0 && point.y <= height - 1.0;
    }
};

// A whole number and a fraction of it, rounded to a multiple of 2^-16: so samples are never so small that some targets
// take them as 0.
struct Place
{
    int64_t whole;
    float32_t fraction;

    explicit Place(double at)
    {
        constexpr double farAway = 0x1p40, unit = 65536; // beyond any picture all pixels are the same
        const double near = std::clamp(at, -farAway, farAway), below = std::floor(near);
        whole = static_cast<int64_t>(below);
        fraction = static_cast<float32_t>(std::floor((near - below) * unit + 0.5) / unit); // 1 is as good
    }
};

// `size` pixels of a row or column from `first` on: how many of them lie before the picture, which pixel of the picture
// comes next, and how many there are of it, 1 at least. The others are like the nearest.
struct Extent
{
    size_t before, first, count;

    Extent(int64_t from, size_t size, uint32_t pictureSize)
        : before(static_cast<size_t>(std::clamp<int64_t>(-from, 0, static_cast<int64_t>(size) - 1))),
          first(static_cast<size_t>(std::clamp<int64_t>(from, 0, int64_t{pictureSize} - 1))),
          count(std::min<size_t>(size - before, pictureSize - first))
    {
    }
};

// A part of a picture, as floats, that holds patches at places near each other.
template <class T>
class Region
{
public:
    // For patches of columns x rows pixels, and room around them to all sides.
    Region(size_t columns, size_t rows, size_t pitch, size_t room)
        : m_columns(columns), m_rows(rows), m_pitch(pitch), m_room(room)
    {
    }
    size_t size() const { return m_pitch * rowsInAll(); }
    void useMemory(float32_t* memory) { m_pixels = memory; }

    void setPicture(const LucasKanadeKernels<T>& kernels, const Picture<T>& picture)
    {
        m_kernels = &kernels;
        m_picture = picture;
        m_isFilled = false;
    }
    LucasKanadePatch patchAt(Vector at)
    {
        const Place x(at.x), y(at.y);
        const int64_t column = nearby(x.whole, m_columns, m_picture.width);
        const int64_t row = nearby(y.whole, m_rows, m_picture.height);
        const auto most = static_cast<int64_t>(2 * m_room);
        if (!m_isFilled || column < m_left || column > m_left + most || row < m_top || row > m_top + most)
            fill(column - static_cast<int64_t>(m_room), row - static_cast<int64_t>(m_room));
        const float32_t* first =
            m_pixels + static_cast<size_t>(row - m_top) * m_pitch + static_cast<size_t>(column - m_left);
        return {first, m_pitch, x.fraction, y.fraction};
    }

private:
    size_t columnsInAll() const { return m_columns + 2 * m_room; }
    size_t rowsInAll() const { return m_rows + 2 * m_room; }
    // Where a patch that lies outside of the picture has the same pixels.
    static int64_t nearby(int64_t place, size_t patchSize, uint32_t size)
    {
        return std::clamp<int64_t>(place, -static_cast<int64_t>(patchSize), size);
    }

    void fill(int64_t left, int64_t top)
    {
        m_left = left;
        m_top = top;
        m_isFilled = true;
        const Extent across(left, columnsInAll(), m_picture.width), down(top, rowsInAll(), m_picture.height);
        const Plane<const T> picture{m_picture.pixels, m_picture.stride};
        m_kernels->toFloats(picture.row(down.first) + across.first, m_picture.stride, across.count, down.count,
                            m_pixels + down.before * m_pitch + across.before, m_pitch);
        const size_t end = down.before + down.count;
        for (size_t y = down.before; y < end; ++y) {
            float32_t *row = m_pixels + y * m_pitch, *last = row + across.before + across.count - 1;
            std::fill(row, row + across.before, row[across.before]);
            std::fill(last + 1, row + columnsInAll(), *last);
        }
        const auto copyRow = [&](size_t to, size_t from) {
            std::memcpy(m_pixels + to * m_pitch, m_pixels + from * m_pitch, columnsInAll() * sizeof(float32_t));
        };
        for (size_t y = 0; y < down.before; ++y)
            copyRow(y, down.before);
        for (size_t y = end; y < rowsInAll(); ++y)
            copyRow(y, end - 1);
    }

    const size_t m_columns, m_rows, m_pitch, m_room;
    float32_t* m_pixels = nullptr;
    const LucasKanadeKernels<T>* m_kernels = nullptr;
    Picture<T> m_picture;
    int64_t m_left = 0, m_top = 0;
    bool m_isFilled = false;
};

// The sum of n floats, as four that do not wait for each other.
double total(const float32_t* numbers, size_t n)
{
    double sums[4] = {};
    size_t i = 0;
    for (; i + 4 <= n; i += 4)
        for (size_t k = 0; k < 4; ++k)
            sums[k] += static_cast<double>(numbers[i + k]);
    for (; i < n; ++i)
        sums[i % 4] += static_cast<double>(numbers[i]);
    return (sums[0] + sums[1]) + (sums[2] + sums[3]);
}

// G of the sums over a window.
struct Gradients
{
    double xx, xy, yy;

    bool isFinite() const { return std::isfinite(xx) && std::isfinite(xy) && std::isfinite(yy); }
    double determinant() const { return xx * yy - xy * xy; }
    double smallerEigenvalue() const { return (xx + yy - std::sqrt((xx - yy) * (xx - yy) + 4 * xy * xy)) / 2; }
    Vector solve(Vector b) const { return Vector{yy * b.x - xy * b.y, xx * b.y - xy * b.x} * (1 / determinant()); }
};

enum class Outcome { found, tooFlat, notFinite };

// Follows points, one after the other.
template <class T>
class Tracker
{
public:
    Tracker(const LucasKanadeKernels<T>& kernels, const LucasKanadeSearch& search)
        : m_kernels(kernels), m_search(search), m_columns(search.width), m_rows(search.height),
          m_pitch((m_columns + kLucasKanadeLanes - 1) / kLucasKanadeLanes * kLucasKanadeLanes),
          m_region1(m_columns + 3, m_rows + 3, m_pitch + kLucasKanadeLanes, 0),
          m_region2(m_columns + 1, m_rows + 1, m_pitch + kLucasKanadeLanes, kRoom),
          m_memory(m_region1.size() + m_region2.size() + samplesSize() + 2 * m_pitch * m_rows + 3 * m_pitch)
    {
        if (!m_memory)
            return;
        float32_t* next = m_memory.get();
        const auto take = [&](size_t size) {
            float32_t* const taken = next;
            std::fill_n(taken, size, 0.0f); // numbers, where vectors read more than is used
            next += size;
            return taken;
        };
        m_region1.useMemory(take(m_region1.size()));
        m_region2.useMemory(take(m_region2.size()));
        m_samples = take(samplesSize());
        m_dx = take(m_pitch * m_rows);
        m_dy = take(m_pitch * m_rows);
        for (float32_t*& sums : m_sums)
            sums = take(m_pitch);
    }
    explicit operator bool() const { return static_cast<bool>(m_memory); }

    // On one level; `flow` is where the search begins and ends.
    Outcome follow(const Picture<T>& picture1, const Picture<T>& picture2, Vector point, Vector& flow)
    {
        m_region1.setPicture(m_kernels, picture1);
        m_region2.setPicture(m_kernels, picture2);
        const Vector corner = point - toCentre();
        const Gradients g = cutWindow(corner);
        if (!g.isFinite())
            return Outcome::notFinite;
        const double pixels = static_cast<double>(m_columns * m_rows);
        if (!(g.smallerEigenvalue() / pixels >= static_cast<double>(m_search.minEigenvalue)) || !(g.determinant() > 0))
            return Outcome::tooFlat;
        const double epsilon = static_cast<double>(m_search.epsilon);
        for (uint32_t i = 0; i < std::min(m_search.maxIterations, kMostIterations); ++i) {
            m_kernels.sumDifferences(window(), m_region2.patchAt(corner + flow), m_sums[0], m_sums[1]);
            const Vector step = g.solve({total(m_sums[0], m_columns), total(m_sums[1], m_columns)});
            flow = flow + step;
            if (!flow.isFinite())
                return Outcome::notFinite;
            if (step.x * step.x + step.y * step.y < epsilon * epsilon)
                break;
        }
        return Outcome::found;
    }
    // After that: the mean difference of the two windows.
    double errorAt(Vector point)
    {
        m_kernels.sumErrors(window(), m_region2.patchAt(point - toCentre()), m_sums[0]);
        return total(m_sums[0], m_columns) / static_cast<double>(m_columns * m_rows);
    }

private:
    static constexpr size_t kRoom = 3; // what most searches do not go beyond on a level
    static_assert(2 * kRoom + 1 <= kLucasKanadeLanes);

    Vector toCentre() const { return {static_cast<double>(m_columns / 2), static_cast<double>(m_rows / 2)}; }
    size_t samplePitch() const { return m_pitch + kLucasKanadeLanes; }
    size_t samplesSize() const { return samplePitch() * (m_rows + 2); }

    // The window has a frame of one more sample.
    LucasKanadeWindow window() const
    {
        return {m_columns, m_rows, m_samples + samplePitch() + 1, samplePitch(), m_dx, m_dy, m_pitch};
    }

    Gradients cutWindow(Vector corner)
    {
        m_kernels.sample(m_region1.patchAt(corner - Vector{1, 1}), m_columns + 2, m_rows + 2, m_samples, samplePitch());
        const auto bytes = [](size_t floats) { return static_cast<uint32_t>(floats * sizeof(float32_t)); };
        const auto columns = static_cast<uint32_t>(m_columns), rows = static_cast<uint32_t>(m_rows);
        kernel<Kernel::irvkGradientIxf32>()(m_samples, columns, rows, bytes(samplePitch()), m_dx, bytes(m_pitch));
        kernel<Kernel::irvkGradientIyf32>()(m_samples, columns, rows, bytes(samplePitch()), m_dy, bytes(m_pitch));
        m_kernels.sumSquares(window(), m_sums[0], m_sums[1], m_sums[2]);
        return {total(m_sums[0], m_columns), total(m_sums[1], m_columns), total(m_sums[2], m_columns)};
    }

    const LucasKanadeKernels<T>& m_kernels;
    const LucasKanadeSearch& m_search;
    const size_t m_columns, m_rows, m_pitch;
    Region<T> m_region1, m_region2;
    Scratch<float32_t> m_memory;
    float32_t *m_samples = nullptr, *m_dx = nullptr, *m_dy = nullptr;
    float32_t* m_sums[3] = {};
};

} // namespace

template <class T, class Level>
rvkStatus trackPoints(const LucasKanadeKernels<T>& kernels, const Level* pyr1, const Level* pyr2, uint32_t numLevels,
                      const LucasKanadePoints& points, const LucasKanadeSearch& search)
{
    Tracker<T> tracker(kernels, search);
    if (!tracker)
        return RAVIK_ENORES;
    const Picture<T> base = pyr1[0];
    // Whether there is a way from level to level; `flow` is where it begins and ends, in pixels of level 0.
    const auto follow = [&](Vector point, Vector& flow) {
        for (uint32_t level = numLevels; level-- > 0;) {
            const double scale = std::ldexp(1.0, -static_cast<int>(level));
            Vector there = flow * scale;
            const Outcome outcome = tracker.follow(pyr1[level], pyr2[level], point * scale, there);
            if (outcome == Outcome::notFinite || (outcome == Outcome::tooFlat && level == 0))
                return false;
            flow = there * (1 / scale);
        }
        return true;
    };
    for (size_t i = 0; i < points.count; ++i) {
        const float32_t x1 = points.points1[2 * i], y1 = points.points1[2 * i + 1];
        float32_t* const to = points.points2 + 2 * i;
        const Vector point = {x1, y1};
        Vector flow = points.useGuess ? Vector{to[0], to[1]} - point : Vector{0, 0};
        bool isFound = base.has(point) && flow.isFinite() && follow(point, flow) && base.has(point + flow);
        float32_t error = 0;
        if (isFound && (points.errors || !std::is_integral_v<T>)) {
            error = static_cast<float32_t>(tracker.errorAt(point + flow));
            isFound = std::isfinite(error);
        }
        to[0] = isFound ? static_cast<float32_t>(point.x + flow.x) : x1;
        to[1] = isFound ? static_cast<float32_t>(point.y + flow.y) : y1;
        points.status[i] = isFound;
        if (points.errors)
            points.errors[i] = isFound ? error : std::numeric_limits<float32_t>::infinity();
    }
    return RAVIK_SUCCESS;
}

template rvkStatus trackPoints(const LucasKanadeKernels<uint8_t>&, const rvkPyramidLevel*, const rvkPyramidLevel*,
                               uint32_t, const LucasKanadePoints&, const LucasKanadeSearch&);
template rvkStatus trackPoints(const LucasKanadeKernels<uint8_t>&, const rvkPyramidLevel_v2*, const rvkPyramidLevel_v2*,
                               uint32_t, const LucasKanadePoints&, const LucasKanadeSearch&);
template rvkStatus trackPoints(const LucasKanadeKernels<float32_t>&, const rvkPyramidLevel*, const rvkPyramidLevel*,
                               uint32_t, const LucasKanadePoints&, const LucasKanadeSearch&);

// ---- the references of the kernels --------------------------------------------------------------

namespace {

// Scharr's derivative of the differences of opposite samples, the middle one the second.
float32_t scharr(float32_t first, float32_t second, float32_t third)
{
    return (first + third) * (3.0f / 32) + second * (10.0f / 32);
}

} // namespace

void irvkGradientIxf32C(const float32_t* src, uint32_t width, uint32_t height, uint32_t srcStride, float32_t* dst,
                        uint32_t dstStride)
{
    const Plane<const float32_t> samples{src, srcStride};
    const Plane<float32_t> derivatives{dst, dstStride};
    for (size_t y = 0; y < height; ++y)
        for (size_t x = 0; x < width; ++x) {
            const auto difference = [&](size_t row) { return samples.row(row)[x + 2] - samples.row(row)[x]; };
            derivatives.row(y)[x] = scharr(difference(y), difference(y + 1), difference(y + 2));
        }
}

void irvkGradientIyf32C(const float32_t* src, uint32_t width, uint32_t height, uint32_t srcStride, float32_t* dst,
                        uint32_t dstStride)
{
    const Plane<const float32_t> samples{src, srcStride};
    const Plane<float32_t> derivatives{dst, dstStride};
    for (size_t y = 0; y < height; ++y)
        for (size_t x = 0; x < width; ++x) {
            const auto difference = [&](size_t column) { return samples.row(y + 2)[column] - samples.row(y)[column]; };
            derivatives.row(y)[x] = scharr(difference(x), difference(x + 1), difference(x + 2));
        }
}

namespace {

template <class T>
void toFloats(const T* src, uint32_t srcStride, size_t width, size_t height, float32_t* dst, size_t dstPitch)
{
    const Plane<const T> pixels{src, srcStride};
    for (size_t y = 0; y < height; ++y)
        for (size_t x = 0; x < width; ++x)
            dst[y * dstPitch + x] = pixels.row(y)[x];
}

float32_t sampleAt(const LucasKanadePatch& patch, size_t x, size_t y)
{
    const auto between = [](float32_t a, float32_t b, float32_t fraction) { return a + fraction * (b - a); };
    const float32_t *p = patch.pixels + y * patch.pitch + x, *q = p + patch.pitch;
    return between(between(p[0], p[1], patch.right), between(q[0], q[1], patch.right), patch.below);
}

void sample(const LucasKanadePatch& patch, size_t width, size_t height, float32_t* dst, size_t dstPitch)
{
    for (size_t y = 0; y < height; ++y)
        for (size_t x = 0; x < width; ++x)
            dst[y * dstPitch + x] = sampleAt(patch, x, y);
}

void sumSquares(const LucasKanadeWindow& window, float32_t* xx, float32_t* xy, float32_t* yy)
{
    for (size_t x = 0; x < window.columns; ++x) {
        xx[x] = xy[x] = yy[x] = 0;
        for (size_t y = 0; y < window.rows; ++y) {
            const float32_t dx = window.dx[y * window.pitch + x], dy = window.dy[y * window.pitch + x];
            xx[x] += dx * dx;
            xy[x] += dx * dy;
            yy[x] += dy * dy;
        }
    }
}

void sumDifferences(const LucasKanadeWindow& window, const LucasKanadePatch& patch, float32_t* sumsX, float32_t* sumsY)
{
    for (size_t x = 0; x < window.columns; ++x) {
        sumsX[x] = sumsY[x] = 0;
        for (size_t y = 0; y < window.rows; ++y) {
            const float32_t difference = window.values[y * window.valuePitch + x] - sampleAt(patch, x, y);
            sumsX[x] += difference * window.dx[y * window.pitch + x];
            sumsY[x] += difference * window.dy[y * window.pitch + x];
        }
    }
}

void sumErrors(const LucasKanadeWindow& window, const LucasKanadePatch& patch, float32_t* errors)
{
    for (size_t x = 0; x < window.columns; ++x) {
        errors[x] = 0;
        for (size_t y = 0; y < window.rows; ++y)
            errors[x] += std::fabs(window.values[y * window.valuePitch + x] - sampleAt(patch, x, y));
    }
}

template <class T>
constexpr LucasKanadeKernels<T> kernelsOf = {toFloats<T>, sample, sumSquares, sumDifferences, sumErrors};

} // namespace
} // namespace rvk

#include "forms/ravikLucasKanadeForms.h"
