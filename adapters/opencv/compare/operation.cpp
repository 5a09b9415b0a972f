// Random pictures and regions.
#include "operation.h"

#include <opencv2/imgproc.hpp>

namespace {

// Smooth shading, edges at all scales, some noise: what detectors and adaptive filters are made for.
cv::Mat natural(cv::RNG& random, int type, cv::Size size)
{
    cv::Mat small(cv::Size(size.width / 32 + 2, size.height / 32 + 2), CV_32F), picture;
    random.fill(small, cv::RNG::UNIFORM, 40, 216);
    // Doubled by repeating and averaging, without functions that the adapter may have replaced.
    picture.create(size, CV_32F);
    for (int y = 0; y < size.height; y++) {
        for (int x = 0; x < size.width; x++) {
            const float fx = (x & 31) / 32.f, fy = (y & 31) / 32.f;
            const float* above = small.ptr<float>(y >> 5) + (x >> 5);
            const float* below = small.ptr<float>((y >> 5) + 1) + (x >> 5);
            picture.at<float>(y, x) =
                (1 - fy) * ((1 - fx) * above[0] + fx * above[1]) + fy * ((1 - fx) * below[0] + fx * below[1]);
        }
    }
    const int shapes = size.area() / 1500;
    for (int i = 0; i < shapes; i++) {
        const int side = 2 << random.uniform(0, 6);
        const cv::Rect where(random.uniform(-side, size.width), random.uniform(-side, size.height), side,
                             random.uniform(1, side + 1));
        const cv::Rect inside = where & cv::Rect(cv::Point(), size);
        const float shade = random.uniform(0.f, 255.f);
        for (int y = inside.y; y < inside.y + inside.height; y++)
            std::fill_n(picture.ptr<float>(y) + inside.x, inside.width, shade);
    }
    cv::Mat result(size, type);
    const int channels = CV_MAT_CN(type), depth = CV_MAT_DEPTH(type);
    const double scale = depth == CV_8U || depth == CV_8S ? 1 : depth == CV_32F || depth == CV_64F ? 1 / 255. : 100;
    for (int y = 0; y < size.height; y++) {
        for (int x = 0; x < size.width * channels; x++) {
            const double value = picture.at<float>(y, x / channels) + random.uniform(-4, 5) + 20 * (x % channels);
            const double shifted = (depth == CV_8S || depth == CV_16S ? value - 128 : value) * scale;
            switch (depth) {
            case CV_8U:
                result.ptr<uchar>(y)[x] = cv::saturate_cast<uchar>(shifted);
                break;
            case CV_8S:
                result.ptr<schar>(y)[x] = cv::saturate_cast<schar>(shifted);
                break;
            case CV_16U:
                result.ptr<ushort>(y)[x] = cv::saturate_cast<ushort>(shifted);
                break;
            case CV_16S:
                result.ptr<short>(y)[x] = cv::saturate_cast<short>(shifted);
                break;
            case CV_32S:
                result.ptr<int>(y)[x] = cv::saturate_cast<int>(shifted);
                break;
            case CV_32F:
                result.ptr<float>(y)[x] = float(shifted);
                break;
            default:
                result.ptr<double>(y)[x] = shifted;
            }
        }
    }
    return result;
}

double lowest(int depth)
{
    const double values[] = {0, -128, 0, -32768, -2147483648., -1e6, -1e6};
    return values[depth];
}
double highest(int depth)
{
    const double values[] = {256, 128, 65536, 32768, 2147483647., 1e6, 1e6};
    return values[depth];
}

} // namespace

Draw::Draw(uint64_t seed) : timed(false), random(seed + 1)
{
    random.next();
    const int most = among({8, 40, 40, 150, 150, 700});
    pictureSize = cv::Size(random.uniform(1, most + 1), random.uniform(1, most + 1));
    if (random.uniform(0, 12) == 0)
        (random.uniform(0, 2) ? pictureSize.width : pictureSize.height) = 1;
}

Draw::Draw(cv::Size toTime) : timed(true), random(1), pictureSize(toTime) {}

int Draw::between(int low, int high, int toTime)
{
    return timed ? toTime : random.uniform(low, high + 1);
}

double Draw::between(double low, double high, double toTime)
{
    return timed ? toTime : random.uniform(low, high);
}

cv::Mat Draw::regionOf(int type, cv::Size size, cv::Mat& whole)
{
    if (timed || random.uniform(0, 3) == 0) {
        whole.create(size, type);
        return whole;
    }
    const int left = random.uniform(0, 9), top = random.uniform(0, 9), right = random.uniform(0, 9),
              bottom = random.uniform(0, 9);
    whole.create(size.height + top + bottom, size.width + left + right, type);
    return whole(cv::Rect(cv::Point(left, top), size));
}

cv::Mat Draw::source(int type, cv::Size size)
{
    cv::Mat whole, region = regionOf(type, size, whole);
    const int depth = CV_MAT_DEPTH(type);
    switch (between(0, 4, 0)) {
    case 0:
    case 1:
        natural(random, type, whole.size()).copyTo(whole);
        break;
    case 2:
        random.fill(whole, cv::RNG::UNIFORM, lowest(depth), highest(depth));
        break;
    case 3: { // extreme values
        cv::Mat bits(whole.size(), CV_MAKETYPE(CV_8U, CV_MAT_CN(type)));
        random.fill(bits, cv::RNG::UNIFORM, 0, 2);
        const double low = lowest(depth), high = depth < CV_32F ? highest(depth) - 1 : highest(depth);
        bits.convertTo(whole, depth, high - low, low);
        break;
    }
    default:
        random.fill(whole, cv::RNG::UNIFORM, 100, 104); // ties
    }
    return region;
}

cv::Mat Draw::noise(int type, cv::Size size, double low, double high)
{
    cv::Mat whole, region = regionOf(type, size, whole);
    random.fill(whole, cv::RNG::UNIFORM, low, high);
    return region;
}

Draw::Destination Draw::destination(int type, cv::Size size)
{
    Destination destination;
    destination.region = regionOf(type, size, destination.whole);
    destination.whole.setTo(cv::Scalar::all(77));
    return destination;
}
