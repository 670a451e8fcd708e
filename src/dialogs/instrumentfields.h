#pragma once

#include "device/optionsnox8.h"

#include <QMap>
#include <QObject>
#include <QPointer>

class ChangeMark;
class QComboBox;
class QLineEdit;
struct ConfigurationChanges;
struct FieldStates;

/** The fields of the instrument as a whole: who it is, and its operating settings. */
class InstrumentFields : public QObject
{
    Q_OBJECT
public:
    struct Widgets {
        QLineEdit *port;
        QLineEdit *number;
        QLineEdit *name;
        QComboBox *type;
        QComboBox *rounding;
        QComboBox *measurementTime;
        QComboBox *mode;
        QComboBox *compensation;
        QComboBox *reversal;
        QComboBox *shortCircuit;
    };

    /** Fills the lists. The widgets are the parent's. */
    InstrumentFields(const Widgets &widgets, QObject *parent);

    /** The instrument that is set; null for none. Not owned, it may go at any time. */
    void setImage(optionsNOX8 *image);

    /** Shows the instrument. What is just being typed stays. */
    void refresh(const QString &portName, const FieldStates &states,
                 const ConfigurationChanges &changes);
    /** Lets model and number be changed until the next refresh. */
    void unlock();

    // Taking what the user has entered into the image; what it has already is not taken again

    void storeNumber();
    void storeName();
    void storeType();
    void storeShortCircuit();
    /** Takes the choice of a list that has a member of the settings of its own. */
    void storeChoice(quint8 OperatingSettings::*member, const QComboBox *box);

private:
    void fillLists();
    void showChoices();
    void showCompensation(const FieldStates &states);
    void showChanges(const ConfigurationChanges &changes);

    Widgets m_widgets;
    QPointer<optionsNOX8> m_image;
    QMap<QWidget *, ChangeMark *> m_marks; ///< children of their fields
};
