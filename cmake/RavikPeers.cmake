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

    # Its other modules, each a package of its own: targets ravikOpenCv_features2d and so on.
    set(ravikOpenCvModules features2d calib3d video ml objdetect)
    foreach(module IN LISTS ravikOpenCvModules)
        find_path(OPENCV_${module}_INCLUDE opencv2/${module}.hpp PATH_SUFFIXES opencv4)
        find_library(OPENCV_${module} opencv_${module})
        if(OPENCV_${module}_INCLUDE AND OPENCV_${module})
            add_library(ravikOpenCv_${module} INTERFACE)
            target_link_libraries(ravikOpenCv_${module} INTERFACE ${OPENCV_${module}} ravikOpenCv)
        endif()
    endforeach()
endif()

find_path(LIBYUV_INCLUDE libyuv.h)
find_library(LIBYUV_LIBRARY yuv)
if(LIBYUV_INCLUDE AND LIBYUV_LIBRARY)
    add_library(ravikLibyuv INTERFACE)
    target_include_directories(ravikLibyuv SYSTEM INTERFACE ${LIBYUV_INCLUDE})
    target_link_libraries(ravikLibyuv INTERFACE ${LIBYUV_LIBRARY})
endif()
