#pragma once

#include "device/configuration.h"

#include <QMenu>

class optionsNOX8;

/**
 * A menu of characteristics: the instrument's own, then the standard ones in menus of their own.
 *
 * It is filled when it is wanted, and never while one of its choices is being delivered.
 */
class CharacteristicMenu : public QMenu
{
    Q_OBJECT
public:
    /** Which standard characteristics it offers. */
    enum Offer { AllStandards, ResistanceThermometers, NoStandards };

    explicit CharacteristicMenu(Offer offer, QWidget *parent = nullptr);

    /** Offers what the instrument has. Models up to code 33 have no standard characteristics. */
    void fill(const optionsNOX8 &image);
    /** Marks one characteristic; featureNone marks none. */
    void mark(CharacteristicSource source, int index);

signals:
    /** The user has chosen a characteristic by its place in its list. */
    void chosen(CharacteristicSource source, quint8 index);

private:
    // null where they are not offered
    QMenu *m_resistanceThermometers = nullptr;
    QMenu *m_thermocouples = nullptr;
};
