#pragma once

#include "registry/foundtable.h"
#include "registry/noxlist.h"

#include <QDialog>
#include <QSet>

#include <memory>

class InstrumentStore;
class QLabel;
struct SerialPortEntry;

namespace Ui
{
class findNox;
}

/**
 * The discovery dialog: it opens every free port, asks who is there, hands whom it recognises to
 * the registry at once, and lets the operator say what the others are.
 *
 * Found instruments stand in a registry of the dialog's own until they are handed over. When the
 * dialog closes, no worker stays that the main registry does not know. Workers of the main registry
 * are never touched.
 */
class findNox : public QDialog
{
    Q_OBJECT
public:
    findNox(QWidget *parent, noxList *registry);
    ~findNox() override;

public slots:
    /**
     * Searches and shows the dialog. With `autoConnect` what needs no answer is connected without
     * one. A type and a number (0: any) search for one instrument, and end the search with it.
     */
    void find(bool autoConnect = false, uint type = 0, quint16 number = 0);

private slots:
    void on_cancelBtn_clicked();
    void on_scanBtn_clicked();
    void on_connectBtn_clicked();
    void on_newDevTable_cellClicked(int row, int column);
    void on_skipNoneCB_toggled(bool checked);
    void allQueryCopmlite();
    void queryDataReady(int devIndex, QByteArray *buf, quint8 address);
    void queryError(int devIndex, quint16 code, noxSerialPortQueryItem query);
    void devError(int devIndex, quint16 code);

private:
    bool searchesForOne() const { return m_typeFilter != 0 && m_numberFilter != 0; }
    bool isSearched(const optionsNOX8 &image) const;

    void runScan();
    int openFreePorts(const QVector<SerialPortEntry> &ports);
    void tellWhoIsAwaited();
    void showMessage(const QString &text);
    void showIdle(const QString &message);
    void countStep(int devIndex);
    void dropDevice(int devIndex);
    void dropUnknownDevices();
    void endSearch();
    void forgetFound();
    void forgetRecord(int index);

    bool readIdentification(noxList::_nox *found, const QByteArray &block);
    bool readReferenceData(noxList::_nox *found, const QByteArray &block);
    void takeRecognised(noxList::_nox *found);
    bool handOver(noxList::_nox *found);

    QList<int> waiting() const;
    void listWaiting();
    void dropWaiting(int devIndex);
    void showCount();
    bool connectsByItself() const;
    void connectRow(const FoundTable::WaitingRow &row);

    noxList *m_registry; ///< the main one, not owned
    std::unique_ptr<Ui::findNox> m_ui;
    std::unique_ptr<noxList> m_found;
    std::unique_ptr<InstrumentStore> m_store;
    std::unique_ptr<FoundTable> m_table;
    QLabel *m_message; ///< child of the dialog, in the place of the progress bar
    bool m_autoConnect = false;
    quint32 m_typeFilter = 0;
    quint16 m_numberFilter = 0;
    bool m_isSearching = false;
    bool m_isClearing = false; ///< what a search has found is being removed
    int m_search = 0;          ///< changes with each search, and when one ends
    QSet<int> m_awaited;       ///< devices of the scan that have not been dealt with
};
