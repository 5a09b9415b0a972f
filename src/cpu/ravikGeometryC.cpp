// C references of maps fitted to correspondences.
#include "cpu/ravikGeometryC.h"

#include "cpu/correspondences.h"
#include "cpu/finite.h"
#include "kernels.h"
#include "scratch.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstring>

namespace rvk {

namespace {

// action(src, dst) for each pair that the mask has.
template <class Action>
void forEachChosen(const rvkaCorrespondences& pairs, Action action)
{
    for (size_t i = 0; i < pairs.count; ++i)
        if (isChosen(pairs, i))
            action(srcOf(pairs, i), dstOf(pairs, i));
}

uint32_t countChosen(const rvkaCorrespondences& pairs)
{
    uint32_t count = 0;
    forEachChosen(pairs, [&](const float*, const float*) { ++count; });
    return count;
}

} // namespace

// ---- how far pairs lie from a model ---------------------------------------------------------------------------------

namespace {

float squaredLength(double x, double y)
{
    const double squared = x * x + y * y;
    return squared <= FLT_MAX ? static_cast<float>(squared) : INFINITY; // what is no number, too
}

// A row of a model at (x, y, 1) and (x, y, z, 1).
double rowAt(const float* row, double x, double y)
{
    return row[0] * x + row[1] * y + row[2];
}
double rowAt(const float* row, const float* point)
{
    return double{row[0]} * point[0] + double{row[1]} * point[1] + double{row[2]} * point[2] + row[3];
}

} // namespace

float32_t affineSquaredError(const float32_t* affine, const float32_t* src, const float32_t* dst)
{
    return squaredLength(rowAt(affine, src[0], src[1]) - dst[0], rowAt(affine + 3, src[0], src[1]) - dst[1]);
}

float32_t homographySquaredError(const float32_t* homography, const float32_t* src, const float32_t* dst)
{
    const double w = rowAt(homography + 6, src[0], src[1]); // of 0, the error is not finite
    return squaredLength(rowAt(homography, src[0], src[1]) / w - dst[0],
                         rowAt(homography + 3, src[0], src[1]) / w - dst[1]);
}

float32_t poseSquaredError(const float32_t* pose, const float32_t* src, const float32_t* dst)
{
    const double z = rowAt(pose + 8, src);
    if (!(z > 0))
        return INFINITY;
    return squaredLength(rowAt(pose, src) / z - dst[0], rowAt(pose + 4, src) / z - dst[1]);
}

namespace {

bool isInlier(float squaredError, float maxSquaredError)
{
    return squaredError <= maxSquaredError && squaredError < INFINITY;
}

uint32_t evaluate(SquaredError* squaredErrorOf, const rvkaCorrespondences& pairs, const float* model,
                  float maxSquaredError, float* squaredErrors, uint8_t* inliers)
{
    uint32_t count = 0;
    for (size_t i = 0; i < pairs.count; ++i) {
        const float squaredError = squaredErrorOf(model, srcOf(pairs, i), dstOf(pairs, i));
        const bool isIn = isInlier(squaredError, maxSquaredError) && isChosen(pairs, i);
        if (squaredErrors)
            squaredErrors[i] = squaredError;
        if (inliers)
            inliers[i] = isIn;
        count += isIn;
    }
    return count;
}

} // namespace

uint32_t rvkGeomAffineEvaluatef32C(const rvkaCorrespondences* pairs, const float32_t* affine, float32_t maxSquaredError,
                                   float32_t* squaredErrors, uint8_t* inliers)
{
    return evaluate(affineSquaredError, *pairs, affine, maxSquaredError, squaredErrors, inliers);
}

uint32_t rvkGeomHomographyEvaluatef32C(const rvkaCorrespondences* pairs, const float32_t* homography,
                                       float32_t maxSquaredError, float32_t* squaredErrors, uint8_t* inliers)
{
    return evaluate(homographySquaredError, *pairs, homography, maxSquaredError, squaredErrors, inliers);
}

uint32_t rvkGeomPoseEvaluatef32C(const rvkaCorrespondences* pairs, const float32_t* pose, float32_t maxSquaredError,
                                 float32_t* squaredErrors, uint8_t* inliers)
{
    return evaluate(poseSquaredError, *pairs, pose, maxSquaredError, squaredErrors, inliers);
}

// ---- fits to all pairs ----------------------------------------------------------------------------------------------

namespace {

struct Centres
{
    double src[2] = {}, dst[2] = {};
};

Centres centresOf(const rvkaCorrespondences& pairs, uint32_t chosen)
{
    Centres centres;
    forEachChosen(pairs, [&](const float* src, const float* dst) {
        for (int k = 0; k < 2; ++k) {
            centres.src[k] += src[k];
            centres.dst[k] += dst[k];
        }
    });
    for (int k = 0; k < 2; ++k) {
        centres.src[k] /= chosen;
        centres.dst[k] /= chosen;
    }
    return centres;
}

// Whether points lie on a line, from the sums of the squares of their coordinates, seen from the centroid, and of the
// products.
bool areOnLine(double xx, double xy, double yy)
{
    const double mean = (xx + yy) / 2, half = (xx - yy) / 2;
    const double larger = mean + std::sqrt(half * half + xy * xy), smaller = (xx * yy - xy * xy) / larger;
    return !(smaller > 0x1p-40 * larger);
}

} // namespace

// By least squares with coordinates that are orthogonal: the one along which src reaches farther, and what the other has
// beyond its part. So points near a line lose no digits to a matrix that is near a singular one.
rvkStatus rvkGeomAffineFitf32C(const rvkaCorrespondences* pairs, float32_t* affine)
{
    const uint32_t chosen = countChosen(*pairs);
    if (chosen < 3)
        return RAVIK_EFAIL;
    const Centres centres = centresOf(*pairs, chosen);
    double xx = 0, xy = 0, yy = 0;
    forEachChosen(*pairs, [&](const float* src, const float*) {
        const double x = src[0] - centres.src[0], y = src[1] - centres.src[1];
        xx += x * x;
        xy += x * y;
        yy += y * y;
    });
    if (areOnLine(xx, xy, yy))
        return RAVIK_EFAIL;

    const int main = xx >= yy ? 0 : 1, other = 1 - main;
    const double part = xy / std::max(xx, yy);
    double ofMain[2] = {}, ofRest[2] = {}, restSquared = 0, mainSquared = 0;
    forEachChosen(*pairs, [&](const float* src, const float* dst) {
        const double along = src[main] - centres.src[main], rest = src[other] - centres.src[other] - part * along;
        mainSquared += along * along;
        restSquared += rest * rest;
        for (int k = 0; k < 2; ++k) {
            ofMain[k] += along * (dst[k] - centres.dst[k]);
            ofRest[k] += rest * (dst[k] - centres.dst[k]);
        }
    });
    double fitted[6];
    for (int k = 0; k < 2; ++k) {
        double* const row = fitted + 3 * k;
        row[other] = ofRest[k] / restSquared;
        row[main] = ofMain[k] / mainSquared - part * row[other];
        row[2] = centres.dst[k] - (row[0] * centres.src[0] + row[1] * centres.src[1]);
    }
    return storeFinite(fitted, affine) ? RAVIK_SUCCESS : RAVIK_EFAIL;
}

void irvkNormalizePoints2DC(const float32_t* points, uint32_t count, const double* centre, double scale,
                            double* normalized)
{
    for (size_t i = 0; i < count; ++i) {
        normalized[2 * i] = (points[2 * i] - centre[0]) * scale;
        normalized[2 * i + 1] = (points[2 * i + 1] - centre[1]) * scale;
    }
}

namespace {

// The move and scale that give points the centroid 0 and the mean distance sqrt(2) from it.
struct Similarity
{
    double centre[2], scale;
};

struct Similarities
{
    Similarity src, dst;
    bool areFinite; // not where all points are equal, or one is not finite
};

double distance(const float* point, const double* centre)
{
    const double x = point[0] - centre[0], y = point[1] - centre[1];
    return std::sqrt(x * x + y * y);
}

Similarities similaritiesOf(const rvkaCorrespondences& pairs, uint32_t chosen)
{
    const Centres centres = centresOf(pairs, chosen);
    double srcDistances = 0, dstDistances = 0;
    forEachChosen(pairs, [&](const float* src, const float* dst) {
        srcDistances += distance(src, centres.src);
        dstDistances += distance(dst, centres.dst);
    });
    const double sum = std::sqrt(2.0) * chosen;
    const double srcScale = sum / srcDistances, dstScale = sum / dstDistances;
    return {{{centres.src[0], centres.src[1]}, srcScale},
            {{centres.dst[0], centres.dst[1]}, dstScale},
            std::isfinite(srcScale) && std::isfinite(dstScale)};
}

// The upper half of a symmetric matrix of 3x3, and its place in one of 9x9.
struct Block
{
    double sums[6] = {};

