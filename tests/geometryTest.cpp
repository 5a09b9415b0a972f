#include "cpu/ravikGeometryC.h"
#include "support/implementations.h"
#include "support/kernelModes.h"
#include "support/random.h"

#include <ravik/geometry.h>

#include <algorithm>
#include <cmath>
#include <numeric>

#if RVK_TEST_OPENCV
#include <opencv2/calib3d.hpp>
#endif

using namespace test;

namespace {

struct Pairs
{
    std::vector<float> src, dst;
    std::vector<uint8_t> mask;
    size_t coordinates = 2;

    void add(std::initializer_list<float> from, float u, float v)
    {
        coordinates = from.size();
        src.insert(src.end(), from);
        dst.insert(dst.end(), {u, v});
    }
    uint32_t count() const { return static_cast<uint32_t>(dst.size() / 2); }
    rvkaCorrespondences list() const
    {
        return {src.data(), static_cast<uint32_t>(coordinates * sizeof(float)),
                dst.data(), 2 * sizeof(float),
                count(),    mask.empty() ? nullptr : mask.data()};
    }
};

float uniform(Random& random, float low, float high)
{
    return low + (high - low) * (static_cast<float>(random.below(1 << 24)) / 16777216.0f);
}

// ---- how far pairs lie from a model ---------------------------------------------------------------------------------

constexpr float kTurn[6] = {0, -1, 10, 1, 0, 20};                  // (x, y) to (10 - y, 20 + x)
constexpr float kTilt[9] = {1, 0, 0, 0, 1, 0, 0.5f, 0, 1};         // by 1 + x / 2
constexpr float kAhead[12] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 2}; // two metres behind the origin
constexpr float kHuge = 1e38f, kNone = std::numeric_limits<float>::quiet_NaN();

template <Slot slot>
void expectErrors(const Pairs& pairs, const float* model, float most, const std::vector<float>& errors,
                  const std::vector<uint8_t>& inliers)
{
    const rvkaCorrespondences list = pairs.list();
    forEachImplementation<slot>([&](const char* name, auto function) {
        std::vector<float> actual(errors.size(), -1);
        std::vector<uint8_t> isIn(errors.size(), 9);
        const auto sum = static_cast<uint32_t>(std::count(inliers.begin(), inliers.end(), 1));
        EXPECT_EQ(function(&list, model, most, actual.data(), isIn.data()), sum) << name;
        EXPECT_EQ(actual, errors) << name;
        EXPECT_EQ(isIn, inliers) << name;
        EXPECT_EQ(function(&list, model, most, nullptr, nullptr), sum) << name;
    });
}

TEST(Evaluate, WorkedValues)
{
    Pairs pairs;
    pairs.add({1, 2}, 8, 21);
    pairs.add({1, 2}, 11, 25);
    pairs.add({1, 2}, 8, 22);
    pairs.add({kNone, 2}, 8, 22);
    pairs.add({1, 2}, INFINITY, 22);
    pairs.add({kHuge, 2}, 8, 21);
    pairs.mask = {1, 1, 0, 255, 1, 1};
    expectErrors<Slot::rvkGeomAffineEvaluatef32>(pairs, kTurn, 25, {0, 25, 1, INFINITY, INFINITY, INFINITY},
                                                 {1, 1, 0, 0, 0, 0});
    expectErrors<Slot::rvkGeomAffineEvaluatef32>(pairs, kTurn, INFINITY, {0, 25, 1, INFINITY, INFINITY, INFINITY},
                                                 {1, 1, 0, 0, 0, 0});
    Pairs tilted;
    tilted.add({2, 4}, 1, 2);
    tilted.add({2, 4}, 1, 4);
    tilted.add({-2, 4}, 0, 0);  // on the horizon
    tilted.add({-4, 4}, 4, -4); // beyond it
    expectErrors<Slot::rvkGeomHomographyEvaluatef32>(tilted, kTilt, 0, {0, 4, INFINITY, 0}, {1, 0, 0, 1});
    Pairs seen;
    seen.add({2, 4, 2}, 0.5f, 1);
    seen.add({2, 4, 0}, 1, 1);
    seen.add({0, 0, -2}, 0, 0);   // in the camera
    seen.add({2, 4, -4}, -1, -2); // behind it
    expectErrors<Slot::rvkGeomPoseEvaluatef32>(seen, kAhead, 1, {0, 1, INFINITY, INFINITY}, {1, 1, 0, 0});
}

