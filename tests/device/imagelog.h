#pragma once

#include "device/optionsnox8.h"

/** The image's signals by name, in the order in which they were fired. */
class ImageLog
{
public:
    explicit ImageLog(const optionsNOX8 &image)
    {
        using Image = optionsNOX8;
        const auto note = [this](const char *name) { return [this, name] { m_names << name; }; };
        const auto noteChannel = [this](const char *name) {
            return [this, name](quint8 ch) { m_names << name + QString::number(ch); };
        };
        QObject::connect(&image, &Image::onDevChange, &m_context, note("dev"));
        QObject::connect(&image, &Image::onRefChange, &m_context, note("ref"));
        QObject::connect(&image, &Image::onRefShiftChange, &m_context, note("shift"));
        QObject::connect(&image, &Image::onChChange, &m_context, noteChannel("ch"));
        QObject::connect(&image, &Image::onIdentChange, &m_context, note("ident"));
        QObject::connect(&image, &Image::onIdentApply, &m_context, note("write ident"));
        QObject::connect(&image, &Image::onSNApply, &m_context, note("write number"));
        QObject::connect(&image, &Image::onDevApply, &m_context, note("write dev"));
        QObject::connect(&image, &Image::onChApply, &m_context, noteChannel("write ch"));
        QObject::connect(&image, &Image::onRefApply, &m_context, note("write ref"));
        QObject::connect(&image, &Image::onRefShiftApply, &m_context, note("write shift"));
        QObject::connect(&image, &Image::onRecData, &m_context, note("log"));
    }

    QStringList take() { return std::exchange(m_names, {}); }

private:
    QObject m_context;
    QStringList m_names;
};
