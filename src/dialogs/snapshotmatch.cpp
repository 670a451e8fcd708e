#include "dialogs/snapshotmatch.h"

#include <QCoreApplication>

namespace
{

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(SnapshotMatch)
};

} // namespace

SnapshotMatch matchSnapshot(const std::optional<noxSql::noxSqlItem> &named,
                            const QVector<noxSql::noxSqlItem> &equal)
{
    SnapshotMatch match;
    if (!named && equal.isEmpty()) {
        match.name = Texts::tr("Новая настройка");
        match.hint = Texts::tr("Настройка НЕ найдена в БД");
        return match;
    }
    const noxSql::noxSqlItem snapshot = named ? *named : equal.first();
    const bool isEqual = !equal.isEmpty() && equal.first().id == snapshot.id;
    match.id = snapshot.id;
    match.name = snapshot.name;
    match.info = snapshot.info;
    match.hint = Texts::tr("Настройка найдена в БД");
    match.isFound = true;
    match.isChanged = !isEqual;
    match.canBeSaved = !isEqual && !snapshot.factory;
    match.canBeRemoved = !snapshot.factory;
    return match;
}
