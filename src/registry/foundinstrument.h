#pragma once

#include "device/optionsnox8.h"

#include <QString>
#include <QVector>

#include <optional>

/** A model that the operator can choose for a found instrument; code 0 is none. */
struct ModelChoice {
    quint32 typeCode;
    QString name;
};

/** A found instrument that could not be connected by itself, as the operator sees and edits it. */
class FoundInstrument
{
public:
    /** `isStored`: the database has a row of it. */
    FoundInstrument(const optionsNOX8 &image, bool isStored);

    const QVector<ModelChoice> &models() const { return m_models; }
    quint32 typeCode() const { return m_models.at(m_model).typeCode; }
    int model() const { return m_model; }
    QString number() const { return m_number; }
    bool isNumberEditable() const { return m_isNumberEditable; }
    bool isChecked() const { return m_isChecked; }
    bool isCheckEnabled() const { return m_isCheckEnabled; }
    /** The operator has to choose a model before anything else. */
    bool lacksModel() const { return typeCode() == 0; }
    /** It could be connected and nobody has said that it should be. */
    bool lacksCheck() const { return m_isCheckEnabled && !m_isChecked; }
    /** Its number can be entered and is none from 1 to 65535. */
    bool lacksNumber() const;
    /** Its model and number are known: nothing has to be asked. */
    bool isUnambiguous() const { return m_isUnambiguous; }

    /** The operator chooses a model (index of models()): none cannot be connected. */
    void chooseModel(int model);
    /** The operator enters a number; kept as it is. */
    void enterNumber(const QString &text) { m_number = text; }
    /** The operator wants it connected, or not. */
    void check(bool checked);

    /** Tells the image what the operator has said: model and number where the model does not know
     *  itself, the number where an extended one lacks it. The block that the instrument is to keep
     *  of that, if any. */
    std::optional<optionsNOX8::tx_code> identify(optionsNOX8 *image) const;

private:
    QVector<ModelChoice> m_models;
    int m_model = 0;
    QString m_number;
    bool m_hasOwnIdentity;
    bool m_isNumberEditable;
    bool m_isChecked;
    bool m_isCheckEnabled;
    bool m_isUnambiguous;
};
