#include "calibration/tpreperui.h"

#include "calibration/tpreper.h"
#include "device/bfloat.h"
#include "ui_tpreperui.h"

#include <algorithm>
#include <array>
#include <optional>

namespace
{

using Emfs = std::array<float, 3>;

/** EMFs of zinc, aluminium and copper in mV; nothing unless all three are numbers. */
std::optional<Emfs> enteredEmfs(const Ui::tpReperUI &form)
{
    Emfs emfs;
    auto emf = emfs.begin();
    for (const QLineEdit *field : {form.lineEdit, form.lineEdit_2, form.lineEdit_3}) {
        bool isNumber = false;
        *emf++ = tpReperUI::str2Float(field->text(), &isNumber);
        if (!isNumber)
            return {};
    }
    return emfs;
}

} // namespace

tpReperUI::tpReperUI(QWidget *parent)
    : QDialog(parent)
    , m_ui(std::make_unique<Ui::tpReperUI>())
{
    m_ui->setupUi(this);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
}

tpReperUI::~tpReperUI() = default;

float tpReperUI::str2Float(const QString &text, bool *ok)
{
    return bFloat::str2Float(text, ok);
}

void tpReperUI::updUI()
{
    const auto emfs = enteredEmfs(*m_ui);
    m_ui->pushButton_2->setEnabled(
        emfs && std::all_of(emfs->begin(), emfs->end(), [](float emf) { return emf > 0.0F; }));
}

void tpReperUI::on_pushButton_clicked()
{
    reject();
}

void tpReperUI::on_pushButton_2_clicked()
{
    const auto emfs = enteredEmfs(*m_ui);
    if (!emfs)
        return;
    std::map<unsigned short, float> table;
    tpReper::getEDSTable(emfs->data(), table);
    if (m_pairs) {
        m_pairs->clear();
        for (const auto &[celsius, emf] : table)
            *m_pairs << QString::number(celsius) << QString::number(double(emf), 'f', 4);
    }
    accept();
}

void tpReperUI::on_lineEdit_textChanged(const QString &)
{
    updUI();
}

void tpReperUI::on_lineEdit_2_textChanged(const QString &)
{
    updUI();
}

void tpReperUI::on_lineEdit_3_textChanged(const QString &)
{
    updUI();
}
