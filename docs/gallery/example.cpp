#include "example.h"

#include "colours.h"
#include "scene.h"

#include "groups.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string_view>

namespace {

using Role = Argument::Role;

constexpr CaseSize kSize = Example::kSize;
constexpr double kPartOfVga = kSize.width / 640.0; // which typical numbers are for

// Numbers that show more than the first that is tested: in the order of the scalars, for names that begin so.
struct Numbers
{
    std::string_view function;
    std::vector<double> scalars;
};

const Numbers kNumbers[] = {
    {"rvkAddScalar", {60}},
    {"rvkAddWeightedu8", {0.5, 0.5}},
    {"rvkConvertDepths16u8", {RAVIK_POLICY_SATURATE, 0}},
    {"rvkCopyRotated", {50, 32, 30}},
    {"rvkDrawContour", {6, 2, 250, 220, 60}},
    {"rvkEdgeWeighting", {6, 800, 255}},
    {"rvkFillConvexPolyu8", {24, 230}},
    {"rvkFilterThresholdRange", {60, 140, 255, 0}},
    {"rvkFilterThresholdu8_v3", {100, 255, 0}},
    {"rvkFloodfillMerged", {80, 60, 14, 20, 3, 3, 255}},
    {"rvkFloodfillSimple", {14, 20, 255}},
    {"rvkImageSegmentationRegionGrow", {12, 40}},
    {"rvkImageSegmentationSeedRegionGrow", {80, 60, 14, 20, 20}},
    {"rvkMultiplyScalars16", {128, 8}},
    {"rvkMultiplyScalarf32", {0.5}},
    {"rvkUpdateMotionHistory", {250, 40}},
};

// What the sources of a function are, other than the scene at one moment after the other.
enum class Content { moments, noise, grain, gradients, planesOfYCbCr, planesOfYCrCb, planesOfRgb };

struct Contents
{
    std::string_view function;
    Content content;
};

const Contents kContents[] = {
    {"rvkBilateral", Content::grain},
    {"rvkBoxFilter", Content::noise},
    {"rvkChannelCombine3", Content::planesOfRgb},
    {"rvkChannelCombine4", Content::planesOfRgb},
    {"rvkColorYCb", Content::planesOfYCbCr},
    {"rvkColorYCr", Content::planesOfYCrCb},
    {"rvkColorYUV", Content::planesOfYCrCb},
    {"rvkFilterGaussian", Content::noise},
    {"rvkFilterMedian", Content::noise},
    {"rvkFindForegroundIntegrateImage", Content::planesOfYCbCr},
    {"rvkIntegrateImageYCbCr", Content::planesOfYCbCr},
    {"rvkMagnitude", Content::gradients},
    {"rvkEdgeWeighting", Content::gradients},
    {"rvkPhase", Content::gradients},
    {"rvkSegmentFGMask", Content::noise},
};

// Whose pictures are lists of numbers, too small to be looked at.
const std::string_view kLists[] = {"rvkClusterEuclidean",      "rvkExtractHOG",     "rvkImageIntensityHistogram",
                                   "rvkImageSpatialHistogram", "rvkMatrixMultiply", "rvkVecNormalize"};

// What undoes another function shows what that one makes of the scene.
struct Inverse
{
    std::string_view function, forward;
};

const Inverse kInverses[] = {
    {"rvkIDCTs16", "rvkDCTu8"},
    {"rvkIDWT53TabTransposes16", "rvkDWT53TabTransposes16"},
    {"rvkIDWT53Tabs16", "rvkDWT53Tabs16"},
    {"rvkIDWTHaarTransposes16", "rvkDWTHaarTransposeu8"},
    {"rvkIDWTHaars16", "rvkDWTHaaru8"},
    {"rvkIFFTf32", "rvkFFTu8"},
};

// Where few numbers are much larger than most: the power of them that is shown.
struct Emphasis
{
    std::string_view function;
    double power;
};

const Emphasis kEmphases[] = {
    {"rvkDCT", 0.4}, {"rvkDWT", 0.45}, {"rvkFFT", 0.15}, {"rvkIDCT", 0.4}, {"rvkIDWT", 0.45}, {"rvkIFFT", 0.15},
};

template <class Table>
auto entryOf(const Table& table, std::string_view function)
{
    return std::find_if(std::begin(table), std::end(table),
                        [&](const auto& entry) { return function.starts_with(entry.function); });
}

Content contentOf(std::string_view function)
{
    const auto entry = entryOf(kContents, function);
    return entry == std::end(kContents) ? Content::moments : entry->content;
}

const FunctionTest& testOf(std::string_view function)
{
    const std::vector<const FunctionTest*> all = allFunctions();
    return **std::find_if(all.begin(), all.end(), [=](const FunctionTest* test) { return test->name == function; });
}

bool isSource(const Argument& a)
{
    return (a.role == Role::source || a.role == Role::updated) && a.isOfPixels() && !a.isList && !a.columns;
}

// The side of a patch of fixed size that is written; 0 where it is none.
uint32_t sideOfPatch(const Argument& a)
{
    const auto side = static_cast<uint32_t>(std::lround(std::sqrt(a.fixedSize)));
    return a.role == Role::destination && !a.isList && side >= 8 && side * side == a.fixedSize ? side : 0;
}

bool isShown(const Argument& a)
{
    return sideOfPatch(a) || (a.isResult() && a.isOfPixels() && !a.isList && !a.columns);
}

// Of the only source, or destination, of two bytes a pixel.
bool isRgb565(const FunctionTest& function, size_t index)
{
    const Argument& a = function.arguments[index];
    const auto isBeside = [&](const Argument& other) { return other.role == a.role && other.isOfPixels(); };
    return a.channels == 2 && a.element == Element::u8 && function.name.find("565") != std::string::npos &&
           std::count_if(function.arguments.begin(), function.arguments.end(), isBeside) == 1;
}

bool isLabel(const Argument& a, std::string_view function)
{
    return a.element == Element::u32 && function.starts_with("rvkImageSegmentation");
}

uint32_t hashOf(uint32_t x, uint32_t y)
{
    const uint32_t mixed = (x * 2654435761u ^ y * 2246822519u) * 3266489917u;
    return (mixed ^ mixed >> 15) * 668265263u;
}

bool isSpeck(uint32_t x, uint32_t y)
{
    return hashOf(x, y) % 23 == 0;
}

double grain(uint32_t x, uint32_t y)
{
    return hashOf(x, y) / 4294967295.0 * 24 - 12;
}

uint16_t packed565(Colour c)
{
    return static_cast<uint16_t>(c.red / 8 * 2048 + c.green / 4 * 32 + c.blue / 8);
}

Colour unpacked565(uint16_t word)
{
    const auto widened = [](uint32_t bits, uint32_t most) { return static_cast<uint8_t>(bits * 255 / most); };
    return {widened(word >> 11, 31), widened((word >> 5) & 63, 63), widened(word & 31, 31)};
}

Colour ycbcrOf(Colour c)
{
    const double y = 0.299 * c.red + 0.587 * c.green + 0.114 * c.blue;
    return {static_cast<uint8_t>(y), static_cast<uint8_t>(128 + (c.blue - y) * 0.564),
            static_cast<uint8_t>(128 + (c.red - y) * 0.713)};
}

uint8_t component(Colour c, size_t index)
{
    return index % 3 == 0 ? c.red : index % 3 == 1 ? c.green : c.blue;
}

// The grey level to the right less that to the left, or below less above.
int derivative(const Picture& scene, uint32_t x, uint32_t y, bool isDown)
{
    const auto grey = [&](int64_t column, int64_t row) {
        return int{scene
                       .at(static_cast<uint32_t>(std::clamp<int64_t>(column, 0, scene.width - 1)),
                           static_cast<uint32_t>(std::clamp<int64_t>(row, 0, scene.height - 1)))
                       .grey()};
    };
    return isDown ? grey(x, int64_t{y} + 1) - grey(x, int64_t{y} - 1)
                  : grey(int64_t{x} + 1, y) - grey(int64_t{x} - 1, y);
}

// Weights that add up to `unit`: a window that makes edges stand out, or a row of a smoothing one.
std::vector<double> weightsOf(uint32_t width, uint32_t height, double unit)
{
    std::vector<double> weights(size_t{width} * height);
    if (width > 1 && height > 1) {
        for (size_t i = 0; i < weights.size(); i++)
            weights[i] = i % width == width / 2 || i / width == height / 2 ? -unit / (width + height - 2) : 0;
        weights[weights.size() / 2] = 2 * unit;
        return weights;
    }
    double sum = 0, binomial = 1;
    for (size_t i = 0; i < weights.size(); i++) {
        weights[i] = binomial;
        sum += binomial;
        binomial = binomial * static_cast<double>(weights.size() - 1 - i) / static_cast<double>(i + 1);
    }
    for (double& weight : weights)
        weight *= unit / sum;
    return weights;
}

} // namespace

