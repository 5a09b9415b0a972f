#include "support/implementations.h"
#include "support/random.h"

#include <array>
#include <cfloat>
#include <cmath>

using namespace test;

namespace {

using Floats = std::vector<float>;

constexpr float kIdentity[12] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0};

double uniform(Random& random, double low, double high)
{
    return low + (high - low) * random.below(1 << 24) * 0x1p-24;
}

Floats drawFloats(Random& random, size_t count, double low, double high)
{
    Floats all(count);
    for (float& number : all)
        number = static_cast<float>(uniform(random, low, high));
    return all;
}

// ---- bit depth ----

TEST(Depth, BitDepthsOfAllValues)
{
    std::vector<uint8_t> bytes(256), narrow(65536);
    std::vector<int16_t> words(65536), wide(256);
    for (int i = 0; i < 65536; ++i) {
        bytes[static_cast<uint8_t>(i)] = static_cast<uint8_t>(i);
        words[static_cast<size_t>(i)] = static_cast<int16_t>(i);
    }
    for (uint32_t shift = 0; shift < 8; ++shift)
        forEachImplementation<Slot::rvkConvertDepthu8s16>([&](const char* name, auto function) {
            ASSERT_EQ(function(bytes.data(), 256, 1, 256, shift, wide.data(), 512), RAVIK_SUCCESS);
            for (int i = 0; i < 256; ++i)
                ASSERT_EQ(wide[static_cast<size_t>(i)], i * (1 << shift)) << name;
        });
    for (uint32_t shift = 0; shift < 16; ++shift)
        for (const uint32_t policy : {RAVIK_POLICY_WRAP, RAVIK_POLICY_SATURATE})
            forEachImplementation<Slot::rvkConvertDepths16u8>([&](const char* name, auto function) {
                ASSERT_EQ(function(words.data(), 65536, 1, 131072, policy, shift, narrow.data(), 65536), RAVIK_SUCCESS);
                for (int i = 0; i < 65536; ++i) {
                    const int value = static_cast<int16_t>(i),
                              quotient = value >= 0 ? value / (1 << shift) : ~(~value / (1 << shift));
                    const int expected = policy == RAVIK_POLICY_WRAP ? quotient & 255 : std::clamp(quotient, 0, 255);
                    ASSERT_EQ(narrow[static_cast<size_t>(i)], expected) << name << ", " << value << " >> " << shift;
                }
            });
}

// ---- pictures of depths ----

#if defined(__x86_64__)
constexpr bool kWritesLargeClouds = true; // in a way of their own
#else
constexpr bool kWritesLargeClouds = false;
#endif

TEST(Depth, CloudsAreExact)
{
    Random random(1);
    for (int trial = 0; trial < 40; ++trial) {
        const bool isLarge = kWritesLargeClouds && trial == 0; // beyond the caches
        const uint32_t width = isLarge ? 601 : 1 + random.below(70), height = isLarge ? 1750 : 1 + random.below(5);
        Floats src = drawFloats(random, width * height, -1, 9);
        for (const float odd : {0.0f, NAN, INFINITY, -INFINITY, 1e-30f, 1e20f})
            src[random.below(width * height)] = odd;
        const double scale = std::pow(2.0, uniform(random, -35, 35)); // also of cameras beyond reason
        const auto of = [&](double low, double high) {
            return static_cast<float>(uniform(random, low, high) * (trial % 4 ? 1 : scale));
        };
        const float camera[4] = {of(40, 600), of(40, 600), of(-9, 70), trial % 5 ? of(0, 5) : 0};
        forEachImplementation<Slot::rvkConvertDepthImageToPointCloudf32>([&](const char* name, auto function) {
            Floats dst(3 * width * height + 1, 7);
            ASSERT_EQ(function(src.data(), width, height, width * 4, camera, dst.data(), width * 12), RAVIK_SUCCESS);
            ASSERT_EQ(dst.back(), 7) << name;
            for (uint32_t i = 0; i < width * height; ++i) {
                const float* const point = &dst[size_t{3} * i];
                const double d = src[i], x = (i % width - double{camera[2]}) * d / camera[0],
                             y = (i / width - double{camera[3]}) * d / camera[1];
                if (!(d > 0 && d <= FLT_MAX)) {
                    ASSERT_TRUE(std::isnan(point[0]) && std::isnan(point[1]) && std::isnan(point[2])) << name;
                    continue;
                }
                ASSERT_NEAR(point[0], x, 0x1p-21 * std::fabs(x) + FLT_MIN) << name << " " << camera[0];
                ASSERT_NEAR(point[1], y, 0x1p-21 * std::fabs(y) + FLT_MIN) << name;
                ASSERT_EQ(point[2], src[i]) << name;
            }
        });
    }
}

