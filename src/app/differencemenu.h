#pragma once

#include "device/optionsnox8.h"

#include <QHash>
#include <QMenu>
#include <QPointer>

class QwtNOX;
class noxList;

/**
 * The menu that chooses the channel from which a channel's difference is measured.
 *
 * The menu and each entry carry a channel and a plot index as properties "ch" and "index": the menu
 * the channel that is configured, an entry the reference (255 and -1 for none).
 */
class DifferenceMenu : public QMenu
{
    Q_OBJECT
public:
    DifferenceMenu(QwtNOX *plot, const noxList *registry, QWidget *parent = nullptr);

    /** Opens the menu for a channel at a place on the screen. */
    void openFor(int qwtIndex, uchar ch, const QPoint &position);

signals:
    /** The user chose an entry, and the plot was told. */
    void chosen();

private:
    void refill();
    void addInstrument(int qwtIndex);
    void addReference(QMenu *menu, const QString &title, uchar ch, int qwtIndex);
    void choose(const QAction *reference);
    bool isStillThere(int qwtIndex) const;

    QwtNOX *m_plot;
    const noxList *m_registry;
    QHash<int, QPointer<optionsNOX8>> m_offered; ///< who had which plot index when it opened
};
