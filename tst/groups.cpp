#include "groups.h"

#include <algorithm>

std::span<const TestGroup> testGroups()
{
    static constexpr TestGroup groups[] = {
        {"HW", 2, TEST_HW_Test, nullptr},
        {"MEM", 3, TEST_MEM_Test, nullptr},
        {"DEPTH", 5, RAVIK_TEST_DEPTH, depthFunctions},
        {"DOT", 3, RAVIK_TEST_DOT_Test, dotProductFunctions},
        {"SSD", 3, RAVIK_TEST_SSD_Test, squaredDiffFunctions},
        {"IIMG", 5, RAVIK_TEST_IIMG_Test, integralFunctions},
        {"IIMGYUV", 8, RAVIK_TEST_IIMGYUV_Test, integralYuvFunctions},
        {"IDIFF", 5, RAVIK_TEST_IDIFF_Test, imageDiffFunctions},
        {"TRNS", 4, RAVIK_TEST_TRNS_Test, transposeFunctions},
        {"WARP", 4, RAVIK_TEST_WARP_Test, warpFunctions},
        {"3CHANNELWARP", 12, RAVIK_TEST_3CHANNEL_WARP_Test, threeChannelWarpFunctions},
        {"COLORYUVRGB", 12, RAVIK_TEST_COLORYUVRGB_Test, colorToRgbFunctions},
        {"COLORYUV", 9, RAVIK_TEST_COLORYUV_Test, colorSamplingFunctions},
        {"COLORRGB", 9, RAVIK_TEST_COLORRGB_Test, colorFromRgbFunctions},
        {"SCALE", 5, RAVIK_TEST_SCALE_Test, scaleAndResizeFunctions},
        {"BLUR", 4, RAVIK_TEST_BLUR_Test, blurFunctions},
        {"EDGES", 6, RAVIK_TEST_EDGE_Sobel_Test, edgesFunctions},
        {"SCHARR", 6, RAVIK_TEST_EDGE_Scharr_Test, scharrFunctions},
        {"SAD", 3, RAVIK_TEST_SAD_Test, sadFunctions},
        {"FAST10", 7, RAVIK_TEST_FAST10_Test, fast10Functions},
        {"DESCRIPTOR", 9, RAVIK_TEST_DESCRIPTOR_Test, descriptorFunctions},
        {"THRESH", 6, RAVIK_TEST_THRESH_Test, thresholdFunctions},
        {"COPY", 4, RAVIK_TEST_COPY_Test, copyFunctions},
        {"VEC", 3, RAVIK_TEST_VecNormalize36xNi8f32, vectorFunctions},
        {"KMEANS", 5, RAVIK_TEST_KMeans, clusterFunctions},
        {"AFFINEEVAL", 10, RAVIK_TEST_AFFINEEVAL_Test, affineEvaluateFunctions},
        {"AFFINEFIT", 9, RAVIK_TEST_AFFINEFIT_Test, affineFitFunctions},
        {"HOMOGRAPHYEVAL", 14, RAVIK_TEST_HOMOGRAPHYEVAL_Test, homographyEvaluateFunctions},
        {"HOMOGRAPHYFIT", 13, RAVIK_TEST_HOMOGRAPHYFIT_Test, homographyFitFunctions},
        {"POSEEVAL", 8, RAVIK_TEST_POSEEVAL_Test, poseEvaluateFunctions},
        {"POSEREFINE", 10, RAVIK_TEST_POSEREFINE_Test, poseRefineFunctions},
        {"3POINTPOSEEST", 13, RAVIK_TEST_3POINTPOSEEST_Test, threePointPoseFunctions},
        {"KDTREE", 6, RAVIK_TEST_KDTree36s8f32, kdTreeFunctions},
        {"LINEARSEARCH", 12, RAVIK_TEST_LINEARSEARCH_Test, linearSearchFunctions},
        {"BITCNT", 6, RAVIK_TEST_BITCNT_Test, bitCountFunctions},
        {"BITWISEOP", 7, RAVIK_TEST_BITWISEOP_Test, bitwiseFunctions},
        {"OFBM", 4, RAVIK_TEST_OPTICAL_FLOW_BM_Test, blockMatchingFunctions},
        {"BOUNDRECT", 9, RAVIK_TEST_rvkBoundingRect, boundingRectangleFunctions},
        {"UPSAMPLE", 8, RAVIK_TEST_UPSAMPLE_Test, upsampleFunctions},
        {"IPP", 4, RAVIK_TEST_IPP_Test, flipFunctions},
        {"IPPTRANSFORM", 13, RAVIK_TEST_IPP_TRANSFORM_Test, transformFunctions},
        {"CONTOUR", 7, RAVIK_TEST_CONTOUR_Test, contourFunctions},
        {"SOLVE", 5, RAVIK_TEST_Solve, solveFunctions},
        {"PERSPTRANSFORM", 14, RAVIK_TEST_rvkGetPerspectiveTransform, perspectiveTransformFunctions},
        {"SET", 3, RAVIK_TEST_SET, fillFunctions},
        {"ADAPTTHRESH", 12, RAVIK_TEST_ADAPTIVETHRESHOLD_Test, adaptiveThresholdFunctions},
        {"SFGMASK", 7, RAVIK_TEST_SegmentFGMask, foregroundMaskFunctions},
        {"ABSDIFF", 7, RAVIK_TEST_ABSDIFF_Test, absDiffFunctions},
        {"QUAD", 4, RAVIK_TEST_QUAD_Test, quadFunctions},
        {"AVERAGE", 7, RAVIK_TEST_AVERAGE_Test, averageFunctions},
        {"SHIFT", 5, RAVIK_TEST_SHIFT_Test, shiftFunctions},
        {"FLOODFILL", 9, RAVIK_TEST_FLOODFILL, floodFillFunctions},
        {"MOTION", 6, RAVIK_TEST_UPDATEMOTIONHISTORY, motionHistoryFunctions},
        {"SVD", 3, RAVIK_TEST_SVD_Test, svdFunctions},
        {"POLYGON", 7, RAVIK_TEST_POLYGON, polygonFunctions},
        {"BGCODEBOOK", 10, RAVIK_TEST_BGCodeBook_Test, codeBookFunctions},
        {"DRAWCONTOUR", 9, RAVIK_TEST_DrawContour_Test, drawContourFunctions},
        {"HOUGHCIRCLE", 10, RAVIK_TEST_HoughCircle_Test, houghCircleFunctions},
        {"HOUGHLINE", 10, RAVIK_TEST_HoughLine_Test, houghLineFunctions},
        {"CALIBRATE", 9, RAVIK_TEST_CALIBRATE, calibrateFunctions},
        {"REMAP", 5, RAVIK_TEST_REMAP_Test, remapFunctions},
        {"PYRAMID", 7, RAVIK_TEST_PYRAMID_Test, pyramidFunctions},
        {"IMGSEGMENTATION", 15, RAVIK_TEST_IMGSEGMENTATION_Test, segmentationFunctions},
        {"LBP", 3, RAVIK_TEST_LBP_Test, lbpFunctions},
        {"FFT", 3, RAVIK_TEST_FFT_Test, fourierFunctions},
        {"CORNERSUBPIX", 12, RAVIK_TEST_CORNERSUBPIX_Test, cornerSubPixFunctions},
        {"CHANNEL", 7, RAVIK_TEST_CHANNEL_Test, channelFunctions},
        {"STATS", 5, RAVIK_TEST_StatsSampleMeanAndVarSpecialN36f32, sampleStatisticsFunctions},
        {"NCC", 3, RAVIK_TEST_NCC_Test, nccFunctions},
        {"FIR", 3, RAVIK_TEST_FIR_Test, firFunctions},
        {"FAST", 5, RAVIK_TEST_FAST_Test, fastFunctions},
        {"IMGINTENSITY", 12, RAVIK_TEST_IMGINTENSITY_Test, imageIntensityFunctions},
        {"EDGE", 5, RAVIK_TEST_EDGE_Test, edgeFunctions},
        {"KLT", 3, RAVIK_TEST_KLT_Test, lucasKanadeFunctions},
        {"HOG", 3, RAVIK_TEST_HOG_test, hogFunctions},
        {"CALIB3D", 7, RAVIK_TEST_CALIB3D, calib3dFunctions},
        {"MINMAX", 6, RAVIK_TEST_MINMAX_Test, minMaxFunctions},
        {"KMEANSTREESEARCH", 16, RAVIK_TEST_KMEANS_TREE_SEARCH_Test, vocabularyTreeFunctions},
        {"SMOOTH", 6, RAVIK_TEST_SMOOTH_Test, smoothFunctions},
        {"ARITHM", 6, RAVIK_TEST_ARITHM_Test, arithmeticFunctions},
        {"SVM", 3, RAVIK_TEST_SVM_Test, svmFunctions},
        {"HARRIS", 6, RAVIK_TEST_HARRIS_Test, harrisFunctions},
        {"MSER", 4, RAVIK_TEST_Mser, mserFunctions},
    };
    return groups;
}

