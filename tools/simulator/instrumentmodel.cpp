#include "simulator/instrumentmodel.h"

#include <algorithm>

const QVector<InstrumentModel> &instrumentModels()
{
    static const QVector<InstrumentModel> models = {
        {"NOX A", 0x01, 0, 8, 0, 0, 300.0F, {200.0F, 0.0F, 0.0F, 0.0F}},
        {"NOX B", 0x11, 1, 8, 2, 0, 300.0F, {200.0F, 1500.0F, 0.0F, 0.0F}},
        {"NOX C", 0x21, 2, 8, 4, 1, 300.0F, {75.0F, 200.0F, 1500.0F, 0.0F}},
        {"NOX CM", 0x22, 2, 8, 4, 1, 300.0F, {75.0F, 200.0F, 1500.0F, 0.0F}},
        {"NOX D", 0x31, 3, 8, 2, 2, 1200.0F, {3.0F, 30.0F, 300.0F, 0.0F}},
        {"NOX CM1", 0x41, 4, 16, 4, 1, 300.0F, {75.0F, 200.0F, 1500.0F, 0.0F}},
        {"NOX CM rev.4", 0x0950AA0F, 2, 8, 4, 1, 300.0F, {75.0F, 200.0F, 1500.0F, 0.0F}},
        {"NOX CM1 rev.4", 0x0960AA0F, 4, 16, 4, 1, 300.0F, {75.0F, 200.0F, 1500.0F, 0.0F}},
        {"NOX D rev.4", 0x0970AA0F, 3, 8, 2, 2, 1200.0F, {3.0F, 30.0F, 300.0F, 0.0F}},
    };
    return models;
}

const InstrumentModel *findInstrumentModel(const QString &name)
{
    const auto &models = instrumentModels();
    const auto found =
        std::find_if(models.begin(), models.end(), [&](const InstrumentModel &model) {
            return model.name.compare(name.trimmed(), Qt::CaseInsensitive) == 0;
        });
    return found == models.end() ? nullptr : &*found;
}
