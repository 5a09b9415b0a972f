// What the library is for, in one row.
#pragma once

#include "picture.h"

// The scene, its edges, its corners and its regions.
Picture drawShow();
