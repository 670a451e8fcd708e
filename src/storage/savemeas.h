#pragma once

#include "storage/resultsexport.h"

#include <QDialog>

#include <memory>

class QwtNOX;

namespace Ui
{
class savemeas;
}

/**
 * The export dialog: writes the series of the plot's main instrument into a results file.
 *
 * While a long export runs, the program goes on; it is given up with the button beside its progress
 * or by closing the dialog.
 */
class savemeas : public QDialog
{
    Q_OBJECT
public:
    /** The plot is not owned, and outlives the dialog. */
    savemeas(QWidget *parent, QwtNOX *plot);
    ~savemeas() override;

    /** Shows the dialog; the file dialog will propose this name. */
    void showFor(const QString &proposedName);

private slots:
    // connected by name from the form
    void on_selectFileBtn_clicked();
    void on_saveBtn_clicked();
    void on_cancelBtn_clicked();
    void on_closeBtn_clicked();
    void on_deFieldCB_currentIndexChanged(int index);

private:
    void showProgress(int percent);
    void showIdle();
    void finishExport(bool isWritten);
    void giveUp();
    void tellFailure(const QString &text);

    std::unique_ptr<Ui::savemeas> m_ui;
    QwtNOX *m_plot;
    ExportJob m_job;
    QString m_proposedName;
};
