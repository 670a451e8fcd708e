#pragma once

#include "device/optionsnox8.h"

/** Makes the image that of a NOX CM rev.4 with a setting of every kind. Its clock stands still. */
void fillExampleImage(optionsNOX8 &image);
