#pragma once

#include "device/vocabulary.h"

/** The models that can be played: those of the product that have channels, by type code. */
const QVector<InstrumentModel> &instrumentModels();

/** The model with this name (upper or lower case) among them, or null. */
const InstrumentModel *findInstrumentModel(const QString &name);
