#pragma once

#include "outagerig.h"

/** The X server goes under the program, which ends with it; what it has kept is looked at. To be
 *  called where there is no application. */
Outcome loseDisplay(int argc, char **argv);
