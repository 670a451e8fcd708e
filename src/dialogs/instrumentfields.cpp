#include "dialogs/instrumentfields.h"

#include "dialogs/fieldstates.h"
#include "widgets/rowdelegate.h"

#include <QComboBox>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QStyle>

namespace
{

constexpr int longestName = 16; ///< characters that an instrument keeps

/** A line that the user is writing in keeps its text. */
bool isBeingWritten(const QLineEdit *line)
{
    return line->hasFocus() && line->isModified() && !line->isReadOnly();
}

void show(QLineEdit *line, const QString &text)
{
    if (!isBeingWritten(line))
        line->setText(text);
}

/** The style sheet shows it, but looks only when it is asked to. */
void setReadOnly(QLineEdit *line, bool isReadOnly)
{
    if (line->isReadOnly() == isReadOnly)
        return;
    line->setReadOnly(isReadOnly);
    line->style()->unpolish(line);
    line->style()->polish(line);
}

} // namespace

InstrumentFields::InstrumentFields(const Widgets &widgets, QObject *parent)
    : QObject(parent)
    , m_widgets(widgets)
    , m_nameMark(new ChangeMark(widgets.name))
{
    const QSignalBlocker blocker(m_widgets.type);
    const QMap<quint32, QString> types = optionsNOX8::getTypeList(true);
    for (auto type = types.begin(); type != types.end(); ++type)
        m_widgets.type->addItem(type.value(), type.key());
}

void InstrumentFields::setImage(optionsNOX8 *image)
{
    m_image = image;
}

void InstrumentFields::refresh(const QString &portName, const FieldStates &states, bool isChanged)
{
    if (!m_image)
        return;
    show(m_widgets.port, portName);
    show(m_widgets.name, m_image->getDevName(true));
    m_widgets.name->setEnabled(states.isExtended);
    m_nameMark->setChanged(isChanged);
    if (!isBeingWritten(m_widgets.number)) {
        m_widgets.number->setText(m_image->getDevNumberStr());
        setReadOnly(m_widgets.number, true);
    }
    const QSignalBlocker blocker(m_widgets.type);
    m_widgets.type->setCurrentIndex(m_widgets.type->findData(m_image->devType));
    m_widgets.type->setEnabled(states.isTypeOpen);
}

void InstrumentFields::unlock()
{
    m_widgets.type->setEnabled(true);
    setReadOnly(m_widgets.number, false);
}

/** The line ends its entry also when it is only left: the number it shows is no entry. */
void InstrumentFields::storeNumber()
{
    if (!m_image)
        return;
    bool ok = false;
    const auto number = quint16(m_widgets.number->text().toInt(&ok) & 0xFFFF);
    m_widgets.number->setModified(false);
    if (ok && number != m_image->devNumber)
        m_image->setDevNumber(number);
    else
        m_widgets.number->setText(m_image->getDevNumberStr());
}

void InstrumentFields::storeName()
{
    const QPointer<optionsNOX8> image = m_image;
    if (!image)
        return;
    const QString entered = m_widgets.name->text().trimmed();
    m_widgets.name->setModified(false);
    const QString nameOfModel =
        image->getDevTypeStr(true) + QStringLiteral(" № ") + image->getDevNumberStr();
    const QString name = entered.left(longestName);
    if (entered == nameOfModel || name == image->devName) {
        m_widgets.name->setText(image->getDevName(true));
        return;
    }
    image->devName = name;
    image->identApplyPending = true;
    if (image->getDevRev() != 0)
        emit image->onIdentChange();
    if (image)
        emit image->onDevChange();
}

void InstrumentFields::storeType()
{
    if (m_image && m_widgets.type->currentIndex() >= 0)
        m_image->setDevType(m_widgets.type->currentData().toUInt());
}
