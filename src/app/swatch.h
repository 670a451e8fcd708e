#pragma once

#include <QIcon>

/** A square of 16x16 pixels in a colour with a white frame of 2; transparent: an empty square. */
QIcon swatchIcon(const QColor &color);
