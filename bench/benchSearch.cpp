// Clusters, searches, classification. Searches take time per descriptor that is searched, clusters per point.
#include "bench.h"

#include <ravik/search.h>

#include <cmath>
#include <random>
#include <vector>

#if RVK_BENCH_OPENCV_ML
#include <opencv2/ml.hpp>
#endif

namespace {

using namespace bench;

// ---- clusters -------------------------------------------------------------------------------------------------------

constexpr u32 kDim = 32, kCenters = 64;
constexpr Picture kPoints = {4096, 1};

// Numbers from -1 to 1: random inputs are of all sizes.
const f32* unitNumbers(u32 count)
{
    static const auto numbers = [] {
        std::vector<f32> all(4096 * 36);
        std::mt19937 random(1);
        for (f32& number : all)
            number = static_cast<f32>(random() % 20001) / 1e4f - 1;
        return all;
    }();
    return numbers.data() + numbers.size() - count; // points and centres end together
}

template <class T, class Distances>
void cluster(const Picture& p, const T* points, const T* centers,
             rvkStatus (*function)(const T*, u32, u32, u32, const T*, u32, u32, u32*, T*, u32, u32*, Distances*))
{
    function(points, p.width, kDim, 0, centers, kCenters, 0, p.out<u32>(), p.out<T>(1), 0, p.out<u32>(2),
             reinterpret_cast<Distances*>(p.out<u32>(3)));
}

#if RVK_BENCH_OPENCV
// The assignment alone.
template <class T>
void assignByOpenCv(const T* points, u32 count, const T* centers, int sumType)
{
    const auto matrix = [](const T* data, u32 rows) {
        return cv::Mat(static_cast<int>(rows), kDim, cv::DataType<T>::type, const_cast<T*>(data));
    };
    cv::Mat distances, labels;
    cv::batchDistance(matrix(points, count), matrix(centers, kCenters), distances, sumType, labels, cv::NORM_L2SQR, 1);
}
#endif

// ---- descriptors ----------------------------------------------------------------------------------------------------

constexpr Picture kDescriptors = {sizeof(void*) == 8 ? 100'000 : 20'000, 1};

// Around a hundredth as many directions.
struct Clustered
{
    std::vector<s8> vectors, prepared;
    std::vector<f32> invLengths;
    rvkKDTree36s8f32* tree = nullptr;
    u32 query = 0;

    Clustered() : vectors(size_t{kDescriptors.width} * 36), prepared((vectors.size() + 287) / 288 * 288)
    {
        std::mt19937 random(2);
        const auto draw = [&](int most) {
            return static_cast<int>(random() % (2 * static_cast<u32>(most) + 1)) - most;
        };
        std::vector<int> middles(vectors.size() / 100);
        for (int& element : middles)
            element = draw(90);
        for (size_t i = 0; i < kDescriptors.width; ++i) {
            const int* const middle = middles.data() + random() % (middles.size() / 36) * 36;
            s32 squares = 0;
            for (size_t j = 0; j < 36; ++j) {
                vectors[i * 36 + j] = static_cast<s8>(middle[j] + draw(15));
                squares += vectors[i * 36 + j] * vectors[i * 36 + j];
            }
            invLengths.push_back(1 / std::sqrt(static_cast<f32>(squares)));
        }
        rvkLinearSearchPrepare8x36s8(vectors.data(), kDescriptors.width, prepared.data());
        rvkKDTreeCreate36s8f32(vectors.data(), invLengths.data(), kDescriptors.width, &tree);
    }
    void next() { query = (query + 7919) % kDescriptors.width; }
};

Clustered& clustered()
{
    static Clustered all;
    return all;
}

void searchLinearly(const Picture& p)
{
    Clustered& c = clustered();
    c.next();
    rvkLinearSearch8x36s8(c.prepared.data(), c.invLengths.data(), p.width, &c.vectors[c.query * size_t{36}],
                          c.invLengths[c.query], 4, 2, p.out<u32>(0), p.out<u32>(1), p.out<f32>(2));
}

void searchTree(const Picture& p, u32 maxChecks)
{
    Clustered& c = clustered();
    c.next();
    rvkKDTreeQuery36s8f32(c.tree, &c.vectors[c.query * size_t{36}], c.invLengths[c.query], 4, maxChecks, 2,
                          p.out<u32>(0), p.out<u32>(1), p.out<f32>(2));
}

// Three levels of nodes, the children of each one after the other.
void searchVocabulary(const Picture& p)
{
    static const auto children = [] {
        std::vector<u32> words;
        for (u32 i = 0; i < 10 * 111; ++i)
            words.push_back(i < 10 * 11 ? i + 1 : 1u << 31 | i);
        return words;
    }();
    rvkKMeansTreeSearch36x10s8(p.in<s8>(0), children.data(), 111, p.in<s8>(1), p.width, p.out<u32>(0), p.out<u32>(1));
}

// ---- support vector machines ----------------------------------------------------------------------------------------

constexpr Picture kSamples = {200, 1};
constexpr u32 kFeatures = 64;

// Of as many samples, by the first two features.
struct Machine
{
    u32 count = kSamples.width;
    std::vector<f32> vectors, coefs;
#if RVK_BENCH_OPENCV_ML
    cv::Ptr<cv::ml::SVM> theirs = cv::ml::SVM::create();
#endif

