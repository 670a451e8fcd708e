#pragma once

/**
 * Prints the error of the moving average over `count` large varying values, against a direct
 * average of long doubles, and beside it the error of a running sum.
 */
void printAverageError(int count);
