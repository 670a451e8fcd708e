#pragma once

#include "device/optionsnox8.h"

/** The image of a model whose blocks and settings file lie in golden/. */
struct GoldenModel {
    quint32 type;
    QString file; ///< name in golden/ without suffix
    int currents;
    int resistors;
    OperatingSettings settings;
};

/** The nine models in the order of the recipe. */
const QVector<GoldenModel> &goldenModels();

/** Makes an empty image the one of a row of goldenModels(), by the recipe that stands in
 *  tests/support/golden.py. */
void makeGoldenImage(optionsNOX8 &image, int row);
