#include "app/starthints.h"

#include "registry/noxlist.h"
#include "registry/portaccess.h"
#include "serial/portcatalog.h"
#include "storage/noxsql.h"

#include <QEvent>
#include <QLabel>
#include <QTableWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace
{

constexpr int sideMargin = 8;

/** A path that may be wrapped behind each slash. */
QString breakablePath(const QString &path)
{
    const QChar zeroWidthSpace(0x200b);
    return QString(path).replace(QLatin1Char('/'), QLatin1Char('/') + QString(zeroWidthSpace));
}

/** What can be done while there is no instrument, given the serial ports that there are. */
QString instrumentHint(const QVector<SerialPortEntry> &ports)
{
    if (ports.isEmpty())
        return StartHints::tr("Приборов нет, портов тоже: подключите прибор и нажмите «Поиск "
                              "приборов». Без порта — «Ручное подключение».");
    const QString denied = deniedPortsText(ports);
    if (std::any_of(ports.begin(), ports.end(), isConnectable))
        return StartHints::tr("Приборов пока нет. «Поиск приборов» опрашивает все свободные порты, "
                              "«Ручное подключение» открывает выбранный.") +
               (denied.isEmpty() ? QString() : QLatin1Char('\n') + denied);
    if (!denied.isEmpty())
        return denied;
    return StartHints::tr("Приборов нет, все порты заняты: освободите порт и нажмите «Поиск "
                          "приборов». Без порта — «Ручное подключение».");
}

/** That settings are lost, and what can be done about it; the path is that of the database. */
QString databaseHint(const QString &path)
{
    return StartHints::tr(
               "Настройки не сохраняются: в базу данных нельзя записать. Проверьте файл, "
               "права на его папку и место на диске.\n%1")
        .arg(breakablePath(path));
}

/** A label where the rows will be. */
QLabel *labelBelowHeader(QTableWidget *table)
{
    auto *const label = new QLabel(table->viewport());
    label->setObjectName(QStringLiteral("instrumentHint"));
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setAttribute(Qt::WA_TransparentForMouseEvents);
    auto *const layout = new QVBoxLayout(table->viewport());
    layout->setContentsMargins(sideMargin, table->rowHeight(0), sideMargin, 0);
    layout->addWidget(label);
    return label;
}

} // namespace

StartHints::StartHints(QTableWidget *instruments, QLabel *databaseLabel, const noxList *registry,
                       noxSql *database)
    : m_table(instruments)
    , m_label(labelBelowHeader(instruments))
    , m_registry(registry)
    , m_leastHeight(instruments->minimumHeight())
{
    databaseLabel->setText(databaseHint(database->path()));
    databaseLabel->setVisible(!database->canStore());
    connect(database, &noxSql::storingChanged, databaseLabel,
            [databaseLabel](bool isStoring) { databaseLabel->setVisible(!isStoring); });
    connect(registry, &noxList::onAddNox, this, &StartHints::refresh);
    connect(registry, &noxList::onRmNox, this, &StartHints::refresh);
    m_label->window()->installEventFilter(this);
    refresh();
}

bool StartHints::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::WindowActivate)
        refresh();
    return QObject::eventFilter(watched, event);
}

void StartHints::refresh()
{
    const bool isEmpty = m_registry->indices().isEmpty();
    m_label->setVisible(isEmpty);
    if (isEmpty)
        m_label->setText(instrumentHint(PortCatalog::current().ports()));
    m_table->setMinimumHeight(isEmpty ? qMax(m_leastHeight, neededHeight()) : m_leastHeight);
}

/** Of the table, so that the text is read whole in any font. */
int StartHints::neededHeight() const
{
    const int frame = 2 * m_table->frameWidth();
    const int textWidth = m_table->maximumWidth() - frame - 2 * sideMargin;
    return frame + m_table->rowHeight(0) + m_label->heightForWidth(textWidth);
}
