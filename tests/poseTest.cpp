#include "support/implementations.h"
#include "support/random.h"

#include <ravik/pose.h>

#include <algorithm>
#include <array>
#include <cmath>

#if RVK_TEST_OPENCV
#include <opencv2/calib3d.hpp>
#endif

using namespace test;

namespace {

using Real = long double;
using Pose = std::array<float, 12>;
using Motion = std::array<float, 6>;
using Matrix = std::array<std::array<Real, 4>, 4>;

float uniform(Random& random, double low, double high)
{
    return static_cast<float>(low + (high - low) * random.below(1 << 24) / (1 << 24));
}

// ---- motions, by the series of the matrix exponential ----

Matrix product(const Matrix& a, const Matrix& b)
{
    Matrix result{};
    for (size_t i = 0; i < 4; ++i)
        for (size_t j = 0; j < 4; ++j)
            for (size_t k = 0; k < 4; ++k)
                result[i][j] += a[i][k] * b[k][j];
    return result;
}

Matrix exponential(const std::array<Real, 6>& xi)
{
    constexpr int halvings = 12;
    const auto [vx, vy, vz, wx, wy, wz] = xi;
    Matrix step = {{{0, -wz, wy, vx}, {wz, 0, -wx, vy}, {-wy, wx, 0, vz}, {0, 0, 0, 0}}};
    for (auto& row : step)
        for (Real& element : row)
            element = std::ldexp(element, -halvings);
    Matrix sum{}, term{};
    for (size_t i = 0; i < 4; ++i)
        sum[i][i] = term[i][i] = 1;
    for (int n = 1; n < 20; ++n) {
        term = product(term, step);
        for (size_t i = 0; i < 16; ++i)
            sum[i / 4][i % 4] += term[i / 4][i % 4] /= n;
    }
    for (int i = 0; i < halvings; ++i)
        sum = product(sum, sum);
    return sum;
}

Matrix matrixOf(const Pose& pose)
{
    Matrix m{};
    for (size_t i = 0; i < 12; ++i)
        m[i / 4][i % 4] = pose[i];
    m[3][3] = 1;
    return m;
}

Pose poseOf(const Matrix& m)
{
    Pose pose;
    for (size_t i = 0; i < 12; ++i)
        pose[i] = static_cast<float>(m[i / 4][i % 4]);
    return pose;
}

// Near the world's origin, which is a few units in front of it.
Pose randomPose(Random& random, double turn = 0.6)
{
    std::array<Real, 6> xi{};
    for (size_t i = 3; i < 6; ++i)
        xi[i] = uniform(random, -turn, turn);
    Matrix m = exponential(xi);
    for (size_t i = 0; i < 3; ++i)
        m[i][3] = uniform(random, -0.5, 0.5) + (i == 2 ? 4 : 0);
    return poseOf(m);
}

Pose nearby(Random& random, const Pose& pose, double size)
{
    std::array<Real, 6> xi;
    for (Real& element : xi)
        element = uniform(random, -size, size);
    return poseOf(product(exponential(xi), matrixOf(pose)));
}

TEST(Pose, UpdatesAreExponentials)
{
    Random random(1);
    for (const double turn : {0.0, 1e-6, 0.1, 0.5, 0.7, 2.0, 20.0}) {
        for (int trial = 0; trial < 20; ++trial) {
            const Pose pose = randomPose(random);
            Motion xi;
            for (size_t i = 0; i < 6; ++i)
                xi[i] = uniform(random, i < 3 ? -5 : -turn, i < 3 ? 5 : turn);
            std::array<Real, 6> exactXi;
            std::copy(xi.begin(), xi.end(), exactXi.begin());
            const Matrix expected = product(exponential(exactXi), matrixOf(pose));
            Pose actual, inPlace = pose;
            ASSERT_EQ(rvkGeomPoseUpdatef32(pose.data(), xi.data(), actual.data()), RAVIK_SUCCESS);
            ASSERT_EQ(rvkGeomPoseUpdatef32(inPlace.data(), xi.data(), inPlace.data()), RAVIK_SUCCESS);
            EXPECT_EQ(actual, inPlace);
            const double t = std::hypot(actual[3], actual[7], actual[11]);
            for (size_t i = 0; i < 12; ++i)
                EXPECT_NEAR(actual[i], static_cast<double>(expected[i / 4][i % 4]), 0x1p-20 * std::max(1.0, t)) << turn;
        }
    }
}

TEST(Pose, UpdatesMakeRotations)
{
    const Motion none{};
    const Pose skewed = {2, 0, 0, 1, 1, 3, 0, 2, 9, 9, 9, 3}, rotation = {1, 0, 0, 1, 0, 1, 0, 2, 0, 0, 1, 3};
    Pose updated;
    ASSERT_EQ(rvkGeomPoseUpdatef32(skewed.data(), none.data(), updated.data()), RAVIK_SUCCESS);
    EXPECT_EQ(updated, rotation);
    const Pose kept = updated;
    for (const Pose& wrong : {Pose{0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0}, Pose{1, 2, 3, 0, 2, 4, 6, 0, 0, 0, 1, 0},
                              Pose{1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0}, Pose{1, 0, 0, NAN, 0, 1, 0, 0, 0, 0, 1, 0},
                              Pose{INFINITY, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0}})
        EXPECT_EQ(rvkGeomPoseUpdatef32(wrong.data(), none.data(), updated.data()), RAVIK_EFAIL);
    const Motion far = {3e38f, 0, 0, 0, 0, 0}, fast = {0, 0, 0, 3e38f, 0, 0}, notANumber = {0, 0, 0, NAN, 0, 0};
    const Pose distant = {1, 0, 0, 3e38f, 0, 1, 0, 0, 0, 0, 1, 0};
    EXPECT_EQ(rvkGeomPoseUpdatef32(distant.data(), far.data(), updated.data()), RAVIK_EFAIL);
    EXPECT_EQ(rvkGeomPoseUpdatef32(rotation.data(), notANumber.data(), updated.data()), RAVIK_EFAIL);
    EXPECT_EQ(updated, kept);
    EXPECT_EQ(rvkGeomPoseUpdatef32(rotation.data(), fast.data(), updated.data()), RAVIK_SUCCESS);
}

// ---- pairs ----

struct Pairs
{
    std::vector<float> world, seen;
    std::vector<uint8_t> mask;