TEST(Depth, RegistrationKeepsWhatIsNearest)
{
    // Three pixels to the right by a metre at two metres' distance and a focal length of 6.
    const float camera[4] = {6, 6, 4, 1}, narrow[4] = {1, 1, 0.4f, 1};
    float right[12], behind[12];
    std::copy_n(kIdentity, 12, right);
    std::copy_n(kIdentity, 12, behind);
    right[3] = 1;
    behind[11] = -2.5f;
    Floats src(27, 2), dst(27, 7);
    src[9] = NAN, src[10] = -1, src[11] = INFINITY;
    EXPECT_EQ(rvkRegisterDepthImagef32(src.data(), 9, 3, 0, camera, right, camera, dst.data(), 9, 3, 0), RAVIK_SUCCESS);
    for (size_t i = 0; i < 27; ++i)
        EXPECT_EQ(dst[i], i % 9 < (i / 9 == 1 ? 6 : 3) ? 0 : 2) << i;
    src.assign(27, 3);
    src[13] = 1.5f;
    src[14] = 2;
    dst.assign(27, 7);
    EXPECT_EQ(rvkRegisterDepthImagef32(src.data(), 9, 3, 0, camera, kIdentity, narrow, dst.data(), 2, 3, 12),
              RAVIK_SUCCESS);
    EXPECT_EQ(Floats(dst.begin(), dst.begin() + 8), Floats({0, 0, 7, 1.5f, 2, 7, 0, 0}));
    EXPECT_EQ(rvkRegisterDepthImagef32(src.data(), 9, 3, 0, camera, behind, camera, dst.data(), 9, 3, 0),
              RAVIK_SUCCESS);
    EXPECT_EQ(dst, Floats(27, 0)) << "the pixel in the middle, which alone stays in the picture, is behind the camera";
}

TEST(Depth, CamerasAndPosesAreFinite)
{
    const float camera[4] = {6, 6, 4, 1}, depth[1] = {1};
    for (const float bad : {NAN, INFINITY, -INFINITY}) {
        float pose[12], dst[1] = {7};
        std::copy_n(kIdentity, 12, pose);
        pose[11] = bad;
        EXPECT_EQ(rvkRegisterDepthImagef32(depth, 1, 1, 0, camera, pose, camera, dst, 1, 1, 0), RAVIK_EFAIL);
        for (int i = 0; i < 4; ++i) {
            float wrong[4] = {6, 6, 4, 1};
            wrong[i] = bad;
            EXPECT_EQ(rvkRegisterDepthImagef32(depth, 1, 1, 0, camera, kIdentity, wrong, dst, 1, 1, 0),
                      RAVIK_EBADPARAM);
        }
        EXPECT_EQ(dst[0], 7);
    }
}

// A sphere of half a metre, 20 voxels, around the world's origin from six sides, each two metres away: wherever the
// distances of neighbours have two signs, what is between them is near the surface.
TEST(Depth, AFusedSphereHasItsSurface)
{
    constexpr uint32_t size = 561, side = 4, blocksInAll = 8 * side * side * side;
    constexpr float voxel = 0.025f, truncation = 0.05f, camera[4] = {1000, 1000, 280, 280};
    std::vector<int32_t> blocks;
    for (int z = -4; z < 4; ++z)
        for (int y = -4; y < 4; ++y)
            for (int x = -4; x < 4; ++x)
                blocks.insert(blocks.end(), {x, y, z});
    std::vector<int16_t> distances(512 * blocksInAll), weights(512 * blocksInAll);
    Floats depth(size * size);
    for (uint32_t i = 0; i < size * size; ++i) {
        const double x = (i % size - 280.0) / 1000, y = (i / size - 280.0) / 1000, a = 1 + x * x + y * y;
        const double root = 4 - a * (4 - 0.25);
        depth[i] = root > 0 ? static_cast<float>((2 - std::sqrt(root)) / a) : 0;
    }
    for (int view = 0; view < 6; ++view) {
        float pose[12] = {}; // looks along an axis, to either side
        const int axis = view / 2;
        const float sign = view % 2 ? -1.0f : 1.0f;
        pose[(axis + 1) % 3] = sign;
        pose[4 + (axis + 2) % 3] = 1;
        pose[8 + axis] = sign;
        pose[11] = 2;
        ASSERT_EQ(rvkDepthFusion8x8x8xNs16(distances.data(), weights.data(), blocks.data(), blocksInAll, voxel,
                                           truncation, 100, depth.data(), size, size, 0, camera, pose),
                  RAVIK_SUCCESS);
    }
    const auto voxelAt = [&](const std::array<int, 3>& p) {
        const int block = (p[2] / 8 * 8 + p[1] / 8) * 8 + p[0] / 8, inBlock = (p[2] % 8 * 8 + p[1] % 8) * 8 + p[0] % 8;
        return static_cast<size_t>(block * 512 + inBlock);
    };
    const auto radius = [&](std::array<int, 3> p, int axis, double more) { // in voxels
        double square = 0;
        for (int i = 0; i < 3; ++i)
            square += std::pow(p[static_cast<size_t>(i)] - 31.5 + (i == axis ? more : 0), 2);
        return std::sqrt(square);
    };
    double worst = 0;
    int crossings = 0, expected = 0;
    for (int i = 0; i < 3 << 18; ++i) { // neighbours in all directions
        const int axis = i >> 18;
        const std::array<int, 3> p = {i & 63, i >> 6 & 63, i >> 12 & 63};
        std::array<int, 3> q = p;
        if (++q[static_cast<size_t>(axis)] == 64)
            continue;
        const int first = distances[voxelAt(p)], second = distances[voxelAt(q)];
        const bool areSeen = weights[voxelAt(p)] && weights[voxelAt(q)];
        expected += (radius(p, axis, 0) < 20) != (radius(p, axis, 1) < 20);
        if (!areSeen || (first < 0) == (second < 0))
            continue;
        worst = std::max(worst, std::fabs(radius(p, axis, first / double(first - second)) - 20));
        ++crossings;
    }
    EXPECT_LE(worst, 0.5) << "voxels";
    EXPECT_NEAR(crossings, expected, 0.05 * expected);
}

