/* Ravik: the whole public interface. */
#ifndef RAVIK_RAVIK_H
#define RAVIK_RAVIK_H

#include "arithm.h"
#include "bilateral.h"
#include "bitcount.h"
#include "bitwise.h"
#include "blur.h"
#include "buffer.h"
#include "canny.h"
#include "correlation.h"
#include "diff.h"
#include "frame.h"
#include "gradient.h"
#include "magnitude.h"
#include "median.h"
#include "minmax.h"
#include "morphology.h"
#include "threshold.h"
#include "transform.h"
#include "types.h"

#endif