bool Example::isPossible(const FunctionTest& function)
{
    const auto& all = function.arguments;
    const bool isList = std::any_of(std::begin(kLists), std::end(kLists),
                                    [&](std::string_view name) { return function.name.starts_with(name); });
    return !isList && std::any_of(all.begin(), all.end(), isSource) && std::any_of(all.begin(), all.end(), isShown);
}

Example::Example(const FunctionTest& function, CaseSize size)
    : m_function(function), m_size(function.wholeUnits(size)), m_numbers(function.arguments.size())
{
    for (const Argument& a : function.arguments)
        if ((a.hasWindowWidth || a.hasWindowHeight) && a.element == Element::s8)
            m_shift = 5;
    takeNumbers();
    layOut();
    fill();
    CallValues values{std::vector<void*>(m_numbers.size()), m_numbers};
    for (Image& image : m_images)
        values.pointers[image.argument] = image.data.data();
    for (size_t i = 0; i < m_numbers.size(); i++)
        if (function.arguments[i].role == Role::alias)
            values.pointers[i] = values.pointers[function.arguments[i].aliasOf];
    m_succeeded = m_function.call(values).status == RAVIK_SUCCESS || !m_function.hasStatus;
}

std::vector<std::pair<size_t, double>> Example::numbers() const
{
    std::vector<std::pair<size_t, double>> found;
    for (size_t i = 0; i < m_numbers.size(); i++)
        if (m_function.arguments[i].role == Role::scalar)
            found.push_back({i, m_numbers[i]});
    return found;
}

