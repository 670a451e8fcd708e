#include "registry/portaccess.h"

#include "serial/portcatalog.h"

#include <QCoreApplication>
#include <QMap>

namespace
{

struct AccessTexts {
    Q_DECLARE_TR_FUNCTIONS(PortAccess)
};

QString deniedText(const QStringList &names, const QString &group)
{
    const QString which = names.size() == 1 ? AccessTexts::tr("Нет доступа к порту %1")
                                            : AccessTexts::tr("Нет доступа к портам %1");
    const QString told = which.arg(names.join(QStringLiteral(", ")));
    if (group.isEmpty()) // joining one would not help
        return told + QLatin1Char('.');
    return told +
           AccessTexts::tr(": вступите в группу %1 (sudo usermod -aG %1 $USER) и войдите в систему "
                           "заново.")
               .arg(group);
}

} // namespace

bool isConnectable(const SerialPortEntry &port)
{
    return !port.busy && !port.denied;
}

QString deniedPortsText(const QVector<SerialPortEntry> &ports)
{
    QMap<QString, QStringList> namesOfGroups;
    for (const SerialPortEntry &port : ports)
        if (port.denied)
            namesOfGroups[port.group] << port.name;
    QStringList texts;
    for (auto group = namesOfGroups.cbegin(); group != namesOfGroups.cend(); ++group)
        texts << deniedText(group.value(), group.key());
    return texts.join(QLatin1Char('\n'));
}
