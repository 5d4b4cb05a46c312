// A small dense matrix with a shared, reference-counted representation and
// copy on write, used with complex<double> elements by the calibration
// exports. Misuse throws std::out_of_range / std::invalid_argument with
// fixed messages, and allocation failure std::bad_alloc; the C exports turn
// these into plain return values.
#pragma once

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <stdexcept>
#include <type_traits>
#include <utility>

namespace dsp::calib {

// Test hook: when not negative, the number of matrix allocations that still
// succeed; the next one then throws std::bad_alloc.
inline long matrix_allocations_left = -1;

// Storage of the matrix code (representations and inversion scratch).
inline void *matrix_allocate(size_t bytes) {
    if (matrix_allocations_left == 0) throw std::bad_alloc();
    if (matrix_allocations_left > 0) --matrix_allocations_left;
    void *p = std::malloc(bytes ? bytes : 1);
    if (!p) throw std::bad_alloc();
    return p;
}

// Modulus with scaling by a power of two, so that it neither overflows nor
// underflows for any finite element.
inline double scaled_modulus(const std::complex<double> &z) {
    const double a = std::fabs(z.real()), b = std::fabs(z.imag());
    const double big = std::max(a, b);
    if (big == 0 || !std::isfinite(big)) return big + std::min(a, b);
    int e;
    std::frexp(big, &e);
    const double x = std::ldexp(a, -e), y = std::ldexp(b, -e);
    return std::ldexp(std::sqrt(x * x + y * y), e);
}
inline double scaled_modulus(double x) { return std::fabs(x); }

template <class T>
class matrix {
    static_assert(std::is_trivially_copyable_v<T>, "elements are plain numbers");

 public:
    // rows x cols zeros.
    matrix(size_t rows, size_t cols) : rep_(make(rows, cols)) {
        std::fill(rep_->data(), rep_->data() + rows * cols, T(0));
    }
    // rows x cols elements copied from a row-major array.
    matrix(size_t rows, size_t cols, const T *elements) : rep_(make(rows, cols)) {
        std::copy(elements, elements + rows * cols, rep_->data());
    }
    // Copies share the representation.
    matrix(const matrix &other) noexcept : rep_(other.rep_) { ++rep_->refs; }
    matrix &operator=(const matrix &other) noexcept {
        ++other.rep_->refs;
        release();
        rep_ = other.rep_;
        return *this;
    }
    ~matrix() { release(); }

    size_t rows() const noexcept { return rep_->rows; }
    size_t cols() const noexcept { return rep_->cols; }
    // Handles sharing the representation.
    size_t use_count() const noexcept { return rep_->refs; }
    // Row-major elements, read only.
    const T *data() const noexcept { return rep_->data(); }

    // Row access: a pointer to the row's first element.
    const T *row(size_t r) const {
        if (r >= rows()) throw std::out_of_range("matrix<T>::row: subscript is out of range!");
        return rep_->data() + r * cols();
    }
    T *row(size_t r) {
        if (r >= rows()) throw std::out_of_range("matrix<T>::row: subscript is out of range!");
        unshare();
        return rep_->data() + r * cols();
    }

    const T &operator()(size_t r, size_t c) const { return rep_->data()[checked_call(r, c)]; }
    T &operator()(size_t r, size_t c) {
        const size_t at = checked_call(r, c);
        unshare();
        return rep_->data()[at];
    }

    // m[r][c]: the row proxy checks both subscripts.
    template <class M, class E>
    class row_proxy {
     public:
        E &operator[](size_t c) const {
            if (c >= m_->cols()) throw std::out_of_range(bracket_message);
            return m_->element(r_, c);
        }

     private:
        friend class matrix;
        row_proxy(M *m, size_t r) : m_(m), r_(r) {}
        M *m_;
        size_t r_;
    };
    row_proxy<const matrix, const T> operator[](size_t r) const {
        if (r >= rows()) throw std::out_of_range(bracket_message);
        return {this, r};
    }
    row_proxy<matrix, T> operator[](size_t r) {
        if (r >= rows()) throw std::out_of_range(bracket_message);
        return {this, r};
    }

    // Matrix product; the left operand is replaced by a new representation.
    matrix &operator*=(const matrix &right) {
        check_product(*this, right);
        matrix result(rows(), right.cols());
        multiply(*this, right, result);
        std::swap(rep_, result.rep_);
        return *this;
    }
    // Nothing can throw once the result exists: a returned object that an
    // exception leaves behind is not destroyed by every compiler (GCC before
    // 13), which would lose its representation.
    friend matrix operator*(const matrix &left, const matrix &right) {
        check_product(left, right);
        matrix result(left.rows(), right.cols());
        multiply(left, right, result);
        return result;
    }

