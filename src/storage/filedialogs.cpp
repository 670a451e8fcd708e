#include "storage/filedialogs.h"

#include <QCoreApplication>

namespace
{

constexpr const char *tableFilter = QT_TRANSLATE_NOOP("FileDialogs", "CSV (*.csv *.CSV);; * (*.*)");

QString translated(const char *text)
{
    return QCoreApplication::translate("FileDialogs", text);
}

QString chooseOnScreen(QWidget *parent, const FileQuestion &question)
{
    QFileDialog dialog(parent, question.title, question.directory, question.filter);
    const bool isSaving = question.mode == QFileDialog::AcceptSave;
    dialog.setAcceptMode(question.mode);
    dialog.setFileMode(isSaving ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    dialog.setDefaultSuffix(question.defaultSuffix);
    dialog.setOption(QFileDialog::DontConfirmOverwrite, !question.asksToReplace);
    if (!question.name.isEmpty())
        dialog.selectFile(question.name);
    const bool isChosen = dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty();
    return isChosen ? dialog.selectedFiles().constFirst() : QString();
}

} // namespace

FileDialogs &FileDialogs::current()
{
    static FileDialogs dialogs = onScreen();
    return dialogs;
}

FileDialogs FileDialogs::onScreen()
{
    return {chooseOnScreen};
}

FileQuestion resultsFileQuestion(const QString &directory, const QString &name)
{
    FileQuestion question;
    question.title =
        translated(QT_TRANSLATE_NOOP("FileDialogs", "Файл для сохранения результатов"));
    question.filter = translated(tableFilter);
    question.defaultSuffix = QStringLiteral("csv");
    question.directory = directory;
    question.name = name;
    return question;
}

FileQuestion savedResultsQuestion(const QString &directory)
{
    FileQuestion question;
    question.mode = QFileDialog::AcceptOpen;
    question.title =
        translated(QT_TRANSLATE_NOOP("FileDialogs", "Чтение результатов измерений из файла"));
    question.filter = translated(tableFilter);
    question.directory = directory;
    return question;
}

FileQuestion plotImageQuestion(const QString &directory, const QString &name)
{
    FileQuestion question;
    question.title = translated(QT_TRANSLATE_NOOP("FileDialogs", "Сохранить график в файл"));
    question.filter = translated(QT_TRANSLATE_NOOP("FileDialogs", "PNG (*.png *.PNG);; * (*.*)"));
    question.defaultSuffix = QStringLiteral("png");
    question.directory = directory;
    question.name = name;
    return question;
}