    // p p^T times the weight, p = (x, y, 1).
    void add(double weight, double x, double y)
    {
        const double wx = weight * x, wy = weight * y;
        const double terms[] = {wx * x, wx * y, wx, wy * y, wy, weight};
        for (int k = 0; k < 6; ++k)
            sums[k] += terms[k];
    }
    void store(double (&matrix)[9][9], int row, int column, double sign) const
    {
        constexpr int places[3][3] = {{0, 1, 2}, {1, 3, 4}, {2, 4, 5}};
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j)
                matrix[row + i][column + j] = matrix[column + j][row + i] = sign * sums[places[i][j]];
    }
};

// The normal matrix of the equations (p, 0, -u p) h = 0 and (0, p, -v p) h = 0 of each pair, p = (x, y, 1) its source
// and (u, v) its destination, both normalised.
class NormalMatrix
{
public:
    NormalMatrix(const rvkaCorrespondences& pairs, const Similarities& similarities) : m_similarities(similarities)
    {
        forEachChosen(pairs, [&](const float* src, const float* dst) {
            std::copy_n(src, 2, m_src + 2 * m_count);
            std::copy_n(dst, 2, m_dst + 2 * m_count);
            if (++m_count == kChunk)
                addChunk();
        });
        addChunk();
    }
    void store(double (&matrix)[9][9]) const
    {
        std::fill_n(matrix[0], 81, 0.0);
        m_plain.store(matrix, 0, 0, 1);
        m_plain.store(matrix, 3, 3, 1);
        m_byU.store(matrix, 0, 6, -1);
        m_byV.store(matrix, 3, 6, -1);
        m_bySquares.store(matrix, 6, 6, 1);
    }

private:
    static constexpr uint32_t kChunk = 32;

