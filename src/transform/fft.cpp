// Complex FFT: the vector kernels (fft_simd.hpp) transform in place into
// natural order and scale; the scalar kernel is a radix-4 decimation in
// frequency (a radix-2 step last for odd powers of two) in place, leaving the
// spectrum in bit-reversed order, followed by the bit-reversal permutation
// (with the 1/n scaling when forward).
#include "transform/fft.hpp"

#include <cmath>
#include <cstdlib>
#include <cstring>

#include "elementwise/convert.hpp"
#include "frame/record.hpp"
#include "transform/fft_kernel.hpp"

namespace dsp {

namespace {

// A growing array of tables keyed by an integer (the number of bits b of
// n = 2^b, and for twiddle tables also the kernel's lanes), searched
// linearly. Tables and the entry array come from std::malloc.
template <class P>
struct table_cache {
    struct entry {
        P *table;
        int b;
    };
    entry *entries = nullptr;
    int count = 0;

    // The table for b, built by build(b) on first use. An entry whose table
    // is null (an earlier allocation failed) is rebuilt in place. Null when
    // allocation fails.
    template <class Build>
    P *get(int b, Build build) {
        for (int i = 0; i < count; ++i) {
            if (entries[i].b != b) continue;
            if (!entries[i].table) entries[i].table = build(b);
            return entries[i].table;
        }
        auto *grown =
            static_cast<entry *>(std::realloc(entries, size_t(count + 1) * sizeof(entry)));
        if (!grown) return nullptr;
        entries = grown;
        entries[count].b = b;
        entries[count].table = build(b);
        ++count;
        return entries[count - 1].table;
    }

