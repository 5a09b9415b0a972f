// SSD, DESCRIPTOR, VEC, STATS: distances of descriptors, how they are made, scaled and sampled. Adapters make lists of
// pointers of descriptors that follow one another.
#include "groups.h"

#include <ravik/descriptor.h>

#include <string>

using namespace arguments;

namespace {

constexpr uint32_t kVectors = 4, kDescriptors = 11; // in the lists
constexpr uint32_t kShortCalls = 1000;

template <class T>
std::vector<const T*> listOf(const T* vectors, uint32_t length, uint32_t count)
{
    std::vector<const T*> list;
    for (size_t k = 0; k < count; k++)
        list.push_back(vectors ? vectors + k * length : nullptr);
    return list;
}

void compareWithMany(decltype(rvkSumOfSquaredDiffs36xNs8)* function, const int8_t* a, float invLenA,
                     const int8_t* vectors, const float* invLenB, uint32_t count, float* distances)
{
    const std::vector<const int8_t*> list = listOf(vectors, 36, kDescriptors);
    function(a, invLenA, vectors ? list.data() : nullptr, invLenB, count, distances);
}

template <class T>
void compareWithList(void (*function)(const T*, float, uint32_t, const T* const*, const float*, uint32_t, float*),
                     const T* a, float invLenA, uint32_t length, const T* vectors, const float* invLenB, uint32_t count,
                     float* distances)
{
    const std::vector<const T*> list = listOf(vectors, length, kVectors);
    function(a, invLenA, length, vectors ? list.data() : nullptr, invLenB, count, distances);
}

// So many columns and rows, whatever the size of the case; or as many pictures below one another.
Argument measuring(const Argument& image, uint32_t columns, uint32_t rows)
{
    return image.measuring({[=](const CaseSizes&) {
                                return ImageSize{columns, rows};
                            },
                            "of " + std::to_string(columns) + "x" + std::to_string(rows)});
}
Argument pictures(const Argument& image, uint32_t count)
{
    return image.measuring({[=](const CaseSizes& s) {
                                return ImageSize{s.picture.columns, count * s.picture.rows};
                            },
                            "for each"});
}

} // namespace

const FunctionGroup& squaredDiffFunctions()
{
    const Argument v36 = src.ofSize(36), factor = between(-2, 2);
    const Argument lengths = area, vectors = pictures(src, kVectors), factors = src.ofSize(kVectors);
    const Argument whole = src.within({{-8, 8}}).whole(); // the same sums in any order
    const Argument count = oneOf({kVectors, 1, 3}), distances = dst.ofSize(kVectors);

    static const FunctionGroup group{
        "ravikssd",
        "rvk",
        false,
        {
            RVK_TEST(rvkSumOfSquaredDiffs36x4s8, v36, factor, v36, v36, v36, v36, src.ofSize(4), dst.ofSize(4))
                .repeated(kShortCalls),
            RVK_TEST_ADAPTED("rvkSumOfSquaredDiffs36xNs8", rvkSumOfSquaredDiffs36xNs8, compareWithMany, v36, factor,
                             src.ofSize(36 * kDescriptors), src.ofSize(kDescriptors), oneOf({kDescriptors, 1, 4, 7}),
                             dst.ofSize(kDescriptors)),
            RVK_TEST_ADAPTED("rvkSumOfSquaredDiffsu8", rvkSumOfSquaredDiffsu8, compareWithList<uint8_t>, src, factor,
                             lengths, vectors, factors, count, distances),
            RVK_TEST_ADAPTED("rvkSumOfSquaredDiffss8", rvkSumOfSquaredDiffss8, compareWithList<int8_t>, src, factor,
                             lengths, vectors, factors, count, distances),
            RVK_TEST_ADAPTED("rvkSumOfSquaredDiffsf32", rvkSumOfSquaredDiffsf32, compareWithList<float>, whole, factor,
                             lengths, pictures(whole, kVectors), factors, count, distances),
            RVK_TEST(rvkSort8Scoresf32, src.ofSize(8), dst.ofSize(8)).repeated(kShortCalls),
        }};
    return group;
}

const FunctionGroup& descriptorFunctions()
{
    static const FunctionGroup group{
        "ravikdescriptor",
        "rvk",
        false,
        {
            RVK_TEST(rvkDescriptor17x17u8To36s8, measuring(src, 17, 17), stride, dst.ofSize(36), value.orNull())
                .repeated(kShortCalls),
        }};
    return group;
}

const FunctionGroup& vectorFunctions()
{
    const Argument count = oneOf({kDescriptors, 1, 4}).refusing({0}).limited();

    static const FunctionGroup group{
        "ravikvec",
        "rvk",
        false,
        {
            RVK_TEST(rvkVecNormalize36s8f32, measuring(src, 36, kDescriptors), stride, src.ofSize(kDescriptors), count,
                     measuring(dst, 36, kDescriptors), stride),
        }};
    return group;
}

const FunctionGroup& sampleStatisticsFunctions()
{
    const Argument count = oneOf({kDescriptors, 1, 2}).refusing({0}).limited();

    static const FunctionGroup group{"ravikstats",
                                     "rvk",
                                     false,
                                     {
                                         RVK_TEST(rvkDescriptorSampledMeanAndVar36f32, measuring(src, 36, kDescriptors),
                                                  count, stride, dst.ofSize(36), dst.ofSize(36)),
                                     }};
    return group;
}
