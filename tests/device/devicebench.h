#pragma once

#include "device/optionsnox8.h"

#include <QFile>

/** An image of a model. */
struct ImageOf : optionsNOX8 {
    explicit ImageOf(quint32 type) { setDevType(type); }
};

/** All of a file; nothing if it cannot be read. */
inline QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/** The image's signals by name, in the order in which they were fired; "!" asks for a write. */
class ImageLog
{
public:
    explicit ImageLog(const optionsNOX8 &image)
    {
        using Image = optionsNOX8;
        const QVector<QPair<void (Image::*)(), const char *>> signalNames = {
            {&Image::onDevChange, "dev"},        {&Image::onRefChange, "ref"},
            {&Image::onRefShiftChange, "shift"}, {&Image::onIdentChange, "ident"},
            {&Image::onIdentApply, "ident!"},    {&Image::onSNApply, "number!"},
            {&Image::onDevApply, "dev!"},        {&Image::onRefApply, "ref!"},
            {&Image::onRefShiftApply, "shift!"}};
        for (const auto &[signal, name] : signalNames)
            QObject::connect(&image, signal, &m_context, [this, name = name] { m_names << name; });
        QObject::connect(&image, &Image::onChChange, &m_context,
                         [this](quint8 ch) { m_names << QString("ch%1").arg(ch); });
        QObject::connect(&image, &Image::onChApply, &m_context,
                         [this](quint8 ch) { m_names << QString("ch%1!").arg(ch); });
        QObject::connect(&image, &Image::onRecData, &m_context, [this] { m_names << "log"; });
    }

    /** The names since the last call, with blanks between them. */
    QString take() { return std::exchange(m_names, {}).join(' '); }

private:
    QObject m_context;
    QStringList m_names;
};