TEST(Evaluate, TakesNoneAndRefusesWhatCannotBe)
{
    const Pairs none;
    float point[2] = {}, errors[1] = {5};
    rvkaCorrespondences list = {point, 0, point, 0, 0, nullptr};
    uint32_t count = 7;
    EXPECT_EQ(rvkGeomAffineEvaluatef32(&list, kTurn, 1, errors, nullptr), 0u);
    EXPECT_EQ(rvkGeomHomographyEvaluatef32_v2(point, 0, point, 0, 0, kTilt, 1, errors, nullptr, &count), RAVIK_SUCCESS);
    EXPECT_EQ(count, 0u);
    float model[9];
    EXPECT_EQ(rvkGeomAffineFitf32(&list, model), RAVIK_EFAIL);
    EXPECT_EQ(rvkGeomHomographyFitf32(&list, model), RAVIK_EFAIL);
    EXPECT_EQ(rvkGeomAffineEvaluatef32(nullptr, kTurn, 1, errors, nullptr), 0u);
    EXPECT_EQ(rvkGeomHomographyFitf32(nullptr, model), RAVIK_EBADPARAM);
    list.count = 1;
    list.srcStride = UINT32_MAX - 3; // a single point has no next one
    EXPECT_EQ(rvkGeomAffineEvaluatef32(&list, kTurn, INFINITY, errors, nullptr), 1u);
    list.count = 2;
    errors[0] = 5;
    EXPECT_EQ(rvkGeomAffineEvaluatef32(&list, kTurn, INFINITY, errors, nullptr), 0u);
    EXPECT_EQ(errors[0], 5);
}

using Wide = long double;

// A distance and what its formula gives with the magnitudes of all terms.
struct Distance
{
    Wide exact, magnitude;
};

template <size_t coordinates>
Distance distanceOf(const float* model, const float* src, const float* dst)
{
    constexpr size_t row = coordinates + 1;
    const auto sums = [&](size_t i) {
        Wide sum = model[i * row + coordinates], size = std::fabs(sum);
        for (size_t k = 0; k < coordinates; k++) {
            sum += Wide{model[i * row + k]} * src[k];
            size += std::fabs(Wide{model[i * row + k]} * src[k]);
        }
        return std::pair(sum, size);
    };
    const auto [w, sizeOfW] = sums(2);
    Distance d{0, 0};
    for (size_t i = 0; i < 2; i++) {
        const auto [sum, size] = sums(i);
        d.exact = std::hypot(d.exact, sum / w - dst[i]);
        d.magnitude = std::hypot(d.magnitude, size / sizeOfW + std::fabs(Wide{dst[i]}));
    }
    return d;
}

// Models of all kinds, most of them wild, with horizons among the points; errors as exact as they have to be, and no
// inlier but those of the reference.
template <Slot slot, size_t coordinates>
void expectExactDistances()
{
    Random random(5);
    for (int trial = 0; trial < 60; trial++) {
        float model[12];
        const float wildness = trial % 3 == 0 ? 1 : trial % 3 == 1 ? 0.05f : 0.002f, size = trial % 2 ? 700.0f : 3.0f;
        for (float& element : model)
            element = uniform(random, -wildness, wildness);
        for (const size_t one : {size_t{0}, coordinates + 2, 3 * coordinates + 2})
            model[one] += 1;
        Pairs pairs;
        pairs.coordinates = coordinates;
        for (int i = 0; i < 100; i++) {
            for (size_t k = 0; k < coordinates; k++)
                pairs.src.push_back(uniform(random, -size, size));
            for (int k = 0; k < 2; k++)
                pairs.dst.push_back(uniform(random, -size, size));
        }
        std::vector<float> reference(100);
        std::vector<uint8_t> expected(100);
        const rvkaCorrespondences list = pairs.list();
        referenceOf<slot>()(&list, model, 0, reference.data(), nullptr);
        // Thresholds that are errors themselves, and just below.
        const float chosen = reference[random.below(100)], most = trial % 4 < 2 ? chosen : std::nextafter(chosen, 0.0f);
        const uint32_t count = referenceOf<slot>()(&list, model, most, nullptr, expected.data());
        forEachVecta<slot>([&](const char* name, auto function) {
            std::vector<float> errors(100);
            std::vector<uint8_t> inliers(100);
            ASSERT_EQ(function(&list, model, most, errors.data(), inliers.data()), count) << name << " " << trial;
            EXPECT_EQ(inliers, expected) << name << " " << trial;
            for (size_t i = 0; i < 100; i++) {
                const Distance d = distanceOf<coordinates>(model, &pairs.src[coordinates * i], &pairs.dst[2 * i]);
                ASSERT_EQ(std::isinf(errors[i]), std::isinf(reference[i])) << name << " " << trial;
                if (!std::isinf(errors[i])) {
                    EXPECT_LE(std::fabs(std::sqrt(Wide{errors[i]}) - d.exact),
                              0x1p-19L * d.magnitude + 0x1p-22L * d.exact)
                        << name << " " << trial;
                }
            }
        });
    }
}

