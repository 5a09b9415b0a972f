/* The absolute difference of two pictures, in C. */
#include <ravik/ravik.h>

#include <stdio.h>

int main(void)
{
    const uint8_t before[2 * 4] = {10, 20, 30, 40, 50, 60, 70, 80};
    const uint8_t after[2 * 4] = {10, 25, 30, 20, 50, 60, 70, 255};
    uint8_t difference[2 * 4];

    rvkSetOperationMode(RAVIK_OP_CPU_PERFORMANCE); /* the vector code of this CPU */
    rvkAbsDiffu8(before, after, 4, 2, 0, difference, 0); /* 4 x 2 pixels; stride 0: packed rows */
    for (int i = 0; i < 2 * 4; i++)
        printf("%d%c", difference[i], i % 4 == 3 ? '\n' : ' ');
    return 0;
}
