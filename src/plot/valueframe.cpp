#include "plot/valueframe.h"

#include "plot/qwtlabelclick.h"

#include <QFormLayout>

ValueFrame::ValueFrame(QWidget *plot)
    : QFrame(plot)
    , m_rows(new QFormLayout(this))
{
    setFrameStyle(QFrame::StyledPanel | QFrame::Raised);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Base);
    m_rows->setContentsMargins(8, 6, 8, 6);
    m_rows->setHorizontalSpacing(10);
    m_rows->setVerticalSpacing(2);
    hide();
}

void ValueFrame::addValue(const QString &caption, const QString &name)
{
    auto *value = new QwtLabelClick;
    value->setObjectName(name);
    m_rows->addRow(caption, value);
    m_values.append(value);
}

void ValueFrame::addGap()
{
    m_rows->addRow(new QWidget);
}

void ValueFrame::setTexts(const QStringList &texts)
{
    for (int row = 0; row < m_values.size(); ++row) {
        m_values[row]->setText(texts.value(row));
        m_values[row]->setStyleSheet(QString());
    }
    adjustSize();
}
