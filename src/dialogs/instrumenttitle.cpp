#include "dialogs/instrumenttitle.h"

#include "device/optionsnox8.h"

QString instrumentTitle(const optionsNOX8 &options)
{
    return options.getDevTypeStr(true) + QStringLiteral(" № ") + options.getDevNumberStr();
}
