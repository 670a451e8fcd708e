#pragma once

class optionsNOX8;

/** What of an instrument can be seen and changed in its settings. */
struct FieldStates {
    bool isKnown = false;    ///< its model is known: it has references, and can be read
    bool isExtended = false; ///< it has a name of its own, and zero shifts
    bool isTypeOpen = false; ///< nobody has told its model yet: the user may
    bool isStored = false;   ///< it stands in the database
};

/** `databaseId` is below 1 for an instrument that is not stored. */
FieldStates fieldStates(const optionsNOX8 &image, int databaseId);
