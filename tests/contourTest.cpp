#include "support/scarceMemory.h"
#include "support/windows.h"

#include <array>
#include <cmath>
#include <map>
#include <numeric>

#if RVK_TEST_OPENCV
#include <opencv2/imgproc.hpp>
#endif

using namespace test;

namespace {

using Bytes = Picture<uint8_t>;
using Points = std::vector<std::pair<int32_t, int32_t>>;

struct Contours
{
    std::vector<uint32_t> sizes;
    Points points;
    std::vector<std::array<int32_t, 4>> hierarchy;
    bool operator==(const Contours&) const = default;

    std::vector<Points> each() const
    {
        std::vector<Points> all;
        for (auto at = points.begin(); const uint32_t size : sizes) {
            all.emplace_back(at, at + size);
            at += size;
        }
        return all;
    }
};

// With room for at most so many; what lies behind the last ones must stay as it is.
template <class Function>
Contours contoursOf(Function function, const Bytes& src, uint32_t approximation, uint32_t contours = UINT32_MAX,
                    uint32_t points = UINT32_MAX, rvkContourWorkspace* workspace = nullptr)
{
    contours = std::min(contours, src.columns() * src.rows());
    points = std::min(points, 2 * src.columns() * src.rows() + 4);
    Contours found = {std::vector<uint32_t>(contours + 1, 77), Points(points + 1, {77, 77}), {}};
    found.hierarchy.assign(contours + 1, {77, 77, 77, 77});
    uint32_t count = 0;
    EXPECT_EQ(function(src.pixels.data(), src.columns(), src.rows(), src.stride(), approximation, found.sizes.data(),
                       contours, &count, &found.points[0].first, points, found.hierarchy[0].data(), workspace),
              RAVIK_SUCCESS);
    const auto pointCount = std::accumulate(found.sizes.begin(), found.sizes.begin() + count, size_t{0});
    EXPECT_TRUE(std::all_of(found.sizes.begin() + count, found.sizes.end(), [](uint32_t n) { return n == 77; }));
    EXPECT_EQ(
        std::count(found.points.begin() + static_cast<ptrdiff_t>(pointCount), found.points.end(), std::pair(77, 77)),
        static_cast<ptrdiff_t>(points + 1 - pointCount));
    EXPECT_EQ(found.hierarchy[count][0], 77);
    found.sizes.resize(count);
    found.points.resize(pointCount);
    found.hierarchy.resize(count);
    return found;
}

// Noise of all densities, blobs, things in the holes of others, combs and a spiral that is one long border.
std::vector<Bytes> pictures()
{
    Random random(1);
    std::vector<Bytes> all;
    for (int i = 0; i < 36; ++i) {
        const int width = 1 + static_cast<int>(random.below(i % 2 ? 150 : 12)),
                  height = 1 + static_cast<int>(random.below(40));
        all.push_back(pictureOf<uint8_t>(width, height, [&](int, int) { return random.below(9) < unsigned(i) % 9; }));
        const int period = 3 + static_cast<int>(random.below(20));
        all.push_back(pictureOf<uint8_t>(width, height, [&](int x, int y) {
            return std::sin(x * 6.0 / period) + std::cos((x + 2 * y) * 4.0 / period) + random.below(100) / 90.0 > 0.8
                       ? i + 1
                       : 0;
        }));
    }
    all.push_back(pictureOf<uint8_t>(
        131, 130, [](int x, int y) { return std::max(std::abs(x - 65), std::abs(y - 65)) / 3 % 2; }));
    all.push_back(pictureOf<uint8_t>(200, 101, [](int x, int y) { return x % 2 || y == 0; }));
    all.push_back(pictureOf<uint8_t>(80, 50, [](int x, int y) { return (x + y) % 2 || x % 17 == 0; }));
    all.push_back(pictureOf<uint8_t>(203, 203, [](int x, int y) {
        const double r = std::hypot(x - 101, y - 101) + 4 * std::atan2(y - 101, x - 101) / M_PI;
        return std::fmod(r + 8, 8) < 5;
    }));
    return all;
}

template <Slot slot>
void expectReferenceEverywhere(const Bytes& src, uint32_t approximation, const Contours& expected)
{
    forEachVecta<slot>([&](const char* name, auto function) {
        EXPECT_TRUE(contoursOf(function, src, approximation) == expected)
            << nameOf(slot) << " on " << name << ", " << src.width << "x" << src.height;
    });
}

TEST(Contour, ListsEachVisit)
{
    const Bytes row = pictureOf<uint8_t>(5, 3, [](int x, int y) { return y == 1 && x > 0 && x < 4; });
    const Contours found = contoursOf(rvkFindContoursListu8C, row, 0),
                   corners = contoursOf(rvkFindContoursListu8C, row, 1);
    EXPECT_EQ(found.points, (Points{{1, 1}, {2, 1}, {3, 1}, {2, 1}}));
    EXPECT_EQ(corners.points, (Points{{1, 1}, {3, 1}}));
}

#if RVK_TEST_OPENCV
// The contours of each parent's are the same; their order is not.
template <Slot slot>
void compareWithOpenCv(const Bytes& src, int mode)
{
    for (const uint32_t approximation : {0u, 1u}) {
        std::vector<std::vector<cv::Point>> theirs;
        std::vector<cv::Vec4i> theirLinks;
        cv::findContours(cv::Mat(src.height, src.width, CV_8U, const_cast<uint8_t*>(src.pixels.data())), theirs,
                         theirLinks, mode, approximation ? cv::CHAIN_APPROX_SIMPLE : cv::CHAIN_APPROX_NONE);
        std::vector<Points> expected;
        for (const auto& contour : theirs)
            expected.emplace_back().resize(contour.size()),
                std::transform(contour.begin(), contour.end(), expected.back().begin(),
                               [](cv::Point p) { return std::pair(p.x, p.y); });
        const Contours found = contoursOf(referenceOf<slot>(), src, approximation);
        const std::vector<Points> contours = found.each();
        ASSERT_EQ(contours.size(), expected.size());
        std::map<Points, size_t> indices;
        for (size_t i = 0; i < expected.size(); ++i)
            indices[expected[i]] = i;
        std::map<int32_t, int32_t> last; // of each parent
        for (size_t i = 0; i < contours.size(); ++i) {
            ASSERT_TRUE(indices.count(contours[i])) << i;
            const auto& [next, previous, child, parent] = found.hierarchy[i];
            const int theirParent = theirLinks[indices[contours[i]]][3];
            ASSERT_EQ(parent < 0, theirParent < 0);
            if (parent >= 0) {
                ASSERT_EQ(contours[static_cast<size_t>(parent)], expected[static_cast<size_t>(theirParent)]);
            }
            const auto index = static_cast<int32_t>(i);
            const bool isFirst = last.try_emplace(parent, -1).second;
            EXPECT_EQ(previous, last[parent]);
            EXPECT_TRUE(!isFirst || parent < 0 || found.hierarchy[static_cast<size_t>(parent)][2] == index);
            EXPECT_TRUE(previous < 0 || found.hierarchy[static_cast<size_t>(previous)][0] == index);
            last[parent] = index;
        }
        expectReferenceEverywhere<slot>(src, approximation, found);
    }
}

TEST(Contour, AgreesWithOpenCv)
{
    for (const Bytes& src : pictures()) {
        SCOPED_TRACE(::testing::Message() << src.width << "x" << src.height);
        compareWithOpenCv<Slot::rvkFindContoursExternalu8>(src, cv::RETR_EXTERNAL);
        compareWithOpenCv<Slot::rvkFindContoursListu8>(src, cv::RETR_LIST);
        compareWithOpenCv<Slot::rvkFindContoursCcompu8>(src, cv::RETR_CCOMP);
        compareWithOpenCv<Slot::rvkFindContoursTreeu8>(src, cv::RETR_TREE);
    }
}

TEST(Contour, MaskAgreesWithOpenCv)
{
    for (const Bytes& picture : pictures()) {
        const Bytes src = pictureOf<uint8_t>(picture.width * 2, picture.height * 2,
                                             [&](int x, int y) { return picture.at(x / 2, y / 2); });
        Bytes expected = src;
        cv::Mat mat(src.height, src.width, CV_8U, expected.pixels.data());
        for (const int operation : {cv::MORPH_OPEN, cv::MORPH_CLOSE})
            cv::morphologyEx(mat, mat, operation, cv::Mat::ones(3, 3, CV_8U));
        std::vector<std::vector<cv::Point>> contours;
        cv::findContours(mat, contours, cv::RETR_EXTERNAL, cv::CHAIN_APPROX_NONE);
        mat.setTo(0);
        for (size_t i = 0; i < contours.size(); ++i)
            if (cv::arcLength(contours[i], true) >= (src.width + src.height) / 7.5)
                cv::drawContours(mat, contours, static_cast<int>(i), 255, cv::FILLED);
        forEachImplementation<Slot::rvkSegmentFGMasku8>([&](const char* name, auto function) {
            Bytes dst = src, hulls = src;
            EXPECT_EQ(function(dst.pixels.data(), src.columns(), src.rows(), src.stride(), RAVIK_MASK_CONTOURS, 7.5f),
                      RAVIK_SUCCESS);
            EXPECT_EQ(dst, expected) << name;
            EXPECT_EQ(function(hulls.pixels.data(), src.columns(), src.rows(), src.stride(), RAVIK_MASK_HULLS, 7.5f),
                      RAVIK_SUCCESS);
            for (size_t i = 0; i < dst.pixels.size(); ++i)
                EXPECT_GE(hulls.pixels[i], dst.pixels[i]) << name << ": hulls hold their contours";
        });
    }
}
#endif

TEST(Contour, BordersDrawnFilledAreThePicture)
{
    for (const Bytes& src : pictures()) {
        const Contours found = contoursOf(rvkFindContoursListu8C, src, 1);
        Bytes drawn(src.width, src.height);
        const int32_t none[2] = {};
        EXPECT_EQ(rvkDrawContouru8(drawn.pixels.data(), src.columns(), src.rows(), 0,
                                   found.points.empty() ? none : &found.points[0].first,
                                   found.sizes.empty() ? reinterpret_cast<const uint32_t*>(none) : found.sizes.data(),
                                   static_cast<uint32_t>(found.sizes.size()), RAVIK_DRAW_FILLED, 1),
                  RAVIK_SUCCESS);
        EXPECT_EQ(drawn, pictureOf<uint8_t>(src.width, src.height, [&](int x, int y) { return src.at(x, y) != 0; }));
    }
}

TEST(Contour, OutputEndsWithTheLists)
{
    Random random(3);
    const Bytes src = pictureOf<uint8_t>(19, 11, [&](int, int) { return random.below(2); });
    const Contours whole = contoursOf(rvkFindContoursTreeu8C, src, 0);
    forEachImplementation<Slot::rvkFindContoursTreeu8>([&](const char* name, auto function) {
        for (uint32_t contours = 0; contours <= whole.sizes.size(); ++contours)
            for (uint32_t points = 0; points <= whole.points.size();
                 points += contours == whole.sizes.size() ? 1 : 17) {
                const Contours found = contoursOf(function, src, 0, contours, points);
                size_t fitting = 0;
                for (uint32_t sum = 0; fitting < contours && (sum += whole.sizes[fitting]) <= points; ++fitting)
                    ;
                ASSERT_EQ(found.sizes.size(), fitting) << name << ", room for " << contours << " and " << points;
                EXPECT_TRUE(std::equal(found.points.begin(), found.points.end(), whole.points.begin()));
                for (size_t i = 0; i < fitting; ++i)
                    EXPECT_TRUE(found.hierarchy[i][3] == whole.hierarchy[i][3] &&
                                found.hierarchy[i][0] < static_cast<int>(fitting));
            }
    });
}

TEST(Contour, WorkspacesHoldPicturesUpToTheirSize)
{
    EXPECT_FALSE(rvkFindContoursAllocate(0, 4) || rvkFindContoursAllocate(4, 0) ||
                 rvkFindContoursAllocate(65536, 65535));
    rvkFindContoursDelete(nullptr);
    const ScarceMemory memory(1);
    rvkContourWorkspace* const workspace = rvkFindContoursAllocate(203, 203);
    ASSERT_NE(workspace, nullptr);
    EXPECT_EQ(rvkFindContoursAllocate(1, 1), nullptr);
    for (const Bytes& src : pictures())
        forEachImplementation<Slot::rvkFindContoursTreeu8>([&](const char* name,
                                                               auto function) { // takes no other memory
            EXPECT_FALSE(contoursOf(function, src, 0, UINT32_MAX, UINT32_MAX, workspace).sizes.empty() && src.at(0, 0))
                << name;
        });
    uint32_t count = 5, size = 0;
    int32_t points[2];
    const uint8_t wide[204] = {};
    EXPECT_EQ(rvkFindContoursListu8(wide, 204, 1, 0, 0, &size, 1, &count, points, 1, nullptr, workspace),
              RAVIK_EBADPARAM);
    EXPECT_EQ(rvkFindContoursListu8(wide, 1, 204, 0, 0, &size, 1, &count, points, 1, nullptr, workspace),
              RAVIK_EBADPARAM);
    EXPECT_EQ(count, 5u);
    rvkFindContoursDelete(workspace);
    EXPECT_TRUE(memory.allIsReleased());
}

} // namespace
