// The test groups in the order in which they run.
#pragma once

#include "group.h"

#include <cstddef>
#include <span>

// A group runs for every -m word that equals its keyword in the first `length` characters: a length of one more than
// the keyword's is an exact match.
struct TestGroup
{
    const char* keyword;
    size_t length;
    int (*run)(int loops, const char* dataDirectory); // 0 when the group passed
    const FunctionGroup& (*functions)();              // null for groups that test no functions
};

std::span<const TestGroup> testGroups();
// The functions of all groups.
std::vector<const FunctionTest*> allFunctions();

// -TWOp: what runs before any operation mode is set, on its stored vectors. Returns 0 when all passed.
int runUnsetModeTests(const char* dataDirectory);

int TEST_HW_Test(int loops, const char* dataDirectory);
int TEST_MEM_Test(int loops, const char* dataDirectory);

// Groups that the common routine tests: what they test, and their entries.
const FunctionGroup& depthFunctions();
const FunctionGroup& dotProductFunctions();
const FunctionGroup& squaredDiffFunctions();
const FunctionGroup& integralFunctions();
const FunctionGroup& integralYuvFunctions();
const FunctionGroup& imageDiffFunctions();
const FunctionGroup& transposeFunctions();
const FunctionGroup& warpFunctions();
const FunctionGroup& threeChannelWarpFunctions();
const FunctionGroup& colorToRgbFunctions();
const FunctionGroup& colorSamplingFunctions();
const FunctionGroup& colorFromRgbFunctions();
const FunctionGroup& scaleFunctions();
const FunctionGroup& scaleAndResizeFunctions();
const FunctionGroup& blurFunctions();
const FunctionGroup& edgesFunctions();
const FunctionGroup& scharrFunctions();
const FunctionGroup& sadFunctions();
const FunctionGroup& fast10Functions();
const FunctionGroup& descriptorFunctions();
const FunctionGroup& thresholdFunctions();
const FunctionGroup& copyFunctions();
const FunctionGroup& vectorFunctions();
const FunctionGroup& clusterFunctions();
const FunctionGroup& affineEvaluateFunctions();
const FunctionGroup& affineFitFunctions();
const FunctionGroup& homographyEvaluateFunctions();
const FunctionGroup& homographyFitFunctions();
const FunctionGroup& poseEvaluateFunctions();
const FunctionGroup& poseRefineFunctions();
const FunctionGroup& threePointPoseFunctions();
const FunctionGroup& kdTreeFunctions();
const FunctionGroup& linearSearchFunctions();
const FunctionGroup& bitCountFunctions();
const FunctionGroup& bitwiseFunctions();
const FunctionGroup& blockMatchingFunctions();
const FunctionGroup& boundingRectangleFunctions();
const FunctionGroup& upsampleFunctions();
const FunctionGroup& flipFunctions();
const FunctionGroup& transformFunctions();
const FunctionGroup& contourFunctions();
const FunctionGroup& calib3dFunctions();
const FunctionGroup& solveFunctions();
const FunctionGroup& svdFunctions();
const FunctionGroup& perspectiveTransformFunctions();
const FunctionGroup& fillFunctions();
const FunctionGroup& adaptiveThresholdFunctions();
const FunctionGroup& foregroundMaskFunctions();
const FunctionGroup& absDiffFunctions();
const FunctionGroup& quadFunctions();
const FunctionGroup& averageFunctions();
const FunctionGroup& shiftFunctions();
const FunctionGroup& floodFillFunctions();
const FunctionGroup& motionHistoryFunctions();
const FunctionGroup& polygonFunctions();
const FunctionGroup& codeBookFunctions();
const FunctionGroup& drawContourFunctions();
const FunctionGroup& houghCircleFunctions();
const FunctionGroup& houghLineFunctions();
const FunctionGroup& calibrateFunctions();
const FunctionGroup& remapFunctions();
const FunctionGroup& pyramidFunctions();
const FunctionGroup& segmentationFunctions();
const FunctionGroup& lbpFunctions();
const FunctionGroup& fourierFunctions();
const FunctionGroup& cornerSubPixFunctions();
const FunctionGroup& channelFunctions();
const FunctionGroup& sampleStatisticsFunctions();
const FunctionGroup& nccFunctions();
const FunctionGroup& firFunctions();
const FunctionGroup& fastFunctions();
const FunctionGroup& imageIntensityFunctions();
const FunctionGroup& edgeFunctions();
const FunctionGroup& lucasKanadeFunctions();
const FunctionGroup& hogFunctions();
const FunctionGroup& minMaxFunctions();
const FunctionGroup& vocabularyTreeFunctions();
const FunctionGroup& smoothFunctions();
const FunctionGroup& arithmeticFunctions();
const FunctionGroup& svmFunctions();
const FunctionGroup& harrisFunctions();
const FunctionGroup& mserFunctions();