void Example::takeNumbers()
{
    for (size_t i = 0; i < m_numbers.size(); i++) {
        const Argument& a = m_function.arguments[i];
        if (!a.choices.empty())
            m_numbers[i] = a.choices[0];
        else
            m_numbers[i] = a.element == Element::u8 ? 255 : std::min(a.high, std::max(a.low, 1.0));
    }
    m_function.setTypicalSizes(m_numbers, m_size);
    const auto entry = entryOf(kNumbers, m_function.name);
    const std::vector<double> given = entry == std::end(kNumbers) ? std::vector<double>() : entry->scalars;
    size_t scalar = 0;
    bool isAfterWeights = false;
    for (size_t i = 0; i < m_numbers.size(); i++) {
        const Argument& a = m_function.arguments[i];
        isAfterWeights |= a.hasWindowWidth || a.hasWindowHeight;
        if (a.role != Role::scalar)
            continue;
        if (scalar < given.size())
            m_numbers[i] = given[scalar];
        else if (isAfterWeights && !a.isWindowWidth && !a.isWindowHeight)
            m_numbers[i] = m_shift;
        scalar++;
    }
}

void Example::layOut()
{
    const CaseSizes sizes = m_function.sizesFor(m_size, m_numbers);
    for (size_t i = 0; i < m_numbers.size(); i++) {
        const Argument& a = m_function.arguments[i];
        if (!a.isImage())
            continue;
        const uint32_t side = sideOfPatch(a);
        const ImageSize size = side ? ImageSize{side, side} : a.usedIn(sizes);
        m_images.push_back({.argument = i,
                            .width = static_cast<uint32_t>(size.columns),
                            .height = static_cast<uint32_t>(size.rows),
                            .stride = static_cast<size_t>(size.columns) * a.pixelSize()});
    }
    for (size_t i = 0; i < m_numbers.size(); i++) {
        if (m_function.arguments[i].role != Role::stride)
            continue;
        size_t widest = 0;
        const std::vector<size_t> sharing = m_function.imagesOfStride(i);
        const auto shares = [&](const Image& image) {
            return std::find(sharing.begin(), sharing.end(), image.argument) != sharing.end();
        };
        for (const Image& image : m_images)
            widest = shares(image) ? std::max(widest, image.stride) : widest;
        for (Image& image : m_images)
            image.stride = shares(image) ? widest : image.stride;
        m_numbers[i] = static_cast<double>(widest);
    }
    for (Image& image : m_images)
        image.data.resize(image.stride * image.height + 64);
}

// What a function makes of the scene, of as large a picture as this one makes, in the size that this one takes.
std::vector<uint8_t> Example::transformOfScene(std::string_view name) const
{
    const FunctionTest& forward = testOf(name);
    const bool isTransposed = std::any_of(forward.arguments.begin(), forward.arguments.end(),
                                          [](const Argument& a) { return a.isResult() && a.isTransposed; });
    return Example(forward, isTransposed ? CaseSize{m_size.height, m_size.width} : m_size).m_images.back().data;
}

void Example::fill()
{
    size_t ordinal = 0;
    for (Image& image : m_images) {
        const Argument& a = m_function.arguments[image.argument];
        const auto inverse = entryOf(kInverses, m_function.name);
        if (isSource(a) && inverse != std::end(kInverses))
            image.data = transformOfScene(inverse->forward);
        else if (isSource(a) && !a.ranges.empty())
            fillMap(image);
        else if (isSource(a))
            fillPicture(image, ordinal++);
        else if (a.isInput())
            fillNumbers(image);
        image.before = image.data;
    }
}

