#pragma once

#include <QString>

/** A number with so many decimals; what is rounded to zero is written without a sign. */
QString numberText(double number, int decimals);
