#include "calibration/storedmatch.h"

#include <QCoreApplication>

namespace
{

struct MatchTexts {
    Q_DECLARE_TR_FUNCTIONS(StoredMatch)
};

} // namespace

StoredMatch matchStored(const std::optional<StoredCharacteristic> &before,
                        const std::optional<StoredCharacteristic> &withSameRecord)
{
    const auto &row = before ? before : withSameRecord;
    StoredMatch match;
    match.isStored = row.has_value();
    if (!row) {
        match.name = MatchTexts::tr("Новая градуировка");
        match.hint = MatchTexts::tr("Градуировка НЕ сохранена в БД");
        return match;
    }
    match.id = row->id;
    match.name = row->name;
    match.info = row->info;
    match.hint = MatchTexts::tr("Градуировка сохранена в БД");
    match.isChanged = !withSameRecord || withSameRecord->id != row->id;
    return match;
}
