# The libraries that benchmarks and tests compare with, where the machine has them: targets ravikOpenCv and ravikLibyuv.
# OpenCV's own configuration file is not asked: Debian has it only with all of the modules together.
if(CMAKE_CROSSCOMPILING)
    return()
endif()

find_path(OPENCV_INCLUDE opencv2/imgproc.hpp PATH_SUFFIXES opencv4)
find_library(OPENCV_CORE opencv_core)
find_library(OPENCV_IMGPROC opencv_imgproc)
if(OPENCV_INCLUDE AND OPENCV_CORE AND OPENCV_IMGPROC)
    add_library(ravikOpenCv INTERFACE)
    target_include_directories(ravikOpenCv SYSTEM INTERFACE ${OPENCV_INCLUDE})
    target_link_libraries(ravikOpenCv INTERFACE ${OPENCV_IMGPROC} ${OPENCV_CORE})

    # And its detectors: target ravikOpenCvFeatures.
    find_path(OPENCV_FEATURES2D_INCLUDE opencv2/features2d.hpp PATH_SUFFIXES opencv4)
    find_library(OPENCV_FEATURES2D opencv_features2d)
    if(OPENCV_FEATURES2D_INCLUDE AND OPENCV_FEATURES2D)
        add_library(ravikOpenCvFeatures INTERFACE)
        target_link_libraries(ravikOpenCvFeatures INTERFACE ${OPENCV_FEATURES2D} ravikOpenCv)
    endif()

    # And its cameras: target ravikOpenCvCalib3d.
    find_path(OPENCV_CALIB3D_INCLUDE opencv2/calib3d.hpp PATH_SUFFIXES opencv4)
    find_library(OPENCV_CALIB3D opencv_calib3d)
    if(OPENCV_CALIB3D_INCLUDE AND OPENCV_CALIB3D)
        add_library(ravikOpenCvCalib3d INTERFACE)
        target_link_libraries(ravikOpenCvCalib3d INTERFACE ${OPENCV_CALIB3D} ravikOpenCv)
    endif()
endif()

find_path(LIBYUV_INCLUDE libyuv.h)
find_library(LIBYUV_LIBRARY yuv)
if(LIBYUV_INCLUDE AND LIBYUV_LIBRARY)
    add_library(ravikLibyuv INTERFACE)
    target_include_directories(ravikLibyuv SYSTEM INTERFACE ${LIBYUV_INCLUDE})
    target_link_libraries(ravikLibyuv INTERFACE ${LIBYUV_LIBRARY})
endif()
