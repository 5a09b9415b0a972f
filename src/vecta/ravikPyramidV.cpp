// Vector implementations of the pyramids: level after level by those of the scalers and derivatives.
#include "cpu/ravikPyramidC.h"
#include "vecta/vecta.h"

#include <ravik/gradient.h>
#include <ravik/pyramid.h>
#include <ravik/scale.h>

#include "forms/ravikPyramidForms.h"
