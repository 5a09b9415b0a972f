// FFT, and the wavelets and cosine transforms of IPPTRANSFORM.
#include "groups.h"

#include <ravik/frequency.h>

using namespace arguments;

const FunctionGroup& transformFunctions()
{
    const Contract lines = Contract().refusingInPlace().onDsp({.alignment = 8, .widthMultiple = 8});
    const Contract blocks = lines.inUnitsOf(8, 8).atLeast(8, 8), pairs = lines.inUnitsOf(2, 2).atLeast(2, 2);

    static const FunctionGroup group{
        "ravikipptransform",
        "rvk",
        false,
        {
            RVK_TEST(rvkDWTHaarTransposeu8, src, width, height, stride, dst.transposed(), stride).keeps(pairs),
            RVK_TEST(rvkDWT53TabTransposes16, src, width, height, stride, dst.transposed(), stride).keeps(lines),
            RVK_TEST(rvkIDWT53TabTransposes16, src, width, height, stride, dst.transposed(), stride).keeps(lines),
            RVK_TEST(rvkIDWTHaarTransposes16, src, width, height, stride, dst.transposed(), stride).keeps(pairs),
            RVK_TEST(rvkDWTHaaru8, src, width, height, stride, dst, stride).keeps(pairs),
            RVK_TEST(rvkDCTu8, src, width, height, stride, dst, stride).keeps(blocks),
            RVK_TEST(rvkIDWTHaars16, src, width, height, stride, dst, stride).keeps(pairs),
            RVK_TEST(rvkIDCTs16, src, width, height, stride, dst, stride).keeps(blocks),
            RVK_TEST(rvkDWT53Tabs16, src, width, height, stride, dst, stride).keeps(lines.inPlace()),
            RVK_TEST(rvkIDWT53Tabs16, src, width, height, stride, dst, stride).keeps(lines.inPlace()),
        }};
    return group;
}

// Tolerances are those of the largest pictures; what holds of all is proved by the unit tests.
const FunctionGroup& fourierFunctions()
{
    const Contract powers = Contract().powersOfTwo(32768).refusingInPlace();
    const Argument spectrum = src.ofChannels(2).within({{-1000, 1000}}).whole();

    static const FunctionGroup group{
        "ravikfft",
        "rvk",
        false,
        {
            RVK_TEST(rvkFFTu8, src, width, height, stride, dst.ofChannels(2), stride).within(128).keeps(powers),
            RVK_TEST(rvkIFFTf32, spectrum, width, height, stride, dst, stride).within(1).keeps(powers),
        }};
    return group;
}
