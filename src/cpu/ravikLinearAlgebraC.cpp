// Products of vectors and matrices, decompositions and linear equations: the C reference.
#include "functions.h"
#include "image.h"
#include "scratch.h"

#include <bit>
#include <cfloat>
#include <cmath>
#include <optional>
#include <type_traits>
#include <utility>

namespace rvk {

// ---- products -------------------------------------------------------------------------------------------------------

void rvkCrossProduct3x1f32C(const float32_t* a, const float32_t* b, float32_t* dst)
{
    const float product[3] = {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
    std::copy_n(product, 3, dst);
}

namespace {

template <class Sum, class T, class D>
void multiplyMatrices(Plane<const T> src1, uint32_t width1, uint32_t height1, Plane<const T> src2, uint32_t width2,
                      Plane<D> dst)
{
    for (uint32_t y = 0; y < height1; ++y)
        for (uint32_t x = 0; x < width2; ++x) {
            Sum sum = 0;
            for (uint32_t k = 0; k < width1; ++k)
                sum += static_cast<Sum>(src1.row(y)[k] * src2.row(k)[x]);
            dst.row(y)[x] = static_cast<D>(sum);
        }
}

} // namespace

rvkStatus rvkMatrixMultiplyf32C(const float32_t* src1, uint32_t width1, uint32_t height1, uint32_t stride1,
                                const float32_t* src2, uint32_t width2, uint32_t stride2, float32_t* dst,
                                uint32_t dstStride)
{
    multiplyMatrices<float>(Plane{src1, stride1}, width1, height1, Plane{src2, stride2}, width2, Plane{dst, dstStride});
    return RAVIK_SUCCESS;
}

rvkStatus rvkMatrixMultiplys8s32C(const int8_t* src1, uint32_t width1, uint32_t height1, uint32_t stride1,
                                  const int8_t* src2, uint32_t width2, uint32_t stride2, int32_t* dst,
                                  uint32_t dstStride)
{
    multiplyMatrices<uint32_t>(Plane{src1, stride1}, width1, height1, Plane{src2, stride2}, width2,
                               Plane{dst, dstStride});
    return RAVIK_SUCCESS;
}

// ---- what all that follows is made of -------------------------------------------------------------------------------
//
// Small matrices take longer to walk than to compute with. So loops over rows take pairs of elements, or steps of four,
// and begin where one begins: they may touch what is no longer, or not yet, used. What they load soon is stored in
// pairs, too: a pair of elements that have just been stored one by one could not be loaded yet. Algorithms do not own
// their memory, so that compilers keep what else they are made of in registers.

namespace {

constexpr size_t kStep = 4;

constexpr size_t wholeSteps(size_t count)
{
    return (count + kStep - 1) / kStep * kStep;
}

// A matrix of doubles by rows, not initialised: small ones lie here, which a call of nanoseconds is glad of, others in
// scratch memory. Test it before use.
class Matrix
{
public:
    Matrix(uint64_t rows, uint64_t columns) : m_rowSize(wholeSteps(columns)), m_data(m_small)
    {
        if (rows * m_rowSize > kSmall)
            m_data = m_large.emplace(rows, m_rowSize).get();
    }
    explicit operator bool() const { return m_data != nullptr; }
    double* row(size_t i) const { return m_data + i * m_rowSize; }
    size_t rowSize() const { return m_rowSize; }

private:
    static constexpr size_t kSmall = 12 * (12 + 12); // for 12 singular values, or 12 equations
    const size_t m_rowSize;
    double* m_data;
    std::optional<Scratch<double>> m_large;
    alignas(16) double m_small[kSmall];
};

// The largest magnitude of elements, and whether all are finite. Magnitudes of floats are ordered as their bits are.
class Largest
{
public:
    double take(float element)
    {
        m_bits = std::max(m_bits, std::bit_cast<uint32_t>(element) & INT32_MAX);
        return element;
    }
    bool isFinite() const { return m_bits <= std::bit_cast<uint32_t>(FLT_MAX); }
    double value() const { return std::bit_cast<float>(m_bits); }

private:
    uint32_t m_bits = 0;
};

// What a pivot of a matrix of n columns must be larger than.
double boundOfPivots(uint32_t n, double largest)
{
    return n * 0x1p-48 * largest;
}

bool fitFloats(const double* values, size_t count)
{
    bool fit = true;
    for (size_t i = 0; i < count; ++i)
        fit &= std::fabs(values[i]) <= FLT_MAX;
    return fit;
}

// Half a step: the compilers make of it what the target has. All pairs are aligned.
using Pair __attribute__((vector_size(2 * sizeof(double)), may_alias)) = double;

Pair& pairAt(double* row, size_t i)
{
    return *reinterpret_cast<Pair*>(row + i);
}
const Pair& pairAt(const double* row, size_t i)
{
    return *reinterpret_cast<const Pair*>(row + i);
}

Pair larger(Pair a, Pair b)
{
    return a > b ? a : b;
}

struct Multiple
{
    double factor;
    const double* row;
};

// Subtracts one multiple after the other from a row, from an element on.
template <class... Multiples>
void subtract(double* from, size_t first, size_t end, Multiples... multiples)
{
    if (end <= kStep) {
        for (size_t i = first; i < end; ++i)
            ((from[i] -= multiples.factor * multiples.row[i]), ...);
        return;
    }
#pragma GCC unroll 1
    for (size_t i = first / 2 * 2; i < end; i += 2) {
        Pair rest = pairAt(from, i);
        ((rest -= multiples.factor * pairAt(multiples.row, i)), ...);
        pairAt(from, i) = rest;
    }
}

// Of whole steps.
double dot(const double* a, const double* b, size_t count)
{
    Pair sums = {}, others = {};
    for (size_t i = 0; i < count; i += kStep) {
        sums += pairAt(a, i) * pairAt(b, i);
        others += pairAt(a, i + 2) * pairAt(b, i + 2);
    }
    sums += others;
    return sums[0] + sums[1];
}

// solve(size) with the number of equations or singular values as a constant where that pays: three equations take half
// of the time then. With 0 otherwise.
template <class Solve>
rvkStatus bySize(uint32_t n, Solve solve)
{
    switch (n) {
    case 2:
        return solve(std::integral_constant<uint32_t, 2>{});
    case 3:
        return solve(std::integral_constant<uint32_t, 3>{});
    case 4:
        return solve(std::integral_constant<uint32_t, 4>{});
    default:
        return solve(std::integral_constant<uint32_t, 0>{});
    }
}

// ---- singular values ------------------------------------------------------------------------------------------------
//
// The columns of A, or its rows where they are fewer, are the vectors. Rotations of pairs of them make them orthogonal:
// rotations * A = diag(w) * directions.
//
// Rotations are those of M. Gentleman, "Least Squares Computations by Givens Transformations Without Square Roots",
// 1973: each vector is to be multiplied by the root of a weight, which takes the cosines. So a rotation has half of the
// products, and the next one need not wait for the root that the cosine is.
//
// There is code of its own for as many as `fixed` vectors of as many elements, if that is not 0.
template <uint32_t fixed>
class SingularValues
{
public:
    // k vectors of `length` elements, which is no less than k. In k rows of wholeSteps(length) + k elements; the values
    // and weights are in two rows of k.
    SingularValues(uint32_t k, uint32_t length, const Matrix& rows, const Matrix& values)
        : m_k(k), m_length(length), m_rows(rows.row(0)), m_values(values.row(0)), m_weights(values.row(1))
    {
    }

    double* vector(size_t i) const { return m_rows + i * rowSize(); }
    double* rotation(size_t i) const { return vector(i) + vectorSize(); }
    double value(size_t i) const { return m_values[i]; }

    // False when it does not come to an end.
    bool find()
    {
        for (uint32_t i = 0; i < count(); ++i) {
            std::fill(vector(i) + length(), vector(i) + rowSize(), 0.0);
            rotation(i)[i] = 1;
            m_weights[i] = 1;
        }
        constexpr int mostSweeps = 60;
        for (int sweep = 0; sweep < mostSweeps; ++sweep)
            if (rotateAllPairs()) {
                order();
                return true;
            }
        return false;
    }

    // Makes the vectors directions. Those that are nothing but rounding errors of the others are made anew.
    void normalise()
    {
        for (uint32_t i = 0; i < count(); ++i) {
            if (value(i) > 0)
                scale(vector(i), 1 / value(i));
            if (!(value(i) > kNoise * value(0)) && !standsOut(i))
                findAnother(i);
        }
    }

private:
    static constexpr double kOrthogonal = 0x1p-22; // cosines of pairs at the end
    static constexpr double kNegligible = 0x1p-25; // of those that are not rotated
    static constexpr double kNoise = 0x1p-44;

    struct Rotation
    {
        uint32_t i, j;
        double ofSecond, ofFirst; // what is subtracted from the first vector, and added to the second
    };

    uint32_t count() const { return fixed ? fixed : m_k; }
    uint32_t length() const { return fixed ? fixed : m_length; }
    size_t vectorSize() const { return wholeSteps(length()); }
    size_t rowSize() const { return vectorSize() + wholeSteps(count()); }

    // During the sweeps the values are squares.
    double& square(size_t i) { return m_values[i]; }

    double product(size_t i, size_t j) const { return dot(vector(i), vector(j), vectorSize()); }

    // Whether all were orthogonal. Pairs follow each other as in a tournament, so that those of a round have nothing to
    // do with each other: several angles are computed before the first rotation, and do not wait for each other.
    bool rotateAllPairs()
    {
        double largest = 0;
        for (uint32_t i = 0; i < count(); ++i) {
            square(i) = m_weights[i] * product(i, i);
            largest = std::max(largest, square(i));
        }
        const double negligible = kNoise * kNoise * largest;
        const uint32_t rounds = (count() - 1) | 1; // an odd number of vectors leaves one out in each
        bool isOrthogonal = true;
        for (uint32_t round = 0; round < rounds; ++round) {
            uint32_t up = round, down = rounds; // the last one stays, those of the others go around
            for (uint32_t pair = 0; pair <= rounds / 2;) {
                constexpr size_t most = 8;
                Rotation rotations[most];
                size_t found = 0;
                for (; pair <= rounds / 2 && found < most; ++pair) {
                    if (std::max(up, down) < count())
                        isOrthogonal &=
                            addRotation(std::min(up, down), std::max(up, down), negligible, rotations, found);
                    if (pair == 0)
                        down = round;
                    up = up + 1 < rounds ? up + 1 : 0;
                    down = down > 0 ? down - 1 : rounds - 1;
                }
                for (size_t i = 0; i < found; ++i)
                    rotate(rotations[i]);
            }
        }
        return isOrthogonal;
    }

    // Adds the rotation that makes a pair orthogonal to the list, unless it is already, or one of the two is negligible
    // and it is no matter which way that points. Whether the pair was orthogonal enough for the end.
    bool addRotation(uint32_t i, uint32_t j, double negligible, Rotation* list, size_t& found)
    {
        // Rutishauser's formulas: the smaller one of the two angles.
        const double common = product(i, j), weights = m_weights[i] * m_weights[j], squares = square(i) * square(j);
        const double half = 0.5 * (square(j) - square(i)), squareOfCommon = common * weights * common;
        const bool isNeeded =
            (std::min(square(i), square(j)) > negligible) & (squareOfCommon > kNegligible * kNegligible * squares);
        const double adjacent = std::fabs(half) + std::sqrt(half * half + squareOfCommon);
        const double factor = isNeeded ? std::copysign(1.0, half) * common / adjacent : 0;
        list[found] = {i, j, factor * m_weights[j], factor * m_weights[i]};
        found += isNeeded;

        const double shift = factor * common * weights, squareOfCosine = 1 / (1 + factor * factor * weights);
        square(i) -= shift;
        square(j) += shift;
        m_weights[i] *= squareOfCosine;
        m_weights[j] *= squareOfCosine;
        return !isNeeded | (squareOfCommon <= kOrthogonal * kOrthogonal * squares);
    }

    void rotate(const Rotation& by)
    {
        double *const a = vector(by.i), *const b = vector(by.j);
        for (size_t i = 0; i < rowSize(); i += 2) {
            const Pair first = pairAt(a, i), second = pairAt(b, i);
            pairAt(a, i) = first - by.ofSecond * second;
            pairAt(b, i) = second + by.ofFirst * first;
        }
        for (const uint32_t i : {by.i, by.j})
            if (m_weights[i] < 0x1p-128)
                multiply(i);
    }

    // By the root of its weight.
    void multiply(uint32_t i)
    {
        const double root = std::sqrt(m_weights[i]);
        for (size_t x = 0; x < rowSize(); x += 2)
            pairAt(vector(i), x) *= root;
        m_weights[i] = 1;
    }

    void order()
    {
        for (uint32_t i = 0; i < count(); ++i) {
            multiply(i);
            square(i) = std::sqrt(product(i, i));
        }
        for (uint32_t i = 0; i + 1 < count(); ++i) {
            uint32_t longest = i;
            for (uint32_t j = i + 1; j < count(); ++j)
                longest = value(j) > value(longest) ? j : longest;
            if (longest == i)
                continue;
            std::swap_ranges(vector(i), vector(i) + rowSize(), vector(longest));
            std::swap(square(i), square(longest));
        }
    }

    void scale(double* vector, double factor) const
    {
        for (uint32_t i = 0; i < length(); ++i)
            vector[i] *= factor;
    }

    // Takes away from a direction what it has of those before it, and makes what is left one. False when too little is:
    // the squares of what is left of the axes have a sum of 1 or more while a direction is missing.
    bool standsOut(uint32_t i) const
    {
        subtractThoseBefore(i);
        const double left = product(i, i);
        if (!(left * length() >= 0.5))
            return false;
        scale(vector(i), 1 / std::sqrt(left));
        subtractThoseBefore(i); // the rounding errors
        return true;
    }

    void subtractThoseBefore(uint32_t i) const
    {
        for (uint32_t j = 0; j < i; ++j)
            subtract(vector(i), 0, vectorSize(), Multiple{product(i, j), vector(j)});
    }

    // The first axis that stands out.
    void findAnother(uint32_t i) const
    {
        for (uint32_t axis = 0; axis < length(); ++axis) {
            std::fill_n(vector(i), length(), 0.0);
            vector(i)[axis] = 1;
            if (standsOut(i))
                return;
        }
    }

    const uint32_t m_k, m_length;
    double *const m_rows, *const m_values, *const m_weights;
};

// 1, or -1 for a row of Vt whose first element of largest magnitude is negative as it will be stored.
double signOf(const double* row, uint32_t width)
{
    float largest = 0;
    for (uint32_t x = 0; x < width; ++x)
        if (const auto element = static_cast<float>(row[x]); std::fabs(element) > std::fabs(largest))
            largest = element;
    return largest < 0 ? -1 : 1;
}

} // namespace

rvkStatus rvkSVDf32C(const float32_t* A, uint32_t width, uint32_t height, uint32_t aStride, float32_t* w, float32_t* U,
                     uint32_t uStride, float32_t* Vt, uint32_t vtStride)
{
    const bool isTall = height >= width;
    const uint32_t k = std::min(width, height), length = std::max(width, height);
    return bySize(width == height ? width : 0, [&](auto size) {
        const Matrix rows(k, wholeSteps(length) + uint64_t{k}), values(2, k);
        if (!rows || !values)
            return RAVIK_ENORES;
        SingularValues<size> found(k, length, rows, values);
        Largest largest;
        for (uint32_t y = 0; y < height; ++y)
            for (uint32_t x = 0; x < width; ++x)
                (isTall ? found.vector(x)[y] : found.vector(y)[x]) = largest.take(Plane{A, aStride}.row(y)[x]);
        if (!largest.isFinite() || !found.find() || found.value(0) > FLT_MAX)
            return RAVIK_EFAIL;
        found.normalise();
        for (uint32_t i = 0; i < k; ++i) {
            const double* const left = isTall ? found.vector(i) : found.rotation(i);
            const double* const right = isTall ? found.rotation(i) : found.vector(i);
            const double sign = signOf(right, width);
            w[i] = static_cast<float>(found.value(i));
            for (uint32_t y = 0; U && y < height; ++y)
                Plane{U, uStride}.row(y)[i] = static_cast<float>(sign * left[y]);
            for (uint32_t x = 0; Vt && x < width; ++x)
                Plane{Vt, vtStride}.row(i)[x] = static_cast<float>(sign * right[x]);
        }
        return RAVIK_SUCCESS;
    });
}

// ---- equations ------------------------------------------------------------------------------------------------------

namespace {

// For the largest magnitude of several, without a branch: where it is cannot be foreseen.
struct Search
{
    uint32_t where;
    double largest = 0;

    explicit Search(uint32_t first) : where(first) {}
    void take(uint32_t i, double element)
    {
        const double magnitude = std::fabs(element);
        where = magnitude > largest ? i : where;
        largest = std::max(largest, magnitude);
    }
};

// n equations: rows of A, each followed by its element of b; then the number of each unknown, and the solution. Of
// symmetric matrices only what is from the diagonal on is used; the lower triangle is turned there.
//
// There is code of its own for as many as `fixed`, if that is not 0.
template <uint32_t fixed>
class Equations
{
public:
    // In n + 2 rows of n + 1 elements.
    Equations(uint32_t n, const Matrix& rows) : m_n(n), m_rowSize(rows.rowSize()), m_rows(rows.row(0)) {}

    // False when something is not finite.
    bool take(Plane<const float> a, const float* b)
    {
        const uint32_t n = count();
        Largest left, right;
        double* to = row(0);
        for (uint32_t i = 0; i < n; ++i, to += rowSize()) {
            const float* const from = a.row(i);
            uint32_t j = 0;
            for (; j + 2 <= n; j += 2)
                pairAt(to, j) = Pair{left.take(from[j]), left.take(from[j + 1])};
            const double last = right.take(b[i]);
            pairAt(to, j) = j < n ? Pair{left.take(from[j]), last} : Pair{last, 0};
        }
        m_bound = boundOfPivots(n, left.value());
        return left.isFinite() && right.isFinite();
    }
    bool takeSymmetric(Plane<const float> a, const float* b)
    {
        const uint32_t n = count();
        Largest left, right;
        for (uint32_t i = 0; i < n; ++i) {
            const float* const from = a.row(i);
            double* to = row(0) + i;
            for (uint32_t j = 0; j <= i; ++j, to += rowSize())
                *to = left.take(from[j]);
            if (i % 2) // what else there is in the first pair and the last
                row(i)[i - 1] = 0;
            const double last = right.take(b[i]);
            row(i)[n / 2 * 2 + 1] = n % 2 ? last : 0;
            row(i)[n] = last;
        }
        m_bound = boundOfPivots(n, left.value());
        return left.isFinite() && right.isFinite();
    }

    // These make the matrix one of zeros below the diagonal, which becomes its reciprocals; false when it is singular.
    // Two unknowns are taken out of all rows at a time, for walking rows takes longer than computing with them; but one
    // by one where there is code for as many.
    bool eliminate()
    {
        for (uint32_t k = 0; k < count(); k += fixed ? 1 : 2) {
            double* const pivot = row(k);
            Search search(k);
            for (uint32_t i = k; i < count(); ++i)
                search.take(i, row(i)[k]);
            if (!(search.largest > m_bound))
                return false;
            if (search.where != k)
                std::swap_ranges(pivot + k, pivot + count() + 1, row(search.where) + k);
            const double reciprocal = 1 / pivot[k];
            if (fixed || k + 1 == count()) {
                for (uint32_t i = k + 1; i < count(); ++i)
                    subtract(row(i), k + 1, count() + 1, Multiple{row(i)[k] * reciprocal, pivot});
                pivot[k] = reciprocal;
            } else if (!eliminateWithNext(k, reciprocal)) {
                return false;
            }
        }
        return true;
    }
    bool eliminateDefinite()
    {
        for (uint32_t k = 0; k < count(); ++k) {
            if (!(row(k)[k] > m_bound))
                return false;
            if (fixed || k + 1 == count()) {
                eliminateFromAll(k, k + 1);
                continue;
            }
            eliminateFromNext(k);
            if (!(row(k + 1)[k + 1] > m_bound))
                return false;
            eliminateBoth(k++);
        }
        return true;
    }
    bool eliminateSymmetric()
    {
        for (uint32_t i = 0; i < count(); ++i)
            numbers()[i] = i;
        for (uint32_t k = 0; k < count(); ++k) {
            if (choosePivot(k)) {
                if (!(std::fabs(determinant(k)) > m_bound * m_bound))
                    return false;
                eliminatePair(k++);
                continue;
            }
            if (!(std::fabs(row(k)[k]) > m_bound))
                return false;
            if (fixed || k + 1 == count()) {
                eliminateFromAll(k, k + 1);
                continue;
            }
            eliminateFromNext(k);
            if (!isLargeBeside(k + 1, largestBeside(k + 1, k + 1))) {
                eliminateFromAll(k, k + 2);
                continue;
            }
            if (!(std::fabs(row(k + 1)[k + 1]) > m_bound))
                return false;
            eliminateBoth(k++);
        }
        return true;
    }

    // After one of them: false when the solution does not fit floats.
    bool solve()
    {
        double* const x = solution();
        for (uint32_t i = count(); i-- > 0;) {
            const double* const r = row(i);
            double rest = r[count()];
            for (uint32_t j = count(); j-- > i + 1;) // what was found last comes last, so that little waits for it
                rest -= r[j] * x[j];
            x[i] = rest * r[i];
        }
        return fitFloats(x, count());
    }

    // Of the matrix as it was, and of one whose rows and columns were exchanged.
    void store(float32_t* x) const
    {
        for (uint32_t i = 0; i < count(); ++i)
            x[i] = static_cast<float>(solution()[i]);
    }
    void storeInOrder(float32_t* x) const
    {
        for (uint32_t i = 0; i < count(); ++i)
            x[static_cast<uint32_t>(numbers()[i])] = static_cast<float>(solution()[i]);
    }

private:
    uint32_t count() const { return fixed ? fixed : m_n; }
    size_t rowSize() const { return fixed ? wholeSteps(fixed + 1) : m_rowSize; }
    double* row(size_t i) const { return m_rows + i * rowSize(); }
    double* numbers() const { return row(count()); }
    double* solution() const { return row(size_t{count()} + 1); }

    // Takes unknown k, whose pivot's reciprocal this is, out of the rows below, and with it the next one, for which it
    // chooses the pivot; false when that is too small.
    bool eliminateWithNext(uint32_t k, double reciprocal)
    {
        double *const first = row(k), *const second = row(k + 1);
        double *const factors = numbers(), *const next = solution(); // of the first unknown, the column of the second
        Search search(k + 1);
        for (uint32_t i = k + 1; i < count(); ++i) {
            factors[i] = row(i)[k] * reciprocal;
            next[i] = row(i)[k + 1] - factors[i] * first[k + 1];
            search.take(i, next[i]);
        }
        if (!(search.largest > m_bound))
            return false;
        if (const uint32_t p = search.where; p != k + 1) {
            std::swap_ranges(second + k + 2, second + count() + 1, row(p) + k + 2);
            std::swap(factors[k + 1], factors[p]);
            std::swap(next[k + 1], next[p]);
        }
        subtract(second, k + 2, count() + 1, Multiple{factors[k + 1], first});
        const double ofSecond = 1 / next[k + 1];
        for (uint32_t i = k + 2; i < count(); ++i)
            subtract(row(i), k + 2, count() + 1, Multiple{factors[i], first}, Multiple{next[i] * ofSecond, second});
        first[k] = reciprocal;
        second[k + 1] = ofSecond;
        return true;
    }

    // ---- of symmetric matrices: what is right of a pivot is what is below it ----

    // Takes unknown k out of the equations from `first` on, which ends its turn.
    void eliminateFromAll(uint32_t k, uint32_t first)
    {
        double* const pivot = row(k);
        const double reciprocal = 1 / pivot[k];
        for (uint32_t i = first; i < count(); ++i)
            subtract(row(i), i, count() + 1, Multiple{pivot[i] * reciprocal, pivot});
        pivot[k] = reciprocal;
    }

    // Takes it out of the next one alone; then both out of those that follow.
    void eliminateFromNext(uint32_t k)
    {
        const double* const pivot = row(k);
        subtract(row(k + 1), k + 1, count() + 1, Multiple{pivot[k + 1] * (1 / pivot[k]), pivot});
    }
    void eliminateBoth(uint32_t k)
    {
        double *const first = row(k), *const second = row(k + 1);
        const double ofFirst = 1 / first[k], ofSecond = 1 / second[k + 1];
        for (uint32_t i = k + 2; i < count(); ++i)
            subtract(row(i), i, count() + 1, Multiple{first[i] * ofFirst, first},
                     Multiple{second[i] * ofSecond, second});
        first[k] = ofFirst;
        second[k + 1] = ofSecond;
    }

    double determinant(uint32_t k) const { return row(k)[k] * row(k + 1)[k + 1] - row(k)[k + 1] * row(k)[k + 1]; }

    // Takes a pivot of two rows out of all equations.
    void eliminatePair(uint32_t k)
    {
        double *const first = row(k), *const second = row(k + 1);
        const double a = first[k], b = first[k + 1], c = second[k + 1], reciprocal = 1 / determinant(k);
        for (uint32_t i = k + 2; i < count(); ++i) {
            const double p = first[i], q = second[i];
            subtract(row(i), i, count() + 1, Multiple{(p * c - q * b) * reciprocal, first},
                     Multiple{(q * a - p * b) * reciprocal, second});
        }
        // The pair itself: the second equation comes first, for b is larger than a.
        const double factor = a / b;
        for (uint32_t j = k + 1; j <= count(); ++j) {
            const double ofFirst = first[j];
            first[j] = second[j];
            second[j] = ofFirst - factor * second[j];
        }
        first[k] = 1 / b;
        second[k + 1] = 1 / second[k + 1];
    }

    // Whether row k is a pivot as it is.
    bool isLargeBeside(uint32_t k, double ofColumn) const { return !(std::fabs(row(k)[k]) < kAlpha * ofColumn); }

    // Brings the next pivot, of one or two rows, to row k; whether it is of two. As Bunch and Kaufman's algorithm A.
    bool choosePivot(uint32_t k)
    {
        const double ofColumn = largestBeside(k, k);
        if (isLargeBeside(k, ofColumn))
            return false;
        uint32_t r = k + 1;
        while (std::fabs(row(k)[r]) != ofColumn)
            ++r;
        const double ofRow = largestBeside(r, k);
        if (std::fabs(row(k)[k]) * ofRow >= kAlpha * ofColumn * ofColumn)
            return false;
        const bool isPair = std::fabs(row(r)[r]) < kAlpha * ofRow;
        swapUnknowns(isPair ? k + 1 : k, r);
        return isPair;
    }

    // The largest magnitude in row i, from `first` on, beside the diagonal; 0 where there is no other row.
    double largestBeside(uint32_t i, uint32_t first) const
    {
        double largest = 0;
        for (uint32_t j = first; j < i; ++j)
            largest = std::max(largest, std::fabs(row(j)[i]));
        for (uint32_t j = i + 1; j < count(); ++j)
            largest = std::max(largest, std::fabs(row(i)[j]));
        return largest;
    }

    // Exchanges rows and columns p and q, p no larger than q.
    void swapUnknowns(uint32_t p, uint32_t q)
    {
        if (p == q)
            return;
        for (uint32_t i = 0; i < p; ++i)
            std::swap(row(i)[p], row(i)[q]);
        std::swap(row(p)[p], row(q)[q]);
        for (uint32_t i = p + 1; i < q; ++i)
            std::swap(row(p)[i], row(i)[q]);
        std::swap_ranges(row(p) + q + 1, row(p) + count() + 1, row(q) + q + 1);
        std::swap(numbers()[p], numbers()[q]);
    }

    static constexpr double kAlpha = 0x1.47e0f66afed07p-1; // (1 + sqrt(17)) / 8

    const uint32_t m_n;
    const size_t m_rowSize;
    double* const m_rows;
    double m_bound = 0;
};

// As many equations as `height`, of no more unknowns: rows of b and A; then for each column the square of what is below
// the rows that are done, and at which place the column was that became the last one. The columns that are done are the
// last ones, the first one of them being the very last: what is left begins where the rows do.
//
// Reflections go down the rows, some pairs of columns at a time, so that the sums of columns are elements of vectors.
// The rows that are done follow from these sums, and so do the squares that are left: the search for the next column
// goes on beside the reflection.
class LeastSquares
{
public:
    // In height + 2 rows of width + 1 elements; the normal has `height` pairs.
    LeastSquares(uint32_t width, uint32_t height, const Matrix& rows, const Matrix& normal)
        : m_width(width), m_height(height), m_rowSize(rows.rowSize()), m_rows(rows.row(0)), m_normal(normal.row(0))
    {
    }

    // False when something is not finite.
    bool take(Plane<const float> a, const float* b)
    {
        Pair largest = takeColumns(0, [&](uint32_t y) { return Pair{b[y], a.row(y)[0]}; });
        largest[0] = 0; // that is b's
        uint32_t x = 2;
        for (; x < m_width; x += 2)
            largest = larger(largest, takeColumns(x, [&](uint32_t y) { return Pair{a.row(y)[x - 1], a.row(y)[x]}; }));
        if (x == m_width)
            largest = larger(largest, takeColumns(x, [&](uint32_t y) { return Pair{a.row(y)[x - 1], 0}; }));
        m_bound = boundOfPivots(m_width, std::sqrt(std::max(largest[0], largest[1])));
        double sum = 0; // finite if all are, for squares of floats are far from the end of doubles
        for (x = 0; x <= m_width; ++x)
            sum += squares()[x];
        return sum <= DBL_MAX;
    }

    // Reflects the columns, b with them, until there are zeros below the pivots, which become their reciprocals; false
    // when they are dependent.
    bool reflect()
    {
        Pair largest = findLargest();
        for (uint32_t k = 0; k < m_width; ++k) {
            const double square = takeColumn(k, placeOf(std::max(largest[0], largest[1]))), norm = std::sqrt(square);
            if (!(norm > m_bound))
                return false;
            const double first = normal(k)[0], pivot = std::copysign(norm, -first), perSquare = 1 / square;
            const Reflection by = {pivot * perSquare, 1 / (first - pivot)};
            largest = reflectColumns(k, by);
            row(k)[m_width - k] = by.perPivot;
        }
        return true;
    }

    // After that: false when the solution does not fit floats.
    bool solve()
    {
        // Unknowns go back to the places that their columns had at each turn. The one that was found last comes last in
        // the sum, so that little waits for it: until then there is a 0 in its place.
        double* const solution = squares();
        double found = 0;
        uint32_t place = 0;
        for (uint32_t x = 1; x <= m_width; ++x) {
            const double* const r = row(m_width - x);
            double rest = r[0];
            for (uint32_t i = 1; i < x; ++i)
                rest -= r[i] * solution[i];
            rest -= r[place] * found;
            solution[place] = found;
            found = rest * r[x];
            place = static_cast<uint32_t>(places()[x]);
            solution[x] = solution[place];
            solution[place] = 0;
        }
        solution[place] = found;
        return fitFloats(solution + 1, m_width);
    }

    void store(float32_t* to) const
    {
        for (uint32_t x = 0; x < m_width; ++x)
            to[x] = static_cast<float>(squares()[x + 1]);
    }

private:
    // A reflection takes a column to a pivot and zeros below it. Its normal is that column, the pivot taken from its
    // first element. Products of columns stay as they are: that of this one and another is the pivot times what the
    // other's first element becomes. So m_normal has the column as it was.
    struct Reflection
    {
        double perPivot; // 1 / the pivot
        double perFirst; // 1 / the normal's first element
    };

    double* row(size_t y) const { return m_rows + y * m_rowSize; }
    double* squares() const { return row(m_height); }
    double* places() const { return row(size_t{m_height} + 1); }
    Pair& normal(size_t y) const { return pairAt(m_normal, 2 * y); } // its element, twice

    // Two columns of elements. The squares of their largest ones, which do not wait for those of other columns.
    template <class Elements>
    Pair takeColumns(uint32_t x, Elements elements)
    {
        Pair sum = {}, largest = {};
        double* to = row(0) + x;
        for (uint32_t y = 0; y < m_height; ++y, to += m_rowSize) {
            const Pair both = elements(y), square = both * both;
            pairAt(to, 0) = both;
            sum += square;
            largest = larger(largest, square);
        }
        pairAt(squares(), x) = sum;
        return largest;
    }

    // The square of a column has its place in the last bits, so that the largest one tells where it is. Places fit,
    // because matrices have less than 2^31 bytes and are no wider than high.
    static constexpr uint64_t kPlace = 0xffff;
    static constexpr double kNone = -0x1p1000; // where there is no column to choose

    static uint32_t placeOf(double square) { return static_cast<uint32_t>(std::bit_cast<uint64_t>(square) & kPlace); }

    Pair setSquares(size_t x, Pair to)
    {
        using Bits __attribute__((vector_size(sizeof(Pair)))) = uint64_t;
        return pairAt(squares(), x) = (Pair)(((Bits)to & ~kPlace) | Bits{x, x + 1});
    }

    // Gives the first squares their places. The largest ones.
    Pair findLargest()
    {
        squares()[0] = kNone;
        if (m_width % 2 == 0)
            squares()[m_width + 1] = kNone;
        Pair largest = {kNone, kNone};
        for (size_t x = 0; x <= m_width; x += 2)
            largest = larger(largest, setSquares(x, pairAt(squares(), x)));
        return largest;
    }

    // A column becomes the normal, and the last one that is left takes its place. The square of the normal's length.
    double takeColumn(uint32_t k, uint32_t place)
    {
        const uint32_t last = m_width - k;
        places()[last] = place;
        squares()[place] = squares()[last];
        squares()[last] = kNone;
        double square = 0, other = 0; // of every other row, so that they wait less for each other
        double* r = row(k);
        for (uint32_t y = k; y < m_height; ++y, r += m_rowSize) {
            const double element = r[place];
            normal(y) = Pair{element, element};
            r[place] = r[last];
            square += element * element;
            std::swap(square, other);
        }
        return square + other;
    }

    // Reflects the columns that are left, from row k on. The largest of their squares.
    Pair reflectColumns(uint32_t k, const Reflection& by)
    {
        size_t x = 0;
        const size_t end = m_width - k;
        Pair largest = {kNone, kNone};
        for (; x + 6 < end; x += 8)
            largest = reflectPairs<4>(x, k, by, largest);
        if (x + 4 < end)
            return reflectPairs<3>(x, k, by, largest);
        if (x + 2 < end)
            return reflectPairs<2>(x, k, by, largest);
        if (x < end)
            return reflectPairs<1>(x, k, by, largest);
        return largest;
    }

    // Of as many pairs of columns. The largest squares, be they theirs or the largest so far.
    template <size_t count>
    Pair reflectPairs(size_t x, uint32_t k, const Reflection& by, Pair largest)
    {
        Pair products[count] = {};
        double *const first = row(k) + x, *r = first;
        for (uint32_t y = k; y < m_height; ++y, r += m_rowSize) {
            const Pair n = normal(y);
#pragma GCC unroll 4
            for (size_t i = 0; i < count; ++i)
                products[i] += n * pairAt(r, 2 * i);
        }
        Pair factors[count];
#pragma GCC unroll 4
        for (size_t i = 0; i < count; ++i) {
            const Pair before = pairAt(first, 2 * i), after = products[i] * by.perPivot;
            const Pair square = pairAt(squares(), x + 2 * i) - after * after;
            largest = larger(largest, setSquares(x + 2 * i, square));
            factors[i] = (after - before) * by.perFirst;
            pairAt(first, 2 * i) = after;
        }
        r = first + m_rowSize;
        for (uint32_t y = k + 1; y < m_height; ++y, r += m_rowSize) {
            const Pair n = normal(y);
#pragma GCC unroll 4
            for (size_t i = 0; i < count; ++i)
                pairAt(r, 2 * i) += n * factors[i];
        }
        return largest;
    }

    const uint32_t m_width, m_height;
    const size_t m_rowSize;
    double *const m_rows, *const m_normal;
    double m_bound = 0;
};

} // namespace

rvkStatus rvkSolvef32C(const float32_t* A, uint32_t width, uint32_t height, uint32_t aStride, const float32_t* b,
                       float32_t* x)
{
    const Matrix rows(uint64_t{height} + 2, width + 1), normal(1, uint64_t{height} * 2);
    if (!rows || !normal)
        return RAVIK_ENORES;
    LeastSquares equations(width, height, rows, normal);
    if (!equations.take(Plane{A, aStride}, b) || !equations.reflect() || !equations.solve())
        return RAVIK_EFAIL;
    equations.store(x);
    return RAVIK_SUCCESS;
}

rvkStatus rvkSolveLUf32C(const float32_t* A, uint32_t n, uint32_t aStride, const float32_t* b, float32_t* x)
{
    return bySize(n, [&](auto size) {
        const Matrix rows(uint64_t{n} + 2, n + 1);
        if (!rows)
            return RAVIK_ENORES;
        Equations<size> equations(n, rows);
        if (!equations.take(Plane{A, aStride}, b) || !equations.eliminate() || !equations.solve())
            return RAVIK_EFAIL;
        equations.store(x);
        return RAVIK_SUCCESS;
    });
}

rvkStatus rvkSolveCholeskyf32C(const float32_t* A, uint32_t n, uint32_t aStride, const float32_t* b, float32_t* x)
{
    return bySize(n, [&](auto size) {
        const Matrix rows(uint64_t{n} + 2, n + 1);
        if (!rows)
            return RAVIK_ENORES;
        Equations<size> equations(n, rows);
        if (!equations.takeSymmetric(Plane{A, aStride}, b) || !equations.eliminateDefinite() || !equations.solve())
            return RAVIK_EFAIL;
        equations.store(x);
        return RAVIK_SUCCESS;
    });
}

rvkStatus rvkSolveLDLf32C(const float32_t* A, uint32_t n, uint32_t aStride, const float32_t* b, float32_t* x)
{
    return bySize(n, [&](auto size) {
        const Matrix rows(uint64_t{n} + 2, n + 1);
        if (!rows)
            return RAVIK_ENORES;
        Equations<size> equations(n, rows);
        if (!equations.takeSymmetric(Plane{A, aStride}, b) || !equations.eliminateSymmetric() || !equations.solve())
            return RAVIK_EFAIL;
        equations.storeInOrder(x);
        return RAVIK_SUCCESS;
    });
}

} // namespace rvk