    rvkaCorrespondences get() const
    {
        return {world.data(),
                0,
                seen.data(),
                0,
                static_cast<uint32_t>(seen.size() / 2),
                mask.empty() ? nullptr : mask.data()};
    }
    size_t count() const { return seen.size() / 2; }
};

// Projected minus measured; infinite where that is none.
std::array<Real, 2> residual(const Matrix& pose, const Pairs& pairs, size_t i)
{
    std::array<Real, 3> q;
    for (size_t r = 0; r < 3; ++r)
        q[r] = pose[r][0] * pairs.world[3 * i] + pose[r][1] * pairs.world[3 * i + 1] +
               pose[r][2] * pairs.world[3 * i + 2] + pose[r][3];
    const Real x = q[0] / q[2] - pairs.seen[2 * i], y = q[1] / q[2] - pairs.seen[2 * i + 1];
    if (q[2] > 0 && std::isfinite(x) && std::isfinite(y))
        return {x, y};
    return {INFINITY, INFINITY};
}

Pairs randomPairs(Random& random, const Pose& pose, size_t count, double noise = 0)
{
    Pairs pairs{{}, std::vector<float>(2 * count), {}};
    for (size_t i = 0; i < 3 * count; ++i)
        pairs.world.push_back(uniform(random, -1.5, 1.5));
    for (size_t i = 0; i < count; ++i) {
        const auto at = residual(matrixOf(pose), pairs, i);
        pairs.seen[2 * i] = static_cast<float>(at[0]) + uniform(random, -noise, noise);
        pairs.seen[2 * i + 1] = static_cast<float>(at[1]) + uniform(random, -noise, noise);
    }
    return pairs;
}

Real lossOf(const Matrix& pose, const Pairs& pairs, Real huber)
{
    Real sum = 0;
    for (size_t i = 0; i < pairs.count(); ++i) {
        if (!pairs.mask.empty() && !pairs.mask[i])
            continue;
        const auto [x, y] = residual(pose, pairs, i);
        const Real distance = std::sqrt(x * x + y * y);
        sum += distance <= huber ? distance * distance / 2 : huber * (distance - huber / 2);
    }
    return sum;
}

// Some points are behind the camera, or no numbers; masked or not.
TEST(Pose, ErrorsAreThoseOfTheFormula)
{
    Random random(2);
    for (int trial = 0; trial < 60; ++trial) {
        const Pose pose = randomPose(random);
        Pairs pairs = randomPairs(random, pose, 1 + random.below(20), 0.1);
        for (size_t i = 0; i < pairs.count(); ++i) {
            pairs.mask.push_back(static_cast<uint8_t>(random.below(3)));
            const uint32_t kind = random.below(trial % 2 ? 1000 : 20);
            if (kind < 2)
                pairs.world[3 * i + kind] = kind ? NAN : 3e38f;
            else if (kind < 4)
                pairs.seen[2 * i + kind % 2] = kind % 2 ? NAN : INFINITY;
            else if (kind == 4) // right behind it
                for (size_t k = 0; k < 3; ++k)
                    pairs.world[3 * i + k] = -99 * pose[8 + k];
        }
        rvkaCorrespondences given = pairs.get();
        given.srcStride = 12, given.dstStride = 8;
        forEachImplementation<Slot::rvkGeomPoseEvaluateErrorf32>([&](const char* name, auto function) {
            std::vector<float> residuals(2 * pairs.count());
            float mean = 7, meanOnly = 7;
            ASSERT_EQ(function(&given, pose.data(), residuals.data(), &mean), RAVIK_SUCCESS);
            ASSERT_EQ(function(&given, pose.data(), nullptr, &meanOnly), RAVIK_SUCCESS);
            Real sum = 0;
            int used = 0;
            for (size_t i = 0; i < pairs.count(); ++i) {
                const auto [x, y] = residual(matrixOf(pose), pairs, i);
                EXPECT_FLOAT_EQ(residuals[2 * i], static_cast<float>(x)) << name;
                EXPECT_FLOAT_EQ(residuals[2 * i + 1], static_cast<float>(y)) << name;
                sum += pairs.mask[i] ? x * x + y * y : 0;
                used += pairs.mask[i] != 0;
            }
            EXPECT_FLOAT_EQ(mean, static_cast<float>(used ? sum / used : 0)) << name;
            EXPECT_EQ(mean, meanOnly) << name;
        });
    }
}

// ---- the pose of least cost ----

// How far from a minimum of the loss a pose is along each motion, by a parabola.
void expectLeast(const Pose& pose, const Pairs& pairs, Real huber)
{
    constexpr Real h = 1e-3L;
    for (size_t axis = 0; axis < 6; ++axis) {
        std::array<Real, 6> xi{};
        const auto lossAt = [&](Real offset) {
            xi[axis] = offset;
            return lossOf(product(exponential(xi), matrixOf(pose)), pairs, huber);
        };
        const Real before = lossAt(-h), here = lossAt(0), behind = lossAt(h);
        EXPECT_LE(std::fabs(h * (before - behind) / (2 * (before + behind - 2 * here))),
                  huber == INFINITY ? 2e-5 : 1e-4)
            << "axis " << axis;
    }
}

TEST(Pose, RefinementFindsThePoseThatWasSeen)
{
    Random random(3);
    for (int trial = 0; trial < 30; ++trial) {
        const Pose truth = randomPose(random), start = nearby(random, truth, 0.1);
        Pairs pairs = randomPairs(random, truth, trial % 3 ? 20 : 6);
        pairs.mask.assign(pairs.count(), 1);
        pairs.seen[2] = 1000; // left out
        pairs.mask[1] = 0;
        const auto given = pairs.get();
        Pose refined, optimized = start;
        float cost;
        uint32_t steps;
        ASSERT_EQ(rvkGeomPoseRefineGNf32(&given, start.data(), 30, 0, refined.data()), RAVIK_SUCCESS);
        for (size_t i = 0; i < 12; ++i)
            EXPECT_NEAR(refined[i], truth[i], 0x1p-16);
        ASSERT_EQ(rvkGeomPoseOptimizeGNf32(&given, INFINITY, UINT32_MAX, 0, optimized.data(), &cost, &steps),
                  RAVIK_SUCCESS);
        EXPECT_EQ(optimized, refined);
        EXPECT_LE(cost, 1e-10f);
        EXPECT_LE(steps, 15u);
    }
}

TEST(Pose, RefinedPosesHaveTheLeastCost)
{
    Random random(4);
    for (int trial = 0; trial < 20; ++trial) {
        const Pose truth = randomPose(random);
        Pairs pairs = randomPairs(random, truth, 40, 0.01);
        Pose pose = nearby(random, truth, 0.05);
        auto given = pairs.get();
        ASSERT_EQ(rvkGeomPoseRefineGNf32(&given, pose.data(), 50, 0, pose.data()), RAVIK_SUCCESS);
        expectLeast(pose, pairs, INFINITY);

        for (size_t i = 0; i < 8; ++i)
            pairs.seen[2 * i] += uniform(random, -1, 1);
        const Real huber = 0.01f;
        float cost;
        given = pairs.get();
        ASSERT_EQ(rvkGeomPoseOptimizeGNf32(&given, 0.01f, 100, 0, pose.data(), &cost, nullptr), RAVIK_SUCCESS);
        expectLeast(pose, pairs, huber);
        EXPECT_NEAR(cost, static_cast<double>(lossOf(matrixOf(pose), pairs, huber)), 1e-5 * cost);
        for (size_t i = 0; i < 12; ++i)
            EXPECT_NEAR(pose[i], truth[i], 0.1) << "in spite of outliers";
    }
}

TEST(Pose, SearchesEnd)
{
    Random random(5);
    const Pose truth = randomPose(random), start = nearby(random, truth, 0.1);
    const Pairs pairs = randomPairs(random, truth, 20, 0.01);
    const auto given = pairs.get();
    Pose pose = start;
    float cost = 7;
    uint32_t steps = 7;
    ASSERT_EQ(rvkGeomPoseOptimizeGNf32(&given, 1, 0, 0, pose.data(), &cost, &steps), RAVIK_SUCCESS);
    EXPECT_EQ(pose, start);
    EXPECT_EQ(steps, 0u);
    EXPECT_FLOAT_EQ(cost, static_cast<float>(lossOf(matrixOf(start), pairs, 1)));
    ASSERT_EQ(rvkGeomPoseOptimizeGNf32(&given, 1, 2, 0, pose.data(), nullptr, &steps), RAVIK_SUCCESS);
    EXPECT_EQ(steps, 2u);
    pose = start;
    ASSERT_EQ(rvkGeomPoseOptimizeGNf32(&given, 1, 100, 10, pose.data(), nullptr, &steps), RAVIK_SUCCESS);
    EXPECT_EQ(steps, 1u) << "the first step is smaller than epsilon";
    for (int trial = 0; trial < 200; ++trial) { // what is seen has nothing to do with the world
        Pairs nonsense = randomPairs(random, truth, 3 + random.below(5));
        for (float& number : nonsense.seen)
            number = uniform(random, -3, 3);
        const auto other = nonsense.get();
        pose = start;
        float costBefore;
        if (rvkGeomPoseOptimizeGNf32(&other, 0.5f, 0, 0, pose.data(), &costBefore, nullptr) == RAVIK_SUCCESS) {
            ASSERT_EQ(rvkGeomPoseOptimizeGNf32(&other, 0.5f, 10000, 0, pose.data(), &cost, nullptr), RAVIK_SUCCESS);
            EXPECT_LE(cost, costBefore);
        }
    }
}

TEST(Pose, SearchesWithoutAStartAreRefused)
{
    Random random(6);
    const Pose truth = randomPose(random);
    const Pairs good = randomPairs(random, truth, 9);
    const auto expectRefused = [&](auto spoil, float epsilon = 0, rvkStatus expected = RAVIK_EFAIL) {
        Pairs pairs = good;
        Pose start = truth;
        spoil(pairs, start);
        const auto given = pairs.get();
        Pose refined{}, optimized = start;
        float cost = 7;
        EXPECT_EQ(rvkGeomPoseRefineGNf32(&given, start.data(), 5, epsilon, refined.data()), expected);
        EXPECT_EQ(rvkGeomPoseOptimizeGNf32(&given, 1, 5, epsilon, optimized.data(), &cost, nullptr), expected);
        EXPECT_TRUE(refined == Pose{} && cost == 7);
        EXPECT_TRUE(std::equal(start.begin(), start.end(), optimized.begin(), sameFloat));
    };
    const auto spoilNothing = [](Pairs&, Pose&) {};
    expectRefused([](Pairs& pairs, Pose&) { pairs.mask = {1, 0, 0, 0, 1, 0, 0, 0, 0}; });
    expectRefused([](Pairs& pairs, Pose&) { std::fill(pairs.world.begin(), pairs.world.end(), 0.5f); });
    expectRefused([](Pairs&, Pose& start) { start[11] = -9; }); // behind
    for (const float bad : {NAN, INFINITY, -INFINITY}) {
        expectRefused([=](Pairs& pairs, Pose&) { pairs.seen[5] = bad; });
        expectRefused([=](Pairs& pairs, Pose&) { pairs.world[5] = bad; });
        expectRefused([=](Pairs&, Pose& start) { start[0] = bad; });
    }
    expectRefused(spoilNothing, -1, RAVIK_EBADPARAM);
    expectRefused(spoilNothing, NAN, RAVIK_EBADPARAM);
    Pose pose = truth;
    const auto given = good.get();
    EXPECT_EQ(rvkGeomPoseOptimizeGNf32(&given, NAN, 5, 0, pose.data(), nullptr, nullptr), RAVIK_EBADPARAM);
}

// ---- three points ----

struct Triple
{
    std::array<float, 9> world;
    std::array<float, 6> seen;