    void addChunk()
    {
        double src[2 * kChunk], dst[2 * kChunk];
        const auto normalize = kernel<Kernel::irvkNormalizePoints2D>();
        normalize(m_src, m_count, m_similarities.src.centre, m_similarities.src.scale, src);
        normalize(m_dst, m_count, m_similarities.dst.centre, m_similarities.dst.scale, dst);
        for (uint32_t i = 0; i < m_count; ++i) {
            const double x = src[2 * i], y = src[2 * i + 1], u = dst[2 * i], v = dst[2 * i + 1];
            m_plain.add(1, x, y);
            m_byU.add(u, x, y);
            m_byV.add(v, x, y);
            m_bySquares.add(u * u + v * v, x, y);
        }
        m_count = 0;
    }

    const Similarities& m_similarities;
    uint32_t m_count = 0;
    float m_src[2 * kChunk], m_dst[2 * kChunk];
    Block m_plain, m_byU, m_byV, m_bySquares;
};

// Eigenvalues and eigenvectors of a symmetric matrix by Jacobi's rotations, row by row until there is nothing left beside
// the diagonal that counts.
class Eigensystem
{
public:
    explicit Eigensystem(double (&matrix)[9][9]) : m_matrix(matrix)
    {
        double trace = 0;
        for (int i = 0; i < 9; ++i) {
            m_vectors[i][i] = 1;
            trace += matrix[i][i];
        }
        constexpr int mostSweeps = 30; // far more than it takes
        const double negligible = 0x1p-60 * trace;
        bool rotated = true;
        for (int sweep = 0; sweep < mostSweeps && rotated; ++sweep) {
            rotated = false;
            for (int p = 0; p < 8; ++p)
                for (int q = p + 1; q < 9; ++q)
                    if (std::fabs(matrix[p][q]) > negligible) {
                        rotate(p, q);
                        rotated = true;
                    }
        }
        for (int i = 0; i < 9; ++i)
            m_order[i] = i;
        std::sort(m_order, m_order + 9, [&](int a, int b) { // by keys without not-a-numbers
            return key(a) < key(b) || (key(a) == key(b) && a < b);
        });
    }

    // From the smallest on.
    double value(int index) const { return m_matrix[m_order[index]][m_order[index]]; }
    const double (&vector(int index) const)[9] { return m_vectors[m_order[index]]; }

private:
    double key(int i) const { return std::isnan(m_matrix[i][i]) ? HUGE_VAL : m_matrix[i][i]; }