TEST(Evaluate, DistancesAreExactAndInliersThoseOfTheReference)
{
    expectExactDistances<Slot::rvkGeomHomographyEvaluatef32, 2>();
    expectExactDistances<Slot::rvkGeomPoseEvaluatef32, 3>();
}

// ---- fits -----------------------------------------------------------------------------------------------------------

void map(const double* h, double x, double y, double& u, double& v)
{
    const double w = h[6] * x + h[7] * y + h[8];
    u = (h[0] * x + h[1] * y + h[2]) / w;
    v = (h[3] * x + h[4] * y + h[5]) / w;
}

// Pairs of a homography, with errors up to `noise` in dst.
Pairs pairsOf(const double* h, uint32_t count, float noise, uint64_t seed, float offset = 0)
{
    Random random(seed);
    Pairs pairs;
    for (uint32_t i = 0; i < count; i++) {
        const float x = offset + uniform(random, 0, 640), y = offset + uniform(random, 0, 480);
        double u, v;
        map(h, x, y, u, v);
        const float du = uniform(random, -noise, noise), dv = uniform(random, -noise, noise);
        pairs.add({x, y}, static_cast<float>(u) + du, static_cast<float>(v) + dv);
    }
    return pairs;
}

constexpr double kStretch[9] = {1.1, 0.2, -30, -0.1, 0.9, 25, 0, 0, 1};
constexpr double kView[9] = {0.9, 0.15, 12, -0.2, 1.05, 40, 2e-4, -3e-4, 1};

// What is left is orthogonal to all that could be added.
TEST(AffineFit, HasTheLeastSquares)
{
    for (const float offset : {0.0f, 20000.0f}) {
        const Pairs pairs = pairsOf(kStretch, 50, 2, 3, offset);
        const rvkaCorrespondences list = pairs.list();
        float fitted[6];
        ASSERT_EQ(rvkGeomAffineFitf32(&list, fitted), RAVIK_SUCCESS);
        for (int row = 0; row < 2; row++) {
            double sum = 0, byX = 0, byY = 0;
            for (uint32_t i = 0; i < 50; i++) {
                const double x = pairs.src[2 * i], y = pairs.src[2 * i + 1];
                const float* const of = fitted + 3 * row;
                const double rest = of[0] * x + of[1] * y + of[2] - pairs.dst[2 * i + static_cast<size_t>(row)];
                sum += rest / 50;
                byX += rest * (x - offset) / (50 * 640);
                byY += rest * (y - offset) / (50 * 480);
            }
            const double rounding = offset > 0 ? 4e-3 : 1e-4; // of floats in fitted and in pairs
            EXPECT_NEAR(sum, 0, rounding);
            EXPECT_NEAR(byX, 0, rounding);
            EXPECT_NEAR(byY, 0, rounding);
        }
    }
}

TEST(AffineFit, FailsOnALine)
{
    Pairs pairs;
    for (const float x : {0.0f, 1.0f, 2.0f, 5.0f})
        pairs.add({x, 3 * x + 1}, x * x, x);
    rvkaCorrespondences list = pairs.list();
    float affine[6] = {42};
    EXPECT_EQ(rvkGeomAffineFitf32(&list, affine), RAVIK_EFAIL);
    pairs.src[1] = 1.5f;
    EXPECT_EQ(rvkGeomAffineFitf32(&list, affine), RAVIK_SUCCESS);
    pairs.mask = {0, 1, 1, 0};
    affine[0] = 42;
    list = pairs.list();
    EXPECT_EQ(rvkGeomAffineFitf32(&list, affine), RAVIK_EFAIL);
    pairs.mask = {1, 1, 1, 1};
    pairs.dst[0] = kNone;
    EXPECT_EQ(rvkGeomAffineFitf32(&list, affine), RAVIK_EFAIL);
    EXPECT_EQ(affine[0], 42);
}

