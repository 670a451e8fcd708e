#pragma once

#include "device/optionsnox8.h"

#include <QMap>
#include <QObject>
#include <QPointer>

class ChangeMark;
class QComboBox;
class QLabel;
class QLineEdit;
class QProgressBar;
struct ConfigurationChanges;
struct FieldStates;

/** The fields that tell where an instrument is, and who: its port and its transfers, number, model
 * and name. */
class InstrumentFields : public QObject
{
    Q_OBJECT
public:
    /** What it fills; all belong to the dialog. */
    struct Widgets {
        QLineEdit *port;
        QLabel *connection; ///< seen while there is none
        QProgressBar *progress;
        QLineEdit *number;
        QLineEdit *name;
        QComboBox *type;
        QComboBox *searchedType; ///< that of stored configurations
    };

    /** Fills the lists of models. The widgets are the parent's. */
    InstrumentFields(const Widgets &widgets, QObject *parent);

    /** The instrument that is set; null for none. Not owned, it may go at any time. */
    void setImage(optionsNOX8 *image);

    /** Shows the instrument; `isChanged`: its name is still to be written. What is just being typed
     *  stays. */
    void refresh(const QString &portName, const FieldStates &states, bool isChanged);
    /** Shows the port, and that there is no connection if there is none. */
    void showConnection(bool isConnected, const QString &portName);
    /** Shows how far a transfer is: -1 of so much if that is not known, 0 of 0 when it is over. */
    void showProgress(int progress, int maxProgress);
    /** No transfer is under way. */
    void hideProgress();
    /** Lets model and number be changed until the next refresh. */
    void unlock();

    // Taking what the user has entered into the image; what it has already is not taken again

    void storeNumber();
    void storeName();
    void storeType();

private:
    Widgets m_widgets;
    QPointer<optionsNOX8> m_image;
    ChangeMark *m_nameMark; ///< child of the name
};

/** The lists in which the operating settings of an instrument are chosen. */
class OperatingFields : public QObject
{
    Q_OBJECT
public:
    /** What it fills; all belong to the dialog. */
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
