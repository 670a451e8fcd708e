#include "app/starthints.h"

#include "registry/noxlist.h"
#include "serial/portcatalog.h"
#include "storage/noxsql.h"

#include <QEvent>
#include <QLabel>

#include <algorithm>

namespace
{

/** A path that may be wrapped behind each slash. */
QString breakablePath(const QString &path)
{
    const QChar zeroWidthSpace(0x200b);
    return QString(path).replace(QLatin1Char('/'), QLatin1Char('/') + QString(zeroWidthSpace));
}

} // namespace

QString instrumentHint(int ports, int freePorts)
{
    if (ports == 0)
        return StartHints::tr("Приборов пока нет, и последовательных портов не найдено. Подключите "
                              "прибор к компьютеру, затем нажмите «Поиск приборов».");
    if (freePorts == 0)
        return StartHints::tr("Приборов пока нет, и все последовательные порты заняты другими "
                              "программами. Освободите порт, затем нажмите «Поиск приборов».");
    return StartHints::tr("Приборов пока нет. «Поиск приборов» опрашивает все свободные порты и "
                          "подключает то, что нашёл; «Ручное подключение» подключает прибор к "
                          "выбранному порту.");
}

QString databaseHint(const QString &path)
{
    return StartHints::tr("Настройки не сохраняются: в базу данных нельзя записать. Проверьте файл "
                          "и права на его папку, затем запустите программу снова.\n%1")
        .arg(breakablePath(path));
}

StartHints::StartHints(const Labels &labels, const noxList *registry, noxSql *database)
    : m_label(labels.instruments)
    , m_registry(registry)
{
    labels.database->setVisible(!database->canStore());
    labels.database->setText(databaseHint(database->path()));
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
    if (!isEmpty)
        return;
    const QVector<SerialPortEntry> ports = PortCatalog::current().ports();
    const auto isFree = [](const SerialPortEntry &port) { return !port.busy; };
    m_label->setText(
        instrumentHint(ports.size(), int(std::count_if(ports.begin(), ports.end(), isFree))));
}
