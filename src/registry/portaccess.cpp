#include "registry/portaccess.h"

#include "serial/portcatalog.h"

#include <QCoreApplication>

namespace
{

struct AccessTexts {
    Q_DECLARE_TR_FUNCTIONS(PortAccess)
};

} // namespace

bool isConnectable(const SerialPortEntry &port)
{
    return !port.busy && port.neededGroup.isEmpty();
}

QString deniedPortsText(const QVector<SerialPortEntry> &ports)
{
    QStringList names;
    QString group;
    for (const SerialPortEntry &port : ports) {
        if (port.neededGroup.isEmpty())
            continue;
        names << port.name;
        group = port.neededGroup;
    }
    if (names.isEmpty())
        return {};
    const QString which = names.size() == 1 ? AccessTexts::tr("Нет доступа к порту %1")
                                            : AccessTexts::tr("Нет доступа к портам %1");
    return which.arg(names.join(QStringLiteral(", "))) +
           AccessTexts::tr(": вступите в группу %1 (sudo usermod -aG %1 $USER) и войдите в систему "
                           "заново.")
               .arg(group);
}
