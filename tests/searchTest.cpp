#include "support/implementations.h"
#include "support/random.h"
#include "support/scarceMemory.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#if RVK_TEST_OPENCV
#include <opencv2/ml.hpp>
#endif

using namespace test;

namespace {

// ---- clusters -------------------------------------------------------------------------------------------------------

template <class T>
using Numbers = std::vector<T>;

// From -1 to 1.
float drawNumber(Random& random)
{
    return static_cast<float>(random.below(2'000'001)) / 1e6f - 1;
}

// Vectors around some others.
template <class T>
Numbers<T> drawAround(Random& random, const Numbers<T>& others, uint32_t count, uint32_t dim, double spread)
{
    Numbers<T> all;
    for (uint32_t i = 0; i < count; i++) {
        const T* const other = others.data() + random.below(static_cast<uint32_t>(others.size()) / dim) * dim;
        for (uint32_t j = 0; j < dim; j++) {
            const double number = static_cast<double>(other[j]) + spread * static_cast<double>(drawNumber(random));
            all.push_back(static_cast<T>(std::is_same_v<T, uint8_t> ? std::clamp(number, 0.0, 255.0) : number));
        }
    }
    return all;
}

template <class T>
long double distanceOf(bool isNormed, uint32_t dim, const T* p, const T* c)
{
    long double squares = 0, dot = 0;
    for (uint32_t j = 0; j < dim; j++) {
        squares += (static_cast<long double>(p[j]) - c[j]) * (static_cast<long double>(p[j]) - c[j]);
        dot += static_cast<long double>(p[j]) * c[j];
    }
    return isNormed ? 2 - 2 * dot : squares;
}

// What an iteration gives.
template <class T, class Distance>
struct Iteration
{
    Numbers<uint32_t> labels, sizes;
    Numbers<T> centers;
    Numbers<Distance> distances;
    bool operator==(const Iteration&) const = default;
};

template <Slot slot, class T, class Distance>
void expectIteration(bool isNormed, uint32_t dim, const Numbers<T>& points, const Numbers<T>& centers)
{
    const auto n = static_cast<uint32_t>(points.size()) / dim, k = static_cast<uint32_t>(centers.size()) / dim;
    Iteration<T, Distance> first;
    forEachImplementation<slot>([&](const char* name, auto function) {
        constexpr uint32_t size = sizeof(T);
        Iteration<T, Distance> it{Numbers<uint32_t>(n), Numbers<uint32_t>(k), centers, Numbers<Distance>(k)};
        T* const c = it.centers.data(); // in place
        if constexpr (slot == Slot::rvkClusterEuclideanNormed36f32)
            function(points.data(), n, dim * size, c, k, dim * size, it.labels.data(), c, dim * size, it.sizes.data(),
                     it.distances.data());
        else
            function(points.data(), n, dim, dim * size, c, k, dim * size, it.labels.data(), c, dim * size,
                     it.sizes.data(), it.distances.data());
        if (first.labels.empty())
            first = it;
        EXPECT_TRUE(it == first) << nameOf(slot) << " on " << name;
    });
    Numbers<long double> sums(k * dim), distances(k);
    Numbers<uint32_t> sizes(k);
    for (size_t i = 0; i < n; i++) {
        const T* const p = points.data() + i * dim;
        size_t label = 0;
        const auto distance = [&](size_t c) { return distanceOf(isNormed, dim, p, centers.data() + c * dim); };
        for (size_t c = 1; c < k; c++)
            label = distance(c) < distance(label) ? c : label;
        EXPECT_NEAR(static_cast<double>(distance(first.labels[i])), static_cast<double>(distance(label)), 1e-12);
        if (std::is_integral_v<T>) {
            EXPECT_EQ(first.labels[i], label);
        }
        label = first.labels[i];
        sizes[label]++;
        distances[label] += std::max(0.0L, distance(label));
        for (uint32_t j = 0; j < dim; j++)
            sums[label * dim + j] += p[j];
    }
    EXPECT_EQ(first.sizes, sizes);
    for (size_t c = 0; c < k; c++) {
        const long double length = std::sqrt(
            std::inner_product(sums.begin() + c * dim, sums.begin() + (c + 1) * dim, sums.begin() + c * dim, 0.0L));
        EXPECT_NEAR(static_cast<double>(first.distances[c]), static_cast<double>(distances[c]),
                    static_cast<double>(distances[c]) * 1e-6);
        for (size_t j = c * dim; j < (c + 1) * dim; j++) {
            const long double mean = sums[j] / (isNormed ? length : sizes[c]);
            const double expected = static_cast<double>(!sizes[c]               ? centers[j]
                                                        : std::is_integral_v<T> ? std::floor(mean + 0.5L)
                                                                                : mean);
            EXPECT_NEAR(first.centers[j], expected,
                        std::is_integral_v<T> ? 0 : 1e-6 * std::max(1.0, std::fabs(expected)));
        }
    }
}

TEST(Clusters, MoveToTheMeansOfTheirPoints)
{
    Random random(1);
    for (const uint32_t dim : {1u, 2u, 15u, 36u, 64u, 70u, 300u})
        for (const uint32_t k : {1u, 3u, 40u}) {
            Numbers<float> middle(dim, 0.5f);
            const auto starts = drawAround(random, middle, k, dim, 1);
            expectIteration<Slot::rvkClusterEuclideanf32, float, float>(
                false, dim, drawAround(random, starts, 50, dim, 0.3), drawAround(random, starts, k, dim, 0.3));
            const auto bytes = drawAround(random, Numbers<uint8_t>(dim, 128), k, dim, 200);
            expectIteration<Slot::rvkClusterEuclideanu8, uint8_t, uint64_t>(
                false, dim, drawAround(random, bytes, 50, dim, 90), bytes);
        }
    for (const uint32_t dim : {36u, 20u}) {
        auto points = drawAround(random, Numbers<float>(dim), 90, dim, 1);
        for (size_t i = 0; i < points.size(); i += dim) {
            const float length = std::sqrt(std::inner_product(&points[i], &points[i] + dim, &points[i], 0.0f));
            std::for_each(&points[i], &points[i] + dim, [=](float& x) { x /= length; });
        }
        const Numbers<float> centers(points.begin(), points.begin() + 7 * dim);
        expectIteration<Slot::rvkClusterEuclideanNormedf32, float, float>(true, dim, points, centers);
        if (dim == 36)
            expectIteration<Slot::rvkClusterEuclideanNormed36f32, float, float>(true, dim, points, centers);
    }
}

// Far from the origin single precision cannot tell the distances apart.
TEST(Clusters, TellNearTiesApart)
{
    Random random(2);
    const auto centers = drawAround(random, Numbers<float>(8, 1000), 30, 8, 0.001);
    expectIteration<Slot::rvkClusterEuclideanf32, float, float>(false, 8, drawAround(random, centers, 60, 8, 0.001),
                                                                centers);
}

TEST(Clusters, OfNumbersThatAreNone)
{
    const float points[] = {NAN, INFINITY, 5, 3e38f, 1e-40f}, centers[] = {9, NAN, 4, 4, -INFINITY, FLT_MAX};
    forEachImplementation<Slot::rvkClusterEuclideanf32>([&](const char* name, auto function) {
        Numbers<uint32_t> labels(5), sizes(6);
        Numbers<float> moved(6), sums(6);
        EXPECT_EQ(function(points, 5, 1, 4, centers, 6, 4, labels.data(), moved.data(), 4, sizes.data(), sums.data()),
                  RAVIK_SUCCESS);
        EXPECT_EQ(labels, (Numbers<uint32_t>{0, 0, 2, 5, 2})) << name;
        EXPECT_TRUE(std::isnan(moved[0]) && std::isnan(sums[0])) << name;
        EXPECT_EQ(moved[3], 4) << name;
        EXPECT_EQ(moved[5], 3e38f) << name;
        const float far[] = {1.05e19f, 0}, farther[] = {0, 2e19f, 3.16e19f, 0};
        EXPECT_EQ(function(far, 1, 2, 8, farther, 2, 8, labels.data(), nullptr, 0, nullptr, nullptr), RAVIK_SUCCESS);
        EXPECT_EQ(labels[0], 1u) << name << ": squares beyond single precision";
        const float opposite[] = {1, -1}, one[] = {0.5f};
        EXPECT_EQ(referenceOf<Slot::rvkClusterEuclideanNormedf32>()(opposite, 2, 1, 4, one, 1, 4, labels.data(),
                                                                    moved.data(), 4, nullptr, nullptr),
                  RAVIK_SUCCESS);
        EXPECT_EQ(moved[0], 0.5f) << "a sum of length 0 leads nowhere";
    });
}

#if RVK_TEST_OPENCV
TEST(Clusters, GetAsCompactAsOpenCvs)
{
    Random random(3);
    constexpr uint32_t n = 2000, dim = 16, k = 20;
    auto points = drawAround(random, drawAround(random, Numbers<float>(dim), k, dim, 1), n, dim, 0.5);
    Numbers<float> centers(points.begin(), points.begin() + k * dim), distances(k);
    Numbers<uint32_t> labels(n);
    cv::Mat theirs;
    for (int step = 0; step <= 10; step++) {
        rvkClusterEuclideanf32(points.data(), n, dim, 0, centers.data(), k, 0, labels.data(), centers.data(), 0,
                               nullptr, distances.data());
        if (step == 0)
            theirs = cv::Mat(n, 1, CV_32S, labels.data()).clone();
    }
    const double compactness = cv::kmeans(cv::Mat(n, dim, CV_32F, points.data()), k, theirs,
                                          {cv::TermCriteria::COUNT, 10, 0}, 1, cv::KMEANS_USE_INITIAL_LABELS);
    EXPECT_LT(std::accumulate(distances.begin(), distances.end(), 0.0), 1.01 * compactness);
}
#endif

// ---- the nearest descriptors ----------------------------------------------------------------------------------------

// One over a descriptor's length, wrong by `error`.
float inverseOf(const int8_t* v, double error = 0)
{
    const double squares = std::inner_product(v, v + 36, v, 0.0);
    return static_cast<float>(squares > 0 ? (1 + error) / std::sqrt(squares) : 0);
}

struct Descriptors
{
    Numbers<int8_t> vectors, prepared;
    Numbers<float> invLengths;

