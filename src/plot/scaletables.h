#pragma once

#include <QString>
#include <QVector>

/** A step of the X axis; row 0 of the table, "Авто", has the step 0. */
struct TScaleX {
    QString label;
    qint32 step; ///< seconds
};

/** A step of the Y axis; row 0 of the table, "Авто", has the step 0. */
struct TScaleY {
    QString label;
    double step; ///< units of the channel
};

/** The 19 steps of the X axis, from fine to coarse; their labels are in the user's language. */
const QVector<TScaleX> &scalesX();

/** The 30 steps of the Y axis, from fine to coarse. */
const QVector<TScaleY> &scalesY();
