#pragma once

#include <QDialog>
#include <QPointer>

#include <memory>

class StoredPanel;
class WorkingCopy;
class featureNOX8;
class noxSql;
class tpReperUI;
struct CharacteristicEntry;

namespace Ui
{
class featconfui;
}

/**
 * The editor of a calibration characteristic: its description, type and coefficients, with stored
 * characteristics, files, and the recalculation of thermocouple tables.
 *
 * It works on a copy. The characteristic changes when the operator applies, and not a byte of it
 * when nothing was edited.
 */
class featconfui : public QDialog
{
    Q_OBJECT
public:
    /** The database is not owned and may be null. */
    featconfui(QWidget *parent, noxSql *database);
    ~featconfui() override;

    /** Lets the operator edit a characteristic and returns when the dialog is closed: whether it
     *  was applied. The characteristic, and the dialog too, may be gone by then. */
    bool show(featureNOX8 *feature);

public slots:
    /** Takes what is entered into the copy, and shows what became of it. Strictly: whether it was
     *  accepted; else always true. */
    bool setFeature(bool strict);
    /** Shows the table of the selected type, with the coefficients of the copy if it is of it. */
    void needUpd();
    /** Shows which stored characteristic belongs to the copy. */
    void findSqlItem();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private slots:
    // connected by name from the form
    void on_featName_editingFinished();
    void on_featType_currentIndexChanged(int);
    void on_reperTPBtn_clicked();
    void on_searchEdit_textChanged(const QString &text);
    void on_dbFindCB_activated(int);
    void on_dbFindCB_currentIndexChanged(int);
    void on_saveDBBtn_clicked();
    void on_addDBBtn_clicked();
    void on_rmDBBtn_clicked();
    void on_pushButton_3_clicked();
    void on_pushButton_4_clicked();
    void on_pushButton_clicked();
    void on_pushButton_2_clicked();

private:
    void begin(featureNOX8 *feature);
    void end();
    void selectType(int type);
    void showCopy();
    void closeUp(const CharacteristicEntry &taken);
    void showNote(bool isAccepted);
    void notice(const QString &text);
    void noticeLoss();
    void takeStored();
    void store(bool (StoredPanel::*keep)(const WorkingCopy &));
    int selectedType() const;
    CharacteristicEntry entry() const;

    std::unique_ptr<Ui::featconfui> m_ui;
    std::unique_ptr<WorkingCopy> m_copy; ///< null when nothing is edited
    QStringList m_dropped;               ///< pairs entered last that the copy did not keep
    QPointer<featureNOX8> m_edited;
    noxSql *m_database;
    std::unique_ptr<StoredPanel> m_stored;
    tpReperUI *m_recalculation;
};