    explicit Machine([[maybe_unused]] u32 kernel)
        : vectors(unitNumbers(count * kFeatures), unitNumbers(count * kFeatures) + count * kFeatures),
          coefs(count, 0.5f)
    {
#if RVK_BENCH_OPENCV_ML
        const int kernels[] = {cv::ml::SVM::LINEAR, cv::ml::SVM::POLY, cv::ml::SVM::RBF, cv::ml::SVM::SIGMOID};
        cv::Mat classes(static_cast<int>(count), 1, CV_32S);
        for (u32 i = 0; i < count; ++i)
            classes.at<int>(static_cast<int>(i)) = vectors[i * kFeatures] * vectors[i * kFeatures + 1] > 0 ? 1 : -1;
        theirs->setKernel(kernels[kernel]);
        theirs->setDegree(3);
        theirs->setGamma(0.5);
        theirs->train(cv::Mat(static_cast<int>(count), kFeatures, CV_32F, vectors.data()), cv::ml::ROW_SAMPLE, classes);
        const cv::Mat kept = kernel == RAVIK_SVM_LINEAR
                                 ? theirs->getUncompressedSupportVectors() // of which the others are a sum
                                 : theirs->getSupportVectors();
        count = static_cast<u32>(kept.rows);
        vectors.assign(kept.ptr<f32>(), kept.ptr<f32>() + count * kFeatures);
#endif
    }
};

template <u32 kernel>
Machine& machine()
{
    static Machine made(kernel);
    return made;
}

template <u32 kernel>
void predict(const Picture& p)
{
    const Machine& m = machine<kernel>();
    rvkSVMPredict2Classf32(kernel, 3, 0.5f, 0, 0.1f, m.vectors.data(), m.coefs.data(), m.count, kFeatures, 0,
                           unitNumbers(p.width * kFeatures), p.width, 0, p.out<f32>(), p.out<s32>());
}

#if RVK_BENCH_OPENCV_ML
template <u32 kernel>
void predictByOpenCv(const Picture& p)
{
    const cv::Mat samples(static_cast<int>(p.width), kFeatures, CV_32F,
                          const_cast<f32*>(unitNumbers(p.width * kFeatures)));
    cv::Mat decisions;
    machine<kernel>().theirs->predict(samples, decisions, cv::ml::StatModel::RAW_OUTPUT);
}
#define OPENCV_PREDICT(kernel) OPENCV(predictByOpenCv<kernel>(p))
#else
#define OPENCV_PREDICT(kernel) nullptr
#endif

constexpr Row kRows[] = {
    {"rvkClusterEuclideanu8, 32, 64 centres", nullptr, traffic(36, 0),
     RAVIK(cluster(p, p.in<u8>(0), p.in<u8>(1), rvkClusterEuclideanu8)),
     OPENCV(assignByOpenCv(p.in<u8>(0), p.width, p.in<u8>(1), CV_32S)), nullptr, kPoints},
    {"rvkClusterEuclideanf32, 32, 64 centres", "k-means assignment f32", traffic(132, 0),
     RAVIK(cluster(p, unitNumbers(p.width* kDim), unitNumbers(kCenters* kDim), rvkClusterEuclideanf32)),
     OPENCV(assignByOpenCv(unitNumbers(p.width* kDim), p.width, unitNumbers(kCenters* kDim), CV_32F)), nullptr,
     kPoints},
    {"rvkClusterEuclideanNormedf32, 32, 64 centres", nullptr, traffic(132, 0),
     RAVIK(cluster(p, unitNumbers(p.width* kDim), unitNumbers(kCenters* kDim), rvkClusterEuclideanNormedf32)), nullptr,
     nullptr, kPoints},
    {"rvkClusterEuclideanNormed36f32, 64 centres", nullptr, traffic(148, 0),
     RAVIK(rvkClusterEuclideanNormed36f32(unitNumbers(p.width * 36), p.width, 0, unitNumbers(kCenters * 36), kCenters,
                                          0, p.out<u32>(), p.out<f32>(1), 0, p.out<u32>(2), p.out<f32>(3))),
     nullptr, nullptr, kPoints},
    {"rvkKDTreeQuery36s8f32", nullptr, traffic(40, 0), RAVIK(searchTree(p, 0)), nullptr, nullptr, kDescriptors},
    {"rvkKDTreeQuery36s8f32, 200 checks", nullptr, traffic(40, 0), RAVIK(searchTree(p, 200)), nullptr, nullptr,
     kDescriptors},
    {"rvkLinearSearch8x36s8", nullptr, traffic(40, 0), RAVIK(searchLinearly(p)), nullptr, nullptr, kDescriptors},
    {"rvkLinearSearchPrepare8x36s8", nullptr, traffic(36, 36),
     RAVIK(rvkLinearSearchPrepare8x36s8(p.in<s8>(), p.width, p.out<s8>())), nullptr, nullptr, kDescriptors},
    {"rvkKMeansTreeSearch36x10s8, 1000 leaves", nullptr, traffic(36, 8), RAVIK(searchVocabulary(p)), nullptr, nullptr,
     kPoints},
    {"rvkSVMPredict2Classf32, linear", nullptr, traffic(256, 8), RAVIK(predict<RAVIK_SVM_LINEAR>(p)), nullptr, nullptr,
     kSamples},
    {"rvkSVMPredict2Classf32, polynomial", nullptr, traffic(256, 8), RAVIK(predict<RAVIK_SVM_POLY>(p)),
     OPENCV_PREDICT(RAVIK_SVM_POLY), nullptr, kSamples},
    {"rvkSVMPredict2Classf32, radial", nullptr, traffic(256, 8), RAVIK(predict<RAVIK_SVM_RBF>(p)),
     OPENCV_PREDICT(RAVIK_SVM_RBF), nullptr, kSamples},
    {"rvkSVMPredict2Classf32, sigmoid", nullptr, traffic(256, 8), RAVIK(predict<RAVIK_SVM_SIGMOID>(p)),
     OPENCV_PREDICT(RAVIK_SVM_SIGMOID), nullptr, kSamples},
};
const Rows registered(kRows);

} // namespace