    // Makes the element at (p, q) zero.
    void rotate(int p, int q)
    {
        const double theta = (m_matrix[q][q] - m_matrix[p][p]) / (2 * m_matrix[p][q]);
        const double t = (theta < 0 ? -1 : 1) / (std::fabs(theta) + std::sqrt(theta * theta + 1));
        const double c = 1 / std::sqrt(t * t + 1), s = t * c, change = t * m_matrix[p][q];
        m_matrix[p][p] -= change;
        m_matrix[q][q] += change;
        m_matrix[p][q] = m_matrix[q][p] = 0;
        for (int i = 0; i < 9; ++i) {
            if (i != p && i != q) {
                const double ofP = m_matrix[i][p], ofQ = m_matrix[i][q];
                m_matrix[i][p] = m_matrix[p][i] = c * ofP - s * ofQ;
                m_matrix[i][q] = m_matrix[q][i] = s * ofP + c * ofQ;
            }
            const double vectorP = m_vectors[p][i], vectorQ = m_vectors[q][i];
            m_vectors[p][i] = c * vectorP - s * vectorQ;
            m_vectors[q][i] = s * vectorP + c * vectorQ;
        }
    }

    double (&m_matrix)[9][9];
    double m_vectors[9][9] = {}; // in rows
    int m_order[9];
};

double determinant(const double (&m)[9])
{
    return m[0] * (m[4] * m[8] - m[5] * m[7]) - m[1] * (m[3] * m[8] - m[5] * m[6]) + m[2] * (m[3] * m[7] - m[4] * m[6]);
}

// Stores the homography that is n, whose squares add up to 1, between the normalised points; or nothing when that is
// singular.
bool storeHomography(const double (&n)[9], const Similarities& similarities, float* homography)
{
    if (!(std::fabs(determinant(n)) > 0x1p-30))
        return false;
    const Similarity &src = similarities.src, &dst = similarities.dst;
    double h[9];
    for (int row = 0; row < 3; ++row) {
        const double* const of = n + 3 * row;
        double* const to = h + 3 * row;
        to[0] = of[0] * src.scale;
        to[1] = of[1] * src.scale;
        to[2] = of[2] - (to[0] * src.centre[0] + to[1] * src.centre[1]);
    }
    for (int column = 0; column < 3; ++column) {
        h[column] = h[column] / dst.scale + dst.centre[0] * h[6 + column];
        h[3 + column] = h[3 + column] / dst.scale + dst.centre[1] * h[6 + column];
    }
    const double largest = *std::max_element(h, h + 9, [](double a, double b) { return std::fabs(a) < std::fabs(b); });
    const double unit = std::fabs(h[8]) > 0x1p-20 * std::fabs(largest) ? h[8] : largest;
    for (double& element : h)
        element /= unit;
    return storeFinite(h, homography);
}

bool fitHomography(const rvkaCorrespondences& pairs, float* homography)
{
    const uint32_t chosen = countChosen(pairs);
    if (chosen < 4)
        return false;
    const Similarities similarities = similaritiesOf(pairs, chosen);
    if (!similarities.areFinite)
        return false;
    double matrix[9][9];
    NormalMatrix(pairs, similarities).store(matrix);
    const Eigensystem eigensystem(matrix);
    return eigensystem.value(1) > 0x1p-40 * eigensystem.value(8) &&
           storeHomography(eigensystem.vector(0), similarities, homography);
}

} // namespace

rvkStatus rvkGeomHomographyFitf32C(const rvkaCorrespondences* pairs, float32_t* homography)
{
    return fitHomography(*pairs, homography) ? RAVIK_SUCCESS : RAVIK_EFAIL;
}

rvkStatus rvkGeomHomographyFitf32_v2C(const float32_t* src, uint32_t srcStride, const float32_t* dst,
                                      uint32_t dstStride, uint32_t count, const uint8_t* mask, float32_t* homography)
{
    return fitHomography({src, srcStride, dst, dstStride, count, mask}, homography) ? RAVIK_SUCCESS : RAVIK_EFAIL;
}

// ---- a fit to most pairs --------------------------------------------------------------------------------------------

namespace {

// Four pairs, as they are fitted again and again.
class Sample
{
public:
    Sample(const rvkaCorrespondences& packed, const uint32_t (&numbers)[4])
    {
        for (size_t i = 0; i < 4; ++i) {
            std::copy_n(packed.src + 2 * size_t{numbers[i]}, 2, m_src + 2 * i);
            std::copy_n(packed.dst + 2 * size_t{numbers[i]}, 2, m_dst + 2 * i);
        }
    }

