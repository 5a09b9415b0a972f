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
// Small matrices take longer to walk than to compute with. So loops over rows take steps of four elements, and begin where
// a step begins: they may touch what is no longer, or not yet, used. The last step of a row is taken one by one, for in
// small matrices its elements have just been stored, one by one, and pairs of them could not be loaded yet.

namespace {

constexpr size_t kStep = 4;

constexpr size_t stepOf(size_t i)
{
    return i / kStep * kStep;
}
constexpr size_t wholeSteps(size_t count)
{
    return stepOf(count + kStep - 1);
}

// A matrix of doubles by rows, not initialised: small ones lie here, which a call of nanoseconds is glad of, others in
// scratch memory. Test it before use.
class Matrix
{
public:
    Matrix(uint64_t rows, uint32_t columns) : m_rowSize(wholeSteps(columns)), m_data(m_small)
    {
        if (rows * m_rowSize > kSmall)
            m_data = m_large.emplace(rows, m_rowSize).get();
    }
    explicit operator bool() const { return m_data != nullptr; }
    double* row(size_t i) const { return m_data + i * m_rowSize; }
    size_t rowSize() const { return m_rowSize; }

private:
    static constexpr size_t kSmall = (12 + 2) * wholeSteps(12 + 1); // for 12 equations
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
    // What a pivot of a matrix of n columns must be larger than.
    double boundOfPivots(uint32_t n) const { return n * 0x1p-48 * std::bit_cast<float>(m_bits); }

private:
    uint32_t m_bits = 0;
};

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

// Makes few elements 0.
void clear(double* row, size_t first, size_t end)
{
    for (size_t i = first; i < end; ++i)
        row[i] = 0;
}

// Subtracts a multiple of a row, from an element on.
void subtract(double* from, double factor, const double* row, size_t first, size_t end)
{
    size_t i = stepOf(first);
    for (; end > kStep && i + kStep <= end; i += kStep)
        for (size_t k = i; k < i + kStep; k += 2)
            pairAt(from, k) -= factor * pairAt(row, k);
    for (; i < end; ++i)
        from[i] -= factor * row[i];
}

// One of them is 0 between where the step begins and the first element.
double dot(const double* a, const double* b, size_t first, size_t end)
{
    Pair sums = {}, others = {};
    size_t i = stepOf(first);
    for (; end > kStep && i + kStep <= end; i += kStep) {
        sums += pairAt(a, i) * pairAt(b, i);
        others += pairAt(a, i + 2) * pairAt(b, i + 2);
    }
    double rest = 0;
    for (; i < end; ++i)
        rest += a[i] * b[i];
    sums += others;
    return sums[0] + sums[1] + rest;
}

// ---- singular values ------------------------------------------------------------------------------------------------
//
// The columns of A, or its rows where they are fewer, are the vectors. Rotations of pairs of them make them orthogonal:
// rotations * A = diag(w) * directions.

class SingularValues
{
public:
    // k vectors of `length` elements, which is no less than k.
    SingularValues(uint32_t k, uint32_t length)
        : m_k(k), m_length(length), m_vectors(k, length), m_rotations(k, k), m_values(1, k)
    {
    }
    explicit operator bool() const { return m_vectors && m_rotations && m_values; }

    double* vector(size_t i) const { return m_vectors.row(i); }
    double* rotation(size_t i) const { return m_rotations.row(i); }
    double value(size_t i) const { return m_values.row(0)[i]; }