TEST(HomographyFit, RestoresTheHomography)
{
    for (const double* h : {kStretch, kView})
        for (const uint32_t count : {4u, 5u, 200u}) {
            const Pairs pairs = pairsOf(h, count, 0, 7 + count);
            const rvkaCorrespondences list = pairs.list();
            float fitted[9];
            ASSERT_EQ(rvkGeomHomographyFitf32(&list, fitted), RAVIK_SUCCESS);
            EXPECT_EQ(fitted[8], 1);
            const double doubles[9] = {fitted[0], fitted[1], fitted[2], fitted[3], fitted[4],
                                       fitted[5], fitted[6], fitted[7], fitted[8]};
            for (uint32_t i = 0; i < count; i++) {
                double u, v;
                map(doubles, pairs.src[2 * i], pairs.src[2 * i + 1], u, v);
                EXPECT_NEAR(u, pairs.dst[2 * i], 640 * 0x1p-16) << count;
                EXPECT_NEAR(v, pairs.dst[2 * i + 1], 640 * 0x1p-16) << count;
            }
        }
}

// (x, y) to (1, y) / x: nothing to divide by at (0, 0).
TEST(HomographyFit, IsScaledByTheLargestElementWhereTheLastIsZero)
{
    const float src[] = {1, 1, 2, 4, 4, 2, 8, 16, 0.5f, 3}, dst[] = {1, 1, 0.5f, 2, 0.25f, 0.5f, 0.125f, 2, 2, 6};
    const float expected[9] = {0, 0, 1, 0, 1, 0, 1, 0, 0};
    float fitted[9];
    ASSERT_EQ(rvkGeomHomographyFitf32_v2(src, 0, dst, 0, 5, nullptr, fitted), RAVIK_SUCCESS);
    for (int i = 0; i < 9; i++)
        EXPECT_NEAR(fitted[i], expected[i], 1e-6f) << i;
    EXPECT_EQ(*std::max_element(fitted, fitted + 9), 1);
}

TEST(HomographyFit, FailsWhereThereIsNoneOrMany)
{
    const std::vector<std::vector<float>> bad = {
        {0, 0, 1, 1, 2, 2, 5, 1}, {3, 3, 3, 3, 7, 2, 5, 1}, {3, 3, 3, 3, 3, 3, 3, 3}, {0, 0, 1, 0, kNone, 1, 1, 1}};
    const std::vector<float> good = {0, 0, 1, 0, 1, 1.5f, 0, 1};
    for (const std::vector<float>& points : bad)
        for (const bool isSrc : {true, false}) {
            const std::vector<float>&src = isSrc ? points : good, &dst = isSrc ? good : points;
            float homography[9] = {42};
            EXPECT_EQ(rvkGeomHomographyFitf32_v2(src.data(), 0, dst.data(), 0, 4, nullptr, homography), RAVIK_EFAIL);
            EXPECT_EQ(rvkGeomHomographyRobustFitf32_v2(src.data(), 0, dst.data(), 0, 4, nullptr, 1, 5000, 1, 0,
                                                       homography, nullptr, nullptr),
                      RAVIK_EFAIL);
            EXPECT_EQ(homography[0], 42);
        }
}

// ---- a fit to most pairs --------------------------------------------------------------------------------------------

// Every second of them anywhere.
Pairs halfOfThem(uint32_t count, uint64_t seed)
{
    Pairs pairs = pairsOf(kView, count, 0.5f, seed);
    Random random(seed + 1);
    for (size_t i = 0; i < pairs.dst.size(); i += 4)
        for (size_t k = 0; k < 2; k++)
            pairs.dst[i + k] = uniform(random, 0, 1) < 0.5f ? pairs.dst[i + k] + 60 : uniform(random, -900, -100);
    return pairs;
}

