#pragma once

#include <QString>

/** What stands in a recording of one instrument. */
struct RecordedRows {
    int whole = 0;   ///< rows with all their fields, numbered on from the one before
    int damaged = 0; ///< other lines below a header
};

/** Reads a recording; headers may come again where its file was made anew. */
RecordedRows readRecordedRows(const QString &fileName);
