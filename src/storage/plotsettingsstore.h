#pragma once

#include "registry/noxlist.h"

#include <QMap>
#include <QObject>
#include <QPair>
#include <QTimer>
#include <QVariant>

class QwtNOX;
class noxSql;

/**
 * Keeps in the database how the user last looked at each instrument on the plot: its main channel,
 * the kinds of curves on show, and scales, colour and time labels of its channels.
 *
 * A change is written at once. What follows within half a second is gathered and written together,
 * so that turning the wheel does not wait for the disk; nothing is lost at a normal end. Applying
 * what is stored stores nothing. An instrument without any settings takes over all of those of the
 * current one, and keeps them as its own from then on. Instruments that the database does not know
 * share one set.
 */
class PlotSettingsStore : public QObject
{
    Q_OBJECT
public:
    /** None of the three is owned; all outlive the store. */
    PlotSettingsStore(QwtNOX *plot, noxList *registry, noxSql *database, QObject *parent = nullptr);
    ~PlotSettingsStore() override;

    /** Applies all that is stored of the instrument with this registry index, which is on the plot:
     *  to be called when it has been attached, and when its identification has changed. The user's
     *  units go into its image. Channels that come later are provided for without a call. */
    void apply(int index);

signals:
    /** The instrument that was current when the program last ran is on the plot, and not the main
     *  one: it is to be made current (its registry index). */
    void currentInstrumentFound(int index);

private:
    using Settings = QMap<QString, QVariant>;

    void connectPlot();
    void store(int qwtIndex, const QString &key, const QVariant &value);
    void storeOfChannel(int qwtIndex, uchar ch, const char *name, const QVariant &value);
    void writeNow();
    void flush();
    Settings settingsOf(const noxList::_nox &nox);

    void mirrorMainChannel(int qwtIndex, uchar mainCh);
    void applyToNewChannel(int qwtIndex, uchar ch);
    void applyUnits(optionsNOX8 *image, const Settings &settings);
    void applyMainChannel(const Settings &settings, int qwtIndex);
    void applyCurveKinds(const Settings &settings, int qwtIndex);
    void applyChannel(const Settings &settings, int qwtIndex, uchar ch);

    QwtNOX *m_plot;
    noxList *m_registry;
    noxSql *m_database;
    QMap<QPair<int, QString>, QVariant> m_unwritten; ///< by database id and key
    QTimer m_timer;
    bool m_isApplying = false; ///< what the plot reports is what is stored
};
