#include "binary/binary.hpp"

#include <cstdint>

#include "elementwise/convert.hpp"
#include "elementwise/rearrange.hpp"
#include "frame/prepare.hpp"
#include "frame/record.hpp"
#include "frame/utility.hpp"

namespace dsp {

namespace {

// Applies a point rule to a and b after sizing r with prepare_binary_result.
// The kinds of a and b are read before sizing (r may be either of them); the
// sample pointers after it. Rules:
//   rr(x, y) -> T                              both real (and, when
//                                              Scalarwise, every scalar of
//                                              two complex records)
//   cc(ar, ai, br, bi, zr&, zi&)               both complex
//   rc(x, br, bi, zr&, zi&)                    a real, b complex
//   cr(ar, ai, y, zr&, zi&)                    a complex, b real
// Same-kind loops run forward. Mixed loops run from the last point back: a
// result sharing storage with the real operand holds that operand's scalars
// at the front of the widened block, and point i is read before the
// scalars 2i and 2i + 1 (never below i) are written.
template <bool Scalarwise, class T, class RR, class CC, class RC, class CR>
int combine(const signal_t<T> &a, const signal_t<T> &b, signal_t<T> &r, RR rr, CC cc, RC rc,
            CR cr) {
    const bool ac = a.cplx != 0, bc = b.cplx != 0;
    if (prepare_binary_result<T>(a, b, r) != 0) return -1;
    const int64_t n = r.n > 0 ? r.n : 0;
    const T *x = a.data;
    const T *y = b.data;
    T *z = r.data;
    if (!ac && !bc) {
        for (int64_t i = 0; i < n; ++i) z[i] = rr(x[i], y[i]);
    } else if (ac && bc) {
        if constexpr (Scalarwise) {
            for (int64_t i = 0; i < 2 * n; ++i) z[i] = rr(x[i], y[i]);
        } else {
            for (int64_t i = 0; i < n; ++i) {
                T zr, zi;
                cc(x[2 * i], x[2 * i + 1], y[2 * i], y[2 * i + 1], zr, zi);
                z[2 * i] = zr;
                z[2 * i + 1] = zi;
            }
        }
    } else if (!ac) {
        for (int64_t i = n - 1; i >= 0; --i) {
            T zr, zi;
            rc(x[i], y[2 * i], y[2 * i + 1], zr, zi);
            z[2 * i] = zr;
            z[2 * i + 1] = zi;
        }
    } else {
        for (int64_t i = n - 1; i >= 0; --i) {
            T zr, zi;
            cr(x[2 * i], x[2 * i + 1], y[i], zr, zi);
            z[2 * i] = zr;
            z[2 * i + 1] = zi;
        }
    }
    return 0;
}

// Runs op(a', b', r) with the shorter of a and b replaced by a zero-padded
// temporary copy of it.
template <class T, class Op>
int padded(const signal_t<T> &a, const signal_t<T> &b, signal_t<T> &r, Op op) {
    if (a.n == b.n) return op(a, b, r);
    const bool pad_b = a.n > b.n;
    signal_t<T> tmp;
    init<T>(tmp);
    if (copy<T>(tmp, pad_b ? b : a) != 0 || zpad<T>(tmp, pad_b ? a.n : b.n) != 0) {
        destroy<T>(tmp);
        return -1;
    }
    const int status = pad_b ? op(a, tmp, r) : op(tmp, b, r);
    const int released = destroy<T>(tmp);
    return released != 0 ? released : status;
}

template <class T>
int add_equal(const signal_t<T> &a, const signal_t<T> &b, signal_t<T> &r) {
    return combine<true, T>(
        a, b, r, [](T x, T y) { return x + y; }, [](T, T, T, T, T &, T &) {},
        [](T x, T br, T bi, T &zr, T &zi) {
            zr = x + br;
            zi = bi;
        },
        [](T ar, T ai, T y, T &zr, T &zi) {
            zr = ar + y;
            zi = ai;
        });
}

template <class T>
int sub_equal(const signal_t<T> &a, const signal_t<T> &b, signal_t<T> &r) {
    return combine<true, T>(
        a, b, r, [](T x, T y) { return x - y; }, [](T, T, T, T, T &, T &) {},
        [](T x, T br, T bi, T &zr, T &zi) {
            zr = x - br;
            zi = -bi;
        },
        [](T ar, T ai, T y, T &zr, T &zi) {
            zr = ar - y;
            zi = ai;
        });
}

// Larger (Max) or smaller point. Real pairs by value, b on ties and
// unordered values; complex pairs by squared magnitude in the double family
// (L when a part lies outside [-L, L]), a's point only when strictly
// larger (smaller).
template <bool Max, class T>
int extreme(const signal_t<T> &a, const signal_t<T> &b, signal_t<T> &r) {
    auto better = [](T ka, T kb) { return Max ? ka > kb : ka < kb; };
    auto real_rule = [better](T x, T y) { return better(x, y) ? x : y; };
    if constexpr (single<T>) {
        // The single family does not select complex points by magnitude: it
        // returns b's point for two complex operands, and the operand a
        // (as (a, 0) when real) when the kinds differ.
        return combine<false, T>(
            a, b, r, real_rule,
            [](T, T, T br, T bi, T &zr, T &zi) {
                zr = br;
                zi = bi;
            },
            [](T x, T, T, T &zr, T &zi) {
                zr = x;
                zi = T(0);
            },
            [](T ar, T ai, T, T &zr, T &zi) {
                zr = ar;
                zi = ai;
            });
    } else {
        return combine<false, T>(
            a, b, r, real_rule,
            [better](T ar, T ai, T br, T bi, T &zr, T &zi) {
                const bool take_a = better(clamped_magsq(ar, ai), clamped_magsq(br, bi));
                zr = take_a ? ar : br;
                zi = take_a ? ai : bi;
            },
            [better](T x, T br, T bi, T &zr, T &zi) {
                const bool take_a = better(clamped_magsq(x, T(0)), clamped_magsq(br, bi));
                zr = take_a ? x : br;
                zi = take_a ? T(0) : bi;
            },
            [better](T ar, T ai, T y, T &zr, T &zi) {
                const bool take_a = better(clamped_magsq(ar, ai), clamped_magsq(y, T(0)));
                zr = take_a ? ar : y;
                zi = take_a ? ai : T(0);
            });
    }
}

// Full linear convolution of a and b into out, which shares no storage with
// either of them.
template <class T>
int convolve(const signal_t<T> &a, const signal_t<T> &b, signal_t<T> &out) {
    const int64_t an = a.n > 0 ? a.n : 0, bn = b.n > 0 ? b.n : 0;
    const bool ac = a.cplx != 0, bc = b.cplx != 0;
    out.delta = (a.delta + b.delta) * T(0.5);
    out.cplx = (ac || bc) ? 1 : 0;
    out.n = (an > 0 && bn > 0) ? int32_t(an + bn - 1) : 0;
    if (alloc<T>(out) != 0 || zero<T>(out) != 0) return -1;
    if (out.n == 0) return 0;  // an empty factor: an empty product, nothing to sum
    T *z = out.data;
    const T *x = a.data, *y = b.data;
    if (!ac && !bc) {
        for (int64_t i = 0; i < an; ++i) {
            const T xi = x[i];
            T *zi = z + i;
            for (int64_t j = 0; j < bn; ++j) zi[j] += xi * y[j];
        }
    } else if (ac && bc) {
        for (int64_t i = 0; i < an; ++i) {
            const T xr = x[2 * i], xm = x[2 * i + 1];
            T *zi = z + 2 * i;
            for (int64_t j = 0; j < bn; ++j) {
                const T yr = y[2 * j], ym = y[2 * j + 1];
                zi[2 * j] += xr * yr - xm * ym;
                zi[2 * j + 1] += xr * ym + xm * yr;
            }
        }
    } else if (!ac) {
        for (int64_t i = 0; i < an; ++i) {
            const T xi = x[i];
            T *zi = z + 2 * i;
            for (int64_t k = 0; k < 2 * bn; ++k) zi[k] += xi * y[k];
        }
    } else {
        for (int64_t i = 0; i < an; ++i) {
            const T xr = x[2 * i], xm = x[2 * i + 1];
            T *zi = z + 2 * i;
            for (int64_t j = 0; j < bn; ++j) {
                zi[2 * j] += xr * y[j];
                zi[2 * j + 1] += xm * y[j];
            }
        }
    }
    return 0;
}

}  // namespace

template <class T>
int add(const signal_t<T> &a, const signal_t<T> &b, signal_t<T> &r) {
    return padded<T>(a, b, r, add_equal<T>);
}

template <class T>
int sub(const signal_t<T> &a, const signal_t<T> &b, signal_t<T> &r) {
    return padded<T>(a, b, r, sub_equal<T>);
}

template <class T>
int mul(const signal_t<T> &a, const signal_t<T> &b, signal_t<T> &r) {
    return combine<false, T>(
        a, b, r, [](T x, T y) { return x * y; },
        [](T ar, T ai, T br, T bi, T &zr, T &zi) {
            zr = ar * br - ai * bi;
            zi = ar * bi + ai * br;
        },
        [](T x, T br, T bi, T &zr, T &zi) {
            zr = x * br;
            zi = x * bi;
        },
        [](T ar, T ai, T y, T &zr, T &zi) {
            zr = ar * y;
            zi = ai * y;
        });
}

// A zero divisor gives L (for every part) when the dividend is nonzero and 0
// when it is zero; the quotient never becomes infinite or NaN through it.
// The double family answers the same way with its L = 1e100.
template <class T>
int div(const signal_t<T> &a, const signal_t<T> &b, signal_t<T> &r) {
    constexpr T L = precision<T>::large;
    return combine<false, T>(
        a, b, r,
        [](T x, T y) {
            const bool zero = y == T(0);
            const T q = x / (zero ? T(1) : y);
            return zero ? (x != T(0) ? L : T(0)) : q;
        },
        [](T ar, T ai, T br, T bi, T &zr, T &zi) {
            const T d = br * br + bi * bi;
            if (d > T(0)) {
                const T inv = T(1) / d;
                zr = (ar * br + ai * bi) * inv;
                zi = (ai * br - ar * bi) * inv;
            } else {
                zr = zi = (ar != T(0) || ai != T(0)) ? L : T(0);
            }
        },
        [](T x, T br, T bi, T &zr, T &zi) {
            const T d = br * br + bi * bi;
            if (d > T(0)) {
                zr = x * br / d;
                zi = -x * bi / d;
            } else {
                zr = zi = x != T(0) ? L : T(0);
            }
        },
        [](T ar, T ai, T y, T &zr, T &zi) {
            if (y != T(0)) {
                zr = ar / y;
                zi = ai / y;
            } else {
                zr = zi = (ar != T(0) || ai != T(0)) ? L : T(0);
            }
        });
}

template <class T>
int conj_mul(const signal_t<T> &a, const signal_t<T> &b, signal_t<T> &r) {
    if (!b.cplx) return mul<T>(a, b, r);
    return combine<false, T>(
        a, b, r, [](T x, T y) { return x * y; },
        [](T ar, T ai, T br, T bi, T &zr, T &zi) {
            zr = ar * br + ai * bi;
            zi = ai * br - ar * bi;
        },
        [](T x, T br, T bi, T &zr, T &zi) {
            zr = x * br;
            zi = -x * bi;
        },
        [](T, T, T, T &, T &) {});
}

template <class T>
int avg_add(const signal_t<T> &a, const signal_t<T> &b, signal_t<T> &r, T w) {
    return combine<true, T>(
        a, b, r, [w](T x, T y) { return y + w * (x - y); }, [](T, T, T, T, T &, T &) {},
        [w](T x, T br, T bi, T &zr, T &zi) {
            zr = br + w * (x - br);
            zi = (T(1) - w) * bi;
        },
        [w](T ar, T ai, T y, T &zr, T &zi) {
            zr = y + w * (ar - y);
            zi = w * ai;
        });
}

template <class T>
int max(const signal_t<T> &a, const signal_t<T> &b, signal_t<T> &r) {
    return extreme<true, T>(a, b, r);
}

template <class T>
int min(const signal_t<T> &a, const signal_t<T> &b, signal_t<T> &r) {
    return extreme<false, T>(a, b, r);
}

template <class T>
int pmul(const signal_t<T> &a, const signal_t<T> &b, signal_t<T> &r) {
    const bool shared =
        &r == &a || &r == &b || (r.data != nullptr && (r.data == a.data || r.data == b.data));
    if (!shared) return convolve<T>(a, b, r);
    signal_t<T> tmp;
    init<T>(tmp);
    int status = convolve<T>(a, b, tmp);
    // Only a fully sized temporary is copied back; a failed sizing leaves r
    // untouched.
    if (status == 0) status = copy<T>(r, tmp);
    const int released = destroy<T>(tmp);
    return status != 0 ? status : released;
}

template <class T>
int ritoc(const signal_t<T> &re, const signal_t<T> &im, signal_t<T> &r) {
    if (re.cplx || im.cplx || re.n != im.n) return -1;
    const int32_t n = re.n;
    const int32_t old_n = r.n, old_cplx = r.cplx;
    r.delta = (re.delta + im.delta) * T(0.5);
    r.cplx = 1;
    r.n = n;
    if (realloc<T>(r, old_n, old_cplx) != 0) return -1;
    const T *x = re.data, *y = im.data;
    T *z = r.data;
    // Backwards: r may be re or im, whose scalars sit at the front.
    for (int64_t i = int64_t(n) - 1; i >= 0; --i) {
        const T xr = x[i], xi = y[i];
        z[2 * i] = xr;
        z[2 * i + 1] = xi;
    }
    return 0;
}

#define DSP_BINARY(T, name) \
    template int name<T>(const signal_t<T> &, const signal_t<T> &, signal_t<T> &);
#define DSP_INSTANTIATE(T)  \
    DSP_BINARY(T, add)      \
    DSP_BINARY(T, sub)      \
    DSP_BINARY(T, mul)      \
    DSP_BINARY(T, div)      \
    DSP_BINARY(T, conj_mul) \
    DSP_BINARY(T, max)      \
    DSP_BINARY(T, min)      \
    DSP_BINARY(T, pmul)     \
    DSP_BINARY(T, ritoc)    \
    template int avg_add<T>(const signal_t<T> &, const signal_t<T> &, signal_t<T> &, T);
DSP_INSTANTIATE(float)
DSP_INSTANTIATE(double)
#undef DSP_INSTANTIATE
#undef DSP_BINARY

}  // namespace dsp
