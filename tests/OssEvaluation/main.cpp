#include <gtest/gtest.h>
#include <hwy/targets.h>

#include <string>

/// Runs the tests; "--instructions=avx2" or "--instructions=baseline" hides what the processor can
/// do beyond that from the kernels.
int main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    for (int i = 1; i < argc; ++i) {
        const std::string option(argv[i]);
        if (option == "--instructions=avx2")
            hwy::DisableTargets(HWY_AVX3 | HWY_AVX3_DL);
        else if (option == "--instructions=baseline")
            hwy::DisableTargets(HWY_AVX2 | HWY_AVX3 | HWY_AVX3_DL);
    }
    return RUN_ALL_TESTS();
}
