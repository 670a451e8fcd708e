#pragma once

#include <QString>

class optionsNOX8;

/** How an instrument is called in titles and menus: its model, " № " and its serial number. */
QString instrumentTitle(const optionsNOX8 &options);
