#pragma once

#include <QDialog>

#include <memory>

class noxList;

namespace Ui
{
class recmeas;
}

/** The recording dialog: sets up and switches the recording of one instrument. */
class recmeas : public QDialog
{
    Q_OBJECT
public:
    /** The registry is not owned, and outlives the dialog. */
    recmeas(QWidget *parent, noxList *registry);
    ~recmeas() override;

    /** Shows the recording of the instrument with this registry index; for one that has no file yet
     *  the file dialog will propose the name. The dialog closes when the instrument goes. */
    void showFor(int index, const QString &proposedName);

private slots:
    // connected by name from the form
    void on_selectFileBtn_clicked();
    void on_saveBtn_clicked(bool checked);
    void on_closeBtn_clicked();

private:
    void showRecording(bool isRecording);

    std::unique_ptr<Ui::recmeas> m_ui;
    noxList *m_registry;
    int m_index = -1; ///< of the instrument in the registry; -1 when it has gone
    QString m_proposedName;
};