TEST(Depth, FusionAveragesWithWeights)
{
    // The first voxel alone is seen: 0.5 m away, and the surface 0.04 m behind it or 0.1 m before it.
    const float camera[4] = {1e6f, 1e6f, -2e6f, -2e6f}, near[12] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, -0.5f};
    const int32_t block[3] = {0, 0, 0}, ends[3] = {INT32_MIN, INT32_MAX, INT32_MAX};
    std::vector<int16_t> distances(512, 1000), weights(512, 3);
    const auto fuse = [&](const int32_t* where, float seen, int16_t most) {
        return rvkDepthFusion8x8x8xNs16(distances.data(), weights.data(), where, 1, 2, 0.08f, most, &seen, 1, 1, 0,
                                        camera, near);
    };
    weights[0] = -7;
    EXPECT_EQ(fuse(block, 0.54f, 100), RAVIK_SUCCESS);
    EXPECT_NEAR(distances[0], 16384, 1);
    EXPECT_EQ(weights[0], 1) << "negative weights are none";
    distances[0] = -1000;
    weights[0] = 2;
    EXPECT_EQ(fuse(block, 0.6f, 3), RAVIK_SUCCESS);
    EXPECT_EQ(distances[0], 10256) << "(-2000 + 32767) / 3, rounded";
    weights[0] = 5;
    EXPECT_EQ(fuse(block, 0.6f, 3), RAVIK_SUCCESS);
    EXPECT_EQ(weights[0], 3);
    const std::vector<int16_t> before = distances;
    for (const float none : {0.4f, 0.0f, -1.0f, NAN, INFINITY})
        EXPECT_EQ(fuse(block, none, 100), RAVIK_SUCCESS);
    EXPECT_EQ(fuse(ends, 1, 100), RAVIK_SUCCESS);
    EXPECT_EQ(distances, before);
    EXPECT_EQ(std::count(weights.begin(), weights.end(), 3), 512) << "no other voxel";
}

// ---- alignment ----

// Sums beside those of a test: within 2^-17 of the sums of magnitudes.
template <size_t n>
struct Sums
{
    double jtj[n * n] = {}, jte[n] = {}, squares = 0, ofJtj[n * n] = {}, ofJte[n] = {};
    uint32_t count = 0;

    void add(const std::array<double, n>& j, double e)
    {
        for (size_t i = 0; i < n * n; ++i) {
            jtj[i] += j[i / n] * j[i % n];
            ofJtj[i] += std::fabs(j[i / n] * j[i % n]);
        }
        for (size_t i = 0; i < n; ++i) {
            jte[i] += j[i] * e;
            ofJte[i] += std::fabs(j[i] * e);
        }
        squares += e * e;
        ++count;
    }
    void expect(const float* actualJtj, const float* actualJte, float sumSquares, uint32_t actualCount) const
    {
        for (size_t i = 0; i < n * n; ++i)
            EXPECT_NEAR(actualJtj[i], jtj[i], 0x1p-17 * ofJtj[i]) << i;
        for (size_t i = 0; i < n; ++i)
            EXPECT_NEAR(actualJte[i], jte[i], 0x1p-17 * ofJte[i]) << i;
        EXPECT_NEAR(sumSquares, squares, 0x1p-17 * squares);
        EXPECT_EQ(actualCount, count);
    }
};

