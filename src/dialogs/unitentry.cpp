#include "dialogs/unitentry.h"

#include "widgets/mlineedit.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>

namespace
{

constexpr int longestUnit = 10; ///< characters that the image keeps

} // namespace

UnitEntry::UnitEntry(QObject *parent)
    : QWidgetAction(parent)
{
    setText(QStringLiteral(":"));
    setCheckable(true);

    auto *const holder = new QWidget;
    m_check = new QLabel(holder);
    m_check->setFixedWidth(m_check->fontMetrics().horizontalAdvance(QStringLiteral("✓ ")));
    m_line = new mLineEdit(holder);
    m_line->setMaxLength(longestUnit);
    m_line->setPlaceholderText(tr("своя единица"));
    m_line->setAccessibleName(tr("Своя единица"));
    m_line->installEventFilter(this);
    holder->setFocusProxy(m_line);
    holder->setFocusPolicy(Qt::StrongFocus);
    auto *const layout = new QHBoxLayout(holder);
    layout->setContentsMargins(6, 2, 6, 2);
    layout->setSpacing(4);
    layout->addWidget(m_check);
    layout->addWidget(m_line);
    setDefaultWidget(holder);

    connect(this, &QAction::toggled, m_check, [this](bool isChecked) {
        m_check->setText(isChecked ? QStringLiteral("✓") : QString());
    });
    connect(m_line, &mLineEdit::clicked, this, &UnitEntry::pressed);
    connect(m_line, &QLineEdit::editingFinished, this, &UnitEntry::reportEntry);
}

void UnitEntry::setUnit(const QString &unit)
{
    m_line->setText(unit);
    m_shown = m_line->text(); // of a longer one the line shows the beginning
}

/** Both Return and the loss of the focus end an entry: the second one brings nothing new. */
void UnitEntry::reportEntry()
{
    if (m_line->text() == m_shown)
        return;
    m_shown = m_line->text();
    emit entered(m_shown);
}

bool UnitEntry::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent *>(event)->key() == Qt::Key_Escape)
        m_line->setText(m_shown);
    return QWidgetAction::eventFilter(watched, event);
}
