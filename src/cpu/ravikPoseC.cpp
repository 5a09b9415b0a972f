// C references of poses.
#include "cpu/correspondences.h"
#include "cpu/finite.h"
#include "cpu/ravikCameraC.h"
#include "functions.h"

#include <ravik/pose.h>

#include <algorithm>
#include <cmath>

namespace rvk {

namespace {

struct Vector
{
    double x, y, z;
};

Vector operator+(Vector a, Vector b)
{
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
Vector operator-(Vector a, Vector b)
{
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
Vector operator*(double factor, Vector a)
{
    return {factor * a.x, factor * a.y, factor * a.z};
}
double dot(Vector a, Vector b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
Vector cross(Vector a, Vector b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
double length(Vector a)
{
    return std::sqrt(dot(a, a));
}
Vector unit(Vector a)
{
    return 1 / length(a) * a;
}

Vector rowOf(const PoseMatrix& pose, int row)
{
    return {pose.m[row][0], pose.m[row][1], pose.m[row][2]};
}
Vector translationOf(const PoseMatrix& pose)
{
    return {pose.m[0][3], pose.m[1][3], pose.m[2][3]};
}
Vector transformed(const PoseMatrix& pose, Vector point)
{
    return Vector{dot(rowOf(pose, 0), point), dot(rowOf(pose, 1), point), dot(rowOf(pose, 2), point)} +
           translationOf(pose);
}

bool storeFinite(const PoseMatrix& pose, float* dst)
{
    return rvk::storeFinite(pose.m[0], 12, dst);
}

// ---- residuals ------------------------------------------------------------------------------------------------------

// A pair as a pose sees it.
struct Seen
{
    Vector q;             // the point before the camera
    double x, y;          // where it is seen
    double right, bottom; // how far from where it is
    bool isInFront;       // and finite

    double squaredDistance() const { return right * right + bottom * bottom; }
};

Seen see(const rvkaCorrespondences& pairs, uint32_t i, const PoseMatrix& pose)
{
    const float *const from = srcOf(pairs, i), *const to = dstOf(pairs, i);
    Seen seen;
    seen.q = transformed(pose, {from[0], from[1], from[2]});
    seen.x = seen.q.x / seen.q.z;
    seen.y = seen.q.y / seen.q.z;
    seen.right = seen.x - to[0];
    seen.bottom = seen.y - to[1];
    seen.isInFront = seen.q.z > 0 && std::fabs(seen.right) <= kLargestFloat && std::fabs(seen.bottom) <= kLargestFloat;
    return seen;
}

} // namespace

rvkStatus rvkGeomPoseEvaluateErrorf32C(const rvkaCorrespondences* pairs, const float32_t* pose, float32_t* residuals,
                                       float32_t* meanSquaredError)
{
    const PoseMatrix matrix(pose);
    double sum = 0;
    uint32_t count = 0;
    for (uint32_t i = 0; i < pairs->count; ++i) {
        const Seen seen = see(*pairs, i, matrix);
        if (residuals) {
            residuals[2 * size_t{i}] = seen.isInFront ? static_cast<float>(seen.right) : INFINITY;
            residuals[2 * size_t{i} + 1] = seen.isInFront ? static_cast<float>(seen.bottom) : INFINITY;
        }
        if (isChosen(*pairs, i)) {
            sum += seen.isInFront ? seen.squaredDistance() : INFINITY;
            ++count;
        }
    }
    const double mean = count ? sum / count : 0;
    *meanSquaredError = mean <= kLargestFloat ? static_cast<float>(mean) : INFINITY;
    return RAVIK_SUCCESS;
}

// ---- motions --------------------------------------------------------------------------------------------------------

namespace {

// Of a turn by an angle a: sin(a) / a, (1 - cos(a)) / a^2, (a - sin(a)) / a^3.
struct TurnFactors
{
    double sine, cosine, rest;

    explicit TurnFactors(double angle)
    {
        const double square = angle * angle;
        if (angle > 1) {
            sine = std::sin(angle) / angle;
            cosine = (1 - std::cos(angle)) / square;
            rest = (1 - sine) / square;
            return;
        }
        sine = series(square, 1);
        cosine = series(square, 2);
        rest = series(square, 3);
    }

private:
    // 1 / n! - square / (n + 2)! + square^2 / (n + 4)! ...
    static double series(double square, int n)
    {
        double sum = 1; // from the last term on
        for (int k = n + 18; k > n; k -= 2)
            sum = 1 - sum * square / (k * (k - 1));
        return n == 3 ? sum / 6 : sum / n;
    }
};

// Makes the rotation one. Whether that is possible.
bool orthonormalise(PoseMatrix& pose)
{
    constexpr double parallel = 0x1p-40;
    const Vector first = rowOf(pose, 0), second = rowOf(pose, 1);
    const Vector x = unit(first), across = second - dot(second, x) * x;
    if (!(length(across) > parallel * length(second)))
        return false;
    const Vector y = unit(across), z = cross(x, y);
    const Vector rows[] = {x, y, z};
    for (int i = 0; i < 3; ++i) {
        pose.m[i][0] = rows[i].x;
        pose.m[i][1] = rows[i].y;
        pose.m[i][2] = rows[i].z;
    }
    return true;
}

// exp(xi) * pose.
bool moved(const PoseMatrix& pose, const double (&xi)[6], PoseMatrix& result)
{
    const Vector v = {xi[0], xi[1], xi[2]}, w = {xi[3], xi[4], xi[5]};
    const TurnFactors factors(length(w));
    const auto turned = [&](Vector a) { // by Rodrigues' formula
        return a + factors.sine * cross(w, a) + factors.cosine * cross(w, cross(w, a));
    };
    for (int column = 0; column < 4; ++column) {
        Vector a = turned({pose.m[0][column], pose.m[1][column], pose.m[2][column]});
        if (column == 3)
            a = a + v + factors.cosine * cross(w, v) + factors.rest * cross(w, cross(w, v));
        result.m[0][column] = a.x;
        result.m[1][column] = a.y;
        result.m[2][column] = a.z;
    }
    return orthonormalise(result);
}

} // namespace

rvkStatus rvkGeomPoseUpdatef32C(const float32_t* pose, const float32_t* xi, float32_t* updated)
{
    double motion[6];
    std::copy_n(xi, 6, motion);
    PoseMatrix result(pose);
    return moved(PoseMatrix(pose), motion, result) && storeFinite(result, updated) ? RAVIK_SUCCESS : RAVIK_EFAIL;
}

// ---- the method of Gauss and Newton ---------------------------------------------------------------------------------

namespace {

// The loss of a squared residual, and the weight that makes its square have the loss's derivative.
struct Loss
{
    double value, weight;

    Loss(double squaredDistance, double huber) : value(squaredDistance / 2), weight(1)
    {
        if (squaredDistance <= huber * huber)
            return;
        const double distance = std::sqrt(squaredDistance);
        value = huber * (distance - huber / 2);
        weight = huber / distance;
    }
};

// The sum of losses; +infinity when a point is not in front.
double costOf(const rvkaCorrespondences& pairs, const PoseMatrix& pose, double huber)
{
    double sum = 0;
    for (uint32_t i = 0; i < pairs.count; ++i) {
        if (!isChosen(pairs, i))
            continue;
        const Seen seen = see(pairs, i, pose);
        if (!seen.isInFront)
            return INFINITY;
        sum += Loss(seen.squaredDistance(), huber).value;
    }
    return sum;
}

// The equations of a step xi: the sums of weight * J^T J and of weight * J^T r, J = d r / d xi.
class NormalEquations
{
public:
    NormalEquations(const rvkaCorrespondences& pairs, const PoseMatrix& pose, double huber)
    {
        for (uint32_t i = 0; i < pairs.count; ++i)
            if (isChosen(pairs, i))
                add(see(pairs, i, pose), huber);
    }

    // By Cholesky's decomposition. Whether there is a solution.
    bool solve(double (&xi)[6])
    {
        constexpr double leastPivot = 0x1p-40; // of the diagonal element
        for (int j = 0; j < 6; ++j) {
            double pivot = m_matrix[j][j];
            for (int k = 0; k < j; ++k)
                pivot -= m_matrix[j][k] * m_matrix[j][k];
            if (!(pivot > leastPivot * m_matrix[j][j]))
                return false;
            m_matrix[j][j] = std::sqrt(pivot);
            for (int i = j + 1; i < 6; ++i) {
                for (int k = 0; k < j; ++k)
                    m_matrix[i][j] -= m_matrix[i][k] * m_matrix[j][k];
                m_matrix[i][j] /= m_matrix[j][j];
            }
        }
        for (int i = 0; i < 6; ++i) {
            xi[i] = -m_vector[i];
            for (int k = 0; k < i; ++k)
                xi[i] -= m_matrix[i][k] * xi[k];
            xi[i] /= m_matrix[i][i];
        }
        for (int i = 5; i >= 0; --i) {
            for (int k = i + 1; k < 6; ++k)
                xi[i] -= m_matrix[k][i] * xi[k];
            xi[i] /= m_matrix[i][i];
        }
        return true;
    }

private:
    void add(const Seen& s, double huber)
    {
        const double weight = Loss(s.squaredDistance(), huber).weight, near = 1 / s.q.z;
        const double across[] = {near, 0, -s.x * near, -s.x * s.y, 1 + s.x * s.x, -s.y};
        const double down[] = {0, near, -s.y * near, -1 - s.y * s.y, s.x * s.y, s.x};
        for (int i = 0; i < 6; ++i) {
            const double a = weight * across[i], d = weight * down[i];
            for (int k = 0; k <= i; ++k)
                m_matrix[i][k] += a * across[k] + d * down[k];
            m_vector[i] += a * s.right + d * s.bottom;
        }
    }

    double m_matrix[6][6] = {}; // the lower triangle
    double m_vector[6] = {};
};

// Halves the step until the cost does not rise and all points stay in front. Whether it could be taken.
bool takeStep(const rvkaCorrespondences& pairs, double huber, double (&xi)[6], PoseMatrix& pose, double& cost)
{
    constexpr int kMostHalvings = 10;
    PoseMatrix next = pose;
    for (int halvings = 0; halvings <= kMostHalvings; ++halvings) {
        if (moved(pose, xi, next)) {
            const double nextCost = costOf(pairs, next, huber);
            if (nextCost <= cost) {
                pose = next;
                cost = nextCost;
                return true;
            }
        }
        for (double& element : xi)
            element /= 2;
    }
    return false;
}

struct PoseSearch
{
    PoseMatrix pose;
    double cost = 0;
    uint32_t steps = 0;
};

// False where the search has no start.
bool search(const rvkaCorrespondences& pairs, double huber, uint32_t maxIterations, double epsilon, PoseSearch& found)
{
    constexpr uint32_t kLeastPairs = 3;
    constexpr double kLeastGain = 0x1p-40; // of the cost
    uint32_t count = 0;
    for (uint32_t i = 0; i < pairs.count; ++i)
        count += isChosen(pairs, i);
    if (count < kLeastPairs || (maxIterations && !orthonormalise(found.pose)))
        return false;
    found.cost = costOf(pairs, found.pose, huber);
    double xi[6];
    if (!(found.cost < INFINITY) || !NormalEquations(pairs, found.pose, huber).solve(xi))
        return false;
    while (found.steps < maxIterations) {
        const double costBefore = found.cost;
        if (!takeStep(pairs, huber, xi, found.pose, found.cost))
            break;
        ++found.steps;
        const double size = std::sqrt(dot({xi[0], xi[1], xi[2]}, {xi[0], xi[1], xi[2]}) +
                                      dot({xi[3], xi[4], xi[5]}, {xi[3], xi[4], xi[5]}));
        if (size <= epsilon || costBefore - found.cost <= kLeastGain * costBefore ||
            !NormalEquations(pairs, found.pose, huber).solve(xi))
            break;
    }
    return true;
}

} // namespace

rvkStatus rvkGeomPoseRefineGNf32C(const rvkaCorrespondences* pairs, const float32_t* pose, uint32_t maxIterations,
                                  float32_t epsilon, float32_t* refined)
{
    PoseSearch found{PoseMatrix(pose)};
    const bool hasPose = search(*pairs, INFINITY, maxIterations, epsilon, found) && storeFinite(found.pose, refined);
    return hasPose ? RAVIK_SUCCESS : RAVIK_EFAIL;
}

rvkStatus rvkGeomPoseOptimizeGNf32C(const rvkaCorrespondences* pairs, float32_t huber, uint32_t maxIterations,
                                    float32_t epsilon, float32_t* pose, float32_t* cost, uint32_t* numIterations)
{
    PoseSearch found{PoseMatrix(pose)};
    if (!search(*pairs, huber, maxIterations, epsilon, found) || found.cost > kLargestFloat ||
        !storeFinite(found.pose, pose))
        return RAVIK_EFAIL;
    if (cost)
        *cost = static_cast<float>(found.cost);
    if (numIterations)
        *numIterations = found.steps;
    return RAVIK_SUCCESS;
}

// ---- poses from three points ----------------------------------------------------------------------------------------

namespace {

// A polynomial of so many coefficients, the constant one first.
template <int size>
struct Polynomial
{
    double c[size];

    double at(double x) const
    {
        double sum = c[size - 1];
        for (int i = size - 2; i >= 0; --i)
            sum = sum * x + c[i];
        return sum;
    }
    Polynomial<size - 1> derivative() const
    {
        Polynomial<size - 1> d;
        for (int i = 1; i < size; ++i)
            d.c[i - 1] = i * c[i];
        return d;
    }
};

// In the order of their size. A polynomial has one less than coefficients, and may come near to 0 as often without one.
struct Roots
{
    double x[8];
    int count = 0;

    void add(double root) { x[count++] = root; }
};

// Between two places of which one has the polynomial below 0 and the other has not.
template <int size>
double rootBetween(const Polynomial<size>& p, const Polynomial<size - 1>& derivative, double low, double high)
{
    constexpr double precision = 0x1p-46;
    const bool isFalling = p.at(high) < 0;
    double x = (low + high) / 2;
    for (int i = 0; i < 60; ++i) {
        const double value = p.at(x);
        ((value < 0) == isFalling ? high : low) = x;
        double next = x - value / derivative.at(x); // by Newton's method, or else by bisection
        if (!(next > low && next < high))
            next = (low + high) / 2;
        const double step = std::fabs(next - x);
        x = next;
        if (step <= precision * x)
            break;
    }
    return x;
}

// The roots between 0 and somewhat above 1: one at most between neighbouring roots of the derivative. With `near` also
// where the polynomial turns around so close to 0 that rounding may have taken two roots away.
template <int size>
Roots smallRoots(const Polynomial<size>& p, bool near)
{
    constexpr double end = 1.0078125, tiny = 0x1p-36;
    Roots roots;
    if constexpr (size == 2) {
        const double root = -p.c[0] / p.c[1];
        if (root >= 0 && root <= end)
            roots.add(root);
    } else {
        const Polynomial<size - 1> derivative = p.derivative();
        Roots turns = smallRoots(derivative, false);
        double magnitude = 0;
        for (const double c : p.c)
            magnitude = std::max(magnitude, std::fabs(c));
        turns.add(end);
        double low = 0, atLow = p.c[0];
        for (int i = 0; i < turns.count; ++i) {
            const double high = turns.x[i], atHigh = p.at(high);
            if ((atLow < 0) != (atHigh < 0))
                roots.add(rootBetween(p, derivative, low, high));
            if (near && std::fabs(atHigh) <= tiny * magnitude)
                roots.add(high);
            low = high;
            atLow = atHigh;
        }
    }
    return roots;
}

// Three points in the world and the rays on which they are seen.
class ThreePoints
{
public:
    ThreePoints(const float* points3D, const float* points2D)
    {
        for (int i = 0; i < 3; ++i) {
            m_points[i] = {points3D[3 * i], points3D[3 * i + 1], points3D[3 * i + 2]};
            m_rays[i] = unit({points2D[2 * i], points2D[2 * i + 1], 1});
        }
        for (int i = 0; i < 3; ++i) {
            const Vector side = m_points[(i + 1) % 3] - m_points[(i + 2) % 3];
            m_squares[i] = dot(side, side);
            m_cosines[i] = dot(m_rays[(i + 1) % 3], m_rays[(i + 2) % 3]);
        }
    }

    bool areOnALine() const
    {
        constexpr double leastHeight = 0x1p-19; // of the longest side
        const double longest = std::max({m_squares[0], m_squares[1], m_squares[2]});
        return !(length(cross(m_points[1] - m_points[0], m_points[2] - m_points[0])) > leastHeight * longest);
    }

    // The distances of the points from the camera.
    struct Distances
    {
        double s[3];

        bool isBefore(const Distances& other) const
        {
            return s[0] != other.s[0] ? s[0] < other.s[0] : s[1] < other.s[1];
        }
    };
    static constexpr int kMost = 4;

    // All of them, in their order. Returns how many.
    int solve(Distances (&found)[kMost]) const
    {
        const Polynomial<5> p = quartic(), reversed = {p.c[4], p.c[3], p.c[2], p.c[1], p.c[0]};
        int count = 0;
        const auto take = [&](Distances distances) {
            const auto isKnown = [&](const Distances& other) { return areEqual(distances, other); };
            if (count == kMost || !polish(distances) || std::any_of(found, found + count, isKnown))
                return;
            int place = count++;
            for (; place > 0 && distances.isBefore(found[place - 1]); --place)
                found[place] = found[place - 1];
            found[place] = distances;
        };
        const Roots small = smallRoots(p, true), large = smallRoots(reversed, true);
        for (int i = 0; i < small.count; ++i)
            tryRatio(small.x[i], take);
        for (int i = 0; i < large.count; ++i)
            if (large.x[i] > 0)
                tryRatio(1 / large.x[i], take);
        return count;
    }

    // The pose for the distances. Its translation is that of the rotation as it will be stored.
    PoseMatrix poseFor(const Distances& distances) const
    {
        Vector seen[3];
        for (int i = 0; i < 3; ++i)
            seen[i] = distances.s[i] * m_rays[i];
        const Frame from(m_points), to(seen);
        float pose[12];
        for (int i = 0; i < 3; ++i)
            for (int k = 0; k < 3; ++k)
                pose[4 * i + k] = static_cast<float>(to.x[i] * from.x[k] + to.y[i] * from.y[k] + to.z[i] * from.z[k]);
        pose[3] = pose[7] = pose[11] = 0;
        PoseMatrix result(pose);
        const Vector t = 1.0 / 3 * (seen[0] + seen[1] + seen[2]) -
                         transformed(result, 1.0 / 3 * (m_points[0] + m_points[1] + m_points[2]));
        result.m[0][3] = t.x;
        result.m[1][3] = t.y;
        result.m[2][3] = t.z;
        return result;
    }

private:
    // Directions along a triangle's side, across it, and upright on both.
    struct Frame
    {
        double x[3], y[3], z[3];

        explicit Frame(const Vector (&points)[3])
        {
            const Vector along = unit(points[1] - points[0]);
            const Vector upright = unit(cross(along, points[2] - points[0])), across = cross(upright, along);
            const auto copy = [](Vector v, double(&to)[3]) { to[0] = v.x, to[1] = v.y, to[2] = v.z; };
            copy(along, x);
            copy(across, y);
            copy(upright, z);
        }
    };

    // Whose roots are the ratios of the third distance to the first, by Grunert in the form of Haralick et al.
    Polynomial<5> quartic() const
    {
        const auto [a, b, c] = m_squares;
        const auto [alpha, beta, gamma] = m_cosines;
        const double m = (a - c) / b, p = (a + c) / b, cb = c / b, ab = a / b;
        return {(1 + m) * (1 + m) - 4 * ab * gamma * gamma,
                4 * (-m * (1 + m) * beta + 2 * ab * gamma * gamma * beta - (1 - p) * alpha * gamma),
                2 * (m * m - 1 + 2 * m * m * beta * beta + 2 * (1 - cb) * alpha * alpha - 4 * p * alpha * beta * gamma +
                     2 * (1 - ab) * gamma * gamma),
                4 * (m * (1 - m) * beta - (1 - p) * alpha * gamma + 2 * cb * alpha * alpha * beta),
                (m - 1) * (m - 1) - 4 * cb * alpha * alpha};
    }

    // Distances for the ratio v of the third to the first, with the ratio u of the second to the first.
    template <class Take>
    void tryRatio(double v, Take take) const
    {
        const auto [a, b, c] = m_squares;
        const auto [alpha, beta, gamma] = m_cosines;
        const double square = 1 + v * v - 2 * v * beta; // of the second side, for a first distance of 1
        const double first = std::sqrt(b / square);
        const auto tryBoth = [&](double u) {
            if (u > 0 && std::isfinite(first) && std::isfinite(u))
                take(Distances{{first, u * first, v * first}});
        };
        const double m = (a - c) / b, divisor = 2 * (gamma - v * alpha);
        if (std::fabs(divisor) > 1e-3 * (1 + v))
            return tryBoth((((m - 1) * v - 2 * m * beta) * v + 1 + m) / divisor);
        // By the third side alone; the first one is looked at when the distances have been polished.
        const double root = std::sqrt(std::max(0.0, gamma * gamma - 1 + c / b * square));
        tryBoth(gamma + root);
        tryBoth(gamma - root);
    }

    // What the law of cosines makes of the distances, less the square of side i.
    double error(const Distances& d, int i) const
    {
        const double p = d.s[(i + 1) % 3], q = d.s[(i + 2) % 3];
        return p * p + q * q - 2 * p * q * m_cosines[i] - m_squares[i];
    }

    // Newton's method for the three laws of cosines. Whether they hold in the end.
    bool polish(Distances& d) const
    {
        constexpr double precision = 0x1p-44;
        for (int step = 0; step < 10; ++step) {
            const double e0 = error(d, 0), e1 = error(d, 1), e2 = error(d, 2);
            // Half the derivative of error i by distance k.
            const auto slope = [&](int i, int k) { return d.s[k] - d.s[3 - i - k] * m_cosines[i]; };
            const double j01 = slope(0, 1), j02 = slope(0, 2), j10 = slope(1, 0), j12 = slope(1, 2), j20 = slope(2, 0),
                         j21 = slope(2, 1);
            const double factor = -0.5 / (j01 * j12 * j20 + j02 * j10 * j21);
            const double step0 = factor * (e0 * -j12 * j21 + e1 * j02 * j21 + e2 * j01 * j12);
            const double step1 = factor * (e0 * j12 * j20 - e1 * j02 * j20 + e2 * j02 * j10);
            const double step2 = factor * (e0 * j10 * j21 + e1 * j01 * j20 - e2 * j01 * j10);
            if (!std::isfinite(step0 + step1 + step2))
                break;
            d = {{d.s[0] + step0, d.s[1] + step1, d.s[2] + step2}};
            if (std::fabs(step0) + std::fabs(step1) + std::fabs(step2) <= precision * std::fabs(d.s[0]))
                break;
        }
        return holds(d);
    }

    // Up to rounding, which counts more the farther the points are away.
    bool holds(const Distances& d) const
    {
        const double farthest = std::max({d.s[0], d.s[1], d.s[2]}), rounding = 0x1p-46 * farthest * farthest;
        for (int i = 0; i < 3; ++i) {
            const double allowed = std::min(0x1p-28 * m_squares[i] + rounding, 0x1p-18 * m_squares[i]);
            if (!(d.s[i] > 0 && std::fabs(error(d, i)) <= allowed))
                return false;
        }
        return true;
    }

    static bool areEqual(const Distances& a, const Distances& b)
    {
        constexpr double tolerance = 1e-5;
        return std::equal(a.s, a.s + 3, b.s, [](double p, double q) { return std::fabs(p - q) <= tolerance * q; });
    }

    Vector m_points[3], m_rays[3];
    double m_squares[3], m_cosines[3]; // of the side that point i is not on, and of the angle it is seen under
};

} // namespace

rvkStatus rvkGeom3PointPoseEstimatef32C(const float32_t* points3D, const float32_t* points2D, float32_t* poses,
                                        uint32_t* numPoses)
{
    if (!areFinite(points3D, 9) || !areFinite(points2D, 6))
        return RAVIK_EFAIL;
    const ThreePoints points(points3D, points2D);
    if (points.areOnALine())
        return RAVIK_EFAIL;
    ThreePoints::Distances distances[ThreePoints::kMost];
    const int count = points.solve(distances);
    float found[12 * ThreePoints::kMost];
    for (int i = 0; i < count; ++i)
        if (!storeFinite(points.poseFor(distances[i]), found + 12 * i))
            return RAVIK_EFAIL;
    std::copy_n(found, 12 * count, poses);
    *numPoses = static_cast<uint32_t>(count);
    return RAVIK_SUCCESS;
}

} // namespace rvk
