#pragma once

#include <QColor>

/** The colour in which a new channel is drawn. `ch` is the channel number from 0. */
QColor defaultChannelColor(int ch);
