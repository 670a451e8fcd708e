#include "storage/filedialogs.h"

#include <QCoreApplication>

namespace
{

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
    question.title = QCoreApplication::translate("FileDialogs", "Файл для сохранения результатов");
    question.filter = QCoreApplication::translate("FileDialogs", "CSV (*.csv *.CSV);; * (*.*)");
    question.defaultSuffix = QStringLiteral("csv");
    question.directory = directory;
    question.name = name;
    return question;
}
