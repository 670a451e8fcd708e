#include "registry/foundinstrument.h"

#include "device/vocabulary.h"

namespace
{

QVector<ModelChoice> modelsFor(const optionsNOX8 &image, bool isStored)
{
    QVector<ModelChoice> choices;
    if (image.devType == 0) {
        const auto names = optionsNOX8::getTypeList(false);
        for (auto name = names.begin(); name != names.end(); ++name)
            choices.append({name.key(), name.value()});
        return choices;
    }
    const QVector<quint32> alike = modelsWithSameReferenceData(image.devType);
    if (alike.isEmpty() || image.identValid || isStored)
        return {{image.devType, image.getDevTypeStr(true)}};
    for (const quint32 typeCode : QVector<quint32>{0} + alike)
        choices.append({typeCode, modelName(*findModel(typeCode))});
    return choices;
}

} // namespace

FoundInstrument::FoundInstrument(const optionsNOX8 &image, bool isStored)
    : m_models(modelsFor(image, isStored))
    , m_number(image.getDevNumberStr())
    , m_hasOwnIdentity(image.identValid)
    , m_isNumberEditable(image.getDevRev() != 0 ||
                         (!image.identValid && image.devType != 0 && image.devNumber == 0))
    , m_isChecked(image.devType != 0)
    , m_isCheckEnabled(image.devType != 0)
    , m_isUnambiguous(image.devType != 0 && m_models.size() == 1 && image.devNumber != 0)
{
}

bool FoundInstrument::lacksNumber() const
{
    bool isNumber = false;
    const quint16 number = m_number.toUShort(&isNumber);
    return m_isNumberEditable && (!isNumber || number == 0);
}

void FoundInstrument::chooseModel(int model)
{
    m_model = model;
    m_isCheckEnabled = typeCode() != 0;
    m_isNumberEditable = typeCode() != 0;
    if (typeCode() == 0)
        m_isChecked = false;
}

void FoundInstrument::check(bool checked)
{
    if (checked == m_isChecked)
        return;
    m_isChecked = checked;
    if (!checked) {
        m_isNumberEditable = false;
        m_isCheckEnabled = false;
        return;
    }
    m_isNumberEditable = m_isNumberEditable || !m_hasOwnIdentity;
    m_isCheckEnabled = m_isCheckEnabled || m_model > 0;
}

std::optional<optionsNOX8::tx_code> FoundInstrument::identify(optionsNOX8 *image) const
{
    bool isNumber = false;
    const quint16 number = m_number.toUShort(&isNumber);
    if (image->getDevRev() == 0) {
        image->setDevType(typeCode());
        if (isNumber)
            image->setDevNumber(number);
        if (image->isIdentified() && image->identValid)
            return optionsNOX8::txIdentification;
    } else if (image->devNumber == 0 && isNumber) {
        image->setDevNumber(number);
        return optionsNOX8::txSerialNumber;
    }
    return std::nullopt;
}
