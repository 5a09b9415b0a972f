// What the pictures of the reference show: a scene with smooth shading, edges as of text, texture and a coloured object.
#pragma once

#include "picture.h"

// The scene in any size. From one moment to the next the object moves.
Picture drawScene(uint32_t width, uint32_t height, int moment = 0);
