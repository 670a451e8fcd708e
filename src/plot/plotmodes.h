#pragma once

#include <QMetaType>

// The modes of the plot. Their numbers are stored in the database and travel in signals.

/** What the mouse does on the plot and whether the axes follow the data. */
enum TmcMode : int {
    ModeAuto = 0,    ///< "АВТО": X and Y steps are chosen by the data
    ModeFollow = 1,  ///< "СЛЕЖЕНИЕ": chosen steps, the view follows the newest point
    ModeZoom = 2,    ///< "УВЕЛИЧЕНИЕ": zoom by rectangle
    ModeMeasure = 3, ///< "ИЗМЕРЕНИЕ": measurement between two points
    ModeScroll = 4,  ///< "СДВИГ": panning
    ModeLimits = 5   ///< "ПРЕДЕЛЫ": placing alarm limits
};

/** How the X axis is labelled. */
enum TmcModeX : int {
    ModeXSeconds = 0,  ///< "СЕК": seconds since the time origin
    ModeXRelative = 1, ///< "ОТН": duration since the time origin
    ModeXAbsolute = 2  ///< "АБС": date and time of day
};

/** Which limits raise an alarm. */
enum TmcTrackingMode : int { TrackOff = 0, TrackRange = 1, TrackUpper = 2, TrackLower = 3 };

Q_DECLARE_METATYPE(TmcMode)
Q_DECLARE_METATYPE(TmcModeX)
Q_DECLARE_METATYPE(TmcTrackingMode)