std::vector<const FunctionTest*> allFunctions()
{
    std::vector<const FunctionTest*> all;
    for (const TestGroup& group : testGroups())
        if (group.functions)
            for (const FunctionTest& function : group.functions().functions)
                all.push_back(&function);
    return all;
}

// Random cases would set the mode of the reference.
static int runStoredVectors(FunctionGroup group, const std::string& name, const char* dataDirectory,
                            float tolerance = 0)
{
    group.isStored = true;
    const auto function = std::find_if(group.functions.begin(), group.functions.end(),
                                       [&](const FunctionTest& f) { return f.name == name; });
    return unitTest(group, *function, dataDirectory, kTargetC, tolerance, RAVIK_TEST_UNIT, 0, nullptr);
}

int runUnsetModeTests(const char* dataDirectory)
{
    return runStoredVectors(blurFunctions(), "rvkFilterMedian3x3u8", dataDirectory) |
           runStoredVectors(dotProductFunctions(), "rvkDotProduct36x1s8", dataDirectory) |
           runStoredVectors(squaredDiffFunctions(), "rvkSumOfSquaredDiffs36x4s8", dataDirectory, 1e-6f) |
           runStoredVectors(colorToRgbFunctions(), "rvkColorYUV420toRGB565u8Rotate180", dataDirectory);
}
