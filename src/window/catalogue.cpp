// Window names and cosine-sum coefficients.
#include "window/catalogue.hpp"

#include <cctype>
#include <cstdint>
#include <cstring>

namespace dsp {

namespace {

// Each precision holds its own copy of the name table (identical contents).
template <class T>
struct name_table {
    static constexpr window_name rows[window_name_count] = {
        {"Uniform", 0},
        {"Rectangular", 0},
        {"None", 0},
        {"P000", 0},
        {"Bartlett", 1},
        {"Triangular", 1},
        {"Hann", 2},
        {"P110", 2},
        {"Hamming", 3},
        {"P100", 3},
        {"Blackman", 4},
        {"Blackman_Harris3", 5},
        {"P200", 5},
        {"Blackman_Harris4", 6},
        {"P310", 6},
        {"Lowleak", 6},
        {"Gausstop", 7},
        {"P400", 7},
        {"Flat4", 8},
        {"P301", 8},
        {"Flattop", 9},
        {"Flat5", 9},
        {"P401", 9},
        {"Flat6", 10},
        {"P511", 10},
        {"Flat7", 11},
        {"P611", 11},
        {"P501", 12},
        {"P601", 13},
        {"Kaiser70", 14},
        {"Kaiser80", 15},
        {"Kaiser90", 16},
        {"Kaiser100", 17},
        {"Kaiser110", 18},
        {"Kaiser120", 19},
        {"Gauss60", 20},
        {"Gauss70", 21},
        {"Gauss80", 22},
        {"Riemann", 23},
        {"Sinc_Lobe", 23},
        {"DSP_WINDOW_UNIFORM", 0},
        {"DSP_WINDOW_RECTANGULAR", 0},
        {"DSP_WINDOW_NONE", 0},
        {"DSP_WINDOW_P000", 0},
        {"DSP_WINDOW_BARTLETT", 1},
        {"DSP_WINDOW_TRIANGULAR", 1},
        {"DSP_WINDOW_HANN", 2},
        {"DSP_WINDOW_P110", 2},
        {"DSP_WINDOW_HAMMING", 3},
        {"DSP_WINDOW_P100", 3},
        {"DSP_WINDOW_BLACKMAN", 4},
        {"DSP_WINDOW_BLACKMAN_HARRIS3", 5},
        {"DSP_WINDOW_P200", 5},
        {"DSP_WINDOW_BLACKMAN_HARRIS4", 6},
        {"DSP_WINDOW_P310", 6},
        {"DSP_WINDOW_LOWLEAK", 6},
        {"DSP_WINDOW_GAUSSTOP", 7},
        {"DSP_WINDOW_P400", 7},
        {"DSP_WINDOW_FLAT4", 8},
        {"DSP_WINDOW_P301", 8},
        {"DSP_WINDOW_FLATTOP", 9},
        {"DSP_WINDOW_FLAT5", 9},
        {"DSP_WINDOW_P401", 9},
        {"DSP_WINDOW_FLAT6", 10},
        {"DSP_WINDOW_P511", 10},
        {"DSP_WINDOW_FLAT7", 11},
        {"DSP_WINDOW_P611", 11},
        {"DSP_WINDOW_P501", 12},
        {"DSP_WINDOW_P601", 13},
        {"DSP_WINDOW_KAISER70", 14},
        {"DSP_WINDOW_KAISER80", 15},
        {"DSP_WINDOW_KAISER90", 16},
        {"DSP_WINDOW_KAISER100", 17},
        {"DSP_WINDOW_KAISER110", 18},
        {"DSP_WINDOW_KAISER120", 19},
        {"DSP_WINDOW_GAUSS60", 20},
        {"DSP_WINDOW_GAUSS70", 21},
        {"DSP_WINDOW_GAUSS80", 22},
        {"DSP_WINDOW_RIEMANN", 23},
        {"DSP_WINDOW_SINC_LOBE", 23},
    };
};

// Coefficient sets per kind 0, 2..13, in the order unit peak, unit mean,
// unit rms. The single family stores its own float constants; the double
// family derives the unit-mean and unit-rms sets of the kinds with published
// design values (Hamming, Blackman, Blackman-Harris, Gausstop) from them, and
// keeps the nine-digit values of Hann's unit-rms set and of the flat-top
// kinds, whose unit-mean a0 lies slightly below 1 on purpose.
struct float_sets {
    static constexpr float uniform[3][1] = {{1.0f}, {1.0f}, {1.0f}};
    static constexpr float hann[3][2] = {{0.5f, 0.5f}, {1.0f, 1.0f}, {0.816496611f, 0.816496611f}};
    static constexpr float hamming[3][2] = {
        {0.540000021f, 0.460000008f}, {1.0f, 0.851851881f}, {0.856603444f, 0.729699254f}};
    static constexpr float blackman[3][3] = {{0.419999987f, 0.5f, 0.0799999982f},
                                             {1.0f, 1.19047618f, 0.190476194f},
                                             {0.760999441f, 0.905951738f, 0.144952282f}};
    static constexpr float bh3[3][3] = {{0.424383193f, 0.497339755f, 0.0782770514f},
                                        {1.0f, 1.17191195f, 0.184449002f},
                                        {0.766131818f, 0.897839069f, 0.141312242f}};
    static constexpr float bh4[3][4] = {{0.355767995f, 0.487396002f, 0.144232005f, 0.012604f},
                                        {1.0f, 1.36998272f, 0.40541026f, 0.0354275815f},
                                        {0.703382969f, 0.96362251f, 0.285158694f, 0.0249191578f}};
    static constexpr float gausstop[3][5] = {
        {0.323215365f, 0.471492141f, 0.175534129f, 0.02849699f, 0.0012613571f},
        {1.0f, 1.45875525f, 0.543087184f, 0.0881671831f, 0.00390252797f},
        {0.671860099f, 0.980079472f, 0.364878625f, 0.0592360161f, 0.00262195291f}};
    static constexpr float flat4[3][4] = {{0.239523977f, 0.458092242f, 0.25848788f, 0.043895904f},
                                          {0.999448419f, 1.91145599f, 1.078578f, 0.183162004f},
                                          {0.540110767f, 1.03296769f, 0.582873046f, 0.0989823639f}};
    static constexpr float flattop[3][5] = {
        {0.213283241f, 0.414006054f, 0.279055923f, 0.086166665f, 0.00748812454f},
        {0.999640286f, 1.94041097f, 1.30791116f, 0.403855801f, 0.0350961983f},
        {0.511503339f, 0.992883861f, 0.669241667f, 0.206647918f, 0.0179582834f}};
    static constexpr float flat6[3][6] = {
        {0.191847563f, 0.375972986f, 0.284425884f, 0.122742012f, 0.0237265434f, 0.00128499896f},
        {0.999760866f, 1.95927989f, 1.4822073f, 0.639636219f, 0.123644352f, 0.00669641886f},
        {0.486122578f, 0.952678025f, 0.720706761f, 0.311015993f, 0.0601206906f, 0.00325605902f}};
    static constexpr float flat7[3][7] = {{0.177865714f, 0.3502675f, 0.281638384f, 0.144775182f,
                                           0.0403343216f, 0.00495730992f, 0.000161585413f},
                                          {0.999820411f, 1.96892703f, 1.58314836f, 0.81381166f,
                                           0.226727679f, 0.0278660785f, 0.000908305461f},
                                          {0.46880582f, 0.923210263f, 0.742322505f, 0.381588161f,
                                           0.106310353f, 0.013066126f, 0.000425895385f}};
    static constexpr float p501[3][6] = {
        {0.19419378f, 0.380170375f, 0.2840648f, 0.118766636f, 0.021728985f, 0.0010754409f},
        {0.999747634f, 1.95719159f, 1.4624213f, 0.611433923f, 0.111865081f, 0.00553658092f},
        {0.489148766f, 0.957599521f, 0.71552211f, 0.299157649f, 0.0547324754f, 0.00270889536f}};
    static constexpr float p601[3][7] = {{0.17932421f, 0.352952749f, 0.281965286f, 0.142511442f,
                                          0.0385717638f, 0.004536564f, 0.000137977651f},
                                         {0.999813855f, 1.9678719f, 1.57208455f, 0.794565976f,
                                          0.215055093f, 0.0252934042f, 0.000769288046f},
                                         {0.470756143f, 0.926560223f, 0.740206242f, 0.374116451f,
                                          0.101257354f, 0.0119092418f, 0.000362214487f}};
};

struct double_sets {
    static constexpr double uniform[3][1] = {{1.0}, {1.0}, {1.0}};
    static constexpr double hann[3][2] = {{0.5, 0.5}, {1.0, 1.0}, {0.816496611, 0.816496611}};
    // Unit rms: a / sqrt(a0^2 + sum of a_j^2 / 2) of the unit-peak design values.
    static constexpr double hamming[3][2] = {
        {0.54, 0.46}, {1.0, 0.85185185185185186}, {0.85660346821703293, 0.72969925070339847}};
    static constexpr double blackman[3][3] = {
        {0.42, 0.5, 0.08},
        {1.0, 1.1904761904761905, 0.19047619047619047},
        {0.76099944650683971, 0.90595172203195196, 0.14495227552511233}};
    static constexpr double bh3[3][3] = {
        {0.424383190860823, 0.497339753968089, 0.078277055171088},
        {1.0, 1.1719120000000005, 0.18444900000000014},
        {0.76613180381888735, 0.8978390544770003, 0.14131224508259005}};
    static constexpr double bh4[3][4] = {
        {0.355768, 0.487396, 0.144232, 0.012604},
        {1.0, 1.3699826853455062, 0.40541026736524927, 0.035427582019743206},
        {0.70338297978391029, 0.96362250347068512, 0.28515868189436078, 0.024919158207585855}};
    static constexpr double gausstop[3][5] = {
        {0.323215378898408, 0.471492143964872, 0.175534129951429, 0.0284969900997167,
         0.00126135708557457},
        {1.0, 1.4587552905800001, 0.54308718399999867, 0.088167184979999924, 0.003902528060000003},
        {0.67186010909273974, 0.98007948866869021, 0.36487861468910798, 0.059236014519062512,
         0.00262195292812908}};
    static constexpr double flat4[3][4] = {{0.239523977, 0.458092242, 0.25848788, 0.043895904},
                                           {0.999448419, 1.91145599, 1.078578, 0.183162004},
                                           {0.540110767, 1.03296769, 0.582873046, 0.0989823639}};
    static constexpr double flattop[3][5] = {
        {0.213283241, 0.414006054, 0.279055923, 0.086166665, 0.00748812454},
        {0.999640286, 1.94041097, 1.30791116, 0.403855801, 0.0350961983},
        {0.511503339, 0.992883861, 0.669241667, 0.206647918, 0.0179582834}};
    static constexpr double flat6[3][6] = {
        {0.191847563, 0.375972986, 0.284425884, 0.122742012, 0.0237265434, 0.00128499896},
        {0.999760866, 1.95927989, 1.4822073, 0.639636219, 0.123644352, 0.00669641886},
        {0.486122578, 0.952678025, 0.720706761, 0.311015993, 0.0601206906, 0.00325605902}};
    static constexpr double flat7[3][7] = {{0.177865714, 0.3502675, 0.281638384, 0.144775182,
                                            0.0403343216, 0.00495730992, 0.000161585413},
                                           {0.999820411, 1.96892703, 1.58314836, 0.81381166,
                                            0.226727679, 0.0278660785, 0.000908305461},
                                           {0.46880582, 0.923210263, 0.742322505, 0.381588161,
                                            0.106310353, 0.013066126, 0.000425895385}};
    static constexpr double p501[3][6] = {
        {0.19419378, 0.380170375, 0.2840648, 0.118766636, 0.021728985, 0.0010754409},
        {0.999747634, 1.95719159, 1.4624213, 0.611433923, 0.111865081, 0.00553658092},
        {0.489148766, 0.957599521, 0.71552211, 0.299157649, 0.0547324754, 0.00270889536}};
    static constexpr double p601[3][7] = {{0.17932421, 0.352952749, 0.281965286, 0.142511442,
                                           0.0385717638, 0.004536564, 0.000137977651},
                                          {0.999813855, 1.9678719, 1.57208455, 0.794565976,
                                           0.215055093, 0.0252934042, 0.000769288046},
                                          {0.470756143, 0.926560223, 0.740206242, 0.374116451,
                                           0.101257354, 0.0119092418, 0.000362214487}};
};

template <class S, class T, int M>
cosine_set<T> pick(const T (&sets)[3][M], int mode) {
    // Table rows: unit peak, unit mean, unit rms; modes: 0 mean, 1 rms, 2 peak.
    static constexpr int row[3] = {1, 2, 0};
    return {M, sets[row[mode]]};
}

template <class S, class T>
cosine_set<T> lookup(int kind, int mode) {
    switch (kind) {
        case 0:
            return pick<S>(S::uniform, mode);
        case 2:
            return pick<S>(S::hann, mode);
        case 3:
            return pick<S>(S::hamming, mode);
        case 4:
            return pick<S>(S::blackman, mode);
        case 5:
            return pick<S>(S::bh3, mode);
        case 6:
            return pick<S>(S::bh4, mode);
        case 7:
            return pick<S>(S::gausstop, mode);
        case 8:
            return pick<S>(S::flat4, mode);
        case 9:
            return pick<S>(S::flattop, mode);
        case 10:
            return pick<S>(S::flat6, mode);
        case 11:
            return pick<S>(S::flat7, mode);
        case 12:
            return pick<S>(S::p501, mode);
        case 13:
            return pick<S>(S::p601, mode);
        default:
            return {0, nullptr};
    }
}

}  // namespace

template <class T>
const window_name *window_names() {
    return name_table<T>::rows;
}

template <class T>
cosine_set<T> cosine_coefficients(int kind, int mode) {
    if (mode < 0 || mode > 2) return {0, nullptr};
    if constexpr (single<T>)
        return lookup<float_sets, float>(kind, mode);
    else
        return lookup<double_sets, double>(kind, mode);
}

template <class T>
T kaiser_beta(int kind) {
    if constexpr (single<T>) {
        static constexpr float beta[6] = {9.47395992f, 10.7517767f, 12.0140772f,
                                          13.2643728f, 14.5050821f, 15.7379513f};
        return beta[kind - 14];
    } else {
        static constexpr double beta[6] = {9.473960131326246,  10.751776690564654,
                                           12.014077292090791, 13.264372446115681,
                                           14.505082414495599, 15.73795091271457};
        return beta[kind - 14];
    }
}

template <class T>
T gauss_sigma(int kind) {
    if constexpr (single<T>) {
        static constexpr float sigma[3] = {0.158372194f, 0.144216105f, 0.132810205f};
        return sigma[kind - 20];
    } else {
        static constexpr double sigma[3] = {0.1583722, 0.1442161, 0.1328102};
        return sigma[kind - 20];
    }
}

template <class T>
int window_from_str(const char *name, dsp_window *value) {
    if (!name || !value) return -1;
    const window_name *rows = window_names<T>();
    for (int r = 0; r < window_name_count; ++r) {
        const unsigned char *a = reinterpret_cast<const unsigned char *>(rows[r].name);
        const unsigned char *b = reinterpret_cast<const unsigned char *>(name);
        // Equal through the lower-case mapping up to and including the NUL.
        for (;; ++a, ++b) {
            if (std::tolower(*a) != std::tolower(*b)) break;
            if (*a == 0) {
                *value = rows[r].value;
                return 0;
            }
        }
    }
    *value = 0;
    return -1;
}

template <class T>
int window_to_str(dsp_window code, char *buf, int len) {
    if (!buf || len <= 0) return -1;
    // The walk compares the code with each row's name reference rather than
    // its value, so it never finds a row: the result is always an empty text
    // and -1.
    const window_name *rows = window_names<T>();
    for (int r = 0; r < window_name_count; ++r) {
        if (reinterpret_cast<intptr_t>(rows[r].name) == intptr_t(code)) {
            std::strncpy(buf, rows[r].name, size_t(len));
            buf[len - 1] = 0;
            return 0;
        }
    }
    buf[0] = 0;
    return -1;
}

#define DSP_INSTANTIATE(T)                                       \
    template const window_name *window_names<T>();               \
    template cosine_set<T> cosine_coefficients<T>(int, int);     \
    template T kaiser_beta<T>(int);                              \
    template T gauss_sigma<T>(int);                              \
    template int window_from_str<T>(const char *, dsp_window *); \
    template int window_to_str<T>(dsp_window, char *, int);
DSP_INSTANTIATE(float)
DSP_INSTANTIATE(double)
#undef DSP_INSTANTIATE

}  // namespace dsp