    // Around some directions, `spread` wide, one of them equal to another and one zero in about a hundred.
    Descriptors(Random& random, uint32_t count, uint32_t clusters, uint32_t spread, double error = 0)
        : prepared(288 * ((count + 7) / 8))
    {
        const auto draw = [&](uint32_t width) {
            return static_cast<int>(random.below(width + 1)) - static_cast<int>(width / 2);
        };
        Numbers<int> middles(36 * size_t{clusters});
        std::generate(middles.begin(), middles.end(), [&] { return draw(200); });
        for (uint32_t i = 0; i < count; i++) {
            const int* const middle = middles.data() + 36 * size_t{random.below(clusters)};
            for (size_t j = 0; j < 36; j++)
                vectors.push_back(static_cast<int8_t>(i % 97 == 5 ? 0 : middle[j] + draw(i % 89 ? spread : 0)));
            invLengths.push_back(inverseOf(vector(i), error * static_cast<double>(drawNumber(random))));
        }
        referenceOf<Slot::rvkLinearSearchPrepare8x36s8>()(vectors.data(), count, prepared.data());
    }
    uint32_t count() const { return static_cast<uint32_t>(invLengths.size()); }
    const int8_t* vector(size_t i) const { return vectors.data() + 36 * i; }
};

struct Query
{
    const int8_t* vector;
    float invLength, most;
    uint32_t capacity;
};

struct Found
{
    rvkStatus status = RAVIK_SUCCESS;
    uint32_t count = 77;
    Numbers<uint32_t> indices;
    Numbers<float> distances;

