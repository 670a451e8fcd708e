#pragma once

#include <map>

/** The table of a thermocouple, recalculated from its EMFs at three fixed points. */
class tpReper
{
public:
    /**
     * The EMFs in mV at 300, 400, … 1200 °C, by temperature in °C.
     *
     * `emfs` are three: at the freezing points of zinc, aluminium and copper, in mV. The nearest
     * ones of the tables stand for them (see fixedpointtables.h). The result stays as it was when
     * one of them lies outside its table or is no number.
     */
    static void getEDSTable(const float *emfs, std::map<unsigned short, float> &result);
};