// A few numbers, or the weights of a window.
void Example::fillNumbers(Image& image) const
{
    const Argument& a = m_function.arguments[image.argument];
    std::vector<double> elements(size_t{image.width} * image.height);
    if (a.hasWindowWidth || a.hasWindowHeight) {
        const CaseSize window = m_function.windowOf(m_numbers);
        const bool isSquare = a.hasWindowWidth && a.hasWindowHeight;
        elements = weightsOf(isSquare ? window.width : image.width, isSquare ? window.height : 1,
                             a.element == Element::f32 ? 1 : std::ldexp(1, m_shift));
    } else if (!a.ranges.empty()) {
        for (size_t i = 0; i < elements.size(); i++)
            elements[i] = a.typical.empty() ? a.rangeOf(i).at(0.6, m_size)
                                            : a.typical[i] * (a.rangeOf(i).of == Range::Of::numbers ? 1 : kPartOfVga);
    } else if (elements.size() == 256 && a.element == Element::u8 && m_function.name == "rvkTableLookupu8") {
        for (size_t i = 0; i < elements.size(); i++)
            elements[i] = 255 * std::pow(static_cast<double>(i) / 255, 0.4);
    } else if (a.element == Element::u8) { // a patch
        const auto side = static_cast<uint32_t>(std::lround(std::sqrt(elements.size())));
        const Picture scene = drawScene(kSize.width, kSize.height);
        for (size_t i = 0; i < elements.size(); i++)
            elements[i] = scene.at(96 + static_cast<uint32_t>(i) % side, 60 + static_cast<uint32_t>(i) / side).grey();
    } else if (a.element == Element::s8) { // bytes that points are made of: two for each, in turns around the middle
        for (size_t i = 0; i < elements.size(); i++)
            elements[i] = i % 2 == 0 ? 27 * std::cos(static_cast<double>(i) * 1.1) - 8
                                     : 23 * std::sin(static_cast<double>(i - 1) * 1.1) - 20;
    } else {
        std::fill(elements.begin(), elements.end(), 1);
    }
    visitElement(a.element, [&](auto zero) {
        for (size_t i = 0; i < elements.size() && (i + 1) * sizeof zero <= image.data.size(); i++) {
            const auto element = static_cast<decltype(zero)>(elements[i]);
            memcpy(image.data.data() + i * sizeof element, &element, sizeof element);
        }
    });
}

// Positions in a picture: those of the pixels, in waves.
void Example::fillMap(Image& image) const
{
    const bool isDown = m_function.arguments[image.argument].ranges[0].of == Range::Of::rows;
    for (uint32_t y = 0; y < image.height; y++)
        for (uint32_t x = 0; x < image.width; x++) {
            const double along =
                isDown ? y * double(kSize.height) / image.height : x * double(kSize.width) / image.width;
            const auto position = static_cast<float>(along + 5 * std::sin((isDown ? x : y) * 24.0 / image.width));
            memcpy(image.data.data() + y * image.stride + x * sizeof position, &position, sizeof position);
        }
}

template <class T>
void Example::fillPixels(Image& image, const Picture& scene, size_t ordinal) const
{
    const Argument& a = m_function.arguments[image.argument];
    const Content content = contentOf(m_function.name);
    const bool isPacked = isRgb565(m_function, image.argument);
    for (uint32_t y = 0; y < image.height; y++)
        for (uint32_t x = 0; x < image.width; x++) {
            uint8_t* const pixel = image.data.data() + y * image.stride + size_t{x} * a.pixelSize();
            const Colour colour = scene.at(x, y);
            if (isPacked) {
                const uint16_t word = packed565(colour);
                memcpy(pixel, &word, sizeof word);
                continue;
            }
            for (uint32_t channel = 0; channel < a.channels; channel++) {
                double value = colour.grey();
                if (content == Content::gradients)
                    value = derivative(scene, x, y, (ordinal + channel) % 2 == 1);
                else if (content == Content::planesOfYCbCr)
                    value = component(ycbcrOf(colour), ordinal + channel);
                else if (content == Content::planesOfYCrCb)
                    value = component(ycbcrOf(colour), ordinal + channel == 0 ? 0 : 3 - ordinal - channel);
                else if (content == Content::planesOfRgb || a.channels >= 3)
                    value = channel == 3 ? 255 : component(colour, ordinal % 3 * (a.channels == 1) + channel);
                else if (sizeof(T) == 1 && std::is_signed_v<T>)
                    value -= 128;
                if (a.isMask)
                    value = std::hypot(x - image.width * 0.6, y - image.height * 0.55) < image.height * 0.4 ? 255 : 0;
                if (content == Content::noise && isSpeck(x, y))
                    value = value < 128 ? 230 : 20;
                if (content == Content::grain)
                    value = std::clamp(value + grain(x, y), 0.0, 255.0);
                const auto element = static_cast<T>(value);
                memcpy(pixel + channel * sizeof element, &element, sizeof element);
            }
        }
}

