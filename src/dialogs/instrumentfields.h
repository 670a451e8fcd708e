#pragma once

#include "device/optionsnox8.h"

#include <QObject>
#include <QPointer>

class ChangeMark;
class QComboBox;
class QLineEdit;
struct FieldStates;

/** The fields that tell who an instrument is: its port, number, model and name. */
class InstrumentFields : public QObject
{
    Q_OBJECT
public:
    struct Widgets {
        QLineEdit *port;
        QLineEdit *number;
        QLineEdit *name;
        QComboBox *type;
    };

    /** Fills the list of models. The widgets are the parent's. */
    InstrumentFields(const Widgets &widgets, QObject *parent);

    /** The instrument that is set; null for none. Not owned, it may go at any time. */
    void setImage(optionsNOX8 *image);

    /** Shows the instrument; `isChanged`: its name is still to be written. What is just being typed
     *  stays. */
    void refresh(const QString &portName, const FieldStates &states, bool isChanged);
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
