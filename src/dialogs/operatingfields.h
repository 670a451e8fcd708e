#pragma once

#include "device/optionsnox8.h"

#include <QMap>
#include <QObject>
#include <QPointer>

class ChangeMark;
class QComboBox;
struct ConfigurationChanges;

/** The lists in which the operating settings of an instrument are chosen. */
class OperatingFields : public QObject
{
    Q_OBJECT
public:
    struct Lists {
        QComboBox *rounding;
        QComboBox *measurementTime;
        QComboBox *mode;
        QComboBox *compensation;
        QComboBox *reversal;
        QComboBox *shortCircuit;
    };

    /** Fills the lists, which are the parent's. */
    OperatingFields(const Lists &lists, QObject *parent);

    /** The instrument that is set; null for none. Not owned, it may go at any time. */
    void setImage(optionsNOX8 *image);

    /** Shows the settings and marks what differs from those of the instrument. */
    void refresh(const ConfigurationChanges &changes);

    /** Takes what is chosen in one of the lists into the image; what it has already is not taken
     *  again. */
    void store(const QComboBox *list);

private:
    void fillLists();
    void showChoices();
    void showCompensation();

    Lists m_lists;
    QPointer<optionsNOX8> m_image;
    QMap<const QComboBox *, quint8 OperatingSettings::*> m_members;
    QMap<const QComboBox *, ChangeMark *> m_marks; ///< children of their lists
};
