#include "support/guarded.h"
#include "support/windows.h"

#include <ravik/affine.h>

#include <array>
#include <cmath>

#if RVK_TEST_OPENCV
#include <opencv2/imgproc.hpp>
#endif

using namespace test;

namespace {

float uniform(Random& random, float low, float high)
{
    return low + (high - low) * static_cast<float>(random.below(1 << 24)) / static_cast<float>(1 << 24);
}

// ---- patches ----

// The patch, and the status.
struct Extracted
{
    rvkStatus status;
    Picture<uint8_t> patch;
};

template <class Function>
Extracted extract(Function function, const Picture<uint8_t>& src, std::array<float, 2> position,
                  std::array<float, 4> affine, int width, int height)
{
    Extracted e{RAVIK_SUCCESS, Picture<uint8_t>(width, height, 77)};
    e.status = function(src.pixels.data(), src.columns(), src.rows(), src.stride(), position.data(), affine.data(),
                        e.patch.pixels.data(), e.patch.columns(), e.patch.rows(), e.patch.stride());
    return e;
}

constexpr std::array<float, 4> kIdentity = {1, 0, 0, 1};

TEST(Affine, PatchesOfTheIdentityAreCopies)
{
    const auto src = pictureOf<uint8_t>(40, 30, [](int x, int y) { return 7 * x + 41 * y; });
    forEachImplementation<Slot::rvkTransformAffineu8_v2>([&](const char* name, auto function) {
        for (const int size : {1, 2, 4, 7, 8, 9, 16, 20, 30}) {
            const int left = 20 - size / 2, top = 15 - size / 2;
            const auto [status, patch] = extract(function, src, {20, 15}, kIdentity, size, size);
            const float half = size % 2 ? 0.5f : 0; // between pixels
            if (half == 0) {
                EXPECT_EQ(patch,
                          pictureOf<uint8_t>(size, size, [&](int i, int j) { return src.at(left + i, top + j); }))
                    << name;
            }
            EXPECT_EQ(status, RAVIK_SUCCESS) << name << ", " << size;
        }
    });
}

TEST(Affine, PatchesMayTouchTheEdgesAndNoMore)
{
    const auto src = pictureOf<uint8_t>(20, 12, [](int x, int y) { return x + 20 * y; });
    const float above = std::nextafter(18.0f, 19.0f), below = std::nextafter(2.0f, 1.0f);
    forEachImplementation<Slot::rvkTransformAffineu8_v2>([&](const char* name, auto function) {
        const auto statusAt = [&](float x, float y) { return extract(function, src, {x, y}, kIdentity, 4, 4).status; };
        EXPECT_EQ(statusAt(18, 2), RAVIK_SUCCESS) << name;
        EXPECT_EQ(statusAt(2, 10), RAVIK_SUCCESS) << name;
        EXPECT_EQ(statusAt(above, 2), RAVIK_EFAIL) << name;
        EXPECT_EQ(statusAt(below, 2), RAVIK_EFAIL) << name;
        EXPECT_EQ(statusAt(18, below), RAVIK_EFAIL) << name;
        for (const float wrong : {NAN, INFINITY, -INFINITY, 1e38f}) {
            EXPECT_EQ(statusAt(wrong, 5), RAVIK_EFAIL) << name;
            for (size_t i = 0; i < 4; ++i) {
                auto affine = kIdentity;
                affine[i] = wrong;
                const auto [status, patch] = extract(function, src, {10, 6}, affine, 2, 2);
                EXPECT_EQ(status, RAVIK_EFAIL) << name;
                EXPECT_EQ(patch, Picture<uint8_t>(2, 2, 77)) << name << " wrote although it failed";
            }
        }
    });
}

// Values are truncated; and where all is exact in single precision, that is all that the order of operations can
// change.
TEST(Affine, PatchesAreBilinearAndTruncated)
{
    Random random(4);
    for (int trial = 0; trial < 300; ++trial) {
        const auto src = randomPicture<uint8_t>(random, 30 + static_cast<int>(random.below(90)), 40);
        const int width = 1 + static_cast<int>(random.below(20)), height = 1 + static_cast<int>(random.below(12));
        const auto eighths = [&](int low, int high) {
            return static_cast<float>(low + static_cast<int>(random.below(static_cast<uint32_t>(high - low + 1)))) / 8;
        };
        const std::array<float, 4> affine = {eighths(-8, 8), eighths(-4, 4), eighths(-4, 4), eighths(-8, 8)};
        const std::array<float, 2> position = {eighths(100, 140), eighths(140, 180)};
        const auto expected = pictureOf<uint8_t>(width, height, [&](int i, int j) {
            const double di = i - width * 0.5, dj = j - height * 0.5;
            const double x = position[0] + affine[0] * di + affine[1] * dj,
                         y = position[1] + affine[2] * di + affine[3] * dj;
            const int ix = static_cast<int>(x), iy = static_cast<int>(y);
            const double fx = x - ix, fy = y - iy;
            const auto row = [&](int r) { return src.nearest(ix, r) * (1 - fx) + src.nearest(ix + 1, r) * fx; };
            return std::floor(row(iy) * (1 - fy) + row(iy + 1) * fy);
        });
        forEachImplementation<Slot::rvkTransformAffineu8_v2>([&](const char* name, auto function) {
            const auto [status, patch] = extract(function, src, position, affine, width, height);
            if (status == RAVIK_SUCCESS) {
                EXPECT_EQ(patch, expected) << name;
            }
        });
    }
}

// ---- clipped transforms ----

struct Transform
{
    std::array<float, 2> position;
    std::array<float, 4> affine;

