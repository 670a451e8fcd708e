#pragma once

#include "device/optionsnox8.h"

#include <QHash>
#include <QList>
#include <QMenu>
#include <QPointer>

class QwtNOX;
class noxList;

// The instruments on the plot: which index each gets there, and the menus that offer them.

/** The smallest plot index from 0 that is not in use; -1 when more than 254 are. */
int freePlotIndex(const QList<int> &used);

/**
 * Puts an instrument on the plot; the first one there becomes the main instrument. `channelCount`
 * is that of its model, 0 when that is unknown. Returns the plot index, -1 when the plot is full.
 */
int attachToPlot(QwtNOX *plot, uchar channelCount);

/**
 * The image of the instrument with a plot index; null when nobody has it. It tells instruments
 * apart where both indices may have been given to another one meanwhile.
 */
optionsNOX8 *imageOnPlot(const noxList &registry, int qwtIndex);

/** The menu that offers to clear the plot of one instrument or of all. */
class ClearMenu : public QMenu
{
    Q_OBJECT
public:
    explicit ClearMenu(const noxList *registry, QWidget *parent = nullptr);

signals:
    /** The user chose an instrument by its plot index; -1: all, or one that is not on the plot. */
    void chosen(int qwtIndex);

private:
    void refill();
    void addInstrument(const QString &title, int qwtIndex);

    const noxList *m_registry;
};

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

    /** Opens the menu for a channel at a position on the screen. */
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
