#pragma once

#include <array>
#include <map>

/** What one measured EMF adds to the EMF at other temperatures: °C to mV. */
using Contributions = std::map<unsigned short, float>;

/** The contributions of every EMF that is accepted at one fixed point, by that EMF in mV. */
using FixedPointTable = std::map<float, Contributions>;

/**
 * The tables of zinc, aluminium and copper, in this order, for 300, 400, … 1200 °C.
 *
 * The three contributions at a temperature add up to the parabola through the three EMFs there.
 * EMFs have steps of 1 µV, contributions are rounded to the nearest 0.1 µV.
 */
const std::array<FixedPointTable, 3> &fixedPointTables();

/** The table of a thermocouple, recalculated from its EMFs at three fixed points. */
class tpReper
{
public:
    /**
     * The EMFs in mV at 300, 400, … 1200 °C, by temperature in °C.
     *
     * `emfs` are three: at the freezing points of zinc, aluminium and copper, in mV. The nearest
     * ones of the tables stand for them (see fixedPointTables()). The result stays as it was when
     * one of them lies outside its table or is no number.
     */
    static void getEDSTable(const float *emfs, std::map<unsigned short, float> &result);
};