    static Transform random(Random& random, int width, int height)
    {
        const float angle = uniform(random, -4, 4), scale = uniform(random, 0.3f, 2);
        const float c = scale * std::cos(angle), s = scale * std::sin(angle);
        return {
            {uniform(random, -5, static_cast<float>(width) + 5), uniform(random, -5, static_cast<float>(height) + 5)},
            {c, -s, s * uniform(random, 0.8f, 1.2f), c}};
    }
    // Where pixel (i, j) of a destination is, in double precision.
    double x(int i, int j, int width, int height) const
    {
        return position[0] + affine[0] * (i - width * 0.5) + affine[1] * (j - height * 0.5);
    }
    double y(int i, int j, int width, int height) const
    {
        return position[1] + affine[2] * (i - width * 0.5) + affine[3] * (j - height * 0.5);
    }
};

// The destination, 77 where nothing is written, of pixels of `channels` bytes.
template <class Function, class... Rules>
Picture<uint8_t> transformed(Function function, const Picture<uint8_t>& src, const Transform& t, int width, int height,
                             int channels, Rules... rules)
{
    Picture<uint8_t> dst(width * channels, height, 77);
    const GuardedMemory source = guardedCopy(src.pixels);
    function(source.data(), src.columns() / static_cast<uint32_t>(channels), src.rows(), src.stride(),
             t.position.data(), t.affine.data(), dst.pixels.data(), static_cast<uint32_t>(width), dst.rows(),
             dst.stride(), rules...);
    return dst;
}

TEST(Affine, ClippedTranslationsAreExact)
{
    Random random(5);
    for (int trial = 0; trial < 60; ++trial) {
        const auto src = randomPicture<uint8_t>(random, 1 + static_cast<int>(random.below(90)),
                                                1 + static_cast<int>(random.below(20)));
        const int width = 1 + static_cast<int>(random.below(120)), height = 1 + static_cast<int>(random.below(20));
        const int left = static_cast<int>(random.below(41)) - 20, top = static_cast<int>(random.below(21)) - 10;
        const Transform t{{static_cast<float>(left + width * 0.5), static_cast<float>(top + height * 0.5)}, kIdentity};
        const uint32_t interpolation = random.below(2), borderType = random.below(3);
        const auto expected = pictureOf<uint8_t>(width, height, [&](int i, int j) {
            const int x = left + i, y = top + j;
            return src.has(x, y) || borderType == RAVIK_BORDER_REPLICATE ? src.nearest(x, y)
                   : borderType == RAVIK_BORDER_CONSTANT                 ? 9
                                                                         : 77;
        });
        forEachImplementation<Slot::rvkTransformAffineClippedu8_v3>([&](const char* name, auto function) {
            EXPECT_EQ(transformed(function, src, t, width, height, 1, interpolation, borderType, uint8_t{9}), expected)
                << name << ", interpolation " << interpolation << ", border " << borderType;
        });
    }
}

// All pixels whose position is inside have what `at(x, y, channel)` gives in double precision, within one; all others
// the border's value.
template <Slot slot, class At, class... Rules>
void expectClipped(int channels, At at, Rules... rules)
{
    Random random(6);
    for (int trial = 0; trial < 60 && !::testing::Test::HasFailure(); ++trial) {
        const int srcWidth = 1 + static_cast<int>(random.below(trial % 4 ? 100 : 6)),
                  srcHeight = 1 + static_cast<int>(random.below(50));
        const int width = 1 + static_cast<int>(random.below(200)), height = 1 + static_cast<int>(random.below(20));
        const auto src = randomPicture<uint8_t>(random, channels * srcWidth, srcHeight);
        const Transform t = Transform::random(random, srcWidth, srcHeight);
        const auto expected = transformed(referenceOf<slot>(), src, t, width, height, channels, rules...);
        forEachImplementation<slot>([&](const char* name, auto function) {
            const auto actual = transformed(function, src, t, width, height, channels, rules...);
            EXPECT_EQ(actual, expected) << name;
            for (int j = 0; j < height; ++j)
                for (int i = 0; i < channels * width; ++i) {
                    const double x = t.x(i / channels, j, width, height), y = t.y(i / channels, j, width, height);
                    const bool isInside = x >= 0 && x <= srcWidth - 1 && y >= 0 && y <= srcHeight - 1;
                    ASSERT_NEAR(actual.at(i, j), isInside ? at(src, x, y, i % channels) : 9, isInside ? 1 : 0)
                        << name << ", byte " << i << " of row " << j;
                }
        });
    }
}

// The weighted sum of size x size pixels around a position.
template <class Weight>
double weighted(const Picture<uint8_t>& src, double x, double y, int channel, int channels, int size, Weight weight)
{
    double sum = 0;
    const int left = static_cast<int>(x) - (size / 2 - 1), top = static_cast<int>(y) - (size / 2 - 1);
    for (int row = top; row < top + size; ++row)
        for (int column = left; column < left + size; ++column) {
            const int nearest = std::clamp(column, 0, src.width / channels - 1);
            sum += weight(std::fabs(x - column)) * weight(std::fabs(y - row)) *
                   src.nearest(channels * nearest + channel, row);
        }
    return std::clamp(sum, 0.0, 255.0);
}

TEST(Affine, ClippedTransformsInterpolate)
{
    constexpr uint8_t border[3] = {9, 9, 9};
    const auto bilinear = [](const auto& src, double x, double y, int channel) {
        return weighted(src, x, y, channel, 1, 2, [](double d) { return 1 - d; });
    };
    const auto cubic = [](const auto& src, double x, double y, int channel) {
        return weighted(src, x, y, channel, 3, 4, [](double d) {
            return d < 1 ? 1.5 * d * d * d - 2.5 * d * d + 1 : -0.5 * d * d * d + 2.5 * d * d - 4 * d + 2;
        });
    };
    const uint32_t constant = RAVIK_BORDER_CONSTANT;
    expectClipped<Slot::rvkTransformAffineClippedu8_v2>(1, bilinear, constant, border[0]);
    expectClipped<Slot::rvkTransformAffineClippedu8_v3>(1, bilinear, uint32_t{RAVIK_INTERPOLATION_BILINEAR}, constant,
                                                        border[0]);
    expectClipped<Slot::rvk3ChannelTransformAffineClippedBCu8>(3, cubic, constant, border);
}

// Along a row of the source the values are those of the formula for it; and no row or column beyond it is read.
TEST(Affine, ClippedRowsAreInterpolatedAlongThem)
{
    constexpr int width = 200;
    const GuardedMemory memory(width, GuardedMemory::Flush::toEnd);
    std::generate_n(memory.data(), width, [i = 0]() mutable { return static_cast<uint8_t>(97 * i++); });
    for (const float fraction : {0.0f, 0.25f, 0.3f, 0.5f, 0.9999f}) {
        const float position[2] = {width * 0.5f + fraction, 0.5f}, affine[4] = {1, 0, 0, 1};
        forEachImplementation<Slot::rvkTransformAffineClippedu8>([&](const char* name, auto function) {
            std::vector<uint8_t> dst(width, 77);
            function(memory.data(), width, 1, width, position, affine, dst.data(), width, 1, width);
            const int fx = static_cast<int>((position[0] - width * 0.5) * 65536);
            for (int i = 0; i + 1 < width; ++i) {
                const int p0 = memory.data()[i], p1 = memory.data()[i + 1];
                ASSERT_EQ(dst[static_cast<size_t>(i)], p0 + ((fx * (p1 - p0) + 32768) >> 16))
                    << name << ", column " << i;
            }
            EXPECT_EQ(dst.back(), fx ? 77 : memory.data()[width - 1]) << name;
        });
    }
}

// A step that is lost in the sum leads nowhere.
TEST(Affine, ClippedStepsMayBeLostInSums)
{
    const auto src = pictureOf<uint8_t>(11, 9, [](int x, int y) { return 20 * x + y; });
    for (const float step : {0.0f, 1e-30f, -1e-17f, 1e-38f})
        forEachImplementation<Slot::rvkTransformAffineClippedu8_v2>([&](const char* name, auto function) {
            const Transform t{{10, 4}, {step, 0, step, 0}};
            EXPECT_EQ(transformed(function, src, t, 90, 6, 1, RAVIK_BORDER_CONSTANT, uint8_t{9}),
                      Picture<uint8_t>(90, 6, 204))
                << name << ", step " << step;
        });
}

// Positions that are carried from columns outside come to the edge, or to somewhat more.
TEST(Affine, ClippedPositionsEndAtTheEdges)
{
    Random random(8);
    for (int trial = 0; trial < 200; ++trial) {
        const auto src = randomPicture<uint8_t>(random, 2 + static_cast<int>(random.below(20)),
                                                2 + static_cast<int>(random.below(20)));
        const float scale = uniform(random, 0.05f, 0.4f) * (trial % 2 ? 1.0f : -1.0f);
        const bool isTurned = trial % 4 > 1;
        const Transform t{{static_cast<float>(trial % 8 < 4 ? src.width - 1 : 0),
                           static_cast<float>(trial % 16 < 8 ? src.height - 1 : 0)},
                          {isTurned ? 0 : scale, isTurned ? scale : 0, isTurned ? scale : 0, isTurned ? 0 : -scale}};
        const uint32_t interpolation = random.below(2), constant = RAVIK_BORDER_CONSTANT;
        const auto transform = [&](auto function) {
            return transformed(function, src, t, 140, 40, 1, interpolation, constant, uint8_t{9});
        };
        const auto expected = transform(referenceOf<Slot::rvkTransformAffineClippedu8_v3>());
        forEachImplementation<Slot::rvkTransformAffineClippedu8_v3>(
            [&](const char* name, auto function) { EXPECT_EQ(transform(function), expected) << name; });
    }
}

TEST(Affine, ClippedTransformsRefuseLargeSourcesAndWhatIsNoNumber)
{
    const std::vector<uint8_t> src(32768);
    const auto status = [&](uint32_t width, uint32_t height, std::array<float, 6> t) {
        uint8_t dst[4] = {77, 77, 77, 77};
        const auto result =
            rvkTransformAffineClippedu8_v2(src.data(), width, height, 0, t.data(), t.data() + 2, dst, 2, 2, 0, 1, 5);
        EXPECT_EQ(dst[0] == 77, result != RAVIK_SUCCESS);
        return result;
    };
    constexpr std::array<float, 6> identity = {0, 0, 1, 0, 0, 1};
    EXPECT_EQ(status(32767, 1, identity), RAVIK_SUCCESS);
    EXPECT_EQ(status(32768, 1, identity), RAVIK_EBADPARAM);
    EXPECT_EQ(status(1, 32768, identity), RAVIK_EBADPARAM);
    for (size_t i = 0; i < 6; ++i)
        for (const float wrong : {NAN, INFINITY, -INFINITY}) {
            auto t = identity;
            t[i] = wrong;
            EXPECT_EQ(status(9, 9, t), RAVIK_EBADPARAM) << "element " << i;
        }
}

#if RVK_TEST_OPENCV
TEST(Affine, ClippedTransformsAgreeWithOpenCv)
{
    Random random(7);
    const auto src = pictureOf<uint8_t>(320, 240, [&](int x, int y) {
        return 128 + 60 * std::sin(x * 0.11) + 50 * std::cos(y * 0.07 + x * 0.02) + random.below(8);
    });
    const cv::Mat picture(240, 320, CV_8U, const_cast<uint8_t*>(src.pixels.data()));
    for (int trial = 0; trial < 20; ++trial) {
        const Transform t = Transform::random(random, 320, 240);
        const cv::Mat matrix = (cv::Mat_<double>(2, 3) << t.affine[0], t.affine[1], t.x(0, 0, 300, 200), t.affine[2],
                                t.affine[3], t.y(0, 0, 300, 200));
        cv::Mat expected;
        cv::warpAffine(picture, expected, matrix, {300, 200}, cv::INTER_LINEAR | cv::WARP_INVERSE_MAP,
                       cv::BORDER_REPLICATE);
        const auto actual =
            transformed(rvkTransformAffineClippedu8_v2, src, t, 300, 200, 1, RAVIK_BORDER_REPLICATE, uint8_t{0});
        int far = 0;
        for (int j = 0; j < 200; ++j)
            for (int i = 0; i < 300; ++i)
                far += std::abs(actual.at(i, j) - expected.at<uint8_t>(j, i)) > 2;
        EXPECT_LE(far, 60); // 0.1 %
    }
}
#endif

// ---- transforms from points, inverses ----

using Points = std::array<float, 8>;

TEST(Affine, PerspectiveTransformsMapTheirPoints)
{
    Random random(1);
    for (int trial = 0; trial < 2000; ++trial) {
        const float far = trial % 2 ? 1e5f : 0, size = trial % 3 || far > 0 ? 500 : 0.01f;
        Points src, dst;
        for (size_t i = 0; i < 8; ++i) { // corners of squares that are not quite ones
            const float corner = i == 2 || i == 4 || i == 5 || i == 7;
            src[i] = far + size * (corner + uniform(random, -0.2f, 0.2f));
            dst[i] = 100 * (corner + uniform(random, -0.2f, 0.2f));
        }
        float matrix[9];
        ASSERT_EQ(rvkGetPerspectiveTransformf32(src.data(), dst.data(), matrix), RAVIK_SUCCESS);
        EXPECT_EQ(matrix[8], 1);
        if (far > 0)
            continue; // where a matrix of floats has not the digits to tell the points apart
        for (size_t i = 0; i < 8; i += 2) {
            const auto row = [&](size_t j) { return matrix[j] * src[i] + matrix[j + 1] * src[i + 1] + matrix[j + 2]; };
            EXPECT_NEAR(row(0) / row(6), dst[i], 0.01f);
            EXPECT_NEAR(row(3) / row(6), dst[i + 1], 0.01f);
        }
    }
}

TEST(Affine, PerspectiveTransformsThatAreNoneAreRefused)
{
    const Points square = {0, 0, 8, 0, 8, 8, 0, 8}, onLine = {0, 0, 1, 2, 3, 6, 5, 1}, same = {0, 0, 8, 0, 8, 8, 8, 8};
    const Points notFinite = {0, 0, 8, NAN, 8, 8, 0, 8}, infinite = {0, 0, 8, 0, 8, INFINITY, 0, 8};
    const auto expectStatus = [](rvkStatus expected, const Points& src, const Points& dst) {
        std::array<float, 9> matrix;
        matrix.fill(7);
        EXPECT_EQ(rvkGetPerspectiveTransformf32(src.data(), dst.data(), matrix.data()), expected);
        EXPECT_EQ(matrix[0] == 7, expected != RAVIK_SUCCESS) << "written, or not";
    };
    expectStatus(RAVIK_SUCCESS, square, square);
    for (const Points& wrong : {onLine, same, notFinite, infinite}) {
        expectStatus(RAVIK_EFAIL, wrong, square);
        expectStatus(RAVIK_EFAIL, square, wrong);
    }
    // x' = 1 / x, y' = y / x: nothing is where 0 goes to.
    expectStatus(RAVIK_EFAIL, {1, 0, 2, 0, 1, 1, 2, 2}, {1, 0, 0.5f, 0, 1, 1, 0.5f, 1});
}

TEST(Affine, InversesUndoTheTransform)
{
    Random random(2);
    for (int trial = 0; trial < 1000; ++trial) {
        float m[6], inverse[6];
        for (float& element : m)
            element = uniform(random, -3, 3);
        if (std::fabs(m[0] * m[4] - m[1] * m[3]) < 0.1f)
            continue;
        ASSERT_EQ(rvkInvertAffineTransformf32(m, inverse), RAVIK_SUCCESS);
        const float x = uniform(random, -9, 9), y = uniform(random, -9, 9);
        const float u = m[0] * x + m[1] * y + m[2], v = m[3] * x + m[4] * y + m[5];
        EXPECT_NEAR(inverse[0] * u + inverse[1] * v + inverse[2], x, 0.01f);
        EXPECT_NEAR(inverse[3] * u + inverse[4] * v + inverse[5], y, 0.01f);
        EXPECT_EQ(rvkInvertAffineTransformf32(m, m), RAVIK_SUCCESS);
        EXPECT_TRUE(std::equal(m, m + 6, inverse)) << "in place";
    }
    float untouched[6] = {7, 7, 7, 7, 7, 7};
    for (const std::array<float, 6>& m : {std::array<float, 6>{1, 2, 0, 2, 4, 0},
                                          {0, 0, 1, 0, 0, 1},
                                          {1, 0, INFINITY, 0, 1, 0},
                                          {NAN, 0, 0, 0, 1, 0},
                                          {1e-39f, 0, 1, 0, 1e-39f, 1}})
        EXPECT_EQ(rvkInvertAffineTransformf32(m.data(), untouched), RAVIK_EFAIL);
    EXPECT_TRUE(std::all_of(untouched, untouched + 6, [](float f) { return f == 7; }));
}

// ---- depth ----

// The lens in double precision, beside all implementations; but where a position is about halfway between two pixels.
TEST(Affine, DepthIsThatOfTheDisparityWhereTheLensPutIt)
{
    Random random(3);
    for (int trial = 0; trial < 12; ++trial) {
        const int width = 1 + static_cast<int>(random.below(trial % 2 ? 300 : 40)),
                  height = 1 + static_cast<int>(random.below(30));
        auto src =
            pictureOf<float>(width, height, [&](int, int) { return random.below(5) ? uniform(random, 0, 64) : 0; });
        src.pixels[0] = -3, src.pixels.back() = NAN;
        const float camera[4] = {uniform(random, 50, 90), uniform(random, 50, 90), uniform(random, 0, 200),
                                 uniform(random, 0, 30)};
        const bool hasLens = trial > 0;
        float lens[5] = {};
        for (float& number : lens)
            number = hasLens ? uniform(random, -0.05f, 0.05f) : 0;
        const float baseline = uniform(random, 0.1f, 3);
        forEachImplementation<Slot::rvkUndistortDisparityConvertDepthf32>([&](const char* name, auto function) {
            const auto depth = filtered<float>(function, src, camera, hasLens ? lens : nullptr, baseline);
            for (int j = 0; j < height; ++j)
                for (int i = 0; i < width; ++i) {
                    const double x = (i - double{camera[2]}) / camera[0], y = (j - double{camera[3]}) / camera[1],
                                 r2 = x * x + y * y;
                    const double radial = 1 + lens[0] * r2 + lens[1] * std::pow(r2, 2) + lens[4] * std::pow(r2, 3);
                    const double u =
                        camera[0] * (x * radial + 2 * lens[2] * x * y + lens[3] * (r2 + 2 * x * x)) + camera[2];
                    const double v =
                        camera[1] * (y * radial + lens[2] * (r2 + 2 * y * y) + 2 * lens[3] * x * y) + camera[3];
                    const auto isHalfway = [](double p) { return std::fabs(p + 0.5 - std::round(p + 0.5)) < 1e-3; };
                    if (isHalfway(u) || isHalfway(v))
                        continue;
                    const int column = static_cast<int>(std::floor(u + 0.5)),
                              row = static_cast<int>(std::floor(v + 0.5));
                    const float disparity = src.has(column, row) ? src.at(column, row) : 0;
                    const float expected = disparity > 0 ? camera[0] * baseline / disparity : 0;
                    ASSERT_EQ(depth.at(i, j), expected) << name << ", column " << i << " of row " << j;
                }
        });
    }
}

// Cameras and lenses that are no numbers see nothing; disparities have their quotients, however small or large.
TEST(Affine, DepthOfExtremes)
{
    const auto src = pictureOf<float>(20, 2, [](int x, int) {
        constexpr float values[] = {1, INFINITY, NAN, 1e-30f, 1e30f, -0.0f, -1};
        return values[x % 7];
    });
    const float straight[4] = {4, 4, 10, 1};
    forEachImplementation<Slot::rvkUndistortDisparityConvertDepthf32>([&](const char* name, auto function) {
        const auto depth = filtered<float>(function, src, straight, nullptr, 2.0f);
        const float expected[] = {8, 0, 0, 8 / 1e-30f, 8 / 1e30f, 0, 0};
        for (int x = 0; x < 20; ++x)
            EXPECT_EQ(depth.at(x, 1), expected[x % 7]) << name << ", column " << x;
        for (const float wrong : {NAN, INFINITY, -INFINITY, 1e38f})
            for (int element = 0; element < 9; ++element) {
                float camera[4] = {4, 4, 10, 1}, lens[5] = {};
                (element < 4 ? camera[element] : lens[element - 4]) = wrong;
                const auto nothing = filtered<float>(function, src, camera, lens, 2.0f);
                if (!std::isfinite(wrong)) {
                    EXPECT_EQ(nothing, Picture<float>(20, 2)) << name << ", element " << element << " is " << wrong;
                }
            }
    });
}

} // namespace
