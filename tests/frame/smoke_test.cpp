#include "support/support.hpp"
using namespace dsp_test;
template <class T> class Smoke : public ::testing::Test {};
TYPED_TEST_SUITE(Smoke, Precisions);
TYPED_TEST(Smoke, Version) { EXPECT_EQ(DSP(_version)(), 205); }
