#include "device/settingsfile.h"

#include "device/filereplacement.h"
#include "device/settingsreader.h"
#include "device/settingswriter.h"
#include "device/windows1251.h"

#include <QFile>
#include <QFileInfo>

namespace
{

constexpr qint64 longestFile = 1 << 20; // thirty times what the largest model needs

QStringList linesOf(QIODevice &device)
{
    const QByteArray bytes = device.read(longestFile + 1);
    if (bytes.isEmpty() || bytes.size() > longestFile)
        return {};
    QStringList lines = fromWindows1251(bytes).remove('\r').split('\n');
    if (lines.last().isEmpty())
        lines.removeLast();
    return lines;
}

} // namespace

bool saveSettingsFile(const optionsNOX8 &image, const QString &fileName)
{
    if (!fitsSettingsFile(image))
        return false;
    const QString lineEnd = QStringLiteral("\r\n");
    return replaceFile(fileName, toWindows1251(settingsLines(image).join(lineEnd) + lineEnd));
}

bool loadSettingsFile(const QString &fileName, optionsNOX8 &image)
{
    QFile file(fileName);
    // opening anything but a file could wait for ever
    if (!QFileInfo(fileName).isFile() || !file.open(QIODevice::ReadOnly))
        return false;
    return readSettings(file, image);
}

bool readSettings(QIODevice &device, optionsNOX8 &image)
{
    return applySettings(linesOf(device), image);
}
