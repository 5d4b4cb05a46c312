// Runs a numpy/scipy reference computation in Debian's Python.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>
#if !defined(_WIN32)
#include <unistd.h>
#endif

namespace dsp_test {

// A Windows build (run under Wine) cannot start the host's interpreter: the
// tests that need it stop where they would ask it, and count as skipped.
#if defined(_WIN32)
inline constexpr bool have_python = false;
#else
inline constexpr bool have_python = true;
#endif
#define DSP_NEED_PYTHON() \
    if (!::dsp_test::have_python) GTEST_SKIP() << "no numpy/scipy reference on this platform"

// Runs `script` with /usr/bin/python3. The script finds `x`, a numpy float64
// array of `input`, already defined (numpy imported as np) and must print
// its results as whitespace-separated numbers; they are returned in order.
// Fails the current test if Python fails.
inline std::vector<double> python(const std::string &script, const std::vector<double> &input = {}) {
#if defined(_WIN32)
    (void)script, (void)input;
    ADD_FAILURE() << "no Python on this platform: DSP_NEED_PYTHON() before asking it";
    return {};
#else
    char in_path[] = "/tmp/dsp_py_in_XXXXXX";
    char py_path[] = "/tmp/dsp_py_script_XXXXXX";
    const int in_fd = mkstemp(in_path);
    const int py_fd = mkstemp(py_path);
    if (in_fd < 0 || py_fd < 0) {
        ADD_FAILURE() << "cannot create temporary files";
        return {};
    }
    close(in_fd);
    close(py_fd);
    {
        std::ofstream in(in_path);
        in.precision(17);
        for (double v : input) in << v << '\n';
        std::ofstream py(py_path);
        py << "import numpy as np\nimport sys\n"
           << "x = np.loadtxt(sys.argv[1], ndmin=1) if " << (input.empty() ? "False" : "True")
           << " else np.zeros(0)\n"
           << "np.set_printoptions(precision=17, threshold=sys.maxsize)\n"
           << script << '\n';
    }
    std::ostringstream command;
    command << DSP_PYTHON << ' ' << py_path << ' ' << in_path;
    const std::string cmd = command.str();
    std::string out;
    if (FILE *p = popen(cmd.c_str(), "r")) {
        char buf[4096];
        size_t got;
        while ((got = fread(buf, 1, sizeof buf, p)) > 0) out.append(buf, got);
        const int status = pclose(p);
        if (status != 0) ADD_FAILURE() << "python reference failed: " << cmd;
    } else {
        ADD_FAILURE() << "cannot run " << cmd;
    }
    std::remove(in_path);
    std::remove(py_path);
    std::vector<double> result;
    std::istringstream is(out);
    std::string tok;
    while (is >> tok) {
        // numpy may print brackets around arrays
        std::string clean;
        for (char ch : tok)
            if (ch != '[' && ch != ']' && ch != ',') clean += ch;
        if (!clean.empty()) result.push_back(std::strtod(clean.c_str(), nullptr));
    }
    return result;
#endif
}

}  // namespace dsp_test
