#include "examples/examples.h"

#include "examples/blockexamples.h"
#include "examples/featureexamples.h"
#include "examples/fileexamples.h"
#include "examples/fittable.h"

#include <QMap>

namespace
{

using Maker = QStringList (*)();

const QMap<QString, Maker> &makers()
{
    static const QMap<QString, Maker> all = {
        {"configuration", configurationExample},
        {"channel-record", channelRecordExample},
        {"channel-block", channelBlockExample},
        {"polynomial", polynomialExample},
        {"callendar-van-dusen", callendarVanDusenExample},
        {"its-90", its90Example},
        {"table", tableExample},
        {"reference-data", referenceDataExample},
        {"date-and-time", dateTimeExample},
        {"zero-shifts", zeroShiftsExample},
        {"identification", identificationExample},
        {"identification-read", extendedIdentificationReadExample},
        {"identification-written", extendedIdentificationWrittenExample},
        {"serial-number", serialNumberExample},
        {"logger", loggerExample},
        {"settings-file", settingsFileExample},
        {"characteristic-file", characteristicFileExample},
        {"table-file", tableFileExample},
        {"results-file", resultsFileExample},
        {"fit", fitTable},
    };
    return all;
}

} // namespace

QStringList exampleNames()
{
    return makers().keys();
}

QStringList makeExample(const QString &name)
{
    const Maker make = makers().value(name);
    return make ? make() : QStringList();
}
