#include "dialogs/compensationtext.h"

#include "device/vocabulary.h"

#include <QCoreApplication>

namespace
{

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(CompensationText)
};

} // namespace

QString compensatingChannelText(quint32 typeCode, quint8 shortCircuitCode)
{
    const InstrumentModel &model = modelOrNone(typeCode);
    if (model.channels > 0 && !model.hasShortCircuit)
        return Texts::tr("Канал 7");
    return compensationChoices(typeCode, shortCircuitCode).at(1).text;
}
