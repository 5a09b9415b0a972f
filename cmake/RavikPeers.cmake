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
    set(ravikOpenCvModules features2d calib3d video ml)
    foreach(module IN LISTS ravikOpenCvModules)
        find_path(OPENCV_${module}_INCLUDE opencv2/${module}.hpp PATH_SUFFIXES opencv4)
        find_library(OPENCV_${module} opencv_${module})
        if(OPENCV_${module}_INCLUDE AND OPENCV_${module})
            add_library(ravikOpenCv_${module} INTERFACE)
            target_link_libraries(ravikOpenCv_${module} INTERFACE ${OPENCV_${module}} ravikOpenCv)
        endif()
    endforeach()
    # And its detectors: target ravikOpenCvFeatures.
    find_path(OPENCV_FEATURES2D_INCLUDE opencv2/features2d.hpp PATH_SUFFIXES opencv4)
    find_library(OPENCV_FEATURES2D opencv_features2d)
    if(OPENCV_FEATURES2D_INCLUDE AND OPENCV_FEATURES2D)
        add_library(ravikOpenCvFeatures INTERFACE)
        target_link_libraries(ravikOpenCvFeatures INTERFACE ${OPENCV_FEATURES2D} ravikOpenCv)
    endif()

    # And its detectors of objects: target ravikOpenCvObjdetect.
    find_path(OPENCV_OBJDETECT_INCLUDE opencv2/objdetect.hpp PATH_SUFFIXES opencv4)
    find_library(OPENCV_OBJDETECT opencv_objdetect)
    if(OPENCV_OBJDETECT_INCLUDE AND OPENCV_OBJDETECT)
        add_library(ravikOpenCvObjdetect INTERFACE)
        target_link_libraries(ravikOpenCvObjdetect INTERFACE ${OPENCV_OBJDETECT} ravikOpenCv)
    endif()
endif()

find_path(LIBYUV_INCLUDE libyuv.h)
find_library(LIBYUV_LIBRARY yuv)
if(LIBYUV_INCLUDE AND LIBYUV_LIBRARY)
    add_library(ravikLibyuv INTERFACE)
    target_include_directories(ravikLibyuv SYSTEM INTERFACE ${LIBYUV_INCLUDE})
    target_link_libraries(ravikLibyuv INTERFACE ${LIBYUV_LIBRARY})
endif()
