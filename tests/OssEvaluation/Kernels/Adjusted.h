#pragma once

#include "OssEvaluation/KernelBench.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

// What tests of kernels that change colours share.

constexpr int AdjustedWidth = 256;
constexpr int AdjustedHeight = 32;

inline double luminance(const Texel &texel)
{
    return 0.2126 * texel[0] + 0.7152 * texel[1] + 0.0722 * texel[2];
}

inline double mix(double a, double b, double t)
{
    return a + (b - a) * t;
}

/// An adjustment of plain colours, for three channels or one.
using Change = std::function<Texel(Texel)>;

inline Reference adjusted(const Picture &input, const Picture *mask, const Change &change)
{
    return [&input, mask, change](int x, int y) {
        const Texel before = input.texel(x, y);
        const double alpha = input.channels == 4 && before[3] > 0.0 ? before[3] : 1.0;
        Texel plain = before;
        for (std::size_t k = 0; k < 3; ++k)
            plain[k] /= alpha;
        Texel after = change(plain);
        const double t = mask != nullptr ? mask->at(0, x, y) : 1.0;
        for (std::size_t k = 0; k < 3; ++k)
            after[k] = mix(before[k], after[k] * alpha, t);
        after[3] = before[3];
        return after;
    };
}

inline Change eachChannel(const std::function<double(double)> &change)
{
    return [change](Texel texel) {
        for (std::size_t k = 0; k < 3; ++k)
            texel[k] = change(texel[k]);
        return texel;
    };
}

// With and without alpha and mask, and as a single channel.
inline void expectAdjustment(const std::string &kernel, const OssEvParameters &parameters,
                             const Change &change, const std::vector<int> &counts = {1, 3, 4})
{
    for (const int channels : counts) {
        for (const bool masked : {false, true}) {
            SCOPED_TRACE(kernel + ", " + std::to_string(channels) + (masked ? ", masked" : ""));
            const Picture input = randomPicture(AdjustedWidth, AdjustedHeight, channels, 3, -0.2,
                                                1.4);
            const Picture mask = randomPicture(AdjustedWidth, AdjustedHeight, 1, 5);
            KernelBench bench(kernel, parameters);
            bench.input("Input", input);
            if (masked)
                bench.input("Mask", mask);
            expectPicture(bench.run(AdjustedWidth, AdjustedHeight),
                          adjusted(input, masked ? &mask : nullptr, change));
        }
    }
}