void Example::fillPicture(Image& image, size_t ordinal) const
{
    const bool isOfMoments = contentOf(m_function.name) == Content::moments;
    const Picture scene = drawScene(image.width, image.height, isOfMoments ? static_cast<int>(ordinal) : 0);
    visitElement(m_function.arguments[image.argument].element,
                 [&](auto zero) { fillPixels<decltype(zero)>(image, scene, ordinal); });
}

// A picture of each channel, or of red, green and blue together. Elements of more than a byte are scaled to what there
// is: 0 is black, or grey where there are negative ones. Labels have colours.
std::vector<Picture> Example::shown(const Image& image, const std::vector<uint8_t>& bytes) const
{
    const Argument& a = m_function.arguments[image.argument];
    const auto element = [&](uint32_t x, uint32_t y, uint32_t channel) {
        return visitElement(a.element, [&](auto zero) {
            const size_t at = y * image.stride + (size_t{x} * a.channels + channel) * sizeof zero;
            memcpy(&zero, bytes.data() + at, sizeof zero);
            return static_cast<double>(zero);
        });
    };
    double least = 0, most = 0;
    for (uint32_t y = 0; y < image.height; y++)
        for (uint32_t i = 0; i < image.width * a.channels; i++) {
            const double value = element(i / a.channels, y, i % a.channels);
            if (std::isfinite(value))
                least = std::min(least, value), most = std::max(most, value);
        }
    const double largest = std::max({-least, most, 1e-30});
    const auto emphasis = entryOf(kEmphases, m_function.name);
    const double power = emphasis == std::end(kEmphases) || a.element == Element::u8 ? 1 : emphasis->power;
    const auto level = [&](uint32_t x, uint32_t y, uint32_t channel) {
        const double linear = element(x, y, channel);
        const double value = std::copysign(std::pow(std::fabs(linear) / largest, power) * largest, linear);
        const double grey = a.element == Element::u8 ? value
                            : least < 0              ? 127.5 + 127.5 * value / largest
                                                     : 255 * value / largest;
        return std::isfinite(grey) ? static_cast<uint8_t>(std::clamp(grey, 0.0, 255.0)) : uint8_t{0};
    };
    const auto colour = [&](uint32_t x, uint32_t y, uint32_t channel) -> Colour {
        if (isRgb565(m_function, image.argument)) {
            uint16_t word;
            memcpy(&word, bytes.data() + y * image.stride + x * sizeof word, sizeof word);
            return unpacked565(word);
        }
        if (isLabel(a, m_function.name))
            return colourOfLabel(static_cast<uint32_t>(element(x, y, 0)));
        if (a.channels >= 3)
            return {level(x, y, 0), level(x, y, 1), level(x, y, 2)};
        const uint8_t grey = level(x, y, channel);
        return {grey, grey, grey};
    };
    const bool isTogether = a.channels != 2 || isRgb565(m_function, image.argument);
    std::vector<Picture> pictures(isTogether ? 1 : a.channels, Picture(image.width, image.height));
    for (uint32_t channel = 0; channel < pictures.size(); channel++)
        for (uint32_t y = 0; y < image.height; y++)
            for (uint32_t x = 0; x < image.width; x++)
                pictures[channel].at(x, y) = colour(x, y, channel);
    return pictures;
}

Picture Example::picture() const
{
    std::vector<Picture> inputs, outputs;
    for (const Image& image : m_images) {
        const Argument& a = m_function.arguments[image.argument];
        const auto append = [&](std::vector<Picture>& all, const std::vector<uint8_t>& bytes) {
            for (const Picture& picture : shown(image, bytes))
                all.push_back(picture);
        };
        if (isSource(a))
            append(inputs, image.before);
        if (isShown(a))
            append(outputs, image.data);
    }
    uint32_t highest = 0;
    for (const Picture& output : outputs)
        highest = std::max(highest, output.height);
    for (Picture& output : outputs)
        output = output.enlarged(std::max(1u, kSize.height / 2 / highest));
    return rowOf(inputs, outputs);
}