    // Poses, each of which must put the points where they are seen.
    std::vector<Pose> poses() const
    {
        float found[48];
        uint32_t count = 77;
        EXPECT_EQ(rvkGeom3PointPoseEstimatef32(world.data(), seen.data(), found, &count), RAVIK_SUCCESS);
        std::vector<Pose> all(count);
        for (uint32_t i = 0; i < count; ++i)
            std::copy_n(found + 12 * i, 12, all[i].begin());
        return all;
    }
    Pairs pairs() const { return {{world.begin(), world.end()}, {seen.begin(), seen.end()}, {}}; }
};

// How far a point is from the camera.
double distanceOf(const Pose& pose, const Triple& triple, size_t point)
{
    std::array<double, 3> q;
    for (size_t r = 0; r < 3; ++r) {
        q[r] = pose[4 * r + 3];
        for (size_t k = 0; k < 3; ++k)
            q[r] += double{pose[4 * r + k]} * triple.world[3 * point + k];
    }
    return std::copysign(std::hypot(q[0], q[1], q[2]), q[2]);
}

void expectSolutions(const Triple& triple, const std::vector<Pose>& poses)
{
    for (size_t n = 0; n < poses.size(); ++n) {
        const Matrix m = matrixOf(poses[n]);
        for (size_t i = 0; i < 3; ++i) {
            const auto [x, y] = residual(m, triple.pairs(), i);
            const double distance = distanceOf(poses[n], triple, i); // near the camera a translation is coarse
            EXPECT_LE(std::max(std::fabs(x), std::fabs(y)), 0x1p-16L / std::min(1.0, 10 * distance));
            EXPECT_GT(distance, 0);
            for (size_t k = 0; k < 3; ++k) {
                const Real dot = m[i][0] * m[k][0] + m[i][1] * m[k][1] + m[i][2] * m[k][2];
                EXPECT_NEAR(static_cast<double>(dot), i == k, 1e-6);
            }
        }
        if (n) {
            EXPECT_LE(distanceOf(poses[n - 1], triple, 0), distanceOf(poses[n], triple, 0) + 1e-5);
        }
    }
}

Triple seenFrom(Random& random, const Pose& pose)
{
    const Pairs pairs = randomPairs(random, pose, 3);
    Triple triple;
    std::copy(pairs.world.begin(), pairs.world.end(), triple.world.begin());
    std::copy(pairs.seen.begin(), pairs.seen.end(), triple.seen.begin());
    return triple;
}

TEST(Pose, ThreePointsHaveThePoseTheyAreSeenFrom)
{
    Random random(7);
    int lost = 0;
    std::array<int, 5> counts{};
    for (int trial = 0; trial < 2000; ++trial) {
        const Pose truth = randomPose(random, 3);
        const Triple triple = seenFrom(random, truth);
        const std::vector<Pose> poses = triple.poses();
        ASSERT_LE(poses.size(), 4u);
        expectSolutions(triple, poses);
        ++counts[poses.size()];
        lost += std::none_of(poses.begin(), poses.end(), [&](const Pose& pose) {
            return std::equal(pose.begin(), pose.end(), truth.begin(),
                              [](float a, float b) { return std::fabs(a - b) < 1e-3f; });
        });
    }
    EXPECT_LE(lost, 10); // where two solutions meet, rounding takes them far apart, or away
    EXPECT_GT(counts[1] + counts[2], 1000);
    EXPECT_GT(counts[4], 10);
}

// On the axis of an equilateral triangle, at a height h, all three points are sqrt(1 + h^2) away, or one of them is nearer
// by the factor 2 c - 1, where c is the cosine of the angles between the rays, 1 - 1.5 / (1 + h^2).
TEST(Pose, AnEquilateralTriangleHasFourPoses)
{
    const float y = std::sqrt(0.75f);
    for (const float h : {0.5f, 1.3f, 1.5f, 2.0f, 2.7f, 5.0f, 9.0f}) {
        const Triple triple = {{1, 0, 0, -0.5f, y, 0, -0.5f, -y, 0}, {1 / h, 0, -0.5f / h, y / h, -0.5f / h, -y / h}};
        const double far = std::sqrt(1 + double{h} * h), near = 1 - 3 / (far * far);
        const std::vector<Pose> poses = triple.poses();
        ASSERT_EQ(poses.size(), near > 0 ? 4u : 1u) << h;
        expectSolutions(triple, poses);
        std::array<int, 3> nearPoints{};
        for (const Pose& pose : poses)
            for (size_t i = 0; i < 3; ++i) {
                const double distance = distanceOf(pose, triple, i) / far;
                const bool isNear = distance < (1 + near) / 2;
                nearPoints[i] += isNear;
                EXPECT_NEAR(distance, isNear ? near : 1, 1e-4) << h;
            }
        const int each = near > 0;
        EXPECT_EQ(nearPoints, (std::array<int, 3>{each, each, each})) << h;
    }
}

TEST(Pose, ThreePointsOnALineHaveNone)
{
    std::array<float, 6> seen = {0.5f, 0, -0.25f, 0.4f, -0.25f, -0.4f};
    const std::array<float, 9> good = {1, 0, 0, -0.5f, 0.8f, 0, -0.5f, -0.8f, 0};
    float poses[48] = {7};
    uint32_t count = 7;
    const auto status = [&](const std::array<float, 9>& world) {
        return rvkGeom3PointPoseEstimatef32(world.data(), seen.data(), poses, &count);
    };
    for (const std::array<float, 9>& world : {std::array<float, 9>{1, 2, 3, 1, 2, 3, 4, 5, 7},
                                              {0.1f, 0.2f, 0.3f, 0.2f, 0.4f, 0.6f, 0.3f, 0.6f, 0.9f},
                                              {1e8f, 0, 0, 1e8f, 1, 0, -1e8f, 0, 0},
                                              {0, 0, NAN, 1, 0, 0, 0, 1, 0},
                                              {INFINITY, 0, 0, 1, 0, 0, 0, 1, 0}})
        EXPECT_EQ(status(world), RAVIK_EFAIL);
    EXPECT_TRUE(poses[0] == 7 && count == 7);
    seen.fill(0.25f);
    EXPECT_EQ(status(good), RAVIK_SUCCESS);
    EXPECT_EQ(count, 0u) << "a triangle is not a point";
    seen[0] = NAN;
    EXPECT_EQ(status(good), RAVIK_EFAIL);
}

#if RVK_TEST_OPENCV
TEST(Pose, ThreePointsHaveAsManyPosesAsInOpenCv)
{
    Random random(8);
    int different = 0;
    for (int trial = 0; trial < 500; ++trial) {
        Triple triple = seenFrom(random, randomPose(random, 3));
        if (trial % 2)
            for (float& number : triple.seen)
                number = uniform(random, -1, 1);
        const std::vector<Pose> poses = triple.poses();
        expectSolutions(triple, poses);
        std::vector<cv::Mat> turns, translations;
        cv::solveP3P(cv::Mat(3, 3, CV_32F, triple.world.data()), cv::Mat(3, 2, CV_32F, triple.seen.data()),
                     cv::Matx33d::eye(), cv::noArray(), turns, translations, cv::SOLVEPNP_P3P);
        different += turns.size() != poses.size();
    }
    EXPECT_LE(different, 10);
}
#endif

} // namespace
