#pragma once

#include <QDialog>

#include <memory>

namespace Ui
{
class tpReperUI;
}

/**
 * The dialog in which the EMFs of a thermocouple at the freezing points of zinc, aluminium and
 * copper are entered, and which recalculates its table from them. The entries stay for the next
 * time.
 */
class tpReperUI : public QDialog
{
    Q_OBJECT
public:
    explicit tpReperUI(QWidget *parent = nullptr);
    ~tpReperUI() override;

    /** Where the result goes when the dialog is accepted: temperature in °C and EMF in mV in turn,
     *  nothing when an EMF is out of range. Not owned; null: nowhere. */
    void setOutput(QStringList *pairs) { m_pairs = pairs; }

    /** The number that a text means (see bFloat::str2Float()). */
    static float str2Float(const QString &text, bool *ok);
    /** Offers to apply when there are three EMFs above 0. */
    void updUI();

private slots:
    // connected by name from the form
    void on_pushButton_clicked();
    void on_pushButton_2_clicked();
    void on_lineEdit_textChanged(const QString &);
    void on_lineEdit_2_textChanged(const QString &);
    void on_lineEdit_3_textChanged(const QString &);

private:
    std::unique_ptr<Ui::tpReperUI> m_ui;
    QStringList *m_pairs = nullptr;
};
