"""The absolute difference of two pictures, in Python."""
import numpy as np
import ravik

before = np.array([[10, 20, 30, 40], [50, 60, 70, 80]], np.uint8)
after = np.array([[10, 25, 30, 20], [50, 60, 70, 255]], np.uint8)
difference = ravik.rvkAbsDiffu8(before, after)  # widths, heights and strides come from the arrays
print(difference)