TEST(HomographyRobustFit, FindsTheInliersOnEveryTarget)
{
    for (const uint32_t count : {40u, 63u, 500u}) {
        Pairs pairs = halfOfThem(count, count);
        pairs.mask.assign(count, 1);
        pairs.mask[5] = 0;
        const rvkaCorrespondences list = pairs.list();
        float reference[9];
        for (const uint32_t seed : {0u, 1u, 77u})
            forEachImplementation<Slot::rvkGeomHomographyRobustFitf32>([&](const char* name, auto function) {
                float homography[9];
                std::vector<uint8_t> inliers(count, 9);
                uint32_t found = 0;
                ASSERT_EQ(function(&list, 9, 2000, 0.999f, seed, homography, inliers.data(), &found), RAVIK_SUCCESS);
                EXPECT_EQ(found, count / 2 - 1) << name;
                for (uint32_t i = 0; i < count; i++)
                    EXPECT_EQ(inliers[i], i % 2 && i != 5) << name << ", " << i;
                if (name[0] == 'C' && seed < 2)
                    std::copy_n(homography, 9, reference);
                if (seed < 2) {
                    EXPECT_TRUE(std::equal(reference, reference + 9, homography)) << name << ": 0 counts as 1";
                }
            });
    }
}

TEST(HomographyRobustFit, EndsWhenItIsConfidentOrMayNotGoOn)
{
    const Pairs pairs = halfOfThem(100, 9);
    const auto find = [&](uint32_t iterations, float confidence) {
        float homography[9];
        uint32_t found = 0;
        rvkGeomHomographyRobustFitf32_v2(pairs.src.data(), 0, pairs.dst.data(), 0, 100, nullptr, 9, iterations,
                                         confidence, 3, homography, nullptr, &found);
        return found;
    };
    EXPECT_LT(find(1, 1), 20u);
    EXPECT_LT(find(500, 1e-3f), 20u) << "any model will do";
    EXPECT_EQ(find(500, 0.9999f), 50u);
    EXPECT_EQ(find(500, 1), 50u);
}

#if RVK_TEST_OPENCV
TEST(HomographyRobustFit, AgreesWithOpenCv)
{
    const Pairs pairs = halfOfThem(300, 21);
    const cv::Mat src(300, 1, CV_32FC2, const_cast<float*>(pairs.src.data()));
    const cv::Mat dst(300, 1, CV_32FC2, const_cast<float*>(pairs.dst.data()));
    cv::Mat mask;
    cv::findHomography(src, dst, cv::RANSAC, 3, mask, 2000, 0.999);
    float homography[9];
    std::vector<uint8_t> inliers(300);
    rvkGeomHomographyRobustFitf32_v2(pairs.src.data(), 0, pairs.dst.data(), 0, 300, nullptr, 9, 2000, 0.999f, 1,
                                     homography, inliers.data(), nullptr);
    EXPECT_TRUE(std::equal(inliers.begin(), inliers.end(), mask.ptr()));

    const Pairs noisy = pairsOf(kView, 60, 1, 4);
    const rvkaCorrespondences list = noisy.list();
    ASSERT_EQ(rvkGeomHomographyFitf32(&list, homography), RAVIK_SUCCESS);
    const cv::Mat theirs = cv::findHomography(cv::Mat(60, 1, CV_32FC2, const_cast<float*>(noisy.src.data())),
                                              cv::Mat(60, 1, CV_32FC2, const_cast<float*>(noisy.dst.data())));
    const double ours[9] = {homography[0], homography[1], homography[2], homography[3], homography[4],
                            homography[5], homography[6], homography[7], homography[8]};
    for (const double x : {0.0, 320.0, 640.0}) { // theirs goes on to the least distances, which is not far
        double u, v, theirU, theirV;
        map(ours, x, 240, u, v);
        map(theirs.ptr<double>(), x, 240, theirU, theirV);
        EXPECT_NEAR(u, theirU, 0.3);
        EXPECT_NEAR(v, theirV, 0.3);
    }
}
#endif

TEST(NormalizePointsKernel, MovesAndScalesInBothModes)
{
    std::vector<float> points(2 * 37);
    std::iota(points.begin(), points.end(), -20.5f);
    const double centre[2] = {0.1, 1e9};
    inBothModes(Kernel::irvkNormalizePoints2D, "irvkNormalizePoints2D", [&] {
        std::vector<double> normalized(points.size() + 1, -7);
        kernel<Kernel::irvkNormalizePoints2D>()(points.data(), 37, centre, 1.0 / 3, normalized.data());
        for (size_t i = 0; i < points.size(); i++)
            EXPECT_EQ(normalized[i], (points[i] - centre[i % 2]) * (1.0 / 3));
        EXPECT_EQ(normalized.back(), -7);
    });
}

} // namespace