TEST(Depth, SumsOfPictures)
{
    Random random(2);
    for (int trial = 0; trial < 20; ++trial) {
        const uint32_t width = 1 + random.below(50), height = 1 + random.below(50);
        std::vector<Floats> p; // warped, reference, dx, dy
        for (int i = 0; i < 4; ++i) {
            p.push_back(drawFloats(random, width * height, -100, 100));
            p.back()[random.below(width * height)] = trial % 2 ? NAN : -INFINITY;
        }
        Sums<3> expected;
        for (uint32_t i = 0; i < width * height; ++i) {
            const double gx = p[2][i], gy = p[3][i], x = i % width - (width - 1) / 2.0,
                         y = i / width - (height - 1) / 2.0;
            if (std::isfinite(p[0][i] - p[1][i]) && std::isfinite(gx) && std::isfinite(gy))
                expected.add({gx, gy, gy * x - gx * y}, double{p[0][i]} - p[1][i]);
        }
        forEachImplementation<Slot::rvkJacobianSE2f32>([&](const char* name, auto function) {
            SCOPED_TRACE(name);
            float jtj[9], jte[3], squares;
            uint32_t count;
            EXPECT_EQ(function(p[0].data(), p[1].data(), width, height, width * 4, p[2].data(), p[3].data(), width * 4,
                               jtj, jte, &squares, &count),
                      RAVIK_SUCCESS);
            expected.expect(jtj, jte, squares, count);
        });
    }
    const float huge[4] = {1e30f, 0, 1, 1};
    float jtj[9], jte[3], squares = 7;
    uint32_t count = 7;
    EXPECT_EQ(rvkJacobianSE2f32(huge, huge + 1, 1, 1, 0, huge + 2, huge + 3, 0, jtj, jte, &squares, &count),
              RAVIK_EFAIL);
    EXPECT_TRUE(squares == 7 && count == 7) << "nothing is written";
}

// Points that lie off a curved surface; with the pose, each is where the camera sees it. The derivative of the error is
// what the sums say.
TEST(Depth, SumsOfPointsAndASurface)
{
    constexpr uint32_t size = 16;
    constexpr float camera[4] = {10, 12, 7.5f, 7};
    Random random(3);
    const Floats normals = drawFloats(random, 3 * size * size, -1, 1);
    Floats vertices(3 * size * size), points;
    for (uint32_t i = 0; i < size * size; ++i) {
        const double z = uniform(random, 2, 3);
        vertices[3 * i] = static_cast<float>((i % size - 7.5) / 10 * z);
        vertices[3 * i + 1] = static_cast<float>((i / size - 7.0) / 12 * z);
        vertices[3 * i + 2] = static_cast<float>(z);
        for (int k = 0; k < 3; ++k) // the world is 1 m to the right of the camera
            points.push_back(vertices[3 * i + k] + static_cast<float>(uniform(random, -0.02, 0.02)) - (k == 0));
    }
    float pose[12];
    std::copy_n(kIdentity, 12, pose);
    pose[3] = 1;
    Sums<6> expected;
    vertices[2] = 0, vertices[5] = NAN;
    points[3 * 2] = NAN, points[3 * 3] += 5, points[3 * 4 + 2] = -1, points[3 * 5] = 1e38f;
    for (uint32_t i = 6; i < size * size; ++i) {
        const float *const n = &normals[3 * i], *const v = &vertices[3 * i];
        const double q[3] = {double{points[3 * i]} + 1, points[3 * i + 1], points[3 * i + 2]};
        expected.add(
            {n[0], n[1], n[2], q[1] * n[2] - q[2] * n[1], q[2] * n[0] - q[0] * n[2], q[0] * n[1] - q[1] * n[0]},
            n[0] * (q[0] - v[0]) + n[1] * (q[1] - v[1]) + n[2] * (q[2] - v[2]));
    }
    float jtj[36], jte[6], squares;
    uint32_t count;
    const auto sum = [&](uint32_t numPoints, const float* from) {
        return rvkICPJacobianErrorSE3f32(from, numPoints, 0, vertices.data(), normals.data(), size, size, 0, camera,
                                         pose, 0.1f, jtj, jte, &squares, &count);
    };
    ASSERT_EQ(sum(size * size, points.data()), RAVIK_SUCCESS);
    expected.expect(jtj, jte, squares, count);
    EXPECT_EQ(sum(0, points.data()), RAVIK_SUCCESS);
    EXPECT_TRUE(count == 0 && squares == 0 && jtj[35] == 0 && jte[5] == 0);
}

} // namespace