    // What fitHomography gives, but for roundings.
    //
    // The homography through four pairs is the product of the one to dst and that from src of the basis of the plane, up
    // to its sign the vector of minors of the eight equations. So its squares add up to the product of all eigenvalues
    // of the normal matrix but the smallest, which is 0. The largest is at most the trace, and the product of seven
    // that of seven means of it at most: where the second smallest is not seen to be large enough by that, the
    // eigenvalues are looked at.
    bool fit(float* homography) const
    {
        const rvkaCorrespondences pairs = {m_src, 2 * sizeof(float), m_dst, 2 * sizeof(float), 4, nullptr};
        const Similarities similarities = similaritiesOf(pairs, 4);
        if (!similarities.areFinite)
            return false;
        const Corners src(m_src, similarities.src), dst(m_dst, similarities.dst);
        double map[9];
        connect(src, dst, map);
        double squares = 0, trace = 0;
        for (const double element : map)
            squares += element * element;
        for (int i = 0; i < 4; ++i)
            trace += (src.squared(i) + 1) * (dst.squared(i) + 2);
        const double mean = trace / 7, cube = mean * mean * mean;
        if (!(squares > 0x1p-40 * trace * cube * cube * mean))
            return fitHomography(pairs, homography);
        const double length = std::sqrt(squares);
        for (double& element : map)
            element /= length;
        return storeHomography(map, similarities, homography);
    }

private:
    // The normalised points of one side.
    struct Corners
    {
        double x[4], y[4];

        Corners(const float* points, const Similarity& similarity)
        {
            for (int i = 0; i < 4; ++i) {
                x[i] = (points[2 * i] - similarity.centre[0]) * similarity.scale;
                y[i] = (points[2 * i + 1] - similarity.centre[1]) * similarity.scale;
            }
        }
        double squared(int i) const { return x[i] * x[i] + y[i] * y[i]; }
        // Twice the area of a triangle.
        double area(int a, int b, int c) const { return (x[b] - x[a]) * (y[c] - y[a]) - (y[b] - y[a]) * (x[c] - x[a]); }
        // The weights with which the first three add up to the fourth.
        void weigh(double (&weights)[3]) const
        {
            weights[0] = area(1, 2, 3);
            weights[1] = -area(0, 2, 3);
            weights[2] = area(0, 1, 3);
        }
    };

    // The columns of dst's basis by the rows of the inverse of src's, times its determinant.
    static void connect(const Corners& src, const Corners& dst, double (&map)[9])
    {
        double srcWeights[3], dstWeights[3];
        src.weigh(srcWeights);
        dst.weigh(dstWeights);
        std::fill_n(map, 9, 0.0);
        for (int i = 0; i < 3; ++i) {
            const int a = (i + 1) % 3, b = (i + 2) % 3; // the line through the other two
            const double weight = dstWeights[i] * srcWeights[a] * srcWeights[b];
            const double line[] = {src.y[a] - src.y[b], src.x[b] - src.x[a], src.x[a] * src.y[b] - src.x[b] * src.y[a]};
            for (int column = 0; column < 3; ++column) {
                const double element = weight * line[column];
                map[column] += dst.x[i] * element;
                map[3 + column] += dst.y[i] * element;
                map[6 + column] += element;
            }
        }
    }

    float m_src[8], m_dst[8];
};

// xorshift32, and numbers below n by it.
class Sampler
{
public:
    Sampler(uint32_t seed, uint32_t n) : m_state(seed ? seed : 1), m_n(n) {}

    // Four different numbers.
    void draw(uint32_t (&numbers)[4])
    {
        for (int drawn = 0; drawn < 4;) {
            numbers[drawn] = next();
            if (std::find(numbers, numbers + drawn, numbers[drawn]) == numbers + drawn)
                ++drawn;
        }
    }

private:
    uint32_t next()
    {
        m_state ^= m_state << 13;
        m_state ^= m_state >> 17;
        m_state ^= m_state << 5;
        return static_cast<uint32_t>(uint64_t{m_state} * m_n >> 32);
    }

