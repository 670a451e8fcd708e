#include "dialogs/fieldstates.h"

#include "device/optionsnox8.h"

FieldStates fieldStates(const optionsNOX8 &image, int databaseId)
{
    FieldStates states;
    states.isStored = databaseId >= 1;
    states.isKnown = image.devType != 0;
    states.isExtended = image.getDevRev() != 0;
    states.isTypeOpen = !image.identValid && !states.isStored;
    return states;
}