    // out = left * right, accumulated from zero, into out's own
    // representation when it is private and of the right shape (no
    // allocation), else into a new one. out may not be left or right.
    static void multiply(const matrix &left, const matrix &right, matrix &out) {
        check_product(left, right);
        const size_t n = left.rows(), inner = left.cols(), m = right.cols();
        if (out.rows() != n || out.cols() != m || out.use_count() > 1) {
            matrix fresh(n, m);
            std::swap(out.rep_, fresh.rep_);
        }
        const T *a = left.data(), *b = right.data();
        T *c = out.rep_->data();
        std::fill(c, c + n * m, T(0));
        for (size_t i = 0; i < n; ++i)
            for (size_t k = 0; k < inner; ++k) {
                const T f = a[i * inner + k];
                for (size_t j = 0; j < m; ++j) c[i * m + j] += mul(f, b[k * m + j]);
            }
    }

    // In-place inverse by Gauss-Jordan elimination with partial pivoting on
    // rows. False when a pivot's modulus is below 1e4 machine epsilons: the
    // matrix is then left as far as the elimination had reached.
    bool inv() {
        if (rows() != cols())
            throw std::invalid_argument("matrix<T>::inv(): Inversion of non-square matrix!");
        const size_t n = rows();
        size_t small[16];
        struct scratch {
            size_t *p;
            ~scratch() {
                if (p) std::free(p);
            }
        } heap{n > 16 ? static_cast<size_t *>(matrix_allocate(n * sizeof(size_t))) : nullptr};
        size_t *perm = heap.p ? heap.p : small;
        unshare();
        T *a = rep_->data();
        for (size_t i = 0; i < n; ++i) perm[i] = i;
        for (size_t k = 0; k < n; ++k) {
            // Pivot: the first row of largest modulus in column k.
            size_t r = k;
            double best = scaled_modulus(a[k * n + k]);
            for (size_t i = k + 1; i < n; ++i) {
                const double v = scaled_modulus(a[i * n + k]);
                if (v > best) {
                    best = v;
                    r = i;
                }
            }
            if (best < 2.220446049250313e-12) return false;
            if (r != k) {
                std::swap(perm[k], perm[r]);
                std::swap_ranges(a + k * n, a + k * n + n, a + r * n);
            }
            const T scale = T(1) / a[k * n + k];
            a[k * n + k] = T(1);
            for (size_t j = 0; j < n; ++j) a[k * n + j] = mul(a[k * n + j], scale);
            for (size_t i = 0; i < n; ++i) {
                if (i == k) continue;
                const T f = a[i * n + k];
                a[i * n + k] = T(0);
                for (size_t j = 0; j < n; ++j) a[i * n + j] -= mul(f, a[k * n + j]);
            }
        }
        // The row exchanges come back as column exchanges.
        for (size_t j = 0; j < n; ++j) {
            if (perm[j] == j) continue;
            size_t l = j + 1;
            while (perm[l] != j) ++l;
            for (size_t i = 0; i < n; ++i) std::swap(a[i * n + j], a[i * n + l]);
            std::swap(perm[j], perm[l]);
        }
        return true;
    }

 private:
    static constexpr const char *bracket_message =
        "matrix<T>::operator[][]: Subscript out of range!";

    struct alignas(std::max_align_t) rep {
        size_t rows, cols, refs;
        T *data() noexcept { return reinterpret_cast<T *>(this + 1); }
    };
    rep *rep_;

    static rep *make(size_t rows, size_t cols) {
        const size_t limit = (SIZE_MAX - sizeof(rep)) / sizeof(T);
        if (cols != 0 && rows > limit / cols) throw std::bad_alloc();
        return new (matrix_allocate(sizeof(rep) + rows * cols * sizeof(T))) rep{rows, cols, 1};
    }
    void release() noexcept {
        if (--rep_->refs == 0) std::free(rep_);
    }
    // Makes the representation private before a modification.
    void unshare() {
        if (rep_->refs == 1) return;
        rep *copy = make(rows(), cols());
        std::copy(rep_->data(), rep_->data() + rows() * cols(), copy->data());
        release();
        rep_ = copy;
    }
    size_t checked_call(size_t r, size_t c) const {
        if (r >= rows() || c >= cols())
            throw std::out_of_range("matrix<T>::operator(): subscript is out of range!");
        return r * cols() + c;
    }
    const T &element(size_t r, size_t c) const { return rep_->data()[r * cols() + c]; }
    T &element(size_t r, size_t c) {
        unshare();
        return rep_->data()[r * cols() + c];
    }
    static void check_product(const matrix &left, const matrix &right) {
        if (left.cols() != right.rows())
            throw std::invalid_argument(
                "matrix<T>::operator*=: Inconsistent matrix size in multiplication!");
    }
    // Complex product written out (no special handling of infinities), so
    // that the product loops vectorise.
    static T mul(const T &x, const T &y) {
        if constexpr (std::is_same_v<T, std::complex<double>>)
            return T(x.real() * y.real() - x.imag() * y.imag(),
                     x.real() * y.imag() + x.imag() * y.real());
        else
            return x * y;
    }
};

}  // namespace dsp::calib