    uint32_t m_state;
    const uint32_t m_n;
};

// The square of the square of ... by squaring, so that it has the same bits everywhere.
double power(double base, uint32_t exponent)
{
    double result = 1;
    for (; exponent; exponent >>= 1) {
        if (exponent & 1)
            result *= base;
        base *= base;
    }
    return result;
}

// Whether so many samples had one of inliers alone, with this confidence.
bool isConfident(uint32_t iterations, uint32_t inliers, uint32_t n, double confidence)
{
    const double part = static_cast<double>(inliers) / n;
    return confidence < 1 && inliers && power(1 - part * part * part * part, iterations) <= 1 - confidence;
}

struct Model
{
    float homography[9];
    uint32_t inliers = 0;
};

// The model with the most inliers among those of samples.
Model searchSamples(const rvkaCorrespondences& packed, const RobustSearch& search)
{
    constexpr uint32_t mostFailures = 1000;
    Sampler sampler(search.seed, packed.count);
    Model best;
    uint32_t failures = 0;
    for (uint32_t i = 0; i < search.maxIterations && failures < mostFailures; ++i) {
        if (isConfident(i, best.inliers, packed.count, search.confidence))
            break;
        uint32_t numbers[4];
        sampler.draw(numbers);
        Model model;
        if (!Sample(packed, numbers).fit(model.homography)) {
            ++failures;
            continue;
        }
        failures = 0;
        model.inliers = search.countInliers(packed, model.homography, search.maxSquaredError, best.inliers, nullptr);
        if (model.inliers > best.inliers)
            best = model;
    }
    return best;
}

// Fits all inliers, again and again while their set changes and does not shrink. `inliers` has that of the model then;
// `others` is memory for another.
void refine(const rvkaCorrespondences& packed, const RobustSearch& search, Model& best, uint8_t* inliers,
            uint8_t* others)
{
    const auto select = [&](Model& model, uint8_t* set) {
        model.inliers = search.countInliers(packed, model.homography, search.maxSquaredError, 0, set);
    };
    select(best, inliers);
    rvkaCorrespondences chosen = packed;
    chosen.mask = inliers;
    for (int round = 0; round < 10; ++round) {
        Model model;
        if (!fitHomography(chosen, model.homography))
            return;
        select(model, others);
        if (model.inliers < best.inliers)
            return;
        best = model;
        if (memcmp(inliers, others, packed.count) == 0)
            return;
        std::copy_n(others, packed.count, inliers);
    }
}

} // namespace

rvkStatus fitRobustly(const rvkaCorrespondences& pairs, const RobustSearch& search, float32_t* homography,
                      uint8_t* inliers, uint32_t* numInliers)
{
    const uint32_t chosen = countChosen(pairs);
    if (chosen < 4)
        return RAVIK_EFAIL;
    const Scratch<float> points(chosen, 4);
    const Scratch<uint8_t> sets(chosen, 2);
    if (!points || !sets)
        return RAVIK_ENORES;
    const rvkaCorrespondences packed = {
        points.get(), 2 * sizeof(float), points.get() + size_t{2} * chosen, 2 * sizeof(float), chosen, nullptr};
    float *src = points.get(), *dst = points.get() + size_t{2} * chosen;
    forEachChosen(pairs, [&](const float* from, const float* to) {
        src = std::copy_n(from, 2, src);
        dst = std::copy_n(to, 2, dst);
    });

    Model best = searchSamples(packed, search);
    if (best.inliers == 0)
        return RAVIK_EFAIL;
    refine(packed, search, best, sets.get(), sets.get() + chosen);

    std::copy_n(best.homography, 9, homography);
    if (numInliers)
        *numInliers = best.inliers;
    for (size_t i = 0, k = 0; inliers && i < pairs.count; ++i)
        inliers[i] = isChosen(pairs, i) ? sets[k++] : 0;
    return RAVIK_SUCCESS;
}

namespace {

uint32_t countInliers(const rvkaCorrespondences& packed, const float* homography, float maxSquaredError, uint32_t,
                      uint8_t* inliers)
{
    return evaluate(homographySquaredError, packed, homography, maxSquaredError, nullptr, inliers);
}

} // namespace

rvkStatus rvkGeomHomographyRobustFitf32C(const rvkaCorrespondences* pairs, float32_t maxSquaredError,
                                         uint32_t maxIterations, float32_t confidence, uint32_t seed,
                                         float32_t* homography, uint8_t* inliers, uint32_t* numInliers)
{
    return fitRobustly(*pairs, {maxSquaredError, maxIterations, confidence, seed, countInliers}, homography, inliers,
                       numInliers);
}

} // namespace rvk

#include "forms/ravikGeometryForms.h"
