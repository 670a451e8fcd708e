#include "plot/scaletables.h"

#include <QCoreApplication>

namespace
{

struct ScaleTexts {
    Q_DECLARE_TR_FUNCTIONS(QwtNOX)
};

} // namespace

const QVector<TScaleX> &scalesX()
{
    static const QVector<TScaleX> table = {
        {ScaleTexts::tr("Авто"), 0},       {ScaleTexts::tr("1 сек."), 1},
        {ScaleTexts::tr("2 сек."), 2},     {ScaleTexts::tr("5 сек."), 5},
        {ScaleTexts::tr("10 сек."), 10},   {ScaleTexts::tr("15 сек."), 15},
        {ScaleTexts::tr("30 сек."), 30},   {ScaleTexts::tr("1 мин."), 60},
        {ScaleTexts::tr("2 мин."), 120},   {ScaleTexts::tr("5 мин."), 300},
        {ScaleTexts::tr("10 мин."), 600},  {ScaleTexts::tr("15 мин."), 900},
        {ScaleTexts::tr("30 мин."), 1800}, {ScaleTexts::tr("1 ч."), 3600},
        {ScaleTexts::tr("2 ч."), 7200},    {ScaleTexts::tr("5 ч."), 18000},
        {ScaleTexts::tr("10 ч."), 36000},  {ScaleTexts::tr("15 ч."), 54000},
        {ScaleTexts::tr("30 ч."), 108000},
    };
    return table;
}

const QVector<TScaleY> &scalesY()
{
    static const QVector<TScaleY> table = {
        {ScaleTexts::tr("Авто"), 0},
        {QStringLiteral("0.000001"), 0.000001},
        {QStringLiteral("0.000002"), 0.000002},
        {QStringLiteral("0.000005"), 0.000005},
        {QStringLiteral("0.00001"), 0.00001},
        {QStringLiteral("0.00002"), 0.00002},
        {QStringLiteral("0.00005"), 0.00005},
        {QStringLiteral("0.0001"), 0.0001},
        {QStringLiteral("0.0002"), 0.0002},
        {QStringLiteral("0.0005"), 0.0005},
        {QStringLiteral("0.001"), 0.001},
        {QStringLiteral("0.002"), 0.002},
        {QStringLiteral("0.005"), 0.005},
        {QStringLiteral("0.01"), 0.01},
        {QStringLiteral("0.02"), 0.02},
        {QStringLiteral("0.05"), 0.05},
        {QStringLiteral("0.1"), 0.1},
        {QStringLiteral("0.2"), 0.2},
        {QStringLiteral("0.5"), 0.5},
        {QStringLiteral("1"), 1},
        {QStringLiteral("2"), 2},
        {QStringLiteral("5"), 5},
        {QStringLiteral("10"), 10},
        {QStringLiteral("20"), 20},
        {QStringLiteral("50"), 50},
        {QStringLiteral("100"), 100},
        {QStringLiteral("200"), 200},
        {QStringLiteral("500"), 500},
        {QStringLiteral("1000"), 1000},
        {QStringLiteral("2000"), 2000},
    };
    return table;
}