    explicit Found(uint32_t capacity) : indices(capacity + 1, 99), distances(capacity + 1, -7) {}
    bool operator==(const Found&) const = default;
};

Found searchLinearly(decltype(rvkLinearSearch8x36s8)* function, const Descriptors& all, const Query& q)
{
    Found found(q.capacity);
    found.status = function(all.prepared.data(), all.invLengths.data(), all.count(), q.vector, q.invLength, q.most,
                            q.capacity, &found.count, found.indices.data(), found.distances.data());
    return found;
}

Found sortedByDistance(const Descriptors& all, const Query& q)
{
    Numbers<std::pair<float, uint32_t>> near;
    for (uint32_t i = 0; i < all.count(); i++) {
        const auto dot = static_cast<float>(std::inner_product(q.vector, q.vector + 36, all.vector(i), 0));
        const float distance = std::fabs(2.0f - ((q.invLength + q.invLength) * all.invLengths[i]) * dot);
        if (distance <= q.most)
            near.push_back({distance, i});
    }
    std::sort(near.begin(), near.end());
    Found found(q.capacity);
    found.count = std::min(q.capacity, static_cast<uint32_t>(near.size()));
    for (size_t i = 0; i < found.count; i++)
        found.distances[i] = near[i].first, found.indices[i] = near[i].second;
    return found;
}

TEST(LinearSearch, FindsWhatSortingFinds)
{
    Random random(4);
    for (const uint32_t count : {0u, 1u, 8u, 9u, 101u, 1000u}) {
        Descriptors all(random, count, 5, 9);
        for (uint32_t i = 0; i < count; i += 13)
            all.invLengths[i] = std::array{NAN, INFINITY, -1.0f, 1e-40f, 1e38f}[i / 13 % 5];
        const Descriptors query(random, 1, 1, 0);
        for (const float invLength : {query.invLengths[0], 1e-39f, 1e30f})
            for (const float most : {INFINITY, 0.9f, 2.0f, -1.0f, NAN})
                for (const uint32_t capacity : {0u, 1u, 10u, 2000u}) {
                    const Query q{query.vector(0), invLength, most, capacity};
                    forEachImplementation<Slot::rvkLinearSearch8x36s8>([&](const char* name, auto function) {
                        EXPECT_TRUE(searchLinearly(function, all, q) == sortedByDistance(all, q))
                            << name << ", " << capacity << " of " << count << " within " << most;
                    });
                    EXPECT_EQ(searchLinearly(rvkLinearSearch8x36s8, all, q).status,
                              std::isnan(most) || count == 0 ? RAVIK_EBADPARAM : RAVIK_SUCCESS); // no pointers
                }
    }
}

class Tree
{
public:
    explicit Tree(const Descriptors& all)
    {
        EXPECT_EQ(rvkKDTreeCreate36s8f32(all.vectors.data(), all.invLengths.data(), all.count(), &m_tree),
                  RAVIK_SUCCESS);
    }
    ~Tree() { rvkKDTreeDestroy36s8f32(m_tree); }
    Tree(const Tree&) = delete;
    Found search(decltype(rvkKDTreeQuery36s8f32)* function, const Query& q, uint32_t maxChecks) const
    {
        Found found(q.capacity);
        found.status = function(m_tree, q.vector, q.invLength, q.most, maxChecks, q.capacity, &found.count,
                                found.indices.data(), found.distances.data());
        return found;
    }

private:
    rvkKDTree36s8f32* m_tree = nullptr;
};

#if defined(__x86_64__) && defined(NDEBUG)
constexpr uint32_t kQueries = 1500; // of each tree
#else
constexpr uint32_t kQueries = 200;
#endif

TEST(KDTree, FindsWhatLinearSearchFinds)
{
    Random random(5);
    struct
    {
        uint32_t count, clusters, spread;
        double error;
    } const kinds[] = {{1, 1, 3, 0},        {16, 2, 9, 9e-5},  {17, 1, 0, 9e-5},    {700, 20, 7, 0},
                       {900, 900, 0, 9e-5}, {600, 1, 0, 9e-5}, {1000, 50, 30, 9e-5}};
    decltype(rvkLinearSearch8x36s8)* linear = nullptr;
    forEachImplementation<Slot::rvkLinearSearch8x36s8>([&](const char*, auto function) { linear = function; });
    for (const auto& kind : kinds) {
        const Descriptors all(random, kind.count, kind.clusters, kind.spread, kind.error);
        const Tree tree(all);
        for (uint32_t i = 0; i < kQueries; i++) {
            int8_t query[36] = {};
            const int8_t* const near = all.vector(random.below(kind.count));
            for (size_t j = 0; j < 36 && i % 50; j++)
                query[j] = static_cast<int8_t>(std::min(near[j] + static_cast<int>(random.below(1 + i % 40)), 127));
            const Query q{query, inverseOf(query, kind.error * (i % 3 - 1.0)), std::array{INFINITY, 0.1f, 2.0f}[i % 3],
                          1 + i % 7};
            const Found expected = searchLinearly(linear, all, q);
            forEachImplementation<Slot::rvkKDTreeQuery36s8f32>([&](const char* name, auto function) {
                ASSERT_TRUE(tree.search(function, q, i % 2 ? 0 : kind.count) == expected)
                    << name << ", query " << i << " of " << kind.count;
            });
        }
    }
}

TEST(KDTree, FindsMostWithFewChecks)
{
    Random random(6);
    const Descriptors all(random, 10'000, 400, 40);
    const Tree tree(all);
    int right = 0;
    for (uint32_t i = 0; i < 100; i++) {
        Numbers<int8_t> query(all.vector(99 * i), all.vector(99 * i) + 36);
        for (int8_t& element : query)
            element = static_cast<int8_t>(element + static_cast<int>(random.below(9)) - 4);
        const Query q{query.data(), inverseOf(query.data()), 100, 3};
        const Found exact = searchLinearly(rvkLinearSearch8x36s8, all, q);
        right += tree.search(rvkKDTreeQuery36s8f32, q, 200).indices[0] == exact.indices[0];
        EXPECT_EQ(tree.search(rvkKDTreeQuery36s8f32, q, 2).count, 2u) << "as many as may be checked";
    }
    EXPECT_GE(right, 90);
}

TEST(KDTree, RefusesWrongLengthsAndDoesWithoutMemory)
{
    Random random(7);
    Descriptors all(random, 60, 3, 9);
    auto* tree = reinterpret_cast<rvkKDTree36s8f32*>(&random);
    auto* const before = tree;
    const auto create = [&] {
        return rvkKDTreeCreate36s8f32(all.vectors.data(), all.invLengths.data(), all.count(), &tree);
    };
    for (const float wrong : {1.0002f, 0.9998f, NAN, INFINITY, -1.0f, 0.0f}) {
        const float right = std::exchange(all.invLengths[7], all.invLengths[7] * wrong);
        EXPECT_EQ(create(), RAVIK_EBADPARAM) << wrong;
        all.invLengths[7] = right;
    }
    all.invLengths[5] = 1; // of zeros
    EXPECT_EQ(create(), RAVIK_EBADPARAM);
    all.invLengths[5] = 0;
    EXPECT_EQ(rvkKDTreeCreate36s8f32(all.vectors.data(), all.invLengths.data(), 0, &tree), RAVIK_EBADPARAM);
    for (const int granted : {0, 1}) {
        const ScarceMemory memory(granted);
        EXPECT_EQ(create(), RAVIK_ENORES);
        EXPECT_TRUE(memory.allIsReleased());
    }
    EXPECT_EQ(tree, before);
    const Tree real(all);
    Found refused(2);
    refused.status = RAVIK_EBADPARAM;
    const float right = all.invLengths[0];
    for (const Query& q : {Query{all.vector(0), right * 0.9998f, 1, 2},
                           {all.vector(0), NAN, 1, 2},
                           {all.vector(0), right, NAN, 2},
                           {all.vector(5), right, 1, 2}})
        EXPECT_TRUE(real.search(rvkKDTreeQuery36s8f32, q, 0) == refused);
    EXPECT_EQ(real.search(rvkKDTreeQuery36s8f32, {all.vector(0), right, 1, 0}, 0).count, 0u);
    rvkKDTreeDestroy36s8f32(nullptr);
}

// ---- vocabulary tree ------------------------------------------------------------------------------------------------

TEST(VocabularyTree, LeadsToTheNearestLeaf)
{
    constexpr uint32_t leaf = 1u << 31;
    Numbers<int8_t> centers(3 * 360);
    for (size_t i = 0; i < 30; i++)
        std::fill_n(centers.begin() + static_cast<ptrdiff_t>(36 * i), 36, static_cast<int8_t>(10 * (i % 10) - 45));
    Numbers<uint32_t> children(30, leaf | 7);
    children[3] = 2;     // -15: to node 2
    children[4] = 0;     // -5: none, so what is nearest to it goes to -15 or 5
    children[9] = 1;     // 45: to node 1, which has no children
    children[23] = leaf; // node 2
    children[24] = leaf | 5;
    std::fill_n(children.begin() + 10, 10, 0u);
    Numbers<int8_t> descriptors(5 * 36);
    for (size_t d = 0; d < 5; d++)
        std::fill_n(descriptors.begin() + static_cast<ptrdiff_t>(36 * d), 36,
                    std::array<int8_t, 5>{-45, -5, -11, -128, 50}[d]);
    forEachImplementation<Slot::rvkKMeansTreeSearch36x10s8>([&](const char* name, auto function) {
        Numbers<uint32_t> leaves(5, 77), distances(5, 77);
        const auto search = [&](uint32_t count, uint32_t* lengths) {
            return function(centers.data(), children.data(), 3, descriptors.data(), count, leaves.data(), lengths);
        };
        EXPECT_EQ(search(5, distances.data()), RAVIK_EFAIL) << name;
        EXPECT_EQ(leaves, (Numbers<uint32_t>{7, 5, 0, 7, 77})) << name;
        EXPECT_EQ(distances, (Numbers<uint32_t>{0, 0, 36 * 16, 36 * 83 * 83, 77})) << name;
        EXPECT_EQ(search(4, nullptr), RAVIK_SUCCESS) << name;
        for (const uint32_t bad : {3u, leaf - 1}) {
            const uint32_t good = std::exchange(children[9], bad);
            EXPECT_EQ(search(5, nullptr), RAVIK_EFAIL) << name << ", child " << bad;
            children[9] = good;
        }
        const uint32_t good = std::exchange(children[24], 2); // itself
        EXPECT_EQ(search(2, nullptr), RAVIK_EFAIL) << name;
        children[24] = good;
    });
}

// ---- support vector machine -----------------------------------------------------------------------------------------

struct Machine
{
    uint32_t kernel, degree = 3;
    float gamma = 0.1f, coef0 = -0.3f, bias = 0.25f;
};

// The decision, and how far off it may be.
std::pair<long double, long double> decide(const Machine& m, const Numbers<float>& vectors, const Numbers<float>& coefs,
                                           const float* x, size_t dim)
{
    long double decision = m.bias, reach = std::fabs(m.bias);
    for (size_t i = 0; i < coefs.size(); i++) {
        long double dot = 0, q = 0, squares = 0;
        for (size_t j = 0; j < dim; j++) {
            const long double v = vectors[i * dim + j];
            dot += v * x[j], q += std::fabs(v * x[j]), squares += (v - x[j]) * (v - x[j]);
        }
        const long double z = m.gamma * dot + m.coef0, most = std::fabs(m.gamma) * q + std::fabs(m.coef0);
        const long double values[] = {dot, std::pow(z, m.degree), std::exp(-m.gamma * squares), std::tanh(z)};
        const long double reaches[] = {q, std::max(1u, m.degree) * std::pow(most, m.degree), 1, 1 + most};
        decision += coefs[i] * values[m.kernel];
        reach += std::fabs(coefs[i]) * reaches[m.kernel];
    }
    return {decision, 1e-5L * reach};
}

TEST(Svm, DecidesWithinTheTolerance)
{
    Random random(8);
    for (const Machine& m :
         {Machine{RAVIK_SVM_LINEAR, 99, NAN, NAN, 0}, Machine{RAVIK_SVM_POLY}, Machine{RAVIK_SVM_POLY, 16, 0.02f},
          Machine{RAVIK_SVM_POLY, 0}, Machine{RAVIK_SVM_RBF}, Machine{RAVIK_SVM_RBF, 99, 50},
          Machine{RAVIK_SVM_SIGMOID}, Machine{RAVIK_SVM_SIGMOID, 99, -40, 9}})
        for (const uint32_t dim : {1u, 7u, 64u, 1000u})
            for (const double size : {1.0, 1e-25, 3e18}) {
                const auto vectors = drawAround(random, Numbers<float>(dim), 70, dim, size);
                auto samples = drawAround(random, vectors, 3, dim, size / 9);
                auto coefs = drawAround(random, Numbers<float>(1), 70, 1, size < 1 ? 1e38 : size > 1 ? 1e-30 : 5);
                forEachImplementation<Slot::rvkSVMPredict2Classf32>([&](const char* name, auto function) {
                    Numbers<float> decisions(3);
                    Numbers<int32_t> labels(3);
                    EXPECT_EQ(function(m.kernel, m.degree, m.gamma, m.coef0, m.bias, vectors.data(), coefs.data(), 70,
                                       dim, dim * 4, samples.data(), 3, dim * 4, decisions.data(), labels.data()),
                              RAVIK_SUCCESS);
                    for (size_t s = 0; s < 3; s++) {
                        const auto [decision, reach] = decide(m, vectors, coefs, &samples[s * dim], dim);
                        EXPECT_EQ(labels[s], decisions[s] > 0 ? 1 : -1);
                        if (std::fabs(decision) < FLT_MAX) {
                            EXPECT_LE(std::fabs(decisions[s] - decision), reach)
                                << name << ", kernel " << m.kernel << ", " << dim << " of " << size;
                        }
                    }
                });
            }
    forEachImplementation<Slot::rvkSVMPredict2Classf32>([&](const char* name, auto function) {
        for (uint32_t kernel = 0; kernel < 4; kernel++) {
            const float vectors[] = {1, NAN}, samples[] = {2, INFINITY}, coefs[] = {1, 1};
            float decisions[2];
            int32_t labels[2];
            function(kernel, 3, 1, 0, 0, vectors, coefs, 2, 1, 4, samples, 2, 4, decisions, labels);
            EXPECT_TRUE(std::isnan(decisions[0]) && std::isnan(decisions[1])) << name << ", kernel " << kernel;
            EXPECT_TRUE(labels[0] == -1 && labels[1] == -1) << name;
        }
    });
}

TEST(Svm, ChecksTheParametersOfItsKernel)
{
    const float x[] = {1};
    float decision = 7;
    const auto predict = [&](uint32_t kernel, uint32_t degree, float gamma) {
        return rvkSVMPredict2Classf32(kernel, degree, gamma, 0, 0, x, x, 1, 1, 0, x, 1, 0, &decision, nullptr);
    };
    EXPECT_EQ(predict(RAVIK_SVM_POLY, 17, 1), RAVIK_EBADPARAM);
    EXPECT_EQ(predict(RAVIK_SVM_RBF, 3, -0.5f), RAVIK_EBADPARAM);
    EXPECT_EQ(predict(RAVIK_SVM_RBF, 3, NAN), RAVIK_EBADPARAM);
    EXPECT_EQ(decision, 7);
    EXPECT_EQ(predict(RAVIK_SVM_LINEAR, 17, NAN), RAVIK_SUCCESS);
    EXPECT_EQ(predict(RAVIK_SVM_POLY, 16, -1), RAVIK_SUCCESS);
    EXPECT_EQ(decision, 1);
}

#if RVK_TEST_OPENCV
TEST(Svm, DecidesAsOpenCvDoes)
{
    Random random(9);
    constexpr int n = 300, dim = 12;
    Numbers<float> points = drawAround(random, Numbers<float>(dim), n, dim, 1);
    Numbers<int> classes;
    for (size_t i = 0; i < n; i++)
        classes.push_back(points[i * dim] * points[i * dim] + points[i * dim + 1] > 0.3f ? 1 : -1);
    const cv::Mat samples(n, dim, CV_32F, points.data());
    for (const auto& [theirs, ours] : {std::pair{cv::ml::SVM::RBF, RAVIK_SVM_RBF},
                                       {cv::ml::SVM::POLY, RAVIK_SVM_POLY},
                                       {cv::ml::SVM::SIGMOID, RAVIK_SVM_SIGMOID}}) {
        const auto svm = cv::ml::SVM::create();
        svm->setKernel(theirs);
        svm->setGamma(0.25);
        svm->setCoef0(0.5);
        svm->setDegree(3);
        svm->train(samples, cv::ml::ROW_SAMPLE, cv::Mat(n, 1, CV_32S, classes.data()));
        cv::Mat alpha, order, decisions;
        const auto rho = static_cast<float>(svm->getDecisionFunction(0, alpha, order));
        const cv::Mat vectors = svm->getSupportVectors();
        Numbers<float> coefs(static_cast<size_t>(vectors.rows)), found(n);
        for (int i = 0; i < alpha.cols; i++)
            coefs[static_cast<size_t>(order.at<int>(i))] = static_cast<float>(alpha.at<double>(i));
        svm->predict(samples, decisions, cv::ml::StatModel::RAW_OUTPUT);
        rvkSVMPredict2Classf32(ours, 3, 0.25f, 0.5f, -rho, vectors.ptr<float>(), coefs.data(),
                               static_cast<uint32_t>(vectors.rows), dim, 0, points.data(), n, 0, found.data(), nullptr);
        for (int i = 0; i < n; i++)
            EXPECT_NEAR(found[static_cast<size_t>(i)], decisions.at<float>(i), 1e-4f * vectors.rows) << theirs;
    }
}
#endif

} // namespace