    // False when it does not come to an end.
    bool find()
    {
        for (uint32_t i = 0; i < m_k; ++i) {
            std::fill(vector(i) + m_length, vector(i) + m_vectors.rowSize(), 0.0);
            std::fill_n(rotation(i), m_rotations.rowSize(), 0.0);
            rotation(i)[i] = 1;
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
        for (uint32_t i = 0; i < m_k; ++i) {
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

    // During the sweeps the values are squares.
    double& square(size_t i) { return m_values.row(0)[i]; }

    // Whether all were orthogonal. Pairs follow each other as in a tournament, so that one need not wait for the one
    // before it.
    bool rotateAllPairs()
    {
        double largest = 0;
        for (uint32_t i = 0; i < m_k; ++i) {
            square(i) = dot(vector(i), vector(i), 0, m_length);
            largest = std::max(largest, square(i));
        }
        const double negligible = kNoise * kNoise * largest;
        const uint32_t rounds = (m_k - 1) | 1; // an odd number of vectors leaves one out in each
        bool isOrthogonal = true;
        for (uint32_t round = 0; round < rounds; ++round) {
            uint32_t up = round, down = rounds; // the last one stays, those of the others go around
            for (uint32_t pair = 0; pair <= rounds / 2; ++pair) {
                if (std::max(up, down) < m_k)
                    isOrthogonal &= rotate(std::min(up, down), std::max(up, down), negligible);
                if (pair == 0)
                    down = round;
                up = up + 1 < rounds ? up + 1 : 0;
                down = down > 0 ? down - 1 : rounds - 1;
            }
        }
        return isOrthogonal;
    }

    // Whether they are orthogonal; after that they are. Where one is negligible it is no matter which way it points.
    bool rotate(uint32_t i, uint32_t j, double negligible)
    {
        if (std::min(square(i), square(j)) <= negligible)
            return true;
        const double product = dot(vector(i), vector(j), 0, m_length), squares = square(i) * square(j);
        if (product * product <= kNegligible * kNegligible * squares)
            return true;
        const bool isOrthogonal = product * product <= kOrthogonal * kOrthogonal * squares;
        // Rutishauser's formulas: the smaller one of the two angles.
        const double zeta = (square(j) - square(i)) / (2 * product);
        const double tangent = std::copysign(1 / (std::fabs(zeta) + std::sqrt(1 + zeta * zeta)), zeta);
        const double cosine = 1 / std::sqrt(1 + tangent * tangent), sine = cosine * tangent;
        square(i) -= tangent * product;
        square(j) += tangent * product;
        turn(vector(i), vector(j), m_length, cosine, sine);
        turn(rotation(i), rotation(j), m_k, cosine, sine);
        return isOrthogonal;
    }

    static void turn(double* a, double* b, size_t count, double cosine, double sine)
    {
        for (size_t i = 0; i < count; i += 2) {
            const Pair first = pairAt(a, i), second = pairAt(b, i);
            pairAt(a, i) = cosine * first - sine * second;
            pairAt(b, i) = sine * first + cosine * second;
        }
    }

    void order()
    {
        for (uint32_t i = 0; i < m_k; ++i)
            square(i) = std::sqrt(dot(vector(i), vector(i), 0, m_length));
        for (uint32_t i = 0; i + 1 < m_k; ++i) {
            uint32_t longest = i;
            for (uint32_t j = i + 1; j < m_k; ++j)
                longest = value(j) > value(longest) ? j : longest;
            if (longest == i)
                continue;
            std::swap_ranges(vector(i), vector(i) + m_length, vector(longest));
            std::swap_ranges(rotation(i), rotation(i) + m_k, rotation(longest));
            std::swap(square(i), square(longest));
        }
    }

    void scale(double* vector, double factor) const
    {
        for (uint32_t i = 0; i < m_length; ++i)
            vector[i] *= factor;
    }

    // Takes away from a direction what it has of those before it, and makes what is left one. False when too little is:
    // the squares of what is left of the axes have a sum of 1 or more while a direction is missing.
    bool standsOut(uint32_t i) const
    {
        subtractThoseBefore(i);
        const double left = dot(vector(i), vector(i), 0, m_length);
        if (!(left * m_length >= 0.5))
            return false;
        scale(vector(i), 1 / std::sqrt(left));
        subtractThoseBefore(i); // the rounding errors
        return true;
    }

    void subtractThoseBefore(uint32_t i) const
    {
        for (uint32_t j = 0; j < i; ++j)
            subtract(vector(i), dot(vector(i), vector(j), 0, m_length), vector(j), 0, m_length);
    }

    // The first axis that stands out.
    void findAnother(uint32_t i) const
    {
        for (uint32_t axis = 0; axis < m_length; ++axis) {
            std::fill_n(vector(i), m_length, 0.0);
            vector(i)[axis] = 1;
            if (standsOut(i))
                return;
        }
    }

    const uint32_t m_k, m_length;
    const Matrix m_vectors, m_rotations, m_values;
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
    SingularValues found(std::min(width, height), std::max(width, height));
    if (!found)
        return RAVIK_ENORES;
    Largest largest;
    for (uint32_t y = 0; y < height; ++y)
        for (uint32_t x = 0; x < width; ++x)
            (isTall ? found.vector(x)[y] : found.vector(y)[x]) = largest.take(Plane{A, aStride}.row(y)[x]);
    if (!largest.isFinite() || !found.find() || found.value(0) > FLT_MAX)
        return RAVIK_EFAIL;
    found.normalise();
    for (uint32_t i = 0; i < std::min(width, height); ++i) {
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
}

// ---- equations ------------------------------------------------------------------------------------------------------

namespace {

// n equations: rows of A, each followed by its element of b; then the number of each unknown, and the solution. Of
// symmetric matrices only what is from the diagonal on is used; the lower triangle is turned there.
//
// There is code of its own for as many as `fixed`, if that is not 0.
template <uint32_t fixed>
class Equations
{
public:
    explicit Equations(uint32_t n) : m_n(n), m_rows(uint64_t{n} + 2, n + 1) {}
    explicit operator bool() const { return static_cast<bool>(m_rows); }

    // False when something is not finite.
    bool take(Plane<const float> a, const float* b)
    {
        Largest left, right;
        double* to = row(0);
        for (uint32_t i = 0; i < count(); ++i, to += rowSize()) {
            const float* const from = a.row(i);
            for (uint32_t j = 0; j < count(); ++j)
                to[j] = left.take(from[j]);
            to[count()] = right.take(b[i]);
        }
        m_bound = left.boundOfPivots(count());
        return left.isFinite() && right.isFinite();
    }
    bool takeSymmetric(Plane<const float> a, const float* b)
    {
        Largest left, right;
        for (uint32_t i = 0; i < count(); ++i) {
            const float* const from = a.row(i);
            double* to = row(0) + i;
            for (uint32_t j = 0; j <= i; ++j, to += rowSize())
                *to = left.take(from[j]);
            clear(row(i), stepOf(i), i);
            row(i)[count()] = right.take(b[i]);
        }
        m_bound = left.boundOfPivots(count());
        return left.isFinite() && right.isFinite();
    }

    // These make the matrix one of zeros below the diagonal, which becomes its reciprocals; false when it is singular.
    bool eliminate()
    {
        for (uint32_t k = 0; k < count(); ++k) {
            double* const pivot = row(k);
            double* largest = pivot;
            for (double* r = pivot + rowSize(); r < row(count()); r += rowSize())
                largest = std::fabs(r[k]) > std::fabs(largest[k]) ? r : largest;
            if (!(std::fabs(largest[k]) > m_bound))
                return false;
            if (largest != pivot)
                std::swap_ranges(pivot + k, pivot + count() + 1, largest + k);
            const double reciprocal = 1 / pivot[k];
            for (double* r = pivot + rowSize(); r < row(count()); r += rowSize())
                subtract(r, r[k] * reciprocal, pivot, k + 1, count() + 1);
            pivot[k] = reciprocal;
        }
        return true;
    }
    bool eliminateDefinite()
    {
        for (uint32_t k = 0; k < count(); ++k) {
            if (!(row(k)[k] > m_bound))
                return false;
            eliminateBelow(k);
        }
        return true;
    }
    bool eliminateSymmetric()
    {
        for (uint32_t i = 0; i < count(); ++i)
            numbers()[i] = i;
        for (uint32_t k = 0; k < count();) {
            const bool isPair = choosePivot(k);
            if (!(isPair ? std::fabs(determinant(k)) > m_bound * m_bound : std::fabs(row(k)[k]) > m_bound))
                return false;
            if (isPair)
                eliminateBelowPair(k);
            else
                eliminateBelow(k);
            k += isPair ? 2 : 1;
        }
        return true;
    }

    // After one of them: false when the solution does not fit floats.
    bool solve()
    {
        double* const x = solution();
        for (uint32_t i = 0; i < count(); ++i)
            x[i] = row(i)[count()];
        for (uint32_t i = count(); i-- > 0;) {
            const double found = x[i] *= row(i)[i];
            const double* r = row(0) + i;
            for (uint32_t j = 0; j < i; ++j, r += rowSize())
                x[j] -= *r * found;
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
    size_t rowSize() const { return fixed ? wholeSteps(fixed + 1) : m_rows.rowSize(); }
    double* row(size_t i) const { return m_rows.row(0) + i * rowSize(); }
    double* numbers() const { return row(count()); }
    double* solution() const { return row(size_t{count()} + 1); }

    // ---- of symmetric matrices: what is right of a pivot is what is below it ----

    void eliminateBelow(uint32_t k)
    {
        double* const pivot = row(k);
        const double reciprocal = 1 / pivot[k];
        double* r = pivot + rowSize();
        for (uint32_t i = k + 1; i < count(); ++i, r += rowSize())
            subtract(r, pivot[i] * reciprocal, pivot, i, count() + 1);
        pivot[k] = reciprocal;
    }

    double determinant(uint32_t k) const { return row(k)[k] * row(k + 1)[k + 1] - row(k)[k + 1] * row(k)[k + 1]; }

    void eliminateBelowPair(uint32_t k)
    {
        double *const first = row(k), *const second = row(k + 1);
        const double a = first[k], b = first[k + 1], c = second[k + 1], reciprocal = 1 / determinant(k);
        for (uint32_t i = k + 2; i < count(); ++i) {
            const double p = first[i], q = second[i];
            subtract(row(i), (p * c - q * b) * reciprocal, first, i, count() + 1);
            subtract(row(i), (q * a - p * b) * reciprocal, second, i, count() + 1);
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

    // Brings the next pivot, of one or two rows, to row k; whether it is of two. As Bunch and Kaufman's algorithm A.
    bool choosePivot(uint32_t k)
    {
        const double alpha = (1 + std::sqrt(17.0)) / 8;
        const double diagonal = std::fabs(row(k)[k]);
        const uint32_t r = largestBeside(k, k);
        const double ofColumn = r == k ? 0 : std::fabs(row(k)[r]);
        if (diagonal >= alpha * ofColumn)
            return false;
        const uint32_t other = largestBeside(r, k);
        const double ofRow = std::fabs(other < r ? row(other)[r] : row(r)[other]);
        if (diagonal * ofRow >= alpha * ofColumn * ofColumn)
            return false;
        const bool isPair = std::fabs(row(r)[r]) < alpha * ofRow;
        swapUnknowns(isPair ? k + 1 : k, r);
        return isPair;
    }

    // Where row i, from `first` on, has its largest element beside the diagonal; i where there is no other row.
    uint32_t largestBeside(uint32_t i, uint32_t first) const
    {
        double largest = -1;
        uint32_t where = i;
        for (uint32_t j = first; j < count(); ++j)
            if (const double magnitude = std::fabs(j < i ? row(j)[i] : row(i)[j]); j != i && magnitude > largest) {
                largest = magnitude;
                where = j;
            }
        return where;
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

    const uint32_t m_n;
    const Matrix m_rows;
    double m_bound = 0;
};

// solve(size) with the number of equations as a constant where that pays: three take half of the time then. With 0
// otherwise.
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

// As many equations as `height`, of fewer unknowns: the columns of A, then b, the normal of a reflection, and of each
// column the number of its unknown and the square of what is below the rows that are done.
class LeastSquares
{
public:
    LeastSquares(uint32_t width, uint32_t height)
        : m_width(width), m_height(height), m_columns(uint64_t{width} + 4, height)
    {
    }
    explicit operator bool() const { return static_cast<bool>(m_columns); }

    // False when something is not finite.
    bool take(Plane<const float> a, const float* b)
    {
        Largest left, right;
        for (uint32_t y = 0; y < m_height; ++y) {
            const float* const from = a.row(y);
            double* to = column(0) + y;
            for (uint32_t x = 0; x < m_width; ++x, to += m_columns.rowSize())
                *to = left.take(from[x]);
            rightSide()[y] = right.take(b[y]);
        }
        for (uint32_t x = 0; x < m_width; ++x) {
            numbers()[x] = x;
            squares()[x] = dot(column(x), column(x), 0, m_height);
        }
        m_bound = left.boundOfPivots(m_width);
        return left.isFinite() && right.isFinite();
    }

    // Reflects the columns, b with them, until there are zeros below the diagonal; false when they are dependent.
    bool reflect()
    {
        double *const n = normal(), *const last = rightSide(), *const square = squares();
        for (uint32_t k = 0; k < m_width; ++k) {
            bringLongest(k);
            double* const pivot = column(k);
            for (size_t i = stepOf(k); i < m_height; ++i)
                n[i] = i < k ? 0 : pivot[i];
            const double norm = std::sqrt(dot(n, n, k, m_height));
            if (!(norm > m_bound))
                return false;
            const double factor = 1 / (norm * (norm + std::fabs(n[k])));
            pivot[k] = std::copysign(norm, -n[k]);
            n[k] -= pivot[k];
            for (double* c = pivot + m_columns.rowSize(); c <= last; c += m_columns.rowSize())
                subtract(c, dot(n, c, k, m_height) * factor, n, k, m_height);
            const double* c = pivot + k;
            for (uint32_t j = k + 1; j < m_width; ++j) {
                c += m_columns.rowSize();
                square[j] -= *c * *c;
            }
        }
        return true;
    }

    // After that: false when the solution does not fit floats.
    bool solve()
    {
        double* const x = rightSide();
        for (uint32_t k = m_width; k-- > 0;) {
            const double* const c = column(k);
            const double found = x[k] /= c[k];
            for (uint32_t i = 0; i < k; ++i)
                x[i] -= found * c[i];
        }
        return fitFloats(x, m_width);
    }

    void store(float32_t* x) const
    {
        for (uint32_t k = 0; k < m_width; ++k)
            x[static_cast<uint32_t>(numbers()[k])] = static_cast<float>(rightSide()[k]);
    }

private:
    double* column(size_t x) const { return m_columns.row(x); }
    double* rightSide() const { return column(m_width); }
    double* normal() const { return column(size_t{m_width} + 1); }
    double* numbers() const { return column(size_t{m_width} + 2); }
    double* squares() const { return column(size_t{m_width} + 3); }

    // The longest of the columns from k on becomes column k, by what is below the rows that are done.
    void bringLongest(uint32_t k)
    {
        uint32_t longest = k;
        for (uint32_t j = k + 1; j < m_width; ++j)
            longest = squares()[j] > squares()[longest] ? j : longest;
        if (longest == k)
            return;
        std::swap_ranges(column(k), column(k) + m_height, column(longest));
        std::swap(numbers()[k], numbers()[longest]);
        std::swap(squares()[k], squares()[longest]);
    }

    const uint32_t m_width, m_height;
    const Matrix m_columns;
    double m_bound = 0;
};

} // namespace

rvkStatus rvkSolvef32C(const float32_t* A, uint32_t width, uint32_t height, uint32_t aStride, const float32_t* b,
                       float32_t* x)
{
    LeastSquares equations(width, height);
    if (!equations)
        return RAVIK_ENORES;
    if (!equations.take(Plane{A, aStride}, b) || !equations.reflect() || !equations.solve())
        return RAVIK_EFAIL;
    equations.store(x);
    return RAVIK_SUCCESS;
}

rvkStatus rvkSolveLUf32C(const float32_t* A, uint32_t n, uint32_t aStride, const float32_t* b, float32_t* x)
{
    return bySize(n, [&](auto size) {
        Equations<size> equations(n);
        if (!equations)
            return RAVIK_ENORES;
        if (!equations.take(Plane{A, aStride}, b) || !equations.eliminate() || !equations.solve())
            return RAVIK_EFAIL;
        equations.store(x);
        return RAVIK_SUCCESS;
    });
}

rvkStatus rvkSolveCholeskyf32C(const float32_t* A, uint32_t n, uint32_t aStride, const float32_t* b, float32_t* x)
{
    return bySize(n, [&](auto size) {
        Equations<size> equations(n);
        if (!equations)
            return RAVIK_ENORES;
        if (!equations.takeSymmetric(Plane{A, aStride}, b) || !equations.eliminateDefinite() || !equations.solve())
            return RAVIK_EFAIL;
        equations.store(x);
        return RAVIK_SUCCESS;
    });
}

rvkStatus rvkSolveLDLf32C(const float32_t* A, uint32_t n, uint32_t aStride, const float32_t* b, float32_t* x)
{
    return bySize(n, [&](auto size) {
        Equations<size> equations(n);
        if (!equations)
            return RAVIK_ENORES;
        if (!equations.takeSymmetric(Plane{A, aStride}, b) || !equations.eliminateSymmetric() || !equations.solve())
            return RAVIK_EFAIL;
        equations.storeInOrder(x);
        return RAVIK_SUCCESS;
    });
}

} // namespace rvk