    void release() {
        for (int i = 0; i < count; ++i) std::free(entries[i].table);
        std::free(entries);
        entries = nullptr;
        count = 0;
    }
};

// The caches of one precision: bit-reversal swap pairs, the fixed indices
// of the scaling permutation (both for the scalar kernel and the exported
// permutations), and the twiddle tables.
template <class T>
struct caches {
    static inline table_cache<uint32_t> pairs;
    static inline table_cache<uint32_t> fixed;
    static inline table_cache<T> twiddles;
};

// Ends the list of fixed indices (which starts with index 0).
constexpr uint32_t fixed_end = 0x12345678u;

// Bit reversal of i over b bits from two half-length reversal tables: the
// low h bits and the high b - h bits are reversed separately and exchanged.
struct reverser {
    uint32_t *lo = nullptr, *hi = nullptr;
    int h = 0, b = 0;
    explicit reverser(int bits) : h(bits / 2), b(bits) {
        lo = static_cast<uint32_t *>(std::malloc((size_t(1) << h) * sizeof(uint32_t)));
        hi = static_cast<uint32_t *>(std::malloc((size_t(1) << (b - h)) * sizeof(uint32_t)));
        if (lo) fill(lo, h);
        if (hi) fill(hi, b - h);
    }
    ~reverser() {
        std::free(lo);
        std::free(hi);
    }
    reverser(const reverser &) = delete;
    reverser &operator=(const reverser &) = delete;
    bool ok() const { return lo && hi; }
    uint32_t operator()(uint32_t i) const {
        return (lo[i & ((1u << h) - 1)] << (b - h)) | hi[i >> h];
    }
    static void fill(uint32_t *t, int bits) {
        t[0] = 0;
        for (int k = 0; k < bits; ++k) {
            const uint32_t half = 1u << k, top = 1u << (bits - 1 - k);
            for (uint32_t i = 0; i < half; ++i) t[half + i] = t[i] | top;
        }
    }
};

// Index pairs (i, j), i < j, j the reversal of i, ended by a 0 index.
uint32_t *build_pairs(int b) {
    reverser rev(b);
    if (!rev.ok()) return nullptr;
    const uint64_t n = uint64_t(1) << b;
    const uint64_t palindromes = uint64_t(1) << ((b + 1) / 2);
    auto *t = static_cast<uint32_t *>(std::malloc(size_t(n - palindromes + 1) * sizeof(uint32_t)));
    if (!t) return nullptr;
    size_t k = 0;
    for (uint32_t i = 1; i < n; ++i) {
        const uint32_t j = rev(i);
        if (i < j) {
            t[k++] = i;
            t[k++] = j;
        }
    }
    t[k] = 0;
    return t;
}

// The indices equal to their own reversal (0 included), ended by fixed_end.
uint32_t *build_fixed(int b) {
    reverser rev(b);
    if (!rev.ok()) return nullptr;
    const uint64_t n = uint64_t(1) << b;
    const uint64_t palindromes = uint64_t(1) << ((b + 1) / 2);
    auto *t = static_cast<uint32_t *>(std::malloc(size_t(palindromes + 1) * sizeof(uint32_t)));
    if (!t) return nullptr;
    size_t k = 0;
    for (uint32_t i = 0; i < n; ++i)
        if (rev(i) == i) t[k++] = i;
    t[k] = fixed_end;
    return t;
}

// Reversal of the low `bits` bits of i.
inline uint32_t reverse_bits(uint32_t i, int bits) {
    i = ((i >> 1) & 0x55555555u) | ((i & 0x55555555u) << 1);
    i = ((i >> 2) & 0x33333333u) | ((i & 0x33333333u) << 2);
    i = ((i >> 4) & 0x0f0f0f0fu) | ((i & 0x0f0f0f0fu) << 4);
    i = ((i >> 8) & 0x00ff00ffu) | ((i & 0x00ff00ffu) << 8);
    i = (i >> 16) | (i << 16);
    return bits ? i >> (32 - bits) : 0;
}

// (c, s) of the angle a + q pi/2, from (c0, s0) = (cos a, sin a).
inline void to_quadrant(uint64_t q, long double c0, long double s0, long double &c,
                        long double &s) {
    switch (q) {
        case 0:
            c = c0, s = s0;
            break;
        case 1:
            c = -s0, s = c0;
            break;
        case 2:
            c = -c0, s = -s0;
            break;
        default:
            c = s0, s = -c0;
            break;
    }
}

// cos and sin of 2 pi j / n (n a power of two), evaluated in long double on
// an angle reduced to the first half quadrant, so that every value is the
// correctly reduced one and the symmetric points come out exact.
void cis(uint64_t j, uint64_t n, long double &c, long double &s) {
    constexpr long double half_pi = 1.570796326794896619231321691639751442L;
    j %= n;
    const uint64_t q = (4 * j) / n;    // quadrant
    const uint64_t r = 4 * j - q * n;  // 4 j / n = q + r / n
    long double c0, s0;
    if (2 * r <= n) {
        const long double a = half_pi * (static_cast<long double>(r) / n);
        c0 = std::cos(a);
        s0 = std::sin(a);
    } else {
        const long double a = half_pi * (static_cast<long double>(n - r) / n);
        c0 = std::sin(a);
        s0 = std::cos(a);
    }
    to_quadrant(q, c0, s0, c, s);
}

// cos and sin of 2 pi j / N from the eighth of a circle in oct (N a multiple
// of 8; oct[2 i], oct[2 i + 1] are cos and sin of 2 pi i / N, i <= N / 8).
void cis_from_octant(uint64_t j, uint64_t N, const long double *oct, long double &c,
                     long double &s) {
    j %= N;
    const uint64_t quarter = N / 4, q = j / quarter, r = j - q * quarter;
    long double c0, s0;
    if (2 * r <= quarter) {
        c0 = oct[2 * r], s0 = oct[2 * r + 1];
    } else {
        c0 = oct[2 * (quarter - r) + 1], s0 = oct[2 * (quarter - r)];
    }
    to_quadrant(q, c0, s0, c, s);
}

// Twiddle table of a transform of n = 2^b points by the kernel k (the
// layout of fft_kernel::table_length). Every factor is a point of the circle
// of n points; those of the first eighth are evaluated once (in long
// double, when the temporary table can be had) and the others follow by
// symmetry.
template <class T>
T *build_twiddles(int b, fft_kernel::choice k) {
    const size_t length = size_t(fft_kernel::table_length(b, k));
    auto *t = static_cast<T *>(std::malloc((length ? length : 1) * sizeof(T)));
    if (!t) return nullptr;
    const uint64_t n = uint64_t(1) << b, V = uint64_t(k.lanes), M = n / V;
    long double *oct = nullptr;
    if (n >= 8) {
        oct = static_cast<long double *>(std::malloc(size_t(n / 8 + 1) * 2 * sizeof(long double)));
        if (oct)
            for (uint64_t i = 0; i <= n / 8; ++i) cis(i, n, oct[2 * i], oct[2 * i + 1]);
    }
    // Writes w_n^j = (cos, -sin) of 2 pi j / n.
    auto put = [&](uint64_t j, T &re, T &im) {
        long double c, s;
        if (oct)
            cis_from_octant(j, n, oct, c, s);
        else
            cis(j, n, c, s);
        re = T(c);
        im = T(-s);
    };
    T *p = t;
    int radix[64] = {};
    const int stages = fft_kernel::stage_radices(b - __builtin_ctz(unsigned(V)), k.eight, radix);
    uint64_t span = M;
    for (int s = 0; s < stages; ++s) {
        const uint64_t r = uint64_t(radix[s]), m = span / r, step = n / span;  // w = w_n^step
        const int bits = __builtin_ctz(unsigned(r));
        for (uint64_t j = 0; j < m; ++j)
            for (uint64_t q = 1; q < r; ++q, p += 2)
                put(reverse_bits(uint32_t(q), bits) * j * step, p[0], p[1]);
        span = m;
    }
    if (V > 1)
        for (uint64_t c = 0; c < M / V; ++c)
            for (uint64_t l = 1; l < V; ++l, p += 2 * V)
                for (uint64_t i = 0; i < V; ++i) put(l * (c * V + i), p[i], p[V + i]);
    std::free(oct);
    return t;
}

template <class T>
T *twiddles(int b, fft_kernel::choice k) {
    const int key = (b << 8) | (k.lanes << 1) | (k.eight ? 1 : 0);
    return caches<T>::twiddles.get(key, [k](int key) { return build_twiddles<T>(key >> 8, k); });
}

// Cache-friendly bit reversal of 2^b complex points, scaled by s when Scale.
// An index is split into (a, m, c): q high bits, b - 2q middle bits and q low
// bits, where 2^q points fill a 64-byte cache line; its reversal is
// (rev c, rev m, rev a). For every pair of middle values m <= rev m the two
// blocks of 2^q x 2^q points are read line by line into buffers and written
// back line by line, so that every line is read and written once. Needs no
// index table; b >= 2q.
template <class T, bool Scale>
void bitrev_blocked(T *d, int b, T s) {
    constexpr int q = sizeof(T) == 4 ? 3 : 2;
    constexpr int Q = 1 << q;
    const int r = b - 2 * q;
    const int64_t stride = int64_t(1) << (b - q);  // points from one a to the next
    uint32_t rq[Q];
    for (int c = 0; c < Q; ++c) rq[c] = reverse_bits(uint32_t(c), q);
    T A[2 * Q * Q], B[2 * Q * Q];
    auto load = [&](T *buf, uint32_t m) {
        for (int a = 0; a < Q; ++a) {
            const T *src = d + 2 * (a * stride + int64_t(m) * Q);
            T *dst = buf + 2 * Q * a;
            for (int j = 0; j < 2 * Q; ++j) dst[j] = Scale ? src[j] * s : src[j];
        }
    };
    // Points (a, m, c) from buf, which holds the block (., rev m, .) with
    // buf[a'][c'] = point (a', rev m, c').
    auto store = [&](const T *buf, uint32_t m) {
        for (int a = 0; a < Q; ++a) {
            T *dst = d + 2 * (a * stride + int64_t(m) * Q);
            for (int c = 0; c < Q; ++c)  // one point: both scalars in one move
                std::memcpy(dst + 2 * c, buf + 2 * (Q * rq[c] + rq[a]), 2 * sizeof(T));
        }
    };
    const uint32_t M = uint32_t(1) << r;
    for (uint32_t m = 0; m < M; ++m) {
        const uint32_t mr = reverse_bits(m, r);
        if (mr < m) continue;
        load(A, m);
        if (mr == m) {
            store(A, m);
        } else {
            load(B, mr);
            store(B, m);
            store(A, mr);
        }
    }
}

// Complex records from this size on are permuted blockwise.
template <class T>
constexpr int blocked_min_log2 = sizeof(T) == 4 ? 6 : 4;

}  // namespace

template <class T>
int bitrev(signal_t<T> &x) {
    const int b = log2_exact(x.n);
    if (b < 0) return -1;
    if (x.cplx && b >= blocked_min_log2<T>) {
        bitrev_blocked<T, false>(x.data, b, T(1));
        return 0;
    }
    const uint32_t *p = caches<T>::pairs.get(b, build_pairs);
    if (!p) return -1;
    T *d = x.data;
    if (x.cplx) {
        for (; *p; p += 2) {
            T *u = d + 2 * size_t(p[0]), *v = d + 2 * size_t(p[1]);
            const T ur = u[0], ui = u[1];
            u[0] = v[0], u[1] = v[1];
            v[0] = ur, v[1] = ui;
        }
    } else {
        for (; *p; p += 2) {
            const T u = d[p[0]];
            d[p[0]] = d[p[1]];
            d[p[1]] = u;
        }
    }
    return 0;
}

template <class T>
int bitrev_scale(signal_t<T> &x) {
    const int b = log2_exact(x.n);
    if (b < 0) return -1;
    // 1/n is a power of two: exact in either precision.
    const T s = T(1.0 / double(x.n));
    if (x.cplx && b >= blocked_min_log2<T>) {
        bitrev_blocked<T, true>(x.data, b, s);
        return 0;
    }
    const uint32_t *p = caches<T>::pairs.get(b, build_pairs);
    if (!p) return -1;
    const uint32_t *f = caches<T>::fixed.get(b, build_fixed);
    if (!f) return -1;
    T *d = x.data;
    if (x.cplx) {
        for (; *p; p += 2) {
            T *u = d + 2 * size_t(p[0]), *v = d + 2 * size_t(p[1]);
            const T ur = u[0], ui = u[1];
            u[0] = v[0] * s, u[1] = v[1] * s;
            v[0] = ur * s, v[1] = ui * s;
        }
        for (; *f != fixed_end; ++f) {
            T *u = d + 2 * size_t(*f);
            u[0] *= s, u[1] *= s;
        }
    } else {
        for (; *p; p += 2) {
            const T u = d[p[0]];
            d[p[0]] = d[p[1]] * s;
            d[p[1]] = u * s;
        }
        for (; *f != fixed_end; ++f) d[*f] *= s;
    }
    return 0;
}

template <class T>
int fft(signal_t<T> &x, int inverse) {
    const int b = log2_exact(x.n);
    if (b < 0) return -1;
    const int64_t n = x.n;
    if (n == 2) {
        if (!inverse) {
            T *d = x.data;
            const int64_t count = x.cplx ? 4 : 2;
            for (int64_t i = 0; i < count; ++i) d[i] *= T(0.5);
        }
        if (rtoc<T>(x) != 0) return -1;
        T *d = x.data;
        const T r0 = d[0], i0 = d[1], r1 = d[2], i1 = d[3];
        d[0] = r0 + r1, d[1] = i0 + i1;
        d[2] = r0 - r1, d[3] = i0 - i1;
    } else if (n >= 4) {
        if (rtoc<T>(x) != 0) return -1;
        const fft_kernel::choice k = fft_kernel::choose<T>(b);
        const T *tw = twiddles<T>(b, k);
        if (!tw) return -1;
        if (k.lanes > 1) {
            // 1/n is a power of two: exact in either precision.
            fft_kernel::transform<T>(x.data, b, k, tw, inverse != 0, T(1.0 / double(n)));
        } else {
            fft_kernel::scalar_passes<T>(x.data, b, tw, inverse != 0);
            if ((inverse ? bitrev<T>(x) : bitrev_scale<T>(x)) != 0) return -1;
        }
    }
    x.delta = x.delta == T(0) ? precision<T>::large : T(1) / (x.delta * T(n));
    return 0;
}

template <class T>
int chirp_convolve(T *d, int b, const T *chirp, const T *K, int64_t n, T scale) {
    const fft_kernel::choice k = fft_kernel::choose<T>(b);
    if (k.lanes == 1) return 1;
    const T *tw = twiddles<T>(b, k);
    if (!tw) return -1;
    fft_kernel::convolve<T>(d, b, k, tw, chirp, K, n, scale);
    return 0;
}

template <class T>
int raw_fft(T *data, int n, int cplx, int inverse) {
    signal_t<T> x;
    init<T>(x);
    x.data = data;
    x.n = n;
    x.cplx = cplx;
    // Real data is widened into a block of the record's own, which never
    // reaches the caller's array: release it.
    const int status = fft<T>(x, inverse);
    destroy<T>(x);
    return status;
}

template <class T>
int release_bitrev_tables() {
    caches<T>::pairs.release();
    caches<T>::fixed.release();
    return 0;
}

template <class T>
int release_twiddle_tables() {
    caches<T>::twiddles.release();
    return 0;
}

#define DSP_INSTANTIATE(T)                                                      \
    template int fft<T>(signal_t<T> &, int);                                    \
    template int raw_fft<T>(T *, int, int, int);                                \
    template int chirp_convolve<T>(T *, int, const T *, const T *, int64_t, T); \
    template int bitrev<T>(signal_t<T> &);                                      \
    template int bitrev_scale<T>(signal_t<T> &);                                \
    template int release_bitrev_tables<T>();                                    \
    template int release_twiddle_tables<T>();
DSP_INSTANTIATE(float)
DSP_INSTANTIATE(double)
#undef DSP_INSTANTIATE

}  // namespace dsp
