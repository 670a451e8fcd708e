#include "app/numericpanels.h"

#include "app/rowcontent.h"
#include "widgets/accessiblerole.h"
#include "widgets/qlabelclick.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QStyle>
#include <QVariant>

namespace
{

constexpr int sideMargin = 8;
constexpr int unitWidth = 75;
constexpr int smallestPoints = 10;
constexpr int valuePoints = 42;
constexpr int averagePoints = 28;

FittedLabel *addNumber(QFrame *frame, const QString &name, int points, bool bold)
{
    auto *label = new FittedLabel(smallestPoints, points);
    label->setObjectName(name);
    QFont font = label->font();
    font.setBold(bold);
    label->setFont(font);
    label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    label->setCursor(Qt::PointingHandCursor);
    label->showText(missingValue());
    frame->layout()->addWidget(label);
    return label;
}

QLabel *addUnit(QFrame *frame, const QString &name)
{
    auto *label = new QLabelClick;
    label->setObjectName(name);
    label->setTextFormat(Qt::PlainText); // a unit is the user's own text
    label->setFixedWidth(unitWidth);
    label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    frame->layout()->addWidget(label);
    return label;
}

/** Style of the unit label: the longer the unit, the smaller. */
QString unitStyle(const QString &unit)
{
    constexpr int largest = 32;
    constexpr int longestAtLargest = 2;
    constexpr int shrinkFrom = 30;
    constexpr int smallest = 6; // units of files may have any length
    const int length = unit.length();
    const int points = length > longestAtLargest ? qMax(smallest, shrinkFrom - length) : largest;
    return QStringLiteral("font: %1pt;").arg(points);
}

void setStyle(QWidget *widget, const QString &style)
{
    if (widget->styleSheet() != style)
        widget->setStyleSheet(style);
}

/** Shows a number, and names its panel by it for whoever cannot see it. */
void showNumber(FittedLabel *label, const QString &title, const QString &text)
{
    QWidget *const panel = label->parentWidget();
    if (label->text() == text && !panel->accessibleName().isEmpty())
        return;
    label->showText(text);
    panel->setAccessibleName(title + QStringLiteral(": ") + text);
}

/** Says at the edge of a panel that the curve of its number is not on the plot. */
QLabel *addHiddenSign(QFrame *frame)
{
    constexpr int points = 8;
    auto *sign = new QLabel(NumericPanels::tr("график скрыт"), frame);
    sign->setObjectName(QStringLiteral("hiddenSign"));
    QFont font = sign->font();
    font.setPointSize(points);
    sign->setFont(font);
    sign->setAttribute(Qt::WA_TransparentForMouseEvents);
    sign->adjustSize();
    sign->move(sideMargin, 2);
    return sign;
}

QString numberStyle(bool shown)
{
    return shown ? QStringLiteral("color: #215767;") : QStringLiteral("color: gray;");
}

} // namespace

NumericPanels::NumericPanels(QFrame *valueFrame, QFrame *averageFrame, QObject *parent)
    : QObject(parent)
    , m_frames{valueFrame, averageFrame}
{
    for (QFrame *frame : qAsConst(m_frames)) {
        auto *row = new QHBoxLayout(frame);
        row->setContentsMargins(sideMargin, 0, sideMargin, 0);
        // not the label: QLabel makes a slow document of a text that can have the focus
        frame->setFocusPolicy(Qt::TabFocus);
        setAccessibleRole(frame, QAccessible::Button);
        frame->installEventFilter(this);
        m_hiddenSigns << addHiddenSign(frame);
    }
    m_value = addNumber(valueFrame, QStringLiteral("mainMeasLabel"), valuePoints, true);
    m_unit = addUnit(valueFrame, QStringLiteral("mainDimLabel"));
    m_average = addNumber(averageFrame, QStringLiteral("mainAverLabel"), averagePoints, false);
    addUnit(averageFrame, QStringLiteral("mainAverDimLabel"));
    m_value->setToolTip(tr("Значение: щелчок (Пробел) показывает и скрывает его график"));
    m_average->setToolTip(tr("Среднее: щелчок (Пробел) показывает и скрывает его график"));
    m_unit->setStyleSheet(unitStyle(QString()));
    showCurveKinds(true, true);
    connect(m_value, &QLabelClick::clicked, this, &NumericPanels::valueClicked);
    connect(m_average, &QLabelClick::clicked, this, &NumericPanels::averageClicked);
}

void NumericPanels::showNumbers(const QString &value, const QString &average, const QString &unit)
{
    showNumber(m_value, tr("Значение"), value);
    showNumber(m_average, tr("Среднее"), average);
    if (m_unit->text() == unit)
        return;
    m_unit->setText(unit);
    // its start may be cut off
    m_unit->setToolTip(asToolTip(unit));
    setStyle(m_unit, unitStyle(unit));
}

void NumericPanels::showCurveKinds(bool values, bool averages)
{
    setStyle(m_value, numberStyle(values));
    setStyle(m_average, numberStyle(averages));
    m_hiddenSigns.first()->setHidden(values);
    m_hiddenSigns.last()->setHidden(averages);
    describe();
}

void NumericPanels::showConnection(bool connected)
{
    constexpr char property[] = "connected";
    for (QFrame *frame : qAsConst(m_frames)) {
        if (frame->property(property) == QVariant(connected))
            continue;
        frame->setProperty(property, connected);
        frame->setToolTip(connected ? QString() : tr("Нет связи с прибором: значения старые"));
        frame->style()->unpolish(frame); // the style sheet looks at the property
        frame->style()->polish(frame);
    }
    describe();
}

/** Says of each panel what else is seen of it, and what a key does. */
void NumericPanels::describe()
{
    for (int i = 0; i < m_frames.size(); ++i) {
        const QString shown = m_hiddenSigns.at(i)->isHidden()
                                  ? tr("График показан, Пробел скрывает")
                                  : tr("График скрыт, Пробел показывает");
        const QString connection = m_frames.at(i)->toolTip();
        m_frames.at(i)->setAccessibleDescription(
            connection.isEmpty() ? shown : connection + QStringLiteral(". ") + shown);
    }
}

bool NumericPanels::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress)
        return QObject::eventFilter(watched, event);
    const auto *key = static_cast<QKeyEvent *>(event);
    const bool isPress =
        key->key() == Qt::Key_Space || key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter;
    if (!isPress)
        return QObject::eventFilter(watched, event);
    if (!key->isAutoRepeat())
        watched == m_frames.first() ? emit valueClicked() : emit averageClicked();
    return true;
}
