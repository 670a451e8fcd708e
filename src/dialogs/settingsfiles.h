#pragma once

#include <QPointer>
#include <QString>

class QWidget;
class noxList;
class optionsNOX8;
struct FileQuestion;

/** Reads and writes settings files of instruments, which the user chooses. */
class SettingsFiles
{
public:
    /** `dialog` is the parent of the questions; neither is owned. */
    SettingsFiles(QWidget *dialog, noxList *registry);

    /** Asks for a file and reads it into the image of an instrument (registry index). */
    void load(int index);
    /** Asks for a file and writes the image of an instrument into it. */
    void save(int index);

private:
    QString ask(FileQuestion question, const QPointer<optionsNOX8> &image,
                const QString &proposedName);

    QWidget *m_dialog;
    noxList *m_registry;
};
