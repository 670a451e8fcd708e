#pragma once

#include "registry/noxlist.h"

#include <QDialog>

#include <memory>

class ChannelSettingsTable;
class CharacteristicList;
class InstrumentFields;
class OperatingFields;
class QwtNOX;
class SettingsFiles;
class SnapshotBox;

namespace Ui
{
class devConfUI;
}

/**
 * The settings of one instrument: all that it is told, what is kept of it, and its references.
 *
 * What is edited goes into the instrument's configuration image at once; only Apply and the buttons
 * of references and shifts ask for it to be written. The dialog is made once and shown for one
 * instrument at a time; that one may be lost, read again or removed while it is open.
 */
class devConfUI : public QDialog
{
    Q_OBJECT
public:
    /** Registry and plot (which may be null) are not owned, and outlive the dialog. */
    devConfUI(QWidget *parent, noxList *registry, QwtNOX *plot);
    ~devConfUI() override;

    /** Opens for an instrument by its registry index; nothing for an unknown one. */
    void show(int index);
    /** Looks the configuration up in the database and shows what is found. */
    void findSnapShot();
    /** Takes the references as entered into the image; false, and the user is told, when one of
     *  them is no number. */
    bool setRef();

public slots:
    // what the registry reports; instruments other than the one that is shown are ignored
    void onDevChange(int index);
    void onRefChange(int index);
    void onRefShiftChange(int index);
    void onChChange(int index, uchar chIndex);

    void done(int result) override;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private slots:
    // connected by name from the form
    void on_devNumEdit_editingFinished();
    void on_devTypeCB_currentIndexChanged(int);
    void on_devMeasRoundCB_currentIndexChanged(int);
    void on_devMeasTimeCB_currentIndexChanged(int);
    void on_devMeasModeCB_currentIndexChanged(int);
    void on_devCompensTPCB_currentIndexChanged(int);
    void on_devChReversCB_currentIndexChanged(int);
    void on_devZakorotkaCB_currentIndexChanged(int);
    void on_devNameEdit_editingFinished();
    void on_dbSearchEdit_textChanged(const QString &text);
    void on_dbFindCB_currentIndexChanged(int);
    void on_dbFindCB_activated(int);
    void on_saveDBBtn_clicked();
    void on_addDBBtn_clicked();
    void on_rmDBBtn_clicked();
    void on_rmDevBtn_clicked();
    void on_chTable_cellPressed(int row, int column);
    void on_chTable_cellEntered(int row, int column);
    void on_featTable_cellDoubleClicked(int row, int);
    void on_pushButton_clicked();
    void on_pushButton_2_clicked();
    void on_t0Edit_editingFinished();
    void on_pushButton_3_clicked();
    void on_pushButton_4_clicked();
    void on_pushButton_5_clicked();
    void on_pushButton_6_released();
    void on_pushButton_7_clicked();
    void on_pushButton_8_clicked();
    void on_chUPB_clicked();
    void on_devGetConfBtn_clicked();

private:
    void buildParts();
    void fixSize();
    void listenToRegistry();
    void setCurrent(int index);
    void release();
    void showProgress(int devIndex, int progress, int maxProgress);
    void showAll();
    void markReferences(int index);
    void showConnection();
    void showRemoval(int index);
    void readBlock(quint8 address, int size);

    bool isCurrent(int index) const { return index >= 0 && index == m_index && shown(); }
    const noxList::_nox *shown() const;

    std::unique_ptr<Ui::devConfUI> m_ui;
    bool m_serviceKeyHeld = false;
    noxList *m_registry;
    QwtNOX *m_plot;
    int m_index = -1; ///< of the instrument that is shown; -1 while closed
    QString m_title;  ///< of that instrument, for when it is gone

    // the parts of the dialog; children of it or of their widgets
    InstrumentFields *m_fields = nullptr;
    OperatingFields *m_operating = nullptr;
    ChannelSettingsTable *m_channels = nullptr;
    CharacteristicList *m_characteristics = nullptr;
    std::unique_ptr<SnapshotBox> m_snapshots;
    std::unique_ptr<SettingsFiles> m_files;
};
