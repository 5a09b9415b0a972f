/* Ravik: the whole public interface.
 *
 * Threads: functions may be called from any number of threads at once, the first call included, as long as no call
 * writes memory that another one reads or writes. One function is excepted: rvkSetOperationMode rebuilds what all
 * others read, so no other call may be under way while it runs. What it sets holds for the whole process. An rvkBuffer
 * is not locked: it belongs to one thread at a time. */
#ifndef RAVIK_RAVIK_H
#define RAVIK_RAVIK_H

#include "affine.h"
#include "arithm.h"
#include "bilateral.h"
#include "bitcount.h"
#include "bitwise.h"
#include "blur.h"
#include "buffer.h"
#include "camera.h"
#include "canny.h"
#include "channel.h"
#include "color.h"
#include "contour.h"
#include "copy.h"
#include "correlation.h"
#include "correspondences.h"
#include "descriptor.h"
#include "diff.h"
#include "dotproduct.h"
#include "drawing.h"
#include "fast.h"
#include "frame.h"
#include "geometry.h"
#include "gradient.h"
#include "harris.h"
#include "hog.h"
#include "hough.h"
#include "integral.h"
#include "lbp.h"
#include "lucaskanade.h"
#include "magnitude.h"
#include "median.h"
#include "minmax.h"
#include "moments.h"
#include "morphology.h"
#include "mser.h"
#include "ncc.h"
#include "polygon.h"
#include "pose.h"
#include "pyramid.h"
#include "region.h"
#include "sad.h"
#include "scale.h"
#include "statistics.h"
#include "threshold.h"
#include "tracking.h"
#include "transform.h"
#include "types.h"
#include "warp.h"

#endif
