#include "simulator/instrumentmodel.h"

#include <algorithm>

namespace
{

QVector<InstrumentModel> modelsWithChannels()
{
    QVector<InstrumentModel> models;
    const auto typeCodes = typeNames(true).keys();
    for (const quint32 typeCode : typeCodes) {
        const InstrumentModel *const model = findModel(typeCode);
        if (model->channels > 0)
            models << *model;
    }
    return models;
}

} // namespace

const QVector<InstrumentModel> &instrumentModels()
{
    static const QVector<InstrumentModel> models = modelsWithChannels();
    return models;
}

const InstrumentModel *findInstrumentModel(const QString &name)
{
    const auto &models = instrumentModels();
    const auto found = std::find_if(models.begin(), models.end(), [&](const auto &model) {
        return modelName(model).compare(name.trimmed(), Qt::CaseInsensitive) == 0;
    });
    return found == models.end() ? nullptr : &*found;
}