template <const FunctionGroup& (*functions)()>
int testFunctions(int loops, const char* dataDirectory)
{
    return runFunctionGroup(functions(), loops, dataDirectory);
}
inline constexpr auto RAVIK_TEST_DEPTH = testFunctions<depthFunctions>;
inline constexpr auto RAVIK_TEST_DOT_Test = testFunctions<dotProductFunctions>;
inline constexpr auto RAVIK_TEST_SSD_Test = testFunctions<squaredDiffFunctions>;
inline constexpr auto RAVIK_TEST_IIMG_Test = testFunctions<integralFunctions>;
inline constexpr auto RAVIK_TEST_IIMGYUV_Test = testFunctions<integralYuvFunctions>;
inline constexpr auto RAVIK_TEST_IDIFF_Test = testFunctions<imageDiffFunctions>;
inline constexpr auto RAVIK_TEST_TRNS_Test = testFunctions<transposeFunctions>;
inline constexpr auto RAVIK_TEST_WARP_Test = testFunctions<warpFunctions>;
inline constexpr auto RAVIK_TEST_3CHANNEL_WARP_Test = testFunctions<threeChannelWarpFunctions>;
inline constexpr auto RAVIK_TEST_COLORYUVRGB_Test = testFunctions<colorToRgbFunctions>;
inline constexpr auto RAVIK_TEST_COLORYUV_Test = testFunctions<colorSamplingFunctions>;
inline constexpr auto RAVIK_TEST_COLORRGB_Test = testFunctions<colorFromRgbFunctions>;
inline constexpr auto RAVIK_TEST_SCALE_Test = testFunctions<scaleAndResizeFunctions>;
inline constexpr auto RAVIK_TEST_BLUR_Test = testFunctions<blurFunctions>;
inline constexpr auto RAVIK_TEST_EDGE_Sobel_Test = testFunctions<edgesFunctions>;
inline constexpr auto RAVIK_TEST_EDGE_Scharr_Test = testFunctions<scharrFunctions>;
inline constexpr auto RAVIK_TEST_SAD_Test = testFunctions<sadFunctions>;
inline constexpr auto RAVIK_TEST_FAST10_Test = testFunctions<fast10Functions>;
inline constexpr auto RAVIK_TEST_DESCRIPTOR_Test = testFunctions<descriptorFunctions>;
inline constexpr auto RAVIK_TEST_THRESH_Test = testFunctions<thresholdFunctions>;
inline constexpr auto RAVIK_TEST_COPY_Test = testFunctions<copyFunctions>;
inline constexpr auto RAVIK_TEST_VecNormalize36xNi8f32 = testFunctions<vectorFunctions>;
inline constexpr auto RAVIK_TEST_KMeans = testFunctions<clusterFunctions>;
inline constexpr auto RAVIK_TEST_AFFINEEVAL_Test = testFunctions<affineEvaluateFunctions>;
inline constexpr auto RAVIK_TEST_AFFINEFIT_Test = testFunctions<affineFitFunctions>;
inline constexpr auto RAVIK_TEST_HOMOGRAPHYEVAL_Test = testFunctions<homographyEvaluateFunctions>;
inline constexpr auto RAVIK_TEST_HOMOGRAPHYFIT_Test = testFunctions<homographyFitFunctions>;
inline constexpr auto RAVIK_TEST_POSEEVAL_Test = testFunctions<poseEvaluateFunctions>;
inline constexpr auto RAVIK_TEST_POSEREFINE_Test = testFunctions<poseRefineFunctions>;
inline constexpr auto RAVIK_TEST_3POINTPOSEEST_Test = testFunctions<threePointPoseFunctions>;
inline constexpr auto RAVIK_TEST_KDTree36s8f32 = testFunctions<kdTreeFunctions>;
inline constexpr auto RAVIK_TEST_LINEARSEARCH_Test = testFunctions<linearSearchFunctions>;
inline constexpr auto RAVIK_TEST_BITCNT_Test = testFunctions<bitCountFunctions>;
inline constexpr auto RAVIK_TEST_BITWISEOP_Test = testFunctions<bitwiseFunctions>;
inline constexpr auto RAVIK_TEST_OPTICAL_FLOW_BM_Test = testFunctions<blockMatchingFunctions>;
inline constexpr auto RAVIK_TEST_rvkBoundingRect = testFunctions<boundingRectangleFunctions>;
inline constexpr auto RAVIK_TEST_UPSAMPLE_Test = testFunctions<upsampleFunctions>;
inline constexpr auto RAVIK_TEST_IPP_Test = testFunctions<flipFunctions>;
inline constexpr auto RAVIK_TEST_IPP_TRANSFORM_Test = testFunctions<transformFunctions>;
inline constexpr auto RAVIK_TEST_CONTOUR_Test = testFunctions<contourFunctions>;
inline constexpr auto RAVIK_TEST_CALIB3D = testFunctions<calib3dFunctions>;
inline constexpr auto RAVIK_TEST_Solve = testFunctions<solveFunctions>;
inline constexpr auto RAVIK_TEST_SVD_Test = testFunctions<svdFunctions>;
inline constexpr auto RAVIK_TEST_rvkGetPerspectiveTransform = testFunctions<perspectiveTransformFunctions>;
inline constexpr auto RAVIK_TEST_SET = testFunctions<fillFunctions>;
inline constexpr auto RAVIK_TEST_ADAPTIVETHRESHOLD_Test = testFunctions<adaptiveThresholdFunctions>;
inline constexpr auto RAVIK_TEST_SegmentFGMask = testFunctions<foregroundMaskFunctions>;
inline constexpr auto RAVIK_TEST_ABSDIFF_Test = testFunctions<absDiffFunctions>;
inline constexpr auto RAVIK_TEST_QUAD_Test = testFunctions<quadFunctions>;
inline constexpr auto RAVIK_TEST_AVERAGE_Test = testFunctions<averageFunctions>;
inline constexpr auto RAVIK_TEST_SHIFT_Test = testFunctions<shiftFunctions>;
inline constexpr auto RAVIK_TEST_FLOODFILL = testFunctions<floodFillFunctions>;
inline constexpr auto RAVIK_TEST_UPDATEMOTIONHISTORY = testFunctions<motionHistoryFunctions>;
inline constexpr auto RAVIK_TEST_POLYGON = testFunctions<polygonFunctions>;
inline constexpr auto RAVIK_TEST_BGCodeBook_Test = testFunctions<codeBookFunctions>;
inline constexpr auto RAVIK_TEST_DrawContour_Test = testFunctions<drawContourFunctions>;
inline constexpr auto RAVIK_TEST_HoughCircle_Test = testFunctions<houghCircleFunctions>;
inline constexpr auto RAVIK_TEST_HoughLine_Test = testFunctions<houghLineFunctions>;
inline constexpr auto RAVIK_TEST_CALIBRATE = testFunctions<calibrateFunctions>;
inline constexpr auto RAVIK_TEST_REMAP_Test = testFunctions<remapFunctions>;
inline constexpr auto RAVIK_TEST_PYRAMID_Test = testFunctions<pyramidFunctions>;
inline constexpr auto RAVIK_TEST_IMGSEGMENTATION_Test = testFunctions<segmentationFunctions>;
inline constexpr auto RAVIK_TEST_LBP_Test = testFunctions<lbpFunctions>;
inline constexpr auto RAVIK_TEST_FFT_Test = testFunctions<fourierFunctions>;
inline constexpr auto RAVIK_TEST_CORNERSUBPIX_Test = testFunctions<cornerSubPixFunctions>;
inline constexpr auto RAVIK_TEST_CHANNEL_Test = testFunctions<channelFunctions>;
inline constexpr auto RAVIK_TEST_StatsSampleMeanAndVarSpecialN36f32 = testFunctions<sampleStatisticsFunctions>;
inline constexpr auto RAVIK_TEST_NCC_Test = testFunctions<nccFunctions>;
inline constexpr auto RAVIK_TEST_FIR_Test = testFunctions<firFunctions>;
inline constexpr auto RAVIK_TEST_FAST_Test = testFunctions<fastFunctions>;
inline constexpr auto RAVIK_TEST_IMGINTENSITY_Test = testFunctions<imageIntensityFunctions>;
inline constexpr auto RAVIK_TEST_EDGE_Test = testFunctions<edgeFunctions>;
inline constexpr auto RAVIK_TEST_KLT_Test = testFunctions<lucasKanadeFunctions>;
inline constexpr auto RAVIK_TEST_HOG_test = testFunctions<hogFunctions>;
inline constexpr auto RAVIK_TEST_MINMAX_Test = testFunctions<minMaxFunctions>;
inline constexpr auto RAVIK_TEST_KMEANS_TREE_SEARCH_Test = testFunctions<vocabularyTreeFunctions>;
inline constexpr auto RAVIK_TEST_SMOOTH_Test = testFunctions<smoothFunctions>;
inline constexpr auto RAVIK_TEST_ARITHM_Test = testFunctions<arithmeticFunctions>;
inline constexpr auto RAVIK_TEST_SVM_Test = testFunctions<svmFunctions>;
inline constexpr auto RAVIK_TEST_HARRIS_Test = testFunctions<harrisFunctions>;
inline constexpr auto RAVIK_TEST_Mser = testFunctions<mserFunctions>;
