// The record that the companion library gets so that it can install its own implementations.
#pragma once

#include "dispatch.h"

struct RVK_FUNC_MANAGER
{
    rvk::Target* publicTargets;
    uint32_t publicFunctions;
    rvk::Cell* publicTable;
    rvk::Target* internalTargets;
    uint32_t internalFunctions;
    rvk::Cell* internalTable;
    uint32_t targetsPerRow;
};
