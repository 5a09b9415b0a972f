/* Ravik: types that every header of the library shares. */
#ifndef RAVIK_TYPES_H
#define RAVIK_TYPES_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
#define RVK_EXTERN_C_BEGIN extern "C" {
#define RVK_EXTERN_C_END }
#else
#define RVK_EXTERN_C_BEGIN
#define RVK_EXTERN_C_END
#endif

/* Marks what the shared library exports; everything else stays hidden. */
#define RVK_API __attribute__((visibility("default")))

/* Single precision of IEEE 754. */
typedef float float32_t;

/* Result of a status function. */
typedef enum rvkStatus {
    RAVIK_SUCCESS = 0,       /* the call did its work */
    RAVIK_EFAIL = 1,         /* general failure */
    RAVIK_EUNALIGNPARAM = 2, /* a pointer or stride lacks the alignment that the function demands */
    RAVIK_EBADPARAM = 3,     /* an argument check failed */
    RAVIK_EINVALSTATE = 4,   /* the call is not allowed in the current state */
    RAVIK_ENORES = 5,        /* memory, scratch space or a remote target is exhausted */
    RAVIK_EUNSUPPORTED = 6,  /* the function or variant is not supported */
    RAVIK_EHWNDSP = 7,       /* failure on the DSP */
    RAVIK_EHWGPU = 8         /* failure on the GPU */
} rvkStatus;

/* Processing units: the bits of rvkAvailableHardware, and the unit of an expert operation mode. */
#define RAVIK_ALL_TARGETS 0u
#define RAVIK_UNIT_ARM 2u
#define RAVIK_UNIT_VECTA 4u
#define RAVIK_UNIT_NDSP 8u
#define RAVIK_UNIT_FPGA 16u
#define RAVIK_UNIT_GPU 32u
#define RAVIK_UNIT_C2D 64u
#define RAVIK_UNIT_VFP 128u
#define RAVIK_UNIT_ARMv7 256u
#define RAVIK_UNIT_DMA 512u
#define RAVIK_UNIT_NDSP_TEST 1024u

/* Operation mode of rvkSetOperationMode: one of the values below, or RAVIK_OP_EXPERT | RAVIK_UNIT_x to run everything
 * on one processing unit. */
typedef int32_t rvkOperationMode;
#define RAVIK_OP_LOW_POWER 0
#define RAVIK_OP_PERFORMANCE 1
#define RAVIK_OP_CPU_OFFLOAD 2
#define RAVIK_OP_CPU_PERFORMANCE 3
#define RAVIK_OP_EXPERT 0x80000000u

/* Where an implementation runs; also the column of the function table. */
typedef enum RVK_IMPL {
    RVK_IMPL_CPU = 0,
    RVK_IMPL_VECTA = 1,
    RVK_IMPL_NDSP = 2,
    RVK_IMPL_GPU = 3,
    RVK_IMPL_ADSP = 4,
    RVK_IMPL_CDSP = 5,
    RVK_IMPL_MDSP = 6
} RVK_IMPL;

/* Kind of memory behind an rvkBuffer. */
typedef enum rvkMemOption {
    RAVIK_MEM_SYSTEM = 0, /* ordinary heap */
    RAVIK_MEM_SHARED = 1, /* shared with the DSP */
    RAVIK_MEM_LIBRARY = 2 /* rvkMemAlloc */
} rvkMemOption;

/* A rectangle of pixels: its left column, its top row, its size. */
typedef struct rvkRectangle
{
    int32_t x, y, width, height;
} rvkRectangle;

/* A rectangle in any orientation: its centre in pixels, its size along its longer and its shorter side, and the angle
 * of the longer one in degrees, from 0 to below 180, from the x axis towards the y axis, which points down. */
typedef struct rvkRotatedBox
{
    float32_t x, y, width, height, angle;
} rvkRotatedBox;

/* Conversion policy of the add, subtract and multiply families. */
#define RAVIK_POLICY_WRAP 0u     /* keep the low bits of the exact result */
#define RAVIK_POLICY_SATURATE 1u /* clamp to the range of the destination */

/* What filters, warps and scalers take for the pixels outside the image; other values mean what the function says. */
#define RAVIK_BORDER_NONE 0u      /* nothing: results that need such pixels are not written */
#define RAVIK_BORDER_CONSTANT 1u  /* a value given by the caller */
#define RAVIK_BORDER_REPLICATE 2u /* the nearest pixel inside */

/* What a picture's value between its pixels is. */
#define RAVIK_INTERPOLATION_NEAREST 0u  /* that of the pixel whose square holds the position */
#define RAVIK_INTERPOLATION_BILINEAR 1u /* the four nearest pixels, weighted by how near they are in each direction */
#define RAVIK_INTERPOLATION_AREA 2u     /* the mean of the area that a pixel of the destination covers */

/* What rvkChannelExtractu8 takes channels from, and which. */
#define RAVIK_FORMAT_RGB 0u
#define RAVIK_FORMAT_RGBA 1u
#define RAVIK_FORMAT_NV12 2u
#define RAVIK_FORMAT_NV21 3u
#define RAVIK_FORMAT_UYVY 4u
#define RAVIK_FORMAT_YUYV 5u
#define RAVIK_CHANNEL_R 0u
#define RAVIK_CHANNEL_G 1u
#define RAVIK_CHANNEL_B 2u
#define RAVIK_CHANNEL_A 3u
#define RAVIK_CHANNEL_Y 4u
#define RAVIK_CHANNEL_U 5u
#define RAVIK_CHANNEL_V 6u

/* Flip directions and clockwise rotations. */
#define RAVIK_FLIP_HORIZONTAL 1u
#define RAVIK_FLIP_VERTICAL 2u
#define RAVIK_FLIP_BOTH 3u
#define RAVIK_ROTATE_90 1u
#define RAVIK_ROTATE_180 2u
#define RAVIK_ROTATE_270 3u

#endif
