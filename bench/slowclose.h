#pragma once

/** Lets every port that a link closes take so long, in milliseconds, as a driver does that hangs; 0
 *  lets none. */
void setPortCloseDelay(int milliseconds);
