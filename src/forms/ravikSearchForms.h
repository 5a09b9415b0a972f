// Searches of trees, by what either room measures: measureBlock, measureBoxes, measureCenters.
#pragma once

#include "forms/form.h"

namespace RVK_ROOM {

rvkStatus RVK_FORM(rvkKDTreeQuery36s8f32)(const rvkKDTree36s8f32* tree, const int8_t* query, float32_t invLenQuery,
                                          float32_t maxDistance, uint32_t maxChecks, uint32_t capacity, uint32_t* count,
                                          uint32_t* indices, float32_t* distances)
{
    return searchTree({measureBlock, measureBoxes}, *tree, query, invLenQuery, maxDistance, maxChecks, capacity, count,
                      indices, distances);
}

rvkStatus RVK_FORM(rvkKMeansTreeSearch36x10s8)(const int8_t* centers, const uint32_t* children, uint32_t nodeCount,
                                               const int8_t* descriptors, uint32_t descriptorCount, uint32_t* leaves,
                                               uint32_t* distances)
{
    return searchVocabulary(measureCenters, centers, children, nodeCount, descriptors, descriptorCount, leaves,
                            distances);
}

} // namespace RVK_ROOM
